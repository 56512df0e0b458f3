// Rasterises the theme's vector sources into the PNG files the image registry loads.
//
// Usage: lumo_rasterize <sources.json> <svg folder> <output folder> <images.json> [palette.json output-images.json]
//
// Every entry of sources.json names an image, its SVG file, its display size and
// the @VARIABLE@ values substituted into the SVG text. Images are drawn at four
// times their display size. Unless an entry says "variants": false, the "_hover",
// "_click" and "_disable" files are written too: from the entry's per-state
// variables where it gives them, otherwise by tinting the normal rendering.
// A palette derives another theme's images from the same sources: its colour map
// applies to the SVG text and the variables, its overrides come last. A palette that
// keeps some widgets in the source look also gets each temporary image unmapped, and
// the derived theme's manifest lists those copies.

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QSet>
#include <QSvgRenderer>
#include <QTextStream>

#include "palette.h"

#include <cstdio>

namespace
{
constexpr int Oversampling = 4;

QString substitute(QString svg, const QJsonObject &vars)
{
    for (auto it = vars.begin(); it != vars.end(); ++it)
        svg.replace(QLatin1Char('@') + it.key() + QLatin1Char('@'), it.value().toString());
    return svg;
}

QImage render(const QString &svg, QSize size)
{
    QSvgRenderer renderer(svg.toUtf8());
    if (!renderer.isValid())
        return QImage();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    return image;
}

// Generic state looks for images without their own state colours.
QImage tinted(const QImage &normal, const QString &state)
{
    QImage image = normal.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = line[x];
            int r = qRed(p), g = qGreen(p), b = qBlue(p), a = qAlpha(p);
            if (state == QLatin1String("hover")) {
                r += (255 - r) / 6, g += (255 - g) / 6, b += (255 - b) / 6;
            } else if (state == QLatin1String("click")) {
                r = r * 5 / 6, g = g * 5 / 6, b = b * 5 / 6;
            } else {
                const int grey = (r * 11 + g * 16 + b * 5) / 32;
                r = g = b = 160 + grey * 95 / 255;
                a = a * 55 / 100;
            }
            line[x] = qRgba(r, g, b, a);
        }
    }
    return image;
}

int fail(const QString &message)
{
    std::fprintf(stderr, "lumo_rasterize: %s\n", qPrintable(message));
    return 1;
}
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 5 && args.size() != 7)
        return fail(QStringLiteral(
            "usage: lumo_rasterize <sources.json> <svg folder> <output folder> <images.json> [palette.json output-images.json]"));
    const Palette palette = Palette::load(args.value(5));
    if (args.size() == 7 && palette.isEmpty())
        return fail(QStringLiteral("no colour map in ") + args[5]);

    QFile manifestFile(args[4]);
    if (!manifestFile.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read ") + args[4]);
    QJsonObject manifest = QJsonDocument::fromJson(manifestFile.readAll()).object();
    QSet<QString> temporary;
    for (const QJsonValue &name : manifest.value(QStringLiteral("tmp_images")).toArray())
        temporary.insert(name.toString().remove(QLatin1Char(' ')));

    QFile specFile(args[1]);
    if (!specFile.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read ") + args[1]);
    const QJsonArray entries = QJsonDocument::fromJson(specFile.readAll()).object().value(QStringLiteral("images")).toArray();
    const QDir svgDir(args[2]);
    const QDir outDir(args[3]);
    if (!QDir().mkpath(outDir.path()))
        return fail(QStringLiteral("cannot create ") + outDir.path());

    QSet<QString> produced;
    for (const QJsonValue &value : entries) {
        const QJsonObject entry = value.toObject();
        const QString name = entry.value(QStringLiteral("name")).toString();
        const QJsonArray size = entry.value(QStringLiteral("size")).toArray();
        const QSize pixels(size.at(0).toInt() * Oversampling, size.at(1).toInt() * Oversampling);
        QFile svgFile(svgDir.filePath(entry.value(QStringLiteral("svg")).toString()));
        if (name.isEmpty() || pixels.isEmpty() || !svgFile.open(QIODevice::ReadOnly))
            return fail(QStringLiteral("bad entry for \"") + name + QStringLiteral("\" or unreadable ") + svgFile.fileName());
        const QString source = QString::fromUtf8(svgFile.readAll());
        const QString svg = palette.recolorSvg(source);
        const QJsonObject vars = palette.imageVars(name, entry.value(QStringLiteral("vars")).toObject());
        if (palette.hasUnmappedScopes() && temporary.contains(name)) {
            const QImage unmapped = render(substitute(source, entry.value(QStringLiteral("vars")).toObject()), pixels);
            if (unmapped.isNull() || !unmapped.save(outDir.filePath(Palette::unmappedName(name) + QStringLiteral(".png"))))
                return fail(QStringLiteral("cannot write the unmapped ") + name);
        }
        const QJsonObject states = entry.value(QStringLiteral("states")).toObject();

        const QImage normal = render(substitute(svg, vars), pixels);
        if (normal.isNull())
            return fail(QStringLiteral("invalid SVG for ") + name);
        if (!normal.save(outDir.filePath(name + QStringLiteral(".png"))))
            return fail(QStringLiteral("cannot write ") + name);
        produced.insert(name);
        if (entry.value(QStringLiteral("variants")).toBool(true)) {
            for (const QString &state : {QStringLiteral("hover"), QStringLiteral("click"), QStringLiteral("disable")}) {
                QImage image;
                if (states.contains(state)) {
                    QJsonObject stateVars = vars;
                    const QJsonObject overrides = palette.imageVars(name, states.value(state).toObject());
                    for (auto it = overrides.begin(); it != overrides.end(); ++it)
                        stateVars.insert(it.key(), it.value());
                    image = render(substitute(svg, stateVars), pixels);
                } else {
                    image = tinted(normal, state);
                }
                if (image.isNull() || !image.save(outDir.filePath(name + QLatin1Char('_') + state + QStringLiteral(".png"))))
                    return fail(QStringLiteral("cannot write ") + name + QLatin1Char('_') + state);
            }
        }
    }

    // Every name the manifest lists must have been drawn.
    for (const QString &list : {QStringLiteral("images"), QStringLiteral("tmp_images")}) {
        const QJsonArray names = manifest.value(list).toArray();
        for (const QJsonValue &name : names) {
            if (!produced.contains(name.toString().remove(QLatin1Char(' '))))
                return fail(QStringLiteral("images.json names \"") + name.toString() + QStringLiteral("\" but no source draws it"));
        }
    }
    if (args.size() == 7) {
        if (palette.hasUnmappedScopes()) {
            QJsonArray names = manifest.value(QStringLiteral("tmp_images")).toArray();
            for (const QJsonValue &name : manifest.value(QStringLiteral("tmp_images")).toArray())
                names.append(Palette::unmappedName(name.toString().remove(QLatin1Char(' '))));
            manifest.insert(QStringLiteral("tmp_images"), names);
        }
        QFile derived(args[6]);
        if (!derived.open(QIODevice::WriteOnly | QIODevice::Truncate) || derived.write(QJsonDocument(manifest).toJson()) < 0)
            return fail(QStringLiteral("cannot write ") + args[6]);
    }
    return 0;
}

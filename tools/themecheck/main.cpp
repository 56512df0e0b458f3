// Checks a theme folder against what the library asks of a theme.
//
// Usage: lumo-theme-check DIR
//
// Reports the images (and their state files), style keys and caption keys DIR
// lacks, what it holds that nothing asks for, and every style rule whose text
// colour and background are less than 4.5:1 apart. Exits 1 on any gap (extras
// are reported but pass), 2 when DIR is not a folder.

#include "palette.h"
#include "resources/registries_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <optional>

namespace
{
constexpr qint64 MaxFileBytes = 16 * 1024 * 1024;
constexpr double MinContrast = 4.5;

QTextStream out(stdout);

struct Findings {
    QStringList gaps;
    QStringList extras;
};

QByteArray readSmallFile(const QString &path, bool *ok = nullptr)
{
    QFile file(path);
    const bool readable = file.size() <= MaxFileBytes && file.open(QIODevice::ReadOnly);
    if (ok)
        *ok = readable;
    return readable ? file.readAll() : QByteArray();
}

QString stateFile(const QString &name, int state)
{
    static const char *const suffixes[] = {"", "_hover", "_click", "_disable"};
    return name + QLatin1String(suffixes[state]);
}

std::optional<QColor> parseColor(QString text)
{
    text = text.trimmed();
    static const QRegularExpression rgb(
        QStringLiteral(R"re(^rgba?\(\s*([\d.]+)\s*,\s*([\d.]+)\s*,\s*([\d.]+)\s*(?:,\s*([\d.]+%?)\s*)?\)$)re"),
        QRegularExpression::CaseInsensitiveOption);
    if (const auto m = rgb.match(text); m.hasMatch()) {
        QColor c(qBound(0, m.captured(1).toInt(), 255), qBound(0, m.captured(2).toInt(), 255), qBound(0, m.captured(3).toInt(), 255));
        QString alpha = m.captured(4);
        if (!alpha.isEmpty()) // Qt reads rgba's alpha as 0-255, or a percentage
            c.setAlphaF(alpha.endsWith(QLatin1Char('%')) ? qBound(0.0, alpha.chopped(1).toDouble() / 100, 1.0)
                                                         : qBound(0.0, alpha.toDouble() / 255, 1.0));
        return c;
    }
    if (text.compare(QLatin1String("transparent"), Qt::CaseInsensitive) == 0)
        return std::nullopt;
    const QColor c = QColor::fromString(text);
    return c.isValid() ? std::optional<QColor>(c) : std::nullopt;
}

// The solid colours a background may show: one colour, or each stop of a gradient.
QList<QColor> backgroundColors(const QString &value)
{
    QList<QColor> colors;
    if (value.contains(QLatin1String("gradient"), Qt::CaseInsensitive)) {
        static const QRegularExpression stop(QStringLiteral(R"re(stop\s*:\s*[\d.]+\s+(#[0-9a-fA-F]+|rgba?\([^)]*\)|[a-zA-Z]+))re"));
        for (auto it = stop.globalMatch(value); it.hasNext();)
            if (const auto c = parseColor(it.next().captured(1)))
                colors << *c;
        return colors;
    }
    static const QRegularExpression token(QStringLiteral(R"re(#[0-9a-fA-F]+|rgba?\([^)]*\)|[a-zA-Z]+)re"));
    if (!value.contains(QLatin1String("url("))) {
        for (auto it = token.globalMatch(value); it.hasNext() && colors.isEmpty();)
            if (const auto c = parseColor(it.next().captured(0)))
                colors << *c;
    }
    return colors;
}

double luminance(const QColor &c)
{
    auto channel = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
}

QColor over(const QColor &top, const QColor &below)
{
    const double a = top.alphaF();
    return QColor::fromRgbF(float(top.redF() * a + below.redF() * (1 - a)), float(top.greenF() * a + below.greenF() * (1 - a)),
                            float(top.blueF() * a + below.blueF() * (1 - a)));
}

// Translucent backgrounds are judged over both white and black, and the worse result counts.
double contrast(const QColor &text, const QColor &background)
{
    double worst = 21;
    for (const QColor base : {QColor(Qt::white), QColor(Qt::black)}) {
        const QColor bg = over(background, base);
        const double a = luminance(over(text, bg)), b = luminance(bg);
        worst = std::min(worst, (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05));
    }
    return worst;
}

// Every rule of a section that sets a text colour or a background, with the other taken from the rule
// it refines (":hover" from the plain selector) when it sets only one. Disabled states are exempt, as in WCAG.
int checkContrast(const QString &key, const QString &section, Findings &findings)
{
    static const QRegularExpression state(QStringLiteral(R"re((?<!:):[a-zA-Z-]+)re"));
    struct Look {
        QString color, background;
    };
    QList<std::pair<QString, Look>> rules;
    QMap<QString, Look> bySelector;
    forEachStyleRule(section, [&](const QString &selectors, const QString &body) {
        Look look;
        for (const QString &declaration : body.split(QLatin1Char(';'))) {
            const qsizetype colon = declaration.indexOf(QLatin1Char(':'));
            const QString property = declaration.left(colon).trimmed().toLower();
            if (colon < 0)
                continue;
            if (property == QLatin1String("color"))
                look.color = declaration.mid(colon + 1).trimmed();
            else if (property == QLatin1String("background") || property == QLatin1String("background-color"))
                look.background = declaration.mid(colon + 1).trimmed();
        }
        rules.append({selectors.simplified(), look});
        bySelector.insert(rules.last().first, look);
    });
    int checked = 0;
    for (const auto &[selector, own] : std::as_const(rules)) {
        if (selector.contains(QLatin1String(":disabled")) || (own.color.isEmpty() && own.background.isEmpty()))
            continue;
        const Look base = bySelector.value(QString(selector).remove(state));
        const QString color = own.color.isEmpty() ? base.color : own.color;
        const QString background = own.background.isEmpty() ? base.background : own.background;
        const auto text = parseColor(color);
        if (!text || background.isEmpty())
            continue;
        for (const QColor &bg : backgroundColors(background)) {
            ++checked;
            const double ratio = contrast(*text, bg);
            if (ratio < MinContrast)
                findings.gaps << QStringLiteral("contrast %1 in %2: %3 on %4 is %5:1")
                                     .arg(selector, key, color, background, QString::number(ratio, 'f', 2));
        }
    }
    return checked;
}

void checkImages(const QDir &theme, const QMap<QString, QString> &styles, Findings &findings)
{
    bool ok = false;
    const QJsonDocument document = QJsonDocument::fromJson(readSmallFile(theme.filePath(QStringLiteral("images.json")), &ok));
    if (!ok || !document.isObject())
        findings.gaps << QStringLiteral("images.json missing or not a JSON object");
    auto names = [&](const char *list) {
        QSet<QString> set;
        for (const QJsonValue &v : document.object().value(QLatin1String(list)).toArray())
            set.insert(v.toString().remove(QLatin1Char(' ')));
        return set;
    };
    const QSet<QString> listed = names("images"), temporary = names("tmp_images");
    const QDir images(theme.filePath(QStringLiteral("images")));
    auto requireFile = [&](const QString &file, const QString &why) {
        if (!QImageReader(images.filePath(file + QStringLiteral(".png"))).canRead())
            findings.gaps << QStringLiteral("image file images/%1.png (%2) missing or unreadable").arg(file, why);
    };

    QSet<QString> expectedFiles, asked;
    for (const lumo::ThemeImage &image : lumo::themeCatalogue().images) {
        asked.insert(image.name);
        if (document.isObject() && !listed.contains(image.name))
            findings.gaps << QStringLiteral("image %1 not listed in images.json").arg(image.name);
        for (int state = 0; state < (image.allStates ? 4 : 1); ++state)
            requireFile(stateFile(image.name, state), image.name);
    }
    // The stylesheets name temporary images and plain image files themselves.
    static const QRegularExpression reference(QStringLiteral(R"re((TMPIMG_LOC/tmp_|IMG_LOC/)([^/)"'\s]+)\.png)re"));
    QSet<QString> referenced;
    for (auto it = styles.begin(); it != styles.end(); ++it) {
        for (auto match = reference.globalMatch(it.value()); match.hasNext();) {
            const auto m = match.next();
            const QString name = m.captured(2);
            if (m.captured(1).startsWith(QLatin1String("TMP"))) {
                referenced.insert(name);
                if (document.isObject() && !temporary.contains(name))
                    findings.gaps << QStringLiteral("image %1 used by %2 not listed in tmp_images").arg(name, it.key());
            }
            requireFile(name, it.key());
            expectedFiles.insert(name);
        }
    }

    for (const QString &name : listed) {
        if (!asked.contains(name))
            findings.extras << QStringLiteral("image %1 (in images.json)").arg(name);
        for (int state = 0; state < 4; ++state)
            expectedFiles.insert(stateFile(name, state));
    }
    for (const QString &name : temporary) {
        expectedFiles.insert(name);
        if (!referenced.contains(name))
            findings.extras << QStringLiteral("image %1 (in tmp_images, no stylesheet uses it)").arg(name);
    }
    for (const QString &file : images.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name))
        if (!expectedFiles.contains(file.chopped(4)))
            findings.extras << QStringLiteral("file images/%1").arg(file);
}

QMap<QString, QString> readStyles(const QDir &theme, Findings &findings)
{
    const QDir dir(theme.filePath(QStringLiteral("styles")));
    QString text;
    for (const QString &name : dir.entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name)) {
        bool ok = false;
        text += QString::fromUtf8(readSmallFile(dir.filePath(name), &ok)) + QLatin1Char('\n');
        if (!ok)
            findings.gaps << QStringLiteral("style file styles/%1 unreadable or too large").arg(name);
    }
    QMap<QString, QString> sections;
    lumo::forEachStyleSection(text, [&](const QString &key, const QString &value) { sections.insert(key, value); });
    return sections;
}

int checkStyles(const QMap<QString, QString> &sections, Findings &findings)
{
    const QStringList &keys = lumo::themeCatalogue().styleKeys;
    for (const QString &key : keys)
        if (!sections.contains(key))
            findings.gaps << QStringLiteral("style key %1 missing").arg(key);
    int checked = 0;
    for (auto it = sections.begin(); it != sections.end(); ++it) {
        if (!keys.contains(it.key()))
            findings.extras << QStringLiteral("style key %1").arg(it.key());
        checked += checkContrast(it.key(), it.value(), findings);
    }
    return checked;
}

QStringList checkCaptions(const QDir &theme, Findings &findings)
{
    const QDir dir(theme.filePath(QStringLiteral("captions")));
    const QStringList files = dir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    if (files.isEmpty())
        findings.gaps << QStringLiteral("no caption files in captions/");
    QStringList languages;
    for (const QString &file : files) {
        const QString language = file.chopped(5);
        languages << language;
        bool ok = false;
        const QJsonDocument document = QJsonDocument::fromJson(readSmallFile(dir.filePath(file), &ok));
        if (!ok || !document.isObject()) {
            findings.gaps << QStringLiteral("captions/%1 unreadable or not a JSON object").arg(file);
            continue;
        }
        const QJsonObject captions = document.object();
        const QStringList &keys = lumo::themeCatalogue().captionKeys;
        for (const QString &key : keys)
            if (!captions.value(key).isString() || captions.value(key).toString().isEmpty())
                findings.gaps << QStringLiteral("caption %1 missing in %2").arg(key, language);
        for (auto it = captions.begin(); it != captions.end(); ++it)
            if (!keys.contains(it.key()))
                findings.extras << QStringLiteral("caption %1 in %2").arg(it.key(), language);
    }
    return languages;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 2 || !QFileInfo(args[1]).isDir()) {
        QTextStream(stderr) << "usage: lumo-theme-check DIR (a theme folder)\n";
        return 2;
    }
    const QDir theme(args[1]);
    Findings findings;
    const QMap<QString, QString> styles = readStyles(theme, findings);
    checkImages(theme, styles, findings);
    const int rules = checkStyles(styles, findings);
    const QStringList languages = checkCaptions(theme, findings);
    const lumo::ThemeCatalogue &catalogue = lumo::themeCatalogue();
    findings.gaps.removeDuplicates(); // one missing file named by several stylesheets

    out << "Theme " << QDir::toNativeSeparators(theme.absolutePath()) << '\n'
        << "  asked for: " << catalogue.images.size() << " images, " << catalogue.styleKeys.size() << " style keys, "
        << catalogue.captionKeys.size() << " caption keys in each of " << languages.size() << " languages ("
        << languages.join(QLatin1String(", ")) << ")\n"
        << "  contrast: " << rules << " text/background pairs checked (at least " << MinContrast << ":1)\n";
    out << "Gaps: " << findings.gaps.size() << '\n';
    for (const QString &gap : std::as_const(findings.gaps))
        out << "  " << gap << '\n';
    out << "Not asked for by the library: " << findings.extras.size() << '\n';
    for (const QString &extra : std::as_const(findings.extras))
        out << "  " << extra << '\n';
    out << (findings.gaps.isEmpty() ? "PASS\n" : "FAIL\n");
    return findings.gaps.isEmpty() ? 0 : 1;
}

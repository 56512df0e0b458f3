#include "palette.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

namespace
{
QMap<QString, QString> colorMap(const QJsonObject &object)
{
    QMap<QString, QString> map;
    for (auto it = object.begin(); it != object.end(); ++it)
        map.insert(it.key().toUpper(), it.value().toString());
    return map;
}

// Property names end where a value starts; values end at ";" or "}".
const QRegularExpression &declarationPattern()
{
    static const QRegularExpression declaration(QStringLiteral("([A-Za-z-]+)\\s*:([^;{}]*)"));
    return declaration;
}
}

Palette Palette::load(const QString &path)
{
    Palette palette;
    QFile file(path);
    if (file.size() > 1024 * 1024 || !file.open(QIODevice::ReadOnly))
        return palette;
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    palette.fill = colorMap(root.value(QLatin1String("fill")).toObject());
    palette.text = colorMap(root.value(QLatin1String("text")).toObject());
    palette.svg = colorMap(root.value(QLatin1String("svg")).toObject());
    for (const QJsonValue &key : root.value(QLatin1String("keep")).toArray())
        palette.keep << key.toString();
    for (const QJsonValue &scope : root.value(QLatin1String("unmapped_inside")).toArray())
        palette.unmappedInside << scope.toString();
    palette.vars = root.value(QLatin1String("vars")).toObject();
    palette.images = root.value(QLatin1String("images")).toObject();
    return palette;
}

bool Palette::isEmpty() const
{
    return fill.isEmpty() && text.isEmpty() && svg.isEmpty() && vars.isEmpty() && images.isEmpty();
}

QString Palette::mapColors(const QString &text, const QMap<QString, QString> &map)
{
    static const QRegularExpression hex(QStringLiteral("#(?:[0-9a-fA-F]{8}|[0-9a-fA-F]{6})\\b"));
    QString result;
    qsizetype last = 0;
    for (auto it = hex.globalMatch(text); it.hasNext();) {
        const auto m = it.next();
        result += QStringView(text).mid(last, m.capturedStart() - last);
        result += map.value(m.captured().toUpper(), m.captured());
        last = m.capturedEnd();
    }
    result += QStringView(text).mid(last);
    return result;
}

QString Palette::recolor(const QString &color, bool isText) const
{
    return mapColors(color, isText ? text : fill);
}

QString Palette::recolorSheet(const QString &sheet) const
{
    QString result;
    qsizetype last = 0;
    for (auto it = declarationPattern().globalMatch(sheet); it.hasNext();) {
        const auto m = it.next();
        const QString property = m.captured(1).toLower();
        const bool isText = property == QLatin1String("color") || property == QLatin1String("selection-color");
        result += QStringView(sheet).mid(last, m.capturedStart(2) - last);
        result += mapColors(m.captured(2), isText ? text : fill);
        last = m.capturedEnd(2);
    }
    result += QStringView(sheet).mid(last);
    return result;
}

QString Palette::recolorStyles(const QString &styles) const
{
    QStringList result;
    QString section; // the current section's source text, when it is recoloured
    bool inSection = false, kept = false;
    const auto endSection = [&] {
        if (const QString rules = inSection && !kept ? unmappedRules(section) : QString(); !rules.isEmpty())
            result << rules;
        section.clear();
    };
    for (const QString &line : styles.split(QLatin1Char('\n'))) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(QLatin1String("==")) && trimmed.endsWith(QLatin1String("=="))) {
            endSection();
            inSection = true;
            kept = keep.contains(QString(trimmed).remove(QLatin1Char('=')).remove(QLatin1Char(' ')));
            result << line;
            continue;
        }
        section += line + QLatin1Char('\n');
        result << (kept ? line : recolorSheet(line));
    }
    endSection();
    return result.join(QLatin1Char('\n'));
}

// A copy of each rule scoped to the unmapped ancestors, holding the rule's colours and images as the
// source theme has them. The scoped selector is more specific than the plain one, so it wins inside
// those ancestors whatever the order, and keeps the source theme's order among the copies.
QString Palette::unmappedRules(const QString &section) const
{
    if (unmappedInside.isEmpty())
        return QString();
    static const QRegularExpression comment(QStringLiteral("/\\*.*?\\*/"), QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression image(QStringLiteral("(TMPIMG_LOC/tmp_[^/)\"'\\s]+)\\.png"));
    const QString text = QString(section).remove(comment);
    QString rules;
    forEachStyleRule(text, [&](const QString &selectorText, const QString &body) {
        QStringList declarations;
        // Text before a declaration (an argument placeholder) stays with the plain rule.
        for (auto it = declarationPattern().globalMatch(body); it.hasNext();) {
            const auto m = it.next();
            const QString property = m.captured(1).toLower(), value = m.captured(2);
            // Colours, and the backgrounds that decide which colours show (even a transparent one).
            if (value.contains(QLatin1Char('#')) || value.contains(QLatin1String("TMPIMG_LOC/")) || property == QLatin1String("color") ||
                property.startsWith(QLatin1String("background")))
                declarations << property + QLatin1String(": ") +
                        QString(value).replace(image, unmappedName(QStringLiteral("\\1")) + QLatin1String(".png")).simplified();
        }
        QStringList selectors;
        for (const QString &selector : selectorText.split(QLatin1Char(','), Qt::SkipEmptyParts))
            for (const QString &scope : unmappedInside)
                selectors << scope + QLatin1Char(' ') + selector.simplified();
        if (!declarations.isEmpty() && !selectors.isEmpty())
            rules += selectors.join(QLatin1String(", ")) + QLatin1String(" { ") + declarations.join(QLatin1String("; ")) +
                QLatin1String("; }\n");
    });
    return rules;
}

QString Palette::recolorSvg(const QString &source) const
{
    return mapColors(source, svg);
}

QJsonObject Palette::imageVars(const QString &name, QJsonObject imageVars) const
{
    for (auto it = imageVars.begin(); it != imageVars.end(); ++it)
        it.value() = recolorSvg(it.value().toString());
    for (auto it = vars.begin(); it != vars.end(); ++it)
        if (imageVars.contains(it.key()))
            imageVars.insert(it.key(), it.value());
    const QJsonObject own = images.value(name).toObject();
    for (auto it = own.begin(); it != own.end(); ++it)
        imageVars.insert(it.key(), it.value());
    return imageVars;
}

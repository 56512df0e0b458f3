#ifndef LUMO_PALETTE_H
#define LUMO_PALETTE_H

// A colour map from one theme to another, read from a JSON file:
//   "fill":  colours of backgrounds, borders and everything else in style text
//   "text":  colours of "color" and "selection-color" values (white text on an
//            accent stays white while a white surface turns dark)
//   "keep":  style sections left as they are
//   "svg":   colours in image sources and their variables
//   "vars":  image source variables set for every image that has them
//   "images": per image name, variables set last, after every other mapping
//   "unmapped_inside": widget classes (white panels in every theme) whose descendants
//            keep the source theme's colours: each style rule gets a copy scoped to
//            them, and each temporary image an unmapped copy named by unmappedName()
// Colours are "#RRGGBB" (or "#AARRGGBB") and match without regard to case.

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

// Calls fn(selectors, body) for every "selectors { body }" of style text, in order. A plain
// scan rather than a pattern: hostile text without braces stays linear.
template<typename Fn> void forEachStyleRule(const QString &text, Fn fn)
{
    for (qsizetype start = 0;;) {
        const qsizetype open = text.indexOf(QLatin1Char('{'), start);
        const qsizetype close = open < 0 ? -1 : text.indexOf(QLatin1Char('}'), open);
        if (close < 0)
            return;
        fn(text.mid(start, open - start), text.mid(open + 1, close - open - 1));
        start = close + 1;
    }
}

class Palette
{
public:
    /** Reads @p path; a missing or malformed file gives an empty map that changes nothing. */
    static Palette load(const QString &path);

    bool isEmpty() const;
    /** Style text with section headers: each declaration's colours through the text or fill map. */
    QString recolorStyles(const QString &text) const;
    /** One style sheet without sections, as an application writes it in code. */
    QString recolorSheet(const QString &sheet) const;
    /** A colour through the fill map (or the text map when @p text). */
    QString recolor(const QString &color, bool text = false) const;
    QString recolorSvg(const QString &svg) const;
    /** The variables of the image @p name after the svg map and the overrides. */
    QJsonObject imageVars(const QString &name, QJsonObject vars) const;
    /** Whether some widgets keep the source theme's look, and so need unmapped image copies. */
    bool hasUnmappedScopes() const { return !unmappedInside.isEmpty(); }
    static QString unmappedName(const QString &image) { return image + QLatin1String("_unmapped"); }

private:
    static QString mapColors(const QString &text, const QMap<QString, QString> &map);
    QString unmappedRules(const QString &section) const;

    QMap<QString, QString> fill, text, svg;
    QStringList keep, unmappedInside;
    QJsonObject vars, images;
};

#endif

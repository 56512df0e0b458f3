#include "resources/registries_p.h"

#include <QFile>
#include <QGuiApplication>
#include <QScreen>

#include <vector>

namespace
{
// Style files are hand-written text; anything this large is not one.
constexpr qint64 MaxStyleFileBytes = 16 * 1024 * 1024;

bool isAsciiDigit(QChar c)
{
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

// Finds matches of "(\d+\.?\d*)(px)" in linear time. The expression itself
// backtracks quadratically over long digit runs, and the scaling loop below
// revisits the tail of every long number.
class PxLengthScanner
{
public:
    explicit PxLengthScanner(const QString &text)
        : text(text)
        , digitRunEnd(size_t(text.size()) + 1)
        , nonZeroFrom(size_t(text.size()) + 1)
    {
        const qsizetype n = text.size();
        digitRunEnd[size_t(n)] = n;
        nonZeroFrom[size_t(n)] = n;
        for (qsizetype i = n - 1; i >= 0; --i) {
            const bool digit = isAsciiDigit(text[i]);
            digitRunEnd[size_t(i)] = digit ? (i + 1 < n && isAsciiDigit(text[i + 1]) ? digitRunEnd[size_t(i + 1)] : i + 1) : i;
            nonZeroFrom[size_t(i)] = text[i] != u'0' ? i : nonZeroFrom[size_t(i + 1)];
        }
    }

    struct Match {
        qsizetype start = -1;
        qsizetype numberEnd = -1; // the match ends two characters later, after "px"
    };

    Match find(qsizetype from) const
    {
        const qsizetype n = text.size();
        qsizetype s = from;
        while (s < n) {
            if (!isAsciiDigit(text[s])) {
                ++s;
                continue;
            }
            const Match m = matchAt(s);
            if (m.start >= 0)
                return m;
            // Every start inside the same digit run fails the same way.
            s = digitRunEnd[size_t(s)];
        }
        return Match();
    }

    // The captured number as a double. Only its leading significant digits matter
    // to the truncated result, so a huge capture costs no more than a short one.
    double value(const Match &m) const
    {
        const qsizetype intEnd = digitRunEnd[size_t(m.start)];
        const qsizetype significant = qMin(nonZeroFrom[size_t(m.start)], intEnd);
        if (intEnd - significant > 24)
            return 1e300;
        QString number = text.mid(significant, intEnd - significant);
        if (number.isEmpty())
            number = QStringLiteral("0");
        if (intEnd < m.numberEnd)
            number += QLatin1Char('.') + text.mid(intEnd + 1, qMin<qsizetype>(m.numberEnd - intEnd - 1, 24));
        return number.toDouble();
    }

private:
    bool pxAt(qsizetype i) const { return i + 1 < text.size() && text[i] == u'p' && text[i + 1] == u'x'; }

    Match matchAt(qsizetype s) const
    {
        const qsizetype a = digitRunEnd[size_t(s)];
        if (a < text.size() && text[a] == u'.') {
            const qsizetype c = digitRunEnd[size_t(a + 1)];
            if (pxAt(c))
                return {s, c};
        }
        if (pxAt(a))
            return {s, a};
        return Match();
    }

    const QString &text;
    std::vector<qsizetype> digitRunEnd; // for a digit: the end of its run; otherwise the index itself
    std::vector<qsizetype> nonZeroFrom; // the first index at or after i that is not '0'
};
}

namespace lumo
{
// "/\*.*\*/" with inverted greediness, the dot not crossing line ends: a comment
// closes at the first "*/" on its own line, or is left alone.
QString removeBlockComments(const QString &text)
{
    QString out;
    out.reserve(text.size());
    const qsizetype n = text.size();
    qsizetype copyFrom = 0;
    qsizetype i = 0;
    // The end of the line holding i, found once per line: looking it up again at
    // every opener made a line of many short comments quadratic.
    qsizetype lineEnd = -1;
    while (i + 1 < n) {
        if (text[i] != u'/' || text[i + 1] != u'*') {
            ++i;
            continue;
        }
        if (lineEnd < i) {
            lineEnd = text.indexOf(QLatin1Char('\n'), i + 2);
            if (lineEnd < 0)
                lineEnd = n;
        }
        const qsizetype close = QStringView(text).mid(i + 2, lineEnd - i - 2).indexOf(u"*/");
        if (close < 0) {
            // No later opener on this line can close either.
            i = lineEnd;
            continue;
        }
        out += QStringView(text).mid(copyFrom, i - copyFrom);
        i = i + 2 + close + 2;
        copyFrom = i;
    }
    out += QStringView(text).mid(copyFrom);
    return out;
}

// What QString::replace gives, built in one pass: Qt's own replacement moves
// the rest of the text once per thousand matches, quadratic on a file of them.
QString replacePlaceholder(const QString &text, QStringView placeholder, const QString &value)
{
    qsizetype matches = 0;
    for (qsizetype at = text.indexOf(placeholder); at >= 0; at = text.indexOf(placeholder, at + placeholder.size()))
        ++matches;
    QString out;
    out.reserve(text.size() + matches * (value.size() - placeholder.size()));
    qsizetype copyFrom = 0;
    for (qsizetype at = text.indexOf(placeholder); at >= 0; at = text.indexOf(placeholder, copyFrom)) {
        out += QStringView(text).mid(copyFrom, at - copyFrom);
        out += value;
        copyFrom = at + placeholder.size();
    }
    out += QStringView(text).mid(copyFrom);
    return out;
}

// "//.*\n" with inverted greediness: from "//" through the next line end.
QString removeLineComments(const QString &text)
{
    QString out;
    out.reserve(text.size());
    qsizetype copyFrom = 0;
    qsizetype i = 0;
    for (;;) {
        const qsizetype open = text.indexOf(u"//", i);
        if (open < 0)
            break;
        const qsizetype lineEnd = text.indexOf(QLatin1Char('\n'), open + 2);
        if (lineEnd < 0)
            break;
        out += QStringView(text).mid(copyFrom, open - copyFrom);
        i = copyFrom = lineEnd + 1;
    }
    out += QStringView(text).mid(copyFrom);
    return out;
}

QString scalePxLengths(const QString &sheet, double factor)
{
    const PxLengthScanner scanner(sheet);

    // The text between successive non-overlapping matches, as a split would give it.
    std::vector<QStringView> parts;
    qsizetype from = 0;
    for (auto m = scanner.find(0); m.start >= 0; m = scanner.find(m.numberEnd + 2)) {
        parts.push_back(QStringView(sheet).mid(from, m.start - from));
        from = m.numberEnd + 2;
    }
    parts.push_back(QStringView(sheet).mid(from));

    QString result;
    result.reserve(sheet.size() + sheet.size() / 4);
    size_t i = 0;
    // Resuming three characters past a match start (not at its end) matches the
    // tail of a longer number again; the split parts are consumed one per match
    // all the same. Style sheets rely on this exact output.
    for (auto m = scanner.find(0); m.start >= 0; m = scanner.find(m.start + 3)) {
        if (i < parts.size())
            result += parts[i];
        result += QString::number(truncated(scanner.value(m) * factor)) + QStringLiteral("px");
        ++i;
    }
    if (i < parts.size())
        result += parts[i];
    return result;
}
}

StyleManager::StyleManager() = default;
StyleManager::~StyleManager() = default;

StyleManager *StyleManager::getInstance()
{
    static StyleManager instance;
    return &instance;
}

void StyleManager::initialize(const std::vector<QString> &files)
{
    scaledSheets.clear();
    QString text;
    for (const QString &path : files) {
        QFile file(path);
        if (!file.exists()) {
            qCWarning(lumoLog) << "file" << path << "not exist";
            continue;
        }
        if (file.size() > MaxStyleFileBytes) {
            qCWarning(lumoLog) << "file" << path << "larger than" << MaxStyleFileBytes << "bytes";
            continue;
        }
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            qCWarning(lumoLog) << "file" << path << "not readable";
            continue;
        }
        text += QString::fromUtf8(file.readAll());
        text += QLatin1Char('\n');
    }

    text = lumo::replacePlaceholder(text, u"TMPIMG_LOC", ImageManager::getInstance()->getTempImageFolder());
    text = lumo::replacePlaceholder(text, u"IMG_LOC", ImageManager::getInstance()->getImageFolder());
    lumo::forEachStyleSection(text, [this](const QString &key, const QString &value) { styleSheets.insert(key, value); });
}

void lumo::forEachStyleSection(QString text, const std::function<void(const QString &, const QString &)> &store)
{
    text = removeLineComments(removeBlockComments(text));

    QString key;
    QString value;
    const QStringView all(text);
    qsizetype lineStart = 0;
    while (lineStart < all.size()) {
        qsizetype lineEnd = all.indexOf(u'\n', lineStart);
        if (lineEnd < 0)
            lineEnd = all.size();
        QStringView line = all.mid(lineStart, lineEnd - lineStart);
        if (line.endsWith(u'\r'))
            line.chop(1);
        lineStart = lineEnd + 1;

        if (line.startsWith(u"==") && line.endsWith(u"==")) {
            if (!key.isEmpty()) {
                store(key, value);
                key.clear();
                value.clear();
            }
            key = line.toString();
            key.remove(QLatin1Char('=')).remove(QLatin1Char(' '));
        } else {
            value += QLatin1Char('\n');
            value += line;
        }
    }
    if (!key.isEmpty())
        store(key, value);
}

QString StyleManager::getStyleSheet(const QString &key, bool raw)
{
    if (!raw) {
        const auto cached = scaledSheets.constFind(key);
        if (cached != scaledSheets.constEnd())
            return *cached;
    }
    const auto it = styleSheets.constFind(key);
    if (it == styleSheets.constEnd()) {
        qCWarning(lumoLog) << "Cannot find stylesheet" << key;
        return QString();
    }
    if (raw)
        return *it;
    return *scaledSheets.insert(key, DPIinfo::getInstance()->getScaledStyleSheet(*it));
}

QString getStyleSheet(const char *key, bool raw)
{
    return StyleManager::getInstance()->getStyleSheet(QString::fromUtf8(key), raw);
}

QString getStyleSheet(const QString &key, bool raw)
{
    return StyleManager::getInstance()->getStyleSheet(key, raw);
}

DPIinfo::DPIinfo()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen) {
        qCWarning(lumoLog) << "Cannot read the primary screen; scale factor 1 is used";
        return;
    }
    dpi = screen->logicalDotsPerInchX() / 72.0;
    dpr = screen->devicePixelRatio();
}

DPIinfo::~DPIinfo() = default;

DPIinfo *DPIinfo::getInstance()
{
    static DPIinfo instance;
    return &instance;
}

double DPIinfo::getDPI() const
{
    return dpi;
}

double DPIinfo::getDPR() const
{
    return dpr;
}

QString DPIinfo::getScaledStyleSheet(QString styleSheet)
{
    return lumo::scalePxLengths(styleSheet, dpi);
}

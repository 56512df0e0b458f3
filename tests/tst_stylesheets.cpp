// Style sheet sections, comment removal, placeholders and the px rewriting.

#include "resources/registries_p.h"
#include "testsupport.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace
{
// The expressions the scanners stand for, applied literally.
QString referenceComments(QString text)
{
    text.remove(QRegularExpression(u"/\\*.*\\*/"_s, QRegularExpression::InvertedGreedinessOption));
    return text.remove(QRegularExpression(u"//.*\\n"_s, QRegularExpression::InvertedGreedinessOption));
}

QString referenceScale(const QString &sheet, double factor)
{
    const QRegularExpression px(u"(\\d+\\.?\\d*)(px)"_s);
    const QStringList parts = sheet.split(px);
    QString result;
    qsizetype pos = 0, i = 0;
    for (QRegularExpressionMatch m = px.match(sheet); m.hasMatch(); m = px.match(sheet, pos), ++i) {
        // Saturated like the scaler, where a plain int conversion would be undefined.
        const double value = std::trunc(m.captured(1).toDouble() * factor);
        result += parts.value(i) + u"%1px"_s.arg(value >= 2147483647.0 ? 2147483647 : int(value));
        pos = m.capturedStart() + 3;
    }
    return result + parts.value(i);
}

QString randomText(QRandomGenerator &random, const QString &alphabet, int maxLength)
{
    QString text(int(random.bounded(maxLength + 1)), u' ');
    for (QChar &c : text)
        c = alphabet[int(random.bounded(int(alphabet.size())))];
    return text;
}
}

class TestStyleSheets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { testsupport::startWithDefaultTheme(dir); }
    void sectionsPlaceholdersAndComments()
    {
        load("QLabel { color: red; }\n"
             "== component.t_first ==\n"
             "a\n"
             "==component.t_second==\n"
             "b\n"
             "==\n"
             "carried\n"
             "== component . t_third ==\n"
             "c\n"
             "== component.t_twice ==\n"
             "old\n"
             "== component.t_twice ==\n"
             "a { image: url(TMPIMG_LOC/tmp_x.png); } b { image: url(IMG_LOC/x.png); }\n"
             "== component.t_comments ==\n"
             "one /* gone */ two /* and */ three\n"
             "four /* spans\n"
             "lines */ five\n"
             "six // joins\n"
             "seven url(http://example/x)\n"
             "eight\n");
        // Text before the first header joins the first section; a bare "==" stores nothing and
        // its lines are carried into the next section; a repeated header replaces the section.
        const std::pair<const char *, QString> sections[] = {
            {"component.t_first", u"\nQLabel { color: red; }\na"_s},
            {"component.t_second", u"\nb"_s},
            {"component.t_third", u"\ncarried\nc"_s},
            {"component.t_twice",
             u"\na { image: url(%1/tmp_x.png); } b { image: url(%2/x.png); }"_s.arg(ImageManager::getInstance()->getTempImageFolder(),
                                                                                    ImageManager::getInstance()->getImageFolder())},
            {"component.t_comments", u"\none  two  three\nfour /* spans\nlines */ five\nsix seven url(http:eight\n"_s},
        };
        for (const auto &[key, text] : sections)
            QCOMPARE(getStyleSheet(key, true), text);

        testsupport::LogCatcher log;
        QCOMPARE(getStyleSheet("component.t_missing", false), QString());
        QCOMPARE(getStyleSheet(static_cast<const char *>(nullptr), true), QString());
        QCOMPARE(log.warnings(), (QStringList {u"Cannot find stylesheet \"component.t_missing\""_s, u"Cannot find stylesheet \"\""_s}));
    }

    void missingAndBadFiles()
    {
        const QString missing = dir.filePath(u"absent.qss"_s), good = dir.filePath(u"good.qss"_s), empty = dir.filePath(u"empty.qss"_s),
                      binary = dir.filePath(u"binary.qss"_s), huge = dir.filePath(u"huge.qss"_s);
        QByteArray noise(64 * 1024, '\0');
        QRandomGenerator random(7);
        for (char &c : noise)
            c = char(random.bounded(256));
        QVERIFY(testsupport::writeFile(good, "== component.t_good ==\nx: 2px;\n"));
        QVERIFY(testsupport::writeFile(empty, QByteArray()));
        QVERIFY(testsupport::writeFile(binary, "== component.t_binary ==\n" + noise + '\n'));
        QVERIFY(testsupport::writeFile(huge, "== component.t_huge ==\n" + QByteArray(17 << 20, 'x')));

        testsupport::LogCatcher log;
        StyleManager::getInstance()->initialize({missing, empty, binary, huge, dir.path(), good});
        QCOMPARE(log.warnings(),
                 (QStringList {u"file \"%1\" not exist"_s.arg(missing), u"file \"%1\" larger than 16777216 bytes"_s.arg(huge),
                               u"file \"%1\" not readable"_s.arg(dir.path())}));
        QCOMPARE(getStyleSheet("component.t_good", false), u"\nx: %1px;\n"_s.arg(int(2 * testsupport::expectedScale())));
        QCOMPARE(getStyleSheet("component.t_huge", true), QString());
    }

    void scaling_data()
    {
        QTest::addColumn<double>("factor");
        QTest::addColumn<QString>("sheet");
        QTest::addColumn<QString>("scaled");
        QTest::newRow("2.0") << 2.0 << u"\nfont-size: 13px; margin: 0px;"_s << u"\nfont-size: 26px; margin: 0px;"_s;
        QTest::newRow("1.5 truncates") << 1.5 << u"a: 10px; b: 3px;"_s << u"a: 15px; b: 4px;"_s;
        QTest::newRow("fraction at 1.0") << 1.0 << u"a: 1.5px;"_s << u"a: 1px;"_s;
        // Resuming three characters after a match start matches a long number's tail again.
        QTest::newRow("four digits") << 1.0 << u"width: 1000px;"_s << u"width: 1000px;0px"_s;
        QTest::newRow("decimal tail") << 1.0 << u"margin: 12.5px;"_s << u"margin: 12px;5px"_s;
        QTest::newRow("parts run out") << 1.0 << u"a 1000px b 2px c"_s << u"a 1000px b 0px c2px"_s;
        QTest::newRow("seven digits") << 1.0 << u"1000000px"_s << u"1000000px0px0px"_s;
        QTest::newRow("no px") << 2.0 << u"color: #123456; 12 px; 5em"_s << u"color: #123456; 12 px; 5em"_s;
        QTest::newRow("saturates") << 2.0 << u"99999999999px"_s << u"2147483647px199999998px199998px198px"_s;
        QTest::newRow("empty") << 1.5 << QString() << QString();
    }

    void scaling()
    {
        QFETCH(double, factor);
        QFETCH(QString, sheet);
        QFETCH(QString, scaled);
        QCOMPARE(lumo::scalePxLengths(sheet, factor), scaled);
    }

    void scalerUsesTheScreenFactor()
    {
        const QString sheet = u"QLabel { font-size: 13px; padding: 3px 7.5px; }"_s;
        QCOMPARE(DPIinfo::getInstance()->getScaledStyleSheet(sheet), lumo::scalePxLengths(sheet, testsupport::expectedScale()));
        // The scaled text is kept per key: a new initialize() must replace it.
        for (int size : {13, 20}) {
            load("== component.t_scaled ==\nQLabel { font-size: " + QByteArray::number(size) + "px; }\n");
            QCOMPARE(getStyleSheet("component.t_scaled", false),
                     u"\nQLabel { font-size: %1px; }\n"_s.arg(int(size * testsupport::expectedScale())));
        }
    }

    void comments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("stripped");
        QTest::newRow("unclosed") << u"a /* b\nc"_s << u"a /* b\nc"_s;
        QTest::newRow("at line end") << u"a /* b */\nc"_s << u"a \nc"_s;
        QTest::newRow("nested openers") << u"a /* /* b */ c */ d"_s << u"a  c */ d"_s;
        QTest::newRow("closer alone") << u"a */ b /* c */"_s << u"a */ b "_s;
        QTest::newRow("opener shares its star") << u"/*/ a */"_s << QString();
        QTest::newRow("empty comments") << u"/**//**/a/**/"_s << u"a"_s;
        QTest::newRow("unclosed then closed line") << u"/* a\n/* b */c"_s << u"/* a\nc"_s;
        QTest::newRow("spans lines") << u"a /* b\nc */ d"_s << u"a /* b\nc */ d"_s;
        QTest::newRow("carriage return inside") << u"a /* b\r */ c"_s << u"a  c"_s;
        QTest::newRow("line comment inside") << u"a /* // */ b\nc"_s << u"a  b\nc"_s;
        QTest::newRow("block inside line comment") << u"a // /* x */\nb"_s << u"a b"_s;
        QTest::newRow("line comment at the end") << u"a // b"_s << u"a // b"_s;
    }

    // Every row is also checked against the expressions the scanners stand for.
    void comments()
    {
        QFETCH(QString, text);
        QFETCH(QString, stripped);
        QCOMPARE(lumo::removeLineComments(lumo::removeBlockComments(text)), stripped);
        QCOMPARE(referenceComments(text), stripped);
    }

    void scannersMatchTheirExpressions()
    {
        QRandomGenerator random(20261121);
        for (int i = 0; i < 4000; ++i) {
            const QString comments = randomText(random, u"//**/ a\n\r*"_s, 40);
            QCOMPARE(lumo::removeLineComments(lumo::removeBlockComments(comments)), referenceComments(comments));
            const QString places = randomText(random, u"TMPIMG_LOC"_s, 40), value = randomText(random, u"IMG_LOC/"_s, 12);
            QCOMPARE(lumo::replacePlaceholder(places, u"IMG_LOC", value), QString(places).replace(u"IMG_LOC"_s, value));
            const QString lengths = randomText(random, u"0123456789..pxpx ;a"_s, 40);
            const double factor = random.bounded(4.0);
            QCOMPARE(lumo::scalePxLengths(lengths, factor), referenceScale(lengths, factor));
        }
    }

    // Inputs on which the expressions themselves backtrack or rescan quadratically.
    void hostileTextStaysLinear()
    {
        QCOMPARE(lumo::removeBlockComments(u"/**/"_s.repeated(1 << 21) + u'a'), u"a"_s);
        for (const QString &kept : {u"/*a"_s.repeated(1 << 20), u"/*\n"_s.repeated(1 << 19) + u"*/"_s})
            QCOMPARE(lumo::removeBlockComments(kept), kept);
        const QString digits(1 << 21, u'1');
        QCOMPARE(lumo::scalePxLengths(digits, 2.0), digits);
        const QString longLength = QString(1 << 20, u'0') + u"1px"_s;
        const QString scaled = lumo::scalePxLengths(longLength, 1.0);
        QVERIFY(scaled.startsWith(u"1px"_s));
        QCOMPARE(scaled.count(u"px"_s), (longLength.size() - 3) / 3 + 1);
    }

private:
    void load(const QByteArray &text)
    {
        const QString path = dir.filePath(u"style%1.qss"_s.arg(++fileCounter));
        QVERIFY(testsupport::writeFile(path, text));
        StyleManager::getInstance()->initialize({path});
    }

    QTemporaryDir dir;
    int fileCounter = 0;
};

QTEST_MAIN(TestStyleSheets)
#include "tst_stylesheets.moc"

// Style sheet sections, comment removal, placeholders and the px rewriting.

#include "resources/registries_p.h"
#include "testsupport.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace
{
// The expressions the scanners stand for, applied literally.
QString referenceComments(QString text)
{
    text.remove(QRegularExpression(QStringLiteral("/\\*.*\\*/"), QRegularExpression::InvertedGreedinessOption));
    text.remove(QRegularExpression(QStringLiteral("//.*\\n"), QRegularExpression::InvertedGreedinessOption));
    return text;
}

QString referenceScale(const QString &sheet, double factor)
{
    const QRegularExpression px(QStringLiteral("(\\d+\\.?\\d*)(px)"));
    const QStringList parts = sheet.split(px);
    QString result;
    qsizetype pos = 0;
    qsizetype i = 0;
    for (QRegularExpressionMatch m = px.match(sheet, pos); m.hasMatch(); m = px.match(sheet, pos)) {
        result += parts.value(i);
        // Saturated like the scaler, where a plain int conversion would be undefined.
        const double value = std::trunc(m.captured(1).toDouble() * factor);
        result += QStringLiteral("%1px").arg(value >= 2147483647.0 ? 2147483647 : int(value));
        pos = m.capturedStart() + 3;
        ++i;
    }
    if (i < parts.size())
        result += parts[i];
    return result;
}

QString randomText(QRandomGenerator &random, const QString &alphabet, int maxLength)
{
    QString text;
    const int length = int(random.bounded(maxLength + 1));
    for (int i = 0; i < length; ++i)
        text += alphabet[int(random.bounded(int(alphabet.size())))];
    return text;
}
}

class TestStyleSheets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sections();
    void placeholdersAndComments();
    void missingAndBadFiles();
    void scaling_data();
    void scaling();
    void scalerUsesTheScreenFactor();
    void comments_data();
    void comments();
    void scannersMatchTheirExpressions();
    void hostileTextStaysLinear();

private:
    QString load(const QByteArray &text);
    QTemporaryDir dir;
    int fileCounter = 0;
};

void TestStyleSheets::initTestCase()
{
    testsupport::startWithDefaultTheme(dir);
}

QString TestStyleSheets::load(const QByteArray &text)
{
    const QString path = dir.filePath(QStringLiteral("style%1.qss").arg(++fileCounter));
    testsupport::writeFile(path, text);
    StyleManager::getInstance()->initialize({path});
    return path;
}

void TestStyleSheets::sections()
{
    load("QLabel { color: red; }\n"
         "== component.t_first ==\n"
         "a\n"
         "==component.t_second==\n"
         "b\n"
         "==\n"
         "carried\n"
         "== component.t_third ==\n"
         "c\n"
         "== component . t_spaced ==\n"
         "d\n"
         "== component.t_twice ==\n"
         "old\n"
         "== component.t_twice ==\n"
         "new\n");
    StyleManager *styles = StyleManager::getInstance();
    // Text before the first header joins the first section; a bare "==" stores nothing and
    // its lines are carried into the next section.
    QCOMPARE(styles->getStyleSheet(QStringLiteral("component.t_first"), true), QStringLiteral("\nQLabel { color: red; }\na"));
    QCOMPARE(styles->getStyleSheet(QStringLiteral("component.t_second"), true), QStringLiteral("\nb"));
    QCOMPARE(styles->getStyleSheet(QStringLiteral("component.t_third"), true), QStringLiteral("\ncarried\nc"));
    QCOMPARE(styles->getStyleSheet(QStringLiteral("component.t_spaced"), true), QStringLiteral("\nd"));
    QCOMPARE(styles->getStyleSheet(QStringLiteral("component.t_twice"), true), QStringLiteral("\nnew\n"));

    testsupport::LogCatcher log;
    QCOMPARE(getStyleSheet("component.t_missing", false), QString());
    QCOMPARE(getStyleSheet(static_cast<const char *>(nullptr), true), QString());
    QCOMPARE(
        log.warnings(),
        (QStringList {QStringLiteral("Cannot find stylesheet \"component.t_missing\""), QStringLiteral("Cannot find stylesheet \"\"")}));
}

void TestStyleSheets::placeholdersAndComments()
{
    load("== component.t_places ==\n"
         "a { image: url(TMPIMG_LOC/tmp_x.png); } b { image: url(IMG_LOC/x.png); }\n"
         "== component.t_comments ==\n"
         "one /* gone */ two /* and */ three\n"
         "four /* spans\n"
         "lines */ five\n"
         "six // joins\n"
         "seven url(http://example/x)\n"
         "eight\n");
    ImageManager *images = ImageManager::getInstance();
    QCOMPARE(getStyleSheet("component.t_places", true),
             QStringLiteral("\na { image: url(%1/tmp_x.png); } b { image: url(%2/x.png); }")
                 .arg(images->getTempImageFolder(), images->getImageFolder()));
    QCOMPARE(getStyleSheet("component.t_comments", true),
             QStringLiteral("\none  two  three\nfour /* spans\nlines */ five\nsix seven url(http:eight\n"));
}

void TestStyleSheets::missingAndBadFiles()
{
    const QString missing = dir.filePath(QStringLiteral("absent.qss"));
    const QString good = dir.filePath(QStringLiteral("good.qss"));
    const QString empty = dir.filePath(QStringLiteral("empty.qss"));
    const QString binary = dir.filePath(QStringLiteral("binary.qss"));
    const QString huge = dir.filePath(QStringLiteral("huge.qss"));
    QByteArray noise(64 * 1024, '\0');
    QRandomGenerator random(7);
    for (char &c : noise)
        c = char(random.bounded(256));
    noise.back() = '\n';
    QVERIFY(testsupport::writeFile(good, "== component.t_good ==\nx: 2px;\n"));
    QVERIFY(testsupport::writeFile(empty, QByteArray()));
    QVERIFY(testsupport::writeFile(binary, "== component.t_binary ==\n" + noise));
    QVERIFY(testsupport::writeFile(huge, "== component.t_huge ==\n" + QByteArray(17 * 1024 * 1024, 'x')));

    testsupport::LogCatcher log;
    StyleManager::getInstance()->initialize({missing, empty, binary, huge, dir.path(), good});
    QCOMPARE(log.warnings(),
             (QStringList {QStringLiteral("file \"%1\" not exist").arg(missing),
                           QStringLiteral("file \"%1\" larger than 16777216 bytes").arg(huge),
                           QStringLiteral("file \"%1\" not readable").arg(dir.path())}));
    QCOMPARE(getStyleSheet("component.t_good", false), QStringLiteral("\nx: %1px;\n").arg(int(2 * testsupport::expectedScale())));
    log.clear();
    QCOMPARE(getStyleSheet("component.t_huge", true), QString());
}

void TestStyleSheets::scaling_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("scaled");
    QTest::newRow("2.0") << 2.0 << QStringLiteral("\nfont-size: 13px; margin: 0px;") << QStringLiteral("\nfont-size: 26px; margin: 0px;");
    QTest::newRow("1.5 truncates") << 1.5 << QStringLiteral("a: 10px; b: 3px;") << QStringLiteral("a: 15px; b: 4px;");
    QTest::newRow("fraction at 1.0") << 1.0 << QStringLiteral("a: 1.5px;") << QStringLiteral("a: 1px;");
    // Resuming three characters after a match start matches a long number's tail again.
    QTest::newRow("four digits") << 1.0 << QStringLiteral("width: 1000px;") << QStringLiteral("width: 1000px;0px");
    QTest::newRow("decimal tail") << 1.0 << QStringLiteral("margin: 12.5px;") << QStringLiteral("margin: 12px;5px");
    QTest::newRow("parts run out") << 1.0 << QStringLiteral("a 1000px b 2px c") << QStringLiteral("a 1000px b 0px c2px");
    QTest::newRow("seven digits") << 1.0 << QStringLiteral("1000000px") << QStringLiteral("1000000px0px0px");
    QTest::newRow("no px") << 2.0 << QStringLiteral("color: #123456; 12 px; 5em") << QStringLiteral("color: #123456; 12 px; 5em");
    QTest::newRow("saturates") << 2.0 << QStringLiteral("99999999999px") << QStringLiteral("2147483647px199999998px199998px198px");
    QTest::newRow("empty") << 1.5 << QString() << QString();
}

void TestStyleSheets::scaling()
{
    QFETCH(double, factor);
    QFETCH(QString, sheet);
    QFETCH(QString, scaled);
    QCOMPARE(lumo::scalePxLengths(sheet, factor), scaled);
}

void TestStyleSheets::scalerUsesTheScreenFactor()
{
    const QString sheet = QStringLiteral("QLabel { font-size: 13px; padding: 3px 7.5px; }");
    QCOMPARE(DPIinfo::getInstance()->getScaledStyleSheet(sheet), lumo::scalePxLengths(sheet, testsupport::expectedScale()));
    load("== component.t_scaled ==\nQLabel { font-size: 13px; }\n");
    QCOMPARE(getStyleSheet("component.t_scaled", false),
             lumo::scalePxLengths(getStyleSheet("component.t_scaled", true), testsupport::expectedScale()));
    // The scaled text is kept per key: a new initialize() must replace it.
    load("== component.t_scaled ==\nQLabel { font-size: 20px; }\n");
    QCOMPARE(getStyleSheet("component.t_scaled", false),
             QStringLiteral("\nQLabel { font-size: %1px; }\n").arg(int(20 * testsupport::expectedScale())));
}

void TestStyleSheets::comments_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stripped");
    auto row = [](const char *name, const char *text, const char *stripped) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(stripped);
    };
    row("unclosed", "a /* b\nc", "a /* b\nc");
    row("at line end", "a /* b */\nc", "a \nc");
    row("nested openers", "a /* /* b */ c */ d", "a  c */ d");
    row("closer alone", "a */ b /* c */", "a */ b ");
    row("opener shares its star", "/*/ a */", "");
    row("empty comments", "/**//**/a/**/", "a");
    row("unclosed then closed line", "/* a\n/* b */c", "/* a\nc");
    row("spans lines", "a /* b\nc */ d", "a /* b\nc */ d");
    row("carriage return inside", "a /* b\r */ c", "a  c");
    row("line comment inside", "a /* // */ b\nc", "a  b\nc");
    row("block inside line comment", "a // /* x */\nb", "a b");
    row("line comment at the end", "a // b", "a // b");
}

// Every row is also checked against the expressions the scanners stand for.
void TestStyleSheets::comments()
{
    QFETCH(QString, text);
    QFETCH(QString, stripped);
    QCOMPARE(lumo::removeLineComments(lumo::removeBlockComments(text)), stripped);
    QCOMPARE(referenceComments(text), stripped);
}

void TestStyleSheets::scannersMatchTheirExpressions()
{
    QRandomGenerator random(20261121);
    for (int i = 0; i < 4000; ++i) {
        const QString comments = randomText(random, QStringLiteral("//**/ a\n\r*"), 40);
        QCOMPARE(lumo::removeLineComments(lumo::removeBlockComments(comments)), referenceComments(comments));
        const QString places = randomText(random, QStringLiteral("TMPIMG_LOC"), 40);
        const QString value = randomText(random, QStringLiteral("IMG_LOC/"), 12);
        QCOMPARE(lumo::replacePlaceholder(places, u"IMG_LOC", value), QString(places).replace(QStringLiteral("IMG_LOC"), value));
        const QString lengths = randomText(random, QStringLiteral("0123456789..pxpx ;a"), 40);
        const double factor = random.bounded(4.0);
        QCOMPARE(lumo::scalePxLengths(lengths, factor), referenceScale(lengths, factor));
    }
}

// Inputs on which the expressions themselves backtrack or rescan quadratically.
void TestStyleSheets::hostileTextStaysLinear()
{
    QCOMPARE(lumo::removeBlockComments(QString(QStringLiteral("/**/")).repeated(1 << 21) + QStringLiteral("a")), QStringLiteral("a"));
    const QString openers = QString(QStringLiteral("/*a")).repeated(1 << 20);
    QCOMPARE(lumo::removeBlockComments(openers), openers);
    const QString lineOpeners = QString(QStringLiteral("/*\n")).repeated(1 << 19) + QStringLiteral("*/");
    QCOMPARE(lumo::removeBlockComments(lineOpeners), lineOpeners);
    const QString digits = QString(1 << 21, QLatin1Char('1'));
    QCOMPARE(lumo::scalePxLengths(digits, 2.0), digits);
    const QString longLength = QString(1 << 20, QLatin1Char('0')) + QStringLiteral("1px");
    const QString scaled = lumo::scalePxLengths(longLength, 1.0);
    QVERIFY(scaled.startsWith(QStringLiteral("1px")));
    QCOMPARE(scaled.count(QStringLiteral("px")), (longLength.size() - 3) / 3 + 1);
}

QTEST_MAIN(TestStyleSheets)
#include "tst_stylesheets.moc"

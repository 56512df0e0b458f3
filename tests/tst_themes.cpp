// The theme catalogue against the names the sources request, and lumo-theme-check
// on the shipped themes and on broken copies of the default one.

#include "resources/registries_p.h"

#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class TestThemes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void catalogueMatchesTheSources();
    void shippedThemesPass_data();
    void shippedThemesPass();
    void brokenThemesFail_data();
    void brokenThemesFail();
};

namespace
{
QSet<QString> matches(const QString &text, const char *pattern)
{
    QSet<QString> found;
    for (auto it = QRegularExpression(QString::fromLatin1(pattern)).globalMatch(text); it.hasNext();)
        found.insert(it.next().captured(1));
    return found;
}

int runCheck(const QString &dir, QString *output)
{
    QProcess check;
    check.start(QStringLiteral(LUMO_THEME_CHECK), {dir});
    if (!check.waitForFinished(60000))
        return -1;
    *output = QString::fromUtf8(check.readAllStandardOutput());
    return check.exitStatus() == QProcess::NormalExit ? check.exitCode() : -1;
}

void editFile(const QString &path, const QString &from, const QString &to)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QString text = QString::fromUtf8(file.readAll());
    QVERIFY2(from.isEmpty() || text.contains(from), qPrintable(from));
    text = from.isEmpty() ? text + to : text.replace(from, to);
    QVERIFY(file.resize(0) && file.write(text.toUtf8()) > 0);
}
}

void TestThemes::catalogueMatchesTheSources()
{
    QString sources;
    for (QDirIterator it(QStringLiteral(LUMO_SOURCE_DIR "/src"), {QStringLiteral("*.cpp")}, QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();) {
        QFile file(it.next());
        if (!file.fileName().endsWith(QLatin1String("catalogue.cpp")) && file.open(QIODevice::ReadOnly))
            sources += QString::fromUtf8(file.readAll());
    }
    const lumo::ThemeCatalogue &catalogue = lumo::themeCatalogue();
    QCOMPARE(matches(sources, R"re("(component\.\w+)")re"), QSet<QString>(catalogue.styleKeys.begin(), catalogue.styleKeys.end()));
    QSet<QString> allStates, normal;
    for (const lumo::ThemeImage &image : catalogue.images)
        (image.allStates ? allStates : normal).insert(image.name);
    QCOMPARE(matches(sources, R"re(LumoIconButton\(QStringLiteral\("(\w+)")re"), allStates);
    const QSet<QString> requested =
        matches(sources, R"re((?:getGlobalImage|getImage)\((?:QStringLiteral\()?"(\w+)")re") + matches(sources, R"re(image = "(\w+)")re");
    for (const QString &name : requested)
        QVERIFY2(normal.contains(name) || allStates.contains(name), qPrintable(name));
    for (const QString &name : normal + allStates) // the type icons come from FileTypeMap's own table
        QVERIFY2(sources.contains(QLatin1Char('"') + name + QLatin1Char('"')) || lumo::fileTypeImages().contains(name), qPrintable(name));
    for (const QString &key : matches(sources, R"re(caption\("(\w+)")re"))
        QVERIFY2(catalogue.captionKeys.contains(key), qPrintable(key));
    for (const QString &key : catalogue.captionKeys)
        QVERIFY2(sources.contains(QLatin1Char('"') + key + QLatin1Char('"')), qPrintable(key));
}

void TestThemes::shippedThemesPass_data()
{
    QTest::addColumn<QString>("theme");
    QTest::newRow("default") << QStringLiteral("default");
    QTest::newRow("dark") << QStringLiteral("dark");
}

void TestThemes::shippedThemesPass()
{
    QFETCH(QString, theme);
    QString output;
    QCOMPARE(runCheck(QStringLiteral(LUMO_THEMES_DIR "/") + theme, &output), 0);
    QVERIFY2(output.contains(QLatin1String("Gaps: 0\n")) && output.endsWith(QLatin1String("PASS\n")), qPrintable(output));
}

void TestThemes::brokenThemesFail_data()
{
    QTest::addColumn<QString>("file"); // relative to the theme; removed when from and to are empty
    QTest::addColumn<QString>("from"); // text replaced; empty: "to" is appended
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("reported");
    QTest::newRow("missing image") << "images/bt_next.png"
                                   << ""
                                   << ""
                                   << "image file images/bt_next.png (bt_next) missing";
    QTest::newRow("missing hover state") << "images/bt_pagebar_back_hover.png"
                                         << ""
                                         << ""
                                         << "images/bt_pagebar_back_hover.png (bt_pagebar_back) missing";
    QTest::newRow("image not in manifest") << "images.json"
                                           << "\"folder\","
                                           << ""
                                           << "image folder not listed in images.json";
    QTest::newRow("temporary image not in manifest") << "images.json"
                                                     << "\"radio_on\","
                                                     << ""
                                                     << "image radio_on used by component.radio_button";
    QTest::newRow("malformed manifest") << "images.json"
                                        << "{"
                                        << "["
                                        << "images.json missing or not a JSON object";
    QTest::newRow("missing style key") << "styles/views.qss"
                                       << "== component.table =="
                                       << "== component.tables =="
                                       << "style key component.table missing";
    QTest::newRow("missing caption in one language") << "captions/deu.json"
                                                     << "\"today\""
                                                     << "\"heute\""
                                                     << "caption today missing in deu";
    QTest::newRow("unreadable captions") << "captions/chs.json"
                                         << "{"
                                         << ""
                                         << "captions/chs.json unreadable or not a JSON object";
    QTest::newRow("low contrast") << "styles/views.qss"
                                  << ""
                                  << "\n== component.label ==\nQLabel { color: #777777; background: #888888; }\n"
                                  << "contrast QLabel in component.label: #777777 on #888888 is 1.";
    QTest::newRow("low contrast on hover") << "styles/buttons.qss"
                                           << "#2B66DC"
                                           << "#9DB8F5"
                                           << "contrast QPushButton:hover in component.apply_button: #FFFFFF on #9DB8F5";
    QTest::newRow("translucent background") << "styles/views.qss"
                                            << ""
                                            << "\n== component.label ==\nQLabel { color: #FFFFFF; background: rgba(47, 111, 237, 40); }\n"
                                            << "contrast QLabel in component.label: #FFFFFF on rgba(47, 111, 237, 40)";
}

void TestThemes::brokenThemesFail()
{
    QFETCH(QString, file);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(QString, reported);
    QTemporaryDir copy;
    const QDir source(QStringLiteral(LUMO_THEMES_DIR "/default"));
    for (QDirIterator it(source.path(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString target = copy.filePath(source.relativeFilePath(it.next()));
        QVERIFY(QDir().mkpath(QFileInfo(target).path()) && QFile::copy(it.filePath(), target));
    }
    if (from.isEmpty() && to.isEmpty())
        QVERIFY(QFile::remove(copy.filePath(file)));
    else
        editFile(copy.filePath(file), from, to);
    QString output;
    QCOMPARE(runCheck(copy.path(), &output), 1);
    QVERIFY2(output.contains(QLatin1String("Gaps: 1\n")) && output.contains(reported), qPrintable(output));
}

QTEST_MAIN(TestThemes)
#include "tst_themes.moc"

// The theme catalogue against the names the sources request, and lumo-theme-check
// on the shipped themes and on broken copies of the default one; the dark theme's
// look inside the white sheets.

#include "gallery.h"
#include "resources/registries_p.h"

#include <lumo/lumo.h>

#include <QDirIterator>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class TestThemes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { gallery::startUp({QStringLiteral(LUMO_THEMES_DIR "/dark"), userData.path(), QStringLiteral("enu")}); }
    void catalogueMatchesTheSources();
    void checkTheme_data();
    void checkTheme();
    void darkThemeKeepsSheetsLight_data();
    void darkThemeKeepsSheetsLight();

private:
    QTemporaryDir userData;
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

void TestThemes::checkTheme_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("file"); // in a copy of the theme; removed when from and to are empty
    QTest::addColumn<QString>("from"); // replaced by to; when empty, to is appended
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("reported"); // empty: the theme passes
    QTest::newRow("default theme") << "default"
                                   << ""
                                   << ""
                                   << ""
                                   << "";
    QTest::newRow("dark theme") << "dark"
                                << ""
                                << ""
                                << ""
                                << "";
    QTest::newRow("missing image") << "default"
                                   << "images/bt_next.png"
                                   << ""
                                   << ""
                                   << "image file images/bt_next.png (bt_next) missing";
    QTest::newRow("missing hover state") << "default"
                                         << "images/bt_pagebar_back_hover.png"
                                         << ""
                                         << ""
                                         << "images/bt_pagebar_back_hover.png (bt_pagebar_back) missing";
    QTest::newRow("image not in manifest") << "default"
                                           << "images.json"
                                           << "\"folder\","
                                           << ""
                                           << "image folder not listed in images.json";
    QTest::newRow("temporary image not in manifest") << "default"
                                                     << "images.json"
                                                     << "\"radio_on\","
                                                     << ""
                                                     << "image radio_on used by component.radio_button";
    QTest::newRow("malformed manifest") << "default"
                                        << "images.json"
                                        << "{"
                                        << "["
                                        << "images.json missing or not a JSON object";
    QTest::newRow("missing style key") << "dark"
                                       << "styles/views.qss"
                                       << "== component.table =="
                                       << "== component.tables =="
                                       << "style key component.table missing";
    QTest::newRow("missing caption in one language") << "default"
                                                     << "captions/deu.json"
                                                     << "\"today\""
                                                     << "\"heute\""
                                                     << "caption today missing in deu";
    QTest::newRow("unreadable captions") << "default"
                                         << "captions/chs.json"
                                         << "{"
                                         << ""
                                         << "captions/chs.json unreadable or not a JSON object";
    QTest::newRow("low contrast") << "default"
                                  << "styles/views.qss"
                                  << ""
                                  << "\n== component.label ==\nQLabel { color: #777777; background: #888888; }\n"
                                  << "contrast QLabel in component.label: #777777 on #888888 is 1.";
    QTest::newRow("low contrast on hover") << "dark"
                                           << "styles/buttons.qss"
                                           << "\nQPushButton:hover { background-color: #2B66DC"
                                           << "\nQPushButton:hover { background-color: #9DB8F5"
                                           << "contrast QPushButton:hover in component.apply_button: #FFFFFF on #9DB8F5";
    QTest::newRow("low contrast inside a sheet")
        << "dark"
        << "styles/buttons.qss"
        << "LumoVerticalScrollArea QPushButton:hover { background-color: #2B66DC"
        << "LumoVerticalScrollArea QPushButton:hover { background-color: #9DB8F5"
        << "contrast LumoSheet QPushButton:hover, LumoVerticalScrollArea QPushButton:hover in component.apply_button: #FFFFFF";
    QTest::newRow("translucent background") << "default"
                                            << "styles/views.qss"
                                            << ""
                                            << "\n== component.label ==\nQLabel { color: #FFFFFF; background: rgba(47, 111, 237, 40); }\n"
                                            << "contrast QLabel in component.label: #FFFFFF on rgba(47, 111, 237, 40)";
}

void TestThemes::checkTheme()
{
    QFETCH(QString, theme);
    QFETCH(QString, file);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(QString, reported);
    QTemporaryDir copy;
    const QDir source(QStringLiteral(LUMO_THEMES_DIR "/") + theme);
    for (QDirIterator it(source.path(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString target = copy.filePath(source.relativeFilePath(it.next()));
        QVERIFY(QDir().mkpath(QFileInfo(target).path()) && QFile::copy(it.filePath(), target));
    }
    QFile edited(copy.filePath(file));
    if (!file.isEmpty() && from.isEmpty() && to.isEmpty()) {
        QVERIFY(edited.remove());
    } else if (!file.isEmpty()) {
        QVERIFY(edited.open(QIODevice::ReadWrite));
        QString text = QString::fromUtf8(edited.readAll());
        QVERIFY2(from.isEmpty() || text.contains(from), qPrintable(from));
        text = from.isEmpty() ? text + to : text.replace(from, to);
        QVERIFY(edited.resize(0) && edited.write(text.toUtf8()) > 0);
        edited.close();
    }
    QProcess check;
    check.start(QStringLiteral(LUMO_THEME_CHECK), {copy.path()});
    QVERIFY(check.waitForFinished(60000) && check.exitStatus() == QProcess::NormalExit);
    const QString output = QString::fromUtf8(check.readAllStandardOutput());
    QCOMPARE(check.exitCode(), reported.isEmpty() ? 0 : 1);
    QVERIFY2(output.contains(reported.isEmpty() ? QStringLiteral("Gaps: 0\n") : QStringLiteral("Gaps: 1\n")) && output.contains(reported),
             qPrintable(output));
}

void TestThemes::darkThemeKeepsSheetsLight_data()
{
    QTest::addColumn<QString>("styleKey");
    QTest::addColumn<QColor>("inside"); // the light theme's background
    QTest::addColumn<QColor>("outside"); // the dark theme's
    QTest::newRow("cancel button") << "component.cancel_button" << QColor(0xFF, 0xFF, 0xFF) << QColor(0x2B, 0x2D, 0x30);
    QTest::newRow("line edit") << "component.lineedit" << QColor(0xFF, 0xFF, 0xFF) << QColor(0x2B, 0x2D, 0x30);
}

void TestThemes::darkThemeKeepsSheetsLight()
{
    QFETCH(QString, styleKey);
    QFETCH(QColor, inside);
    QFETCH(QColor, outside);
    // The background is the colour most pixels of the widget show.
    const auto background = [](QWidget *widget) {
        const QImage image = widget->grab().toImage();
        QHash<QRgb, int> counts;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                ++counts[image.pixel(x, y)];
        return QColor(std::max_element(counts.begin(), counts.end()).key());
    };
    const auto widgetIn = [&](QWidget *parent) -> QWidget * {
        if (styleKey == QLatin1String("component.lineedit"))
            return parent->findChild<QLineEdit *>();
        return parent->findChildren<QPushButton *>().value(1);
    };
    QWidget window;
    window.resize(600, 400);
    auto *sheet = new LumoInputSheet(QStringLiteral("Name:"), &window);
    auto *plain = new QWidget(&window);
    new QLineEdit(plain);
    new QPushButton(plain);
    new QPushButton(plain);
    window.show();
    sheet->show();
    QWidget *own = widgetIn(sheet), *twin = widgetIn(plain);
    QVERIFY(own && twin && own->styleSheet() == getStyleSheet(styleKey, false));
    twin->setStyleSheet(own->styleSheet());
    twin->resize(own->size());
    QCOMPARE(background(own), inside);
    QCOMPARE(background(twin), outside);
}

QTEST_MAIN(TestThemes)
#include "tst_themes.moc"

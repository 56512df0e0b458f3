// The image manager, captions, paths, locale and file type registries.

#include "resources/registries_p.h"
#include "testsupport.h"

#include <QApplication>
#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{
// A theme folder of our own: images.json plus PNG files of given sizes.
struct Theme {
    QTemporaryDir resources, userData;
    Theme() { QDir(resources.path()).mkpath(u"images"_s); }

    // A pattern, translucent unless @p opaque: smooth scaling has something to mix.
    void addPng(const QString &name, int size, bool opaque = false)
    {
        QImage image(size, size, QImage::Format_ARGB32);
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x)
                image.setPixel(x, y, qRgba(x * 37 % 256, y * 53 % 256, x * y % 256, opaque ? 255 : (x + 2 * y) * 9 % 256));
        }
        QVERIFY(image.save(resources.filePath(u"images/"_s + name + u".png"_s)));
    }

    void writeManifest(const QByteArray &json) { QVERIFY(testsupport::writeFile(resources.filePath(u"images.json"_s), json)); }
    void writeManifest(const QStringList &images, const QStringList &temporary = {})
    {
        writeManifest(QJsonDocument(QJsonObject {{u"images"_s, QJsonArray::fromStringList(images)},
                                                 {u"tmp_images"_s, QJsonArray::fromStringList(temporary)}})
                          .toJson());
    }

    void initialize(ImageManager::InitializeType type, const QString &userDataPath = QString())
    {
        UIPathManager::getInstance()->setPath(u"resource_path"_s, resources.path());
        UIPathManager::getInstance()->setPath(u"user_data_path"_s, userDataPath.isEmpty() ? userData.path() : userDataPath);
        ImageManager::getInstance()->initialize(type);
    }
};

// What the registries do in a fresh process, chosen by LUMO_CHILD.
int childMain(int argc, char **argv)
{
    const QByteArray mode = qgetenv("LUMO_CHILD");
    if (mode == "images-before-initialize")
        ImageManager::getInstance()->getTempImageFolder();
    if (mode == "styles-before-images") {
        QGuiApplication app(argc, argv);
        StyleManager::getInstance()->initialize({});
    }
    if (mode == "language") {
        QCoreApplication app(argc, argv);
        std::printf("%s\n", qPrintable(LumoLocale::getInstance()->getDefaultLanguage()));
    }
    return 0;
}

// This program run again in a LUMO_CHILD mode: how it ended and what it printed.
std::pair<QProcess::ExitStatus, QString> runChild(const QString &mode, const QStringList &environment)
{
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"LUMO_CHILD"_s, mode);
    for (const QString &entry : environment)
        env.insert(entry.section(u'=', 0, 0), entry.section(u'=', 1));
    child.setProcessEnvironment(env);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(), {});
    child.waitForFinished(60000);
    return {child.exitStatus(), QString::fromLocal8Bit(child.readAll()).trimmed()};
}

}

class TestRegistries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Each dimension: a = round(d / 4), b = round(a * dpi), pixels = round(b * dpr), halves away from zero.
    void scalingRule_data()
    {
        QTest::addColumn<int>("source");
        QTest::addColumn<QList<int>>("pixels"); // registry pixmap width at scale 1.0, 1.5, 2.0
        QTest::addColumn<QList<int>>("temporary"); // temporary image width (no dpr step)
        QTest::addColumn<bool>("opaque");
        QTest::newRow("64") << 64 << QList<int> {16, 36, 64} << QList<int> {16, 24, 32} << false;
        QTest::newRow("6: a = round(1.5) = 2") << 6 << QList<int> {2, 5, 8} << QList<int> {2, 3, 4} << false;
        QTest::newRow("10: a = round(2.5) = 3") << 10 << QList<int> {3, 8, 12} << QList<int> {3, 5, 6} << false;
        QTest::newRow("14: a = round(3.5) = 4") << 14 << QList<int> {4, 9, 16} << QList<int> {4, 6, 8} << true;
        QTest::newRow("25") << 25 << QList<int> {6, 14, 24} << QList<int> {6, 9, 12} << false;
    }

    void scalingRule()
    {
        QFETCH(int, source);
        QFETCH(QList<int>, pixels);
        QFETCH(QList<int>, temporary);
        QFETCH(bool, opaque);
        const double scale = testsupport::expectedScale();
        QCOMPARE(DPIinfo::getInstance()->getDPI(), scale);
        const int scaleIndex = scale == 1.0 ? 0 : scale == 1.5 ? 1 : 2;

        Theme theme;
        const QString name = u"scaled%1"_s.arg(source);
        theme.addPng(name, source, opaque);
        theme.writeManifest({name}, {name});
        theme.initialize(ImageManager::LoadAll);

        // Pixels and file bytes exactly as the plain steps give them: a QPixmap of the file, scaled smoothly.
        const QPixmap plain(ImageManager::getInstance()->getImageFullPath(name));
        QImage expected = plain.scaled(pixels[scaleIndex], pixels[scaleIndex], Qt::KeepAspectRatio, Qt::SmoothTransformation).toImage();
        expected.setDevicePixelRatio(scale);
        QCOMPARE(getGlobalImage(name, ImageManager::Normal).toImage(), expected);
        QBuffer png;
        QVERIFY(png.open(QIODevice::WriteOnly));
        QVERIFY(
            plain.scaled(temporary[scaleIndex], temporary[scaleIndex], Qt::KeepAspectRatio, Qt::SmoothTransformation).save(&png, "PNG"));
        const QString writtenPath = ImageManager::getInstance()->getTempImageFullPath(name);
        QCOMPARE(testsupport::readFile(writtenPath), png.data());
    }

    void lookups()
    {
        Theme theme;
        theme.addPng(u"lazy"_s, 64);
        theme.addPng(u"lazy_click"_s, 32);
        QVERIFY(testsupport::writeFile(theme.resources.filePath(u"images/corrupt.png"_s), "\x89PNG\r\n\x1a\n garbage"));
        QVERIFY(QDir(theme.resources.path()).mkpath(u"images/folderpng.png"_s));
        theme.addPng(u"tiny"_s, 1);
        theme.writeManifest({u"lazy"_s, u"corrupt"_s, u"folderpng"_s, u"tiny"_s});
        theme.initialize(ImageManager::LoadLazily);

        // Nothing is decoded before the first request: a file replaced now is the one loaded.
        theme.addPng(u"lazy"_s, 128);
        testsupport::LogCatcher log;
        const QPixmap hover = getGlobalImage("lazy", ImageManager::Hover);
        const QPixmap normal = getGlobalImage("lazy", ImageManager::Normal);
        QCOMPARE(hover.cacheKey(), normal.cacheKey());
        QCOMPARE(normal.width(), getGlobalImage("lazy", ImageManager::Click).width() * 4);
        QCOMPARE(normal.deviceIndependentSize(), QSizeF(32, 32) * DPIinfo::getInstance()->getDPI());
        QVERIFY(getGlobalImage("corrupt", ImageManager::Normal).isNull());
        QVERIFY(getGlobalImage("folderpng", ImageManager::Disable).isNull());
        // A 1x1 source scales to nothing: a null pixmap, but a loaded state without a warning.
        QVERIFY(getGlobalImage("tiny", ImageManager::Normal).isNull());
        QVERIFY(getGlobalImage("folder_open_unknown", ImageManager::Normal).isNull());
        QVERIFY(getGlobalImage(static_cast<const char *>(nullptr), ImageManager::Normal).isNull());
        QCOMPARE(log.warnings(),
                 (QStringList {u"Cannot load pixmap \"lazy\" with type 1 [use default icon]"_s,
                               u"Cannot load pixmap \"corrupt\" with type 0 [use default icon]"_s,
                               u"Cannot load pixmap \"folderpng\" with type 3 [use default icon]"_s,
                               u"Cannot load pixmap \"folder_open_unknown\""_s, u"Cannot load pixmap \"\""_s}));

        // Neither loading all nor lazily: registered names stay null, without a warning.
        log.clear();
        theme.initialize(ImageManager::InitializeType(7));
        QVERIFY(getGlobalImage("lazy", ImageManager::Hover).isNull());
        QVERIFY(log.cannotWarnings().isEmpty());
    }

    void temporaryImagesAreWrittenInTheirFolderOnly()
    {
        Theme theme;
        theme.addPng(u"myicon"_s, 40);
        QTemporaryDir outside;
        theme.writeManifest({u"myicon"_s}, {u"my icon"_s, u"../escape"_s, u"sub/../../escape"_s});
        // A link planted where a temporary image goes is replaced, never written through.
        const QString folder = theme.userData.filePath(u"tmp_images"_s);
        const QString victim = outside.filePath(u"victim"_s);
        QVERIFY(testsupport::writeFile(victim, "keep"));
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(QFile::link(victim, folder + u"/tmp_myicon.png"_s));
        testsupport::LogCatcher log;
        theme.initialize(ImageManager::LoadAll);

        QCOMPARE(testsupport::readFile(victim), QByteArray("keep"));
        QVERIFY(!QFileInfo(folder + u"/tmp_myicon.png"_s).isSymLink());
        QVERIFY(!QImage(folder + u"/tmp_myicon.png"_s).isNull());
        QCOMPARE(ImageManager::getInstance()->getTempImageFolder(), folder);
        QCOMPARE(ImageManager::getInstance()->getImageFullPath(u"x"_s), theme.resources.filePath(u"images/x.png"_s));
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList {u"tmp_myicon.png"_s});
        QCOMPARE(QDir(theme.userData.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList {u"tmp_images"_s});
        QCOMPARE(log.cannotWarnings(),
                 (QStringList {u"Cannot write temporary image \"../escape\""_s, u"Cannot write temporary image \"sub/../../escape\""_s}));

        // A file where the user-data folder should be: the folder cannot be created, even by root, and images still load.
        const QString notAFolder = theme.userData.filePath(u"file"_s);
        QVERIFY(testsupport::writeFile(notAFolder, "x"));
        theme.initialize(ImageManager::LoadAll, notAFolder);
        QVERIFY(QFileInfo(notAFolder).isFile());
        QVERIFY(!getGlobalImage("myicon", ImageManager::Normal).isNull());
    }

    void badManifests_data()
    {
        QTest::addColumn<QByteArray>("manifest");
        QTest::addColumn<bool>("registered"); // whether "bad0" is registered
        QTest::addColumn<QString>("warning");
        QTest::newRow("not JSON") << QByteArray("{\"images\": [\"bad0\", ") << false << QString();
        QTest::newRow("empty") << QByteArray() << false << QString();
        QTest::newRow("array at top") << QByteArray("[\"bad0\"]") << false << QString();
        QTest::newRow("images not an array") << QByteArray("{\"images\": \"bad0\", \"tmp_images\": 5}") << false << QString();
        QTest::newRow("non-string elements") << QByteArray("{\"images\": [\"bad0\", 7, null, {}, [\"bad1\"]], \"tmp_images\": [1, true]}")
                                             << true << QString();
        QTest::newRow("binary") << (QByteArray("\x00\xff\xfe", 3) + "{\"images\":[\"bad0\"]}") << false << QString();
        QTest::newRow("over the size cap") << ("{\"images\": [\"bad0\"], \"x\": \"" + QByteArray(17 << 20, 'a') + "\"}") << false
                                           << u"Cannot read image manifest \"MANIFEST\" larger than 16777216 bytes"_s;
    }

    void badManifests()
    {
        QFETCH(QByteArray, manifest);
        QFETCH(bool, registered);
        QFETCH(QString, warning);
        Theme theme;
        // Entries from earlier rows stay registered; a fresh name per row tells what this manifest added.
        const QString name = QString::fromLatin1(QTest::currentDataTag()) + u'0';
        theme.writeManifest(manifest.replace("bad0", name.toUtf8()));
        theme.addPng(name, 64);
        testsupport::LogCatcher log;
        theme.initialize(ImageManager::LoadAll);
        QCOMPARE(log.cannotWarnings().join(u'\n'), warning.replace(u"MANIFEST"_s, theme.resources.filePath(u"images.json"_s)));
        log.clear();
        QCOMPARE(!getGlobalImage(name, ImageManager::Normal).isNull(), registered);
        QCOMPARE(log.warnings().isEmpty(), registered);
    }

    void abortBeforeInitialization_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::newRow("image folders") << u"images-before-initialize"_s;
        QTest::newRow("style manager first") << u"styles-before-images"_s;
    }

    void abortBeforeInitialization()
    {
        QFETCH(QString, mode);
        const auto [status, output] = runChild(mode, {u"ASAN_OPTIONS=handle_abort=0"_s});
        QCOMPARE(status, QProcess::CrashExit);
        QVERIFY2(output.contains(u"ImageManager is not initialized"_s), qPrintable(output));
    }

    void stringsAndPaths()
    {
        ComponentStrings *strings = ComponentStrings::getInstance();
        strings->installStrings({{u"ok"_s, u"Okay"_s}, {u"cancel"_s, u"Stop"_s}});
        testsupport::LogCatcher log;
        QCOMPARE(strings->getString(u"ok"_s), u"Okay"_s);
        QCOMPARE(strings->getString(u"OK"_s), u"OK"_s);
        QCOMPARE(strings->getString(u"OK"_s), u"OK"_s);
        // A new table replaces the old one whole.
        strings->installStrings({{u"reset"_s, u"Again"_s}});
        QCOMPARE(strings->getString(u"reset"_s), u"Again"_s);
        QCOMPARE(log.warnings(), QStringList(2, u"Cannot find key in ComponentStrings \"OK\""_s));
        log.clear();
        QCOMPARE(strings->getString(u"ok"_s), u"ok"_s);

        UIPathManager *paths = UIPathManager::getInstance();
        paths->setPath(u"test_key"_s, u"/first"_s);
        paths->setPath(u"test_key"_s, u"/second"_s);
        QCOMPARE(paths->getPath(u"test_key"_s), u"/second"_s);
        QCOMPARE(paths->getPath(u"Test_key"_s), QString());
        QCOMPARE(log.warnings(),
                 (QStringList {u"Cannot find key in ComponentStrings \"ok\""_s,
                               u"Existing path is \"/second\" with key \"test_key\" but overwrite it now"_s,
                               u"Cannot find path by key \"Test_key\""_s}));
    }

    void languageByLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("systemLocale"); // when set, also the language of a process started in it
        // The product's own codes where they are not the two letters plus one.
        for (const auto &[locale, language] : {std::pair {"ja_jp", "jpn"},
                                               {"ko_kr", "krn"},
                                               {"es_es", "esn"},
                                               {"nb_no", "nor"},
                                               {"nn_no", "nor"},
                                               {"sv_se", "sve"},
                                               {"pl_pl", "plk"},
                                               {"tr_tr", "trk"},
                                               {"cs_cz", "csy"}})
            QTest::newRow(locale) << QString::fromLatin1(locale) << QString::fromLatin1(language) << QString();
        QTest::newRow("de_de") << u"de_de"_s << u"deu"_s << u"de_DE.UTF-8"_s;
        QTest::newRow("no underscore") << u"en"_s << u"enu"_s << QString();
        QTest::newRow("unknown") << u"xx_yy"_s << u"enu"_s << u"C"_s;
        QTest::newRow("empty") << QString() << u"enu"_s << QString();
        QTest::newRow("upper case is not lowered") << u"DE_DE"_s << u"enu"_s << QString();
        QTest::newRow("pt_br") << u"pt_br"_s << u"ptb"_s << u"pt_BR.UTF-8"_s;
        QTest::newRow("pt_pt") << u"pt_pt"_s << u"ptg"_s << QString();
        QTest::newRow("pt") << u"pt"_s << u"ptg"_s << QString();
        QTest::newRow("pt_ao") << u"pt_ao"_s << u"ptb"_s << QString();
        QTest::newRow("PT_PT") << u"PT_PT"_s << u"enu"_s << QString();
        // Without the macOS "AppleLanguages" default Chinese is traditional, whatever the region.
        QTest::newRow("zh_cn") << u"zh_cn"_s << u"cht"_s << QString();
        QTest::newRow("zh") << u"zh"_s << u"cht"_s << QString();
    }

    void languageByLocale()
    {
        QFETCH(QString, locale);
        QFETCH(QString, language);
        QFETCH(QString, systemLocale);
        QCOMPARE(LumoLocale::getInstance()->getLanguageByLocale(locale), language);
        if (!systemLocale.isEmpty())
            QCOMPARE(runChild(u"language"_s, {u"LC_ALL="_s + systemLocale, u"LANG="_s + systemLocale}),
                     std::pair(QProcess::NormalExit, language));
    }

    void fileTypes_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("removed");
        QTest::addColumn<QString>("icon");
        QTest::newRow("mp3") << u"mp3"_s << false << u"audio.png"_s;
        QTest::newRow("MP3") << u"MP3"_s << false << u"audio.png"_s;
        QTest::newRow("ac3 ends as video") << u"ac3"_s << false << u"video.png"_s;
        QTest::newRow("jpeg removed") << u"jpeg"_s << true << u"image_removed.png"_s;
        QTest::newRow("empty") << QString() << false << u"xxx.png"_s;
        QTest::newRow("unknown removed") << u"qqq"_s << true << u"xxx_removed.png"_s;
        QTest::newRow("dotted") << u".mp3"_s << false << u"xxx.png"_s;
        QTest::newRow("dvr-ms") << u"DVR-MS"_s << false << u"video.png"_s;
        QTest::newRow("blank inside") << u"mp3 wav"_s << false << u"xxx.png"_s;
    }

    void fileTypes()
    {
        QFETCH(QString, extension);
        QFETCH(bool, removed);
        QFETCH(QString, icon);
        QCOMPARE(FileTypeMap::getInstance()->getFiletypeMapping(extension, removed), icon);
    }
};

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("LUMO_CHILD"))
        return childMain(argc, argv);
    QApplication app(argc, argv);
    TestRegistries test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_registries.moc"

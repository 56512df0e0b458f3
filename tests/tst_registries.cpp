// The image manager, captions, paths, locale and file type registries.

#include "resources/registries_p.h"
#include "testsupport.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
// A theme folder of our own: images.json plus PNG files of given sizes.
struct Theme {
    QTemporaryDir resources;
    QTemporaryDir userData;

    // A pattern, translucent unless @p opaque: smooth scaling has something to mix.
    void addPng(const QString &fileName, QSize size, bool opaque = false)
    {
        QImage image(size, QImage::Format_ARGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, qRgba(x * 37 % 256, y * 53 % 256, x * y % 256, opaque ? 255 : (x + 2 * y) * 9 % 256));
        }
        QVERIFY(image.save(resources.filePath(QStringLiteral("images/") + fileName + QStringLiteral(".png"))));
    }
    void writeManifest(const QByteArray &json) { QVERIFY(testsupport::writeFile(resources.filePath(QStringLiteral("images.json")), json)); }
    void writeManifest(const QStringList &images, const QStringList &temporary = {})
    {
        writeManifest(QJsonDocument(QJsonObject {{QStringLiteral("images"), QJsonArray::fromStringList(images)},
                                                 {QStringLiteral("tmp_images"), QJsonArray::fromStringList(temporary)}})
                          .toJson());
    }
    Theme() { QDir(resources.path()).mkpath(QStringLiteral("images")); }
    void initialize(ImageManager::InitializeType type, const QString &userDataPath = QString())
    {
        UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), resources.path());
        UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), userDataPath.isEmpty() ? userData.path() : userDataPath);
        ImageManager::getInstance()->initialize(type);
    }
};

int childMain(int argc, char **argv)
{
    const QByteArray mode = qgetenv("LUMO_CHILD");
    if (mode == "images-before-initialize") {
        ImageManager::getInstance()->getTempImageFolder();
        return 0;
    }
    if (mode == "styles-before-images") {
        QGuiApplication app(argc, argv);
        StyleManager::getInstance()->initialize({});
        return 0;
    }
    if (mode == "language") {
        QCoreApplication app(argc, argv);
        std::printf("%s\n", qPrintable(LumoLocale::getInstance()->getDefaultLanguage()));
        return 0;
    }
    return 3;
}

struct ChildResult {
    bool crashed = false;
    QString output;
};

ChildResult runChild(const QByteArray &mode, const QStringList &environment = {})
{
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LUMO_CHILD"), QString::fromLatin1(mode));
    for (const QString &entry : environment)
        env.insert(entry.section(QLatin1Char('='), 0, 0), entry.section(QLatin1Char('='), 1));
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), {});
    child.waitForFinished(60000);
    return {child.exitStatus() == QProcess::CrashExit || child.exitCode() != 0,
            QString::fromLocal8Bit(child.readAllStandardOutput() + child.readAllStandardError())};
}
}

class TestRegistries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void screenFactors();
    void scalingRule_data();
    void scalingRule();
    void lazyLoadingFallsBackToNormal();
    void unknownNameAndOtherInitializeTypes();
    void temporaryImagesAreWrittenInTheirFolderOnly();
    void unwritableTemporaryFolder();
    void badManifests_data();
    void badManifests();
    void corruptAndUnreadablePngs();
    void abortBeforeInitialization_data();
    void abortBeforeInitialization();

    void componentStrings();
    void pathManager();
    void languageByLocale_data();
    void languageByLocale();
    void systemLanguage();
    void fileTypes_data();
    void fileTypes();
};

void TestRegistries::screenFactors()
{
    QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
    QCOMPARE(DPIinfo::getInstance()->getDPR(), testsupport::expectedScale());
}

// Each dimension: a = round(d / 4), b = round(a * dpi), pixels = round(b * dpr), halves away from zero.
void TestRegistries::scalingRule_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<QList<int>>("pixels"); // registry pixmap width at scale 1.0, 1.5, 2.0
    QTest::addColumn<QList<int>>("temporary"); // temporary image width (no dpr step)
    QTest::addColumn<bool>("opaque");
    QTest::newRow("64") << 64 << QList<int> {16, 36, 64} << QList<int> {16, 24, 32} << false;
    QTest::newRow("64 opaque") << 64 << QList<int> {16, 36, 64} << QList<int> {16, 24, 32} << true;
    QTest::newRow("6: a = round(1.5) = 2") << 6 << QList<int> {2, 5, 8} << QList<int> {2, 3, 4} << false;
    QTest::newRow("10: a = round(2.5) = 3") << 10 << QList<int> {3, 8, 12} << QList<int> {3, 5, 6} << false;
    QTest::newRow("14: a = round(3.5) = 4") << 14 << QList<int> {4, 9, 16} << QList<int> {4, 6, 8} << true;
    QTest::newRow("25") << 25 << QList<int> {6, 14, 24} << QList<int> {6, 9, 12} << false;
}

void TestRegistries::scalingRule()
{
    QFETCH(int, source);
    QFETCH(QList<int>, pixels);
    QFETCH(QList<int>, temporary);
    QFETCH(bool, opaque);
    const int scaleIndex = testsupport::expectedScale() == 1.0 ? 0 : testsupport::expectedScale() == 1.5 ? 1 : 2;

    Theme theme;
    const QString name = QStringLiteral("scaled%1").arg(source);
    theme.addPng(name, QSize(source, source), opaque);
    theme.writeManifest({name}, {name});
    theme.initialize(ImageManager::LoadAll);

    const QPixmap pixmap = getGlobalImage(name, ImageManager::Normal);
    QCOMPARE(pixmap.width(), pixels[scaleIndex]);
    QCOMPARE(pixmap.devicePixelRatio(), DPIinfo::getInstance()->getDPR());
    const QImage written(ImageManager::getInstance()->getTempImageFullPath(name));
    QCOMPARE(written.width(), temporary[scaleIndex]);

    // Pixels and file bytes exactly as the plain steps give them: a QPixmap of the file, scaled smoothly.
    const QPixmap plain(ImageManager::getInstance()->getImageFullPath(name));
    QImage expected = plain.scaled(pixmap.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation).toImage();
    expected.setDevicePixelRatio(pixmap.devicePixelRatio());
    QCOMPARE(pixmap.toImage(), expected);
    QByteArray png;
    QBuffer buffer(&png);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(plain.scaled(written.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation).save(&buffer, "PNG"));
    QFile file(ImageManager::getInstance()->getTempImageFullPath(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), png);
}

void TestRegistries::lazyLoadingFallsBackToNormal()
{
    Theme theme;
    theme.addPng(QStringLiteral("lazy"), QSize(64, 64));
    theme.addPng(QStringLiteral("lazy_click"), QSize(32, 32));
    theme.writeManifest({QStringLiteral("lazy")});
    theme.initialize(ImageManager::LoadLazily);

    // Nothing is decoded before the first request: a file replaced now is the one loaded.
    theme.addPng(QStringLiteral("lazy"), QSize(128, 128));
    testsupport::LogCatcher log;
    const QPixmap hover = getGlobalImage("lazy", ImageManager::Hover);
    QCOMPARE(log.warnings(), QStringList {QStringLiteral("Cannot load pixmap \"lazy\" with type 1 [use default icon]")});
    const QPixmap normal = getGlobalImage("lazy", ImageManager::Normal);
    QCOMPARE(hover.cacheKey(), normal.cacheKey());
    QCOMPARE(normal.width(), getGlobalImage("lazy", ImageManager::Click).width() * 4);
    QCOMPARE(normal.deviceIndependentSize(), QSizeF(32, 32) * DPIinfo::getInstance()->getDPI());
    QCOMPARE(log.warnings().size(), 1);
}

void TestRegistries::unknownNameAndOtherInitializeTypes()
{
    Theme theme;
    theme.addPng(QStringLiteral("other"), QSize(64, 64));
    theme.writeManifest({QStringLiteral("other")});
    theme.initialize(ImageManager::InitializeType(7));

    testsupport::LogCatcher log;
    QVERIFY(getGlobalImage("folder_open_unknown", ImageManager::Normal).isNull());
    QCOMPARE(log.warnings(), QStringList {QStringLiteral("Cannot load pixmap \"folder_open_unknown\"")});
    QVERIFY(getGlobalImage(static_cast<const char *>(nullptr), ImageManager::Normal).isNull());
    log.clear();
    // Registered but never loaded: a null pixmap and no warning, its file names still being set.
    QVERIFY(getGlobalImage("other", ImageManager::Hover).isNull());
    QVERIFY(log.warnings().isEmpty());
}

void TestRegistries::temporaryImagesAreWrittenInTheirFolderOnly()
{
    Theme theme;
    theme.addPng(QStringLiteral("myicon"), QSize(40, 40));
    QTemporaryDir outside;
    theme.writeManifest({}, {QStringLiteral("my icon"), QStringLiteral("../escape"), QStringLiteral("sub/../../escape")});
    // A link planted where a temporary image goes is replaced, never written through.
    const QString folder = theme.userData.filePath(QStringLiteral("tmp_images"));
    const QString victim = outside.filePath(QStringLiteral("victim"));
    QVERIFY(testsupport::writeFile(victim, "keep"));
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(QFile::link(victim, folder + QStringLiteral("/tmp_myicon.png")));
    testsupport::LogCatcher log;
    theme.initialize(ImageManager::LoadLazily);

    QFile kept(victim);
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("keep"));
    QVERIFY(!QFileInfo(folder + QStringLiteral("/tmp_myicon.png")).isSymLink());
    QCOMPARE(QImage(folder + QStringLiteral("/tmp_myicon.png")).isNull(), false);
    QCOMPARE(ImageManager::getInstance()->getTempImageFolder(), folder);
    QCOMPARE(ImageManager::getInstance()->getTempImageFullPath(QStringLiteral("x")), folder + QStringLiteral("/tmp_x.png"));
    QCOMPARE(ImageManager::getInstance()->getImageFullPath(QStringLiteral("x")), theme.resources.filePath(QStringLiteral("images/x.png")));
    QVERIFY(QFile::exists(folder + QStringLiteral("/tmp_myicon.png")));
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList {QStringLiteral("tmp_myicon.png")});
    QCOMPARE(QDir(theme.userData.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList {QStringLiteral("tmp_images")});
    QCOMPARE(log.cannotWarnings(),
             (QStringList {QStringLiteral("Cannot write temporary image \"../escape\""),
                           QStringLiteral("Cannot write temporary image \"sub/../../escape\"")}));
}

void TestRegistries::unwritableTemporaryFolder()
{
    Theme theme;
    theme.addPng(QStringLiteral("blocked"), QSize(40, 40));
    theme.writeManifest({QStringLiteral("blocked")}, {QStringLiteral("blocked")});
    // A file where the user-data folder should be: the folder cannot be created, even by root.
    const QString notAFolder = theme.userData.filePath(QStringLiteral("file"));
    QVERIFY(testsupport::writeFile(notAFolder, "x"));
    theme.initialize(ImageManager::LoadAll, notAFolder);

    QCOMPARE(QFileInfo(notAFolder).isFile(), true);
    QVERIFY(!getGlobalImage("blocked", ImageManager::Normal).isNull());
}

void TestRegistries::badManifests_data()
{
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<int>("registered"); // how many of "bad0", "bad1" are registered
    QTest::newRow("not JSON") << QByteArray("{\"images\": [\"bad0\", ") << 0;
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("array at top") << QByteArray("[\"bad0\"]") << 0;
    QTest::newRow("images not an array") << QByteArray("{\"images\": \"bad0\", \"tmp_images\": 5}") << 0;
    QTest::newRow("non-string elements") << QByteArray("{\"images\": [\"bad0\", 7, null, {}, [\"bad1\"]], \"tmp_images\": [1, true]}") << 1;
    QTest::newRow("binary") << (QByteArray("\x00\xff\xfe", 3) + "{\"images\":[\"bad0\"]}") << 0;
    QTest::newRow("over the size cap") << (QByteArray("{\"images\": [\"bad0\", \"bad1\"], \"x\": \"") + QByteArray(17 * 1024 * 1024, 'a') +
                                           "\"}")
                                       << 0;
}

void TestRegistries::badManifests()
{
    QFETCH(QByteArray, manifest);
    QFETCH(int, registered);
    Theme theme;
    theme.addPng(QStringLiteral("bad0"), QSize(64, 64));
    theme.addPng(QStringLiteral("bad1"), QSize(64, 64));
    // Entries from earlier runs stay registered; a fresh name per row tells what this manifest added.
    const QString row = QString::fromLatin1(QTest::currentDataTag());
    theme.writeManifest(manifest.replace("bad0", row.toUtf8() + "0").replace("bad1", row.toUtf8() + "1"));
    theme.addPng(row + QStringLiteral("0"), QSize(64, 64));
    testsupport::LogCatcher log;
    theme.initialize(ImageManager::LoadAll);
    if (manifest.size() > 16 * 1024 * 1024)
        QVERIFY(log.cannotWarnings().join(QString()).contains(QLatin1String("Cannot read image manifest")));
    log.clear();
    QCOMPARE(!getGlobalImage(row + QStringLiteral("0"), ImageManager::Normal).isNull(), registered > 0);
    QCOMPARE(log.warnings().isEmpty(), registered > 0);
}

void TestRegistries::corruptAndUnreadablePngs()
{
    Theme theme;
    QVERIFY(testsupport::writeFile(theme.resources.filePath(QStringLiteral("images/corrupt.png")), "\x89PNG\r\n\x1a\n garbage"));
    QVERIFY(QDir(theme.resources.path()).mkpath(QStringLiteral("images/folderpng.png")));
    theme.addPng(QStringLiteral("tiny"), QSize(1, 1));
    theme.writeManifest({QStringLiteral("corrupt"), QStringLiteral("folderpng"), QStringLiteral("tiny")});
    theme.initialize(ImageManager::LoadAll);

    testsupport::LogCatcher log;
    QVERIFY(getGlobalImage("corrupt", ImageManager::Normal).isNull());
    QVERIFY(getGlobalImage("folderpng", ImageManager::Disable).isNull());
    // A 1x1 source scales to nothing: a null pixmap, but a loaded state without a warning.
    QVERIFY(getGlobalImage("tiny", ImageManager::Normal).isNull());
    QCOMPARE(log.warnings(),
             (QStringList {QStringLiteral("Cannot load pixmap \"corrupt\" with type 0 [use default icon]"),
                           QStringLiteral("Cannot load pixmap \"folderpng\" with type 3 [use default icon]")}));
}

void TestRegistries::abortBeforeInitialization_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::newRow("image folders") << QByteArray("images-before-initialize");
    QTest::newRow("style manager first") << QByteArray("styles-before-images");
}

void TestRegistries::abortBeforeInitialization()
{
    QFETCH(QByteArray, mode);
    const ChildResult result = runChild(mode, {QStringLiteral("ASAN_OPTIONS=handle_abort=0")});
    QVERIFY(result.crashed);
    QVERIFY2(result.output.contains(QLatin1String("ImageManager is not initialized")), qPrintable(result.output));
}

void TestRegistries::componentStrings()
{
    ComponentStrings *strings = ComponentStrings::getInstance();
    strings->installStrings({{QStringLiteral("ok"), QStringLiteral("Okay")}, {QStringLiteral("cancel"), QStringLiteral("Stop")}});
    testsupport::LogCatcher log;
    QCOMPARE(strings->getString(QStringLiteral("ok")), QStringLiteral("Okay"));
    QCOMPARE(strings->getString(QStringLiteral("OK")), QStringLiteral("OK"));
    QCOMPARE(strings->getString(QStringLiteral("OK")), QStringLiteral("OK"));
    QCOMPARE(log.warnings(), QStringList(2, QStringLiteral("Cannot find key in ComponentStrings \"OK\"")));

    strings->installStrings({{QStringLiteral("reset"), QStringLiteral("Again")}});
    QCOMPARE(strings->getString(QStringLiteral("ok")), QStringLiteral("ok"));
    QCOMPARE(strings->getString(QStringLiteral("reset")), QStringLiteral("Again"));
}

void TestRegistries::pathManager()
{
    UIPathManager *paths = UIPathManager::getInstance();
    testsupport::LogCatcher log;
    paths->setPath(QStringLiteral("test_key"), QStringLiteral("/first"));
    QVERIFY(log.warnings().isEmpty());
    paths->setPath(QStringLiteral("test_key"), QStringLiteral("/second"));
    QCOMPARE(log.warnings(), QStringList {QStringLiteral("Existing path is \"/second\" with key \"test_key\" but overwrite it now")});
    QCOMPARE(paths->getPath(QStringLiteral("test_key")), QStringLiteral("/second"));
    log.clear();
    QCOMPARE(paths->getPath(QStringLiteral("Test_key")), QString());
    QCOMPARE(log.warnings(), QStringList {QStringLiteral("Cannot find path by key \"Test_key\"")});
}

void TestRegistries::languageByLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("language");
    const char *const table[][2] = {{"en_us", "enu"}, {"ja_jp", "jpn"}, {"de_de", "deu"}, {"ko_kr", "krn"}, {"fr_fr", "fra"},
                                    {"it_it", "ita"}, {"es_es", "esn"}, {"ru_ru", "rus"}, {"da_dk", "dan"}, {"no_no", "nor"},
                                    {"nb_no", "nor"}, {"nn_no", "nor"}, {"sv_se", "sve"}, {"nl_nl", "nld"}, {"pl_pl", "plk"},
                                    {"hu_hu", "hun"}, {"tr_tr", "trk"}, {"cs_cz", "csy"}};
    for (const auto &row : table)
        QTest::newRow(row[0]) << QString::fromLatin1(row[0]) << QString::fromLatin1(row[1]);
    QTest::newRow("no underscore") << QStringLiteral("en") << QStringLiteral("enu");
    QTest::newRow("unknown") << QStringLiteral("xx_yy") << QStringLiteral("enu");
    QTest::newRow("empty") << QString() << QStringLiteral("enu");
    QTest::newRow("upper case is not lowered") << QStringLiteral("DE_DE") << QStringLiteral("enu");
    QTest::newRow("pt_br") << QStringLiteral("pt_br") << QStringLiteral("ptb");
    QTest::newRow("pt_pt") << QStringLiteral("pt_pt") << QStringLiteral("ptg");
    QTest::newRow("pt") << QStringLiteral("pt") << QStringLiteral("ptg");
    QTest::newRow("pt_ao") << QStringLiteral("pt_ao") << QStringLiteral("ptb");
    QTest::newRow("PT_PT") << QStringLiteral("PT_PT") << QStringLiteral("enu");
    // Without the macOS "AppleLanguages" default Chinese is traditional, whatever the region.
    QTest::newRow("zh_cn") << QStringLiteral("zh_cn") << QStringLiteral("cht");
    QTest::newRow("zh_tw") << QStringLiteral("zh_tw") << QStringLiteral("cht");
    QTest::newRow("zh") << QStringLiteral("zh") << QStringLiteral("cht");
}

void TestRegistries::languageByLocale()
{
    QFETCH(QString, locale);
    QFETCH(QString, language);
    QCOMPARE(LumoLocale::getInstance()->getLanguageByLocale(locale), language);
}

void TestRegistries::systemLanguage()
{
    QCOMPARE(runChild("language", {QStringLiteral("LC_ALL=de_DE.UTF-8"), QStringLiteral("LANG=de_DE.UTF-8")}).output.trimmed(),
             QStringLiteral("deu"));
    QCOMPARE(runChild("language", {QStringLiteral("LC_ALL=pt_BR.UTF-8"), QStringLiteral("LANG=pt_BR.UTF-8")}).output.trimmed(),
             QStringLiteral("ptb"));
    QCOMPARE(runChild("language", {QStringLiteral("LC_ALL=C"), QStringLiteral("LANG=C")}).output.trimmed(), QStringLiteral("enu"));
}

void TestRegistries::fileTypes_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<bool>("removed");
    QTest::addColumn<QString>("icon");
    QTest::newRow("mp3") << QStringLiteral("mp3") << false << QStringLiteral("audio.png");
    QTest::newRow("MP3") << QStringLiteral("MP3") << false << QStringLiteral("audio.png");
    QTest::newRow("ac3 ends as video") << QStringLiteral("ac3") << false << QStringLiteral("video.png");
    QTest::newRow("jpeg removed") << QStringLiteral("jpeg") << true << QStringLiteral("image_removed.png");
    QTest::newRow("empty") << QString() << false << QStringLiteral("xxx.png");
    QTest::newRow("unknown removed") << QStringLiteral("qqq") << true << QStringLiteral("xxx_removed.png");
    QTest::newRow("dotted") << QStringLiteral(".mp3") << false << QStringLiteral("xxx.png");
    QTest::newRow("tar") << QStringLiteral("tar") << false << QStringLiteral("zip.png");
    QTest::newRow("c") << QStringLiteral("c") << false << QStringLiteral("code.png");
    QTest::newRow("dvr-ms") << QStringLiteral("DVR-MS") << false << QStringLiteral("video.png");
    QTest::newRow("accdb") << QStringLiteral("accdb") << false << QStringLiteral("acc.png");
    QTest::newRow("blank inside") << QStringLiteral("mp3 wav") << false << QStringLiteral("xxx.png");
}

void TestRegistries::fileTypes()
{
    QFETCH(QString, extension);
    QFETCH(bool, removed);
    QFETCH(QString, icon);
    QCOMPARE(FileTypeMap::getInstance()->getFiletypeMapping(extension, removed), icon);
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("LUMO_CHILD"))
        return childMain(argc, argv);
    QApplication app(argc, argv);
    TestRegistries test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_registries.moc"

// The help browser, its image cache and the help window, against a real HTTP
// server on 127.0.0.1 that the test starts itself.

#include "help/help_p.h"
#include "testsupport.h"

#include <lumo/help.h>

#include <QBuffer>
#include <QImage>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace
{
/** A small HTTP/1.1 server: one request per connection, answered from a table of routes. */
class HttpServer : public QObject
{
    Q_OBJECT
public:
    struct Route {
        int status = 200;
        QByteArray body;
        bool hang = false; // read the request, never answer
        qint64 stream = 0; // send this many bytes without a length, then close
    };

    HttpServer()
    {
        connect(&server, SIGNAL(newConnection()), this, SLOT(accept()));
        server.listen(QHostAddress(QStringLiteral("127.0.0.1")));
    }

    QString base() const { return QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort()); }
    void route(const QString &path, const Route &route) { routes.insert(path, route); }
    void serve(const QString &path, const QByteArray &body) { routes.insert(path, Route {200, body}); }
    /** Answers waiting requests now and, with @p keepHolding false, every later one at once. */
    void release(bool keepHolding = false)
    {
        holding = keepHolding;
        const QList<QPointer<QTcpSocket>> sockets = std::exchange(held, {});
        for (const QPointer<QTcpSocket> &socket : sockets) {
            if (socket)
                answer(socket);
        }
    }
    /** Request targets (path and query as sent) in arrival order. */
    QList<QByteArray> targets;
    QStringList paths;
    bool holding = false;
    QList<QPointer<QTcpSocket>> held;
    int open = 0;
    int peakOpen = 0;

private Q_SLOTS:
    void accept()
    {
        while (QTcpSocket *socket = server.nextPendingConnection()) {
            connect(socket, SIGNAL(readyRead()), this, SLOT(read()));
            connect(socket, SIGNAL(disconnected()), socket, SLOT(deleteLater()));
        }
    }

    void read()
    {
        auto *socket = qobject_cast<QTcpSocket *>(sender());
        QByteArray request = socket->property("request").toByteArray() + socket->readAll();
        socket->setProperty("request", request);
        if (!request.contains("\r\n\r\n") || socket->property("target").isValid())
            return;
        const QByteArray target = request.left(request.indexOf("\r\n")).split(' ').value(1);
        socket->setProperty("target", target);
        targets << target;
        const QString path = QDir::cleanPath(QString::fromUtf8(target.split('?').constFirst()));
        paths << path;
        socket->setProperty("path", path);
        peakOpen = std::max(peakOpen, ++open);
        connect(socket, SIGNAL(disconnected()), this, SLOT(closed()));
        if (holding)
            held << socket;
        else
            answer(socket);
    }

    void closed() { --open; }

    void streamMore()
    {
        auto *socket = qobject_cast<QTcpSocket *>(sender());
        qint64 left = socket->property("left").toLongLong();
        if (left <= 0 || socket->bytesToWrite() > 0)
            return;
        const qint64 chunk = std::min<qint64>(left, 1 << 20);
        socket->write(QByteArray(int(chunk), 'x'));
        socket->setProperty("left", left - chunk);
        if (left - chunk <= 0)
            socket->disconnectFromHost();
    }

private:
    void answer(QTcpSocket *socket)
    {
        const QString path = socket->property("path").toString();
        const Route route = routes.value(path, Route {404, QByteArrayLiteral("not found")});
        if (route.hang)
            return;
        QByteArray head = "HTTP/1.1 " + QByteArray::number(route.status) + " X\r\nConnection: close\r\n";
        if (route.stream > 0) {
            socket->write(head + "Content-Type: application/octet-stream\r\n\r\n");
            socket->setProperty("left", route.stream);
            connect(socket, SIGNAL(bytesWritten(qint64)), this, SLOT(streamMore()));
            return;
        }
        socket->write(head + "Content-Length: " + QByteArray::number(route.body.size()) + "\r\n\r\n" + route.body);
        socket->disconnectFromHost();
    }

    QTcpServer server;
    QHash<QString, Route> routes;
};

QByteArray png(int width, int height, QRgb color)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString page(const QString &base, const QStringList &sources, const QString &extra = QString())
{
    QString html = QStringLiteral("<html><head><base href=\"%1\"></head><body><p>Help</p>").arg(base);
    for (const QString &src : sources)
        html += QStringLiteral("<p><img src=\"%1\"></p>").arg(src);
    return html + extra + QStringLiteral("</body></html>");
}

QStringList cacheFiles()
{
    return QDir(HtmlTextBrowser::imageCacheFolder()).entryList(QDir::Files | QDir::Hidden | QDir::System);
}
}

class TestHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void pagesWithoutDownloads_data();
    void pagesWithoutDownloads();
    void picturesLandInTheCacheAndThePageIsLaidOutAgain();
    void samePageTwiceDownloadsAgain();
    void sameFileNameFromDifferentFolders();
    void downloadsRunSeveralAtOnceButBounded();
    void thousandsOfImagesAndHugeAttributes();
    void oversizedPictureIsAborted();
    void hostileSourcesStayInsideTheCache_data();
    void hostileSourcesStayInsideTheCache();
    void plantedLinksAreNotFollowed_data();
    void plantedLinksAreNotFollowed();

    void queryItemsArriveIntact();
    void languageIsRewritten_data();
    void languageIsRewritten();
    void failuresFallBackOffline_data();
    void failuresFallBackOffline();
    void silentServerTimesOut();
    void withoutKnowledgeBaseGoesStraightOffline();
    void emptyLinkLeavesTheViewEmpty();

private:
    QString offlineHelp() const { return root->path() + QStringLiteral("/offline"); }
    void writeOfflinePage(const QString &language, const QString &link, const QString &text);
    HelpContext context(const QString &language, const QString &link) const;

    std::unique_ptr<QTemporaryDir> root;
    std::unique_ptr<QTemporaryDir> userData;
    std::unique_ptr<HttpServer> http;
    QByteArray originalTmp;
    int run = 0;
};

void TestHelp::initTestCase()
{
    root = std::make_unique<QTemporaryDir>();
    userData = std::make_unique<QTemporaryDir>();
    QVERIFY(root->isValid() && userData->isValid());
    testsupport::startWithDefaultTheme(*userData);
    originalTmp = qgetenv("TMPDIR");
}

void TestHelp::init()
{
    // The image cache sits at a fixed place under the temporary folder, which follows TMPDIR.
    const QString tmp = root->path() + QStringLiteral("/tmp%1").arg(++run);
    QVERIFY(QDir().mkpath(tmp));
    qputenv("TMPDIR", QFile::encodeName(tmp));
    QCOMPARE(QDir::tempPath(), QDir(tmp).canonicalPath());
    http = std::make_unique<HttpServer>();
    HelpWindow::setKnowledgeBaseUrl(QUrl());
}

void TestHelp::cleanup()
{
    http.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (originalTmp.isNull())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", originalTmp);
}

void TestHelp::writeOfflinePage(const QString &language, const QString &link, const QString &text)
{
    QVERIFY(testsupport::writeFile(offlineHelp() + QLatin1Char('/') + language + QLatin1Char('/') + link, text.toUtf8()));
}

HelpContext TestHelp::context(const QString &language, const QString &link) const
{
    HelpContext c;
    c.language = language;
    c.offlineHelpPath = offlineHelp();
    c.link = link;
    c.section = QStringLiteral("backup");
    return c;
}

void TestHelp::pagesWithoutDownloads_data()
{
    QTest::addColumn<QString>("text");
    // Not rich text: the base element after the first line is never looked for.
    QTest::newRow("plain text") << QStringLiteral("Plain help\n<base href=\"%1/\"><img src=\"a.png\">");
    QTest::newRow("no base element") << QStringLiteral("<p>Hi <img src=\"%1/a.png\"></p>");
    QTest::newRow("base without closing quote") << QStringLiteral("<p>Hi</p><base href=\"%1/ <img src=\"a.png\">");
    QTest::newRow("huge base address") << QStringLiteral("<base href=\"%1/") + QString(1 << 20, QLatin1Char('b')) +
            QStringLiteral("\"><p>Hi <img src=\"a.png\"></p>");
    QTest::newRow("image without src") << QStringLiteral("<base href=\"%1/\"><p>Hi <img alt=\"a.png\"></p>");
}

void TestHelp::pagesWithoutDownloads()
{
    QFETCH(QString, text);
    text = text.arg(http->base());
    HtmlTextBrowser browser;
    browser.setText(text);
    QTextEdit reference;
    reference.setText(text);
    QCOMPARE(browser.toHtml(), reference.toHtml());
    QTest::qWait(50);
    QVERIFY(http->paths.isEmpty());
    QVERIFY(QFileInfo(HtmlTextBrowser::imageCacheFolder()).isDir() == !browser.searchPaths().isEmpty());
}

void TestHelp::picturesLandInTheCacheAndThePageIsLaidOutAgain()
{
    const QByteArray a = png(120, 300, 0xff3366cc), b = png(40, 40, 0xffcc3333);
    http->serve(QStringLiteral("/kb/image/a.png"), a);
    http->serve(QStringLiteral("/kb/image/b.png"), b);
    http->holding = true;
    HtmlTextBrowser browser;
    browser.resize(400, 300);
    browser.show();
    browser.setText(page(http->base() + QStringLiteral("/kb/page/"),
                         {QStringLiteral("../image/a.png"), QStringLiteral("../image/b.png"), QStringLiteral("../image/a.png"),
                          QStringLiteral("../image/missing.png")}));
    const QString cache = HtmlTextBrowser::imageCacheFolder();
    QCOMPARE(browser.searchPaths(), QStringList(cache));
    QVERIFY(QFileInfo(cache).isDir());
    QCOMPARE(QFile::permissions(cache) & (QFile::WriteGroup | QFile::WriteOther | QFile::ReadOther), QFile::Permissions());
    const qreal before = browser.document()->size().height();
    QVERIFY(before < 300);

    QTRY_COMPARE(http->held.size(), 3);
    http->release();
    QTRY_COMPARE(readAll(cache + QStringLiteral("/a.png")), a);
    QTRY_COMPARE(readAll(cache + QStringLiteral("/b.png")), b);
    QTRY_VERIFY(browser.document()->size().height() > before + 250);
    QCOMPARE(cacheFiles(), QStringList({QStringLiteral("a.png"), QStringLiteral("b.png")}));
    QStringList requested = http->paths;
    requested.sort();
    QCOMPARE(requested,
             QStringList({QStringLiteral("/kb/image/a.png"), QStringLiteral("/kb/image/b.png"), QStringLiteral("/kb/image/missing.png")}));
}

void TestHelp::samePageTwiceDownloadsAgain()
{
    http->serve(QStringLiteral("/image/a.png"), png(10, 10, 0xff00ff00));
    http->holding = true;
    const QString text = page(http->base() + QStringLiteral("/page/"), {QStringLiteral("../image/a.png")});
    {
        HtmlTextBrowser browser;
        browser.setText(text);
        QTRY_COMPARE(http->held.size(), 1);
        browser.setText(text);
        QTRY_COMPARE(http->held.size(), 2);
        QCOMPARE(browser.searchPaths(), QStringList(2, HtmlTextBrowser::imageCacheFolder()));
        http->release();
        QTRY_COMPARE(http->open, 0);
        QTRY_VERIFY(QFileInfo::exists(HtmlTextBrowser::imageCacheFolder() + QStringLiteral("/a.png")));
        // A third showing while nothing runs: one more request, and the picture is in the cache at once.
        browser.setText(text);
        QTRY_COMPARE(http->paths.size(), 3);
    }
    // Destroyed with nothing pending or with a download running: the sanitizer build checks for leaks.
    HtmlTextBrowser browser;
    http->holding = true;
    browser.setText(text);
    QTRY_COMPARE(http->held.size(), 1);
}

void TestHelp::sameFileNameFromDifferentFolders()
{
    const QByteArray first = png(10, 10, 0xff111111), second = png(20, 20, 0xff222222);
    http->serve(QStringLiteral("/one/x.png"), first);
    http->serve(QStringLiteral("/two/x.png"), second);
    http->holding = true;
    HtmlTextBrowser browser;
    browser.setText(page(http->base() + QStringLiteral("/page/"), {QStringLiteral("../one/x.png"), QStringLiteral("../two/x.png")}));
    QTRY_COMPARE(http->held.size(), 2);
    const QList<QPointer<QTcpSocket>> held = http->held;
    const QString file = HtmlTextBrowser::imageCacheFolder() + QStringLiteral("/x.png");
    for (int i = 0; i < 2; ++i) {
        const bool firstFolder = held[i]->property("path").toString() == QStringLiteral("/one/x.png");
        http->held = {held[i]};
        http->release(true);
        QTRY_COMPARE(readAll(file), firstFolder ? first : second);
    }
    QCOMPARE(cacheFiles(), QStringList(QStringLiteral("x.png")));
}

void TestHelp::downloadsRunSeveralAtOnceButBounded()
{
    QStringList sources;
    for (int i = 0; i < 20; ++i) {
        sources << QStringLiteral("img/p%1.png").arg(i);
        http->serve(QStringLiteral("/img/p%1.png").arg(i), png(8, 8, 0xff000000u + uint(i)));
    }
    http->holding = true;
    HtmlTextBrowser browser;
    browser.setText(page(http->base() + QStringLiteral("/"), sources));
    QTRY_COMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
    // Let the event loop run: nothing beyond the bound starts while those wait.
    QTest::qWait(200);
    QCOMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
    http->release(true);
    QTRY_COMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
    http->release();
    QTRY_COMPARE(cacheFiles().size(), 20);
    QCOMPARE(http->peakOpen, lumo::help::maximumRunningDownloads);
    QCOMPARE(http->paths.size(), 20);
}

void TestHelp::thousandsOfImagesAndHugeAttributes()
{
    QStringList sources;
    for (int i = 0; i < 3000; ++i)
        sources << QStringLiteral("../image/i%1.png").arg(i);
    const QString hugeSource = QStringLiteral("<img src=\"%1.png\">").arg(QString(8 * 1024 * 1024, QLatin1Char('a')));
    const QString hugeOther = QStringLiteral("<p title=\"%1\">x</p>").arg(QString(8 * 1024 * 1024, QLatin1Char('<')));
    const QString text = page(http->base() + QStringLiteral("/page/"), sources, hugeSource + hugeOther + QStringLiteral("<img src=\"open"));
    {
        HtmlTextBrowser browser;
        browser.setText(text);
        QTRY_COMPARE_WITH_TIMEOUT(http->paths.size(), 3000, 120000);
        QTRY_COMPARE(http->open, 0);
    }
    QCOMPARE(http->paths.size(), 3000);
    QVERIFY(http->paths.contains(QStringLiteral("/image/i2999.png")));
    // Destroyed with thousands still waiting.
    HtmlTextBrowser browser;
    browser.setText(text);
    QTRY_VERIFY(http->paths.size() > 3000);
}

void TestHelp::oversizedPictureIsAborted()
{
    http->route(QStringLiteral("/big.png"), HttpServer::Route {200, {}, false, lumo::help::maximumBodySize + (8 << 20)});
    http->serve(QStringLiteral("/ok.png"), QByteArrayLiteral("fine"));
    QVERIFY(QDir().mkpath(HtmlTextBrowser::imageCacheFolder()));
    for (const char *name : {"big.png", "ok.png"}) {
        const QString file = HtmlTextBrowser::imageCacheFolder() + QLatin1Char('/') + QLatin1String(name);
        ImageDownloader downloader(file, http->base() + QLatin1Char('/') + QLatin1String(name), nullptr);
        QSignalSpy finished(&downloader, SIGNAL(sigDownloadFinish(QString, int)));
        QVERIFY(!downloader.isFinished());
        downloader.start();
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 30000);
        QVERIFY(downloader.isFinished());
        const bool big = qstrcmp(name, "big.png") == 0;
        QCOMPARE(finished[0][1].toInt(), big ? -1 : 0);
        QCOMPARE(QFileInfo::exists(file), !big);
    }
    QCOMPARE(cacheFiles(), QStringList(QStringLiteral("ok.png")));
}

void TestHelp::hostileSourcesStayInsideTheCache_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("src");
    QTest::newRow("empty name") << QString() << QStringLiteral("../image/");
    QTest::newRow("dot") << QString() << QStringLiteral("../image/.");
    QTest::newRow("dot dot") << QString() << QStringLiteral("..");
    QTest::newRow("backslashes") << QString() << QStringLiteral("..\\..\\..\\evil.png");
    QTest::newRow("nul") << QString() << QStringLiteral("evil.png") + QChar(0) + QStringLiteral("x");
    QTest::newRow("name too long") << QString() << QString(300, QLatin1Char('n'));
    QTest::newRow("local file base") << QStringLiteral("file:///etc/") << QStringLiteral("passwd");
    QTest::newRow("data address") << QStringLiteral("data:") << QStringLiteral("image/png;base64,AAAA");
}

void TestHelp::hostileSourcesStayInsideTheCache()
{
    QFETCH(QString, base);
    QFETCH(QString, src);
    http->serve(QStringLiteral("/image/control.png"), QByteArrayLiteral("control"));
    HtmlTextBrowser browser;
    const QString server = http->base() + QStringLiteral("/page/");
    // The hostile page first, then a control page whose one picture proves the scan and the downloads ran.
    browser.setText(page(base.isEmpty() ? server : base, {src}));
    browser.setText(page(server, {QStringLiteral("../image/control.png")}));
    QTRY_COMPARE(cacheFiles(), QStringList(QStringLiteral("control.png")));
    QTRY_COMPARE(http->open, 0);
    QCOMPARE(http->paths, QStringList(QStringLiteral("/image/control.png")));
    QCOMPARE(QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList(QStringLiteral("lumora_help")));
}

void TestHelp::plantedLinksAreNotFollowed_data()
{
    QTest::addColumn<QString>("linkAt");
    QTest::addColumn<bool>("downloads");
    QTest::newRow("help folder") << QStringLiteral("lumora_help") << false;
    QTest::newRow("image folder") << QStringLiteral("lumora_help/image") << false;
    QTest::newRow("cache file") << QStringLiteral("lumora_help/image/a.png") << true;
}

void TestHelp::plantedLinksAreNotFollowed()
{
    QFETCH(QString, linkAt);
    QFETCH(bool, downloads);
    const QString tmp = QDir::tempPath();
    const QString outside = root->path() + QStringLiteral("/outside%1").arg(run);
    QVERIFY(testsupport::writeFile(outside + QStringLiteral("/a.png"), "precious"));
    const QString target = linkAt.endsWith(QLatin1String(".png")) ? outside + QStringLiteral("/a.png") : outside;
    QVERIFY(QDir().mkpath(QFileInfo(tmp + QLatin1Char('/') + linkAt).absolutePath()));
    QVERIFY(QFile::link(target, tmp + QLatin1Char('/') + linkAt));

    const QByteArray picture = png(12, 12, 0xff445566);
    http->serve(QStringLiteral("/image/a.png"), picture);
    testsupport::LogCatcher log;
    HtmlTextBrowser browser;
    browser.setText(page(http->base() + QStringLiteral("/page/"), {QStringLiteral("../image/a.png")}));
    if (downloads) {
        const QString cached = HtmlTextBrowser::imageCacheFolder() + QStringLiteral("/a.png");
        QTRY_COMPARE(readAll(cached), picture);
        QVERIFY(!QFileInfo(cached).isSymLink());
        QVERIFY(log.warnings().isEmpty());
    } else {
        QCOMPARE(log.warnings(),
                 QStringList(QStringLiteral("Cannot use the help image folder \"%1\"").arg(HtmlTextBrowser::imageCacheFolder())));
        QVERIFY(browser.searchPaths().isEmpty());
        QTest::qWait(100);
        QVERIFY(http->paths.isEmpty());
    }
    QCOMPARE(QDir(outside).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList(QStringLiteral("a.png")));
    QCOMPARE(readAll(outside + QStringLiteral("/a.png")), QByteArrayLiteral("precious"));
}

void TestHelp::queryItemsArriveIntact()
{
    http->serve(QStringLiteral("/cgi/knowledgebase"), QByteArrayLiteral("<p>online page</p>"));
    // Only scheme, host and port of the configured address count.
    HelpWindow::setKnowledgeBaseUrl(QUrl(http->base() + QStringLiteral("/ignored/path?x=1#f")));
    HelpContext c = context(QStringLiteral("deu"), QStringLiteral("Seite über Sicherung+1 %41.html"));
    c.section = QStringLiteral("a&b=c#d e");
    c.version = QStringLiteral("2.0&unique=evil");
    HelpWindow window(c);
    QCOMPARE(window.windowModality(), Qt::ApplicationModal);
    auto *browser = window.findChild<HtmlTextBrowser *>();
    QVERIFY(browser);
    QTRY_COMPARE(browser->toPlainText(), QStringLiteral("online page"));

    QCOMPARE(http->targets.size(), 1);
    const QByteArray target = http->targets[0];
    QVERIFY(target.startsWith("/cgi/knowledgebase/?"));
    // Parsed the way a server does: split at "&", then at the first "=", then percent-decoded as UTF-8.
    const QList<QByteArray> items = target.mid(target.indexOf('?') + 1).split('&');
    QCOMPARE(items.size(), 6);
    const std::pair<QByteArray, QString> expected[] = {
        {"action", QStringLiteral("findHelpFile")},        {"section", c.section}, {"lang", QStringLiteral("ger")}, {"link", c.link},
        {"unique", QStringLiteral("lumora_utility_help")}, {"version", c.version},
    };
    for (int i = 0; i < 6; ++i) {
        const qsizetype equals = items[i].indexOf('=');
        QCOMPARE(items[i].left(equals), expected[i].first);
        QCOMPARE(QString::fromUtf8(QByteArray::fromPercentEncoding(items[i].mid(equals + 1))), expected[i].second);
    }
}

void TestHelp::languageIsRewritten_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("help");
    QTest::newRow("deu") << QStringLiteral("deu") << QStringLiteral("ger");
    QTest::newRow("esn") << QStringLiteral("esn") << QStringLiteral("spn");
    QTest::newRow("fra") << QStringLiteral("fra") << QStringLiteral("fre");
    for (const char *english : {"dan", "sve", "hun", "trk", "nor", "ptg", "ptb", "tha"})
        QTest::newRow(english) << QString::fromLatin1(english) << QStringLiteral("enu");
    QTest::newRow("enu unchanged") << QStringLiteral("enu") << QStringLiteral("enu");
    QTest::newRow("chs unchanged") << QStringLiteral("chs") << QStringLiteral("chs");
    QTest::newRow("ger unchanged") << QStringLiteral("ger") << QStringLiteral("ger");
    QTest::newRow("case matters") << QStringLiteral("DEU") << QStringLiteral("DEU");
}

void TestHelp::languageIsRewritten()
{
    QFETCH(QString, language);
    QFETCH(QString, help);
    QCOMPARE(HelpWindow::helpLanguage(language), help);
    writeOfflinePage(help, QStringLiteral("page.html"), QStringLiteral("<p>offline %1</p>").arg(help));
    http->route(QStringLiteral("/cgi/knowledgebase"), HttpServer::Route {500, QByteArrayLiteral("<p>server error</p>")});
    HelpWindow::setKnowledgeBaseUrl(QUrl(http->base()));
    HelpWindow window(context(language, QStringLiteral("page.html")));
    auto *browser = window.findChild<HtmlTextBrowser *>();
    QTRY_COMPARE(browser->toPlainText(), QStringLiteral("offline ") + help);
    QCOMPARE(browser->searchPaths(), QStringList(offlineHelp() + QLatin1Char('/') + help));
    QCOMPARE(QUrlQuery(QString::fromUtf8(http->targets.value(0).mid(http->targets.value(0).indexOf('?') + 1)))
                 .queryItemValue(QStringLiteral("lang")),
             help);
}

void TestHelp::failuresFallBackOffline_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("404") << 404;
    QTest::newRow("500") << 500;
    QTest::newRow("503") << 503;
    QTest::newRow("refused") << 0;
    QTest::newRow("endless page") << -1;
}

void TestHelp::failuresFallBackOffline()
{
    QFETCH(int, status);
    writeOfflinePage(QStringLiteral("enu"), QStringLiteral("page.html"), QStringLiteral("<p>Offline Ü</p><img src=\"image/p.png\">"));
    QVERIFY(testsupport::writeFile(offlineHelp() + QStringLiteral("/enu/image/p.png"), png(30, 200, 0xff00aa00)));
    HttpServer::Route route {status, QByteArrayLiteral("<p>error page</p>")};
    if (status < 0)
        route = HttpServer::Route {200, {}, false, lumo::help::maximumBodySize * 4};
    http->route(QStringLiteral("/cgi/knowledgebase"), route);
    QUrl server(http->base());
    if (status == 0) {
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress(QStringLiteral("127.0.0.1"))));
        server.setPort(closed.serverPort());
    }
    HelpWindow::setKnowledgeBaseUrl(server);
    HelpWindow window(context(QStringLiteral("tha"), QStringLiteral("page.html")));
    auto *browser = window.findChild<HtmlTextBrowser *>();
    QVERIFY(browser->toPlainText().isEmpty());
    QTRY_VERIFY(browser->toPlainText().startsWith(QStringLiteral("Offline Ü")));
    // The page's relative picture resolves in the offline language folder.
    const QVariant picture = browser->document()->resource(QTextDocument::ImageResource, QUrl(QStringLiteral("image/p.png")));
    QCOMPARE(picture.value<QPixmap>().size(), QSize(30, 200));
    QCOMPARE(http->paths.size(), status == 0 ? 0 : 1);
}

void TestHelp::silentServerTimesOut()
{
    writeOfflinePage(QStringLiteral("enu"), QStringLiteral("page.html"), QStringLiteral("<p>Offline after waiting</p>"));
    http->route(QStringLiteral("/cgi/knowledgebase"), HttpServer::Route {200, {}, true});
    HelpWindow::setKnowledgeBaseUrl(QUrl(http->base()));
    HelpWindow window(context(QStringLiteral("enu"), QStringLiteral("page.html")));
    QSignalSpy aborts(&window, SIGNAL(sigAbortRequest()));
    auto *browser = window.findChild<HtmlTextBrowser *>();
    QTRY_COMPARE(http->paths.size(), 1);
    QTest::qWait(1000);
    QVERIFY(browser->toPlainText().isEmpty());
    QVERIFY(aborts.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(browser->toPlainText(), QStringLiteral("Offline after waiting"), 15000);
    QCOMPARE(aborts.size(), 1);
    QTRY_COMPARE(http->open, 0);
}

void TestHelp::withoutKnowledgeBaseGoesStraightOffline()
{
    writeOfflinePage(QStringLiteral("ger"), QStringLiteral("start.html"), QStringLiteral("<p>Hilfe</p>"));
    HelpWindow::setKnowledgeBaseUrl(QUrl(QStringLiteral("not a url")));
    QVERIFY(HelpWindow::knowledgeBaseUrl().isEmpty());
    HelpWindow window(context(QStringLiteral("deu"), QStringLiteral("start.html")));
    // Shown from the constructor, without a request and without the event loop.
    QCOMPARE(window.findChild<HtmlTextBrowser *>()->toPlainText(), QStringLiteral("Hilfe"));
    QTest::qWait(50);
    QVERIFY(http->paths.isEmpty());
}

void TestHelp::emptyLinkLeavesTheViewEmpty()
{
    writeOfflinePage(QStringLiteral("enu"), QStringLiteral("page.html"), QStringLiteral("<p>not this</p>"));
    HelpWindow window(context(QStringLiteral("enu"), QString()));
    auto *browser = window.findChild<HtmlTextBrowser *>();
    QVERIFY(browser->toPlainText().isEmpty());
    QCOMPARE(browser->searchPaths(), QStringList(offlineHelp() + QStringLiteral("/enu")));
}

QTEST_MAIN(TestHelp)
#include "tst_help.moc"

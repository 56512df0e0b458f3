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
/**
 * A small HTTP/1.1 server: one request per connection, answered from a table of routes (status and body).
 * Status 0 reads the request and never answers; a body too large to be real goes without a length.
 */
class HttpServer : public QObject
{
    Q_OBJECT
public:
    HttpServer()
    {
        connect(&server, SIGNAL(newConnection()), this, SLOT(accept()));
        server.listen(QHostAddress(QStringLiteral("127.0.0.1")));
    }
    QString base() const { return QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort()); }
    /** Answers the held requests and, from now on, every request at once. */
    void release()
    {
        holding = false;
        for (QTcpSocket *socket : std::exchange(held, {}))
            answer(socket);
    }

    QHash<QString, std::pair<int, QByteArray>> routes;
    QList<QByteArray> targets; // path and query as sent, in arrival order
    QStringList paths;
    bool holding = false;
    QList<QTcpSocket *> held;
    int open = 0;
    int peakOpen = 0;

private Q_SLOTS:
    void accept()
    {
        while (QTcpSocket *socket = server.nextPendingConnection())
            connect(socket, SIGNAL(readyRead()), this, SLOT(read()));
    }

    void read()
    {
        auto *socket = qobject_cast<QTcpSocket *>(sender());
        const QByteArray request = socket->property("request").toByteArray() + socket->readAll();
        socket->setProperty("request", request);
        if (!request.contains("\r\n\r\n") || socket->property("path").isValid())
            return;
        targets << request.left(request.indexOf("\r\n")).split(' ').value(1);
        paths << QDir::cleanPath(QString::fromUtf8(targets.constLast().split('?').constFirst()));
        socket->setProperty("path", paths.constLast());
        peakOpen = std::max(peakOpen, ++open);
        connect(socket, SIGNAL(disconnected()), this, SLOT(closed()));
        if (holding)
            held << socket;
        else
            answer(socket);
    }

    void closed() { --open; }

private:
    void answer(QTcpSocket *socket)
    {
        const auto route = routes.value(socket->property("path").toString(), {404, QByteArrayLiteral("not found")});
        const QByteArray &body = route.second;
        if (route.first == 0)
            return;
        const QByteArray length =
            body.size() > lumo::help::maximumBodySize ? QByteArray() : "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
        socket->write("HTTP/1.1 " + QByteArray::number(route.first) + " X\r\nConnection: close\r\n" + length + "\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer server;
};

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

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

QStringList cacheFiles()
{
    return entries(HtmlTextBrowser::imageCacheFolder());
}

/** More than any page or picture may be. */
std::pair<int, QByteArray> endless()
{
    return {200, QByteArray(int(lumo::help::maximumBodySize + (8 << 20)), 'x')};
}

enum Server { Silent = 0, Refused = -1, NoServer = -2, EndlessPage = -3 };
}

class TestHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { testsupport::startWithDefaultTheme(userData); }
    void init();
    void cleanup()
    {
        http.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void picturesLandInTheCacheAndThePageIsLaidOutAgain();
    void thousandsOfImagesDownloadSeveralAtOnceButBounded();
    void nothingIsFetchedOrWrittenOutsideTheCache_data();
    void nothingIsFetchedOrWrittenOutsideTheCache();
    void plantedLinksAreNotFollowed_data();
    void plantedLinksAreNotFollowed();
    void knowledgeBaseOrOfflinePage_data();
    void knowledgeBaseOrOfflinePage();

private:
    QString offlineHelp() const { return root.path() + QStringLiteral("/offline"); }

    QTemporaryDir root;
    QTemporaryDir userData;
    std::unique_ptr<HttpServer> http;
    int run = 0;
};

void TestHelp::init()
{
    // The image cache sits at a fixed place under the temporary folder, which follows TMPDIR.
    QVERIFY(root.isValid() && userData.isValid());
    const QString tmp = root.path() + QStringLiteral("/tmp%1").arg(++run);
    QVERIFY(QDir().mkpath(tmp));
    qputenv("TMPDIR", QFile::encodeName(tmp));
    http = std::make_unique<HttpServer>();
    HelpWindow::setKnowledgeBaseUrl(QUrl());
}

void TestHelp::picturesLandInTheCacheAndThePageIsLaidOutAgain()
{
    // A tall picture, to see the page grow when it arrives.
    QImage image(120, 300, QImage::Format_RGB32);
    image.fill(Qt::darkBlue);
    QBuffer picture;
    QVERIFY(picture.open(QIODevice::WriteOnly) && image.save(&picture, "PNG"));
    const QByteArray a = picture.data(), b = QByteArrayLiteral("not a picture");
    http->routes[QStringLiteral("/kb/image/a.png")] = {200, a};
    http->routes[QStringLiteral("/kb/image/b.png")] = {200, b};
    http->holding = true;
    HtmlTextBrowser browser;
    browser.resize(400, 300);
    browser.show();
    const QString text = page(http->base() + QStringLiteral("/kb/page/"),
                              {QStringLiteral("../image/a.png"), QStringLiteral("../image/b.png"), QStringLiteral("../image/a.png"),
                               QStringLiteral("../image/missing.png")});
    browser.setText(text);
    const QString cache = HtmlTextBrowser::imageCacheFolder();
    QCOMPARE(QFile::permissions(cache) & (QFile::WriteGroup | QFile::WriteOther | QFile::ReadOther), QFile::Permissions());
    const qreal before = browser.document()->size().height();
    QVERIFY(before < 300);
    // A repeated source is fetched once per showing; showing the page again while those run fetches again.
    QTRY_COMPARE(http->held.size(), 3);
    browser.setText(text);
    QTRY_COMPARE(http->held.size(), 6);
    http->release();
    QTRY_COMPARE(readAll(cache + QStringLiteral("/a.png")), a);
    QTRY_COMPARE(readAll(cache + QStringLiteral("/b.png")), b);
    QTRY_VERIFY(browser.document()->size().height() > before + 250);
    QTRY_COMPARE(http->open, 0);
    QCOMPARE(cacheFiles(), QStringList({QStringLiteral("a.png"), QStringLiteral("b.png")}));
    QCOMPARE(http->paths.size(), 6);
    http->paths.removeDuplicates();
    http->paths.sort();
    QCOMPARE(http->paths,
             QStringList({QStringLiteral("/kb/image/a.png"), QStringLiteral("/kb/image/b.png"), QStringLiteral("/kb/image/missing.png")}));
}

void TestHelp::thousandsOfImagesDownloadSeveralAtOnceButBounded()
{
    QStringList sources;
    for (int i = 0; i < 3000; ++i)
        sources << QStringLiteral("../image/i%1.png").arg(i);
    const QString hugeSource = QStringLiteral("<img src=\"%1.png\">").arg(QString(8 * 1024 * 1024, QLatin1Char('a')));
    const QString hugeOther = QStringLiteral("<p title=\"%1\">x</p>").arg(QString(8 * 1024 * 1024, QLatin1Char('<')));
    const QString text = page(http->base() + QStringLiteral("/page/"), sources, hugeSource + hugeOther + QStringLiteral("<img src=\"open"));
    http->holding = true;
    {
        HtmlTextBrowser browser;
        browser.setText(text);
        QTRY_COMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
        // Let the event loop run: nothing beyond the bound starts while those wait.
        QTest::qWait(200);
        QCOMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
        http->release();
        QTRY_COMPARE_WITH_TIMEOUT(http->paths.size(), 3000, 120000);
        QTRY_COMPARE(http->open, 0);
    }
    QCOMPARE(http->peakOpen, lumo::help::maximumRunningDownloads);
    QCOMPARE(http->paths.size(), 3000);
    QVERIFY(http->paths.contains(QStringLiteral("/image/i2999.png")));
    // Destroyed with downloads running and thousands waiting: the sanitizer build checks for leaks.
    HtmlTextBrowser browser;
    browser.setText(text);
    QTRY_VERIFY(http->paths.size() > 3000);
}

void TestHelp::nothingIsFetchedOrWrittenOutsideTheCache_data()
{
    QTest::addColumn<QString>("text"); // SERVER stands for the test server's address
    QTest::addColumn<QStringList>("requested");
    const auto onServer = [](const QString &src) { return page(QStringLiteral("SERVER/page/"), {src}); };
    // Not rich text: the base element after the first line is never looked for.
    QTest::newRow("plain text") << QStringLiteral("Plain help\n<base href=\"SERVER/\"><img src=\"a.png\">") << QStringList();
    QTest::newRow("no base element") << QStringLiteral("<p>Hi <img src=\"SERVER/a.png\"></p>") << QStringList();
    QTest::newRow("base without closing quote") << QStringLiteral("<p>Hi</p><base href=\"SERVER/ <img src=\"a.png\">") << QStringList();
    QTest::newRow("huge base address") << page(QStringLiteral("SERVER/") + QString(1 << 20, QLatin1Char('b')), {QStringLiteral("a.png")})
                                       << QStringList();
    QTest::newRow("empty name") << onServer(QStringLiteral("../image/")) << QStringList();
    QTest::newRow("dot dot") << onServer(QStringLiteral("..")) << QStringList();
    QTest::newRow("backslashes") << onServer(QStringLiteral("..\\..\\..\\evil.png")) << QStringList();
    QTest::newRow("nul") << onServer(QStringLiteral("evil.png") + QChar(0) + QStringLiteral("x")) << QStringList();
    QTest::newRow("name too long") << onServer(QString(300, QLatin1Char('n'))) << QStringList();
    QTest::newRow("local file base") << page(QStringLiteral("file:///etc/"), {QStringLiteral("passwd")}) << QStringList();
    QTest::newRow("data address") << page(QStringLiteral("data:"), {QStringLiteral("image/png;base64,AAAA")}) << QStringList();
    QTest::newRow("endless picture") << onServer(QStringLiteral("../endless.png")) << QStringList(QStringLiteral("/endless.png"));
}

void TestHelp::nothingIsFetchedOrWrittenOutsideTheCache()
{
    QFETCH(QString, text);
    QFETCH(QStringList, requested);
    text.replace(QLatin1String("SERVER"), http->base());
    http->routes[QStringLiteral("/endless.png")] = endless();
    http->routes[QStringLiteral("/image/control.png")] = {200, "control"};
    HtmlTextBrowser browser;
    browser.setText(text);
    QTextEdit reference;
    reference.setText(text);
    QCOMPARE(browser.toHtml(), reference.toHtml());
    // A control page whose one picture proves the scan and the downloads ran.
    browser.setText(page(http->base() + QStringLiteral("/page/"), {QStringLiteral("../image/control.png")}));
    QTRY_COMPARE(cacheFiles(), QStringList(QStringLiteral("control.png")));
    QTRY_COMPARE(http->open, 0);
    http->paths.sort();
    QCOMPARE(http->paths, requested << QStringLiteral("/image/control.png"));
    QCOMPARE(cacheFiles(), QStringList(QStringLiteral("control.png")));
    QCOMPARE(entries(QDir::tempPath()), QStringList(QStringLiteral("lumora_help")));
}

void TestHelp::plantedLinksAreNotFollowed_data()
{
    QTest::addColumn<QString>("linkAt");
    QTest::newRow("help folder") << QStringLiteral("lumora_help");
    QTest::newRow("image folder") << QStringLiteral("lumora_help/image");
    QTest::newRow("cache file") << QStringLiteral("lumora_help/image/a.png");
}

void TestHelp::plantedLinksAreNotFollowed()
{
    QFETCH(QString, linkAt);
    const bool toFile = linkAt.endsWith(QLatin1String(".png"));
    const QString outside = root.path() + QStringLiteral("/outside%1").arg(run);
    const QString link = QDir::tempPath() + QLatin1Char('/') + linkAt;
    QVERIFY(testsupport::writeFile(outside + QStringLiteral("/a.png"), "precious"));
    QVERIFY(QDir().mkpath(QFileInfo(link).absolutePath()));
    QVERIFY(QFile::link(toFile ? outside + QStringLiteral("/a.png") : outside, link));

    http->routes[QStringLiteral("/image/a.png")] = {200, "new"};
    testsupport::LogCatcher log;
    HtmlTextBrowser browser;
    browser.setText(page(http->base() + QStringLiteral("/page/"), {QStringLiteral("../image/a.png")}));
    if (toFile) {
        // The planted link is replaced, not written through.
        const QString cached = HtmlTextBrowser::imageCacheFolder() + QStringLiteral("/a.png");
        QTRY_COMPARE(readAll(cached), QByteArrayLiteral("new"));
        QVERIFY(!QFileInfo(cached).isSymLink());
        QVERIFY(log.warnings().isEmpty());
    } else {
        QCOMPARE(log.warnings(),
                 QStringList(QStringLiteral("Cannot use the help image folder \"%1\"").arg(HtmlTextBrowser::imageCacheFolder())));
        QVERIFY(browser.searchPaths().isEmpty());
        QTest::qWait(100);
        QVERIFY(http->paths.isEmpty());
    }
    QCOMPARE(entries(outside), QStringList(QStringLiteral("a.png")));
    QCOMPARE(readAll(outside + QStringLiteral("/a.png")), QByteArrayLiteral("precious"));
}

void TestHelp::knowledgeBaseOrOfflinePage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("help");
    QTest::addColumn<int>("server"); // an HTTP status or a Server
    QTest::newRow("online, deu") << QStringLiteral("deu") << QStringLiteral("ger") << 200;
    QTest::newRow("404") << QStringLiteral("tha") << QStringLiteral("enu") << 404;
    QTest::newRow("500, esn") << QStringLiteral("esn") << QStringLiteral("spn") << 500;
    QTest::newRow("refused, fra") << QStringLiteral("fra") << QStringLiteral("fre") << int(Refused);
    QTest::newRow("endless page") << QStringLiteral("enu") << QStringLiteral("enu") << int(EndlessPage);
    QTest::newRow("silent server") << QStringLiteral("enu") << QStringLiteral("enu") << int(Silent);
    QTest::newRow("no knowledge base, chs") << QStringLiteral("chs") << QStringLiteral("chs") << int(NoServer);
    for (const char *english : {"dan", "sve", "hun", "trk", "nor", "ptg", "ptb"})
        QTest::newRow(english) << QString::fromLatin1(english) << QStringLiteral("enu") << 503;
    QTest::newRow("ger unchanged") << QStringLiteral("ger") << QStringLiteral("ger") << 500;
    QTest::newRow("case matters") << QStringLiteral("DEU") << QStringLiteral("DEU") << 500;
}

void TestHelp::knowledgeBaseOrOfflinePage()
{
    QFETCH(QString, language);
    QFETCH(QString, help);
    QFETCH(int, server);
    QCOMPARE(HelpWindow::helpLanguage(language), help);
    const HelpContext c {language, offlineHelp(), QStringLiteral("Seite über Sicherung+1 %41.html"), QStringLiteral("a&b=c#d e"),
                         QStringLiteral("2.0&unique=evil")};
    const QString folder = offlineHelp() + QLatin1Char('/') + help;
    QVERIFY(testsupport::writeFile(folder + QLatin1Char('/') + c.link, "<p>offline page</p>"));
    http->routes[QStringLiteral("/cgi/knowledgebase")] =
        server == EndlessPage ? endless() : std::make_pair(server, QByteArray("<p>online page</p>"));
    // Only scheme, host and port of the configured address count.
    QUrl address(http->base() + QStringLiteral("/ignored/path?x=1#f"));
    if (server == Refused) {
        QTcpServer closed; // gone again before the request
        QVERIFY(closed.listen(QHostAddress(QStringLiteral("127.0.0.1"))));
        address.setPort(closed.serverPort());
    }
    HelpWindow::setKnowledgeBaseUrl(server == NoServer ? QUrl(QStringLiteral("not a url")) : address);

    QElapsedTimer clock;
    clock.start();
    HelpWindow window(c);
    QSignalSpy aborts(&window, SIGNAL(sigAbortRequest()));
    auto *browser = window.findChild<HtmlTextBrowser *>();
    // Without a server the page is shown from the constructor; otherwise once the request is done.
    QCOMPARE(browser->toPlainText().isEmpty(), server != NoServer);
    QTRY_COMPARE_WITH_TIMEOUT(browser->toPlainText(), QLatin1String(server == 200 ? "online page" : "offline page"), 15000);
    if (server != 200)
        QCOMPARE(browser->searchPaths(), QStringList(folder));
    // A silent server is given up on after ten seconds, not before.
    QCOMPARE(aborts.size(), server == Silent ? 1 : 0);
    QVERIFY(server != Silent || clock.elapsed() >= 9000);
    QTRY_COMPARE(http->open, 0);
    if (server == Refused || server == NoServer) {
        QCOMPARE(http->targets, QList<QByteArray>());
        return;
    }
    QCOMPARE(http->targets.size(), 1);
    const QByteArray target = http->targets[0];
    QVERIFY(target.startsWith("/cgi/knowledgebase/?"));
    // Parsed the way a server does: split at "&", then at the first "=", then percent-decoded as UTF-8.
    QStringList items;
    for (const QByteArray &item : target.mid(target.indexOf('?') + 1).split('&'))
        items << QString::fromUtf8(item.left(item.indexOf('=') + 1) + QByteArray::fromPercentEncoding(item.mid(item.indexOf('=') + 1)));
    QCOMPARE(items,
             (QStringList {QStringLiteral("action=findHelpFile"), QStringLiteral("section=") + c.section, QStringLiteral("lang=") + help,
                           QStringLiteral("link=") + c.link, QStringLiteral("unique=lumora_utility_help"),
                           QStringLiteral("version=") + c.version}));
}

QTEST_MAIN(TestHelp)
#include "tst_help.moc"

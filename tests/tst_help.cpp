// The help browser, its image cache and the help window, against a real HTTP
// server on 127.0.0.1 that the test starts itself.

#include "help/help_p.h"
#include "testsupport.h"

#include <lumo/help.h>

#include <QBuffer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Qt::StringLiterals;

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
        server.listen(QHostAddress(u"127.0.0.1"_s));
    }

    QString base() const { return u"http://127.0.0.1:%1"_s.arg(server.serverPort()); }
    /** Answers the held requests and, from now on, every request at once. */
    void release()
    {
        holding = false;
        for (QTcpSocket *socket : std::exchange(held, {}))
            answer(socket);
    }
    /** The requested paths, cleaned and sorted. */
    QStringList paths() const
    {
        QStringList result;
        for (const QByteArray &target : targets)
            result << QDir::cleanPath(QString::fromUtf8(target.split('?').constFirst()));
        result.sort();
        return result;
    }

    QHash<QString, std::pair<int, QByteArray>> routes;
    QList<QByteArray> targets; // path and query as sent, in arrival order
    bool holding = false;
    QList<QTcpSocket *> held;
    int open = 0, peakOpen = 0;

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
        if (!request.contains("\r\n\r\n") || socket->property("target").isValid())
            return;
        targets << request.left(request.indexOf("\r\n")).split(' ').value(1);
        socket->setProperty("target", targets.constLast());
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
        const QString path = QDir::cleanPath(QString::fromUtf8(socket->property("target").toByteArray().split('?').constFirst()));
        const auto [status, body] = routes.value(path, {404, QByteArrayLiteral("not found")});
        if (status == 0)
            return;
        const QByteArray length =
            body.size() > lumo::help::maximumBodySize ? QByteArray() : "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
        socket->write("HTTP/1.1 " + QByteArray::number(status) + " X\r\nConnection: close\r\n" + length + "\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer server;
};

QString page(const QString &base, const QStringList &sources, const QString &extra = QString())
{
    QString html = u"<html><head><base href=\"%1\"></head><body><p>Help</p>"_s.arg(base);
    for (const QString &src : sources)
        html += u"<p><img src=\"%1\"></p>"_s.arg(src);
    return html + extra + u"</body></html>"_s;
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
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
    void init()
    {
        // The image cache sits at a fixed place under the temporary folder, which follows TMPDIR.
        const QString tmp = root.path() + u"/tmp%1"_s.arg(++run);
        QVERIFY(QDir().mkpath(tmp));
        qputenv("TMPDIR", QFile::encodeName(tmp));
        http = std::make_unique<HttpServer>();
        HelpWindow::setKnowledgeBaseUrl(QUrl());
    }

    void cleanup()
    {
        http.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void picturesLandInTheCacheAndThePageIsLaidOutAgain()
    {
        // A tall picture, to see the page grow when it arrives.
        QImage image(120, 300, QImage::Format_RGB32);
        image.fill(Qt::darkBlue);
        QBuffer picture;
        QVERIFY(picture.open(QIODevice::WriteOnly) && image.save(&picture, "PNG"));
        const QByteArray a = picture.data(), b = QByteArrayLiteral("not a picture");
        http->routes[u"/kb/image/a.png"_s] = {200, a};
        http->routes[u"/kb/image/b.png"_s] = {200, b};
        http->holding = true;
        HtmlTextBrowser browser;
        browser.resize(400, 300);
        browser.show();
        const QString text =
            page(http->base() + u"/kb/page/"_s, {u"../image/a.png"_s, u"../image/b.png"_s, u"../image/a.png"_s, u"../image/missing.png"_s});
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
        QTRY_COMPARE(testsupport::readFile(cache + u"/a.png"_s), a);
        QTRY_COMPARE(testsupport::readFile(cache + u"/b.png"_s), b);
        QTRY_VERIFY(browser.document()->size().height() > before + 250);
        QTRY_COMPARE(http->open, 0);
        QCOMPARE(entries(cache), QStringList({u"a.png"_s, u"b.png"_s}));
        QStringList twice;
        for (const char *name : {"a", "a", "b", "b", "missing", "missing"})
            twice << u"/kb/image/%1.png"_s.arg(QLatin1String(name));
        QCOMPARE(http->paths(), twice);
    }

    void thousandsOfImagesDownloadSeveralAtOnceButBounded()
    {
        QStringList sources;
        for (int i = 0; i < 3000; ++i)
            sources << u"../image/i%1.png"_s.arg(i);
        const QString hugeSource = u"<img src=\"%1.png\">"_s.arg(QString(8 << 20, u'a'));
        const QString hugeOther = u"<p title=\"%1\">x</p>"_s.arg(QString(8 << 20, u'<'));
        const QString text = page(http->base() + u"/page/"_s, sources, hugeSource + hugeOther + u"<img src=\"open"_s);
        http->holding = true;
        {
            HtmlTextBrowser browser;
            browser.setText(text);
            QTRY_COMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
            // Let the event loop run: nothing beyond the bound starts while those wait.
            QTest::qWait(200);
            QCOMPARE(http->held.size(), lumo::help::maximumRunningDownloads);
            http->release();
            QTRY_COMPARE_WITH_TIMEOUT(http->targets.size(), 3000, 120000);
            QTRY_COMPARE(http->open, 0);
        }
        QCOMPARE(http->peakOpen, lumo::help::maximumRunningDownloads);
        QCOMPARE(http->targets.size(), 3000);
        QVERIFY(http->paths().contains(u"/image/i2999.png"_s));
        // Destroyed with downloads running and thousands waiting: the sanitizer build checks for leaks.
        HtmlTextBrowser browser;
        browser.setText(text);
        QTRY_VERIFY(http->targets.size() > 3000);
    }

    void nothingIsFetchedOrWrittenOutsideTheCache_data()
    {
        QTest::addColumn<QString>("text"); // SERVER stands for the test server's address
        QTest::addColumn<QStringList>("requested");
        const auto onServer = [](const QString &src) { return page(u"SERVER/page/"_s, {src}); };
        // Not rich text: the base element after the first line is never looked for.
        QTest::newRow("plain text") << u"Plain help\n<base href=\"SERVER/\"><img src=\"a.png\">"_s << QStringList();
        QTest::newRow("no base element") << u"<p>Hi <img src=\"SERVER/a.png\"></p>"_s << QStringList();
        QTest::newRow("base without closing quote") << u"<p>Hi</p><base href=\"SERVER/ <img src=\"a.png\">"_s << QStringList();
        QTest::newRow("huge base address") << page(u"SERVER/"_s + QString(1 << 20, u'b'), {u"a.png"_s}) << QStringList();
        QTest::newRow("empty name") << onServer(u"../image/"_s) << QStringList();
        QTest::newRow("dot dot") << onServer(u".."_s) << QStringList();
        QTest::newRow("backslashes") << onServer(u"..\\..\\..\\evil.png"_s) << QStringList();
        QTest::newRow("nul") << onServer(u"evil.png"_s + QChar(0) + u"x"_s) << QStringList();
        QTest::newRow("name too long") << onServer(QString(300, u'n')) << QStringList();
        QTest::newRow("local file base") << page(u"file:///etc/"_s, {u"passwd"_s}) << QStringList();
        QTest::newRow("data address") << page(u"data:"_s, {u"image/png;base64,AAAA"_s}) << QStringList();
        QTest::newRow("endless picture") << onServer(u"../endless.png"_s) << QStringList(u"/endless.png"_s);
    }

    void nothingIsFetchedOrWrittenOutsideTheCache()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, requested);
        text.replace(u"SERVER"_s, http->base());
        http->routes[u"/endless.png"_s] = endless();
        http->routes[u"/image/control.png"_s] = {200, "control"};
        HtmlTextBrowser browser;
        browser.setText(text);
        QTextEdit reference;
        reference.setText(text);
        QCOMPARE(browser.toHtml(), reference.toHtml());
        // A control page whose one picture proves the scan and the downloads ran.
        browser.setText(page(http->base() + u"/page/"_s, {u"../image/control.png"_s}));
        QTRY_COMPARE(entries(HtmlTextBrowser::imageCacheFolder()), QStringList(u"control.png"_s));
        QTRY_COMPARE(http->open, 0);
        QCOMPARE(http->paths(), requested << u"/image/control.png"_s);
        QCOMPARE(entries(HtmlTextBrowser::imageCacheFolder()), QStringList(u"control.png"_s));
        QCOMPARE(entries(QDir::tempPath()), QStringList(u"lumora_help"_s));
    }

    void plantedLinksAreNotFollowed_data()
    {
        QTest::addColumn<QString>("linkAt");
        QTest::newRow("help folder") << u"lumora_help"_s;
        QTest::newRow("image folder") << u"lumora_help/image"_s;
        QTest::newRow("cache file") << u"lumora_help/image/a.png"_s;
    }

    void plantedLinksAreNotFollowed()
    {
        QFETCH(QString, linkAt);
        const bool toFile = linkAt.endsWith(u".png"_s);
        const QString outside = root.path() + u"/outside%1"_s.arg(run);
        const QString link = QDir::tempPath() + u'/' + linkAt;
        QVERIFY(testsupport::writeFile(outside + u"/a.png"_s, "precious"));
        QVERIFY(QDir().mkpath(QFileInfo(link).absolutePath()));
        QVERIFY(QFile::link(toFile ? outside + u"/a.png"_s : outside, link));

        http->routes[u"/image/a.png"_s] = {200, "new"};
        testsupport::LogCatcher log;
        HtmlTextBrowser browser;
        browser.setText(page(http->base() + u"/page/"_s, {u"../image/a.png"_s}));
        const QString cached = HtmlTextBrowser::imageCacheFolder() + u"/a.png"_s;
        if (toFile) {
            // The planted link is replaced, not written through.
            QTRY_COMPARE(testsupport::readFile(cached), QByteArrayLiteral("new"));
            QVERIFY(!QFileInfo(cached).isSymLink());
        } else {
            QVERIFY(browser.searchPaths().isEmpty());
            QTest::qWait(100);
            QVERIFY(http->targets.isEmpty());
        }
        QCOMPARE(log.warnings(),
                 toFile ? QStringList()
                        : QStringList(u"Cannot use the help image folder \"%1\""_s.arg(HtmlTextBrowser::imageCacheFolder())));
        QCOMPARE(entries(outside), QStringList(u"a.png"_s));
        QCOMPARE(testsupport::readFile(outside + u"/a.png"_s), QByteArrayLiteral("precious"));
    }

    void knowledgeBaseOrOfflinePage_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("help");
        QTest::addColumn<int>("server"); // an HTTP status or a Server
        QTest::newRow("online, deu") << u"deu"_s << u"ger"_s << 200;
        QTest::newRow("404") << u"tha"_s << u"enu"_s << 404;
        QTest::newRow("500, esn") << u"esn"_s << u"spn"_s << 500;
        QTest::newRow("refused, fra") << u"fra"_s << u"fre"_s << int(Refused);
        QTest::newRow("endless page") << u"enu"_s << u"enu"_s << int(EndlessPage);
        QTest::newRow("silent server") << u"enu"_s << u"enu"_s << int(Silent);
        QTest::newRow("no knowledge base, chs") << u"chs"_s << u"chs"_s << int(NoServer);
        for (const char *english : {"dan", "sve", "hun", "trk", "nor", "ptg", "ptb"})
            QTest::newRow(english) << QString::fromLatin1(english) << u"enu"_s << 503;
        QTest::newRow("ger unchanged") << u"ger"_s << u"ger"_s << 500;
        QTest::newRow("case matters") << u"DEU"_s << u"DEU"_s << 500;
    }

    void knowledgeBaseOrOfflinePage()
    {
        QFETCH(QString, language);
        QFETCH(QString, help);
        QFETCH(int, server);
        QCOMPARE(HelpWindow::helpLanguage(language), help);
        const QString offline = root.path() + u"/offline"_s, folder = offline + u'/' + help;
        const HelpContext c {language, offline, u"Seite über Sicherung+1 %41.html"_s, u"a&b=c#d e"_s, u"2.0&unique=evil"_s};
        QVERIFY(testsupport::writeFile(folder + u'/' + c.link, "<p>offline page</p>"));
        http->routes[u"/cgi/knowledgebase"_s] = server == EndlessPage ? endless() : std::pair(server, QByteArray("<p>online page</p>"));
        // Only scheme, host and port of the configured address count.
        QUrl address(http->base() + u"/ignored/path?x=1#f"_s);
        if (server == Refused) {
            QTcpServer closed; // gone again before the request
            QVERIFY(closed.listen(QHostAddress(u"127.0.0.1"_s)));
            address.setPort(closed.serverPort());
        }
        HelpWindow::setKnowledgeBaseUrl(server == NoServer ? QUrl(u"not a url"_s) : address);

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
        QCOMPARE(http->targets.size(), server == Refused || server == NoServer ? 0 : 1);
        if (http->targets.isEmpty())
            return;
        const QByteArray target = http->targets[0];
        QVERIFY(target.startsWith("/cgi/knowledgebase/?"));
        // Parsed the way a server does: split at "&", then at the first "=", then percent-decoded as UTF-8.
        QStringList items;
        for (const QByteArray &item : target.mid(target.indexOf('?') + 1).split('&'))
            items << QString::fromUtf8(item.left(item.indexOf('=') + 1) + QByteArray::fromPercentEncoding(item.mid(item.indexOf('=') + 1)));
        QCOMPARE(items,
                 (QStringList {u"action=findHelpFile"_s, u"section="_s + c.section, u"lang="_s + help, u"link="_s + c.link,
                               u"unique=lumora_utility_help"_s, u"version="_s + c.version}));
    }

private:
    QTemporaryDir root, userData;
    std::unique_ptr<HttpServer> http;
    int run = 0;
};

QTEST_MAIN(TestHelp)
#include "tst_help.moc"

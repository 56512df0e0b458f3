// Help pages: the base and image scan, downloads from a real server on 127.0.0.1,
// and the cache files they leave, which must stay inside the cache folder.

#include "fuzzsupport.h"

#include <lumo/help.h>

#include <QDir>
#include <QTcpServer>
#include <QTcpSocket>

namespace
{
// Answers every request with a small picture, a failure or an empty body, by its path.
class PictureServer : public QTcpServer
{
public:
    PictureServer()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                ++open;
                lastActivity.start();
                connect(socket, &QTcpSocket::readyRead, socket, [socket] { answer(socket); });
                connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                    --open;
                    lastActivity.start();
                    socket->deleteLater();
                });
            }
        });
        fuzzsupport::check(listen(QHostAddress::LocalHost), "the picture server cannot listen");
    }
    int open = 0;
    QElapsedTimer lastActivity;

private:
    static void answer(QTcpSocket *socket)
    {
        const QByteArray request = socket->readAll();
        QByteArray status("200 OK");
        QByteArray body("\x89PNG\r\n\x1a\n-not-really-a-picture");
        if (request.contains("404"))
            status = "404 Not Found";
        else if (request.contains("empty"))
            body.clear();
        socket->write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
                      body);
        socket->disconnectFromHost();
    }
};

PictureServer *server = nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    if (!server)
        server = new PictureServer;
    static const QString cache = QDir(fuzzsupport::root()).relativeFilePath(HtmlTextBrowser::imageCacheFolder());
    static const QStringList allowed = {cache};
    // The cache's parents are made once; from then on nothing outside the cache may change.
    static const QStringList before = (QDir().mkpath(HtmlTextBrowser::imageCacheFolder()), fuzzsupport::filesOutside(allowed));
    // "SERVER" stands for the server's address, which changes from run to run.
    QString page = QString::fromUtf8(fuzzsupport::bytes(data, size));
    page.replace(QStringLiteral("SERVER"), QStringLiteral("http://127.0.0.1:%1").arg(server->serverPort()));

    auto *browser = new HtmlTextBrowser;
    browser->setText(page);
    if (page.contains(QLatin1String("<img"))) {
        // Until every download has been answered and its file written: a finished
        // download starts the next waiting one at once, so a quiet spell means all are done.
        server->lastActivity.start();
        fuzzsupport::spin([] { return server->open == 0 && server->lastActivity.elapsed() > 5; }, 3000);
    }
    delete browser;
    fuzzsupport::deleteLaterObjects(); // the downloads' network managers
    fuzzsupport::check(fuzzsupport::filesOutside(allowed) == before, "a help page wrote outside the image cache");
    QDir(HtmlTextBrowser::imageCacheFolder()).removeRecursively();
    return 0;
}

#include <lumo/help.h>

#include "help/help_p.h"
#include "resources/registries_p.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

ImageDownloader::ImageDownloader(const QString &filePath, const QString &url, QObject *parent)
    : QObject(parent)
    , filePath(filePath)
    , url(url)
{
}

ImageDownloader::~ImageDownloader()
{
    if (networkManager)
        networkManager->deleteLater();
}

void ImageDownloader::start()
{
    if (networkManager)
        return;
    networkManager = new QNetworkAccessManager;
    connect(networkManager, SIGNAL(finished(QNetworkReply *)), this, SLOT(slotFinishDownload(QNetworkReply *)));
    QNetworkRequest request(QUrl(url, QUrl::TolerantMode));
    request.setTransferTimeout(lumo::help::downloadStallTimeout);
    QNetworkReply *reply = networkManager->get(request);
    // Drained into body as it arrives; the small buffer makes the network thread wait for that.
    reply->setReadBufferSize(lumo::help::networkBufferSize);
    connect(reply, SIGNAL(readyRead()), this, SLOT(slotCheckSize()));
}

bool ImageDownloader::isFinished()
{
    return finished;
}

void ImageDownloader::slotCheckSize()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply)
        return;
    body += reply->readAll();
    if (body.size() > lumo::help::maximumBodySize || lumo::help::announcesOversize(reply)) {
        body.clear();
        reply->abort();
    }
}

void ImageDownloader::slotFinishDownload(QNetworkReply *reply)
{
    reply->deleteLater();
    if (finished)
        return;
    // Only what is there: QIODevice::read sets aside the whole requested size first.
    body += reply->read(qMin(reply->bytesAvailable(), lumo::help::maximumBodySize + 1 - body.size()));
    const bool ok = reply->error() == QNetworkReply::NoError && body.size() <= lumo::help::maximumBodySize;
    // A file that cannot be written is not a network error: the picture just stays missing.
    if (ok)
        lumo::replaceFile(filePath, body);
    body = QByteArray();
    result = ok ? 0 : -1;
    finished = true;
    Q_EMIT sigDownloadFinish(url, result);
}

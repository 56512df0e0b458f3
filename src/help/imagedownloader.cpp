#include <lumo/help.h>

#include "help/help_p.h"

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
    connect(reply, SIGNAL(downloadProgress(qint64, qint64)), this, SLOT(slotDownloadProgress(qint64, qint64)));
}

bool ImageDownloader::isFinished()
{
    return finished;
}

void ImageDownloader::slotDownloadProgress(qint64 received, qint64 total)
{
    if (received > lumo::help::maximumBodySize || total > lumo::help::maximumBodySize) {
        if (auto *reply = qobject_cast<QNetworkReply *>(sender()))
            reply->abort();
    }
}

void ImageDownloader::slotFinishDownload(QNetworkReply *reply)
{
    reply->deleteLater();
    if (finished)
        return;
    const bool ok = reply->error() == QNetworkReply::NoError;
    if (ok) {
        const QByteArray body = reply->read(lumo::help::maximumBodySize);
        // A file that cannot be written is not a network error: the picture just stays missing.
        lumo::help::replaceFile(filePath, body);
    }
    result = ok ? 0 : -1;
    finished = true;
    Q_EMIT sigDownloadFinish(url, result);
}

#include <lumo/help.h>

#include "help/help_p.h"
#include "resources/registries_p.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QVBoxLayout>

BrowserWindow::BrowserWindow(QWidget *parent)
    : QDialog(parent)
{
    browser = new HtmlTextBrowser(this);
    browser->setOpenExternalLinks(true);
    init();
    auto *layout = new QVBoxLayout;
    layout->addWidget(browser);
    setLayout(layout);
    setWindowModality(Qt::ApplicationModal);
    setStyleSheet(lumo::style("component.scrollbar"));
}

BrowserWindow::~BrowserWindow()
{
    // Replies aborted by the manager's destruction must not call back into a half-destroyed dialog.
    networkManager->disconnect(this);
    delete networkManager;
    delete queryTimer;
}

void BrowserWindow::init()
{
    networkManager = new QNetworkAccessManager;
    connect(networkManager, SIGNAL(finished(QNetworkReply *)), this, SLOT(slotReceiveReply(QNetworkReply *)));
    queryTimer = new QTimer;
    queryTimer->setSingleShot(true);
    connect(queryTimer, SIGNAL(timeout()), this, SLOT(slotQueryTimeout()));
}

void BrowserWindow::reload(const QUrl &url)
{
    this->url = url;
    reload();
}

void BrowserWindow::reload()
{
    queryTimer->stop();
    queryTimer->setInterval(0);
    query();
}

void BrowserWindow::query()
{
    queryTimer->start(10000);
    QNetworkReply *reply = networkManager->get(QNetworkRequest(url));
    connect(this, SIGNAL(sigAbortRequest()), reply, SLOT(abort()));
    connect(reply, SIGNAL(downloadProgress(qint64, qint64)), this, SLOT(slotReplyProgress(qint64, qint64)));
}

void BrowserWindow::fallbackOffline() { }

void BrowserWindow::slotQueryTimeout()
{
    Q_EMIT sigAbortRequest();
}

void BrowserWindow::slotReplyProgress(qint64 received, qint64 total)
{
    if (received > lumo::help::maximumBodySize || total > lumo::help::maximumBodySize) {
        if (auto *reply = qobject_cast<QNetworkReply *>(sender()))
            reply->abort();
    }
}

void BrowserWindow::slotReceiveReply(QNetworkReply *reply)
{
    queryTimer->stop();
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        fallbackOffline();
        return;
    }
    browser->setText(QString::fromUtf8(reply->read(lumo::help::maximumBodySize)));
}

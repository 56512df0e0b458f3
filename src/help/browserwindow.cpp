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
    reply->setReadBufferSize(lumo::help::networkBufferSize);
    connect(reply, SIGNAL(readyRead()), this, SLOT(slotCheckReplySize()));
}

void BrowserWindow::fallbackOffline() { }

void BrowserWindow::slotQueryTimeout()
{
    Q_EMIT sigAbortRequest();
}

void BrowserWindow::slotCheckReplySize()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply)
        return;
    QByteArray &body = pageBodies[reply];
    body += reply->readAll();
    if (body.size() > lumo::help::maximumBodySize || lumo::help::announcesOversize(reply)) {
        pageBodies.remove(reply);
        reply->abort();
    }
}

void BrowserWindow::slotReceiveReply(QNetworkReply *reply)
{
    queryTimer->stop();
    reply->deleteLater();
    QByteArray body = pageBodies.take(reply);
    body += reply->read(lumo::help::maximumBodySize + 1 - body.size());
    if (reply->error() != QNetworkReply::NoError || body.size() > lumo::help::maximumBodySize) {
        fallbackOffline();
        return;
    }
    browser->setText(QString::fromUtf8(body));
}

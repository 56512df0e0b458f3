#include <lumo/singleapplication.h>

#include <QWidget>

QtSingleApplication::QtSingleApplication(int &argc, char **argv, bool GUIenabled)
    : QApplication(argc, argv)
    , peer(new QtLocalPeer(this))
{
    Q_UNUSED(GUIenabled)
    connect(peer, SIGNAL(messageReceived(QString)), this, SIGNAL(messageReceived(QString)));
}

QtSingleApplication::QtSingleApplication(const QString &id, int &argc, char **argv)
    : QApplication(argc, argv)
    , peer(new QtLocalPeer(this, id))
{
    connect(peer, SIGNAL(messageReceived(QString)), this, SIGNAL(messageReceived(QString)));
}

QtSingleApplication::~QtSingleApplication() = default;

bool QtSingleApplication::isRunning()
{
    return peer->isClient();
}

QString QtSingleApplication::id() const
{
    return peer->applicationId();
}

bool QtSingleApplication::sendMessage(const QString &message, int timeout)
{
    return peer->sendMessage(message, timeout);
}

void QtSingleApplication::setActivationWindow(QWidget *aw, bool activateOnMessage)
{
    actWin = aw;
    disconnect(peer, SIGNAL(messageReceived(QString)), this, SLOT(activateWindow()));
    if (activateOnMessage)
        connect(peer, SIGNAL(messageReceived(QString)), this, SLOT(activateWindow()));
}

QWidget *QtSingleApplication::activationWindow() const
{
    return actWin;
}

void QtSingleApplication::activateWindow()
{
    if (!actWin)
        return;
    // Back from minimised, but a maximised or full-screen window stays so.
    actWin->setWindowState(actWin->windowState() & ~Qt::WindowMinimized);
    actWin->show();
    actWin->raise();
    actWin->activateWindow();
}

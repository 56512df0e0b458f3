#include "singleapp/localpeer_p.h"

#include <QWidget>

using lumo::singleapp::attachPeer;

QtSingleApplication::QtSingleApplication(int &argc, char **argv, bool GUIenabled)
    : QApplication(argc, argv)
    , peer(attachPeer(this, QString()))
{
    Q_UNUSED(GUIenabled)
}

QtSingleApplication::QtSingleApplication(const QString &id, int &argc, char **argv)
    : QApplication(argc, argv)
    , peer(attachPeer(this, id))
{
}

QtSingleApplication::~QtSingleApplication() = default;

bool QtSingleApplication::isRunning()
{
    return peer->isClient();
}

void QtSingleApplication::initialize(bool dummy)
{
    Q_UNUSED(dummy)
    isRunning();
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

QtSingleCoreApplication::QtSingleCoreApplication(int &argc, char **argv)
    : QCoreApplication(argc, argv)
    , peer(attachPeer(this, QString()))
{
}

QtSingleCoreApplication::QtSingleCoreApplication(const QString &id, int &argc, char **argv)
    : QCoreApplication(argc, argv)
    , peer(attachPeer(this, id))
{
}

QtSingleCoreApplication::~QtSingleCoreApplication() = default;

bool QtSingleCoreApplication::isRunning()
{
    return peer->isClient();
}

QString QtSingleCoreApplication::id() const
{
    return peer->applicationId();
}

bool QtSingleCoreApplication::sendMessage(const QString &message, int timeout)
{
    return peer->sendMessage(message, timeout);
}

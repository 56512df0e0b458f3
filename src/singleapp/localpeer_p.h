#ifndef LUMO_LOCALPEER_P_H
#define LUMO_LOCALPEER_P_H

#include <lumo/singleapplication.h>

#include <QByteArray>
#include <QObject>
#include <QString>

class QCoreApplication;
class QLocalServer;
class QLocalSocket;
class QTimer;

namespace lumo
{
namespace singleapp
{
// A message travels as a 32-bit big-endian byte count and that many bytes of
// UTF-8, one message per connection; the primary answers with one receipt byte.
constexpr quint32 maxMessageBytes = 1024 * 1024;
// Announced bytes of all connections being read at once.
constexpr qint64 maxPendingBytes = 16 * 1024 * 1024;
constexpr int maxConnections = 128;
constexpr int readTimeoutMs = 5000;
constexpr char receipt = '\x06';

/** The local socket path of @p appId for this user and login session; its lock file adds ".lock". Exported for the tests. */
LUMO_EXPORT QString serverPath(const QString &appId);

/** The peer of a single-instance application object, its messages forwarded to @p app's messageReceived(QString). */
QtLocalPeer *attachPeer(QCoreApplication *app, const QString &appId);
}
}

class QtLocalPeerPrivate;

/** Reads one message from one client without ever blocking; drops the connection on any fault. */
class QtLocalPeerConnection : public QObject
{
    Q_OBJECT
public:
    QtLocalPeerConnection(QLocalSocket *socket, QtLocalPeerPrivate *owner);
    ~QtLocalPeerConnection() override;

private Q_SLOTS:
    void readMore();
    void peerClosed();
    void timedOut();

private:
    void drop();

    QtLocalPeerPrivate *owner;
    QLocalSocket *socket;
    QTimer *timer;
    QByteArray buffer;
    qint64 expected = -1;
    qint64 reserved = 0;
    bool done = false;
};

class QtLocalPeerPrivate : public QObject
{
    Q_OBJECT
public:
    QtLocalPeerPrivate(QtLocalPeer *q, const QString &appId);
    ~QtLocalPeerPrivate() override;

    bool becomePrimary();
    bool serverAnswers() const;
    bool reserve(qint64 bytes);
    void release(qint64 bytes);

    QtLocalPeer *q;
    QString id;
    QString path;
    QtLockedFile *lockFile = nullptr;
    QLocalServer *server = nullptr;
    bool primary = false;
    int connections = 0;
    qint64 pendingBytes = 0;

public Q_SLOTS:
    void acceptConnections();
    void deliver(const QString &message);
};

#endif

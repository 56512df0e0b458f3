#include "singleapp/localpeer_p.h"

#include "resources/registries_p.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStringDecoder>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <sys/un.h>
#include <unistd.h>

using namespace lumo::singleapp;

namespace
{
// Primaries living in this process, by socket path. Record locks belong to the
// process, so a second peer of the same id here would win the lock file too.
QHash<QString, QtLocalPeerPrivate *> &localPrimaries()
{
    static QHash<QString, QtLocalPeerPrivate *> primaries;
    return primaries;
}

int remaining(const QDeadlineTimer &deadline)
{
    return deadline.isForever() ? -1 : int(qMax<qint64>(0, deadline.remainingTime()));
}

QString socketFolder()
{
#ifdef Q_OS_LINUX
    // Private to the user, unlike /tmp where anyone could take the name first.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo info(runtime);
    if (!runtime.isEmpty() && info.isDir() && info.isWritable())
        return info.absoluteFilePath();
#endif
    return QDir::tempPath();
}
}

QString lumo::singleapp::serverPath(const QString &appId)
{
    QByteArray key = appId.toUtf8();
    key += '\0';
    key += QByteArray::number(qulonglong(::getuid()));
    key += '\0';
    key += qgetenv("XDG_SESSION_ID");
    const QString name =
        QLatin1String("lumo-sa-") + QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().left(20));
    const QString path = socketFolder() + QLatin1Char('/') + name;
    // The lock file's longer name does not matter: only the socket path is bound by sun_path.
    if (path.toLocal8Bit().size() >= qsizetype(sizeof(sockaddr_un {}.sun_path)))
        return QLatin1String("/tmp/") + name;
    return path;
}

QtLocalPeer *lumo::singleapp::attachPeer(QCoreApplication *app, const QString &appId)
{
    auto *peer = new QtLocalPeer(app, appId);
    QObject::connect(peer, SIGNAL(messageReceived(QString)), app, SIGNAL(messageReceived(QString)));
    return peer;
}

QtLocalPeerConnection::QtLocalPeerConnection(QLocalSocket *socket, QtLocalPeerPrivate *owner)
    : QObject(owner)
    , owner(owner)
    , socket(socket)
    , timer(new QTimer(this))
{
    ++owner->connections;
    socket->setParent(this);
    // Qt would otherwise buffer whatever the peer sends, however much, before we look at it.
    socket->setReadBufferSize(64 * 1024);
    timer->setSingleShot(true);
    connect(timer, SIGNAL(timeout()), this, SLOT(timedOut()));
    connect(socket, SIGNAL(readyRead()), this, SLOT(readMore()));
    connect(socket, SIGNAL(disconnected()), this, SLOT(peerClosed()));
    timer->start(readTimeoutMs);
    readMore();
}

QtLocalPeerConnection::~QtLocalPeerConnection()
{
    owner->release(reserved);
    --owner->connections;
}

void QtLocalPeerConnection::readMore()
{
    if (done)
        return;
    if (expected < 0) {
        if (socket->bytesAvailable() < 4)
            return;
        uchar header[4];
        socket->read(reinterpret_cast<char *>(header), 4);
        const quint32 length = qFromBigEndian<quint32>(header);
        if (length > maxMessageBytes) {
            qCWarning(lumoLog) << "Cannot accept a message of" << length << "bytes; the limit is" << maxMessageBytes;
            drop();
            return;
        }
        if (!owner->reserve(length)) {
            qCWarning(lumoLog) << "Cannot accept a message of" << length << "bytes while" << owner->pendingBytes << "bytes are pending";
            drop();
            return;
        }
        reserved = length;
        expected = length;
    }
    const qint64 wanted = expected - buffer.size();
    if (wanted > 0)
        buffer += socket->read(qMin(wanted, socket->bytesAvailable()));
    if (buffer.size() < expected)
        return;

    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    const QString message = decoder(buffer);
    if (decoder.hasError()) {
        qCWarning(lumoLog) << "Cannot decode a message of" << expected << "bytes: it is not UTF-8";
        drop();
        return;
    }
    done = true;
    timer->stop();
    owner->release(reserved);
    reserved = 0;
    buffer.clear();
    if (socket->state() == QLocalSocket::ConnectedState) {
        socket->putChar(receipt);
        socket->disconnectFromServer(); // ends in peerClosed()
    }
    // Queued: a receiver may delete the peer, and with it this connection.
    QMetaObject::invokeMethod(owner, "deliver", Qt::QueuedConnection, Q_ARG(QString, message));
}

void QtLocalPeerConnection::peerClosed()
{
    // The peer may have written everything and gone at once.
    readMore();
    if (!done && expected >= 0)
        qCWarning(lumoLog) << "Cannot read a message of" << expected << "bytes: the peer closed the connection after" << buffer.size()
                           << "bytes";
    else if (!done && socket->bytesAvailable() > 0) // a probe that sent nothing is no fault
        qCWarning(lumoLog) << "Cannot read the length of a message: the peer closed the connection after" << socket->bytesAvailable()
                           << "bytes";
    done = true;
    deleteLater();
}

void QtLocalPeerConnection::timedOut()
{
    qCWarning(lumoLog) << "Cannot read a message from a peer within" << readTimeoutMs << "ms";
    drop();
}

void QtLocalPeerConnection::drop()
{
    done = true;
    timer->stop();
    socket->abort();
    deleteLater();
}

QtLocalPeerPrivate::QtLocalPeerPrivate(QtLocalPeer *q, const QString &appId)
    : QObject(q)
    , q(q)
    , id(appId.isEmpty() ? QCoreApplication::applicationFilePath() : appId)
    , path(serverPath(id))
{
}

QtLocalPeerPrivate::~QtLocalPeerPrivate()
{
    // They give their reservations back to this object, so they go first.
    qDeleteAll(findChildren<QtLocalPeerConnection *>(Qt::FindDirectChildrenOnly));
    if (!primary)
        return;
    localPrimaries().remove(path);
    // Close (and so unlink) the socket before the lock goes: the next primary
    // listens under the same path as soon as it holds the lock.
    if (server)
        server->close();
    // The lock file stays: removing it would let two processes lock two different files.
    if (lockFile)
        lockFile->unlock();
}

bool QtLocalPeerPrivate::becomePrimary()
{
    if (localPrimaries().contains(path))
        return false;
    if (!lockFile) {
        const QString lockPath = path + QLatin1String(".lock");
        lockFile = new QtLockedFile(lockPath);
        lockFile->setParent(this);
        if (!lockFile->open(QIODevice::ReadWrite)) {
            qCWarning(lumoLog) << "Cannot open the lock file" << lockPath << lockFile->errorString();
            delete lockFile;
            lockFile = nullptr;
        } else {
            lockFile->setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        }
    }
    // Without a lock file the socket alone decides; racing starts may then both listen.
    if (lockFile && !lockFile->lock(QtLockedFile::WriteLock, false))
        return false;
    // Holding the lock, a socket left behind belongs to a dead primary, unless
    // someone removed the lock file under a live one.
    if (serverAnswers()) {
        if (lockFile)
            lockFile->unlock();
        return false;
    }
    QLocalServer::removeServer(path);
    server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    server->setMaxPendingConnections(maxConnections);
    connect(server, SIGNAL(newConnection()), this, SLOT(acceptConnections()));
    if (!server->listen(path)) {
        qCWarning(lumoLog) << "Cannot listen on" << path << server->errorString();
        if (!lockFile) {
            delete server;
            server = nullptr;
            return false;
        }
    }
    primary = true;
    localPrimaries().insert(path, this);
    return true;
}

bool QtLocalPeerPrivate::serverAnswers() const
{
    QLocalSocket probe;
    probe.connectToServer(path);
    const bool answered = probe.waitForConnected(1000);
    probe.abort();
    return answered;
}

bool QtLocalPeerPrivate::reserve(qint64 bytes)
{
    if (pendingBytes + bytes > maxPendingBytes)
        return false;
    pendingBytes += bytes;
    return true;
}

void QtLocalPeerPrivate::release(qint64 bytes)
{
    pendingBytes -= bytes;
}

void QtLocalPeerPrivate::acceptConnections()
{
    while (QLocalSocket *socket = server->nextPendingConnection()) {
        if (connections >= maxConnections) {
            qCWarning(lumoLog) << "Cannot accept more than" << maxConnections << "connections at once";
            socket->abort();
            socket->deleteLater();
            continue;
        }
        new QtLocalPeerConnection(socket, this);
    }
}

void QtLocalPeerPrivate::deliver(const QString &message)
{
    Q_EMIT q->messageReceived(message);
}

QtLocalPeer::QtLocalPeer(QObject *parent, const QString &appId)
    : QObject(parent)
    , d(new QtLocalPeerPrivate(this, appId))
{
}

QtLocalPeer::~QtLocalPeer() = default;

bool QtLocalPeer::isClient()
{
    if (d->primary)
        return false;
    return !d->becomePrimary();
}

bool QtLocalPeer::sendMessage(const QString &message, int timeout)
{
    if (!isClient())
        return false;
    const QByteArray payload = message.toUtf8();
    if (quint32(payload.size()) > maxMessageBytes) {
        qCWarning(lumoLog) << "Cannot send a message of" << payload.size() << "bytes; the limit is" << maxMessageBytes;
        return false;
    }
    if (QtLocalPeerPrivate *local = localPrimaries().value(d->path)) {
        QMetaObject::invokeMethod(local, "deliver", Qt::QueuedConnection, Q_ARG(QString, message));
        return true;
    }

    const QDeadlineTimer deadline(timeout < 0 ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(timeout));
    QLocalSocket socket;
    // The primary holds the lock a moment before it listens: keep trying until the deadline.
    for (;;) {
        socket.connectToServer(d->path);
        if (socket.waitForConnected(remaining(deadline)))
            break;
        const QString error = socket.errorString();
        socket.abort();
        if (deadline.hasExpired()) {
            qCWarning(lumoLog) << "Cannot connect to the running instance of" << d->id << error;
            return false;
        }
        QThread::msleep(20);
    }

    QByteArray frame(4, '\0');
    qToBigEndian<quint32>(quint32(payload.size()), frame.data());
    frame += payload;
    socket.write(frame);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(remaining(deadline))) {
            qCWarning(lumoLog) << "Cannot send the message to the running instance of" << d->id << socket.errorString();
            return false;
        }
    }
    while (socket.bytesAvailable() < 1) {
        if (!socket.waitForReadyRead(remaining(deadline))) {
            qCWarning(lumoLog) << "Cannot get a receipt from the running instance of" << d->id << socket.errorString();
            return false;
        }
    }
    char answer = 0;
    socket.getChar(&answer);
    if (answer != receipt) {
        qCWarning(lumoLog) << "Cannot get a receipt from the running instance of" << d->id << "it answered" << int(answer);
        return false;
    }
    return true;
}

QString QtLocalPeer::applicationId() const
{
    return d->id;
}

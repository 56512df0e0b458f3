#ifndef LUMO_SINGLEAPPLICATION_H
#define LUMO_SINGLEAPPLICATION_H

/**
 * @file
 * Single-instance support: the first process of an application id is the
 * running instance, later ones hand it a message (typically their command
 * line) and exit. Source compatible with the Qt Solutions classes of the same
 * names; the lumo/qtsingleapplication/ folder holds their header names.
 */

#include <lumo/lumo_export.h>

#include <QApplication>
#include <QCoreApplication>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QString>

class QtLocalPeerPrivate;

/**
 * A QFile with advisory whole-file locks (POSIX record locks).
 *
 * Read locks are shared between processes, a write lock is exclusive. The kernel
 * drops a lock when its holder exits, however it ends. As with every POSIX record
 * lock, locks belong to the process: two objects on the same file in one process
 * do not exclude each other, and closing either releases the locks of both.
 */
class LUMO_EXPORT QtLockedFile : public QFile
{
    Q_OBJECT
public:
    /** The lock this object holds. */
    enum LockMode {
        NoLock = 0, ///< No lock.
        ReadLock, ///< A shared lock.
        WriteLock ///< An exclusive lock.
    };

    /** A file without a name; call setFileName() before open(). */
    QtLockedFile();
    /** A file named @p name, not yet opened. */
    explicit QtLockedFile(const QString &name);
    /** Releases the lock. */
    ~QtLockedFile() override;

    using QFile::open;
    /** As QFile::open(), but refuses Truncate: the file would change before a write lock is held. Use resize(0) after locking. */
    bool open(OpenMode mode) override;
    /** Takes or converts the lock; with @p block false it returns false at once when another process holds a conflicting lock. */
    bool lock(LockMode mode, bool block = true);
    /** Releases the lock; true when no lock is left. False (with a warning) when the file is not open. */
    bool unlock();
    /** True while this object holds a read or write lock. */
    bool isLocked() const;
    /** The lock this object holds. */
    LockMode lockMode() const;
    /** Closing releases the lock, so the recorded mode goes with it. */
    void close() override;

private:
    Q_DISABLE_COPY(QtLockedFile)
    LockMode currentMode = NoLock;
};

/**
 * One end of the single-instance channel of an application id.
 *
 * The first process of an id (per user and login session) to call isClient()
 * becomes the primary: it holds the id's lock file and listens on a local socket.
 * Later processes are clients and hand their messages to it.
 */
class LUMO_EXPORT QtLocalPeer : public QObject
{
    Q_OBJECT
public:
    /** An empty @p appId stands for the application's executable path. */
    explicit QtLocalPeer(QObject *parent = nullptr, const QString &appId = QString());
    ~QtLocalPeer() override;

    /** True while another process is the primary; otherwise this peer becomes (or stays) the primary and returns false. */
    bool isClient();
    /** Delivers @p message to the primary and waits up to @p timeout ms (negative: no limit) for its receipt. */
    bool sendMessage(const QString &message, int timeout);
    /** The id the channel is named after: the given one, or the executable's path. */
    QString applicationId() const;

Q_SIGNALS:
    /** On the primary: a client sent @p message. Emitted after the receipt went back to the client. */
    void messageReceived(const QString &message);

private:
    Q_DISABLE_COPY(QtLocalPeer)
    friend class QtLocalPeerPrivate;
    QtLocalPeerPrivate *d;
};

/**
 * A QApplication that knows whether another instance of it is running and can
 * pass messages, typically its command line, to that instance.
 */
class LUMO_EXPORT QtSingleApplication : public QApplication
{
    Q_OBJECT
public:
    /** The id is the executable's path. @p GUIenabled is kept for source compatibility; Qt 6 always has a GUI application here. */
    QtSingleApplication(int &argc, char **argv, bool GUIenabled = true);
    /** Instances of the same @p id find each other, whatever their executable. */
    QtSingleApplication(const QString &id, int &argc, char **argv);
    ~QtSingleApplication() override;

    /** True when another instance is the primary; the first call makes this instance the primary if none is. */
    bool isRunning();
    /** Kept for source compatibility: the same as isRunning(), without its answer. */
    void initialize(bool dummy = true);
    /** The id given to the constructor, or the executable's path. */
    QString id() const;

    /** The window raised by activateWindow(); with @p activateOnMessage every received message raises it. */
    void setActivationWindow(QWidget *aw, bool activateOnMessage = true);
    /** The window set by setActivationWindow(), or null (also once it was destroyed). */
    QWidget *activationWindow() const;

public Q_SLOTS:
    /**
     * Hands @p message (at most 1 MiB as UTF-8) to the running instance and
     * waits up to @p timeout ms for its receipt. False, with a warning, when
     * this is the running instance, no instance answered or the message is too large.
     */
    bool sendMessage(const QString &message, int timeout = 5000);
    /** Brings the activation window back from minimised, raises it and gives it the focus. */
    void activateWindow();

Q_SIGNALS:
    /** A later instance sent @p message. */
    void messageReceived(const QString &message);

private:
    Q_DISABLE_COPY(QtSingleApplication)
    QtLocalPeer *peer;
    QPointer<QWidget> actWin;
};

/**
 * The single-instance part of QtSingleApplication for programs without a GUI:
 * the same id, the same channel and the same members, on a QCoreApplication.
 */
class LUMO_EXPORT QtSingleCoreApplication : public QCoreApplication
{
    Q_OBJECT
public:
    /** The id is the executable's path. */
    QtSingleCoreApplication(int &argc, char **argv);
    /** Instances of the same @p id find each other, whatever their executable. */
    QtSingleCoreApplication(const QString &id, int &argc, char **argv);
    ~QtSingleCoreApplication() override;

    /** True when another instance is the primary; the first call makes this instance the primary if none is. */
    bool isRunning();
    /** The id given to the constructor, or the executable's path. */
    QString id() const;

public Q_SLOTS:
    /** Hands @p message (at most 1 MiB as UTF-8) to the running instance; false when this is the running instance or it did not confirm
     * within @p timeout ms. */
    bool sendMessage(const QString &message, int timeout = 5000);

Q_SIGNALS:
    /** A later instance sent @p message. */
    void messageReceived(const QString &message);

private:
    Q_DISABLE_COPY(QtSingleCoreApplication)
    QtLocalPeer *peer;
};

#endif

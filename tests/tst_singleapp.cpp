// Single-instance support with real processes: one primary per id, messages
// delivered both ways round, a killed primary replaced, hostile peers refused
// without harm, and file locks honoured across processes.

#include "singleapp/localpeer_p.h"
#include "testsupport.h"

#include <lumo/singleapplication.h>

#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <memory>
#include <vector>

using namespace lumo::singleapp;

namespace
{
const int startTimeout = 30000;

QStringList usedIds;

QString uniqueId(const char *name)
{
    const QString id = QStringLiteral("lumo-test-%1-%2").arg(QCoreApplication::applicationPid()).arg(QLatin1String(name));
    usedIds << id;
    return id;
}

QByteArray header(quint32 length)
{
    QByteArray bytes(4, '\0');
    qToBigEndian<quint32>(length, bytes.data());
    return bytes;
}

/** A running singleapp_peer and the lines it printed. */
class Child
{
public:
    explicit Child(const QStringList &arguments)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(LUMO_SINGLEAPP_PEER), arguments);
    }
    ~Child()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(10000);
        }
    }
    QStringList lines()
    {
        text += QString::fromUtf8(process.readAllStandardOutput());
        return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    bool has(const char *line) { return lines().contains(QLatin1String(line)); }
    QStringList messages()
    {
        QStringList result;
        for (const QString &line : lines()) {
            if (line.startsWith(QLatin1String("message ")))
                result << line.mid(8);
        }
        return result;
    }
    bool finished() { return process.state() == QProcess::NotRunning; }

    QProcess process;
    QString text;
};
}

class TestSingleApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase();
    void identityIsShortAndPerSession();
    void secondInstanceHandsOverItsMessages();
    void waitingClientTakesOverWhenThePrimaryExits();
    void killedPrimaryDoesNotBlockTheNextStart();
    void racingInstancesElectExactlyOnePrimary();
    void peersInOneProcess();
    void messagesAtTheLimitsArrive_data();
    void messagesAtTheLimitsArrive();
    void hostilePeerIsDropped_data();
    void hostilePeerIsDropped();
    void pendingBytesAreBounded();
    void stalledPeerDoesNotHoldUpOthers();
    void lockedFileRules();
    void locksAcrossProcesses_data();
    void locksAcrossProcesses();
    void blockingLockWaitsForTheHolder();
};

void TestSingleApp::cleanupTestCase()
{
    // Lock files outlive their primaries by design; these ids are never used again.
    for (const QString &id : std::as_const(usedIds)) {
        QVERIFY(!QFileInfo::exists(serverPath(id)));
        QFile::remove(serverPath(id) + QLatin1String(".lock"));
    }
}

void TestSingleApp::identityIsShortAndPerSession()
{
    const QString id = uniqueId("identity");
    const QString path = serverPath(id);
    QCOMPARE(serverPath(id), path);
    QVERIFY(path != serverPath(id + QLatin1Char('x')));
    QVERIFY2(serverPath(QString(5000, QLatin1Char('a'))).toLocal8Bit().size() < 104, qPrintable(path));
    QVERIFY(path.toLocal8Bit().size() < 104);

    const QByteArray session = qgetenv("XDG_SESSION_ID");
    qputenv("XDG_SESSION_ID", session + "-other");
    const QString otherSession = serverPath(id);
    if (session.isNull())
        qunsetenv("XDG_SESSION_ID");
    else
        qputenv("XDG_SESSION_ID", session);
    QVERIFY(otherSession != path);

    QCOMPARE(QtLocalPeer().applicationId(), QCoreApplication::applicationFilePath());
    QCOMPARE(QtLocalPeer(nullptr, id).applicationId(), id);
}

void TestSingleApp::secondInstanceHandsOverItsMessages()
{
    const QString id = uniqueId("handover");
    Child first({QStringLiteral("instance"), id});
    QTRY_VERIFY_WITH_TIMEOUT(first.has("primary"), startTimeout);

    Child second({QStringLiteral("instance"), id, QStringLiteral("3"), QStringLiteral("second")});
    QVERIFY(second.process.waitForFinished(startTimeout));
    QCOMPARE(second.process.exitCode(), 0);
    QCOMPARE(second.lines(), QStringList {QStringLiteral("sent 3")});
    QTRY_COMPARE(first.messages(), (QStringList {QStringLiteral("second#0"), QStringLiteral("second#1"), QStringLiteral("second#2")}));
    // Each message brought the minimised activation window back.
    QTRY_COMPARE(first.lines().filter(QStringLiteral("window restored visible")).size(), 3);
    QVERIFY(first.lines().filter(QStringLiteral("window minimized")).isEmpty());

    QtLocalPeer peer(nullptr, id);
    QVERIFY(peer.isClient());
    QVERIFY(peer.sendMessage(QStringLiteral("quit"), 10000));
    QVERIFY(first.process.waitForFinished(10000));
    QCOMPARE(first.process.exitCode(), 0);

    // With the instance gone this peer becomes the primary, which has no one to send to.
    QVERIFY(!peer.isClient());
    QVERIFY(!peer.isClient());
    QVERIFY(!peer.sendMessage(QStringLiteral("nobody"), 1000));
}

void TestSingleApp::waitingClientTakesOverWhenThePrimaryExits()
{
    const QString id = uniqueId("takeover");
    Child first({QStringLiteral("instance"), id});
    QTRY_VERIFY_WITH_TIMEOUT(first.has("primary"), startTimeout);
    Child second({QStringLiteral("takeover"), id});
    QTRY_VERIFY_WITH_TIMEOUT(second.has("client"), startTimeout);

    QtLocalPeer peer(nullptr, id);
    QVERIFY(peer.sendMessage(QStringLiteral("quit"), 10000));
    QVERIFY(first.process.waitForFinished(10000));
    QTRY_VERIFY_WITH_TIMEOUT(second.has("primary"), 10000);

    QVERIFY(peer.isClient());
    QVERIFY(peer.sendMessage(QStringLiteral("to the new primary"), 10000));
    QTRY_COMPARE(second.messages(), QStringList {QStringLiteral("to the new primary")});
    QVERIFY(peer.sendMessage(QStringLiteral("quit"), 10000));
    QVERIFY(second.process.waitForFinished(10000));
    QCOMPARE(second.process.exitCode(), 0);
}

void TestSingleApp::killedPrimaryDoesNotBlockTheNextStart()
{
    const QString id = uniqueId("killed");
    const QString path = serverPath(id);
    Child first({QStringLiteral("instance"), id});
    QTRY_VERIFY_WITH_TIMEOUT(first.has("primary"), startTimeout);
    QVERIFY(QFileInfo::exists(path));
    first.process.kill();
    QVERIFY(first.process.waitForFinished(10000));
    QCOMPARE(first.process.exitStatus(), QProcess::CrashExit);
    QVERIFY2(QFileInfo::exists(path), "the killed primary should leave its socket behind");

    Child second({QStringLiteral("instance"), id});
    QTRY_VERIFY_WITH_TIMEOUT(second.has("primary"), startTimeout);
    QtLocalPeer peer(nullptr, id);
    QVERIFY(peer.isClient());
    QVERIFY(peer.sendMessage(QStringLiteral("after the kill"), 10000));
    QTRY_COMPARE(second.messages(), QStringList {QStringLiteral("after the kill")});
    QVERIFY(peer.sendMessage(QStringLiteral("quit"), 10000));
    QVERIFY(second.process.waitForFinished(10000));
    QVERIFY(!QFileInfo::exists(path));
}

void TestSingleApp::racingInstancesElectExactlyOnePrimary()
{
    const QString id = uniqueId("race");
    const int instances = 30;
    const int perInstance = 4;
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < instances; ++i)
        children.emplace_back(new Child({QStringLiteral("race"), id, QString::number(perInstance), QStringLiteral("c%1").arg(i)}));
    auto ready = [&children] {
        for (const auto &child : children) {
            if (!child->has("ready"))
                return false;
        }
        return true;
    };
    QTRY_VERIFY_WITH_TIMEOUT(ready(), 50000);
    for (const auto &child : children)
        child->process.write("go\n");

    auto settled = [&children] {
        for (const auto &child : children) {
            if (!child->finished() && !child->has("primary"))
                return false;
        }
        return true;
    };
    QTRY_VERIFY_WITH_TIMEOUT(settled(), 50000);

    Child *primary = nullptr;
    for (const auto &child : children) {
        if (child->has("primary")) {
            QVERIFY2(!primary, "two primaries");
            primary = child.get();
            QVERIFY(!child->finished());
        } else {
            QCOMPARE(child->process.exitCode(), 0);
            QCOMPARE(child->lines(), (QStringList {QStringLiteral("ready"), QStringLiteral("sent %1").arg(perInstance)}));
        }
    }
    QVERIFY(primary);

    QTRY_COMPARE(primary->messages().size(), (instances - 1) * perInstance);
    const QStringList messages = primary->messages();
    QCOMPARE(QSet<QString>(messages.begin(), messages.end()).size(), messages.size());
    for (int i = 0; i < instances; ++i) {
        const QStringList own = messages.filter(QRegularExpression(QStringLiteral("^c%1#").arg(i)));
        if (primary == children[size_t(i)].get()) {
            QVERIFY(own.isEmpty());
            continue;
        }
        QStringList expected;
        for (int m = 0; m < perInstance; ++m)
            expected << QStringLiteral("c%1#%2").arg(i).arg(m);
        QCOMPARE(own, expected);
    }

    QtLocalPeer peer(nullptr, id);
    QVERIFY(peer.sendMessage(QStringLiteral("quit"), 10000));
    QVERIFY(primary->process.waitForFinished(10000));
}

void TestSingleApp::peersInOneProcess()
{
    const QString id = uniqueId("inprocess");
    QtLocalPeer first(nullptr, id);
    QtLocalPeer second(nullptr, id);
    QVERIFY(!first.isClient());
    QVERIFY(second.isClient());
    QSignalSpy received(&first, SIGNAL(messageReceived(QString)));
    QVERIFY(second.sendMessage(QStringLiteral("next door"), 1000));
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(received.at(0).at(0).toString(), QStringLiteral("next door"));
    QVERIFY(!first.sendMessage(QStringLiteral("to myself"), 1000));
}

void TestSingleApp::messagesAtTheLimitsArrive_data()
{
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QString();
    QTest::newRow("non-ASCII") << QStringLiteral("Gr\u00fc\u00dfe \u4f60\u597d \U0001F600\n--lang deu");
    QTest::newRow("exactly the limit") << QString(int(maxMessageBytes), QLatin1Char('a'));
}

void TestSingleApp::messagesAtTheLimitsArrive()
{
    QFETCH(QString, message);
    const QString id = uniqueId("limits");
    QtLocalPeer primary(nullptr, id);
    QVERIFY(!primary.isClient());
    QSignalSpy received(&primary, SIGNAL(messageReceived(QString)));
    testsupport::LogCatcher log;

    QLocalSocket socket;
    socket.connectToServer(serverPath(id));
    QVERIFY(socket.waitForConnected(5000));
    const QByteArray payload = message.toUtf8();
    socket.write(header(quint32(payload.size())) + payload);
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(received.at(0).at(0).toString(), message);
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
    QCOMPARE(socket.readAll(), QByteArray(1, receipt));
    QCOMPARE(log.warnings(), QStringList());
}

void TestSingleApp::hostilePeerIsDropped_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("peerCloses");
    QTest::addColumn<QString>("warning");
    QTest::newRow("huge length") << header(0xffffffffu) << false
                                 << QStringLiteral("Cannot accept a message of 4294967295 bytes; the limit is 1048576");
    QTest::newRow("one byte over the limit") << header(maxMessageBytes + 1) + QByteArray(4096, 'x') << false
                                             << QStringLiteral("Cannot accept a message of 1048577 bytes; the limit is 1048576");
    QTest::newRow("not UTF-8") << header(4) + QByteArray("\xff\xfe\xc0\x80", 4) << false
                               << QStringLiteral("Cannot decode a message of 4 bytes: it is not UTF-8");
    QTest::newRow("closed halfway") << header(10) + QByteArray("abc") << true
                                    << QStringLiteral("Cannot read a message of 10 bytes: the peer closed the connection after 3 bytes");
    QTest::newRow("closed inside the length") << QByteArray("\0\0", 2) << true
                                              << QStringLiteral(
                                                     "Cannot read the length of a message: the peer closed the connection after 2 bytes");
    QTest::newRow("connected and closed") << QByteArray() << true << QString();
}

void TestSingleApp::hostilePeerIsDropped()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, peerCloses);
    QFETCH(QString, warning);
    const QString id = uniqueId("hostile");
    QtLocalPeer primary(nullptr, id);
    QVERIFY(!primary.isClient());
    QSignalSpy received(&primary, SIGNAL(messageReceived(QString)));
    testsupport::LogCatcher log;

    {
        QLocalSocket socket;
        socket.connectToServer(serverPath(id));
        QVERIFY(socket.waitForConnected(5000));
        socket.write(bytes);
        if (peerCloses) {
            if (!bytes.isEmpty())
                QVERIFY(socket.waitForBytesWritten(5000));
            socket.disconnectFromServer();
        } else {
            // The primary hangs up as soon as it has seen enough, well before its read time-out.
            QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
            QCOMPARE(socket.readAll(), QByteArray());
        }
    }
    const QStringList expected = warning.isEmpty() ? QStringList() : QStringList {warning};
    QTRY_COMPARE(log.warnings(), expected);

    // The primary still serves a real instance.
    Child sender({QStringLiteral("instance"), id, QStringLiteral("1"), QStringLiteral("after")});
    QTRY_VERIFY_WITH_TIMEOUT(sender.finished(), startTimeout); // spinning: the primary lives in this process
    QCOMPARE(sender.process.exitCode(), 0);
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.at(0).at(0).toString(), QStringLiteral("after#0"));
    QCOMPARE(log.warnings(), expected);
}

void TestSingleApp::pendingBytesAreBounded()
{
    const QString id = uniqueId("budget");
    QtLocalPeer primary(nullptr, id);
    QVERIFY(!primary.isClient());
    QSignalSpy received(&primary, SIGNAL(messageReceived(QString)));
    testsupport::LogCatcher log;

    // Each announces the largest message and sends nothing more.
    const int fitting = int(maxPendingBytes / maxMessageBytes);
    std::vector<std::unique_ptr<QLocalSocket>> sockets;
    for (int i = 0; i <= fitting; ++i) {
        sockets.emplace_back(new QLocalSocket);
        sockets.back()->connectToServer(serverPath(id));
        QVERIFY(sockets.back()->waitForConnected(5000));
        sockets.back()->write(header(maxMessageBytes));
    }
    auto hungUp = [&sockets] {
        int count = 0;
        for (const auto &socket : sockets)
            count += socket->state() == QLocalSocket::UnconnectedState ? 1 : 0;
        return count;
    };
    QTRY_COMPARE(log.warnings(),
                 QStringList {QStringLiteral("Cannot accept a message of 1048576 bytes while %1 bytes are pending").arg(maxPendingBytes)});
    QTRY_COMPARE(hungUp(), 1);

    // Once those peers go, their share is free again.
    sockets.clear();
    QTRY_COMPARE(log.warnings().size(), 1 + fitting); // each closed before its message was complete
    QLocalSocket socket;
    socket.connectToServer(serverPath(id));
    QVERIFY(socket.waitForConnected(5000));
    socket.write(header(maxMessageBytes) + QByteArray(int(maxMessageBytes), 'b'));
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(received.at(0).at(0).toString().size(), int(maxMessageBytes));
}

void TestSingleApp::stalledPeerDoesNotHoldUpOthers()
{
    const QString id = uniqueId("stalled");
    QtLocalPeer primary(nullptr, id);
    QVERIFY(!primary.isClient());
    QSignalSpy received(&primary, SIGNAL(messageReceived(QString)));
    testsupport::LogCatcher log;

    QLocalSocket stalled;
    stalled.connectToServer(serverPath(id));
    QVERIFY(stalled.waitForConnected(5000));
    stalled.write(header(100) + QByteArray(10, 's'));

    Child sender({QStringLiteral("instance"), id, QStringLiteral("2"), QStringLiteral("meanwhile")});
    QTRY_VERIFY_WITH_TIMEOUT(sender.finished(), startTimeout);
    QCOMPARE(sender.process.exitCode(), 0);
    QCOMPARE(received.size(), 2);
    QCOMPARE(received.at(1).at(0).toString(), QStringLiteral("meanwhile#1"));

    QTRY_COMPARE_WITH_TIMEOUT(stalled.state(), QLocalSocket::UnconnectedState, readTimeoutMs + 10000);
    QCOMPARE(log.warnings(), QStringList {QStringLiteral("Cannot read a message from a peer within 5000 ms")});
    QCOMPARE(received.size(), 2);
}

void TestSingleApp::lockedFileRules()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("rules.lock"));
    QVERIFY(testsupport::writeFile(path, "content"));
    const QString quoted = QLatin1Char('"') + path + QLatin1Char('"');
    testsupport::LogCatcher log;

    QtLockedFile file(path);
    QVERIFY(!file.lock(QtLockedFile::ReadLock));
    QVERIFY(!file.unlock());
    QVERIFY(!file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(log.warnings(),
             (QStringList {QStringLiteral("Cannot lock %1 because it is not open").arg(quoted),
                           QStringLiteral("Cannot unlock %1 because it is not open").arg(quoted),
                           QStringLiteral("Cannot open %1 with Truncate: truncate it after taking the write lock").arg(quoted)}));
    QCOMPARE(QFileInfo(path).size(), 7);
    log.clear();

    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(!file.lock(QtLockedFile::WriteLock)); // a write lock needs a file open for writing
    QCOMPARE(log.warnings().size(), 1);
    QVERIFY(log.warnings().at(0).startsWith(QStringLiteral("Cannot lock %1 ").arg(quoted)));
    QVERIFY(file.lock(QtLockedFile::ReadLock));
    QCOMPARE(file.lockMode(), QtLockedFile::ReadLock);
    file.close();
    QVERIFY(!file.isLocked());
    log.clear();

    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.lockMode(), QtLockedFile::NoLock);
    QVERIFY(file.unlock());
    QVERIFY(file.lock(QtLockedFile::ReadLock, false));
    QCOMPARE(file.lockMode(), QtLockedFile::ReadLock);
    QVERIFY(file.lock(QtLockedFile::WriteLock, false));
    QCOMPARE(file.lockMode(), QtLockedFile::WriteLock);
    QVERIFY(file.isLocked());
    QVERIFY(file.lock(QtLockedFile::NoLock));
    QCOMPARE(file.lockMode(), QtLockedFile::NoLock);
    QVERIFY(!file.isLocked());
    QCOMPARE(log.warnings(), QStringList());
}

void TestSingleApp::locksAcrossProcesses_data()
{
    QTest::addColumn<QString>("held");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("granted");
    QTest::newRow("read beside read") << QStringLiteral("read") << int(QtLockedFile::ReadLock) << true;
    QTest::newRow("write beside read") << QStringLiteral("read") << int(QtLockedFile::WriteLock) << false;
    QTest::newRow("read beside write") << QStringLiteral("write") << int(QtLockedFile::ReadLock) << false;
    QTest::newRow("write beside write") << QStringLiteral("write") << int(QtLockedFile::WriteLock) << false;
}

void TestSingleApp::locksAcrossProcesses()
{
    QFETCH(QString, held);
    QFETCH(int, wanted);
    QFETCH(bool, granted);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("shared.lock"));
    QVERIFY(testsupport::writeFile(path, QByteArray()));
    testsupport::LogCatcher log;

    Child holder({QStringLiteral("hold"), path, held});
    QTRY_VERIFY_WITH_TIMEOUT(holder.has("locked"), startTimeout);
    QtLockedFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const auto mode = QtLockedFile::LockMode(wanted);
    QCOMPARE(file.lock(mode, false), granted);
    QCOMPARE(file.lockMode(), granted ? mode : QtLockedFile::NoLock);
    QVERIFY(file.unlock());

    // The kernel drops a killed holder's lock.
    holder.process.kill();
    QVERIFY(holder.process.waitForFinished(10000));
    QVERIFY(file.lock(QtLockedFile::WriteLock, false));
    QCOMPARE(log.warnings(), QStringList());
}

void TestSingleApp::blockingLockWaitsForTheHolder()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("wait.lock"));
    QVERIFY(testsupport::writeFile(path, QByteArray()));
    auto file = std::make_unique<QtLockedFile>(path);
    QVERIFY(file->open(QIODevice::ReadWrite));
    QVERIFY(file->lock(QtLockedFile::WriteLock));

    Child waiter({QStringLiteral("hold"), path, QStringLiteral("read")});
    QVERIFY(waiter.process.waitForStarted(startTimeout));
    QVERIFY(!waiter.process.waitForReadyRead(500));
    QVERIFY(!waiter.has("locked"));
    file.reset(); // the destructor lets go
    QTRY_VERIFY_WITH_TIMEOUT(waiter.has("locked"), startTimeout);

    QtLockedFile again(path);
    QVERIFY(again.open(QIODevice::ReadWrite));
    QVERIFY(!again.lock(QtLockedFile::WriteLock, false));
    QVERIFY(again.lock(QtLockedFile::ReadLock, false));
}

QTEST_MAIN(TestSingleApp)
#include "tst_singleapp.moc"

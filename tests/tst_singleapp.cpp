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
    usedIds << QStringLiteral("lumo-test-%1-%2").arg(QCoreApplication::applicationPid()).arg(QLatin1String(name));
    return usedIds.constLast();
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
        process.kill();
        process.waitForFinished(10000);
    }
    QStringList lines()
    {
        text += QString::fromUtf8(process.readAllStandardOutput());
        return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    bool has(const char *line) { return lines().contains(QLatin1String(line)); }
    QStringList messages()
    {
        const QRegularExpression prefix(QStringLiteral("^message "));
        return lines().filter(prefix).replaceInStrings(prefix, QString());
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
    void racingInstancesElectOnePrimaryThatCanBeReplaced();
    void rawPeers_data();
    void rawPeers();
    void locksAcrossProcesses_data();
    void locksAcrossProcesses();
};

void TestSingleApp::cleanupTestCase()
{
    // Lock files outlive their primaries by design; these ids are never used again.
    for (const QString &id : std::as_const(usedIds)) {
        QVERIFY(!QFileInfo::exists(serverPath(id)));
        QFile::remove(serverPath(id) + QLatin1String(".lock"));
    }
}

void TestSingleApp::racingInstancesElectOnePrimaryThatCanBeReplaced()
{
    const QString id = uniqueId("race");
    const int instances = 30, perInstance = 4;
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < instances; ++i)
        children.emplace_back(new Child({QStringLiteral("race"), id, QString::number(perInstance), QStringLiteral("c%1").arg(i)}));
    const auto all = [&children](bool (*test)(Child &)) {
        return std::all_of(children.begin(), children.end(), [test](const std::unique_ptr<Child> &child) { return test(*child); });
    };
    QTRY_VERIFY_WITH_TIMEOUT(all([](Child &child) { return child.has("ready"); }), 50000);
    for (const auto &child : children)
        child->process.write("go\n");
    QTRY_VERIFY_WITH_TIMEOUT(all([](Child &child) { return child.finished() || child.has("primary"); }), 50000);

    Child *primary = nullptr;
    QStringList expected;
    for (int i = 0; i < instances; ++i) {
        Child &child = *children[size_t(i)];
        if (child.has("primary")) {
            QVERIFY2(!primary, "two primaries");
            QVERIFY(!child.finished());
            primary = &child;
            continue;
        }
        QCOMPARE(child.process.exitCode(), 0);
        QCOMPARE(child.lines(), (QStringList {QStringLiteral("ready"), QStringLiteral("sent %1").arg(perInstance)}));
        for (int m = 0; m < perInstance; ++m)
            expected << QStringLiteral("c%1#%2").arg(i).arg(m);
    }
    QVERIFY(primary);
    QTRY_COMPARE(primary->messages().size(), expected.size());
    // Instances interleave freely; each one's own messages keep their order.
    QStringList messages = primary->messages();
    const auto instance = [](const QString &message) { return message.section(QLatin1Char('#'), 0, 0).mid(1).toInt(); };
    std::stable_sort(messages.begin(), messages.end(),
                     [&instance](const QString &a, const QString &b) { return instance(a) < instance(b); });
    QCOMPARE(messages, expected);
    // Each message brought the minimised activation window back.
    QTRY_COMPARE(primary->lines().filter(QStringLiteral("window")), QStringList(expected.size(), QStringLiteral("window restored")));

    // Killed outright, the primary leaves its socket behind; the next start must not trip over it.
    primary->process.kill();
    QVERIFY(primary->process.waitForFinished(10000));
    QVERIFY(QFileInfo::exists(serverPath(id)));
    Child next({QStringLiteral("instance"), id});
    QTRY_VERIFY_WITH_TIMEOUT(next.has("primary"), startTimeout);
    QtLocalPeer peer(nullptr, id);
    QVERIFY(peer.isClient());
    QVERIFY(peer.sendMessage(QStringLiteral("from the test"), 10000));
    QVERIFY(peer.sendMessage(QStringLiteral("quit"), 10000));
    QVERIFY(next.process.waitForFinished(10000));
    QCOMPARE(next.process.exitCode(), 0);
    QCOMPARE(next.messages(), (QStringList {QStringLiteral("from the test"), QStringLiteral("quit")}));
    QVERIFY(!QFileInfo::exists(serverPath(id)));
    // With no instance left this peer becomes the primary, which has no one to send to.
    QVERIFY(!peer.isClient());
    QVERIFY(!peer.sendMessage(QStringLiteral("nobody"), 1000));
}

void TestSingleApp::rawPeers_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("peerCloses");
    QTest::addColumn<QStringList>("delivered");
    QTest::addColumn<QString>("warning");
    const QString text = QStringLiteral("Gr\u00fc\u00dfe \u4f60\u597d \U0001F600\n--lang deu");
    const QByteArray limit(int(maxMessageBytes), 'a');
    QTest::newRow("empty") << header(0) << false << QStringList(QString()) << QString();
    QTest::newRow("non-ASCII") << header(quint32(text.toUtf8().size())) + text.toUtf8() << false << QStringList(text) << QString();
    QTest::newRow("exactly the limit") << header(maxMessageBytes) + limit << false << QStringList(QString::fromLatin1(limit)) << QString();
    QTest::newRow("huge length") << header(0xffffffffu) << false << QStringList()
                                 << QStringLiteral("Cannot accept a message of 4294967295 bytes; the limit is 1048576");
    QTest::newRow("one byte over the limit") << header(maxMessageBytes + 1) + QByteArray(4096, 'x') << false << QStringList()
                                             << QStringLiteral("Cannot accept a message of 1048577 bytes; the limit is 1048576");
    QTest::newRow("not UTF-8") << header(4) + QByteArray("\xff\xfe\xc0\x80", 4) << false << QStringList()
                               << QStringLiteral("Cannot decode a message of 4 bytes: it is not UTF-8");
    QTest::newRow("closed halfway") << header(10) + QByteArray("abc") << true << QStringList()
                                    << QStringLiteral("Cannot read a message of 10 bytes: the peer closed the connection after 3 bytes");
    QTest::newRow("connected and closed") << QByteArray() << true << QStringList() << QString();
}

void TestSingleApp::rawPeers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, peerCloses);
    QFETCH(QStringList, delivered);
    QFETCH(QString, warning);
    const QString id = uniqueId("raw");
    QtLocalPeer primary(nullptr, id);
    QVERIFY(!primary.isClient());
    QVERIFY(QtLocalPeer(nullptr, id).isClient());
    QSignalSpy received(&primary, SIGNAL(messageReceived(QString)));
    testsupport::LogCatcher log;
    {
        QLocalSocket socket;
        socket.connectToServer(serverPath(id));
        QVERIFY(socket.waitForConnected(5000));
        socket.write(bytes);
        if (peerCloses) {
            QVERIFY(bytes.isEmpty() || socket.waitForBytesWritten(5000));
            socket.disconnectFromServer();
        } else {
            // The primary hangs up as soon as it has seen enough, well before its read time-out.
            QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
            QCOMPARE(socket.readAll(), delivered.isEmpty() ? QByteArray() : QByteArray(1, receipt));
        }
    }
    const QStringList warnings = warning.isEmpty() ? QStringList() : QStringList(warning);
    QTRY_COMPARE(log.warnings(), warnings);
    delivered << QStringLiteral("after#0");

    // The primary, in this process, still serves a real instance.
    Child sender({QStringLiteral("instance"), id, QStringLiteral("1"), QStringLiteral("after")});
    QTRY_VERIFY_WITH_TIMEOUT(sender.finished(), startTimeout); // spinning: the primary lives in this process
    QCOMPARE(sender.process.exitCode(), 0);
    QList<QVariantList> messages;
    for (const QString &message : std::as_const(delivered))
        messages << QVariantList {message};
    QTRY_COMPARE(received, messages);
    QCOMPARE(log.warnings(), warnings);
}

void TestSingleApp::locksAcrossProcesses_data()
{
    QTest::addColumn<QString>("held");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("granted");
    QTest::newRow("read beside read") << QStringLiteral("read") << QStringLiteral("read") << true;
    QTest::newRow("write beside read") << QStringLiteral("read") << QStringLiteral("write") << false;
    QTest::newRow("read beside write") << QStringLiteral("write") << QStringLiteral("read") << false;
    QTest::newRow("write beside write") << QStringLiteral("write") << QStringLiteral("write") << false;
}

void TestSingleApp::locksAcrossProcesses()
{
    QFETCH(QString, held);
    QFETCH(QString, wanted);
    QFETCH(bool, granted);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("shared.lock"));
    QVERIFY(testsupport::writeFile(path, QByteArray()));
    testsupport::LogCatcher log;
    Child holder({QStringLiteral("hold"), path, held});
    QTRY_VERIFY_WITH_TIMEOUT(holder.has("locked"), startTimeout);

    QtLockedFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QtLockedFile::LockMode mode = wanted == QLatin1String("read") ? QtLockedFile::ReadLock : QtLockedFile::WriteLock;
    QCOMPARE(file.lock(mode, false), granted);
    QCOMPARE(file.lockMode(), granted ? mode : QtLockedFile::NoLock);
    QVERIFY(file.unlock());

    // A blocking lock in another process waits for the holder, whose lock the kernel drops when it is killed.
    Child waiter({QStringLiteral("hold"), path, wanted});
    QTRY_VERIFY_WITH_TIMEOUT(waiter.has("waiting"), startTimeout);
    if (granted)
        QTRY_VERIFY(waiter.has("locked"));
    else
        QVERIFY(!waiter.process.waitForReadyRead(500));
    holder.process.kill();
    QVERIFY(holder.process.waitForFinished(10000));
    QTRY_VERIFY(waiter.has("locked"));
    QVERIFY(!file.lock(QtLockedFile::WriteLock, false));
    QCOMPARE(log.warnings(), QStringList());
}

QTEST_MAIN(TestSingleApp)
#include "tst_singleapp.moc"

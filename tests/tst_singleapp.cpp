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
using namespace Qt::StringLiterals;

namespace
{
const int startTimeout = 30000;

QStringList usedIds;

QString uniqueId(const char *name)
{
    usedIds << u"lumo-test-%1-%2"_s.arg(QCoreApplication::applicationPid()).arg(QLatin1String(name));
    return usedIds.constLast();
}

QByteArray header(quint32 length)
{
    QByteArray bytes(4, '\0');
    qToBigEndian<quint32>(length, bytes.data());
    return bytes;
}

/** A running singleapp_peer and the lines it printed. */
struct Child {
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
        return text.split(u'\n', Qt::SkipEmptyParts);
    }
    bool has(const char *line) { return lines().contains(QLatin1String(line)); }
    QStringList messages()
    {
        const QRegularExpression prefix(u"^message "_s);
        return lines().filter(prefix).replaceInStrings(prefix, QString());
    }
    bool finished() const { return process.state() == QProcess::NotRunning; }

    QProcess process;
    QString text;
};
}

class TestSingleApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase()
    {
        // Lock files outlive their primaries by design; these ids are never used again.
        for (const QString &id : std::as_const(usedIds)) {
            QVERIFY(!QFileInfo::exists(serverPath(id)));
            QFile::remove(serverPath(id) + u".lock"_s);
        }
    }

    void racingInstancesElectOnePrimaryThatCanBeReplaced()
    {
        const QString id = uniqueId("race");
        const int instances = 30, perInstance = 4;
        std::vector<std::unique_ptr<Child>> children;
        for (int i = 0; i < instances; ++i)
            children.emplace_back(new Child({u"race"_s, id, QString::number(perInstance), u"c%1"_s.arg(i)}));
        const auto all = [&children](auto test) {
            return std::all_of(children.begin(), children.end(), [&](auto &child) { return test(*child); });
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
                QVERIFY2(!primary && !child.finished(), "two primaries");
                primary = &child;
                continue;
            }
            QCOMPARE(child.process.exitCode(), 0);
            QCOMPARE(child.lines(), (QStringList {u"ready"_s, u"sent %1"_s.arg(perInstance)}));
            for (int m = 0; m < perInstance; ++m)
                expected << u"c%1#%2"_s.arg(i).arg(m);
        }
        QVERIFY(primary);
        QTRY_COMPARE(primary->messages().size(), expected.size());
        // Instances interleave freely; each one's own messages keep their order.
        QStringList messages = primary->messages();
        const auto instance = [](const QString &message) { return message.section(u'#', 0, 0).mid(1).toInt(); };
        std::stable_sort(messages.begin(), messages.end(), [&](const QString &a, const QString &b) { return instance(a) < instance(b); });
        QCOMPARE(messages, expected);
        // Each message brought the minimised activation window back.
        QTRY_COMPARE(primary->lines().filter(u"window"_s), QStringList(expected.size(), u"window restored"_s));

        // Killed outright, the primary leaves its socket behind; the next start must not trip over it.
        primary->process.kill();
        QVERIFY(primary->process.waitForFinished(10000));
        QVERIFY(QFileInfo::exists(serverPath(id)));
        Child next({u"instance"_s, id});
        QTRY_VERIFY_WITH_TIMEOUT(next.has("primary"), startTimeout);
        QtLocalPeer peer(nullptr, id);
        QVERIFY(peer.isClient());
        QVERIFY(peer.sendMessage(u"from the test"_s, 10000));
        QVERIFY(peer.sendMessage(u"quit"_s, 10000));
        QVERIFY(next.process.waitForFinished(10000));
        QCOMPARE(next.process.exitCode(), 0);
        QCOMPARE(next.messages(), (QStringList {u"from the test"_s, u"quit"_s}));
        QVERIFY(!QFileInfo::exists(serverPath(id)));
        // With no instance left this peer becomes the primary, which has no one to send to.
        QVERIFY(!peer.isClient());
        QVERIFY(!peer.sendMessage(u"nobody"_s, 1000));
    }

    void rawPeers_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("peerCloses");
        QTest::addColumn<QStringList>("delivered");
        QTest::addColumn<QString>("warning");
        const QString text = u"Gr\u00fc\u00dfe \u4f60\u597d \U0001F600\n--lang deu"_s;
        const QByteArray limit(int(maxMessageBytes), 'a');
        QTest::newRow("empty") << header(0) << false << QStringList(QString()) << QString();
        QTest::newRow("non-ASCII") << header(quint32(text.toUtf8().size())) + text.toUtf8() << false << QStringList(text) << QString();
        QTest::newRow("exactly the limit") << header(maxMessageBytes) + limit << false << QStringList(QString::fromLatin1(limit))
                                           << QString();
        QTest::newRow("huge length") << header(0xffffffffu) << false << QStringList()
                                     << u"Cannot accept a message of 4294967295 bytes; the limit is 1048576"_s;
        QTest::newRow("one byte over the limit") << header(maxMessageBytes + 1) + QByteArray(4096, 'x') << false << QStringList()
                                                 << u"Cannot accept a message of 1048577 bytes; the limit is 1048576"_s;
        QTest::newRow("not UTF-8") << header(4) + QByteArray("\xff\xfe\xc0\x80", 4) << false << QStringList()
                                   << u"Cannot decode a message of 4 bytes: it is not UTF-8"_s;
        QTest::newRow("closed halfway") << header(10) + QByteArray("abc") << true << QStringList()
                                        << u"Cannot read a message of 10 bytes: the peer closed the connection after 3 bytes"_s;
        QTest::newRow("connected and closed") << QByteArray() << true << QStringList() << QString();
    }

    void rawPeers()
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

        // The primary, in this process, still serves a real instance.
        Child sender({u"instance"_s, id, u"1"_s, u"after"_s});
        QTRY_VERIFY_WITH_TIMEOUT(sender.finished(), startTimeout); // spinning: the primary lives in this process
        QCOMPARE(sender.process.exitCode(), 0);
        QList<QVariantList> messages;
        for (const QString &message : delivered << u"after#0"_s)
            messages << QVariantList {message};
        QTRY_COMPARE(received, messages);
        QCOMPARE(log.warnings(), warnings);
    }

    void locksAcrossProcesses_data()
    {
        QTest::addColumn<QString>("held");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<bool>("granted");
        QTest::newRow("read beside read") << u"read"_s << u"read"_s << true;
        QTest::newRow("write beside read") << u"read"_s << u"write"_s << false;
        QTest::newRow("read beside write") << u"write"_s << u"read"_s << false;
        QTest::newRow("write beside write") << u"write"_s << u"write"_s << false;
    }

    void locksAcrossProcesses()
    {
        QFETCH(QString, held);
        QFETCH(QString, wanted);
        QFETCH(bool, granted);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"shared.lock"_s);
        QVERIFY(testsupport::writeFile(path, QByteArray()));
        testsupport::LogCatcher log;
        Child holder({u"hold"_s, path, held});
        QTRY_VERIFY_WITH_TIMEOUT(holder.has("locked"), startTimeout);

        QtLockedFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QtLockedFile::LockMode mode = wanted == u"read"_s ? QtLockedFile::ReadLock : QtLockedFile::WriteLock;
        QCOMPARE(file.lock(mode, false), granted);
        QCOMPARE(file.lockMode(), granted ? mode : QtLockedFile::NoLock);
        QVERIFY(file.unlock());

        // A blocking lock in another process waits for the holder, whose lock the kernel drops when it is killed.
        Child waiter({u"hold"_s, path, wanted});
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
};

QTEST_MAIN(TestSingleApp)
#include "tst_singleapp.moc"

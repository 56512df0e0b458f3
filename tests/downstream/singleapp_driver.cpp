// Runs each Qt Solutions client as the primary, starts it again several times,
// one after another and all at once, and checks that every later start exits at
// once and that the primary reports each of their messages.
//
//   singleapp_driver <folder of the clients> <work folder>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <cstdio>
#include <memory>
#include <vector>

namespace
{
// Far beyond a start that only passes a message on, far below one that stays.
const int secondaryLimitMs = 5000;

struct Client {
    QString program;
    QString reportPrefix;
    std::vector<QStringList> oneByOne;
    std::vector<QStringList> atOnce;
    QStringList expected; // the primary's reports, in order for the starts one by one
};

bool fail(const QString &text)
{
    std::fprintf(stderr, "FAIL: %s\n", text.toUtf8().constData());
    return false;
}

QStringList reports(QProcess &primary, QString &buffer, const QString &prefix)
{
    buffer += QString::fromUtf8(primary.readAllStandardOutput());
    QStringList lines = buffer.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.filter(QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(prefix)));
}

bool waitFor(QProcess &primary, QString &buffer, const QString &prefix, int count)
{
    QElapsedTimer timer;
    timer.start();
    while (reports(primary, buffer, prefix).size() < count && timer.elapsed() < 10000 && primary.state() != QProcess::NotRunning)
        primary.waitForReadyRead(200);
    return reports(primary, buffer, prefix).size() >= count;
}

std::unique_ptr<QProcess> start(const Client &client, const QStringList &arguments, const QString &folder)
{
    auto process = std::make_unique<QProcess>();
    process->setWorkingDirectory(folder);
    // A runtime folder of our own: no other run of these clients shares their ids' sockets.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder + QStringLiteral("/runtime"));
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(client.program, arguments);
    return process;
}

bool finishedAtOnce(QProcess &secondary, const QStringList &arguments, qint64 startedAt, const QElapsedTimer &clock, qint64 &slowest)
{
    const QString name = arguments.join(QLatin1Char(' '));
    if (!secondary.waitForFinished(secondaryLimitMs))
        return fail(QStringLiteral("the start with \"%1\" still runs after %2 ms").arg(name).arg(secondaryLimitMs));
    slowest = qMax(slowest, clock.elapsed() - startedAt);
    if (secondary.exitStatus() != QProcess::NormalExit || secondary.exitCode() != 0)
        return fail(QStringLiteral("the start with \"%1\" exited with %2").arg(name).arg(secondary.exitCode()));
    if (secondary.readAllStandardOutput().contains("primary"))
        return fail(QStringLiteral("the start with \"%1\" became a second primary").arg(name));
    return true;
}

bool run(const Client &client, const QString &folder)
{
    QString buffer;
    auto primary = start(client, {}, folder);
    if (!waitFor(*primary, buffer, QStringLiteral("primary"), 1))
        return fail(client.program + QStringLiteral(" did not start as the primary"));

    QElapsedTimer clock;
    clock.start();
    qint64 slowest = 0;
    for (const QStringList &arguments : client.oneByOne) {
        const qint64 startedAt = clock.elapsed();
        auto secondary = start(client, arguments, folder);
        if (!finishedAtOnce(*secondary, arguments, startedAt, clock, slowest))
            return false;
    }
    std::vector<std::unique_ptr<QProcess>> together;
    const qint64 startedAt = clock.elapsed();
    for (const QStringList &arguments : client.atOnce)
        together.push_back(start(client, arguments, folder));
    for (size_t i = 0; i < together.size(); ++i) {
        if (!finishedAtOnce(*together[i], client.atOnce[i], startedAt, clock, slowest))
            return false;
    }

    const int count = int(client.expected.size());
    waitFor(*primary, buffer, client.reportPrefix, count);
    QStringList got = reports(*primary, buffer, client.reportPrefix);
    QStringList want = client.expected;
    // The starts one by one report in order; those at once in any order.
    const int ordered = count - int(client.atOnce.size());
    const bool inOrder = got.mid(0, ordered) == want.mid(0, ordered);
    std::sort(got.begin() + std::min(ordered, int(got.size())), got.end());
    std::sort(want.begin() + ordered, want.end());
    if (!inOrder || got != want)
        return fail(QStringLiteral("%1 reported\n  %2\ninstead of\n  %3")
                        .arg(client.program, got.join(QStringLiteral("\n  ")), want.join(QStringLiteral("\n  "))));

    auto last = start(client, {QStringLiteral("--quit")}, folder);
    if (!finishedAtOnce(*last, {QStringLiteral("--quit")}, clock.elapsed(), clock, slowest))
        return false;
    if (!primary->waitForFinished(10000) || primary->exitCode() != 0)
        return fail(client.program + QStringLiteral(" did not end on --quit"));
    std::printf("%s: %d messages, slowest later start %lld ms\n", QFileInfo(client.program).fileName().toUtf8().constData(), count,
                slowest);
    return true;
}

// What a primary reports for each of these starts, in order: its command line after @p prefix.
QStringList reported(const QString &prefix, const std::vector<QStringList> &oneByOne, const std::vector<QStringList> &atOnce)
{
    QStringList result;
    for (const auto *starts : {&oneByOne, &atOnce}) {
        for (const QStringList &arguments : *starts)
            result << prefix + arguments.join(QLatin1Char(' '));
    }
    return result;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 3)
        return 2;
    const QString bin = QString::fromLocal8Bit(argv[1]) + QLatin1Char('/');
    const QString folder = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(folder + QStringLiteral("/docs"));
    QDir().mkpath(folder + QStringLiteral("/runtime"));
    QFile::setPermissions(folder + QStringLiteral("/runtime"), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);

    const std::vector<QStringList> oneByOne = {
        {QStringLiteral("first")}, {QStringLiteral("two"), QStringLiteral("words")}, {QStringLiteral("grüße, 世界")}, {}};
    const std::vector<QStringList> atOnce = {{QStringLiteral("a")}, {QStringLiteral("b")}, {QStringLiteral("c")}, {QStringLiteral("d")}};

    // The viewer gets relative names from a folder that is not its own.
    const QStringList files = {QStringLiteral("alpha.txt"), QStringLiteral("beta.txt"), QStringLiteral("with space.txt"),
                               QStringLiteral("ä.txt"),     QStringLiteral("c1.txt"),   QStringLiteral("c2.txt"),
                               QStringLiteral("c3.txt")};
    QStringList opened;
    for (const QString &file : files) {
        QFile out(folder + QStringLiteral("/docs/") + file);
        if (!out.open(QIODevice::WriteOnly)) {
            fail(QStringLiteral("cannot write ") + out.fileName());
            return 1;
        }
        out.write(QStringLiteral("text of %1").arg(file).toUtf8());
        opened << QStringLiteral("opened %1: text of %1").arg(file);
    }
    Client viewer {bin + QStringLiteral("viewer"),
                   QStringLiteral("opened "),
                   {{QStringLiteral("docs/alpha.txt")},
                    {QStringLiteral("docs/beta.txt"), QStringLiteral("docs/with space.txt")},
                    {QStringLiteral("docs/ä.txt")},
                    {}},
                   {{QStringLiteral("docs/c1.txt")}, {QStringLiteral("docs/c2.txt")}, {QStringLiteral("docs/c3.txt")}},
                   opened};

    const std::vector<Client> clients = {
        {bin + QStringLiteral("logwindow"), QStringLiteral("logged: "), oneByOne, atOnce,
         reported(QStringLiteral("logged: "), oneByOne, atOnce)},
        viewer,
        {bin + QStringLiteral("console"), QStringLiteral("message: "), oneByOne, atOnce,
         reported(QStringLiteral("message: "), oneByOne, atOnce)},
    };
    bool ok = true;
    for (const Client &client : clients)
        ok = run(client, folder) && ok;
    std::printf("%s\n", ok ? "single-instance clients ok" : "single-instance clients FAILED");
    return ok ? 0 : 1;
}

// Runs each Qt Solutions client as the primary, starts it again several times,
// and checks that every later start exits at once and that the primary reports
// each of their messages in order.
//
//   singleapp_driver <folder of the clients> <work folder>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace
{
// Far beyond a start that only passes a message on, far below one that stays.
const int secondaryLimitMs = 5000;

using Starts = std::vector<QStringList>;
using Reports = std::function<QStringList(const QStringList &arguments)>; // what the primary prints for one start

bool fail(const QString &text)
{
    std::fprintf(stderr, "FAIL: %s\n", text.toUtf8().constData());
    return false;
}

std::unique_ptr<QProcess> start(const QString &program, const QStringList &arguments, const QString &folder)
{
    auto process = std::make_unique<QProcess>();
    process->setWorkingDirectory(folder);
    // A runtime folder of our own: no other run of these clients shares their ids' sockets.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder + QStringLiteral("/runtime"));
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(program, arguments);
    return process;
}

bool finishedAtOnce(QProcess &secondary)
{
    const QString name = secondary.arguments().join(QLatin1Char(' '));
    if (!secondary.waitForFinished(secondaryLimitMs))
        return fail(QStringLiteral("the start with \"%1\" still runs after %2 ms").arg(name).arg(secondaryLimitMs));
    if (secondary.exitStatus() != QProcess::NormalExit || secondary.exitCode() != 0)
        return fail(QStringLiteral("the start with \"%1\" exited with %2").arg(name).arg(secondary.exitCode()));
    if (secondary.readAllStandardOutput().contains("primary"))
        return fail(QStringLiteral("the start with \"%1\" became a second primary").arg(name));
    return true;
}

bool run(const QString &program, const Starts &starts, const Reports &reports, const QString &folder)
{
    auto primary = start(program, {}, folder);
    QStringList lines, expected(QStringLiteral("primary"));
    // The primary's lines once @p count of them are there, or after ten seconds.
    const auto linesAfter = [&](qsizetype count) {
        QElapsedTimer timer;
        timer.start();
        while (lines.size() < count && timer.elapsed() < 10000 && primary->state() != QProcess::NotRunning) {
            primary->waitForReadyRead(200);
            while (primary->canReadLine())
                lines << QString::fromUtf8(primary->readLine()).chopped(1);
        }
        return lines;
    };
    if (linesAfter(1) != expected)
        return fail(program + QStringLiteral(" did not start as the primary"));
    for (const QStringList &arguments : starts) {
        if (!finishedAtOnce(*start(program, arguments, folder)))
            return false;
        expected += reports(arguments);
    }
    if (linesAfter(expected.size()) != expected)
        return fail(QStringLiteral("%1 printed\n  %2\ninstead of\n  %3")
                        .arg(program, lines.join(QStringLiteral("\n  ")), expected.join(QStringLiteral("\n  "))));
    if (!finishedAtOnce(*start(program, {QStringLiteral("--quit")}, folder)) || !primary->waitForFinished(10000) ||
        primary->exitCode() != 0)
        return fail(program + QStringLiteral(" did not end on --quit"));
    std::printf("%s: %d messages\n", qPrintable(program), int(starts.size()));
    return true;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 3)
        return 2;
    const QString bin = QString::fromLocal8Bit(argv[1]) + QLatin1Char('/'), folder = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(folder + QStringLiteral("/runtime"));
    QFile::setPermissions(folder + QStringLiteral("/runtime"), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);

    const Starts words = {{QStringLiteral("first")}, {QStringLiteral("two"), QStringLiteral("words")}, {QStringLiteral("grüße, 世界")}, {}};
    const auto joined = [](const char *prefix) {
        return [prefix](const QStringList &arguments) { return QStringList(QLatin1String(prefix) + arguments.join(QLatin1Char(' '))); };
    };
    // The viewer gets relative names from a folder that is not its own, and opens each file.
    const Starts files = {{QStringLiteral("docs/alpha.txt")},
                          {QStringLiteral("docs/beta.txt"), QStringLiteral("docs/with space.txt")},
                          {QStringLiteral("docs/ä.txt")},
                          {}};
    const auto opened = [](const QStringList &arguments) {
        QStringList result;
        for (const QString &file : arguments)
            result << QStringLiteral("opened %1: text of %1").arg(file.mid(5));
        return result;
    };
    QDir().mkpath(folder + QStringLiteral("/docs"));
    for (const QStringList &arguments : files) {
        for (const QString &file : arguments) {
            QFile out(folder + QLatin1Char('/') + file);
            if (!out.open(QIODevice::WriteOnly) || out.write(QStringLiteral("text of %1").arg(file.mid(5)).toUtf8()) < 0)
                return fail(QStringLiteral("cannot write ") + out.fileName()) ? 0 : 1;
        }
    }

    bool ok = run(bin + QStringLiteral("logwindow"), words, joined("logged: "), folder);
    ok = run(bin + QStringLiteral("viewer"), files, opened, folder) && ok;
    ok = run(bin + QStringLiteral("console"), words, joined("message: "), folder) && ok;
    std::printf("%s\n", ok ? "single-instance clients ok" : "single-instance clients FAILED");
    return ok ? 0 : 1;
}

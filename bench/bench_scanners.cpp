// Worst-case inputs for every scanner of outside data, at growing sizes: the
// time per MiB at the largest size should stay within twice the smallest's.
// The peer column (plain QTextBrowser, for the help browser, whose scan wraps
// Qt's own page parsing) shows what Qt itself spends on the same input.

#include "resources/registries_p.h"
#include "singleapp/localpeer_p.h"

#include <lumo/controls.h>
#include <lumo/help.h>
#include <lumo/singleapplication.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QtEndian>

#include <cstdio>
#include <functional>
#include <malloc.h>
#include <vector>

namespace
{
constexpr qsizetype MiB = 1024 * 1024;

QByteArray repeated(const char *unit, qsizetype bytes, const char *head = "", const char *tail = "")
{
    // Head and tail included, so that an input at a scanner's size limit is still read.
    const QByteArray u(unit);
    QByteArray text(head);
    text += u.repeated(qMax<qsizetype>(1, (bytes - text.size() - qstrlen(tail)) / u.size()));
    return text + tail;
}

QString temporaryFolder;

QString writeInput(const QByteArray &data)
{
    const QString path = temporaryFolder + QStringLiteral("/input");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(data) != data.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void loadStyle(const QByteArray &data)
{
    StyleManager::getInstance()->initialize({writeInput(data)});
}

void loadManifest(const QByteArray &data)
{
    QFile file(temporaryFolder + QStringLiteral("/resource/images.json"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(data) != data.size())
        qFatal("cannot write the manifest");
    file.close();
    ImageManager::getInstance()->initialize(ImageManager::LoadLazily);
}

void sendFrame(const QByteArray &payload)
{
    // Never destroyed: a static peer would outlive the application.
    static QtLocalPeer &primary = *new QtLocalPeer(nullptr, QStringLiteral("lumo-bench-scanners"));
    static QString received;
    static bool primaryReady = !primary.isClient();
    if (!primaryReady)
        qFatal("another primary holds the bench's name");
    static bool connected = QObject::connect(&primary, &QtLocalPeer::messageReceived, [](const QString &m) { received = m; });
    Q_UNUSED(connected)
    received.clear();
    QLocalSocket socket;
    socket.connectToServer(lumo::singleapp::serverPath(QStringLiteral("lumo-bench-scanners")));
    if (!socket.waitForConnected(5000))
        qFatal("the primary does not answer");
    uchar header[4];
    qToBigEndian<quint32>(quint32(payload.size()), header);
    socket.write(reinterpret_cast<const char *>(header), 4);
    // Small pieces: the primary reads each as it arrives.
    for (qsizetype at = 0; at < payload.size(); at += 4096) {
        socket.write(payload.constData() + at, qMin<qsizetype>(4096, payload.size() - at));
        socket.flush();
        QCoreApplication::processEvents();
    }
    QElapsedTimer waited;
    waited.start();
    while (received.size() != payload.size() && waited.elapsed() < 30000) {
        socket.waitForBytesWritten(10);
        QCoreApplication::processEvents();
    }
    if (received.size() != payload.size())
        qFatal("the primary did not deliver the message");
}

// The input both as bytes (for files and sockets) and as text, converted before timing.
struct Input {
    QByteArray bytes;
    QString text;
};

struct Job {
    const char *name;
    std::function<QByteArray(qsizetype)> input;
    std::function<void(const Input &)> run;
    std::vector<qsizetype> sizes = {MiB, 4 * MiB, 16 * MiB};
    // What plain Qt spends on the same input, where the scan is wrapped around a Qt call.
    std::function<void(const Input &)> peer = nullptr;
};

// Per size, the fastest of a few rounds: the machine is shared, and noise only
// ever adds time. The sizes take turns, so that a busy spell hits them all alike.
std::vector<double> millisPerMiB(const Job &job, const std::function<void(const Input &)> &run)
{
    std::vector<Input> inputs;
    for (qsizetype bytes : job.sizes) {
        inputs.push_back({job.input(bytes), QString()});
        inputs.back().text = QString::fromLatin1(inputs.back().bytes);
    }
    std::vector<double> best(inputs.size(), 1e300);
    for (int round = 0; round < 5; ++round) {
        for (size_t i = 0; i < inputs.size(); ++i) {
            QElapsedTimer timer;
            timer.start();
            run(inputs[i]);
            best[i] = qMin(best[i], timer.nsecsElapsed() / 1e6);
        }
    }
    for (size_t i = 0; i < inputs.size(); ++i)
        best[i] /= double(inputs[i].bytes.size()) / MiB;
    return best;
}

void loadStyleInput(const Input &in)
{
    loadStyle(in.bytes);
}

void loadManifestInput(const Input &in)
{
    loadManifest(in.bytes);
}
}

int main(int argc, char **argv)
{
    // Every buffer from one reused heap: otherwise the largest inputs alone get fresh
    // mapped pages, and their page faults would pass for the scanners' growth.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    // Warnings about the hostile inputs are expected; they are not what is measured.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    QTemporaryDir dir;
    temporaryFolder = dir.path();
    qputenv("TMPDIR", QFile::encodeName(dir.path())); // the help cache goes below it
    QApplication app(argc, argv);
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), dir.path() + QStringLiteral("/resource"));
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), dir.path() + QStringLiteral("/user"));
    QDir().mkpath(dir.path() + QStringLiteral("/resource"));
    ImageManager::getInstance()->initialize(ImageManager::LoadLazily);

    HtmlTextBrowser browser;
    LumoButtonPath pathBar;
    LumoTimeComboBox timeBox;
    timeBox.addItems({QStringLiteral("00:00"), QStringLiteral("00:30")});
    timeBox.setEditable(true);
    const char *base = "<base href=\"http://127.0.0.1:9/\">";
    QTextBrowser plain;
    const auto plainHtml = [&plain](const Input &d) { plain.setText(d.text); };
    const std::vector<qsizetype> htmlSizes = {MiB, 4 * MiB, 16 * MiB};

    const std::vector<Job> jobs = {
        {"style.comments.closed", [](qsizetype n) { return repeated("/**/", n, "== component.x ==\n"); }, loadStyleInput},
        {"style.comments.unclosed", [](qsizetype n) { return repeated("/*", n, "== component.x ==\n"); }, loadStyleInput},
        {"style.comments.line", [](qsizetype n) { return repeated("//", n, "== component.x ==\n"); }, loadStyleInput},
        {"style.comments.shortlines", [](qsizetype n) { return repeated("/*//\n", n, "== component.x ==\n"); }, loadStyleInput},
        {"style.sections", [](qsizetype n) { return repeated("==\n== a ==\n", n); }, loadStyleInput},
        {"style.placeholders", [](qsizetype n) { return repeated("TMPIMG_LOCIMG_LOC", n, "== component.x ==\n"); }, loadStyleInput},
        {"style.px.digits", [](qsizetype n) { return repeated("1", n, "", "px"); },
         [](const Input &d) { lumo::scalePxLengths(d.text, 1.5); }},
        {"style.px.lengths", [](qsizetype n) { return repeated("1.5px", n); }, [](const Input &d) { lumo::scalePxLengths(d.text, 1.5); }},
        {"style.px.dots", [](qsizetype n) { return repeated("1.", n, "", "px"); },
         [](const Input &d) { lumo::scalePxLengths(d.text, 1.5); }},
        {"manifest.names", [](qsizetype n) { return repeated("\"a\",", n, "{\"images\":[", "\"a\"]}"); }, loadManifestInput},
        {"manifest.nesting", [](qsizetype n) { return repeated("[", n, "{\"images\":"); }, loadManifestInput},
        {"captions.key", [](qsizetype n) { return QByteArray(n, 'k'); },
         [](const Input &d) { ComponentStrings::getInstance()->getString(d.text); }},
        {"locale.separators", [](qsizetype n) { return QByteArray(n, '_'); },
         [](const Input &d) { LumoLocale::getInstance()->getLanguageByLocale(d.text); }},
        {"filetype.extension", [](qsizetype n) { return QByteArray(n, 'a'); },
         [](const Input &d) { FileTypeMap::getInstance()->getFiletypeMapping(d.text, false); }},
        {"timetext.custom", [](qsizetype n) { return repeated("1:", n); },
         [&timeBox](const Input &d) { timeBox.setCurrentText(d.bytes.toStdString()); }},
        {"path.separators", [](qsizetype n) { return QByteArray(n, '/'); }, [&pathBar](const Input &d) { pathBar.refresh(d.text); }},
        {"html.openers", [base](qsizetype n) { return repeated("<img", n, base); }, [&browser](const Input &d) { browser.setText(d.text); },
         htmlSizes, plainHtml},
        {"html.sources", [base](qsizetype n) { return repeated("<img src=\"a.png\">", n, base); },
         [&browser](const Input &d) { browser.setText(d.text); }, htmlSizes, plainHtml},
        {"html.unterminated", [base](qsizetype n) { return repeated("<img src=\"", n, base); },
         [&browser](const Input &d) { browser.setText(d.text); }, htmlSizes, plainHtml},
        {"ipc.frame",
         [](qsizetype n) { return QByteArray(n, 'm'); },
         [](const Input &d) { sendFrame(d.bytes); },
         {lumo::singleapp::maxMessageBytes / 16, lumo::singleapp::maxMessageBytes / 4, lumo::singleapp::maxMessageBytes}},
    };

    const QStringList only = app.arguments().mid(1);
    int failures = 0;
    for (const Job &job : jobs) {
        if (!only.isEmpty() && !only.contains(QLatin1String(job.name)))
            continue;
        const auto measure = [&job](const std::function<void(const Input &)> &run, const char *label) {
            const std::vector<double> perMiB = millisPerMiB(job, run);
            std::printf("%-26s %-5s", job.name, label);
            for (size_t i = 0; i < perMiB.size(); ++i)
                std::printf("  %7.2f ms/MiB at %5.2f MiB", perMiB[i], double(job.sizes[i]) / MiB);
            std::printf("  ratio %.2f\n", perMiB.back() / perMiB.front());
            return perMiB;
        };
        const std::vector<double> perMiB = measure(job.run, "lumo");
        const double ratio = perMiB.back() / perMiB.front();
        const bool met = ratio <= 2.0;
        failures += met ? 0 : 1;
        QByteArray peer("-");
        if (job.peer)
            peer = QByteArray::number(measure(job.peer, "qt").back(), 'f', 2) + " ms/MiB";
        std::printf("BENCH|scan.%s|%.2f ms/MiB at %.0f KiB|%s|%.2f|<= 2.00|%s\n", job.name, perMiB.back(), double(job.sizes.back()) / 1024,
                    peer.constData(), ratio, met ? "yes" : "no");
        std::fflush(stdout);
    }
    return failures == 0 ? 0 : 1;
}

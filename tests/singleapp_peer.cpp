// A child process for tst_singleapp. Prints one line per event.
//
//   singleapp_peer instance <id> [count] [tag]  the primary prints "primary", each message as "message <text>"
//                                               and the activation window's state after it; it quits on "quit".
//                                               A secondary sends <tag>#0 ... and prints "sent <delivered>".
//   singleapp_peer race <id> [count] [tag]      as instance, after printing "ready" and reading a line from
//                                               stdin, so that many start at the same moment
//   singleapp_peer hold <file> read|write       prints "waiting", takes the lock (waiting for it), prints
//                                               "locked" and keeps it

#include <lumo/singleapplication.h>

#include <QWidget>

#include <cstdio>

namespace
{
void say(const QString &line)
{
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}
}

class Primary : public QObject
{
    Q_OBJECT
public:
    explicit Primary(QtSingleApplication *app)
        : app(app)
    {
        window.showMinimized();
        app->setActivationWindow(&window);
        connect(app, SIGNAL(messageReceived(QString)), this, SLOT(received(QString)));
        say(QStringLiteral("primary"));
    }

private Q_SLOTS:
    void received(const QString &message)
    {
        say(QLatin1String("message ") + message);
        if (message == QLatin1String("quit"))
            return app->quit();
        ++pendingReports;
        QMetaObject::invokeMethod(this, "reportWindow", Qt::QueuedConnection); // after the activation
    }

    void reportWindow()
    {
        say(QLatin1String(window.isMinimized() ? "window minimized" : window.isVisible() ? "window restored" : "window hidden"));
        // Messages delivered back to back report after all their activations; minimise only after the last.
        if (--pendingReports == 0)
            window.showMinimized();
    }

private:
    QtSingleApplication *app;
    QWidget window;
    int pendingReports = 0;
};

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const QByteArray mode = argv[1];
    QtSingleApplication app(QString::fromLocal8Bit(argv[2]), argc, argv);
    if (mode == "hold") {
        QtLockedFile file(QString::fromLocal8Bit(argv[2]));
        say(QStringLiteral("waiting"));
        if (argc < 4 || !file.open(QIODevice::ReadWrite) ||
            !file.lock(qstrcmp(argv[3], "read") == 0 ? QtLockedFile::ReadLock : QtLockedFile::WriteLock))
            return 3;
        say(QStringLiteral("locked"));
        return app.exec();
    }
    if (mode == "race") {
        say(QStringLiteral("ready"));
        char line[16];
        if (!std::fgets(line, sizeof line, stdin))
            return 4;
    } else if (mode != "instance") {
        return 2;
    }
    if (!app.isRunning()) {
        Primary primary(&app);
        return app.exec();
    }
    const int count = argc > 3 ? QByteArray(argv[3]).toInt() : 1;
    int delivered = 0;
    for (int i = 0; i < count; ++i)
        delivered += app.sendMessage(QString::fromLocal8Bit(argc > 4 ? argv[4] : "hello") + QLatin1Char('#') + QString::number(i), 30000);
    say(QLatin1String("sent ") + QString::number(delivered));
    return delivered == count ? 0 : 1;
}

#include "singleapp_peer.moc"

// A child process for tst_singleapp: one instance of a single-instance
// application, or the holder of a file lock. Prints one line per event.
//
//   singleapp_peer instance <id> [count] [tag]  the primary prints "primary", each "message <text>" and
//                                               the activation window's state; it quits on "quit".
//                                               A client sends <tag>#0 ... and prints "sent <delivered>".
//   singleapp_peer race <id> [count] [tag]      as instance, but prints "ready" and waits for a line on
//                                               stdin first, so that many start at the same moment
//   singleapp_peer takeover <id>                a client that becomes the primary once the running one exits
//   singleapp_peer hold <file> read|write       takes the lock, waiting for it, prints "locked" and keeps it

#include <lumo/singleapplication.h>

#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace
{
void say(const QString &line)
{
    std::fputs(line.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
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
            app->quit();
        else
            QMetaObject::invokeMethod(this, "reportWindow", Qt::QueuedConnection); // after the activation
    }

    void reportWindow()
    {
        say(QLatin1String("window ") + QLatin1String(window.isMinimized() ? "minimized" : "restored") + QLatin1Char(' ') +
            QLatin1String(window.isVisible() ? "visible" : "hidden"));
        window.showMinimized();
    }

private:
    QtSingleApplication *app;
    QWidget window;
};

class Takeover : public QObject
{
    Q_OBJECT
public:
    explicit Takeover(QtSingleApplication *app)
        : app(app)
    {
        say(QStringLiteral("client"));
        connect(&poll, SIGNAL(timeout()), this, SLOT(check()));
        poll.start(50);
    }

private Q_SLOTS:
    void check()
    {
        if (app->isRunning())
            return;
        poll.stop();
        primary = new Primary(app);
        primary->setParent(this);
    }

private:
    QtSingleApplication *app;
    QTimer poll;
    Primary *primary = nullptr;
};

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const QByteArray mode = argv[1];
    QtSingleApplication app(QString::fromLocal8Bit(argv[2]), argc, argv);

    if (mode == "hold") {
        if (argc < 4)
            return 2;
        QtLockedFile file(QString::fromLocal8Bit(argv[2]));
        if (!file.open(QIODevice::ReadWrite))
            return 3;
        if (!file.lock(qstrcmp(argv[3], "read") == 0 ? QtLockedFile::ReadLock : QtLockedFile::WriteLock))
            return 4;
        say(QStringLiteral("locked"));
        return app.exec();
    }
    if (mode == "takeover") {
        if (!app.isRunning())
            return 5;
        Takeover takeover(&app);
        return app.exec();
    }
    if (mode == "race") {
        say(QStringLiteral("ready"));
        char line[16];
        if (!std::fgets(line, sizeof line, stdin))
            return 6;
    } else if (mode != "instance") {
        return 2;
    }
    if (app.isRunning()) {
        const int count = argc > 3 ? QByteArray(argv[3]).toInt() : 1;
        const QString tag = argc > 4 ? QString::fromLocal8Bit(argv[4]) : QStringLiteral("hello");
        int delivered = 0;
        for (int i = 0; i < count; ++i) {
            if (app.sendMessage(tag + QLatin1Char('#') + QString::number(i), 30000))
                ++delivered;
        }
        say(QLatin1String("sent ") + QString::number(delivered));
        return delivered == count ? 0 : 1;
    }
    Primary primary(&app);
    return app.exec();
}

#include "singleapp_peer.moc"

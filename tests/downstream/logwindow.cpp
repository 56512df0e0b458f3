// A Qt Solutions client: a window that logs the command line of every later start.
#include <QtSingleApplication>

#include <QPlainTextEdit>
#include <QTextBlock>
#include <cstdio>

int main(int argc, char **argv)
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // the driver reads each line as it is printed
    QtSingleApplication app(argc, argv);
    const QString message = app.arguments().mid(1).join(QLatin1Char(' '));
    if (app.isRunning())
        return app.sendMessage(message) ? 0 : 1;

    QPlainTextEdit log;
    log.setReadOnly(true);
    log.setWindowTitle(QStringLiteral("Message log"));
    log.show();
    app.setActivationWindow(&log);
    QObject::connect(&app, &QtSingleApplication::messageReceived, &log, [&](const QString &received) {
        if (received == QLatin1String("--quit")) {
            app.quit();
            return;
        }
        log.appendPlainText(received);
        std::printf("logged: %s\n", log.document()->lastBlock().text().toUtf8().constData());
    });
    std::printf("primary\n");
    return app.exec();
}

// A Qt Solutions client without a GUI: prints the command line of every later start.
#include <qtsinglecoreapplication.h>

#include <cstdio>

int main(int argc, char **argv)
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // the driver reads each line as it is printed
    QtSingleCoreApplication app(argc, argv);
    const QString message = app.arguments().mid(1).join(QLatin1Char(' '));
    if (app.isRunning())
        return app.sendMessage(message) ? 0 : 1;

    QObject::connect(&app, &QtSingleCoreApplication::messageReceived, &app, [&](const QString &received) {
        if (received == QLatin1String("--quit")) {
            app.quit();
            return;
        }
        std::printf("message: %s\n", received.toUtf8().constData());
    });
    std::printf("primary\n");
    return app.exec();
}

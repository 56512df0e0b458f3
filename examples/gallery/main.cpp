// The Lumo gallery: every component of the library on a page.
//
//   lumo-gallery [--theme default|dark|DIR] [--lang CODE] [--user-data DIR] [--render DIR]
//
// With --render the pages are drawn to PNG files in DIR (one per page) and their
// paths printed, which is how the gallery is looked at without a display.
//
// Only one interactive gallery runs per user session: a second start hands its
// command line to the open one, which comes to the front, and exits.

#include "gallery.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QStandardPaths>
#include <QTextStream>

int main(int argc, char **argv)
{
    QtSingleApplication app(QStringLiteral("lumo-gallery"), argc, argv);
    QApplication::setApplicationName(QStringLiteral("lumo-gallery"));
    QApplication::setOrganizationName(QStringLiteral("Lumo"));

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption themeOption(QStringLiteral("theme"), QStringLiteral("Theme: default, dark or a theme folder."),
                                         QStringLiteral("theme"));
    const QCommandLineOption langOption(QStringLiteral("lang"), QStringLiteral("Caption language (enu, deu, chs)."),
                                        QStringLiteral("code"));
    const QCommandLineOption dataOption(QStringLiteral("user-data"), QStringLiteral("Per-user data folder."), QStringLiteral("dir"));
    const QCommandLineOption renderOption(QStringLiteral("render"), QStringLiteral("Render every page to PNG files in dir and exit."),
                                          QStringLiteral("dir"));
    parser.addOptions({themeOption, langOption, dataOption, renderOption});
    parser.process(app);
    const bool render = parser.isSet(renderOption);

    // Rendering is headless and always runs, beside an open gallery or not.
    if (!render && app.isRunning()) {
        if (app.sendMessage(QCoreApplication::arguments().join(QLatin1Char('\n'))))
            return 0;
        QTextStream(stderr) << "lumo-gallery: the open gallery does not answer\n";
        return 1;
    }

    gallery::Startup startup;
    startup.themeDir = gallery::themeDir(parser.isSet(themeOption) ? parser.value(themeOption) : QStringLiteral("default"));
    startup.userDataDir =
        parser.isSet(dataOption) ? parser.value(dataOption) : QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    startup.language = parser.value(langOption);
    gallery::startUp(startup);

    gallery::MainWindow window;
    if (render) {
        QTextStream out(stdout);
        return gallery::renderPages(window, parser.value(renderOption), out) ? 0 : 1;
    }
    app.setActivationWindow(&window);
    window.show();
    return app.exec();
}

// A Qt Solutions client: a viewer that opens the files named by every later start.
#include <qtlockedfile.h>
#include <qtsingleapplication.h>

#include <QDir>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <cstdio>

class Viewer : public QTabWidget
{
public:
    void open(const QString &path)
    {
        QtLockedFile file(path);
        if (!file.open(QIODevice::ReadOnly) || !file.lock(QtLockedFile::ReadLock)) {
            std::printf("cannot open %s\n", path.toUtf8().constData());
            return;
        }
        auto *page = new QPlainTextEdit(QString::fromUtf8(file.readAll()));
        page->setReadOnly(true);
        setCurrentIndex(addTab(page, QFileInfo(path).fileName()));
        std::printf("opened %s: %s\n", tabText(currentIndex()).toUtf8().constData(), page->toPlainText().toUtf8().constData());
    }
};

int main(int argc, char **argv)
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // the driver reads each line as it is printed
    QtSingleApplication app(QStringLiteral("lumo-downstream-viewer"), argc, argv);
    QStringList files = app.arguments().mid(1);
    if (files != QStringList {QStringLiteral("--quit")}) {
        for (QString &file : files)
            file = QFileInfo(file).absoluteFilePath(); // the running viewer has a folder of its own
    }
    if (app.isRunning()) {
        for (const QString &file : files) {
            if (!app.sendMessage(file))
                return 1;
        }
        return 0;
    }

    Viewer viewer;
    viewer.setWindowTitle(QStringLiteral("Viewer"));
    for (const QString &file : files)
        viewer.open(file);
    viewer.show();
    app.setActivationWindow(&viewer);
    QObject::connect(&app, &QtSingleApplication::messageReceived, &viewer, [&](const QString &file) {
        if (file == QLatin1String("--quit"))
            app.quit();
        else
            viewer.open(file);
    });
    std::printf("primary\n");
    return app.exec();
}

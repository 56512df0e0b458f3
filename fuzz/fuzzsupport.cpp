#include "fuzzsupport.h"

#include "resources/registries_p.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace fuzzsupport
{
namespace
{
QTemporaryDir *folder = nullptr;
}

void setUp()
{
    if (folder)
        return;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Hostile inputs make the library warn on every run; the warnings are tested elsewhere.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    folder = new QTemporaryDir(QDir::tempPath() + QStringLiteral("/lumo-fuzz-XXXXXX"));
    check(folder->isValid(), "no temporary folder");
    // The application is never torn down (libFuzzer ends with exit()), so neither is the folder's owner.
    std::atexit([] { folder->remove(); });
    // Deep below the root, so that an escape of a few levels from a cache folder still lands where it is seen.
    const QString temporary = root() + QStringLiteral("/a/b/c/tmp");
    QDir().mkpath(temporary);
    qputenv("TMPDIR", QFile::encodeName(temporary));
    static int argc = 1;
    static char name[] = "lumo-fuzz";
    static char *argv[] = {name, nullptr};
    new QApplication(argc, argv);

    const QString resources = root() + QStringLiteral("/resource");
    QDir().mkpath(resources + QStringLiteral("/images"));
    QImage image(8, 8, QImage::Format_ARGB32);
    image.fill(Qt::red);
    image.save(resources + QStringLiteral("/images/a.png"));
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), resources);
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), root() + QStringLiteral("/user"));
    ImageManager::getInstance()->initialize(ImageManager::LoadLazily);
}

QString root()
{
    return folder->path();
}

QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
}

void writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    check(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size(), "cannot write an input file");
}

QStringList filesOutside(const QStringList &allowed)
{
    QStringList files;
    const QDir base(root());
    QDirIterator it(root(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = base.relativeFilePath(it.next());
        bool inside = false;
        for (const QString &place : allowed)
            inside = inside || path == place || path.startsWith(place + QLatin1Char('/'));
        if (!inside)
            files << path;
    }
    files.sort();
    return files;
}

void check(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "fuzz check failed: %s\n", what);
    std::abort();
}

void processEventsFor(int milliseconds)
{
    spin([] { return false; }, milliseconds);
}

void deleteLaterObjects()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
}

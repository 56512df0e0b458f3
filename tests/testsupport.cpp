#include "testsupport.h"

#include "gallery.h"

#include <lumo/registries.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTemporaryDir>

namespace testsupport
{
namespace
{
QtMessageHandler previousHandler = nullptr;
QMutex mutex;
QStringList collected;

void handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg && context.category && qstrcmp(context.category, "debug.message") == 0) {
        QMutexLocker lock(&mutex);
        collected << message;
    }
    if (previousHandler)
        previousHandler(type, context, message);
}
}

LogCatcher::LogCatcher()
{
    clear();
    previousHandler = qInstallMessageHandler(handler);
}

LogCatcher::~LogCatcher()
{
    qInstallMessageHandler(previousHandler);
}

QStringList LogCatcher::warnings() const
{
    QMutexLocker lock(&mutex);
    return collected;
}

QStringList LogCatcher::cannotWarnings() const
{
    QStringList result;
    for (const QString &warning : warnings()) {
        if (warning.startsWith(QLatin1String("Cannot")))
            result << warning;
    }
    return result;
}

void LogCatcher::clear()
{
    QMutexLocker lock(&mutex);
    collected.clear();
}

double expectedScale()
{
    return qEnvironmentVariable("LUMO_TEST_SCALE", QStringLiteral("1.0")).toDouble();
}

int px(double value)
{
    return int(DPIinfo::getInstance()->getDPI() * value);
}

void startWithDefaultTheme(const QTemporaryDir &userData)
{
    gallery::startUp({QStringLiteral(LUMO_THEME_DIR), userData.path(), QStringLiteral("enu")});
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
}

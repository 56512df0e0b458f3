#ifndef LUMO_TESTSUPPORT_H
#define LUMO_TESTSUPPORT_H

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

class QTemporaryDir;

namespace testsupport
{
/** Collects the messages of the library's "debug.message" category while alive. */
class LogCatcher
{
public:
    LogCatcher();
    ~LogCatcher();
    Q_DISABLE_COPY(LogCatcher)

    QStringList warnings() const;
    /** Warnings that begin with "Cannot". */
    QStringList cannotWarnings() const;
    void clear();
};

/** The scale factor this test run was started for (ctest sets it with the screen). */
double expectedScale();

/** A design length on this screen, truncated as the widgets size themselves. */
int px(double value);

/** Runs the library's start-up with the default theme and a per-test user-data folder. */
void startWithDefaultTheme(const QTemporaryDir &userData);

/** Writes @p data to @p path, creating folders; returns false on failure. */
bool writeFile(const QString &path, const QByteArray &data);

/** The bytes of @p path, or nothing when it cannot be read. */
QByteArray readFile(const QString &path);
}

#endif

#ifndef LUMO_FUZZSUPPORT_H
#define LUMO_FUZZSUPPORT_H

// What every fuzz target shares: one offscreen application, private folders
// registered with the library, and a check that an input wrote nowhere else.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>

namespace fuzzsupport
{
/** Starts the application once: offscreen platform, silent logging, registered folders. */
void setUp();
/** The private folder holding everything the targets touch; also the process's temporary folder. */
QString root();
/** @p data as a byte array. */
QByteArray bytes(const uint8_t *data, size_t size);
/** Writes @p data to @p path, replacing it. */
void writeFile(const QString &path, const QByteArray &data);
/** Every file below root() that is not below one of @p allowed, as relative paths. */
QStringList filesOutside(const QStringList &allowed);
/** Aborts with @p what when @p condition is false: libFuzzer keeps the input as a finding. */
void check(bool condition, const char *what);
/** Runs the event loop until @p done returns true or @p milliseconds passed. */
template<typename F> void spin(F &&done, int milliseconds);
void processEventsFor(int milliseconds);
/** Deletes what deleteLater() left: processEvents() outside an event loop never does, and it would pile up. */
void deleteLaterObjects();
}

#include <QCoreApplication>
#include <QElapsedTimer>

template<typename F> void fuzzsupport::spin(F &&done, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

#endif

// The one line format every benchmark prints for `./run bench`, which gathers
// them into a single table:  BENCH|<job>|<lumo>|<peer>|<ratio>|<goal>|<met yes/no>
// The goal is the largest ratio (Lumo / peer) that counts as met.

#pragma once

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QString>

#include <cstdio>
#include <vector>

namespace bench
{
// The theme's style files in name order, as an application passes them to StyleManager::initialize().
inline std::vector<QString> styleFiles(const QString &theme)
{
    std::vector<QString> files;
    const QDir styles(theme + QStringLiteral("/styles"));
    for (const QString &name : styles.entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name))
        files.push_back(styles.filePath(name));
    return files;
}

// @p job with the screen's scale factor appended, for jobs whose cost depends on it.
inline QString atScale(const QString &job)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    const double scale = screen ? screen->logicalDotsPerInchX() / 72.0 : 1.0;
    return job + QStringLiteral(" @ scale %1").arg(scale, 0, 'f', 1);
}

inline QString formatValue(double value, const char *unit)
{
    return QStringLiteral("%1 %2").arg(value, 0, 'f', value < 0.1 ? 4 : value < 10 ? 3 : 1).arg(QLatin1String(unit));
}

inline void report(const QString &job, double lumo, double peer, double goal, const char *unit = "ms")
{
    const double ratio = peer > 0 ? lumo / peer : 0;
    const QString line = QStringLiteral("BENCH|%1|%2|%3|%4|%5|%6\n")
                             .arg(job, formatValue(lumo, unit), formatValue(peer, unit))
                             .arg(ratio, 0, 'f', 3)
                             .arg(goal, 0, 'g', 3)
                             .arg(QLatin1String(peer > 0 && ratio <= goal ? "yes" : "no"));
    std::fputs(line.toUtf8().constData(), stdout);
    std::fflush(stdout);
}
}

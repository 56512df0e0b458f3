// Path bar builds and rebuilds with 10 and 500 segments, against a plain table
// of the same flat buttons as cell widgets.

#include "benchreport.h"
#include "gallery.h"

#include <lumo/controls.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFontMetrics>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextStream>

namespace
{
QStringList segments(int count, int salt)
{
    QStringList list;
    for (int i = 0; i < count; ++i)
        list << QStringLiteral("folder %1-%2").arg(i).arg(salt);
    return list;
}

// The baseline: what a plain QTableWidget costs for the same row of buttons.
void plainRow(QTableWidget &table, const QStringList &names)
{
    table.clear();
    table.setColumnCount(0);
    table.setColumnCount(int(names.size()) * 2 - 1);
    for (int i = 0; i < names.size(); ++i) {
        if (i > 0) {
            auto *arrow = new QPushButton;
            arrow->setFlat(true);
            arrow->setFixedSize(6, 28);
            table.setCellWidget(0, 2 * i - 1, arrow);
            table.setColumnWidth(2 * i - 1, 6);
        }
        auto *button = new QPushButton(names[i]);
        button->setFlat(true);
        button->setFixedWidth(QFontMetrics(button->font()).boundingRect(names[i]).width() + 16);
        table.setCellWidget(0, 2 * i, button);
        table.setColumnWidth(2 * i, button->width());
    }
}

template<typename F> double millis(F &&work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    QApplication::processEvents(); // the deferred layout belongs to the cost
    return double(timer.nsecsElapsed()) / 1e6;
}
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QTemporaryDir userData;
    gallery::startUp({gallery::defaultThemeDir(), userData.path(), QStringLiteral("enu")});
    QTextStream out(stdout);

    for (int count : {10, 500}) {
        const QStringList first = segments(count, 1);
        const QStringList second = segments(count, 2);

        // Fresh widgets each round, keeping each measurement's best: one build is short.
        double barBuild = 1e300, barRebuild = 1e300, plainBuild = 1e300, plainRebuild = 1e300;
        for (int round = 0; round < (count <= 10 ? 20 : 3); ++round) {
            LumoButtonPath bar;
            bar.resize(600, 28);
            bar.show();
            QTableWidget table(1, 0);
            table.horizontalHeader()->setMinimumSectionSize(0);
            table.resize(600, 28);
            table.show();
            QApplication::processEvents();

            barBuild = qMin(barBuild, millis([&] { bar.refresh(first.join(QLatin1Char('/'))); }));
            barRebuild = qMin(barRebuild, millis([&] { bar.refresh(second.join(QLatin1Char('/'))); }));
            plainBuild = qMin(plainBuild, millis([&] { plainRow(table, first); }));
            plainRebuild = qMin(plainRebuild, millis([&] { plainRow(table, second); }));
        }
        out << QStringLiteral("%1 segments: path bar build %2 ms, rebuild %3 ms; plain table build %4 ms, rebuild %5 ms; ratio %6 / %7\n")
                   .arg(count)
                   .arg(barBuild, 0, 'f', 1)
                   .arg(barRebuild, 0, 'f', 1)
                   .arg(plainBuild, 0, 'f', 1)
                   .arg(plainRebuild, 0, 'f', 1)
                   .arg(barBuild / plainBuild, 0, 'f', 2)
                   .arg(barRebuild / plainRebuild, 0, 'f', 2);
        out.flush();
        const double goal = count <= 10 ? 1.2 : 1.5;
        const QString job = QStringLiteral("path bar, %1 segments: %2 vs plain table").arg(count);
        bench::report(bench::atScale(job.arg(QStringLiteral("build"))), barBuild, plainBuild, goal);
        bench::report(bench::atScale(job.arg(QStringLiteral("rebuild"))), barRebuild, plainRebuild, goal);
    }
    return 0;
}

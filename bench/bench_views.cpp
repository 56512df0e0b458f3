// Filling the tree and the table with 1 000 000 rows, then scrolling and painting
// a screenful at a time, against plain QTreeWidget / QTableWidget holding the
// same content.

#include "benchreport.h"
#include "gallery.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <functional>
#include <limits>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace
{
// A small warm-up round first (fonts, icons, style sheets), then the measured one.
int rowCount = 10000;
constexpr int frames = 300;

struct Timing {
    double fillMs = 0;
    double frameMs = 0;
};

// Scrolls through the view a page at a time (wrapping), painting the viewport each time.
double scrollAndPaint(QAbstractScrollArea *view)
{
    QImage image(view->viewport()->size() * view->devicePixelRatio(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(view->devicePixelRatio());
    QScrollBar *bar = view->verticalScrollBar();
    QElapsedTimer timer;
    timer.start();
    for (int frame = 0; frame < frames; ++frame) {
        // Large strides reach far into the data; the modulo keeps them in range.
        bar->setValue(int((qint64(frame) * 7919 * bar->pageStep()) % qMax(1, bar->maximum())));
        QCoreApplication::processEvents();
        image.fill(Qt::white);
        view->viewport()->render(&image);
    }
    return double(timer.nsecsElapsed()) / 1e6 / frames;
}

void fillTree(QTreeWidget *tree)
{
    const QIcon folder(getGlobalImage("folder", ImageManager::Normal));
    QList<QTreeWidgetItem *> tops;
    for (int i = 0; i < rowCount / 100; ++i) {
        auto *top = new FileSystemTreeWidgetItem;
        top->itemName = QStringLiteral("folder%1").arg(i);
        top->setText(0, QStringLiteral("Folder %1").arg(i));
        top->setIcon(0, folder);
        top->setFlags(top->flags() | Qt::ItemIsUserCheckable | Qt::ItemIsEditable);
        top->setCheckState(0, Qt::Unchecked);
        for (int j = 0; j < 99; ++j) {
            auto *child = new FileSystemTreeWidgetItem;
            child->itemName = QStringLiteral("sub%1").arg(j);
            child->setText(0, QStringLiteral("Subfolder %1.%2").arg(i).arg(j));
            child->setIcon(0, folder);
            // Every third folder is not a choice: it draws disabled in the Lumo tree.
            Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
            if (j % 3)
                flags |= Qt::ItemIsUserCheckable;
            child->setFlags(flags);
            if (j % 3)
                child->setCheckState(0, j % 2 ? Qt::Checked : Qt::Unchecked);
            top->addChild(child);
        }
        tops << top;
    }
    tree->addTopLevelItems(tops);
    tree->expandAll();
}

Timing runTree(QTreeWidget *tree, QWidget *window)
{
    QElapsedTimer timer;
    timer.start();
    fillTree(tree);
    tree->setCurrentItem(tree->topLevelItem(0)->child(3));
    window->show();
    QCoreApplication::processEvents();
    Timing timing;
    timing.fillMs = double(timer.nsecsElapsed()) / 1e6;
    timing.frameMs = scrollAndPaint(tree);
    return timing;
}

void fillTable(QTableWidget *table)
{
    table->setRowCount(rowCount);
    for (int row = 0; row < rowCount; ++row) {
        table->setItem(row, 0, new QTableWidgetItem(QStringLiteral("Document %1").arg(row)));
        table->setItem(row, 1, new QTableWidgetItem(QStringLiteral("Report")));
        table->setItem(row, 2, new QTableWidgetItem(QStringLiteral("Owner %1").arg(row % 97)));
        table->setItem(row, 3, new QTableWidgetItem(QStringLiteral("/projects/%1/archive/%2").arg(row % 13).arg(row)));
    }
}

Timing runTable(QTableWidget *table, QWidget *window)
{
    QElapsedTimer timer;
    timer.start();
    fillTable(table);
    table->selectRow(5);
    window->show();
    QCoreApplication::processEvents();
    Timing timing;
    timing.fillMs = double(timer.nsecsElapsed()) / 1e6;
    timing.frameMs = scrollAndPaint(table);
    return timing;
}

void report(const char *what, const Timing &lumo, const Timing &plain)
{
    bench::report(bench::atScale(QStringLiteral("%1, %2 rows: fill vs plain Qt").arg(QLatin1String(what)).arg(rowCount)), lumo.fillMs,
                  plain.fillMs, 1.1);
    bench::report(bench::atScale(QStringLiteral("%1: scroll + paint a screenful vs plain Qt").arg(QLatin1String(what))), lumo.frameMs,
                  plain.frameMs, 1.1);
}
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QTemporaryDir userData;
    gallery::startUp({gallery::defaultThemeDir(), userData.path(), QStringLiteral("enu")});
    const QSize screenful(gallery::px(640), gallery::px(720));

    Timing lumoTree;
    Timing plainTree;
    Timing lumoTable;
    Timing plainTable;
    auto plainTreeRun = [&] {
        QTreeWidget tree;
        ItemDelegate delegate; // the same row height and check boxes, so only the view differs
        tree.setItemDelegate(&delegate);
        tree.setHeaderHidden(true);
        tree.resize(screenful);
        plainTree = runTree(&tree, &tree);
    };
    auto lumoTreeRun = [&] {
        LumoTreeWidget tree;
        ItemDelegate delegate;
        tree.setItemDelegate(&delegate);
        tree.setHeaderHidden(true);
        tree.setBackgroundColor(QColor(0xDC, 0xE7, 0xFD), QColor(0xF1, 0xF5, 0xFB));
        tree.resize(screenful);
        lumoTree = runTree(&tree, &tree);
    };
    auto plainTableRun = [&] {
        QTableWidget table(0, 4);
        table.setHorizontalHeaderLabels(
            {QStringLiteral("Name"), QStringLiteral("Type"), QStringLiteral("Owner"), QStringLiteral("Location")});
        table.verticalHeader()->hide();
        table.verticalHeader()->setDefaultSectionSize(gallery::px(28));
        table.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        table.setSelectionBehavior(QAbstractItemView::SelectRows);
        table.resize(screenful);
        plainTable = runTable(&table, &table);
    };
    auto lumoTableRun = [&] {
        LumoTableColumnsInfo columns;
        columns.addColumn(QStringLiteral("Name"), 160, true, 0.4);
        columns.addColumn(QStringLiteral("Type"), 90, false, 0.0);
        columns.addColumn(QStringLiteral("Owner"), 100, true, 0.0);
        columns.addColumn(QStringLiteral("Location"), 140, true, 0.6);
        LumoTableWidget table(columns);
        table.resize(screenful);
        lumoTable = runTable(table.getTable(), &table);
    };
    rowCount = 10000;
    plainTreeRun();
    lumoTreeRun();
    plainTableRun();
    lumoTableRun();
    rowCount = 1000000;
#ifdef __GLIBC__
    // The first view to fill a million rows would pay for fresh memory that the later
    // ones reuse: one unmeasured fill grows the heap, and the heap is never trimmed.
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    {
        QTreeWidget tree;
        fillTree(&tree);
    }
#endif
    plainTreeRun();
    lumoTreeRun();
    plainTableRun();
    lumoTableRun();
    report("tree (folders of 100 rows, expanded)", lumoTree, plainTree);
    report("table (4 columns)", lumoTable, plainTable);
    return 0;
}

#include <lumo/views.h>

#include "resources/registries_p.h"

#include <QHeaderView>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

LumoTableColumnsInfo::LumoTableColumnsInfo() = default;

int LumoTableColumnsInfo::addColumn(const QString &name, int width, bool resizable, double ratio)
{
    const int index = int(columns.size());
    columns.push_back(ColumnInfo {name, width, resizable, ratio});
    return index;
}

ResizeSignalTableWidget::ResizeSignalTableWidget(int rows, int columns)
    : QTableWidget(rows, columns, nullptr)
{
}

ResizeSignalTableWidget::~ResizeSignalTableWidget() = default;

void ResizeSignalTableWidget::resizeEvent(QResizeEvent *event)
{
    // Before the base handling, so the columns are redistributed before the scroll bars are laid out.
    Q_EMIT sigResized(event->size());
    QTableWidget::resizeEvent(event);
}

LumoTableWidget::LumoTableWidget(const LumoTableColumnsInfo &info, QWidget *parent)
    : QWidget(parent)
    , columns(info.columns)
{
    initailze();
}

LumoTableWidget::~LumoTableWidget()
{
    // Never shown and never parented: it only lends its model to the header.
    delete headerModelTable;
}

QTableWidget *LumoTableWidget::getTable()
{
    return table;
}

QHeaderView *LumoTableWidget::getHeader()
{
    return header;
}

void LumoTableWidget::initailze()
{
    const int n = int(columns.size());
    QStringList titles;
    for (const LumoTableColumnsInfo::ColumnInfo &column : columns)
        titles << column.name;
    titles << QString(); // the extra column above the table's vertical scroll bar

    headerModelTable = new QTableWidget(0, n + 1);

    header = new QHeaderView(Qt::Horizontal);
    // The style's minimum would widen the 12-pixel extra column and narrow columns.
    header->setMinimumSectionSize(0);
    headerModelTable->horizontalHeader()->setMinimumSectionSize(0);
    header->setModel(headerModelTable->model());
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    header->setStyleSheet(lumo::style("component.table_header"));
    // Far wider than any screen, so that the scroll area can move it sideways.
    header->setFixedSize(lumo::scaled(20000), lumo::scaled(30));
    headerModelTable->setHorizontalHeaderLabels(titles);

    table = new ResizeSignalTableWidget(0, n);
    table->horizontalHeader()->setMinimumSectionSize(0);

    for (int i = 0; i < n; ++i) {
        const LumoTableColumnsInfo::ColumnInfo &column = columns[size_t(i)];
        const int width = qMax(0, lumo::scaled(column.width));
        header->resizeSection(i, width);
        headerModelTable->horizontalHeader()->resizeSection(i, width);
        table->horizontalHeader()->resizeSection(i, width);
        const QHeaderView::ResizeMode mode = column.resizable ? QHeaderView::Interactive : QHeaderView::Fixed;
        header->setSectionResizeMode(i, mode);
        table->horizontalHeader()->setSectionResizeMode(i, mode);
    }
    header->resizeSection(n, lumo::scaled(12));
    headerModelTable->horizontalHeader()->resizeSection(n, lumo::scaled(12));
    header->setSectionResizeMode(n, QHeaderView::Fixed);

    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->verticalHeader()->hide();
    table->horizontalHeader()->hide();
    table->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->verticalHeader()->setDefaultSectionSize(lumo::scaled(28));
    table->setStyleSheet(lumo::styles({"component.table", "component.scrollbar"}));
    table->setShowGrid(false);
    // Always on keeps the bar's room reserved under the header's extra column; it shows only when needed.
    table->verticalScrollBar()->hide();

    boxLayout = new QVBoxLayout(this);
    boxLayout->setSpacing(lumo::scaled(0));
    boxLayout->setContentsMargins(lumo::scaled(0), lumo::scaled(0), lumo::scaled(0), lumo::scaled(0));

    headerScrollArea = new QScrollArea;
    headerScrollArea->setFixedHeight(lumo::scaled(30));
    headerScrollArea->setFocusPolicy(Qt::NoFocus);
    headerScrollArea->setWidget(header);
    headerScrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    headerScrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    headerScrollArea->setStyleSheet(QStringLiteral("QScrollArea { border: none; }"));

    boxLayout->addWidget(headerScrollArea);
    boxLayout->addWidget(table);

    connect(header, SIGNAL(sectionResized(int, int, int)), this, SLOT(slotSectionResized(int, int, int)));
    connect(table->verticalScrollBar(), SIGNAL(rangeChanged(int, int)), this, SLOT(slotVerticalScrollRangeChanged(int, int)));
    // The header follows the rows sideways, never the other way round.
    connect(table->horizontalScrollBar(), SIGNAL(valueChanged(int)), headerScrollArea->horizontalScrollBar(), SLOT(setValue(int)));
    connect(table, SIGNAL(sigResized(QSize)), this, SLOT(slotTableResized(QSize)));
}

void LumoTableWidget::slotSectionResized(int logicalIndex, int oldSize, int newSize)
{
    Q_UNUSED(oldSize)
    table->horizontalHeader()->resizeSection(logicalIndex, newSize);
}

void LumoTableWidget::slotVerticalScrollRangeChanged(int min, int max)
{
    Q_UNUSED(min)
    table->verticalScrollBar()->setHidden(max == 0);
}

void LumoTableWidget::slotTableResized(const QSize &size)
{
    const double dpi = DPIinfo::getInstance()->getDPI();
    double fixed = 0.0;
    for (const LumoTableColumnsInfo::ColumnInfo &column : columns) {
        if (!column.resizable || column.ratio == 0.0)
            fixed += column.width;
    }
    const int free = lumo::truncated(size.width() - fixed * dpi);
    for (size_t i = 0; i < columns.size(); ++i) {
        const LumoTableColumnsInfo::ColumnInfo &column = columns[i];
        if (!column.resizable || column.ratio == 0.0)
            continue;
        const int share = lumo::truncated(column.ratio * free);
        const double floor = column.width * dpi;
        // Ratios are not normalised; a width below zero from hostile input is not applied.
        header->resizeSection(int(i), qMax(0, floor > share ? lumo::truncated(floor) : share));
    }
}

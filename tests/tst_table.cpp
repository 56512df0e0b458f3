// The table widget: its separate header, the width distribution and the scroll bars.

#include "testsupport.h"

#include <lumo/registries.h>
#include <lumo/views.h>

#include <QHeaderView>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
// Design pixels at this run's scale, truncated like the library's sizes.
int scaled(double designPixels)
{
    return int(testsupport::expectedScale() * designPixels);
}

struct Column {
    int width;
    bool resizable;
    double ratio;
};

LumoTableColumnsInfo columnsOf(const QList<Column> &columns)
{
    LumoTableColumnsInfo info;
    for (const Column &column : columns)
        info.addColumn(QStringLiteral("C%1").arg(info.columns.size()), column.width, column.resizable, column.ratio);
    return info;
}

QList<int> headerSizes(LumoTableWidget &table)
{
    QList<int> sizes;
    for (int i = 0; i < table.getHeader()->count(); ++i)
        sizes << table.getHeader()->sectionSize(i);
    return sizes;
}

QScrollArea *headerArea(LumoTableWidget &table)
{
    return table.findChild<QScrollArea *>();
}
}

Q_DECLARE_METATYPE(QList<Column>)

class TestTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void addColumnReturnsIndex();
    void metaObjects();
    void construction();
    void distribution_data();
    void distribution();
    void distributionOnRealResize();
    void tableWithoutColumns();
    void hostileColumns();
    void headerDragMovesTableColumn();
    void headerFollowsHorizontalScroll();
    void verticalScrollBarFollowsRange();
    void resizeSignalBeforeBaseHandling();

private:
    QTemporaryDir userData;
};

void TestTable::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
    QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
}

void TestTable::addColumnReturnsIndex()
{
    LumoTableColumnsInfo info;
    QVERIFY(info.columns.empty());
    QCOMPARE(info.addColumn(QStringLiteral("Name"), 200, false, 0.0), 0);
    QCOMPARE(info.addColumn(QStringLiteral("Size"), 80, true, 0.25), 1);
    QCOMPARE(info.addColumn(QString(), -3, true, -1.0), 2);
    QCOMPARE(int(info.columns.size()), 3);
    QCOMPARE(info.columns[1].name, QStringLiteral("Size"));
    QCOMPARE(info.columns[1].width, 80);
    QVERIFY(info.columns[1].resizable);
    QCOMPARE(info.columns[1].ratio, 0.25);
}

void TestTable::metaObjects()
{
    const QMetaObject &meta = LumoTableWidget::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods << QString::fromLatin1(meta.method(i).methodSignature());
    QCOMPARE(methods,
             QStringList({QStringLiteral("slotSectionResized(int,int,int)"), QStringLiteral("slotVerticalScrollRangeChanged(int,int)"),
                          QStringLiteral("slotTableResized(QSize)")}));
    const QMetaObject &resize = ResizeSignalTableWidget::staticMetaObject;
    QCOMPARE(resize.methodCount() - resize.methodOffset(), 1);
    QCOMPARE(resize.method(resize.methodOffset()).methodSignature(), QByteArray("sigResized(QSize)"));
}

void TestTable::construction()
{
    LumoTableColumnsInfo info;
    info.addColumn(QStringLiteral("Name"), 200, false, 0.0);
    info.addColumn(QStringLiteral("Modified"), 120, true, 0.0);
    info.addColumn(QStringLiteral("Path"), 100, true, 1.0);
    LumoTableWidget table(info);
    QHeaderView *header = table.getHeader();
    QTableWidget *rows = table.getTable();

    // One more header column than table columns: it stands above the scroll bar.
    QCOMPARE(header->count(), 4);
    QCOMPARE(rows->columnCount(), 3);
    QCOMPARE(header->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Name"));
    QCOMPARE(header->model()->headerData(2, Qt::Horizontal).toString(), QStringLiteral("Path"));
    QCOMPARE(header->model()->headerData(3, Qt::Horizontal).toString(), QString());
    QCOMPARE(headerSizes(table), QList<int>({scaled(200), scaled(120), scaled(100), scaled(12)}));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(rows->horizontalHeader()->sectionSize(i), header->sectionSize(i));
    QCOMPARE(header->sectionResizeMode(0), QHeaderView::Fixed);
    QCOMPARE(header->sectionResizeMode(1), QHeaderView::Interactive);
    QCOMPARE(header->sectionResizeMode(3), QHeaderView::Fixed);
    QCOMPARE(rows->horizontalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    QCOMPARE(rows->horizontalHeader()->sectionResizeMode(2), QHeaderView::Interactive);
    QCOMPARE(header->size(), QSize(scaled(20000), scaled(30)));
    QCOMPARE(header->defaultAlignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(header->styleSheet(), getStyleSheet("component.table_header", false));

    QVERIFY(rows->horizontalHeader()->isHidden());
    QVERIFY(rows->verticalHeader()->isHidden());
    QCOMPARE(rows->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(rows->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(rows->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QCOMPARE(rows->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(rows->horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(rows->verticalHeader()->defaultSectionSize(), scaled(28));
    QCOMPARE(rows->styleSheet(), getStyleSheet("component.table", false) + getStyleSheet("component.scrollbar", false));
    QVERIFY(!rows->showGrid());
    QVERIFY(rows->verticalScrollBar()->isHidden());

    QScrollArea *area = headerArea(table);
    QVERIFY(area);
    QCOMPARE(area->widget(), header);
    QCOMPARE(area->maximumHeight(), scaled(30));
    QCOMPARE(area->focusPolicy(), Qt::NoFocus);
    QCOMPARE(area->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(area->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(static_cast<QWidget &>(table).layout()->count(), 2);
    QCOMPARE(static_cast<QWidget &>(table).layout()->itemAt(0)->widget(), area);
    QCOMPARE(static_cast<QWidget &>(table).layout()->itemAt(1)->widget(), rows);
}

void TestTable::distribution_data()
{
    QTest::addColumn<QList<Column>>("columns");
    QTest::addColumn<double>("tableWidth"); // design pixels
    QTest::addColumn<QList<int>>("expected"); // design pixels, the extra column last

    const QList<Column> halves = {{200, false, 0.0}, {100, true, 0.5}, {100, true, 0.5}};
    QTest::newRow("two halves beside a fixed 200") << halves << 1000.0 << QList<int>({200, 400, 400, 12});
    QTest::newRow("narrow: shares below the width keep the width") << halves << 300.0 << QList<int>({200, 100, 100, 12});
    QTest::newRow("exactly at the floor") << halves << 400.0 << QList<int>({200, 100, 100, 12});
    QTest::newRow("narrower than the fixed columns") << halves << 50.0 << QList<int>({200, 100, 100, 12});
    QTest::newRow("a ratio-0 resizable column counts as fixed")
        << QList<Column>({{150, true, 0.0}, {100, true, 1.0}}) << 800.0 << QList<int>({150, 650, 12});
    QTest::newRow("a non-resizable ratio column keeps its width")
        << QList<Column>({{150, false, 0.7}, {100, true, 0.5}}) << 850.0 << QList<int>({150, 350, 12});
    QTest::newRow("shares above one overflow") << QList<Column>({{50, true, 0.8}, {50, true, 0.8}}) << 500.0 << QList<int>({400, 400, 12});
    QTest::newRow("shares below one leave a gap")
        << QList<Column>({{50, true, 0.25}, {50, true, 0.25}}) << 800.0 << QList<int>({200, 200, 12});
}

void TestTable::distribution()
{
    QFETCH(QList<Column>, columns);
    QFETCH(double, tableWidth);
    QFETCH(QList<int>, expected);

    LumoTableWidget table(columnsOf(columns));
    table.slotTableResized(QSize(scaled(tableWidth), scaled(300)));
    const double dpi = testsupport::expectedScale();
    QList<int> want;
    for (int i = 0; i < expected.size(); ++i) {
        // Exact at every scale used here: free width and shares are whole multiples of the scale's pixels.
        want << int(expected[i] * dpi);
    }
    QCOMPARE(headerSizes(table), want);
    // The table's own columns follow the visible header.
    for (int i = 0; i < table.getTable()->columnCount(); ++i)
        QCOMPARE(table.getTable()->horizontalHeader()->sectionSize(i), want[i]);
}

void TestTable::distributionOnRealResize()
{
    // A child widget, so that no window manager adjusts the sizes.
    QWidget window;
    window.resize(scaled(1600), scaled(500));
    auto *table = new LumoTableWidget(columnsOf({{200, false, 0.0}, {100, true, 0.5}, {100, true, 0.5}}), &window);
    table->setGeometry(0, 0, scaled(1000), scaled(400));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(table->getTable()->width(), scaled(1000));
    // Resize events of a scroll area are its viewport's: the room of the scroll bar is not shared out.
    auto expected = [&](int floor) {
        const int share = int(0.5 * (table->getTable()->viewport()->width() - 200 * testsupport::expectedScale()));
        const int width = qMax(share, scaled(floor));
        return QList<int>({scaled(200), width, width, scaled(12)});
    };
    QVERIFY(table->getTable()->viewport()->width() < scaled(1000));
    QCOMPARE(headerSizes(*table), expected(100));
    table->resize(scaled(1400), scaled(400));
    QCOMPARE(headerSizes(*table), expected(100));
    QVERIFY(headerSizes(*table)[1] > scaled(550));
    QCOMPARE(table->getTable()->horizontalHeader()->sectionSize(2), headerSizes(*table)[2]);
    table->resize(scaled(300), scaled(400));
    QCOMPARE(headerSizes(*table), QList<int>({scaled(200), scaled(100), scaled(100), scaled(12)}));
}

void TestTable::tableWithoutColumns()
{
    LumoTableWidget table {LumoTableColumnsInfo()};
    QCOMPARE(table.getTable()->columnCount(), 0);
    QCOMPARE(table.getHeader()->count(), 1);
    QCOMPARE(table.getHeader()->sectionSize(0), scaled(12));
    table.resize(scaled(500), scaled(200));
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    table.slotTableResized(QSize(scaled(800), scaled(200)));
    table.slotTableResized(QSize(-1, -1));
    QCOMPARE(table.getHeader()->sectionSize(0), scaled(12));
}

void TestTable::hostileColumns()
{
    testsupport::LogCatcher log;
    LumoTableColumnsInfo info;
    info.addColumn(QStringLiteral("zero"), 0, true, 0.5);
    info.addColumn(QStringLiteral("negative"), -50, true, 0.5);
    info.addColumn(QStringLiteral("negative fixed"), -400, false, 0.0);
    info.addColumn(QStringLiteral("not a number"), 30, true, std::numeric_limits<double>::quiet_NaN());
    info.addColumn(QStringLiteral("huge"), INT_MAX, true, 1e300);
    LumoTableWidget table(info);
    table.resize(scaled(600), scaled(200));
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    for (const QSize &size : {QSize(0, 0), QSize(-100, 10), QSize(INT_MAX / 4, 10), QSize(scaled(900), scaled(200))}) {
        table.slotTableResized(size);
        for (int section : headerSizes(table))
            QVERIFY(section >= 0);
    }
    // A NaN share falls back to the column's own width.
    QCOMPARE(table.getHeader()->sectionSize(3), scaled(30));
    QVERIFY(log.warnings().isEmpty());
}

void TestTable::headerDragMovesTableColumn()
{
    LumoTableWidget table(columnsOf({{120, true, 0.0}, {120, false, 0.0}, {100, true, 0.0}}));
    table.resize(scaled(600), scaled(300));
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    QHeaderView *header = table.getHeader();

    // Drag the right edge of the resizable first section 40 pixels to the right.
    const int edge = header->sectionViewportPosition(0) + header->sectionSize(0) - 1;
    const int y = header->height() / 2;
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, QPoint(edge, y));
    QMouseEvent move(QEvent::MouseMove, QPointF(edge + scaled(40), y), header->viewport()->mapToGlobal(QPointF(edge + scaled(40), y)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(header->viewport(), &move);
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, QPoint(edge + scaled(40), y));
    QCOMPARE(header->sectionSize(0), scaled(120) + scaled(40));
    QCOMPARE(table.getTable()->horizontalHeader()->sectionSize(0), scaled(120) + scaled(40));

    // The fixed second section does not move.
    const int fixedEdge = header->sectionViewportPosition(1) + header->sectionSize(1) - 1;
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, QPoint(fixedEdge, y));
    QMouseEvent move2(QEvent::MouseMove, QPointF(fixedEdge + scaled(40), y),
                      header->viewport()->mapToGlobal(QPointF(fixedEdge + scaled(40), y)), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(header->viewport(), &move2);
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, QPoint(fixedEdge + scaled(40), y));
    QCOMPARE(header->sectionSize(1), scaled(120));
    QCOMPARE(table.getTable()->horizontalHeader()->sectionSize(1), scaled(120));
}

void TestTable::headerFollowsHorizontalScroll()
{
    LumoTableWidget table(columnsOf({{400, true, 0.0}, {400, true, 0.0}, {400, true, 0.0}}));
    QTableWidget *rows = table.getTable();
    rows->setRowCount(5);
    table.resize(scaled(500), scaled(300));
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    QScrollBar *horizontal = rows->horizontalScrollBar();
    QVERIFY(horizontal->maximum() > 100);
    QScrollArea *area = headerArea(table);

    for (int value : {37, horizontal->maximum(), 0}) {
        horizontal->setValue(value);
        QCOMPARE(area->horizontalScrollBar()->value(), value);
        // The header's sections line up with the table's columns on screen.
        QCOMPARE(table.getHeader()->mapTo(&table, QPoint(table.getHeader()->sectionPosition(1), 0)).x(),
                 rows->viewport()->mapTo(&table, QPoint(rows->columnViewportPosition(1), 0)).x());
    }
    // Not the other way round: moving the header leaves the rows where they are.
    area->horizontalScrollBar()->setValue(50);
    QCOMPARE(horizontal->value(), 0);
}

void TestTable::verticalScrollBarFollowsRange()
{
    LumoTableWidget table(columnsOf({{100, true, 1.0}}));
    QTableWidget *rows = table.getTable();
    table.resize(scaled(400), scaled(300));
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    QVERIFY(!rows->verticalScrollBar()->isVisible());
    rows->setRowCount(3);
    QCoreApplication::processEvents();
    QVERIFY(!rows->verticalScrollBar()->isVisible());
    rows->setRowCount(100);
    QTRY_VERIFY(rows->verticalScrollBar()->isVisible());
    QVERIFY(rows->verticalScrollBar()->maximum() > 0);
    rows->setRowCount(2);
    QTRY_VERIFY(!rows->verticalScrollBar()->isVisible());
    // The room under the header's extra column stays reserved either way.
    QCOMPARE(rows->viewport()->width(), rows->width() - rows->verticalScrollBar()->sizeHint().width() - 2 * rows->frameWidth());
}

void TestTable::resizeSignalBeforeBaseHandling()
{
    QWidget window;
    window.resize(800, 400);
    auto *table = new ResizeSignalTableWidget(2, 2);
    QVERIFY(!table->parent());
    QCOMPARE(table->rowCount(), 2);
    table->setParent(&window);
    table->horizontalHeader()->setDefaultSectionSize(200);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setGeometry(0, 0, 300, 200);
    QList<QSize> seen;
    QList<int> rangeDuringSignal;
    connect(table, &ResizeSignalTableWidget::sigResized, this, [&](const QSize &size) {
        seen << size;
        rangeDuringSignal << table->horizontalScrollBar()->maximum();
    });
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const int before = table->horizontalScrollBar()->maximum();
    QVERIFY(before > 0);
    table->resize(350, 210);
    // The viewport's size: a scroll area's resize events are its viewport's.
    QCOMPARE(seen.last(), table->viewport()->size());
    // Emitted before the base handling, which updates the scroll range for the new width.
    QCOMPARE(rangeDuringSignal.last(), before);
    QVERIFY(table->horizontalScrollBar()->maximum() < before);
}

QTEST_MAIN(TestTable)
#include "tst_table.moc"

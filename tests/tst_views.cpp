// The data views: paging bar, calendar and date selector, table widget, tree widget and its delegate.

#include "testsupport.h"

#include <lumo/controls.h>
#include <lumo/registries.h>
#include <lumo/views.h>

#include <QtTest>
#include <QtWidgets>

#include <algorithm>
#include <limits>
#include <memory>

namespace
{
// Design pixels at this run's scale, truncated like the library's sizes.
int scaled(double designPixels)
{
    return int(testsupport::expectedScale() * designPixels);
}

bool showAt(QWidget &widget, int width, int height)
{
    widget.resize(scaled(width), scaled(height));
    widget.show();
    return QTest::qWaitForWindowExposed(&widget);
}

template<typename T> T *named(QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

struct Bar {
    LumoPagingModel model {10};
    LumoPagingBar bar {&model};

    bool show(int items, int page)
    {
        const bool exposed = showAt(bar, 900, 32);
        bar.setItemCount(items);
        bar.setPage(page);
        return exposed;
    }
    // Left to right on screen.
    QList<LumoButton *> pageButtons() const
    {
        QList<LumoButton *> buttons = bar.findChildren<LumoButton *>();
        std::sort(buttons.begin(), buttons.end(), [](QWidget *a, QWidget *b) { return a->x() < b->x(); });
        return buttons;
    }
    // An arrow by its tool tip, the refresh button by its accessible name.
    LumoIconButton *iconButton(const char *captionKey) const
    {
        const QString caption = ComponentStrings::getInstance()->getString(QLatin1String(captionKey));
        for (LumoIconButton *button : bar.findChildren<LumoIconButton *>()) {
            if (button->toolTip() == caption || button->accessibleName() == caption)
                return button;
        }
        return nullptr;
    }
    QLabel *label(const QString &text) const
    {
        for (QLabel *label : bar.findChildren<QLabel *>()) {
            if (label->text() == text)
                return label;
        }
        return nullptr;
    }
    int separators() const
    {
        int count = 0;
        for (QLabel *label : bar.findChildren<QLabel *>())
            count += label->text().isEmpty() && label->maximumWidth() == scaled(1);
        return count;
    }
};

QCalendarWidget *calendarOf(QWidget *view)
{
    return view->findChild<QCalendarWidget *>();
}

QTableView *gridOf(QWidget *view)
{
    return named<QTableView>(view, "qt_calendar_calendarview");
}

// The first grid cell showing @p day; days 10 to 20 occur once on every page.
QModelIndex cellOfDay(QTableView *grid, int day)
{
    QAbstractItemModel *model = grid->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            if (model->index(row, column).data().toString() == QString::number(day))
                return model->index(row, column);
        }
    }
    return {};
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

// "name:text" is a file-system item, text alone a plain item.
QTreeWidgetItem *treeItem(const QString &description)
{
    if (!description.contains(QLatin1Char(':')))
        return new QTreeWidgetItem(QStringList {description});
    auto *item = new FileSystemTreeWidgetItem;
    item->itemName = description.section(QLatin1Char(':'), 0, 0);
    item->setText(0, description.section(QLatin1Char(':'), 1));
    return item;
}

// A tree with the renaming delegate and one editable item.
struct RenameTree {
    ItemDelegate delegate;
    LumoTreeWidget tree;
    QTreeWidgetItem *item = new QTreeWidgetItem(QStringList {QStringLiteral("old name")});

    RenameTree()
    {
        tree.setItemDelegate(&delegate);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        tree.addTopLevelItem(item);
    }
    QLineEdit *rename()
    {
        tree.editItem(item, 0);
        auto *editor = tree.viewport()->findChild<QLineEdit *>();
        return editor && editor->isVisible() ? editor : nullptr;
    }
};
}

Q_DECLARE_METATYPE(QList<Column>)

class TestViews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void pagingModel_data();
    void pagingModel();
    void pageButtons_data();
    void pageButtons();
    void pageMoves_data();
    void pageMoves();
    void pagingCallsThatDoNotMove();
    void footerLabelsAreReused();
    void rightmostStyle_data();
    void rightmostStyle();
    void footerWidths_data();
    void footerWidths();
    void narrowPaneKeepsText_data();
    void narrowPaneKeepsText();

    void weekdaysStartOnSunday();
    void monthTitlesFollowPages();
    void tabCycleIsClosed();
    void datePicks_data();
    void datePicks();
    void invalidDates_data();
    void invalidDates();
    void clearDate();
    void calendarInALayout();
    void datesOutOfRange();

    void distribution_data();
    void distribution();
    void distributionUsesTheViewportWidth();
    void hostileColumns();
    void scrollBars();

    void homeOrdering_data();
    void homeOrdering();
    void validator_data();
    void validator();
    void escapeWhileRenaming();
    void delegatePainting();
    void focusIn_data();
    void focusIn();
    void treeBands();

private:
    QTemporaryDir userData;
};

void TestViews::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
    QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
}

// ---------------------------------------------------------------------------
// Paging bar

void TestViews::pagingModel_data()
{
    QTest::addColumn<int>("rowLimit");
    QTest::addColumn<int>("itemCount");
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("pageCount");
    QTest::addColumn<int>("startItem");

    QTest::newRow("no items") << 10 << 0 << 1 << 1 << 0;
    QTest::newRow("negative count") << 10 << -45 << 1 << 1 << 0;
    QTest::newRow("exactly full") << 10 << 40 << 4 << 4 << 30;
    QTest::newRow("one more") << 10 << 41 << 5 << 5 << 40;
    QTest::newRow("huge count") << 1 << INT_MAX << 2 << INT_MAX << 1;
    QTest::newRow("page 0") << 10 << 100 << 0 << 10 << -10;
    QTest::newRow("saturating start") << 1000 << 100 << INT_MAX << 1 << INT_MAX;
    QTest::newRow("row limit 0 is one page") << 0 << 100 << 1 << 1 << 0;
}

void TestViews::pagingModel()
{
    QFETCH(int, rowLimit);
    QFETCH(int, itemCount);
    QFETCH(int, page);
    LumoPagingModel model(rowLimit);
    model.setItemCount(itemCount);
    model.setNowPage(page);
    QTEST(model.pageCount(), "pageCount");
    QTEST(model.startItem(), "startItem");
}

void TestViews::pageButtons_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("texts"); // the five page buttons
    QTest::addColumn<QString>("enabled"); // the five page buttons, then first, back five, forward five, last

    auto row = [](const char *tag, int items, int page, const char *texts, const char *enabled) {
        QTest::newRow(tag) << items << page << QString::fromLatin1(texts) << QString::fromLatin1(enabled);
    };
    row("no items", 0, 1, " | |1| | ", "00100 0000");
    row("page 1 of 20", 200, 1, " | |1|2|3", "00111 0011");
    row("page 2 of 20", 200, 2, " |1|2|3|4", "01111 1111");
    row("page 7 of 20", 200, 7, "5|6|7|8|9", "11111 1111");
    row("page 20 of 20", 200, 20, "18|19|20| | ", "11100 1100");
    row("beyond the last page", 200, 25, " | | | | ", "00000 1100");
    row("page 0", 200, 0, " | | |1|2", "00011 1111");
    row("negative page", 200, -3, " | | | | ", "00000 1111");
    row("negative count", -7, 1, " | |1| | ", "00100 0000");
    row("largest page", INT_MAX, INT_MAX, "2147483645|2147483646|2147483647| | ", "11100 1100");
}

void TestViews::pageButtons()
{
    QFETCH(int, items);
    QFETCH(int, page);
    Bar b;
    if (items == INT_MAX)
        b.model.setRowLimit(1);
    QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
    QVERIFY(b.show(items, page));
    QCOMPARE(b.model.nowPage(), page);
    QCOMPARE(spy.count(), 0);

    QStringList texts;
    QString states;
    for (LumoButton *button : b.pageButtons()) {
        texts << button->text();
        states += QLatin1Char(button->isEnabled() ? '1' : '0');
    }
    states += QLatin1Char(' ');
    for (const char *key : {"first_page", "prev_5_pages", "next_5_pages", "last_page"})
        states += QLatin1Char(b.iconButton(key)->isEnabled() ? '1' : '0');
    QTEST(texts.join(QLatin1Char('|')), "texts");
    QTEST(states, "enabled");
}

void TestViews::pageMoves_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("action"); // an arrow's caption key, a page button's index, or a slot
    QTest::addColumn<int>("newPage");

    QTest::newRow("forward five") << 200 << 7 << "next_5_pages" << 12;
    QTest::newRow("forward five stops at the last page") << 200 << 18 << "next_5_pages" << 20;
    QTest::newRow("back five") << 200 << 7 << "prev_5_pages" << 2;
    QTest::newRow("back five stops at page 1") << 200 << 6 << "prev_5_pages" << 1;
    QTest::newRow("first") << 200 << 7 << "first_page" << 1;
    QTest::newRow("last") << 200 << 7 << "last_page" << 20;
    QTest::newRow("leftmost number") << 200 << 7 << "0" << 5;
    QTest::newRow("rightmost number") << 200 << 7 << "4" << 9;
    QTest::newRow("reset") << 200 << 7 << "reset()" << 1;
    // Moves that do not change the page still announce once.
    QTest::newRow("first on page 1") << 200 << 1 << "first_page()" << 1;
    QTest::newRow("beyond the end, forward five clamps") << 200 << 30 << "next_5_page()" << 20;
    QTest::newRow("blank button reads 0") << 0 << 1 << "pageClick(0)" << 0;
}

void TestViews::pageMoves()
{
    QFETCH(int, items);
    QFETCH(int, page);
    QFETCH(QString, action);
    QFETCH(int, newPage);
    Bar b;
    QVERIFY(b.show(items, page));
    QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
    const QList<LumoButton *> buttons = b.pageButtons();

    if (action == QLatin1String("reset()"))
        b.bar.reset();
    else if (action == QLatin1String("pageClick(0)"))
        b.bar.pageClick(0);
    else if (action.endsWith(QLatin1String("()")))
        QVERIFY(QMetaObject::invokeMethod(&b.bar, action.chopped(2).toLatin1().constData()));
    else if (action.size() == 1)
        QTest::mouseClick(buttons.at(action.toInt()), Qt::LeftButton);
    else
        QTest::mouseClick(b.iconButton(action.toLatin1().constData()), Qt::LeftButton);

    QCOMPARE(spy.count(), 1);
    QCOMPARE(b.model.nowPage(), newPage);
    if (newPage >= 1)
        QCOMPARE(buttons[2]->text(), QString::number(newPage));
}

void TestViews::pagingCallsThatDoNotMove()
{
    Bar b;
    QVERIFY(b.show(200, 7));
    QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
    QSignalSpy refresh(&b.bar, SIGNAL(sigRefresh()));
    // A smaller count leaves the page where it was, beyond the end.
    b.bar.setItemCount(30);
    QCOMPARE(b.model.nowPage(), 7);
    QCOMPARE(b.pageButtons()[2]->text(), QStringLiteral(" "));

    testsupport::LogCatcher log;
    b.bar.pageClick(5);
    b.bar.pageClick(-1);
    QCOMPARE(log.warnings(), QStringList({QStringLiteral("Cannot click page button 5"), QStringLiteral("Cannot click page button -1")}));
    QTest::mouseClick(b.iconButton("pagebar_refresh"), Qt::LeftButton);
    QCOMPARE(refresh.count(), 1);
    QCOMPARE(spy.count(), 0);
}

void TestViews::footerLabelsAreReused()
{
    Bar b;
    QVERIFY(b.show(0, 1));
    b.bar.setFooterInfos({{QStringLiteral("120 items"), 0}, {QStringLiteral("3 selected"), 0}});
    QCoreApplication::processEvents();
    QPointer<QLabel> first = b.label(QStringLiteral("120 items"));
    QPointer<QLabel> second = b.label(QStringLiteral("3 selected"));
    QVERIFY(first && second);
    QCOMPARE(b.separators(), 2);
    // Right to left: label 0 stands next to the refresh button.
    QVERIFY(second->x() < first->x());
    QVERIFY(first->x() < b.iconButton("pagebar_refresh")->x());

    // Surplus labels are hidden, not deleted; their separators stay.
    b.bar.setFooterText(QStringLiteral("99 items"));
    QVERIFY(first && second);
    QCOMPARE(first->text(), QStringLiteral("99 items"));
    QVERIFY(first->isVisible());
    QVERIFY(second->isHidden());
    QCOMPARE(b.separators(), 2);
    // A longer list again creates a new label rather than reviving the hidden one.
    b.bar.setFooterInfos({{QStringLiteral("a"), 0}, {QStringLiteral("b"), 0}});
    QCOMPARE(first->text(), QStringLiteral("a"));
    QCOMPARE(second->text(), QStringLiteral("3 selected"));
    QVERIFY(second->isHidden());
    QCOMPARE(b.separators(), 3);
    b.bar.setFooterInfos({});
    QVERIFY(first->isHidden());
}

void TestViews::rightmostStyle_data()
{
    QTest::addColumn<bool>("hiddenAtCreation");
    QTest::newRow("refresh button hidden") << true;
    QTest::newRow("refresh button shown") << false;
}

void TestViews::rightmostStyle()
{
    QFETCH(bool, hiddenAtCreation);
    const QString plain = getStyleSheet("component.paging_bar_label", false);
    const QString rightmost = getStyleSheet("component.paging_bar_rightmost_label", false);
    QVERIFY(rightmost != plain);
    Bar b;
    b.bar.setRefreshButtonHidden(hiddenAtCreation);
    b.bar.setFooterInfos({{QStringLiteral("zero"), 0}, {QStringLiteral("one"), 0}});
    // Decided at creation: toggling the refresh button and reusing the label does not restyle it.
    b.bar.setRefreshButtonHidden(!hiddenAtCreation);
    b.bar.setFooterText(QStringLiteral("zero again"));
    QVERIFY(b.label(QStringLiteral("zero again")) && b.label(QStringLiteral("one")));
    QCOMPARE(b.label(QStringLiteral("zero again"))->styleSheet(), hiddenAtCreation ? rightmost : plain);
    QCOMPARE(b.label(QStringLiteral("one"))->styleSheet(), plain);
}

void TestViews::footerWidths_data()
{
    QTest::addColumn<int>("created");
    QTest::addColumn<int>("reused");
    QTest::addColumn<int>("fixed"); // design pixels; -1: no fixed width

    QTest::newRow("0 keeps the earlier width") << 80 << 0 << 80;
    QTest::newRow("negative keeps the earlier width") << 80 << -40 << 80;
    QTest::newRow("a new width replaces it") << 80 << 120 << 120;
    QTest::newRow("0 leaves a new label free") << 0 << 0 << -1;
    QTest::newRow("negative leaves a new label free") << -5 << -5 << -1;
}

void TestViews::footerWidths()
{
    QFETCH(int, created);
    QFETCH(int, reused);
    QFETCH(int, fixed);
    Bar b;
    b.bar.setFooterInfo({QStringLiteral("created"), created});
    b.bar.setFooterInfo({QStringLiteral("reused"), reused});
    QLabel *label = b.label(QStringLiteral("reused"));
    QVERIFY(label);
    QCOMPARE(label->minimumWidth(), fixed < 0 ? 0 : scaled(fixed));
    QCOMPARE(label->maximumWidth(), fixed < 0 ? QWIDGETSIZE_MAX : scaled(fixed));
}

void TestViews::narrowPaneKeepsText_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("page");
    QTest::newRow("page 1 of 4") << 36 << 1;
    QTest::newRow("three-digit pages") << 5000 << 120;
}

void TestViews::narrowPaneKeepsText()
{
    // A pane without a layout gives the bar exactly the width it is told, as a
    // narrow splitter pane does; down to the bar's minimum nothing may be cut.
    QFETCH(int, items);
    QFETCH(int, page);
    QWidget pane;
    LumoPagingModel model(10);
    auto *bar = new LumoPagingBar(&model, &pane);
    bar->setItemCount(items);
    bar->setPage(page);
    bar->setFooterText(QStringLiteral("%1 file(s)").arg(items));
    QVERIFY(showAt(pane, 1200, 60));
    const int roomy = bar->sizeHint().width();
    for (int width : {roomy, roomy - scaled(50), bar->minimumSizeHint().width()}) {
        bar->setGeometry(0, 0, width, bar->sizeHint().height());
        QTest::qWait(0);
        for (QPushButton *button : bar->findChildren<LumoButton *>()) {
            QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
            QCOMPARE(button->minimumWidth(), scaled(24));
        }
        QLabel *footer = nullptr;
        for (QLabel *label : bar->findChildren<QLabel *>())
            footer = label->text().isEmpty() ? footer : label;
        QVERIFY(footer && footer->width() >= footer->sizeHint().width());
        QVERIFY(footer->geometry().right() < footer->parentWidget()->width());
    }
    // Narrower still, the footer gives way first and shows the start of its text.
    bar->setGeometry(0, 0, bar->minimumSizeHint().width() - scaled(30), bar->sizeHint().height());
    QTest::qWait(0);
    QLabel *footer = nullptr;
    for (QLabel *label : bar->findChildren<QLabel *>())
        footer = label->text().isEmpty() ? footer : label;
    QVERIFY(footer->width() < footer->sizeHint().width());
    // Painted as a label of the elided text would be.
    auto *elided = new QLabel(footer->parentWidget());
    elided->setStyleSheet(footer->styleSheet());
    elided->setAlignment(footer->alignment());
    elided->setFixedSize(footer->size());
    elided->ensurePolished();
    elided->setText(footer->fontMetrics().elidedText(
        footer->text(), Qt::ElideRight, footer->contentsRect().width() - footer->fontMetrics().horizontalAdvance(QLatin1Char('x')) / 2));
    QCOMPARE(footer->grab().toImage(), elided->grab().toImage());
}

// ---------------------------------------------------------------------------
// Calendar view and date selector

void TestViews::weekdaysStartOnSunday()
{
    testsupport::LogCatcher log;
    LumoCalanderView view;
    // Every child of Qt's calendar that the view restyles was found.
    QCOMPARE(log.warnings(), QStringList());
    auto *header = named<QTableWidget>(&view, "qt_calendar_weekdayview");
    QVERIFY(header);
    QString captions;
    for (int column = 0; column < header->columnCount(); ++column)
        captions += header->item(0, column)->text();
    QCOMPARE(captions, QStringLiteral("SMTWTFS"));
    // Under the navigation bar.
    QCOMPARE(calendarOf(&view)->layout()->indexOf(header), 1);
    // 1 January 2025 was a Wednesday: the fourth column.
    view.setCurrentPage(2025, 1);
    QCOMPARE(cellOfDay(gridOf(&view), 1).column(), 3);
    for (Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        QCOMPARE(calendarOf(&view)->weekdayTextFormat(day).foreground().color(), QColor(Qt::black));
}

void TestViews::monthTitlesFollowPages()
{
    LumoCalanderView view;
    auto *month = named<QToolButton>(&view, "qt_calendar_monthbutton");
    QVERIFY(month);
    QCOMPARE(month->text(), QLocale(QLocale::English).standaloneMonthName(QDate::currentDate().month()));
    QCOMPARE(month->menu()->actions().first()->text(), QStringLiteral("Jan"));
    QCOMPARE(month->menu()->actions().last()->text(), QStringLiteral("Dec"));

    view.setCurrentPage(2023, 2);
    QCOMPARE(month->text(), QStringLiteral("February"));
    QVERIFY(showAt(view, 280, 260));
    QTest::mouseClick(named<QToolButton>(&view, "qt_calendar_nextmonth"), Qt::LeftButton);
    QCOMPARE(month->text(), QStringLiteral("March"));
    QTest::mouseClick(named<QToolButton>(&view, "qt_calendar_prevmonth"), Qt::LeftButton);
    QTest::mouseClick(named<QToolButton>(&view, "qt_calendar_prevmonth"), Qt::LeftButton);
    QCOMPARE(month->text(), QStringLiteral("January"));

    // The month slot takes the action's month number; out-of-range input is ignored.
    QAction action;
    action.setData(9);
    view.slotMonthTriggered(&action);
    QCOMPARE(month->text(), QStringLiteral("September"));
    action.setData(13);
    view.slotMonthTriggered(&action);
    view.slotMonthTriggered(nullptr);
    view.pageChanged(2022, 0);
    QCOMPARE(month->text(), QStringLiteral("September"));
}

void TestViews::tabCycleIsClosed()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *view = new LumoCalanderView;
    layout->addWidget(new QPushButton(QStringLiteral("before")));
    layout->addWidget(view);
    layout->addWidget(new QPushButton(QStringLiteral("after")));
    view->setFixedSize(scaled(280), scaled(260));
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTableView *grid = gridOf(view);
    auto *today = named<LumoButton>(view, "qt_calendar_today_button");

    grid->setFocus(Qt::OtherFocusReason);
    QTRY_VERIFY(grid->hasFocus());
    const QModelIndex current = grid->currentIndex();
    QVERIFY(current.isValid());
    QTest::keyClick(grid, Qt::Key_Tab);
    QVERIFY(today->hasFocus());
    QTest::keyClick(today, Qt::Key_Backtab);
    QVERIFY(grid->hasFocus());
    QCOMPARE(grid->currentIndex(), current);
    // Tab on the today button closes the cycle at the view itself, and back.
    QTest::keyClick(grid, Qt::Key_Tab);
    QTest::keyClick(today, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), view);
    QTest::keyClick(view, Qt::Key_Backtab);
    QVERIFY(today->hasFocus());
    // Backtab on the grid skips the hidden year edit.
    grid->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(grid, Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), named<QWidget>(view, "qt_calendar_yearbutton"));
}

void TestViews::datePicks_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QDate>("date");

    QTest::newRow("click") << "click" << QDate(2024, 5, 15);
    QTest::newRow("enter") << "enter" << QDate(1999, 12, 31);
    QTest::newRow("today button") << "today" << QDate::currentDate();
}

void TestViews::datePicks()
{
    QFETCH(QString, how);
    QFETCH(QDate, date);
    LumoDateSelector selector;
    QVERIFY(showAt(selector, 200, 32));
    LumoCalanderView *view = selector.getCalendarView();
    // The today button is tried from a page far from today.
    if (how == QLatin1String("today"))
        view->setCurrentPage(2001, 7);
    else
        view->setCurrentPage(date.year(), date.month());
    selector.showPopup();
    QTRY_VERIFY(view->isVisible());
    QSignalSpy spy(view, SIGNAL(sigDateSelect(QDate)));
    QSignalSpy changed(&selector, SIGNAL(sigDateChanged(QDate)));
    QTableView *grid = gridOf(view);
    if (how == QLatin1String("click")) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cellOfDay(grid, date.day())).center());
    } else if (how == QLatin1String("enter")) {
        calendarOf(view)->setSelectedDate(date);
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(grid, Qt::Key_Return);
    } else {
        QTest::mouseClick(named<LumoButton>(view, "qt_calendar_today_button"), Qt::LeftButton);
    }
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toDate(), date);
    QCOMPARE(selector.currentText(), date.toString(QStringLiteral("yyyy-MM-dd")));
    QCOMPARE(selector.currentData().toDate(), date);
    QCOMPARE(selector.date(), date);
    QCOMPARE(changed, QList<QVariantList> {{date}});
    QCOMPARE(calendarOf(view)->selectedDate(), date);
    QCOMPARE(QDate(calendarOf(view)->yearShown(), calendarOf(view)->monthShown(), 1), QDate(date.year(), date.month(), 1));
    QTRY_VERIFY(!view->isVisible());
}

void TestViews::invalidDates_data()
{
    QTest::addColumn<QDate>("date");
    QTest::newRow("null") << QDate();
    QTest::newRow("30 February") << QDate(2021, 2, 30);
    QTest::newRow("month 13") << QDate(2021, 13, 1);
}

void TestViews::invalidDates()
{
    QFETCH(QDate, date);
    LumoDateSelector selector(QStringLiteral("No date"));
    QVERIFY(showAt(selector, 200, 32));
    selector.dateSelect(QDate(2010, 3, 4));
    QCOMPARE(selector.currentText(), QStringLiteral("2010-03-04"));
    selector.getCalendarView()->setCurrentPage(2011, 8);
    selector.showPopup();
    QTRY_VERIFY(selector.view()->isVisible());
    QSignalSpy changed(&selector, SIGNAL(sigDateChanged(QDate)));
    // The default text and a null date; the page and the open popup stay.
    selector.dateSelect(date);
    QCOMPARE(changed, QList<QVariantList> {{QDate()}});
    QCOMPARE(selector.count(), 1);
    QCOMPARE(selector.currentText(), QStringLiteral("No date"));
    QVERIFY(selector.currentData().toDate().isNull());
    QVERIFY(selector.view()->isVisible());
    QCOMPARE(calendarOf(selector.view())->yearShown(), 2011);
    QCOMPARE(calendarOf(selector.view())->monthShown(), 8);
    selector.hidePopup();
}

void TestViews::clearDate()
{
    LumoDateSelector selector;
    QSignalSpy changed(&selector, SIGNAL(sigDateChanged(QDate)));
    QCalendarWidget *calendar = calendarOf(selector.view());
    selector.clearDate(); // no date yet: no change
    selector.dateSelect(QDate(2015, 6, 7));
    selector.dateSelect(QDate(2015, 6, 7)); // the same date again: no change
    calendar->setSelectedDate(QDate(2015, 6, 7));
    selector.clearDate();
    QCOMPARE(changed, (QList<QVariantList> {{QDate(2015, 6, 7)}, {QDate()}}));
    QCOMPARE(selector.date(), QDate());
    QCOMPARE(selector.count(), 1);
    QCOMPARE(selector.currentIndex(), 0);
    QCOMPARE(selector.currentText(), QStringLiteral("choose date"));
    QVERIFY(selector.currentData().toDate().isNull());
    QCOMPARE(calendar->yearShown(), QDate::currentDate().year());
    QCOMPARE(calendar->monthShown(), QDate::currentDate().month());
    // The calendar's selection is left as it was.
    QCOMPARE(calendar->selectedDate(), QDate(2015, 6, 7));
}

void TestViews::calendarInALayout()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *view = new LumoCalanderView;
    view->setStyleSheet(getStyleSheet("component.date_selector", false));
    view->setCurrentPage(2024, 5);
    layout->addWidget(new QLabel(QStringLiteral("Above")));
    layout->addWidget(view);
    layout->addWidget(new QPushButton(QStringLiteral("Below")));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    // All six weeks show without scrolling, and a click picks the day under the pointer.
    QTableView *grid = gridOf(view);
    QCOMPARE(grid->verticalScrollBar()->maximum(), 0);
    QSignalSpy spy(view, SIGNAL(sigDateSelect(QDate)));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cellOfDay(grid, 15)).center());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toDate(), QDate(2024, 5, 15));
}

void TestViews::datesOutOfRange()
{
    LumoDateSelector selector;
    QVERIFY(showAt(selector, 200, 32));
    LumoCalanderView *view = selector.getCalendarView();
    view->setCurrentPage(2024, 5);
    view->setMinimumDate(QDate(2024, 5, 6));
    view->setMaximumDate(QDate(2024, 5, 20));
    selector.showPopup();
    QTRY_VERIFY(view->isVisible());
    QTableView *grid = gridOf(view);
    const QImage image = grid->viewport()->grab().toImage();
    auto darkest = [&](int day) {
        const QRect cell = grid->visualRect(cellOfDay(grid, day));
        const qreal ratio = image.devicePixelRatio();
        int grey = 255;
        for (int y = int(cell.top() * ratio); y < int(cell.bottom() * ratio); ++y) {
            for (int x = int(cell.left() * ratio); x < int(cell.right() * ratio); ++x)
                grey = std::min(grey, qGray(image.pixel(x, y)));
        }
        return grey;
    };
    // 4 and 22 May are out of range: greyed like the days of other months, and a click does nothing.
    QVERIFY(darkest(15) < 100);
    QSignalSpy spy(view, SIGNAL(sigDateSelect(QDate)));
    for (int day : {4, 22}) {
        QVERIFY2(darkest(day) > 150, qPrintable(QString::number(darkest(day))));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cellOfDay(grid, day)).center());
        QVERIFY(view->isVisible());
    }
    QCOMPARE(spy.count(), 0);
    QCOMPARE(selector.currentData().toDate(), QDate());
    selector.hidePopup();
}

// ---------------------------------------------------------------------------
// Table widget

void TestViews::distribution_data()
{
    QTest::addColumn<QList<Column>>("columns");
    QTest::addColumn<double>("tableWidth"); // design pixels
    QTest::addColumn<QList<int>>("expected"); // design pixels, the header's extra column last

    const QList<Column> halves = {{200, false, 0.0}, {100, true, 0.5}, {100, true, 0.5}};
    QTest::newRow("two halves beside a fixed 200") << halves << 1000.0 << QList<int>({200, 400, 400, 12});
    QTest::newRow("shares just above the floor") << halves << 402.0 << QList<int>({200, 101, 101, 12});
    QTest::newRow("shares below the floor keep the width") << halves << 300.0 << QList<int>({200, 100, 100, 12});
    QTest::newRow("a ratio-0 resizable column counts as fixed")
        << QList<Column>({{150, true, 0.0}, {100, true, 1.0}}) << 800.0 << QList<int>({150, 650, 12});
    QTest::newRow("a non-resizable ratio column keeps its width")
        << QList<Column>({{150, false, 0.7}, {100, true, 0.5}}) << 850.0 << QList<int>({150, 350, 12});
    QTest::newRow("shares above one overflow") << QList<Column>({{50, true, 0.8}, {50, true, 0.8}}) << 500.0 << QList<int>({400, 400, 12});
    QTest::newRow("shares below one leave a gap")
        << QList<Column>({{50, true, 0.25}, {50, true, 0.25}}) << 800.0 << QList<int>({200, 200, 12});
    QTest::newRow("zero and negative widths take their share")
        << QList<Column>({{0, true, 0.5}, {-50, true, 0.5}}) << 600.0 << QList<int>({300, 300, 12});
    QTest::newRow("no columns") << QList<Column>() << 800.0 << QList<int>({12});
}

void TestViews::distribution()
{
    QFETCH(QList<Column>, columns);
    QFETCH(double, tableWidth);
    QFETCH(QList<int>, expected);
    LumoTableWidget table(columnsOf(columns));
    QCOMPARE(table.layout()->count(), 2); // the header's scroll area over the table
    table.slotTableResized(QSize(scaled(tableWidth), scaled(300)));
    // Exact at every scale used here: free width and shares are whole multiples of the scale's pixels.
    QList<int> want;
    for (int width : expected)
        want << scaled(width);
    QCOMPARE(headerSizes(table), want);
    // The table's own columns follow the visible header.
    QCOMPARE(table.getTable()->columnCount(), int(columns.size()));
    for (int i = 0; i < columns.size(); ++i)
        QCOMPARE(table.getTable()->horizontalHeader()->sectionSize(i), want[i]);
}

void TestViews::distributionUsesTheViewportWidth()
{
    // A child widget, so that no window manager adjusts the sizes.
    QWidget window;
    auto *table = new LumoTableWidget(columnsOf({{200, false, 0.0}, {100, true, 0.5}, {100, true, 0.5}}), &window);
    table->setGeometry(0, 0, scaled(1000), scaled(400));
    QVERIFY(showAt(window, 1600, 500));
    QWidget *viewport = table->getTable()->viewport();
    // A scroll area's resize events are its viewport's: the scroll bar's room is not shared out.
    QVERIFY(viewport->width() < scaled(1000));
    for (int width : {1000, 1400, 300}) {
        table->resize(scaled(width), scaled(400));
        const int share = qMax(int(0.5 * (viewport->width() - 200 * testsupport::expectedScale())), scaled(100));
        QCOMPARE(headerSizes(*table), QList<int>({scaled(200), share, share, scaled(12)}));
    }
}

void TestViews::hostileColumns()
{
    testsupport::LogCatcher log;
    LumoTableWidget table(
        columnsOf({{-400, false, 0.0}, {30, true, std::numeric_limits<double>::quiet_NaN()}, {INT_MAX, true, 1e300}, {-50, true, -0.5}}));
    QVERIFY(showAt(table, 600, 200));
    for (const QSize &size : {QSize(0, 0), QSize(-100, 10), QSize(INT_MAX / 4, 10), QSize(scaled(900), scaled(200))}) {
        table.slotTableResized(size);
        for (int section : headerSizes(table))
            QVERIFY(section >= 0);
    }
    // A NaN share falls back to the column's own width.
    QCOMPARE(table.getHeader()->sectionSize(1), scaled(30));
    QVERIFY(log.warnings().isEmpty());
}

void TestViews::scrollBars()
{
    LumoTableWidget table(columnsOf({{400, true, 0.0}, {400, true, 0.0}, {400, true, 0.0}}));
    QTableWidget *rows = table.getTable();
    rows->setRowCount(2);
    QVERIFY(showAt(table, 500, 300));
    // The vertical bar shows only while there is something to scroll.
    QVERIFY(!rows->verticalScrollBar()->isVisible());
    rows->setRowCount(100);
    QTRY_VERIFY(rows->verticalScrollBar()->isVisible());
    rows->setRowCount(2);
    QTRY_VERIFY(!rows->verticalScrollBar()->isVisible());
    // The room under the header's extra column stays reserved either way.
    QCOMPARE(rows->viewport()->width(), rows->width() - rows->verticalScrollBar()->sizeHint().width() - 2 * rows->frameWidth());

    QScrollBar *horizontal = rows->horizontalScrollBar();
    QVERIFY(horizontal->maximum() > 100);
    for (int value : {37, horizontal->maximum(), 0}) {
        horizontal->setValue(value);
        QCOMPARE(table.findChild<QScrollArea *>()->horizontalScrollBar()->value(), value);
        // The header's sections line up with the table's columns on screen.
        QCOMPARE(table.getHeader()->mapTo(&table, QPoint(table.getHeader()->sectionPosition(1), 0)).x(),
                 rows->viewport()->mapTo(&table, QPoint(rows->columnViewportPosition(1), 0)).x());
    }
}

// ---------------------------------------------------------------------------
// Tree widget and item delegate

void TestViews::homeOrdering_data()
{
    QTest::addColumn<QString>("left"); // itemName:text
    QTest::addColumn<QString>("right"); // itemName:text, or a plain QTreeWidgetItem's text alone
    QTest::addColumn<bool>("less");

    auto row = [](const char *tag, const char *left, const char *right, bool less) {
        QTest::newRow(tag) << QString::fromLatin1(left) << QString::fromLatin1(right) << less;
    };
    row("by text", "a:Alpha", "b:Beta", true);
    row("nothing is less than home", "a:", "home:Zulu", false);
    row("home on the left compares by text", "home:Zulu", "b:Beta", false);
    row("home on the left, smaller text", "home:Alpha", "b:Beta", true);
    row("home against home", "home:Alpha", "home:Beta", false);
    row("case-sensitive name", "a:Alpha", "Home:Beta", true);
    row("text alone does not count", "a:Alpha", "docs:home", true);
    row("a plain item compares by text", "a:Alpha", "home", true);
}

void TestViews::homeOrdering()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    std::unique_ptr<QTreeWidgetItem> leftItem(treeItem(left));
    std::unique_ptr<QTreeWidgetItem> rightItem(treeItem(right));
    QVERIFY(dynamic_cast<FileSystemTreeWidgetItem *>(leftItem.get()));
    QTEST(*leftItem < *rightItem, "less");
}

void TestViews::validator_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");

    for (QChar forbidden : QStringLiteral("\\/:*?\"<>|"))
        QTest::addRow("inner %c", forbidden.toLatin1())
            << QStringLiteral("ab") + forbidden + QStringLiteral("cd") << QStringLiteral("abcd");
    for (QChar forbidden : QStringLiteral(".\\/:*?\"<>|"))
        QTest::addRow("leading %c", forbidden.toLatin1()) << forbidden + QStringLiteral("name") << QStringLiteral("name");
    QTest::newRow("inner dot") << QStringLiteral("report.final.txt") << QStringLiteral("report.final.txt");
    QTest::newRow("leading blank") << QStringLiteral(" notes") << QStringLiteral(" notes");
}

void TestViews::validator()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    RenameTree t;
    QVERIFY(showAt(t.tree, 300, 200));
    QLineEdit *editor = t.rename();
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("old name"));
    editor->clear();
    QTest::keyClicks(editor, typed);
    QCOMPARE(editor->text(), shown);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(t.item->text(0), shown);
}

void TestViews::escapeWhileRenaming()
{
    RenameTree t;
    QVERIFY(showAt(t.tree, 300, 200));
    QSignalSpy spy(&t.delegate, SIGNAL(sigKeyPressed(QKeyEvent *)));
    QPointer<QLineEdit> editor = t.rename();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("changed"));
    QCOMPARE(spy.count(), 0);
    QTest::keyClick(editor, Qt::Key_Escape);
    QCOMPARE(spy.count(), 1);
    // The edit is still cancelled.
    QTRY_VERIFY(!editor || !editor->isVisible());
    QCOMPARE(t.item->text(0), QStringLiteral("old name"));
}

void TestViews::delegatePainting()
{
    ItemDelegate delegate;
    LumoTreeWidget tree;
    tree.setItemDelegate(&delegate);
    tree.addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("plain")}));
    auto *checkable = new QTreeWidgetItem(QStringList {QStringLiteral("checkable")});
    checkable->setFlags(checkable->flags() | Qt::ItemIsUserCheckable);
    checkable->setCheckState(0, Qt::Checked);
    tree.addTopLevelItem(checkable);
    QVERIFY(showAt(tree, 300, 200));
    QCOMPARE(tree.visualItemRect(checkable).height(), scaled(28));

    g_check_rect = QRect();
    tree.viewport()->grab();
    const QRect row = tree.visualItemRect(checkable);
    QVERIFY(row.contains(g_check_rect.center()));
    QVERIFY(g_check_rect.width() > 0 && g_check_rect.width() < row.width() / 2);
}

void TestViews::focusIn_data()
{
    QTest::addColumn<int>("current"); // -1: none
    QTest::addColumn<int>("expected");
    QTest::addColumn<int>("announcements");

    QTest::newRow("none: the topmost visible item") << -1 << 50 << 1;
    QTest::newRow("the current item, away and back") << 4 << 4 << 2;
}

void TestViews::focusIn()
{
    QFETCH(int, current);
    QFETCH(int, expected);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *other = new QLineEdit;
    auto *tree = new LumoTreeWidget;
    layout->addWidget(other);
    layout->addWidget(tree);
    for (int i = 0; i < 200; ++i)
        tree->addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("Folder %1").arg(i)}));
    if (current >= 0)
        tree->setCurrentItem(tree->topLevelItem(current));
    QVERIFY(showAt(window, 300, 300));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    QTRY_VERIFY(other->hasFocus());
    tree->scrollToItem(tree->topLevelItem(50), QAbstractItemView::PositionAtTop);
    QSignalSpy spy(tree, SIGNAL(currentItemChanged(QTreeWidgetItem *, QTreeWidgetItem *)));
    tree->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(tree->hasFocus());
    QCOMPARE(tree->currentItem(), tree->topLevelItem(expected));
    QTEST(int(spy.count()), "announcements");
    QCOMPARE(spy.first().at(0).value<QTreeWidgetItem *>(), spy.count() == 1 ? tree->topLevelItem(expected) : nullptr);
}

void TestViews::treeBands()
{
    LumoTreeWidget tree;
    tree.setBackgroundColor(QColor(0, 0, 255), QColor(0, 200, 0));
    tree.setHeaderHidden(true); // the band follows the pointer in the tree's coordinates, not the viewport's
    for (int i = 0; i < 5; ++i) {
        auto *item = new QTreeWidgetItem(QStringList {QStringLiteral("Folder %1").arg(i)});
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        tree.addTopLevelItem(item);
    }
    tree.setCurrentItem(tree.topLevelItem(1));
    QVERIFY(showAt(tree, 300, 200));
    auto rowCentre = [&](int row) { return tree.visualItemRect(tree.topLevelItem(row)).center(); };
    // What the screen shows, the window's last painted pixels (the offscreen screen tints them
    // evenly), rather than a fresh rendering.
    auto shown = [&](int row) {
        const QPixmap screen = tree.screen()->grabWindow(tree.winId());
        const QPoint at = tree.viewport()->mapTo(&tree, QPoint(tree.viewport()->width() - scaled(20), rowCentre(row).y()));
        const QColor c = screen.toImage().pixelColor(at * screen.devicePixelRatio());
        if (c.red() == c.green() && c.green() == c.blue())
            return QStringLiteral("no band");
        if (c.red() == 0 && c.green() == 0)
            return QStringLiteral("selected band");
        return c.red() == 0 && c.blue() == 0 ? QStringLiteral("hover band") : c.name();
    };
    QTRY_COMPARE(shown(1), QStringLiteral("selected band")); // not the style's highlight
    // The pointer as the window system moves it: its position, and the move itself.
    auto pointTo = [&](QPoint inTree) {
        QCursor::setPos(tree.mapToGlobal(inTree));
        QTest::mouseMove(tree.windowHandle(), inTree);
    };
    pointTo(tree.viewport()->mapTo(&tree, rowCentre(3)));
    QTRY_COMPARE(shown(3), QStringLiteral("hover band"));
    pointTo(QPoint(tree.width() + 100, tree.height() + 100));
    QTRY_COMPARE(shown(3), QStringLiteral("no band"));
}

QTEST_MAIN(TestViews)
#include "tst_views.moc"

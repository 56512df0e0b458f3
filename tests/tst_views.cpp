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
using testsupport::px;

bool showAt(QWidget &widget, int width, int height)
{
    widget.resize(px(width), px(height));
    widget.show();
    return QTest::qWaitForWindowExposed(&widget);
}

bool activate(QWidget &window)
{
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

template<typename T = QWidget> T *named(QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

struct Bar {
    LumoPagingModel model {10};
    LumoPagingBar bar {&model};

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
        const QList<QLabel *> labels = bar.findChildren<QLabel *>();
        const auto found = std::find_if(labels.begin(), labels.end(), [&](QLabel *label) { return label->text() == text; });
        return found == labels.end() ? nullptr : *found;
    }
    int separators() const
    {
        const QList<QLabel *> labels = bar.findChildren<QLabel *>();
        return int(
            std::count_if(labels.begin(), labels.end(), [](QLabel *l) { return l->text().isEmpty() && l->maximumWidth() == px(1); }));
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

// The centre of the first grid cell showing @p day; days 10 to 20 occur once on every page.
QPoint dayAt(QTableView *grid, int day)
{
    QAbstractItemModel *model = grid->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            if (model->index(row, column).data().toString() == QString::number(day))
                return grid->visualRect(model->index(row, column)).center();
        }
    }
    return {};
}

void clickDay(QTableView *grid, int day)
{
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, dayAt(grid, day));
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

QTreeWidgetItem *folderItem(int number, Qt::ItemFlags extra = {})
{
    auto *item = new QTreeWidgetItem(QStringList {QStringLiteral("Folder %1").arg(number)});
    item->setFlags(item->flags() | extra);
    return item;
}
}

Q_DECLARE_METATYPE(QList<Column>)

class TestViews : public QObject
{
    Q_OBJECT

    QTemporaryDir userData;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(userData.isValid());
        testsupport::startWithDefaultTheme(userData);
        QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
    }

    // ---------------------------------------------------------------------------
    // Paging bar

    void pagingModel_data()
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

    void pagingModel()
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

    void pages_data()
    {
        QTest::addColumn<int>("items");
        QTest::addColumn<int>("page");
        QTest::addColumn<QList<int>>("numbers"); // on the five page buttons; 0: blank and disabled
        QTest::addColumn<bool>("back"); // the first-page and back-five arrows enabled
        QTest::addColumn<bool>("forward"); // the forward-five and last-page arrows enabled
        QTest::addColumn<QString>("action"); // an arrow's caption key, a page button's index, or a slot; empty: none
        QTest::addColumn<int>("newPage");

        const QList<int> blank {0, 0, 0, 0, 0}, around7 {5, 6, 7, 8, 9};
        QTest::newRow("no items, a blank button reads 0") << 0 << 1 << QList<int> {0, 0, 1, 0, 0} << false << false << "pageClick(0)" << 0;
        QTest::newRow("negative count") << -7 << 1 << QList<int> {0, 0, 1, 0, 0} << false << false << "" << 1;
        QTest::newRow("first on page 1 still announces") << 200 << 1 << QList<int> {0, 0, 1, 2, 3} << false << true << "first_page()" << 1;
        QTest::newRow("page 2") << 200 << 2 << QList<int> {0, 1, 2, 3, 4} << true << true << "" << 2;
        QTest::newRow("back five stops at page 1") << 200 << 5 << QList<int> {3, 4, 5, 6, 7} << true << true << "prev_5_pages" << 1;
        QTest::newRow("back five") << 200 << 7 << around7 << true << true << "prev_5_pages" << 2;
        QTest::newRow("forward five") << 200 << 7 << around7 << true << true << "next_5_pages" << 12;
        QTest::newRow("first") << 200 << 7 << around7 << true << true << "first_page" << 1;
        QTest::newRow("last") << 200 << 7 << around7 << true << true << "last_page" << 20;
        QTest::newRow("leftmost number") << 200 << 7 << around7 << true << true << "0" << 5;
        QTest::newRow("rightmost number") << 200 << 7 << around7 << true << true << "4" << 9;
        QTest::newRow("reset") << 200 << 7 << around7 << true << true << "reset()" << 1;
        QTest::newRow("forward five stops at the last page")
            << 200 << 18 << QList<int> {16, 17, 18, 19, 20} << true << true << "next_5_pages" << 20;
        QTest::newRow("page 20 of 20") << 200 << 20 << QList<int> {18, 19, 20, 0, 0} << true << false << "" << 20;
        QTest::newRow("beyond the end, forward five clamps") << 200 << 25 << blank << true << false << "next_5_page()" << 20;
        QTest::newRow("page 0") << 200 << 0 << QList<int> {0, 0, 0, 1, 2} << true << true << "" << 0;
        QTest::newRow("negative page") << 200 << -3 << blank << true << true << "" << -3;
        QTest::newRow("largest page") << INT_MAX << INT_MAX << QList<int> {INT_MAX - 2, INT_MAX - 1, INT_MAX, 0, 0} << true << false << ""
                                      << INT_MAX;
    }

    void pages()
    {
        QFETCH(int, items);
        QFETCH(int, page);
        QFETCH(QList<int>, numbers);
        QFETCH(QString, action);
        QFETCH(int, newPage);
        Bar b;
        b.model.setRowLimit(items == INT_MAX ? 1 : 10);
        QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
        QVERIFY(showAt(b.bar, 900, 32));
        b.bar.setItemCount(items);
        b.bar.setPage(page);
        QCOMPARE(b.model.nowPage(), page);
        const QList<LumoButton *> buttons = b.pageButtons();
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(buttons[i]->text(), numbers[i] ? QString::number(numbers[i]) : QStringLiteral(" "));
            QCOMPARE(buttons[i]->isEnabled(), numbers[i] != 0);
        }
        for (const char *key : {"first_page", "prev_5_pages"})
            QTEST(b.iconButton(key)->isEnabled(), "back");
        for (const char *key : {"next_5_pages", "last_page"})
            QTEST(b.iconButton(key)->isEnabled(), "forward");
        QCOMPARE(spy.count(), 0);

        if (action == QLatin1String("reset()"))
            b.bar.reset();
        else if (action == QLatin1String("pageClick(0)"))
            b.bar.pageClick(0);
        else if (action.endsWith(QLatin1String("()")))
            QVERIFY(QMetaObject::invokeMethod(&b.bar, action.chopped(2).toLatin1().constData()));
        else if (action.size() == 1)
            QTest::mouseClick(buttons.at(action.toInt()), Qt::LeftButton);
        else if (!action.isEmpty())
            QTest::mouseClick(b.iconButton(action.toLatin1().constData()), Qt::LeftButton);
        QCOMPARE(spy.count(), action.isEmpty() ? 0 : 1);
        QCOMPARE(b.model.nowPage(), newPage);
        if (newPage >= 1)
            QCOMPARE(buttons[2]->text(), QString::number(newPage));
    }

    void pagingCallsThatDoNotMove()
    {
        Bar b;
        QVERIFY(showAt(b.bar, 900, 32));
        b.bar.setItemCount(200);
        b.bar.setPage(7);
        QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
        QSignalSpy refresh(&b.bar, SIGNAL(sigRefresh()));
        // A smaller count leaves the page where it was, beyond the end.
        b.bar.setItemCount(30);
        QCOMPARE(b.model.nowPage(), 7);
        QCOMPARE(b.pageButtons()[2]->text(), QStringLiteral(" "));

        testsupport::LogCatcher log;
        b.bar.pageClick(5);
        b.bar.pageClick(-1);
        QCOMPARE(log.warnings(),
                 QStringList({QStringLiteral("Cannot click page button 5"), QStringLiteral("Cannot click page button -1")}));
        QTest::mouseClick(b.iconButton("pagebar_refresh"), Qt::LeftButton);
        QCOMPARE(refresh.count(), 1);
        QCOMPARE(spy.count(), 0);
    }

    void footerLabels_data()
    {
        QTest::addColumn<bool>("refreshHidden"); // when the labels are created
        QTest::newRow("refresh button shown") << false;
        QTest::newRow("refresh button hidden") << true;
    }

    void footerLabels()
    {
        QFETCH(bool, refreshHidden);
        const QString plain = getStyleSheet("component.paging_bar_label", false);
        const QString rightmost = getStyleSheet("component.paging_bar_rightmost_label", false);
        QVERIFY(rightmost != plain);
        // Fixed to a width above 0; 0 or less leaves a new label free and a reused one as it was.
        const auto widths = [](QLabel *label) { return std::make_pair(label->minimumWidth(), label->maximumWidth()); };
        const auto fixed = [](int width) { return std::make_pair(px(width), px(width)); };
        const auto free = std::make_pair(0, QWIDGETSIZE_MAX);
        Bar b;
        b.bar.setRefreshButtonHidden(refreshHidden);
        QVERIFY(showAt(b.bar, 900, 32));
        b.bar.setFooterInfos({{QStringLiteral("120 items"), 80}, {QStringLiteral("3 selected"), 0}});
        QCoreApplication::processEvents();
        QPointer<QLabel> first = b.label(QStringLiteral("120 items"));
        QPointer<QLabel> second = b.label(QStringLiteral("3 selected"));
        QVERIFY(first && second);
        QCOMPARE(widths(first), fixed(80));
        QCOMPARE(widths(second), free);
        QCOMPARE(b.separators(), 2);
        // Right to left: label 0 stands next to the refresh button.
        QVERIFY(second->x() < first->x());
        QVERIFY(refreshHidden || first->x() < b.iconButton("pagebar_refresh")->x());

        // Surplus labels are hidden, not deleted; their separators stay. The look is decided
        // at creation: toggling the refresh button and reusing the label does not restyle it.
        b.bar.setRefreshButtonHidden(!refreshHidden);
        b.bar.setFooterText(QStringLiteral("99 items"));
        QVERIFY(first && second);
        QCOMPARE(first->text(), QStringLiteral("99 items"));
        QCOMPARE(widths(first), fixed(80));
        QCOMPARE(first->styleSheet(), refreshHidden ? rightmost : plain);
        QCOMPARE(second->styleSheet(), plain);
        QVERIFY(first->isVisible());
        QVERIFY(second->isHidden());
        QCOMPARE(b.separators(), 2);
        // A longer list again creates a new label rather than reviving the hidden one.
        b.bar.setFooterInfos({{QStringLiteral("a"), -40}, {QStringLiteral("b"), -5}});
        QCOMPARE(first->text(), QStringLiteral("a"));
        QCOMPARE(widths(first), fixed(80));
        QCOMPARE(widths(b.label(QStringLiteral("b"))), free);
        QCOMPARE(second->text(), QStringLiteral("3 selected"));
        QVERIFY(second->isHidden());
        QCOMPARE(b.separators(), 3);
        b.bar.setFooterInfo({QStringLiteral("c"), 120});
        QCOMPARE(widths(first), fixed(120));
        b.bar.setFooterInfos({});
        QVERIFY(first->isHidden());
    }

    void narrowPaneKeepsText_data()
    {
        QTest::addColumn<int>("items");
        QTest::addColumn<int>("page");
        QTest::newRow("page 1 of 4") << 36 << 1;
        QTest::newRow("three-digit pages") << 5000 << 120;
    }

    void narrowPaneKeepsText()
    {
        // A pane without a layout gives the bar exactly the width it is told, as a
        // narrow splitter pane does. The gap gives way first, then the footer's end
        // (so 440 px at 1.33 still shows every page number); no button is ever cut.
        QFETCH(int, items);
        QFETCH(int, page);
        QWidget pane;
        LumoPagingModel model(10);
        auto *bar = new LumoPagingBar(&model, &pane);
        bar->setItemCount(items);
        bar->setPage(page);
        bar->setFooterText(QStringLiteral("%1 file(s)").arg(items));
        QLabel *footer = nullptr;
        for (QLabel *label : bar->findChildren<QLabel *>())
            footer = label->text().isEmpty() ? footer : label;
        QVERIFY(showAt(pane, 1200, 60));
        const int roomy = bar->sizeHint().width();
        const int narrowest = bar->minimumSizeHint().width();
        for (int width : {roomy, roomy - px(50), narrowest}) {
            bar->setGeometry(0, 0, width, bar->sizeHint().height());
            QTest::qWait(0);
            for (QPushButton *button : bar->findChildren<LumoButton *>()) {
                QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
                QCOMPARE(button->minimumWidth(), px(24));
            }
            QVERIFY(footer->geometry().right() < footer->parentWidget()->width());
            QCOMPARE(footer->width() >= footer->sizeHint().width(), width > narrowest);
        }
        // Squeezed, the footer is painted as a label of the elided text would be.
        auto *elided = new QLabel(footer->parentWidget());
        elided->setStyleSheet(footer->styleSheet());
        elided->setAlignment(footer->alignment());
        elided->setFixedSize(footer->size());
        elided->ensurePolished();
        elided->setText(footer->fontMetrics().elidedText(footer->text(), Qt::ElideRight,
                                                         footer->contentsRect().width() -
                                                             footer->fontMetrics().horizontalAdvance(QLatin1Char('x')) / 2));
        QCOMPARE(footer->grab().toImage(), elided->grab().toImage());
    }

    // ---------------------------------------------------------------------------
    // Calendar view and date selector

    void calendarInAWindow()
    {
        testsupport::LogCatcher log;
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *view = new LumoCalanderView;
        // Every child of Qt's calendar that the view restyles was found.
        QCOMPARE(log.warnings(), QStringList());
        view->setStyleSheet(getStyleSheet("component.date_selector", false));
        layout->addWidget(new QPushButton(QStringLiteral("Above")));
        layout->addWidget(view);
        layout->addWidget(new QPushButton(QStringLiteral("Below")));
        auto *header = named<QTableWidget>(view, "qt_calendar_weekdayview");
        QVERIFY(header);
        QString captions;
        for (int column = 0; column < header->columnCount(); ++column)
            captions += header->item(0, column)->text();
        QCOMPARE(captions, QStringLiteral("SMTWTFS"));
        QCOMPARE(calendarOf(view)->layout()->indexOf(header), 1); // under the navigation bar
        auto *month = named<QToolButton>(view, "qt_calendar_monthbutton");
        QCOMPARE(month->text(), QLocale(QLocale::English).standaloneMonthName(QDate::currentDate().month()));
        QCOMPARE(month->menu()->actions().first()->text(), QStringLiteral("Jan"));
        view->setCurrentPage(2025, 1);
        QCOMPARE(month->text(), QStringLiteral("January"));

        // In an ordinary layout all six weeks show without scrolling, and a click picks the
        // day under the pointer. 1 January 2025 was a Wednesday: the fourth column.
        QVERIFY(activate(window));
        QTableView *grid = gridOf(view);
        QCOMPARE(grid->verticalScrollBar()->maximum(), 0);
        QCOMPARE(view->height(), view->sizeHint().height()); // its own hint, not an item view's default
        QCOMPARE(grid->indexAt(dayAt(grid, 1)).column(), 3);
        QSignalSpy spy(view, SIGNAL(sigDateSelect(QDate)));
        clickDay(grid, 15);
        QCOMPARE(spy, QList<QVariantList> {{QDate(2025, 1, 15)}});

        QTest::mouseClick(named<QToolButton>(view, "qt_calendar_nextmonth"), Qt::LeftButton);
        QCOMPARE(month->text(), QStringLiteral("February"));
        QTest::mouseClick(named<QToolButton>(view, "qt_calendar_prevmonth"), Qt::LeftButton);
        QTest::mouseClick(named<QToolButton>(view, "qt_calendar_prevmonth"), Qt::LeftButton);
        QCOMPARE(month->text(), QStringLiteral("December"));
        // The month slot takes the action's month number; out-of-range input is ignored.
        QAction action;
        action.setData(9);
        view->slotMonthTriggered(&action);
        QCOMPARE(month->text(), QStringLiteral("September"));
        action.setData(13);
        view->slotMonthTriggered(&action);
        view->slotMonthTriggered(nullptr);
        view->pageChanged(2022, 0);
        QCOMPARE(month->text(), QStringLiteral("September"));

        // The tab cycle: grid, today button, the view itself; Backtab on the grid skips the hidden year edit.
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
        QTest::keyClick(grid, Qt::Key_Tab);
        QTest::keyClick(today, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), view);
        QTest::keyClick(view, Qt::Key_Backtab);
        QVERIFY(today->hasFocus());
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(grid, Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), named(view, "qt_calendar_yearbutton"));
    }

    void datePicks_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QDate>("date");

        QTest::newRow("click") << "click" << QDate(2024, 5, 15);
        QTest::newRow("enter") << "enter" << QDate(1999, 12, 31);
        QTest::newRow("today button") << "today" << QDate::currentDate();
    }

    void datePicks()
    {
        QFETCH(QString, how);
        QFETCH(QDate, date);
        LumoDateSelector selector;
        QVERIFY(showAt(selector, 200, 32));
        LumoCalanderView *view = selector.getCalendarView();
        // The today button is tried from a page far from today.
        view->setCurrentPage(how == QLatin1String("today") ? 2001 : date.year(), how == QLatin1String("today") ? 7 : date.month());
        selector.showPopup();
        QTRY_VERIFY(view->isVisible());
        QSignalSpy spy(view, SIGNAL(sigDateSelect(QDate)));
        QSignalSpy changed(&selector, SIGNAL(sigDateChanged(QDate)));
        QTableView *grid = gridOf(view);
        if (how == QLatin1String("click")) {
            clickDay(grid, date.day());
        } else if (how == QLatin1String("enter")) {
            calendarOf(view)->setSelectedDate(date);
            grid->setFocus(Qt::OtherFocusReason);
            QTest::keyClick(grid, Qt::Key_Return);
        } else {
            QTest::mouseClick(named<LumoButton>(view, "qt_calendar_today_button"), Qt::LeftButton);
        }
        QCOMPARE(spy, QList<QVariantList> {{date}});
        QCOMPARE(selector.currentText(), date.toString(QStringLiteral("yyyy-MM-dd")));
        QCOMPARE(selector.date(), date);
        QCOMPARE(calendarOf(view)->selectedDate(), date);
        QCOMPARE(QDate(calendarOf(view)->yearShown(), calendarOf(view)->monthShown(), 1), QDate(date.year(), date.month(), 1));
        QTRY_VERIFY(!view->isVisible());
        selector.dateSelect(date); // the same date again: no change
        QCOMPARE(changed, QList<QVariantList> {{date}});
    }

    void noDate_data()
    {
        QTest::addColumn<QDate>("date");
        QTest::addColumn<bool>("clear"); // clearDate() instead of dateSelect(date)
        QTest::newRow("null") << QDate() << false;
        QTest::newRow("30 February") << QDate(2021, 2, 30) << false;
        QTest::newRow("month 13") << QDate(2021, 13, 1) << false;
        QTest::newRow("cleared") << QDate() << true;
    }

    void noDate()
    {
        QFETCH(QDate, date);
        QFETCH(bool, clear);
        LumoDateSelector selector(QStringLiteral("No date"));
        QCalendarWidget *calendar = calendarOf(selector.view());
        QVERIFY(showAt(selector, 200, 32));
        QSignalSpy changed(&selector, SIGNAL(sigDateChanged(QDate)));
        selector.clearDate(); // no date yet: no change
        selector.dateSelect(QDate(2010, 3, 4));
        QCOMPARE(selector.currentText(), QStringLiteral("2010-03-04"));
        selector.getCalendarView()->setCurrentPage(2011, 8);
        selector.showPopup();
        QTRY_VERIFY(selector.view()->isVisible());
        calendar->setSelectedDate(QDate(2011, 8, 9));
        clear ? selector.clearDate() : selector.dateSelect(date);
        // The default text and a null date; an invalid date leaves the page and the open popup,
        // clearing returns to today's month. The calendar's selection stays either way.
        QCOMPARE(changed, (QList<QVariantList> {{QDate(2010, 3, 4)}, {QDate()}}));
        QCOMPARE(selector.count(), 1);
        QCOMPARE(selector.currentIndex(), 0);
        QCOMPARE(selector.currentText(), QStringLiteral("No date"));
        QVERIFY(selector.currentData().toDate().isNull());
        QVERIFY(clear || selector.view()->isVisible());
        const QDate page = clear ? QDate::currentDate() : QDate(2011, 8, 1);
        QCOMPARE(QDate(calendar->yearShown(), calendar->monthShown(), 1), QDate(page.year(), page.month(), 1));
        QCOMPARE(calendar->selectedDate(), QDate(2011, 8, 9));
        selector.hidePopup();
    }

    void datesOutOfRange()
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
            const QRect cell = grid->visualRect(grid->indexAt(dayAt(grid, day)));
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
            clickDay(grid, day);
            QVERIFY(view->isVisible());
        }
        QCOMPARE(spy.count(), 0);
        QCOMPARE(selector.currentData().toDate(), QDate());
        QCOMPARE(selector.currentText(), QStringLiteral("choose date"));
        selector.hidePopup();
    }

    // ---------------------------------------------------------------------------
    // Table widget

    void distribution_data()
    {
        QTest::addColumn<QList<Column>>("columns");
        QTest::addColumn<int>("viewportWidth"); // design pixels
        QTest::addColumn<QList<int>>("expected"); // design pixels, the header's extra column last

        const QList<Column> halves = {{200, false, 0.0}, {100, true, 0.5}, {100, true, 0.5}};
        QTest::newRow("two halves beside a fixed 200") << halves << 1000 << QList<int>({200, 400, 400, 12});
        QTest::newRow("shares just above the floor") << halves << 402 << QList<int>({200, 101, 101, 12});
        QTest::newRow("shares below the floor keep the width") << halves << 300 << QList<int>({200, 100, 100, 12});
        QTest::newRow("a ratio-0 resizable column counts as fixed")
            << QList<Column>({{150, true, 0.0}, {100, true, 1.0}}) << 800 << QList<int>({150, 650, 12});
        QTest::newRow("a non-resizable ratio column keeps its width")
            << QList<Column>({{150, false, 0.7}, {100, true, 0.5}}) << 850 << QList<int>({150, 350, 12});
        QTest::newRow("shares above one overflow")
            << QList<Column>({{50, true, 0.8}, {50, true, 0.8}}) << 500 << QList<int>({400, 400, 12});
        QTest::newRow("shares below one leave a gap")
            << QList<Column>({{50, true, 0.25}, {50, true, 0.25}}) << 800 << QList<int>({200, 200, 12});
        QTest::newRow("zero and negative widths take their share")
            << QList<Column>({{0, true, 0.5}, {-50, true, 0.5}}) << 600 << QList<int>({300, 300, 12});
        QTest::newRow("no columns") << QList<Column>() << 800 << QList<int>({12});
    }

    void distribution()
    {
        QFETCH(QList<Column>, columns);
        QFETCH(int, viewportWidth);
        QFETCH(QList<int>, expected);
        // A child widget, so that no window manager adjusts the sizes.
        QWidget window;
        auto *table = new LumoTableWidget(columnsOf(columns), &window);
        QVERIFY(showAt(window, 1600, 500));
        // A scroll area's resize events are its viewport's: the scroll bar's room is not shared out.
        QWidget *viewport = table->getTable()->viewport();
        QVERIFY(viewport->width() < table->width());
        table->resize(px(viewportWidth) + table->width() - viewport->width(), px(300));
        QCOMPARE(viewport->width(), px(viewportWidth));
        // Exact at every scale used here: free width and shares are whole multiples of the scale's pixels.
        QList<int> want;
        for (int width : expected)
            want << px(width);
        QCOMPARE(headerSizes(*table), want);
        // The table's own columns follow the visible header.
        QCOMPARE(table->getTable()->columnCount(), int(columns.size()));
        for (int i = 0; i < columns.size(); ++i)
            QCOMPARE(table->getTable()->horizontalHeader()->sectionSize(i), want[i]);
    }

    void hostileColumns()
    {
        testsupport::LogCatcher log;
        LumoTableWidget table(columnsOf(
            {{-400, false, 0.0}, {30, true, std::numeric_limits<double>::quiet_NaN()}, {INT_MAX, true, 1e300}, {-50, true, -0.5}}));
        QVERIFY(showAt(table, 600, 200));
        for (const QSize &size : {QSize(0, 0), QSize(-100, 10), QSize(INT_MAX / 4, 10), QSize(px(900), px(200))}) {
            table.slotTableResized(size);
            for (int section : headerSizes(table))
                QVERIFY(section >= 0);
        }
        // A NaN share falls back to the column's own width.
        QCOMPARE(table.getHeader()->sectionSize(1), px(30));
        QVERIFY(log.warnings().isEmpty());
    }

    void scrollBars()
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

    void homeOrdering_data()
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

    void homeOrdering()
    {
        QFETCH(QString, left);
        QFETCH(QString, right);
        std::unique_ptr<QTreeWidgetItem> leftItem(treeItem(left));
        std::unique_ptr<QTreeWidgetItem> rightItem(treeItem(right));
        QVERIFY(dynamic_cast<FileSystemTreeWidgetItem *>(leftItem.get()));
        QTEST(*leftItem < *rightItem, "less");
    }

    void delegate_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<bool>("cancelled"); // left by Escape, announced by the delegate; otherwise by Return

        for (QChar forbidden : QStringLiteral("\\/:*?\"<>|"))
            QTest::addRow("inner %c", forbidden.toLatin1())
                << QStringLiteral("ab") + forbidden + QStringLiteral("cd") << QStringLiteral("abcd") << false;
        for (QChar forbidden : QStringLiteral(".\\/:*?\"<>|"))
            QTest::addRow("leading %c", forbidden.toLatin1()) << forbidden + QStringLiteral("name") << QStringLiteral("name") << false;
        QTest::newRow("inner dot") << QStringLiteral("report.final.txt") << QStringLiteral("report.final.txt") << false;
        QTest::newRow("leading blank") << QStringLiteral(" notes") << QStringLiteral(" notes") << false;
        QTest::newRow("escape cancels") << QStringLiteral("changed") << QStringLiteral("changed") << true;
    }

    void delegate()
    {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(bool, cancelled);
        ItemDelegate delegate;
        LumoTreeWidget tree;
        tree.setItemDelegate(&delegate);
        tree.addTopLevelItem(folderItem(0));
        QTreeWidgetItem *item = folderItem(1, Qt::ItemIsEditable | Qt::ItemIsUserCheckable);
        item->setCheckState(0, Qt::Checked);
        tree.addTopLevelItem(item);
        QVERIFY(showAt(tree, 300, 200));
        // The delegate's rows and the check box drawn inside its row.
        const QRect row = tree.visualItemRect(item);
        QCOMPARE(row.height(), px(28));
        g_check_rect = QRect();
        tree.viewport()->grab();
        QVERIFY(row.contains(g_check_rect.center()));
        QVERIFY(g_check_rect.width() > 0 && g_check_rect.width() < row.width() / 2);

        QSignalSpy spy(&delegate, SIGNAL(sigKeyPressed(QKeyEvent *)));
        tree.editItem(item, 0);
        QPointer<QLineEdit> editor = tree.viewport()->findChild<QLineEdit *>();
        QVERIFY(editor && editor->isVisible());
        QCOMPARE(editor->text(), QStringLiteral("Folder 1"));
        editor->clear();
        QTest::keyClicks(editor, typed);
        QCOMPARE(editor->text(), shown);
        QCOMPARE(spy.count(), 0);
        QTest::keyClick(editor, cancelled ? Qt::Key_Escape : Qt::Key_Return);
        QCOMPARE(spy.count(), int(cancelled));
        QTRY_VERIFY(!editor || !editor->isVisible());
        QCOMPARE(item->text(0), cancelled ? QStringLiteral("Folder 1") : shown);
    }

    void focusIn_data()
    {
        QTest::addColumn<int>("current"); // -1: none
        QTest::addColumn<int>("expected");
        QTest::addColumn<int>("announcements");

        QTest::newRow("none: the topmost visible item") << -1 << 50 << 1;
        QTest::newRow("the current item, away and back") << 4 << 4 << 2;
    }

    void focusIn()
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
            tree->addTopLevelItem(folderItem(i));
        if (current >= 0)
            tree->setCurrentItem(tree->topLevelItem(current));
        window.resize(px(300), px(300));
        QVERIFY(activate(window));
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

    void treeBands()
    {
        LumoTreeWidget tree;
        tree.setBackgroundColor(QColor(0, 0, 255), QColor(0, 200, 0));
        tree.setHeaderHidden(true); // the band follows the pointer in the tree's coordinates, not the viewport's
        for (int i = 0; i < 5; ++i)
            tree.addTopLevelItem(folderItem(i, Qt::ItemIsUserCheckable));
        tree.setCurrentItem(tree.topLevelItem(1));
        QVERIFY(showAt(tree, 300, 200));
        auto rowCentre = [&](int row) { return tree.visualItemRect(tree.topLevelItem(row)).center(); };
        // What the screen shows, the window's last painted pixels (the offscreen screen tints them
        // evenly), rather than a fresh rendering.
        auto shown = [&](int row) {
            const QPixmap screen = tree.screen()->grabWindow(tree.winId());
            const QPoint at = tree.viewport()->mapTo(&tree, QPoint(tree.viewport()->width() - px(20), rowCentre(row).y()));
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
};

QTEST_MAIN(TestViews)
#include "tst_views.moc"

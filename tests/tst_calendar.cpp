// The calendar view and the date selector built on it.

#include "testsupport.h"

#include <lumo/controls.h>
#include <lumo/registries.h>
#include <lumo/views.h>

#include <QCalendarWidget>
#include <QHeaderView>
#include <QMenu>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

namespace
{
// Design pixels at this run's scale, truncated like the library's sizes.
int scaled(double designPixels)
{
    return int(testsupport::expectedScale() * designPixels);
}

QString caption(const char *key)
{
    return ComponentStrings::getInstance()->getString(QLatin1String(key));
}

QCalendarWidget *calendarOf(QWidget *view)
{
    return view->findChild<QCalendarWidget *>();
}

QTableView *gridOf(QWidget *view)
{
    return view->findChild<QTableView *>(QStringLiteral("qt_calendar_calendarview"));
}

QToolButton *monthButtonOf(QWidget *view)
{
    return view->findChild<QToolButton *>(QStringLiteral("qt_calendar_monthbutton"));
}

// The grid cell showing @p day; days 10 to 20 occur once on every page.
QModelIndex cellOfDay(QTableView *grid, int day)
{
    QAbstractItemModel *model = grid->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex index = model->index(row, column);
            if (index.data().toString() == QString::number(day))
                return index;
        }
    }
    return {};
}

void clickDay(QTableView *grid, int day)
{
    const QModelIndex index = cellOfDay(grid, day);
    QVERIFY(index.isValid());
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(index).center());
}

bool popupOpen(LumoDateSelector &selector)
{
    return selector.view()->isVisible();
}
}

class TestCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void childrenOfQtCalendarExist();
    void metaObjects();
    void weekdayHeader();
    void sundayFirstAndBlackWeekends();
    void navigationBar();
    void monthTitlesFollowPages();
    void todayButton();
    void inertItemView();
    void tabStaysInsideTheView();
    void selectorConstruction();
    void pickByClick();
    void pickByEnter();
    void doubleClickPicksTwice();
    void pickToday();
    void invalidDateKeepsPopup();
    void clearDate();

private:
    QTemporaryDir userData;
};

void TestCalendar::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
}

void TestCalendar::childrenOfQtCalendarExist()
{
    // The view restyles QCalendarWidget's children by Qt's object names; this Qt must have them all.
    testsupport::LogCatcher log;
    LumoCalanderView view;
    QCOMPARE(log.warnings(), QStringList());
    QCalendarWidget plain;
    for (const char *name : {"qt_calendar_prevmonth", "qt_calendar_nextmonth", "qt_calendar_monthbutton", "qt_calendar_yearbutton"})
        QVERIFY2(plain.findChild<QToolButton *>(QLatin1String(name)), name);
    QVERIFY(plain.findChild<QSpinBox *>(QStringLiteral("qt_calendar_yearedit")));
    QVERIFY(plain.findChild<QWidget *>(QStringLiteral("qt_calendar_navigationbar")));
    QVERIFY(plain.findChild<QTableView *>(QStringLiteral("qt_calendar_calendarview")));
}

void TestCalendar::metaObjects()
{
    auto methods = [](const QMetaObject &meta) {
        QStringList list;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            list << QString::fromLatin1(meta.method(i).methodSignature());
        return list;
    };
    QCOMPARE(methods(LumoCalanderView::staticMetaObject),
             QStringList({QStringLiteral("sigDateSelect(QDate)"), QStringLiteral("selectToday()"), QStringLiteral("pageChanged(int,int)"),
                          QStringLiteral("slotMonthTriggered(QAction*)")}));
    QCOMPARE(LumoCalanderView::staticMetaObject.method(LumoCalanderView::staticMetaObject.methodOffset()).methodType(),
             QMetaMethod::Signal);
    QCOMPARE(methods(LumoDateSelector::staticMetaObject), QStringList({QStringLiteral("dateSelect(QDate)")}));
}

void TestCalendar::weekdayHeader()
{
    LumoCalanderView view;
    auto *header = view.findChild<QTableWidget *>(QStringLiteral("qt_calendar_weekdayview"));
    QVERIFY(header);
    QCOMPARE(header->rowCount(), 1);
    QCOMPARE(header->columnCount(), 7);
    QStringList captions;
    for (int column = 0; column < 7; ++column) {
        captions << header->item(0, column)->text();
        QCOMPARE(header->item(0, column)->textAlignment(), int(Qt::AlignCenter));
    }
    QCOMPARE(captions,
             QStringList({QStringLiteral("S"), QStringLiteral("M"), QStringLiteral("T"), QStringLiteral("W"), QStringLiteral("T"),
                          QStringLiteral("F"), QStringLiteral("S")}));
    QCOMPARE(header->focusPolicy(), Qt::NoFocus);
    QCOMPARE(header->maximumHeight(), scaled(30));
    QCOMPARE(header->minimumHeight(), scaled(30));
    QVERIFY(header->horizontalHeader()->isHidden());
    QVERIFY(header->verticalHeader()->isHidden());
    QCOMPARE(header->styleSheet(), getStyleSheet("component.table", false));
    QCOMPARE(header->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(header->horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
    // Between the navigation bar and the date grid.
    auto *layout = qobject_cast<QVBoxLayout *>(calendarOf(&view)->layout());
    QVERIFY(layout);
    QCOMPARE(layout->indexOf(header), 1);
    QCOMPARE(layout->itemAt(0)->widget()->objectName(), QStringLiteral("qt_calendar_navigationbar"));
    QCOMPARE(layout->itemAt(2)->widget(), gridOf(&view));
}

void TestCalendar::sundayFirstAndBlackWeekends()
{
    LumoCalanderView view;
    QCalendarWidget *calendar = calendarOf(&view);
    QCOMPARE(calendar->firstDayOfWeek(), Qt::Sunday);
    QCOMPARE(calendar->horizontalHeaderFormat(), QCalendarWidget::NoHorizontalHeader);
    QCOMPARE(calendar->verticalHeaderFormat(), QCalendarWidget::NoVerticalHeader);
    // 1 January 2025 was a Wednesday: the fourth column when weeks begin on Sunday.
    view.setCurrentPage(2025, 1);
    QTableView *grid = gridOf(&view);
    QModelIndex first;
    for (int column = 0; column < 7 && !first.isValid(); ++column) {
        for (int row = 0; row < 2; ++row) {
            if (grid->model()->index(row, column).data().toString() == QLatin1String("1"))
                first = grid->model()->index(row, column);
        }
    }
    QVERIFY(first.isValid());
    QCOMPARE(first.column(), 3);
    for (Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        QCOMPARE(calendar->weekdayTextFormat(day).foreground().color(), QColor(Qt::black));
}

void TestCalendar::navigationBar()
{
    LumoCalanderView view;
    QCOMPARE(view.accessibleName(), caption("accessible_calendar"));
    const double dpr = DPIinfo::getInstance()->getDPR();
    const struct {
        const char *name;
        const char *image;
        const char *accessible;
    } arrows[] = {{"qt_calendar_prevmonth", "bt_pagebar_backend", "accessible_calendar_prev_month"},
                  {"qt_calendar_nextmonth", "bt_pagebar_nextend", "accessible_calendar_next_month"}};
    for (const auto &arrow : arrows) {
        auto *button = view.findChild<QToolButton *>(QLatin1String(arrow.name));
        QVERIFY(button);
        QCOMPARE(button->accessibleName(), caption(arrow.accessible));
        const QPixmap pixmap = getGlobalImage(arrow.image, ImageManager::Normal);
        QVERIFY(!pixmap.isNull());
        QCOMPARE(button->iconSize(), QSize(qRound(pixmap.width() / dpr), qRound(pixmap.height() / dpr)));
        QVERIFY(!button->icon().isNull());
    }
    for (const char *name : {"qt_calendar_prevmonth", "qt_calendar_nextmonth", "qt_calendar_monthbutton", "qt_calendar_yearbutton"})
        QCOMPARE(view.findChild<QToolButton *>(QLatin1String(name))->focusPolicy(), Qt::StrongFocus);
    auto *bar = view.findChild<QWidget *>(QStringLiteral("qt_calendar_navigationbar"));
    QVERIFY(!bar->autoFillBackground());
    QVERIFY(!view.findChild<QSpinBox *>(QStringLiteral("qt_calendar_yearedit"))->testAttribute(Qt::WA_MacShowFocusRect));

    // The arrows on the navigation bar still take clicks.
    view.setCurrentPage(2024, 5);
    view.resize(scaled(280), scaled(260));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTest::mouseClick(view.findChild<QToolButton *>(QStringLiteral("qt_calendar_nextmonth")), Qt::LeftButton);
    QCOMPARE(calendarOf(&view)->monthShown(), 6);
}

void TestCalendar::monthTitlesFollowPages()
{
    LumoCalanderView view;
    QToolButton *month = monthButtonOf(&view);
    // Before any page change: the system date's month.
    QCOMPARE(month->text(), QLocale(QLocale::English).standaloneMonthName(QDate::currentDate().month()));
    QStringList titles;
    for (QAction *action : month->menu()->actions())
        titles << action->text();
    QCOMPARE(titles,
             QStringList({QStringLiteral("Jan"), QStringLiteral("Feb"), QStringLiteral("Mar"), QStringLiteral("Apr"), QStringLiteral("May"),
                          QStringLiteral("Jun"), QStringLiteral("Jul"), QStringLiteral("Aug"), QStringLiteral("Sep"), QStringLiteral("Oct"),
                          QStringLiteral("Nov"), QStringLiteral("Dec")}));

    view.setCurrentPage(2023, 2);
    QCOMPARE(month->text(), QStringLiteral("February"));
    view.resize(scaled(280), scaled(260));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTest::mouseClick(view.findChild<QToolButton *>(QStringLiteral("qt_calendar_nextmonth")), Qt::LeftButton);
    QCOMPARE(month->text(), QStringLiteral("March"));
    QTest::mouseClick(view.findChild<QToolButton *>(QStringLiteral("qt_calendar_prevmonth")), Qt::LeftButton);
    QTest::mouseClick(view.findChild<QToolButton *>(QStringLiteral("qt_calendar_prevmonth")), Qt::LeftButton);
    QCOMPARE(month->text(), QStringLiteral("January"));
    view.setCurrentPage(2022, 12);
    QCOMPARE(month->text(), QStringLiteral("December"));

    // The declared month slot sets the full name by the action's month number; bad input is ignored.
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

void TestCalendar::todayButton()
{
    LumoCalanderView view;
    auto *today = view.findChild<LumoButton *>(QStringLiteral("qt_calendar_today_button"));
    QVERIFY(today);
    QCOMPARE(today->text(), caption("today"));
    QCOMPARE(today->styleSheet(), getStyleSheet("component.cancel_button", false));
    // The cancel look's minimum height may raise it; the design height is the maximum.
    QCOMPARE(today->maximumHeight(), scaled(24));
    QCOMPARE(view.layout()->indexOf(today), 1);
    QCOMPARE(view.layout()->itemAt(1)->alignment(), Qt::AlignHCenter);

    view.setCurrentPage(2020, 1);
    view.resize(scaled(280), scaled(260));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QSignalSpy spy(&view, SIGNAL(sigDateSelect(QDate)));
    QTest::mouseClick(today, Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toDate(), QDate::currentDate());
    QCOMPARE(calendarOf(&view)->selectedDate(), QDate::currentDate());
}

void TestCalendar::inertItemView()
{
    struct Probe : LumoCalanderView {
        using LumoCalanderView::horizontalOffset;
        using LumoCalanderView::isIndexHidden;
        using LumoCalanderView::moveCursor;
        using LumoCalanderView::MoveDown;
        using LumoCalanderView::verticalOffset;
        using LumoCalanderView::visualRegionForSelection;
    } view;
    QStandardItemModel model(3, 1);
    view.setModel(&model);
    const QModelIndex index = model.index(1, 0);
    QCOMPARE(view.visualRect(index), QRect());
    QVERIFY(!view.indexAt(QPoint(10, 10)).isValid());
    view.scrollTo(index);
    QCOMPARE(view.selectionMode(), QAbstractItemView::NoSelection);
    QVERIFY(view.isIndexHidden(index));
    QVERIFY(view.isIndexHidden(QModelIndex()));
    QVERIFY(!view.moveCursor(Probe::MoveDown, {}).isValid());
    QCOMPARE(view.horizontalOffset(), 0);
    QCOMPARE(view.verticalOffset(), 0);
    QVERIFY(view.visualRegionForSelection(QItemSelection(index, index)).isEmpty());
}

void TestCalendar::tabStaysInsideTheView()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *before = new QPushButton(QStringLiteral("before"));
    auto *view = new LumoCalanderView;
    auto *after = new QPushButton(QStringLiteral("after"));
    layout->addWidget(before);
    layout->addWidget(view);
    layout->addWidget(after);
    view->setFixedSize(scaled(280), scaled(260));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    auto *yearEdit = view->findChild<QSpinBox *>(QStringLiteral("qt_calendar_yearedit"));
    QTableView *grid = gridOf(view);
    auto *today = view->findChild<LumoButton *>(QStringLiteral("qt_calendar_today_button"));

    // Tab on the date grid goes to the today button, Backtab back to the grid.
    grid->setFocus(Qt::OtherFocusReason);
    QTRY_VERIFY(grid->hasFocus());
    const QModelIndex current = grid->currentIndex();
    QVERIFY(current.isValid());
    QTest::keyClick(grid, Qt::Key_Tab);
    QVERIFY(today->hasFocus());
    QTest::keyClick(today, Qt::Key_Backtab);
    QVERIFY(grid->hasFocus());
    QCOMPARE(grid->currentIndex(), current);
    // Tab on the today button closes the cycle at the view itself.
    QTest::keyClick(grid, Qt::Key_Tab);
    QTest::keyClick(today, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), view);
    QTest::keyClick(view, Qt::Key_Backtab);
    QVERIFY(today->hasFocus());
    // Backtab on the grid skips the hidden year edit and reaches the year button.
    QVERIFY(yearEdit->isHidden());
    grid->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(grid, Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), view->findChild<QToolButton *>(QStringLiteral("qt_calendar_yearbutton")));
    QVERIFY(!before->hasFocus() && !after->hasFocus());
    // Keys other than Tab are left alone.
    QKeyEvent other(QEvent::KeyPress, Qt::Key_A, {});
    QVERIFY(!view->eventFilter(grid, &other));
    QEvent notKey(QEvent::Enter);
    QVERIFY(!view->eventFilter(grid, &notKey));
}

void TestCalendar::selectorConstruction()
{
    LumoDateSelector selector;
    QCOMPARE(selector.count(), 1);
    QCOMPARE(selector.currentText(), QStringLiteral("choose date"));
    QVERIFY(selector.currentData().toDate().isNull());
    QCOMPARE(selector.currentData().userType(), QMetaType::QDate);
    QCOMPARE(selector.view(), selector.getCalendarView());
    QCOMPARE(selector.height(), scaled(32));
    QCOMPARE(selector.minimumHeight(), scaled(32));
    QCOMPARE(selector.view()->minimumSize(), QSize(scaled(280), scaled(260)));
    QCOMPARE(selector.view()->maximumSize(), QSize(scaled(280), scaled(260)));
    QCOMPARE(selector.styleSheet(), getStyleSheet("component.date_selector", false) + getStyleSheet("component.menu", false));

    LumoDateSelector custom(QStringLiteral("Any day"));
    QCOMPARE(custom.currentText(), QStringLiteral("Any day"));
}

void TestCalendar::pickByClick()
{
    LumoDateSelector selector;
    selector.show();
    QVERIFY(QTest::qWaitForWindowExposed(&selector));
    selector.getCalendarView()->setCurrentPage(2024, 5);
    selector.showPopup();
    QTRY_VERIFY(popupOpen(selector));
    QSignalSpy spy(selector.getCalendarView(), SIGNAL(sigDateSelect(QDate)));
    clickDay(gridOf(selector.view()), 15);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toDate(), QDate(2024, 5, 15));
    QCOMPARE(selector.count(), 1);
    QCOMPARE(selector.currentText(), QStringLiteral("2024-05-15"));
    QCOMPARE(selector.currentData().toDate(), QDate(2024, 5, 15));
    QTRY_VERIFY(!popupOpen(selector));
}

void TestCalendar::pickByEnter()
{
    LumoDateSelector selector;
    selector.show();
    QVERIFY(QTest::qWaitForWindowExposed(&selector));
    selector.showPopup();
    QTRY_VERIFY(popupOpen(selector));
    calendarOf(selector.view())->setSelectedDate(QDate(1999, 12, 31));
    QSignalSpy spy(selector.getCalendarView(), SIGNAL(sigDateSelect(QDate)));
    QTableView *grid = gridOf(selector.view());
    grid->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(grid, Qt::Key_Return);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toDate(), QDate(1999, 12, 31));
    QCOMPARE(selector.currentText(), QStringLiteral("1999-12-31"));
    QTRY_VERIFY(!popupOpen(selector));
}

void TestCalendar::doubleClickPicksTwice()
{
    LumoCalanderView view;
    view.setCurrentPage(2024, 2);
    view.resize(scaled(280), scaled(260));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QSignalSpy spy(&view, SIGNAL(sigDateSelect(QDate)));
    QTableView *grid = gridOf(&view);
    const QPoint center = grid->visualRect(cellOfDay(grid, 12)).center();
    // A real double click: press, release, double-click press, release.
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, center);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, center);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, center);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, center);
    // Once for the click, once for the activation.
    QCOMPARE(spy.count(), 2);
    for (const QList<QVariant> &emission : spy)
        QCOMPARE(emission.at(0).toDate(), QDate(2024, 2, 12));
}

void TestCalendar::pickToday()
{
    LumoDateSelector selector;
    selector.show();
    QVERIFY(QTest::qWaitForWindowExposed(&selector));
    selector.getCalendarView()->setCurrentPage(2001, 7);
    selector.showPopup();
    QTRY_VERIFY(popupOpen(selector));
    QSignalSpy spy(selector.getCalendarView(), SIGNAL(sigDateSelect(QDate)));
    QTest::mouseClick(selector.view()->findChild<LumoButton *>(QStringLiteral("qt_calendar_today_button")), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    const QDate today = QDate::currentDate();
    QCOMPARE(selector.currentText(), today.toString(QStringLiteral("yyyy-MM-dd")));
    QCOMPARE(selector.currentData().toDate(), today);
    QCOMPARE(calendarOf(selector.view())->monthShown(), today.month());
    QTRY_VERIFY(!popupOpen(selector));
}

void TestCalendar::invalidDateKeepsPopup()
{
    LumoDateSelector selector(QStringLiteral("No date"));
    selector.show();
    QVERIFY(QTest::qWaitForWindowExposed(&selector));
    selector.dateSelect(QDate(2010, 3, 4));
    QCOMPARE(selector.currentText(), QStringLiteral("2010-03-04"));
    selector.getCalendarView()->setCurrentPage(2011, 8);
    selector.showPopup();
    QTRY_VERIFY(popupOpen(selector));
    for (const QDate &invalid : {QDate(), QDate(2021, 2, 30), QDate(2021, 13, 1)}) {
        selector.dateSelect(invalid);
        QCOMPARE(selector.count(), 1);
        QCOMPARE(selector.currentText(), QStringLiteral("No date"));
        QVERIFY(selector.currentData().toDate().isNull());
        QVERIFY(popupOpen(selector));
        QCOMPARE(calendarOf(selector.view())->yearShown(), 2011);
        QCOMPARE(calendarOf(selector.view())->monthShown(), 8);
    }
    selector.hidePopup();
}

void TestCalendar::clearDate()
{
    LumoDateSelector selector;
    selector.dateSelect(QDate(2015, 6, 7));
    calendarOf(selector.view())->setSelectedDate(QDate(2015, 6, 7));
    QCOMPARE(calendarOf(selector.view())->monthShown(), 6);
    selector.clearDate();
    const QDate today = QDate::currentDate();
    QCOMPARE(selector.count(), 1);
    QCOMPARE(selector.currentIndex(), 0);
    QCOMPARE(selector.currentText(), QStringLiteral("choose date"));
    QVERIFY(selector.currentData().toDate().isNull());
    QCOMPARE(calendarOf(selector.view())->yearShown(), today.year());
    QCOMPARE(calendarOf(selector.view())->monthShown(), today.month());
    // The calendar's selection is left as it was.
    QCOMPARE(calendarOf(selector.view())->selectedDate(), QDate(2015, 6, 7));
}

QTEST_MAIN(TestCalendar)
#include "tst_calendar.moc"

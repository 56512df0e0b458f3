#include <lumo/views.h>

#include <lumo/controls.h>
#include <lumo/sheets.h>

#include "resources/registries_p.h"
#include "views/views_p.h"

#include <QAction>
#include <QCalendarWidget>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QSpinBox>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{
const char *const prevMonthName = "qt_calendar_prevmonth";
const char *const nextMonthName = "qt_calendar_nextmonth";
const char *const monthButtonName = "qt_calendar_monthbutton";
const char *const yearButtonName = "qt_calendar_yearbutton";
const char *const yearEditName = "qt_calendar_yearedit";
const char *const navigationBarName = "qt_calendar_navigationbar";
const char *const dateGridName = "qt_calendar_calendarview";
const char *const todayButtonName = "qt_calendar_today_button";
const char *const weekdayHeaderName = "qt_calendar_weekdayview";

// QCalendarWidget's children are found by Qt's object names; a Qt whose calendar
// names them otherwise loses only the restyling of that child.
template<typename T> T *child(const QObject *parent, const char *name)
{
    T *found = parent->findChild<T *>(QLatin1String(name));
    if (!found)
        qCWarning(lumoLog) << "Cannot find calendar child" << QLatin1String(name);
    return found;
}

// The wrapped calendar, with two corrections to Qt's own.
class RangeCalendar : public QCalendarWidget
{
public:
    explicit RangeCalendar(QWidget *parent)
        : QCalendarWidget(parent)
    {
        // A press on a date out of range is ignored by the grid; passed on, it would reach
        // (and close) a combo box popup holding the view.
        setAttribute(Qt::WA_NoMousePropagation);
    }

    QSize minimumSizeHint() const override
    {
        // Qt counts its navigation bar and the grid, not the weekday row put between them.
        QSize hint = QCalendarWidget::minimumSizeHint();
        const auto *weekdays = findChild<QWidget *>(QLatin1String(weekdayHeaderName));
        if (weekdays && layout() && layout()->indexOf(weekdays) >= 0)
            hint.rheight() += weekdays->minimumHeight() + qMax(0, layout()->spacing());
        return hint;
    }

protected:
    void paintCell(QPainter *painter, const QRect &rect, QDate date) const override
    {
        if (date >= minimumDate() && date <= maximumDate()) {
            QCalendarWidget::paintCell(painter, rect, date);
            return;
        }
        // Qt marks these by their background alone, which a style sheet's background hides:
        // drawn in the disabled text colour, as the days of other months are.
        const auto *grid = findChild<QWidget *>(QLatin1String(dateGridName));
        const QPalette palette = grid ? grid->palette() : this->palette();
        painter->save();
        painter->fillRect(rect, palette.brush(QPalette::Window));
        painter->setPen(palette.color(QPalette::Disabled, QPalette::Text));
        if (grid)
            painter->setFont(grid->font());
        painter->drawText(rect, Qt::AlignCenter, QString::number(date.day(calendar())));
        painter->restore();
    }
};
}

LumoCalanderView::LumoCalanderView(QWidget *parent)
    : QAbstractItemView(parent)
{
    auto *layout = new QVBoxLayout(this);
    auto *todayButton = new LumoButton(lumo::caption("today"), LumoButton::Cancel);
    todayButton->setFixedHeight(lumo::scaled(24));
    calendar = new RangeCalendar(this);
    calendar->setFirstDayOfWeek(Qt::Sunday);
    todayButton->setObjectName(QLatin1String(todayButtonName));
    layout->addWidget(calendar, 0);
    layout->addWidget(todayButton, 0, Qt::AlignHCenter);

    setSelectionMode(QAbstractItemView::NoSelection);
    calendar->setHorizontalHeaderFormat(QCalendarWidget::NoHorizontalHeader);
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);

    // Weekend dates are drawn like weekdays, not in Qt's default red.
    QTextCharFormat weekend = calendar->weekdayTextFormat(Qt::Saturday);
    weekend.setForeground(QBrush(Qt::black));
    calendar->setWeekdayTextFormat(Qt::Saturday, weekend);
    calendar->setWeekdayTextFormat(Qt::Sunday, weekend);

    setAccessibleName(lumo::caption("accessible_calendar"));

    handleNavigationBar();
    handleWeekdayHeader();
    handleTabOrder();

    for (const char *name : {yearButtonName, yearEditName, dateGridName}) {
        if (QWidget *watched = child<QWidget>(calendar, name))
            watched->installEventFilter(this);
    }
    todayButton->installEventFilter(this);

    connect(calendar, SIGNAL(activated(QDate)), this, SIGNAL(sigDateSelect(QDate)));
    connect(calendar, SIGNAL(clicked(QDate)), this, SIGNAL(sigDateSelect(QDate)));
    connect(todayButton, SIGNAL(clicked()), this, SLOT(selectToday()));
    connect(calendar, SIGNAL(currentPageChanged(int, int)), this, SLOT(pageChanged(int, int)));
}

LumoCalanderView::~LumoCalanderView() = default;

void LumoCalanderView::handleNavigationBar()
{
    auto *prev = child<QToolButton>(calendar, prevMonthName);
    auto *next = child<QToolButton>(calendar, nextMonthName);
    auto *month = child<QToolButton>(calendar, monthButtonName);
    auto *year = child<QToolButton>(calendar, yearButtonName);
    auto *yearEdit = child<QSpinBox>(calendar, yearEditName);
    auto *navigationBar = child<QWidget>(calendar, navigationBarName);

    for (QToolButton *button : {prev, next, month, year}) {
        if (button)
            button->setFocusPolicy(Qt::StrongFocus);
    }
    if (prev) {
        prev->setAccessibleName(lumo::caption("accessible_calendar_prev_month"));
        const QPixmap pixmap = ImageManager::getInstance()->getImage(QStringLiteral("bt_pagebar_backend"), ImageManager::Normal);
        prev->setIcon(QIcon(pixmap));
        prev->setIconSize(lumo::logicalSize(pixmap));
    }
    if (next) {
        next->setAccessibleName(lumo::caption("accessible_calendar_next_month"));
        const QPixmap pixmap = ImageManager::getInstance()->getImage(QStringLiteral("bt_pagebar_nextend"), ImageManager::Normal);
        next->setIcon(QIcon(pixmap));
        next->setIconSize(lumo::logicalSize(pixmap));
    }
    if (yearEdit)
        yearEdit->setAttribute(Qt::WA_MacShowFocusRect, false);
    if (navigationBar) {
        navigationBar->setAutoFillBackground(false);
        lumo::installOwnedFilter(navigationBar, new MouseButtonFilter);
    }
    handleMonthMenu();
}

void LumoCalanderView::handleMonthMenu()
{
    auto *month = child<QToolButton>(calendar, monthButtonName);
    for (const char *key : {"month_jan", "month_feb", "month_mar", "month_apr", "month_may", "month_jun", "month_jul", "month_aug",
                            "month_sep", "month_oct", "month_nov", "month_dec"})
        monthNames << lumo::caption(key);
    if (!month)
        return;
    if (QMenu *menu = month->menu()) {
        const QList<QAction *> actions = menu->actions();
        for (QAction *action : actions) {
            const int number = action->data().toInt();
            if (number >= 1 && number <= 12)
                action->setText(monthNames[number - 1].left(3));
        }
    }
    // The system date's month, whatever page shows; pageChanged() corrects it on the next turn.
    month->setText(monthNames[QDate::currentDate().month() - 1]);
}

void LumoCalanderView::handleWeekdayHeader()
{
    auto *grid = child<QTableView>(calendar, dateGridName);
    auto *calendarLayout = qobject_cast<QVBoxLayout *>(calendar->layout());

    weekdayHeader = new QTableWidget(0, 7);
    weekdayHeader->setFocusPolicy(Qt::NoFocus);
    weekdayHeader->setObjectName(QLatin1String(weekdayHeaderName));
    weekdayHeader->horizontalHeader()->setStyleSheet(lumo::style("component.table_header"));
    weekdayHeader->setStyleSheet(lumo::style("component.table"));
    weekdayHeader->setFixedHeight(lumo::scaled(30));
    weekdayHeader->verticalHeader()->hide();
    weekdayHeader->horizontalHeader()->hide();

    const QStringList days = {lumo::caption("sunday"),   lumo::caption("monday"), lumo::caption("tuesday"), lumo::caption("wednesday"),
                              lumo::caption("thursday"), lumo::caption("friday"), lumo::caption("saturday")};
    weekdayHeader->insertRow(0);
    for (int column = 0; column < 7; ++column) {
        auto *item = new QTableWidgetItem(days[column].left(1));
        item->setTextAlignment(Qt::AlignCenter);
        weekdayHeader->setItem(0, column, item);
    }
    weekdayHeader->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    weekdayHeader->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    weekdayHeader->setEditTriggers(QAbstractItemView::NoEditTriggers);
    weekdayHeader->setSelectionMode(QAbstractItemView::NoSelection);
    weekdayHeader->setFrameStyle(0);
    weekdayHeader->setShowGrid(false);
    // A bare 30, not scaled: the stretch mode decides the widths anyway.
    if (grid)
        grid->horizontalHeader()->setDefaultSectionSize(30);
    weekdayHeader->horizontalHeader()->setDefaultSectionSize(30);
    weekdayHeader->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // The single row fills the fixed height at every scale.
    weekdayHeader->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);

    if (calendarLayout) {
        calendarLayout->insertWidget(1, weekdayHeader);
    } else {
        qCWarning(lumoLog) << "Cannot find calendar layout";
        weekdayHeader->setParent(calendar);
        weekdayHeader->hide();
    }
}

void LumoCalanderView::handleTabOrder()
{
    QList<QWidget *> chain {this};
    for (const char *name : {prevMonthName, nextMonthName, monthButtonName, yearButtonName, yearEditName, dateGridName}) {
        if (QWidget *widget = calendar->findChild<QWidget *>(QLatin1String(name)))
            chain << widget;
    }
    chain << findChild<QWidget *>(QLatin1String(todayButtonName));
    chain << this; // a closed cycle
    for (int i = 0; i + 1 < chain.size(); ++i)
        QWidget::setTabOrder(chain[i], chain[i + 1]);
}

bool LumoCalanderView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Tab && key != Qt::Key_Backtab)
        return false;
    Q_UNUSED(watched)
    focusNextPrevChild(key == Qt::Key_Tab);

    auto *grid = calendar->findChild<QTableView *>(QLatin1String(dateGridName));
    if (!grid || !grid->hasFocus())
        return true;
    const QModelIndex current = grid->currentIndex();
    if (!current.isValid())
        return true;
    // Clearing and restoring the current index redraws the focus cell.
    grid->setCurrentIndex(QModelIndex());
    grid->setCurrentIndex(current);
    return true;
}

bool LumoCalanderView::focusNextPrevChild(bool next)
{
    // Qt refuses the chain's last link (a child before its ancestor), so it is made here.
    QWidget *today = findChild<QWidget *>(QLatin1String(todayButtonName));
    if (today && next && today->hasFocus()) {
        setFocus(Qt::TabFocusReason);
        return true;
    }
    if (today && !next && hasFocus()) {
        today->setFocus(Qt::BacktabFocusReason);
        return true;
    }
    return QAbstractItemView::focusNextPrevChild(next);
}

// An item view's own hints are a fixed default; the view needs what its layout needs.
QSize LumoCalanderView::sizeHint() const
{
    return layout()->totalSizeHint();
}

QSize LumoCalanderView::minimumSizeHint() const
{
    return layout()->totalMinimumSize();
}

void LumoCalanderView::setCurrentPage(int year, int month)
{
    calendar->setCurrentPage(year, month);
}

void LumoCalanderView::setMinimumDate(const QDate &date)
{
    calendar->setMinimumDate(date);
}

void LumoCalanderView::setMaximumDate(const QDate &date)
{
    calendar->setMaximumDate(date);
}

void LumoCalanderView::selectToday()
{
    calendar->setSelectedDate(QDate::currentDate());
    Q_EMIT sigDateSelect(QDate::currentDate());
}

void LumoCalanderView::pageChanged(int year, int month)
{
    Q_UNUSED(year)
    auto *button = calendar->findChild<QToolButton *>(QLatin1String(monthButtonName));
    if (button && month >= 1 && month <= monthNames.size())
        button->setText(monthNames[month - 1]);
}

void LumoCalanderView::slotMonthTriggered(QAction *action)
{
    if (!action)
        return;
    const int month = action->data().toInt();
    auto *button = calendar->findChild<QToolButton *>(QLatin1String(monthButtonName));
    if (button && month >= 1 && month <= monthNames.size())
        button->setText(monthNames[month - 1]);
}

// The view shows no model: the item-view operations are inert.
QRect LumoCalanderView::visualRect(const QModelIndex &) const
{
    return QRect();
}

void LumoCalanderView::scrollTo(const QModelIndex &, ScrollHint) { }

QModelIndex LumoCalanderView::indexAt(const QPoint &) const
{
    return QModelIndex();
}

QModelIndex LumoCalanderView::moveCursor(CursorAction, Qt::KeyboardModifiers)
{
    return QModelIndex();
}

int LumoCalanderView::horizontalOffset() const
{
    return 0;
}

int LumoCalanderView::verticalOffset() const
{
    return 0;
}

// True for every index on purpose: nothing of a model is ever shown.
bool LumoCalanderView::isIndexHidden(const QModelIndex &) const
{
    return true;
}

void LumoCalanderView::setSelection(const QRect &, QItemSelectionModel::SelectionFlags) { }

QRegion LumoCalanderView::visualRegionForSelection(const QItemSelection &) const
{
    return QRegion();
}

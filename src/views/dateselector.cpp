#include <lumo/views.h>

#include <lumo/sheets.h>

#include "resources/registries_p.h"
#include "views/views_p.h"

LumoDateSelector::LumoDateSelector(QString text, QWidget *parent)
    : QComboBox(parent)
    , defaultText(std::move(text))
{
    calendarView = new LumoCalanderView;
    setView(calendarView);
    // Installed after the popup's own filters, so they run first and keep a
    // release inside the calendar from closing the popup as an item pick.
    lumo::installOwnedFilter(view(), new MouseReleaseFilter);
    lumo::installOwnedFilter(view()->viewport(), new MouseReleaseFilter);
    addItem(defaultText, QVariant::fromValue(QDate()));
    connect(calendarView, SIGNAL(sigDateSelect(QDate)), this, SLOT(dateSelect(QDate)));
    view()->setFixedWidth(lumo::scaled(280));
    view()->setFixedHeight(lumo::scaled(260));
    setFixedHeight(lumo::scaled(32));
    setStyleSheet(lumo::styles({"component.date_selector", "component.menu"}));
}

LumoDateSelector::~LumoDateSelector() = default;

void LumoDateSelector::dateSelect(const QDate &date)
{
    const QDate before = this->date();
    clear();
    if (!date.isValid()) {
        // Nothing else: the page stays and the popup stays open.
        addItem(defaultText, QVariant::fromValue(QDate()));
    } else {
        addItem(date.toString(QStringLiteral("yyyy-MM-dd")), QVariant::fromValue(date));
        setCurrentIndex(0);
        calendarView->setCurrentPage(date.year(), date.month());
        update();
        hidePopup();
    }
    if (this->date() != before)
        Q_EMIT sigDateChanged(this->date());
}

void LumoDateSelector::clearDate()
{
    const QDate before = date();
    const QDate today = QDate::currentDate();
    clear();
    addItem(defaultText, QVariant::fromValue(QDate()));
    setCurrentIndex(0);
    calendarView->setCurrentPage(today.year(), today.month());
    if (before.isValid())
        Q_EMIT sigDateChanged(QDate());
}

QDate LumoDateSelector::date() const
{
    return currentData().toDate();
}

LumoCalanderView *LumoDateSelector::getCalendarView()
{
    return calendarView;
}

#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QKeyEvent>

LumoFilterBar::LumoFilterBar(QWidget *parent)
    : QLineEdit(parent)
    , searchButton(nullptr)
{
    setAttribute(Qt::WA_MacShowFocusRect, false);

    searchButton = new LumoIconButton(QStringLiteral("bt_search_dropdown"));
    searchButton->setFocusPolicy(Qt::NoFocus);
    searchButton->setParent(this);
    searchButton->setStyleSheet(lumo::style("component.filter_search_button"));
    searchButton->move(lumo::scaled(4), lumo::scaled(2));
    // The field's text cursor is not for the button.
    searchButton->setCursor(Qt::ArrowCursor);
    searchButton->setFixedSize(lumo::scaled(34), lumo::scaled(24));

    setStyleSheet(lumo::styles({"component.lineedit", "component.filter_bar_padding"}));
    setFixedHeight(lumo::scaled(28));

    connect(this, SIGNAL(returnPressed()), this, SLOT(slotKeywordChange()));
}

LumoFilterBar::~LumoFilterBar() = default;

void LumoFilterBar::setMenu(QMenu *menu)
{
    searchButton->setMenu(menu);
}

void LumoFilterBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Down) {
        // Consumed even without a menu: Down never moves the text cursor.
        if (searchButton->menu())
            searchButton->showMenu();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void LumoFilterBar::slotKeywordChange()
{
    Q_EMIT sigKeywordChanged(text());
}

#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QHBoxLayout>

LumoFootbar::LumoFootbar(QWidget *parent)
    : QWidget(parent)
    , layout(new QHBoxLayout(this))
{
}

LumoFootbar::~LumoFootbar() = default;

void LumoFootbar::pushLeftWidget(QWidget *widget)
{
    leftWidgets.push_back(widget);
}

void LumoFootbar::pushRightWidget(QWidget *widget)
{
    rightWidgets.push_back(widget);
}

void LumoFootbar::init()
{
    setMargins(20, 8, 20, 8);
    setSpacing(10);
    layout->setAlignment(Qt::AlignLeft);
    for (QWidget *widget : leftWidgets)
        layout->addWidget(widget, 0, Qt::AlignVCenter);
    layout->addStretch(1);
    for (QWidget *widget : rightWidgets)
        layout->addWidget(widget, 0, Qt::AlignVCenter);
}

void LumoFootbar::setMargins(int left, int top, int right, int bottom)
{
    layout->setContentsMargins(lumo::scaled(left), lumo::scaled(top), lumo::scaled(right), lumo::scaled(bottom));
}

void LumoFootbar::setSpacing(int spacing)
{
    layout->setSpacing(lumo::scaled(spacing));
}

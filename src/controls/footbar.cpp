#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QHBoxLayout>

LumoFootbar::LumoFootbar(QWidget *parent)
    : QWidget(parent)
    , boxLayout(new QHBoxLayout(this))
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
    boxLayout->setAlignment(Qt::AlignLeft);
    for (QWidget *widget : leftWidgets)
        boxLayout->addWidget(widget, 0, Qt::AlignVCenter);
    boxLayout->addStretch(1);
    for (QWidget *widget : rightWidgets)
        boxLayout->addWidget(widget, 0, Qt::AlignVCenter);
}

void LumoFootbar::setMargins(int left, int top, int right, int bottom)
{
    boxLayout->setContentsMargins(lumo::scaled(left), lumo::scaled(top), lumo::scaled(right), lumo::scaled(bottom));
}

void LumoFootbar::setSpacing(int spacing)
{
    boxLayout->setSpacing(lumo::scaled(spacing));
}

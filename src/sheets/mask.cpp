#include "sheets/mask_p.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPalette>

LumoMaskPrivate::LumoMaskPrivate(LumoMask *q, QColor color)
    : QObject(q)
    , color(color)
    , q(q)
{
}

void LumoMaskPrivate::init(QWidget *widget)
{
    auto *layout = new QHBoxLayout(q);
    QPalette palette = q->palette();
    palette.setBrush(QPalette::All, QPalette::Window, QBrush(color));
    q->setPalette(palette);
    q->setAutoFillBackground(true);
    // No alignment and no stretch: a content of fixed size stays centred.
    if (widget)
        layout->addWidget(widget);
    content = widget;
    q->setFixedSize(q->window()->geometry().size());
}

LumoMask::LumoMask(QWidget *content, QWidget *parent, QColor color)
    : QFrame(parent)
    , d(new LumoMaskPrivate(this, color))
{
    d->init(content);
    if (content)
        content->installEventFilter(this);
    if (parent)
        parent->installEventFilter(new ParentEventFilterWidget(this, parent));
}

LumoMask::~LumoMask() = default;

QWidget *LumoMask::createMask(QWidget *content, QWidget *parent, QColor color)
{
    if (!content)
        return nullptr;
    if (!parent)
        parent = content->parentWidget();
    if (!parent)
        return nullptr;
    new LumoMask(content, parent, color);
    return content;
}

void LumoMask::resize()
{
    setFixedSize(window()->geometry().size());
}

bool LumoMask::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->content) {
        if (event->type() == QEvent::ShowToParent)
            show();
        else if (event->type() == QEvent::HideToParent)
            hide();
    }
    return QFrame::eventFilter(watched, event);
}

ParentEventFilterWidget::ParentEventFilterWidget(LumoMask *mask, QWidget *parent)
    : QObject(mask)
    , mask(mask)
    , parent(parent)
{
}

ParentEventFilterWidget::~ParentEventFilterWidget() = default;

bool ParentEventFilterWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent && event->type() == QEvent::Resize)
        mask->resize();
    return QObject::eventFilter(watched, event);
}

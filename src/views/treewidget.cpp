#include <lumo/views.h>

#include "resources/registries_p.h"

#include <QCursor>
#include <QPainter>
#include <QScrollBar>

LumoTreeWidget::LumoTreeWidget(QWidget *parent)
    : QTreeWidget(parent)
{
    // The hover band follows the pointer: without hover events nothing repaints the row it leaves.
    viewport()->setAttribute(Qt::WA_Hover);
}

LumoTreeWidget::~LumoTreeWidget() = default;

void LumoTreeWidget::setBackgroundColor(QColor selected, QColor hover)
{
    selectedColor = selected;
    hoverColor = hover;
}

void LumoTreeWidget::drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QTreeWidgetItem *item = itemFromIndex(index);
    const bool selected = selectionModel() && selectionModel()->isRowSelected(index.row(), index.parent());
    bool band = item && selected;
    if (item && !selected && item->treeWidget()) {
        // One pixel lower than the row, edges included.
        const QPoint cursor = item->treeWidget()->mapFromGlobal(QCursor::pos());
        band = option.rect.adjusted(0, 1, 0, 1).contains(cursor);
    }
    if (band) {
        const double dpi = DPIinfo::getInstance()->getDPI();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setBrush(QBrush(selected ? selectedColor : hoverColor));
        painter->setPen(QColor(0xFF, 0xFF, 0xFF));
        const QRect rect(option.rect.left(), option.rect.top(), lumo::truncated(option.rect.width() - 3 * dpi), option.rect.height());
        painter->drawRoundedRect(rect, lumo::scaled(3), lumo::scaled(3));
        painter->restore();
    }
    QStyleOptionViewItem rowOption = option;
    if (band && selected && selectedColor.isValid()) {
        // The band marks the selection; the style's full-width highlight would paint over it.
        for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            rowOption.palette.setBrush(group, QPalette::Highlight, Qt::transparent);
            rowOption.palette.setBrush(group, QPalette::HighlightedText, rowOption.palette.brush(group, QPalette::Text));
        }
    }
    // Rows that cannot be checked draw disabled on purpose: only checkable folders are choices.
    if (item && !(item->flags() & Qt::ItemIsUserCheckable))
        rowOption.state &= ~QStyle::State_Enabled;
    QTreeView::drawRow(painter, rowOption, index);
}

void LumoTreeWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton)
        Q_EMIT sigMouseRightClickEvent(event);
    QTreeWidget::mousePressEvent(event);
}

void LumoTreeWidget::keyPressEvent(QKeyEvent *event)
{
    Q_EMIT sigKeyPressEvent(event);
    QTreeWidget::keyPressEvent(event);
}

void LumoTreeWidget::focusInEvent(QFocusEvent *event)
{
    Q_UNUSED(event)
    // The base handling is skipped on purpose.
    if (QTreeWidgetItem *current = currentItem()) {
        // Leaving and re-entering the item re-announces it.
        setCurrentItem(itemAt(QPoint(-1, -1)));
        setCurrentItem(current);
    } else {
        setCurrentItem(itemAt(QPoint(0, 0)));
    }
}

void LumoTreeWidget::updateScrollArea(QTreeWidgetItem *item)
{
    if (!item)
        return;
    const int w = viewport()->width();
    const int value = horizontalScrollBar()->value();
    const int x = visualItemRect(item).left();
    if (x >= 0 && x + lumo::scaled(100) <= w)
        return;
    horizontalScrollBar()->setValue(value - w / 2 + x);
}

FileSystemTreeWidgetItem::FileSystemTreeWidgetItem()
    : QTreeWidgetItem(0)
{
}

FileSystemTreeWidgetItem::~FileSystemTreeWidgetItem() = default;

bool FileSystemTreeWidgetItem::operator<(const QTreeWidgetItem &other) const
{
    // Any other kind of item is compared by text, as a plain item would be.
    const auto *fileItem = dynamic_cast<const FileSystemTreeWidgetItem *>(&other);
    // One-sided on purpose: a "home" item on the left still compares by text.
    if (fileItem && fileItem->itemName == QLatin1String("home"))
        return false;
    return QTreeWidgetItem::operator<(other);
}

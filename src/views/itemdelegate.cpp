#include <lumo/views.h>

#include "resources/registries_p.h"
#include "views/views_p.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>
#include <QRegularExpressionValidator>

QRect g_check_rect;

ItemDelegate::ItemDelegate()
    : QItemDelegate(nullptr)
{
}

ItemDelegate::~ItemDelegate() = default;

QSize ItemDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return QSize(QItemDelegate::sizeHint(option, index).width(), lumo::scaled(28));
}

void ItemDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    if (auto *edit = qobject_cast<QLineEdit *>(editor)) {
        // No leading dot; none of \ / : * ? " < > | anywhere.
        static const QRegularExpression pattern(QStringLiteral(R"(^[^\.\\\/:*?"<>|][^\\\/:*?"<>|]*)"));
        auto *validator = new QRegularExpressionValidator(pattern);
        lumo::releaseWith(edit, validator);
        edit->setValidator(validator);
        edit->setStyleSheet(lumo::style("component.tree_item"));
        edit->setAttribute(Qt::WA_MacShowFocusRect, false);
        // Select all before the base fills in the text; the order is part of the behaviour.
        edit->selectAll();
    }
    QItemDelegate::setEditorData(editor, index);
}

bool ItemDelegate::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        Q_EMIT sigKeyPressed(static_cast<QKeyEvent *>(event));
    return QItemDelegate::eventFilter(object, event);
}

void ItemDelegate::drawCheck(QPainter *painter, const QStyleOptionViewItem &option, const QRect &rect, Qt::CheckState state) const
{
    g_check_rect = rect;
    QItemDelegate::drawCheck(painter, option, rect, state);
}

#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QKeyEvent>
#include <QListView>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

namespace
{
// Marks the delegate the box creates so that only that one is deleted with it.
const char delegateName[] = "lumoComboDelegate";

// Posted to a time box that got a child: QComboBox::setEditable() adds its
// line edit only after announcing the child.
QEvent::Type syncEditableEvent()
{
    static const auto type = QEvent::Type(QEvent::registerEventType());
    return type;
}
}

LumoComboBox::LumoComboBox(QWidget *parent)
    : QComboBox(parent)
{
    const QString sheet = lumo::style("component.combobox");
    // The framed look is kept ready for themes that want it; the house look is flat.
    const QString number = QString::number(6 * DPIinfo::getInstance()->getDPI(), 'g', 6);
    QString padding = QStringLiteral("padding-left: ") + number + QStringLiteral("px; \npadding-right: ") + number + QStringLiteral("px;");
    QString border = QStringLiteral("border: 1px solid #C8D2DC;");
    padding = QString();
    border = QStringLiteral("border: none;");
    setStyleSheet(sheet.arg(padding).arg(border) + lumo::style("component.scrollbar"));

    // A styled delegate (instead of the combo box's menu delegate) lets the
    // style sheet's item rules reach the popup rows.
    auto *delegate = new QStyledItemDelegate;
    delegate->setObjectName(QLatin1String(delegateName));
    view()->setItemDelegate(delegate);
}

LumoComboBox::~LumoComboBox()
{
    // The view does not own its delegate.
    QAbstractItemDelegate *delegate = view()->itemDelegate();
    if (delegate && !delegate->parent() && delegate->objectName() == QLatin1String(delegateName))
        delete delegate;
}

void LumoComboBox::showPopup()
{
    // Without focus the box drops its focus frame while the list is open.
    clearFocus();
    QComboBox::showPopup();
    if (QFrame *container = findChild<QFrame *>()) {
        const QPoint origin = mapToGlobal(QPoint(0, 0));
        container->move(origin.x(), origin.y() + height() + 2);
    }
}

LumoTimeComboBox::LumoTimeComboBox(QWidget *parent)
    : LumoComboBox(parent)
    , customIndex(0)
    , defaultIndex(0)
    , maxVisible(QComboBox::maxVisibleItems())
    , toldMaxVisible(maxVisible)
{
    installEventFilter(this);
    view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

LumoTimeComboBox::~LumoTimeComboBox() = default;

void LumoTimeComboBox::setEditable(bool editable)
{
    QComboBox::setEditable(editable);
    syncEditable();
}

void LumoTimeComboBox::syncEditable()
{
    if (isEditable() == customRowAdded)
        return;
    customRowAdded = isEditable();
    if (!customRowAdded) {
        removeItem(customIndex);
        return;
    }
    static const QRegularExpression pattern(QStringLiteral("^(?:\\d|[01]\\d|2[0-3])(?:|:|:\\d|:[0-5]\\d)$"));
    lineEdit()->setValidator(new QRegularExpressionValidator(pattern, this));
    lineEdit()->setFocusPolicy(Qt::StrongFocus);
    // Inline completion would turn a typed 1 into 10:00 (and could bring in a
    // custom label the pattern refuses); what is typed is what gets normalised.
    setCompleter(nullptr);
    customIndex = qMin(customIndex, count());
    insertItem(customIndex, QIcon(), QString(), QVariant());
    showCustomRow(false);
    adjustMaxVisibleItems();
}

void LumoTimeComboBox::setItemVisible(bool visible)
{
    syncEditable();
    showCustomRow(visible);
    adjustMaxVisibleItems();
}

void LumoTimeComboBox::setMaxVisibleItems(int maxItems)
{
    maxVisible = maxItems;
    toldMaxVisible = QComboBox::maxVisibleItems(); // supersedes a limit set through QComboBox
    adjustMaxVisibleItems();
}

void LumoTimeComboBox::adjustMaxVisibleItems()
{
    // A limit set through QComboBox since the last adjustment is the owner's new one.
    if (QComboBox::maxVisibleItems() != toldMaxVisible)
        maxVisible = QComboBox::maxVisibleItems();
    // A hidden row still counts against Qt's limit.
    toldMaxVisible = isEditable() && customRowHidden() ? maxVisible + 1 : maxVisible;
    QComboBox::setMaxVisibleItems(toldMaxVisible);
}

void LumoTimeComboBox::setCurrentText(const std::string &text)
{
    setCurrentIndex(chooseRow(QString::fromUtf8(text.data(), qsizetype(text.size()))));
}

void LumoTimeComboBox::setCurrentText(const char *text)
{
    setCurrentText(std::string(text ? text : ""));
}

QTime LumoTimeComboBox::time() const
{
    return QTime::fromString(currentText().left(5), QStringLiteral("hh:mm"));
}

void LumoTimeComboBox::showPopup()
{
    syncEditable();
    adjustMaxVisibleItems();
    LumoComboBox::showPopup();
}

void LumoTimeComboBox::setDefault(const std::string &text)
{
    defaultIndex = chooseRow(QString::fromUtf8(text.data(), qsizetype(text.size())));
}

void LumoTimeComboBox::setCustomText(const QString &text)
{
    customText = text;
}

int LumoTimeComboBox::chooseRow(const QString &text)
{
    syncEditable();
    const int idx = findRow(text);
    if (!isEditable())
        return idx >= 0 ? idx : 0;
    // A match on the custom row itself is no list entry: the row stays shown.
    if (idx < 0 || idx == customIndex) {
        setItemText(customIndex, customLabel(text));
        showCustomRow(true);
        adjustMaxVisibleItems();
        return customIndex;
    }
    showCustomRow(false);
    adjustMaxVisibleItems();
    return idx;
}

bool LumoTimeComboBox::eventFilter(QObject *watched, QEvent *event)
{
    // The combo box filters its line edit and popup itself.
    if (watched != this)
        return LumoComboBox::eventFilter(watched, event);
    if (event->type() == syncEditableEvent()) {
        syncEditable();
        return true;
    }
    {
        switch (event->type()) {
        case QEvent::ChildAdded:
            QCoreApplication::postEvent(this, new QEvent(syncEditableEvent()));
            break;
        case QEvent::ChildRemoved: // QComboBox::setEditable(false) deletes its line edit later
            syncEditable();
            break;
        case QEvent::FocusOut:
            correctTime();
            break;
        case QEvent::FocusIn:
            syncEditable();
            // Only the time itself is edited, without the suffix.
            if (isEditable() && currentIndex() == customIndex)
                setItemText(customIndex, currentText().left(5));
            break;
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent *>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter)
                clearFocus(); // the focus-out correction follows
            break;
        }
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

void LumoTimeComboBox::correctTime()
{
    syncEditable();
    const QString s = currentText().left(5);
    if (s.isEmpty()) {
        if (defaultIndex < count()) {
            showCustomRow(false);
            adjustMaxVisibleItems();
            setCurrentIndex(defaultIndex);
        } else {
            showCustomRow(true);
            adjustMaxVisibleItems();
            setCurrentIndex(customIndex);
        }
        return;
    }

    QStringList parts = s.split(QLatin1Char(':'), Qt::KeepEmptyParts, Qt::CaseSensitive);
    for (QString &part : parts) {
        if (part.isEmpty())
            part = QStringLiteral("00");
        else if (part.size() == 1)
            part.prepend(QLatin1Char('0')); // 7:5 is 07:05, not 07:50
    }
    const QString t = parts.at(0) + QLatin1Char(':') + (parts.size() >= 2 ? parts.at(1) : QStringLiteral("00"));
    const int idx = findRow(t);

    if (!isEditable()) {
        setCurrentIndex(idx >= 0 ? idx : 0);
        return;
    }
    if (idx >= 0 && idx != customIndex) {
        showCustomRow(false);
        adjustMaxVisibleItems();
        setCurrentIndex(idx);
        return;
    }
    setItemText(customIndex, customLabel(t));
    showCustomRow(true);
    adjustMaxVisibleItems();
    setCurrentIndex(customIndex);
    // Listeners hear of the new time even when the custom row was current already.
    Q_EMIT currentIndexChanged(customIndex);
}

QString LumoTimeComboBox::customLabel(const QString &time) const
{
    return customText.isEmpty() ? time : time + QLatin1Char(' ') + customText;
}

int LumoTimeComboBox::findRow(const QString &text) const
{
    return findData(text, Qt::DisplayRole, Qt::MatchCaseSensitive);
}

bool LumoTimeComboBox::customRowHidden() const
{
    const auto *list = qobject_cast<const QListView *>(view());
    return list && customIndex < count() && list->isRowHidden(customIndex);
}

void LumoTimeComboBox::showCustomRow(bool visible)
{
    // The custom row exists only while the box is editable; row customIndex of a
    // non-editable box is an owner's row.
    if (!isEditable() || customIndex < 0 || customIndex >= count())
        return;
    if (auto *list = qobject_cast<QListView *>(view()))
        list->setRowHidden(customIndex, !visible);
    if (auto *items = qobject_cast<QStandardItemModel *>(model())) {
        if (QStandardItem *item = items->item(customIndex, modelColumn()))
            item->setFlags(visible ? item->flags() | Qt::ItemIsEnabled : item->flags() & ~Qt::ItemIsEnabled);
    }
}

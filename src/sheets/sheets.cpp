#include "sheets/sheets_p.h"

#include "resources/registries_p.h"

#include <QAbstractButton>
#include <QEventLoop>
#include <QKeyEvent>

namespace lumo
{
QColor standardMaskColor()
{
    return QColor(0, 0, 0, 20);
}

void clearButtonIcons(const QList<QAbstractButton *> &buttons)
{
    for (QAbstractButton *button : buttons)
        button->setIcon(QIcon());
}

void fitSheet(LumoSheet *sheet, int width)
{
    sheet->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Maximum);
    sheet->setFixedWidth(lumo::scaled(width));
    sheet->updateGeometry();
    sheet->adjustSize();
}

SheetRun::SheetRun(LumoSheet *sheet, QDialogButtonBox *buttonBox)
    : sheet(sheet)
    , buttonBox(buttonBox)
{
}

void SheetRun::watchWindow()
{
    unwatchWindow();
    watchedWindow = sheet->window();
    watchedWindow->installEventFilter(sheet);
}

void SheetRun::unwatchWindow()
{
    if (watchedWindow)
        watchedWindow->removeEventFilter(sheet);
    watchedWindow = nullptr;
}

bool SheetRun::begin(bool blockWindowButton)
{
    if (inExec) {
        qCWarning(lumoLog) << "Cannot run a sheet that is already running";
        return false;
    }
    sheet->show();
    if (blockWindowButton)
        SHAPISetCloseButtonOfWindowEnable(sheet, false);
    watchWindow();
    return true;
}

int SheetRun::exec()
{
    if (eventLoop)
        eventLoop->deleteLater();
    eventLoop = new QEventLoop(sheet);
    // Destroying the sheet destroys this too: nothing of it may be touched once the sheet is gone.
    QPointer<LumoSheet> alive(sheet);
    QEventLoop *loop = eventLoop;
    inExec = true;
    const int result = loop->exec();
    if (!alive) {
        delete loop; // handed over by release()
        return result;
    }
    inExec = false;
    return result;
}

void SheetRun::finish(int result, bool blockWindowButton)
{
    if (blockWindowButton)
        SHAPISetCloseButtonOfWindowEnable(sheet, true);
    if (eventLoop)
        eventLoop->exit(result);
    unwatchWindow();
    sheet->hide();
}

void SheetRun::release(bool blockWindowButton)
{
    if (eventLoop && inExec) {
        // Destroyed while exec() runs (its window was deleted): let exec() return.
        if (blockWindowButton)
            SHAPISetCloseButtonOfWindowEnable(sheet, true);
        if (eventLoop->isRunning()) // not yet told to exit by finish()
            eventLoop->exit(0);
        // The loop's exec() is still on the stack; exec() deletes it when it returns.
        eventLoop->setParent(nullptr);
        eventLoop = nullptr;
    }
    unwatchWindow();
}

bool SheetRun::filter(QObject *watched, QEvent *event, bool blockWindowButton)
{
    // QWidget::close() reaches the widget as a non-spontaneous event, the window system's close as a spontaneous one.
    if (blockWindowButton && event->type() == QEvent::Close && event->spontaneous()) {
        event->ignore();
        return true;
    }
    // A spontaneous hide is the window being minimised: the sheet keeps running.
    if (watched == watchedWindow && event->type() == QEvent::Hide && !event->spontaneous()) {
        quit();
        return false;
    }
    if (watched != sheet->window() || (onlyWhileVisible && !sheet->isVisible()))
        return sheet->LumoSheet::eventFilter(watched, event);
    if (event->type() == QEvent::ShortcutOverride) {
        // Keeps the window's own shortcuts from firing behind the sheet.
        event->accept();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return sheet->LumoSheet::eventFilter(watched, event);

    const auto *key = static_cast<QKeyEvent *>(event);
    switch (key->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        if (tab)
            tab(key->key() == Qt::Key_Tab && !(key->modifiers() & Qt::ShiftModifier));
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        for (QDialogButtonBox::StandardButton which : std::as_const(acceptButtons)) {
            if (QAbstractButton *accept = buttonBox->button(which)) {
                accept->click();
                break;
            }
        }
        break;
    case Qt::Key_Escape:
        if (QAbstractButton *discard = buttonBox->button(QDialogButtonBox::Discard))
            discard->click();
        break;
    default:
        break;
    }
    return true;
}
}

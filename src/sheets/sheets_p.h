#ifndef LUMO_SHEETS_SHEETS_P_H
#define LUMO_SHEETS_SHEETS_P_H

#include <lumo/sheets.h>

#include <QColor>
#include <QDialogButtonBox>
#include <QList>
#include <QPointer>

#include <functional>

class QAbstractButton;
class QEvent;
class QEventLoop;

namespace lumo
{
/** The veil every sheet of the library lays over its window: black at alpha 20. */
QColor standardMaskColor();
/** Takes off the standard icons that some platforms (X11 desktops) put on dialog buttons. */
void clearButtonIcons(const QList<QAbstractButton *> &buttons);
/** Fixes the sheet's width to @p width design pixels and lets its height follow the laid-out content. */
void fitSheet(LumoSheet *sheet, int width);

/**
 * How a blocking sheet runs over its window, the same for the message and the input sheet:
 * exec()'s local event loop, the watch on the window, the end of a run, and the window's
 * closes and keys, which act on the sheet while it is up.
 *
 * The sheet keeps its own blockWindowButton and passes it in: it may change between calls.
 */
class SheetRun
{
public:
    SheetRun(LumoSheet *sheet, QDialogButtonBox *buttonBox);

    /** Return, Enter and Space click the first of these the box has. */
    QList<QDialogButtonBox::StandardButton> acceptButtons;
    /** Keys and shortcuts are taken only while the sheet is visible. */
    bool onlyWhileVisible = false;
    /** Tab (true) and Backtab (false) on the window; without it they are swallowed like any other key. */
    std::function<void(bool next)> tab;
    /** The sheet's quit(): called when the application hides or closes the window. */
    std::function<void()> quit;

    void watchWindow();
    void unwatchWindow();
    /**
     * The start of exec(): false, with a warning, while a run is going on already. Otherwise
     * shows the sheet, disables the window's close button if asked and watches the window.
     */
    bool begin(bool blockWindowButton);
    /** Runs the local event loop until finish() or release(); returns the loop's code. */
    int exec();
    /** done() but for its signal: enables the close button again, ends the loop, stops watching and hides the sheet. */
    void finish(int result, bool blockWindowButton);
    /** For the sheet's destructor: a running exec() returns (0 unless already ending), and the window is no longer watched. */
    void release(bool blockWindowButton);
    /** The sheet's eventFilter(). */
    bool filter(QObject *watched, QEvent *event, bool blockWindowButton);

private:
    LumoSheet *sheet;
    QPointer<QDialogButtonBox> buttonBox;
    QPointer<QWidget> watchedWindow;
    // The loop may outlive the sheet: release() hands a running one over to exec(), which deletes it.
    QEventLoop *eventLoop = nullptr;
    bool inExec = false; // QEventLoop::isRunning() turns false at exit(), before exec() has returned
};
}

#endif

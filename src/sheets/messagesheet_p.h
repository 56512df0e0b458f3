#ifndef LUMO_SHEETS_MESSAGESHEET_P_H
#define LUMO_SHEETS_MESSAGESHEET_P_H

#include <lumo/sheets.h>

#include <QColor>
#include <QList>
#include <QObject>
#include <QPointer>

class QCheckBox;
class QDialogButtonBox;
class QEventLoop;
class QScrollArea;
class ClickableLabel;

namespace lumo
{
/** The veil every sheet of the library lays over its window: black at alpha 20. */
QColor standardMaskColor();

/**
 * The local event loop of a sheet's exec(); @p inExec (the sheet's) is true while
 * it runs. The loop may outlive the sheet: a sheet destroyed while its loop runs
 * hands the loop over with releaseSheetLoop(), and it is deleted here once it has returned.
 */
int runSheetLoop(QObject *sheet, QEventLoop *loop, bool &inExec);
/** For a sheet's destructor while exec() runs: ends the loop (with 0 unless already ending) and detaches it. */
void releaseSheetLoop(QEventLoop *loop);
/** A close that the user asked for (title bar, system menu), as opposed to QWidget::close() by the application. */
bool isUserClose(const QEvent *event);
/** The application hid or closed the window: a sheet running over it must end. */
bool isWindowGone(const QEvent *event);
}

class LumoMessageSheetPrivate : public QObject
{
    Q_OBJECT
public:
    explicit LumoMessageSheetPrivate(LumoMessageSheet *q);

    void initialize(const MsgBoxCustomBtnText &texts = MsgBoxCustomBtnText());
    void initCheckBox();
    void setupLayout();
    int getPreferredWidth() const;
    void setScrollArea(int width, int height);

    /** Tab inside the sheet: walks the window's focus chain from @p start and wraps within focusList. */
    void moveFocus(QWidget *start, bool next);
    void watchWindow();
    void unwatchWindow();

    LumoMessageSheet *q;
    MessageLabel *textLabel = nullptr;
    MessageLabel *informativeLabel = nullptr;
    QLabel *iconLabel;
    int messageType = 0;
    QDialogButtonBox *buttonBox;
    QEventLoop *eventLoop = nullptr;
    bool showIcon = true;
    QCheckBox *checkBox = nullptr;
    ClickableLabel *checkBoxLabel = nullptr;
    QWidget *checkBoxWidget;
    bool doubleConfirm = false;
    int textSpacing = 10;
    int iconSpacing = 20;
    int checkBoxSpacing = 10;
    int buttonBoxSpacing = 20;
    bool useScrollArea = false;
    QScrollArea *scrollArea = nullptr;
    QWidget *scrollContent = nullptr;
    QList<QWidget *> focusList;
    QWidget *firstFocusWidget = nullptr;
    QWidget *lastFocusWidget = nullptr;

    // Lifetime bookkeeping.
    DialogButtonBoxStyle *buttonStyle = nullptr;
    QPointer<QWidget> watchedWindow;
    bool inExec = false; // QEventLoop::isRunning() turns false at exit(), before exec() has returned
};

#endif

#ifndef LUMO_SHEETS_MESSAGESHEET_P_H
#define LUMO_SHEETS_MESSAGESHEET_P_H

#include "sheets/sheets_p.h"

#include <QList>
#include <QObject>

class QCheckBox;
class QScrollArea;
class ClickableLabel;

class LumoMessageSheetPrivate : public QObject
{
    Q_OBJECT
public:
    LumoMessageSheetPrivate(LumoMessageSheet *q, int messageType, bool showIcon);

    void initialize(const MsgBoxCustomBtnText &texts = MsgBoxCustomBtnText());
    void initCheckBox();
    void setupLayout();
    int getPreferredWidth() const;
    void setScrollArea(int width, int height);

    /** Tab inside the sheet: walks the window's focus chain from @p start and wraps within focusList. */
    void moveFocus(QWidget *start, bool next);

    LumoMessageSheet *q;
    MessageLabel *textLabel = nullptr;
    MessageLabel *informativeLabel = nullptr;
    QLabel *iconLabel;
    int messageType;
    QDialogButtonBox *buttonBox;
    bool showIcon;
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
    lumo::SheetRun run;
};

#endif

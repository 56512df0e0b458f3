#ifndef LUMO_SHEETS_MESSAGESHEET_P_H
#define LUMO_SHEETS_MESSAGESHEET_P_H

#include "sheets/sheets_p.h"

#include <QFont>
#include <QList>
#include <QMargins>
#include <QObject>

class QCheckBox;
class QScrollArea;
class ClickableLabel;

/**
 * A rich-text label lays its whole document out twice for every
 * height-for-width query, and one layout pass asks several times. The answer
 * depends only on the inputs compared here and on the minimum height, which
 * QLabel applies last (answer = max(natural, minimum)); so answers are kept
 * with the minimum they were given under, until an input changes.
 */
class MessageLabelPrivate
{
public:
    /** Forgets the kept answers if an input differs from the last call. */
    void follow(const QLabel *label);

    struct Inputs {
        QString text;
        QFont font;
        Qt::Alignment alignment;
        bool wordWrap = false;
        Qt::TextFormat format = Qt::AutoText;
        Qt::TextInteractionFlags interaction;
        Qt::LayoutDirection direction = Qt::LeftToRight;
        int indent = -1;
        int margin = 0;
        int frameWidth = 0;
        QMargins contents;
        int maximumWidth = 0;
        bool buddy = false;
        int dpiX = 0;
        int dpiY = 0;
        bool operator==(const Inputs &other) const;
    };
    struct Height {
        int width;
        int answer;
        int minimum; // the minimum height in force when QLabel answered
    };
    Inputs inputs;
    bool followed = false;
    QList<Height> heights; // a few widths at most
};

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

#ifndef LUMO_CONTROLS_H
#define LUMO_CONTROLS_H

/**
 * @file
 * Controls: buttons, check boxes, menus, line edit and labels, focus helpers,
 * combo boxes, the breadcrumb path bar, the filter bar, the footbar and the
 * shaded scroll area.
 */

#include <lumo/lumo_export.h>

#include <QCheckBox>
#include <QIcon>
#include <QLabel>
#include <QList>
#include <QMenu>
#include <QMetaType>
#include <QPushButton>
#include <QRadioButton>
#include <QSize>
#include <QString>
#include <QToolButton>
#include <QWidget>

class QHBoxLayout;
class QLineEdit;

// ---------------------------------------------------------------------------
// Buttons and menus
// ---------------------------------------------------------------------------

/**
 * A flat, fixed-size push button in one of the house looks.
 *
 * The kind selects the style section: 0 apply, 1 cancel, 2 selected paging,
 * 3 unselected paging, 4 default, 5 red. Any other value keeps Qt's own look.
 */
class LUMO_EXPORT LumoButton : public QPushButton
{
    Q_OBJECT
public:
    /** The looks, as passed to the constructor. */
    enum Kind {
        Apply = 0, ///< "component.apply_button": the accepting button.
        Cancel = 1, ///< "component.cancel_button".
        SelectPaging = 2, ///< "component.select_paging_button": the current page of a paging bar.
        NonselectPaging = 3, ///< "component.nonselect_paging_button": the other pages.
        Default = 4, ///< "component.default_button": a neutral button.
        Red = 5 ///< "component.red_button": a destructive action.
    };

    /** A parentless button captioned @p text in the look @p kind (a Kind value); its size comes from the style section. */
    LumoButton(const QString &text, int kind);
    ~LumoButton() override;

private:
    Q_DISABLE_COPY(LumoButton)
};

/**
 * An icon-only tool button that shows a separate image for rest, hover,
 * pressed and disabled, all at the same size.
 *
 * A button that keeps keyboard focus keeps its hover image when the pointer
 * leaves: the hover image doubles as the focus look.
 */
class LUMO_EXPORT LumoIconButton : public QToolButton
{
    Q_OBJECT
public:
    /** One image for every state, shown at the pixmap's device-independent size. */
    explicit LumoIconButton(const QPixmap &pixmap);
    /** The image manager's four variants of @p imageName. */
    explicit LumoIconButton(const QString &imageName);
    ~LumoIconButton() override;

    /** Uses @p pixmap for all four states and sizes the icon from it; shows it at once. */
    void setDefaultIcon(const QPixmap &pixmap);
    /** Takes the normal, hover, click and disable variants of @p imageName from the image manager. */
    void setAllIcon(const QString &imageName);
    /** The replacements below show only at the next event that selects their state. */
    void setPressIcon(const QPixmap &pixmap);
    /** The hover image; see setPressIcon(). */
    void setHoverIcon(const QPixmap &pixmap);
    /** The disabled image; see setPressIcon(). */
    void setDisableIcon(const QPixmap &pixmap);

    /** Shows the hover image now; for owners that drive the look themselves. */
    void applyHoverStyle();
    /** Shows the rest image now. */
    void applyNormalStyle();

protected:
    /** Shows the hover image when enabled. */
    void enterEvent(QEnterEvent *event) override;
    /** Back to the rest image, unless the button has the keyboard focus. */
    void leaveEvent(QEvent *event) override;
    /** Shows the pressed image when enabled. */
    void mousePressEvent(QMouseEvent *event) override;
    /** Back to the rest image, even under the pointer: hover returns with the next enter. */
    void mouseReleaseEvent(QMouseEvent *event) override;
    /** Shows the rest or the disabled image. */
    void showEvent(QShowEvent *event) override;
    /** Follows enabling and disabling with the rest or the disabled image. */
    void changeEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY(LumoIconButton)
    void initialize();
    void showStateIcon(const QIcon &icon);

    QIcon normalIcon;
    QIcon pressIcon;
    QIcon hoverIcon;
    QIcon disableIcon;
    QSize stateIconSize = QSize(-1, -1);
};

/** A check box in the house look. */
class LUMO_EXPORT LumoCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    /** A check box captioned @p text in "component.checkbox". */
    explicit LumoCheckBox(const QString &text = QString(), QWidget *parent = nullptr);
    ~LumoCheckBox() override;

private:
    Q_DISABLE_COPY(LumoCheckBox)
};

/** A radio button in the house look. */
class LUMO_EXPORT LumoRadioButton : public QRadioButton
{
    Q_OBJECT
public:
    /** A radio button captioned @p text in "component.radio_button". */
    explicit LumoRadioButton(const QString &text = QString(), QWidget *parent = nullptr);
    ~LumoRadioButton() override;

private:
    Q_DISABLE_COPY(LumoRadioButton)
};

/**
 * A pop-up menu that keeps itself inside the primary screen's available area.
 * It sets no style of its own; owners apply "component.menu".
 */
class LUMO_EXPORT LumoMenu : public QMenu
{
    Q_OBJECT
public:
    /** An empty menu. */
    explicit LumoMenu(QWidget *parent = nullptr);
    ~LumoMenu() override;

protected:
    /** Moves a menu that sticks out of the available area back in; one left of or above it goes to 0. */
    void showEvent(QShowEvent *event) override;

private:
    Q_DISABLE_COPY(LumoMenu)
};

// ---------------------------------------------------------------------------
// Line edit and labels
// ---------------------------------------------------------------------------

/**
 * A line edit between a leading and a trailing label, with an optional
 * validation function and an error look driven by the "error" property.
 */
class LUMO_EXPORT LumoLineEdit : public QWidget
{
    Q_OBJECT
public:
    /** Judges a text: true when it is acceptable. */
    using Validator = bool (*)(const QString &);

    /** Empty labels around an empty line edit, no margins and no spacing. */
    explicit LumoLineEdit(QWidget *parent = nullptr);
    ~LumoLineEdit() override;

    /** Design pixels, scaled to the screen and truncated. */
    void setMargins(int left, int top, int right, int bottom);
    /** Design pixels between the labels and the edit, scaled and truncated. */
    void setSpacing(int spacing);

    /** A null function clears the validator. */
    void setValidator(Validator fn);
    /** The validator's verdict on the text; true without a validator. Leaves the look alone. */
    bool validate();
    /** Switches the edit between its normal and error look. */
    void setError(bool on);

    /** The label before the edit (empty until given a text). */
    QLabel *getPreLabel();
    /** The label after the edit (empty until given a text). */
    QLabel *getPostLabel();
    /** The line edit itself. */
    QLineEdit *getLineEdit();
    /** The line edit's text. */
    QString getEditText() const;

private:
    Q_DISABLE_COPY(LumoLineEdit)

    QHBoxLayout *boxLayout;
    QLabel *preLabel;
    QLabel *postLabel;
    QLineEdit *lineEdit;
    Validator validator;
};

/** A label in the house look; with word wrap and a Minimum vertical policy it grows to fit its text. */
class LUMO_EXPORT LumoLabel : public QLabel
{
    Q_OBJECT
public:
    /** An empty label in "component.label". */
    explicit LumoLabel(QWidget *parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    /** A label showing @p text in "component.label". */
    explicit LumoLabel(const QString &text, QWidget *parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~LumoLabel() override;

protected:
    /** With word wrap and a Minimum vertical policy, sets the minimum height to the text's height at the new width. */
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DISABLE_COPY(LumoLabel)
};

/** A label that emits clicked() when any mouse button is pressed on it. */
class LUMO_EXPORT ClickableLabel : public QLabel
{
    Q_OBJECT
public:
    /** A label showing @p text. */
    explicit ClickableLabel(const QString &text = QString(), QWidget *parent = nullptr);
    ~ClickableLabel() override;

Q_SIGNALS:
    /** A mouse button was pressed on the label (on press, not release). */
    void clicked();

protected:
    /** Emits clicked(). */
    void mousePressEvent(QMouseEvent *event) override;

private:
    Q_DISABLE_COPY(ClickableLabel)
};

/**
 * A clickable label that looks like a hyperlink under the pointer: a pointing
 * hand cursor (an application-wide override) and, optionally, underlined text.
 * The stored link is for the owner; the label never opens it.
 *
 * Disable it only while the pointer is elsewhere: a label disabled while
 * hovered keeps the override cursor until a later enabled leave.
 */
class LUMO_EXPORT LinkLabel : public ClickableLabel
{
    Q_OBJECT
    /** The link stored for the owner. */
    Q_PROPERTY(QString hyperLink READ getHyperLink WRITE setHyperLink)
public:
    /** A label showing @p text that underlines it under the pointer. */
    explicit LinkLabel(const QString &text = QString(), QLabel *parent = nullptr);
    ~LinkLabel() override;

    /** Whether the text is underlined under the pointer (default true). */
    void setHoverUnderline(bool underline);
    /** Stores @p link; the label does nothing with it. */
    void setHyperLink(const QString &link);
    /** The stored link. */
    QString getHyperLink();

protected:
    /** When enabled: the pointing hand override cursor and, if set, the underline. */
    void enterEvent(QEnterEvent *event) override;
    /** When enabled: restores the cursor and removes the underline. */
    void leaveEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY(LinkLabel)

    bool hoverUnderline;
    QString hyperLink;
};

/** Plain text as a tool tip that keeps its line breaks and runs of blanks and does not wrap. */
LUMO_EXPORT QString getHtmlEscapedStringForToolTip(const QString &text);

// ---------------------------------------------------------------------------
// Accessibility and focus
// ---------------------------------------------------------------------------

/** Exclusions and the minimum focus policy for accessibleList(). */
class LUMO_EXPORT AccessibleFilter
{
public:
    /** No exclusions; every focus policy admitted (Qt::NoFocus). */
    AccessibleFilter();
    /** Leaves out @p widgets and admits focus policies of at least @p level. */
    AccessibleFilter(const QList<QWidget *> &widgets, Qt::FocusPolicy level);

    /** Left out of the result; their descendants are still visited. */
    QList<QWidget *> filterWidgets();
    /** Compared as a number: Qt::TabFocus also admits click-only widgets, Qt::NoFocus admits all. */
    Qt::FocusPolicy focusLevel();
    /** Replaces the excluded widgets. */
    void setFilterWidgets(const QList<QWidget *> &widgets);
    /** Replaces the minimum focus policy. */
    void setFocusLevel(Qt::FocusPolicy level);

private:
    QList<QWidget *> m_filterWidgets;
    Qt::FocusPolicy m_focusLevel;
};

/**
 * The visible widgets of the tree under @p root that take focus, depth first,
 * parent before children, in child order. A hidden widget hides its subtree.
 */
LUMO_EXPORT QList<QWidget *> accessibleList(QWidget *root, QList<QWidget *> excluded);
/** As above, listing widgets whose focus policy is at least the filter's level. */
LUMO_EXPORT QList<QWidget *> accessibleList(QWidget *root, AccessibleFilter filter);
/** Sets @p policy on every widget of @p widgets, in order. */
LUMO_EXPORT void adjustFocusPolicy(Qt::FocusPolicy policy, QList<QWidget *> widgets);

Q_DECLARE_METATYPE(LumoCheckBox)
Q_DECLARE_METATYPE(LumoRadioButton)
Q_DECLARE_METATYPE(LumoMenu)
Q_DECLARE_METATYPE(LumoLineEdit)
Q_DECLARE_METATYPE(LumoLabel)

// ---------------------------------------------------------------------------
// Combo boxes, path bar, filter bar, footbar and shaded scroll area
// ---------------------------------------------------------------------------

#include <QComboBox>
#include <QLineEdit>
#include <QScrollArea>
#include <QTableWidget>
#include <QTime>

#include <string>
#include <vector>

class QSignalMapper;

/**
 * A drop-down list in the house look whose popup opens two pixels below the
 * box, left-aligned with it, instead of over it.
 */
class LUMO_EXPORT LumoComboBox : public QComboBox
{
    Q_OBJECT
public:
    /** An empty box in "component.combobox", its list with "component.scrollbar". */
    explicit LumoComboBox(QWidget *parent = nullptr);
    ~LumoComboBox() override;

    /** Opens the list below the box; the box gives up the focus while it is open. */
    void showPopup() override;

private:
    Q_DISABLE_COPY(LumoComboBox)
};

/**
 * A combo box of times of day ("hh:mm"). The owner adds the rows. When
 * editable, the user may type a time: it is validated while typing,
 * normalised when editing ends, and shown in an extra custom row when it
 * matches no row.
 */
class LUMO_EXPORT LumoTimeComboBox : public LumoComboBox
{
    Q_OBJECT
public:
    /** An empty, non-editable box; add the "hh:mm" rows with addItem(). */
    explicit LumoTimeComboBox(QWidget *parent = nullptr);
    ~LumoTimeComboBox() override;

    /**
     * Adds the custom row (hidden) and the time validator, or removes the row
     * again. Called through QComboBox instead, the same follows before the box
     * is next used (at the latest once control returns to the event loop).
     */
    void setEditable(bool editable);
    /** Shows or hides the custom row; only an editable box has one. */
    void setItemVisible(bool visible);
    /**
     * The number of rows the popup shows, not counting a hidden custom row.
     * A limit set through QComboBox counts the same from the next adjustment
     * or popup on.
     */
    void setMaxVisibleItems(int maxItems);
    /** Hands Qt the limit, counting a hidden custom row in; called by the box itself whenever the row changes. */
    void adjustMaxVisibleItems();
    /** Selects the row of @p text (UTF-8); an editable box shows an unknown time in the custom row. */
    void setCurrentText(const std::string &text);
    /** As above; keeps a string literal from being an ambiguous call. */
    void setCurrentText(const char *text);
    /** QComboBox's own: the line edit's text when editable, else the matching row. */
    using QComboBox::setCurrentText;
    /** The time of the current row, or a null time while no "hh:mm" is chosen. */
    QTime time() const;
    /** As setCurrentText, but only remembers the row as the one empty input returns to. */
    void setDefault(const std::string &text);
    /** A suffix shown after the time in the custom row; applies to the next label built. */
    void setCustomText(const QString &text);
    /** Normalises the typed text to "hh:mm" and selects its row or the custom row. */
    void correctTime();

    /** Catches up with the editability and the row limit, then opens the list below the box. */
    void showPopup() override;
    /** On the box itself: Return or Enter and losing the focus correct the typed time; the custom row is edited without its suffix. */
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Q_DISABLE_COPY(LumoTimeComboBox)
    /** Adds or removes the custom row when the editability changed, whichever way it was set. */
    void syncEditable();
    QString customLabel(const QString &time) const;
    void showCustomRow(bool visible);
    bool customRowHidden() const;
    int findRow(const QString &text) const;
    /** Shared by setCurrentText and setDefault: the row chosen for @p text. */
    int chooseRow(const QString &text);

    int customIndex;
    int defaultIndex;
    int maxVisible;
    QString customText;
    bool customRowAdded = false;
    int toldMaxVisible; // the limit last handed to QComboBox
};

/**
 * A breadcrumb bar for a slash-separated path: one flat button per segment
 * with arrows between them. A click emits sigUpdatePath() with the path up to
 * that segment; the bar never navigates by itself. When the row is wider than
 * the bar it scrolls to its right end and a folder button in its left corner
 * lists the segments out of sight.
 *
 * The bar is 28 design pixels high (scaled) whatever the host's layout says.
 * On overflow the 26 x 26 folder button covers the left end of the row, so the
 * segment it partly hides is also listed, as the menu's last entry.
 */
class LUMO_EXPORT LumoButtonPath : public QTableWidget
{
    Q_OBJECT
public:
    /** An empty bar in "component.button_path". */
    explicit LumoButtonPath(QWidget *parent = nullptr);
    ~LumoButtonPath() override;

    /**
     * Rebuilds the row for @p path. The old buttons and menu entries are
     * deleted once control returns to the event loop, so the owner may call
     * it from their signals; a menu entry picked meanwhile still delivers its path.
     */
    void refresh(QString path);
    /** The path up to the button at list index @p index, without a leading slash. */
    QString getPath(int index);
    /** Sets the arrow columns' widths and, when the row is wider than the bar, calls setChangeFolderBtn(). */
    void updateColumnSize();
    /** Shows the folder button with a menu of the segments out of sight of a row @p totalWidth pixels wide, and scrolls to the end. */
    void setChangeFolderBtn(int totalWidth);

Q_SIGNALS:
    /** A segment or menu entry was clicked: @p path runs from the first segment to it, without a leading slash. */
    void sigUpdatePath(QString path);

public Q_SLOTS:
    /** refresh(@p path). */
    void slotUpdatePath(QString path);
    /** Emits sigUpdatePath() with getPath(@p index). */
    void slotPathBarClicked(int index);

protected:
    /** Redoes the overflow pass for the new width: widening hides the folder button again. */
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DISABLE_COPY(LumoButtonPath)
    /** Empties the overflow menu; its entries are deleted only once control returns. */
    void retireMenu();

    QList<QPushButton *> buttons;
    QToolButton *changeFolderBtn;
    int viewWidth;
    QSignalMapper *nameMapper;
    QSignalMapper *menuMapper;
};

/**
 * A search field with a drop-down button at its left end that can carry a
 * menu of filter choices. Return delivers the keyword; Down opens the menu.
 */
class LUMO_EXPORT LumoFilterBar : public QLineEdit
{
    Q_OBJECT
public:
    /** An empty bar, 28 design pixels high (scaled), with the "bt_search_dropdown" button. */
    explicit LumoFilterBar(QWidget *parent = nullptr);
    ~LumoFilterBar() override;

    /** The bar does not take ownership of @p menu. */
    void setMenu(QMenu *menu);

Q_SIGNALS:
    /** Return was pressed with @p keyword in the field. */
    void sigKeywordChanged(QString keyword);

public Q_SLOTS:
    /** Emits sigKeywordChanged() with the current text. */
    void slotKeywordChange();

protected:
    /** Down opens the menu (and is consumed even without one); other keys edit as usual. */
    void keyPressEvent(QKeyEvent *event) override;

private:
    Q_DISABLE_COPY(LumoFilterBar)

    LumoIconButton *searchButton;
};

/**
 * The button row at the bottom of a page or sheet: a left and a right group
 * separated by a stretch. Push the widgets, then call init() once.
 */
class LUMO_EXPORT LumoFootbar : public QWidget
{
public:
    /** An empty bar. */
    explicit LumoFootbar(QWidget *parent = nullptr);
    ~LumoFootbar() override;

    /** Queues @p widget for the left group, in order. */
    void pushLeftWidget(QWidget *widget);
    /** Queues @p widget for the right group, in order. */
    void pushRightWidget(QWidget *widget);
    /** Lays out the pushed widgets with margins 20, 8, 20, 8 and spacing 10; widgets pushed later are the owner's to place. */
    void init();
    /** Design pixels, scaled to the screen and truncated. */
    void setMargins(int left, int top, int right, int bottom);
    /** Design pixels between the widgets, scaled and truncated. */
    void setSpacing(int spacing);

private:
    Q_DISABLE_COPY(LumoFootbar)

    QHBoxLayout *boxLayout;
    std::vector<QWidget *> leftWidgets;
    std::vector<QWidget *> rightWidgets;
};

/**
 * A borderless white area that scrolls vertically and shades its bottom edge
 * while more content lies below.
 */
class LUMO_EXPORT LumoVerticalScrollArea : public QScrollArea
{
    Q_OBJECT
public:
    /** An empty, widget-resizable area whose vertical scroll bar has "component.scrollbar"; the shade is the whole height. */
    explicit LumoVerticalScrollArea(QWidget *parent = nullptr);
    ~LumoVerticalScrollArea() override;

    /**
     * The shade's height: a fraction of the area's height up to 1.0, pixels
     * above. Takes effect at the next scroll or when the scroll bar appears.
     */
    void setShadowSize(double size);

    /** Redraws the shade when the scroll bar appears or disappears. */
    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /** Shades the bottom edge unless @p value is the scroll bar's maximum. */
    void slotScrollValueChanged(int value);

private:
    Q_DISABLE_COPY(LumoVerticalScrollArea)

    double shadowSize;
};

Q_DECLARE_METATYPE(LumoComboBox)
Q_DECLARE_METATYPE(LumoTimeComboBox)
Q_DECLARE_METATYPE(LumoButtonPath)
Q_DECLARE_METATYPE(LumoFilterBar)
Q_DECLARE_METATYPE(LumoVerticalScrollArea)

#endif

#ifndef LUMO_CONTROLS_H
#define LUMO_CONTROLS_H

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
    enum Kind { Apply = 0, Cancel = 1, SelectPaging = 2, NonselectPaging = 3, Default = 4, Red = 5 };

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
    void setHoverIcon(const QPixmap &pixmap);
    void setDisableIcon(const QPixmap &pixmap);

    /** For owners that drive the look themselves. */
    void applyHoverStyle();
    void applyNormalStyle();

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;
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
    explicit LumoMenu(QWidget *parent = nullptr);
    ~LumoMenu() override;

protected:
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
    using Validator = bool (*)(const QString &);

    explicit LumoLineEdit(QWidget *parent = nullptr);
    ~LumoLineEdit() override;

    /** Design pixels, scaled to the screen and truncated. */
    void setMargins(int left, int top, int right, int bottom);
    void setSpacing(int spacing);

    /** A null function clears the validator. */
    void setValidator(Validator fn);
    /** The validator's verdict on the text; true without a validator. Leaves the look alone. */
    bool validate();
    /** Switches the edit between its normal and error look. */
    void setError(bool on);

    QLabel *getPreLabel();
    QLabel *getPostLabel();
    QLineEdit *getLineEdit();
    QString getEditText() const;

private:
    Q_DISABLE_COPY(LumoLineEdit)

    QHBoxLayout *layout;
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
    explicit LumoLabel(QWidget *parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    explicit LumoLabel(const QString &text, QWidget *parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~LumoLabel() override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DISABLE_COPY(LumoLabel)
};

/** A label that emits clicked() when any mouse button is pressed on it. */
class LUMO_EXPORT ClickableLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ClickableLabel(const QString &text = QString(), QWidget *parent = nullptr);
    ~ClickableLabel() override;

Q_SIGNALS:
    void clicked();

protected:
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
public:
    explicit LinkLabel(const QString &text = QString(), QLabel *parent = nullptr);
    ~LinkLabel() override;

    void setHoverUnderline(bool underline);
    void setHyperLink(const QString &link);
    QString getHyperLink();

protected:
    void enterEvent(QEnterEvent *event) override;
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
    AccessibleFilter();
    AccessibleFilter(const QList<QWidget *> &widgets, Qt::FocusPolicy level);

    /** Left out of the result; their descendants are still visited. */
    QList<QWidget *> filterWidgets();
    /** Compared as a number: Qt::TabFocus also admits click-only widgets, Qt::NoFocus admits all. */
    Qt::FocusPolicy focusLevel();
    void setFilterWidgets(const QList<QWidget *> &widgets);
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

#endif

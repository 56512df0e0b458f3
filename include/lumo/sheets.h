#ifndef LUMO_SHEETS_H
#define LUMO_SHEETS_H

/**
 * @file
 * Sheets and shadows: the white shadowed panel, the dimming mask that lays a
 * sheet over its window, the message, input and countdown boxes, the one-call
 * message functions, and the box-shadow effect.
 */

#include <lumo/lumo_export.h>

#include <QColor>
#include <QFrame>
#include <QGraphicsEffect>
#include <QObject>
#include <QPixmap>
#include <QRectF>
#include <QSize>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QPainter;
class QVBoxLayout;
class LumoMaskPrivate;

/** One shadow of a BoxShadow: blur radius, offset in pixels and a colour name ("#RRGGBB", "#AARRGGBB", "black"). */
struct ShadowData {
    double blurRadius = 0.0; ///< Blur radius in pixels; 0 gives a hard shadow.
    int32_t xOffset = 0; ///< Horizontal offset in pixels, positive to the right.
    int32_t yOffset = 0; ///< Vertical offset in pixels, positive downwards.
    std::string color; ///< Any name QColor reads.
};

/**
 * Graphics effect that paints any number of outer and inner shadows following
 * the shape of the widget it decorates.
 *
 * The "mask" style cuts the shadows with 1-bit masks of the widget's shape; the
 * "smooth" style uses the widget's own alpha, so soft edges stay soft. Outer
 * shadows need room around the widget: leave necessary_indentation() free.
 *
 * The shadows are built once and reused until Qt marks the widget or one of
 * its children dirty (any QWidget::update()), the lists or the size change, or
 * the widget is hidden. A widget that paints differently without calling
 * update() keeps its previous shadow until it next does. The effect holds at
 * most three pixmaps of the widget's size grown by the reach: its own
 * rendering (shared with Qt's pixmap cache) and the outer and inner shadows.
 */
class LUMO_EXPORT BoxShadow : public QGraphicsEffect
{
    Q_OBJECT
public:
    /** @p border insets the rectangle of the inner shadows; it is kept as given, even negative. */
    BoxShadow(int border, bool smooth);
    ~BoxShadow() override;

    /** Replaces the inner shadows, painted inside the widget's shape inset by the border. */
    void setInsideShadowList(std::vector<ShadowData> &&shadows);
    /** Replaces the outer shadows and recomputes the reach. */
    void setOutsideShadowList(std::vector<ShadowData> &&shadows);
    /** Recomputes the reach: per outer shadow trunc(2 * blur) + |offset|, the largest of each axis. */
    void setMaxOffset();
    /** Negative values become 0. */
    void setBorder(int border);
    /** The margin a host must leave around the widget for the outer shadows (width = x reach, height = y reach). */
    QSize necessary_indentation() const;

    /** @p rect grown by the reach on every side. */
    QRectF boundingRectFor(const QRectF &rect) const override;

    /** Forgets the kept shadows when the decorated widget is hidden, since Qt marks nothing dirty while it is. */
    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    /** Paints the outer shadows, the widget and then the inner shadows over it. */
    void draw(QPainter *painter) override;
    /** Follows the widget the effect is put on; any change forgets the kept shadows. */
    void sourceChanged(ChangeFlags flags) override;

private:
    struct Kept;

    QPixmap blurPixmap(const QPixmap &pixmap, double radius);
    QPixmap coloredPixmap(const QColor &color, const QPixmap &pixmap);
    QPixmap cutShadow(QPixmap shadow, const QPixmap &cutter, int dx, int dy);
    QPixmap paddedSource() const;
    QPixmap blurredLayers(const QPixmap &source, const std::vector<ShadowData> &shadows,
                          const std::function<QPixmap(const ShadowData &)> &layerOf);
    QPixmap outsideShadow(const QPixmap &source, const QImage &sourceArgb);
    QPixmap insideShadow(const QPixmap &source, const QImage &sourceArgb);
    QPixmap smoothOutsideShadow(const QPixmap &source);
    QPixmap smoothInsideShadow(const QPixmap &source);
    bool changesAnnounced() const;
    bool keptShadowsValid(const QPainter *painter, const QSizeF &sourceSize) const;
    void forgetKept();

    bool smooth;
    int maxOffsetX = 0;
    int maxOffsetY = 0;
    int border;
    std::vector<ShadowData> insideShadows;
    std::vector<ShadowData> outsideShadows;
    QWidget *host = nullptr;
    bool onItem = false; // on a QGraphicsItem rather than a widget
    // The last shadows built, with the source pixels they were built from; one set per effect.
    std::unique_ptr<Kept> kept;

    Q_DISABLE_COPY(BoxShadow)
};

/**
 * Plain widget that holds one child, puts a BoxShadow on it and keeps a margin
 * around it for the shadow: by default the shadow's reach, or fixed margins.
 */
class LUMO_EXPORT BoxShadowWrapper : public QWidget
{
    Q_OBJECT
public:
    /**
     * @p margins: 4 values (left, top, right, bottom) or 2 (horizontal, vertical).
     * An empty list with @p customMargins false follows the shadow reach; any
     * other list counts as custom, and a length other than 2 or 4 keeps the
     * layout's default margins.
     */
    BoxShadowWrapper(QWidget *parent, int border, bool customMargins, const std::vector<int> &margins, bool smooth);
    ~BoxShadowWrapper() override;

    /** Puts the effect on @p widget (which takes ownership of it) and lays it out centred. */
    void setWidget(QWidget *widget);
    /** BoxShadow::setInsideShadowList() of the wrapper's effect. */
    void setInsideShadowList(std::vector<ShadowData> &&shadows);
    /** BoxShadow::setOutsideShadowList() of the wrapper's effect; margins that follow the reach follow the new one. */
    void setOutsideShadowList(std::vector<ShadowData> &&shadows);
    /** BoxShadow::setBorder() of the wrapper's effect. */
    void setBorder(int border);

private:
    bool customMargins;
    QWidget *widget = nullptr;
    QVBoxLayout *boxLayout;
    BoxShadow *effect;

    Q_DISABLE_COPY(BoxShadowWrapper)
};

/**
 * White panel with a soft nine-tile shadow around it; the base of the
 * library's sheets.
 *
 * The shadow band (22 design pixels, scaled) is always the sheet's contents
 * margins: whatever sets other margins (Qt's own polishing included) is undone
 * at once, so size a sheet's content, not the sheet. Its size policy is Fixed,
 * so inside a LumoMask it keeps its own size, centred.
 */
class LUMO_EXPORT LumoSheet : public QFrame
{
    Q_OBJECT
public:
    /** An empty sheet; give it a layout or call setWidget(). */
    explicit LumoSheet(QWidget *parent);
    ~LumoSheet() override;

    /** Replaces the sheet's layout by one holding @p widget centred, then adjusts the size. */
    void setWidget(QWidget *widget);

Q_SIGNALS:
    /** Emitted by the sheets built on this frame when they end, with their result code. */
    void finished(int result);

protected:
    /** Paints the shadow band and the white panel inside it. */
    void paintEvent(QPaintEvent *event) override;
    /** Puts the shadow band back as contents margins before the sheet shows. */
    void showEvent(QShowEvent *event) override;
    /** Paints the nine "bg_tutorial_*" tiles of the shadow band: corners as they are, edges stretched. */
    void drawShadow(QPainter &painter);

private:
    int shadowMargin;

    Q_DISABLE_COPY(LumoSheet)
};

/**
 * Translucent layer over a whole window that dims it and centres one content
 * widget; it follows the window's size and is shown and hidden with the content.
 *
 * The mask is a child of the window and outlives its content: deleting the
 * content leaves the mask hidden in the window until the window goes.
 */
class LUMO_EXPORT LumoMask : public QFrame
{
    Q_OBJECT
public:
    /** A mask over @p parent's window filled with @p color (use a translucent one) holding @p content. */
    LumoMask(QWidget *content, QWidget *parent, QColor color);
    ~LumoMask() override;

    /**
     * Lays a mask over @p parent (or the content's parent when null) holding
     * @p content. Returns @p content, not the mask (the window owns the mask),
     * or null when nothing could be created.
     */
    static QWidget *createMask(QWidget *content, QWidget *parent, QColor color);

    using QFrame::resize;
    /** Takes the size of the top-level window. */
    void resize();

    /** Follows the content: shown when it is shown, hidden when it is hidden. */
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    LumoMaskPrivate *d;

    Q_DISABLE_COPY(LumoMask)
};

/** Keeps a mask as large as its window; watches the window's resize events. */
class LUMO_EXPORT ParentEventFilterWidget : public QObject
{
    Q_OBJECT
public:
    /** A child object of @p mask watching @p parent; install it on @p parent. */
    ParentEventFilterWidget(LumoMask *mask, QWidget *parent);
    ~ParentEventFilterWidget() override;

    /** Resizes the mask on every resize of the watched window; lets every event through. */
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    LumoMask *mask;
    QWidget *parent;

    Q_DISABLE_COPY(ParentEventFilterWidget)
};

/** Event filter that swallows mouse presses, releases and double clicks. */
class LUMO_EXPORT MouseButtonFilter : public QObject
{
    Q_OBJECT
public:
    /** Install it on the widget to make deaf to the mouse buttons. */
    explicit MouseButtonFilter(QObject *parent = nullptr);
    ~MouseButtonFilter() override;

    /** True (swallowed) for presses, releases and double clicks. */
    bool eventFilter(QObject *watched, QEvent *event) override;
};

/** Event filter that swallows mouse releases only. */
class LUMO_EXPORT MouseReleaseFilter : public QObject
{
    Q_OBJECT
public:
    /** Install it on the widget whose releases are to be ignored. */
    explicit MouseReleaseFilter(QObject *parent = nullptr);
    ~MouseReleaseFilter() override;

    /** True (swallowed) for releases. */
    bool eventFilter(QObject *watched, QEvent *event) override;
};

/**
 * Enables or disables the native close button of the window holding @p widget.
 * macOS only; does nothing elsewhere or while the window has no native handle.
 * @p reserved is ignored.
 */
LUMO_EXPORT void SHAPISetCloseButtonOfWindowEnable(QWidget *widget, bool enable, void **reserved = nullptr);

// ---------------------------------------------------------------------------
// Message sheet, input sheet and countdown message box
// ---------------------------------------------------------------------------

#include <QLabel>
#include <QMessageBox>
#include <QProxyStyle>
#include <QString>
#include <QTimer>

class QAbstractButton;
class QPushButton;
class QLineEdit;
class LumoMessageSheetPrivate;
class LumoInputSheetPrivate;

/** Captions that replace a message sheet's default button texts; an empty one keeps the default. */
struct MsgBoxCustomBtnText {
    QString okText; ///< The Ok or Apply button.
    QString cancelText; ///< The Discard (cancel) button.
    QString resetText; ///< The Reset button.
};

class MessageLabelPrivate;

/** A word-wrapped label that always takes exactly the height its text needs at its width. */
class LUMO_EXPORT MessageLabel : public QLabel
{
    Q_OBJECT
public:
    /** An empty label; turn on word wrap for the height to follow the text. */
    explicit MessageLabel(QWidget *parent = nullptr);
    ~MessageLabel() override;

    /** QLabel's, remembered per width for as long as nothing that it is computed from changes. */
    int heightForWidth(int width) const override;

protected:
    /** Fixes the height to heightForWidth() of the new width. */
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DISABLE_COPY(MessageLabel)
    MessageLabelPrivate *d;
};

/** Proxy style that gives a dialog button box the same (Windows) button order on every platform. */
class LUMO_EXPORT DialogButtonBoxStyle : public QProxyStyle
{
    Q_OBJECT
public:
    /** A proxy of the application style. */
    DialogButtonBoxStyle();
    ~DialogButtonBoxStyle() override;

    /** QDialogButtonBox::WinLayout for SH_DialogButtonLayout; the application style's answer otherwise. */
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;

private:
    Q_DISABLE_COPY(DialogButtonBoxStyle)
};

/**
 * The library's message box: a sheet laid over its window behind a LumoMask,
 * with an icon, a text, an optional informative text, an optional
 * double-confirm check box and a row of standard buttons.
 *
 * exec() blocks like a modal dialog by running a local event loop and returns
 * the standard-button value of the button that ended it (Ok 0x400, Apply
 * 0x2000000, Discard 0x800000, Reset 0x4000000), the code given to done(),
 * or 0 for quit(). The cancelling button is always Discard. While it runs, the
 * window's close button is disabled and the user cannot close the window; if
 * the application closes or destroys the window, exec() returns 0.
 *
 * The sheet shows where its parent puts it: to lay it over its window, hand it
 * to LumoMask::createMask() before exec() or showSheet(). The one-call
 * functions below do both.
 */
class LUMO_EXPORT LumoMessageSheet : public LumoSheet
{
    Q_OBJECT
public:
    /** The icon and the buttons of the sheet. */
    enum MessageType {
        AppNotice = 0, ///< The application's icon ("app_img"), no buttons.
        Information = 1, ///< "icon_information", Ok.
        Warning = 2, ///< "icon_warning", Ok.
        Confirm = 3, ///< "icon_question", Apply and Discard.
        ConfirmWithReset = 4, ///< "icon_question", Apply, Discard and Reset.
        Upgrading = 5, ///< "icon_information", Apply (captioned "wizard_client_upgrade") and Discard.
        WarningConfirm = 6, ///< "icon_warning", Apply and Discard.
        Processing = 7 ///< An animation, no buttons; end it with done().
    };
    Q_ENUM(MessageType)

    /** A sheet of @p type showing @p text, with the button captions of @p texts; @p showIcon false hides the icon. */
    LumoMessageSheet(MessageType type, const QString &text, const MsgBoxCustomBtnText &texts, QWidget *parent, bool showIcon = true);
    /** A sheet of @p type without text; set it with setText(). */
    LumoMessageSheet(MessageType type, QWidget *parent, bool showIcon = true);
    /** A sheet of @p type showing @p text. */
    LumoMessageSheet(MessageType type, const QString &text, QWidget *parent, bool showIcon = true);
    /** A sheet of @p type showing @p text and, smaller below it, @p informativeText. */
    LumoMessageSheet(MessageType type, const QString &text, const QString &informativeText, QWidget *parent, bool showIcon = true);
    /** A Processing sheet showing the animation read from @p moviePath, 32 pixels square. */
    LumoMessageSheet(const QString &text, const QString &moviePath, QWidget *parent);
    ~LumoMessageSheet() override;

    /** Replaces the main text by a new label; @p styleSheet empty: the house text style. */
    void setText(const QString &text, const QString &styleSheet = QString());
    /** Sets the informative text; an existing label keeps its first style sheet. Empty text removes it. */
    void setInformativeText(const QString &text, const QString &styleSheet = QString());
    /** Replaces the type's icon by @p pixmap; a null pixmap removes the icon column. */
    void setIcon(const QPixmap &pixmap);
    /** Re-initialises the sheet: button captions return to their defaults. */
    void setIconVisible(bool visible);
    /** Re-initialises the sheet: button captions return to their defaults. */
    void setMessageType(MessageType type);
    /** With @p on, Apply stays disabled until the box beside @p text is ticked. Re-initialises the sheet. */
    void setDoubleConfirmCheckBox(bool on, const QString &text);
    /** Whether exec() disables the window's close button and refuses the window system's close (default true). */
    void setBlockWindowButton(bool block);

    /** The button of @p which, or null when the sheet's type has none. */
    QAbstractButton *button(QMessageBox::StandardButton which) const;
    /** Null is ignored. */
    void setDefaultButton(QPushButton *button);

    /** Design pixels including a 10-pixel allowance: each margin becomes max(v, 10) - 10, scaled. */
    void setLayoutMargins(int left, int top, int right, int bottom);
    /** Fixed width of the content @p w plus the shadow allowance of 24, scaled. */
    void setWidth(int w);
    /** Fixed height of the content @p h plus the shadow allowance of 24, scaled. */
    void setHeight(int h);
    /**
     * Design pixels between the text and the informative text, the icon and the
     * texts, the texts and the check box, and above the buttons. Lays the sheet out again.
     */
    void setSpacing(int textSpacing, int iconSpacing, int checkBoxSpacing, int buttonBoxSpacing);
    /** Spacing between the buttons, in design pixels. */
    void setButtonBoxSpacing(int spacing);
    /** Puts the icon and texts into a scroll area of that size (design pixels). */
    void setScrollArea(int width, int height);

    /** Shows the sheet without blocking; it ends through its buttons or done(). */
    virtual void showSheet();
    /**
     * Shows the sheet and blocks in a local event loop until it ends; see the
     * class description for the result. A second exec() while one runs returns 0 with a warning.
     */
    int exec();

    /**
     * While the sheet runs, filters its window: Return, Enter and Space press
     * Ok or Apply, Escape presses Discard, Tab stays inside the sheet, the
     * window's shortcuts are held back; hiding the window ends the sheet with 0.
     */
    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /** Ends the sheet: hides it, makes exec() return @p result and emits finished(). */
    void done(int result);
    /** done(0). */
    void quit();
    /** Ends the sheet with the standard-button value of @p button. */
    void buttonClick(QAbstractButton *button);
    /** Enables Apply while the double-confirm box is checked (@p state Qt::Checked). */
    void slotChangeApplyButtonStatus(int state);

protected:
    /** Builds the sheet's tab cycle: the text, the check box, Ok and Discard, in that order. */
    void showEvent(QShowEvent *event) override;
    /** Moves the focus within the sheet's tab cycle. */
    bool focusNextPrevChild(bool next) override;

private:
    Q_DISABLE_COPY(LumoMessageSheet)
    friend class LumoMessageSheetPrivate;

    LumoMessageSheetPrivate *d;
    bool blockWindowButton;
};

/**
 * A sheet asking for one line of text, with Ok and Cancel. exec() returns
 * 0x400 (Ok), 0x800000 (Discard, the cancel button) or 0 (quit(), or the
 * window closed or destroyed by the application). Like LumoMessageSheet it
 * shows where its parent puts it: hand it to LumoMask::createMask() to lay it
 * over its window.
 */
class LUMO_EXPORT LumoInputSheet : public LumoSheet
{
    Q_OBJECT
public:
    /** A sheet without a prompt. */
    explicit LumoInputSheet(QWidget *parent);
    /** A sheet with the prompt @p text. */
    LumoInputSheet(const QString &text, QWidget *parent);
    ~LumoInputSheet() override;

    /** The prompt, shown with a scaled 20-pixel line height. */
    void setText(const QString &text);
    /** The line edit, for a validator, a placeholder or an initial text. */
    QLineEdit *getLineEdit();
    /** The text typed. */
    QString getContent();

    /** Ok or Discard (the cancel button); null for any other value. */
    QAbstractButton *button(QMessageBox::StandardButton which) const;
    /** Null is ignored. */
    void setDefaultButton(QPushButton *button);
    /** Whether exec() disables the window's close button and refuses the window system's close (default true). */
    void setBlockWindowButton(bool block);

    /** Shows the sheet without blocking and focuses the line edit. */
    virtual void showSheet();
    /** Shows the sheet, focuses the line edit and blocks in a local event loop until it ends. */
    int exec();

    /** While the sheet runs, filters its window as LumoMessageSheet::eventFilter() does. */
    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /** Ends the sheet: hides it, makes exec() return @p result and emits finished(). */
    void done(int result);
    /** done(0). */
    void quit();
    /** Ends the sheet with the standard-button value of @p button. */
    void buttonClick(QAbstractButton *button);

private:
    Q_DISABLE_COPY(LumoInputSheet)
    friend class LumoInputSheetPrivate;

    LumoInputSheetPrivate *d;
    bool blockWindowButton;
};

/**
 * A message box whose Ok button counts down the seconds and clicks itself when
 * the count runs out. The number drops by one at the moment the box is shown,
 * so a count of 3 waits three whole seconds after showing.
 *
 * A count of 0 or less presses Ok as soon as the box shows, and once more a
 * second later. The box is an ordinary QMessageBox otherwise: after
 * setStandardButtons() the new buttons get the house look when shown, and Ok
 * stays the default, so the countdown still ends on Ok.
 */
class LUMO_EXPORT LumoCountdownMessageBox : public QMessageBox
{
    Q_OBJECT
public:
    /** A box with Ok (counting down from @p seconds) and Discard captioned "cancel". */
    LumoCountdownMessageBox(int seconds, QWidget *parent = nullptr);
    ~LumoCountdownMessageBox() override;

    /** Ok reads "<ok>(<seconds>)". */
    void updateButtonText();

public Q_SLOTS:
    /** One second passed: counts down, or clicks the default button once the count is spent. */
    void slotTick();

protected:
    /** Styles the buttons, makes Ok the default if none is, takes the first step and starts the one-second timer. */
    void showEvent(QShowEvent *event) override;

private:
    Q_DISABLE_COPY(LumoCountdownMessageBox)
    void step();

    QTimer timer;
    int remainingSeconds;
};

/**
 * Information message over @p parent's window; a plain QMessageBox titled
 * @p title when @p parent is null. Blocks until the user answers.
 *
 * Each call lays a new LumoMask over the window and deletes the sheet when it
 * ends; the hidden mask stays in the window until the window is destroyed.
 * The same holds for every function below.
 */
LUMO_EXPORT void showInfoMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon = true);
/** Warning message; see showInfoMsg(). */
LUMO_EXPORT void showWarningMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon = true);
/** Warning message with an informative text; see showInfoMsg(). */
LUMO_EXPORT void showWarningMsg(const QString &title, const QString &text, const QString &informativeText, QWidget *parent,
                                bool showIcon = true);
/**
 * Asks for confirmation. Test the result for QMessageBox::Apply: "no" is
 * Discard from a sheet but Cancel from the parentless message box.
 */
LUMO_EXPORT int showConfirmMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon = true);
/** As showConfirmMsg(), with the button captions of @p texts. */
LUMO_EXPORT int showConfirmMsgCustomBtn(const QString &title, const QString &text, const MsgBoxCustomBtnText &texts, QWidget *parent,
                                        bool showIcon = true);
/** The upgrade offer; see showInfoMsg(). */
LUMO_EXPORT void showUpgradingMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon = true);

#endif

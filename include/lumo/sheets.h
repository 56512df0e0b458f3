#ifndef LUMO_SHEETS_H
#define LUMO_SHEETS_H

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
#include <string>
#include <vector>

class QPainter;
class QVBoxLayout;
class LumoMaskPrivate;

/** One shadow of a BoxShadow: blur radius, offset in pixels and a colour name ("#RRGGBB", "#AARRGGBB", "black"). */
struct ShadowData {
    double blurRadius = 0.0;
    int32_t xOffset = 0;
    int32_t yOffset = 0;
    std::string color;
};

/**
 * Graphics effect that paints any number of outer and inner shadows following
 * the shape of the widget it decorates.
 *
 * The "mask" style cuts the shadows with 1-bit masks of the widget's shape; the
 * "smooth" style uses the widget's own alpha, so soft edges stay soft. Outer
 * shadows need room around the widget: leave necessary_indentation() free.
 */
class LUMO_EXPORT BoxShadow : public QGraphicsEffect
{
    Q_OBJECT
public:
    /** @p border insets the rectangle of the inner shadows; it is kept as given, even negative. */
    BoxShadow(int border, bool smooth);
    ~BoxShadow() override;

    void setInsideShadowList(std::vector<ShadowData> &&shadows);
    /** Replaces the outer shadows and recomputes the reach. */
    void setOutsideShadowList(std::vector<ShadowData> &&shadows);
    /** Recomputes the reach: per outer shadow trunc(2 * blur) + |offset|, the largest of each axis. */
    void setMaxOffset();
    /** Negative values become 0. */
    void setBorder(int border);
    /** The margin a host must leave around the widget for the outer shadows (width = x reach, height = y reach). */
    QSize necessary_indentation() const;

    QRectF boundingRectFor(const QRectF &rect) const override;

protected:
    void draw(QPainter *painter) override;

private:
    QPixmap blurPixmap(const QPixmap &pixmap, double radius);
    QPixmap coloredPixmap(const QColor &color, const QPixmap &pixmap);
    QPixmap cutShadow(QPixmap shadow, const QPixmap &cutter, int dx, int dy);
    QPixmap paddedSource() const;
    QPixmap blurredLayers(const QPixmap &source, const std::vector<ShadowData> &shadows,
                          const std::function<QPixmap(const ShadowData &)> &layerOf);
    QPixmap outsideShadow();
    QPixmap insideShadow();
    QPixmap smoothOutsideShadow();
    QPixmap smoothInsideShadow();

    bool smooth;
    int maxOffsetX = 0;
    int maxOffsetY = 0;
    int border;
    std::vector<ShadowData> insideShadows;
    std::vector<ShadowData> outsideShadows;
    // The last shadows and the source pixels they were built from: reused while the
    // source paints the same pixels and the lists stay; one set per effect.
    QPixmap composedSource;
    QPixmap composedOuter;
    QPixmap composedInner;

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
    void setInsideShadowList(std::vector<ShadowData> &&shadows);
    void setOutsideShadowList(std::vector<ShadowData> &&shadows);
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
 * library's sheets. The shadow band is kept as contents margins.
 */
class LUMO_EXPORT LumoSheet : public QFrame
{
    Q_OBJECT
public:
    explicit LumoSheet(QWidget *parent);
    ~LumoSheet() override;

    /** Replaces the sheet's layout by one holding @p widget centred, then adjusts the size. */
    void setWidget(QWidget *widget);

Q_SIGNALS:
    /** Emitted by the sheets built on this frame when they end, with their result code. */
    void finished(int result);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void drawShadow(QPainter &painter);

private:
    int shadowMargin;

    Q_DISABLE_COPY(LumoSheet)
};

/**
 * Translucent layer over a whole window that dims it and centres one content
 * widget; it follows the window's size and is shown and hidden with the content.
 */
class LUMO_EXPORT LumoMask : public QFrame
{
    Q_OBJECT
public:
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
    explicit MouseButtonFilter(QObject *parent = nullptr);
    ~MouseButtonFilter() override;

    bool eventFilter(QObject *watched, QEvent *event) override;
};

/** Event filter that swallows mouse releases only. */
class LUMO_EXPORT MouseReleaseFilter : public QObject
{
    Q_OBJECT
public:
    explicit MouseReleaseFilter(QObject *parent = nullptr);
    ~MouseReleaseFilter() override;

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
    QString okText;
    QString cancelText;
    QString resetText;
};

/** A word-wrapped label that always takes exactly the height its text needs at its width. */
class LUMO_EXPORT MessageLabel : public QLabel
{
    Q_OBJECT
public:
    explicit MessageLabel(QWidget *parent = nullptr);
    ~MessageLabel() override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DISABLE_COPY(MessageLabel)
};

/** Proxy style that gives a dialog button box the same (Windows) button order on every platform. */
class LUMO_EXPORT DialogButtonBoxStyle : public QProxyStyle
{
    Q_OBJECT
public:
    DialogButtonBoxStyle();
    ~DialogButtonBoxStyle() override;

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
 */
class LUMO_EXPORT LumoMessageSheet : public LumoSheet
{
    Q_OBJECT
public:
    enum MessageType {
        AppNotice = 0,
        Information = 1,
        Warning = 2,
        Confirm = 3,
        ConfirmWithReset = 4,
        Upgrading = 5,
        WarningConfirm = 6,
        Processing = 7
    };
    Q_ENUM(MessageType)

    LumoMessageSheet(MessageType type, const QString &text, const MsgBoxCustomBtnText &texts, QWidget *parent, bool showIcon = true);
    LumoMessageSheet(MessageType type, QWidget *parent, bool showIcon = true);
    LumoMessageSheet(MessageType type, const QString &text, QWidget *parent, bool showIcon = true);
    LumoMessageSheet(MessageType type, const QString &text, const QString &informativeText, QWidget *parent, bool showIcon = true);
    /** A Processing sheet showing the animation read from @p moviePath, 32 pixels square. */
    LumoMessageSheet(const QString &text, const QString &moviePath, QWidget *parent);
    ~LumoMessageSheet() override;

    /** Replaces the main text by a new label; @p styleSheet empty: the house text style. */
    void setText(const QString &text, const QString &styleSheet = QString());
    /** Sets the informative text; an existing label keeps its first style sheet. Empty text removes it. */
    void setInformativeText(const QString &text, const QString &styleSheet = QString());
    void setIcon(const QPixmap &pixmap);
    /** Re-initialises the sheet: button captions return to their defaults. */
    void setIconVisible(bool visible);
    /** Re-initialises the sheet: button captions return to their defaults. */
    void setMessageType(MessageType type);
    /** With @p on, Apply stays disabled until the box beside @p text is ticked. Re-initialises the sheet. */
    void setDoubleConfirmCheckBox(bool on, const QString &text);
    void setBlockWindowButton(bool block);

    QAbstractButton *button(QMessageBox::StandardButton which) const;
    /** Null is ignored. */
    void setDefaultButton(QPushButton *button);

    /** Design pixels including a 10-pixel allowance: each margin becomes max(v, 10) - 10, scaled. */
    void setLayoutMargins(int left, int top, int right, int bottom);
    /** Fixed width of the content @p w plus the shadow allowance of 24, scaled. */
    void setWidth(int w);
    /** Fixed height of the content @p h plus the shadow allowance of 24, scaled. */
    void setHeight(int h);
    void setSpacing(int textSpacing, int iconSpacing, int checkBoxSpacing, int buttonBoxSpacing);
    /** Spacing between the buttons, in design pixels. */
    void setButtonBoxSpacing(int spacing);
    /** Puts the icon and texts into a scroll area of that size (design pixels). */
    void setScrollArea(int width, int height);

    /** Shows the sheet without blocking; it ends through its buttons or done(). */
    virtual void showSheet();
    int exec();

    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    void done(int result);
    void quit();
    void buttonClick(QAbstractButton *button);
    void slotChangeApplyButtonStatus(int state);

protected:
    void showEvent(QShowEvent *event) override;
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
 * window closed or destroyed by the application).
 */
class LUMO_EXPORT LumoInputSheet : public LumoSheet
{
    Q_OBJECT
public:
    explicit LumoInputSheet(QWidget *parent);
    LumoInputSheet(const QString &text, QWidget *parent);
    ~LumoInputSheet() override;

    /** The prompt, shown with a scaled 20-pixel line height. */
    void setText(const QString &text);
    QLineEdit *getLineEdit();
    QString getContent();

    QAbstractButton *button(QMessageBox::StandardButton which) const;
    /** Null is ignored. */
    void setDefaultButton(QPushButton *button);
    void setBlockWindowButton(bool block);

    /** Shows the sheet without blocking and focuses the line edit. */
    virtual void showSheet();
    int exec();

    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    void done(int result);
    void quit();
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
 */
class LUMO_EXPORT LumoCountdownMessageBox : public QMessageBox
{
    Q_OBJECT
public:
    LumoCountdownMessageBox(int seconds, QWidget *parent = nullptr);
    ~LumoCountdownMessageBox() override;

    /** Ok reads "<ok>(<seconds>)". */
    void updateButtonText();

public Q_SLOTS:
    void slotTick();

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DISABLE_COPY(LumoCountdownMessageBox)
    void step();

    QTimer timer;
    int remainingSeconds;
};

/** Information message over @p parent's window; a plain QMessageBox titled @p title when @p parent is null. */
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

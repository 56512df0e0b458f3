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
    QVBoxLayout *layout;
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

#endif

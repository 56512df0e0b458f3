#include <lumo/sheets.h>

#include <QApplication>
#include <QBitmap>
#include <QEvent>
#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{
QColor colorOf(const ShadowData &shadow)
{
    return QColor(QString::fromStdString(shadow.color));
}

// A transparent pixmap of the same device size and pixel ratio as @p like.
QPixmap blankLike(const QPixmap &like)
{
    QPixmap pixmap(like.size());
    pixmap.setDevicePixelRatio(like.devicePixelRatio());
    pixmap.fill(Qt::transparent);
    return pixmap;
}

// Masks keep the pixel ratio of their pixmap so that they are drawn at its logical size.
// @p argb is the pixmap in QImage::Format_ARGB32, which QPixmap::createMaskFromColor
// converts to on every call: converted once, it serves several masks.
QBitmap maskOf(const QImage &argb, qreal ratio, const QColor &color, Qt::MaskMode mode)
{
    QBitmap mask = QBitmap::fromImage(argb.createMaskFromColor(color.rgba(), mode));
    mask.setDevicePixelRatio(ratio);
    return mask;
}

QImage argbOf(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

// The set bits of @p bits in one colour, the rest transparent: what drawing the bitmap with a pen
// of that colour gives, except that the raster engine misplaces pen-drawn bitmaps on high-DPI pixmaps.
QPixmap paintedBits(const QBitmap &bits, const QColor &color)
{
    QPixmap pixmap(bits.size());
    pixmap.setDevicePixelRatio(bits.devicePixelRatio());
    pixmap.fill(color);
    pixmap.setMask(bits);
    return pixmap;
}

void preparePainter(QPainter &painter)
{
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.setWorldMatrixEnabled(false);
}

// The rectangle a pixmap covers when drawn at (0, 0), in logical pixels.
QRect logicalRect(const QPixmap &pixmap)
{
    return QRect(QPoint(0, 0), pixmap.deviceIndependentSize().toSize());
}

// Where drawing @p pixmap at @p (x, y) puts it: its own size, unrounded.
QRectF placed(int x, int y, const QPixmap &pixmap)
{
    return QRectF(QPointF(x, y), pixmap.deviceIndependentSize());
}

// True when no pixel of @p pixmap paints anything.
bool isBlankPixmap(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (std::any_of(line, line + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 0; }))
            return false;
    }
    return true;
}

// Draws @p pixmap into @p target. Where it lands on device pixels one to one, at a whole pixel
// ratio, smooth transformation has nothing to interpolate: the raster engine's plain blit gives
// the same pixels without its filtering span path, several times faster.
void drawShadowPixmap(QPainter *painter, const QRectF &target, const QPixmap &pixmap)
{
    const qreal ratio = pixmap.devicePixelRatio();
    const QTransform device = painter->deviceTransform();
    const QPointF origin = device.map(target.topLeft());
    const bool oneToOne = ratio == std::floor(ratio) && device.type() <= QTransform::TxScale && device.m11() == ratio &&
        device.m22() == ratio && target.size() * ratio == QSizeF(pixmap.size()) && origin == QPointF(origin.toPoint());
    const bool unfiltered = oneToOne && painter->testRenderHint(QPainter::SmoothPixmapTransform);
    if (unfiltered)
        painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->drawPixmap(target, pixmap, QRectF());
    if (unfiltered)
        painter->setRenderHint(QPainter::SmoothPixmapTransform, true);
}

// Draws a shadow layer unless it is blank and blended over what is there: fully transparent
// pixels then change nothing. Layers are otherwise drawn whole, as the raster engine's rounding
// may depend on where a span starts. A layer of an empty list is never built: @p pixmap is then
// null and stands for a blank one like @p like.
void drawShadowLayer(QPainter *painter, const QRect &target, const QPixmap &pixmap, bool isBlank, const QPixmap &like)
{
    if (isBlank && painter->compositionMode() == QPainter::CompositionMode_SourceOver)
        return;
    drawShadowPixmap(painter, target, pixmap.isNull() ? blankLike(like) : pixmap);
}
}

struct BoxShadow::Kept {
    // Besides Qt's own copy in QPixmapCache this is the only reference to these pixels. Qt drops
    // its copy as soon as the widget or one of its children is marked dirty, which leaves this
    // one detached: the sign that the source has changed.
    QPixmap source;
    QSizeF sourceSize;
    bool reusable = false; // built while Qt announced the widget's changes
    QPixmap outer;
    bool outerBlank = false;
    QPixmap inner;
    bool innerBlank = false;
};

BoxShadow::BoxShadow(int border, bool smooth)
    : QGraphicsEffect(nullptr)
    , smooth(smooth)
    , border(border)
{
}

BoxShadow::~BoxShadow() = default;

void BoxShadow::setInsideShadowList(std::vector<ShadowData> &&shadows)
{
    if (&shadows != &insideShadows)
        insideShadows = shadows;
    forgetKept();
    update();
}

void BoxShadow::setOutsideShadowList(std::vector<ShadowData> &&shadows)
{
    if (&shadows != &outsideShadows)
        outsideShadows = shadows;
    forgetKept();
    setMaxOffset();
}

void BoxShadow::setMaxOffset()
{
    int reachX = 0;
    int reachY = 0;
    for (const ShadowData &shadow : outsideShadows) {
        const int blur = int(2 * shadow.blurRadius);
        reachX = qMax(reachX, blur + std::abs(shadow.xOffset));
        reachY = qMax(reachY, blur + std::abs(shadow.yOffset));
    }
    maxOffsetX = reachX;
    maxOffsetY = reachY;
    updateBoundingRect();
}

void BoxShadow::setBorder(int value)
{
    border = qMax(0, value);
    update();
}

QSize BoxShadow::necessary_indentation() const
{
    return QSize(maxOffsetX, maxOffsetY);
}

QRectF BoxShadow::boundingRectFor(const QRectF &rect) const
{
    return rect.adjusted(-maxOffsetX, -maxOffsetY, maxOffsetX, maxOffsetY);
}

bool BoxShadow::eventFilter(QObject *watched, QEvent *event)
{
    // A hidden widget is never marked dirty, so what changes until it shows again goes unseen.
    if (watched == host && event->type() == QEvent::Hide)
        forgetKept();
    return QGraphicsEffect::eventFilter(watched, event);
}

void BoxShadow::sourceChanged(ChangeFlags flags)
{
    forgetKept();
    if (flags & SourceDetached) {
        if (host)
            host->removeEventFilter(this);
        host = nullptr;
        onItem = false;
    }
    if (flags & SourceAttached) {
        // Qt gives an effect no public way to its widget; attaching happens once per widget.
        const QWidgetList widgets = QApplication::allWidgets();
        const auto found = std::find_if(widgets.cbegin(), widgets.cend(), [this](QWidget *w) { return w->graphicsEffect() == this; });
        host = found == widgets.cend() ? nullptr : *found;
        onItem = !host;
        if (host)
            host->installEventFilter(this);
    }
}

void BoxShadow::forgetKept()
{
    kept.reset();
}

bool BoxShadow::changesAnnounced() const
{
    // A graphics item's every update drops Qt's cached copy of its pixels.
    if (onItem)
        return true;
    // Qt marks widgets dirty only while they are visible and take updates, in a window with a
    // backing store of its own; anywhere else a change goes unannounced.
    if (!host || !host->isVisible() || !host->updatesEnabled())
        return false;
    const QWidget *window = host->window();
    return window->backingStore() && !window->graphicsProxyWidget();
}

bool BoxShadow::keptShadowsValid(const QPainter *painter, const QSizeF &sourceSize) const
{
    return kept && kept->reusable && changesAnnounced() && !kept->source.isDetached() && kept->sourceSize == sourceSize &&
        painter->device() && kept->source.devicePixelRatio() == painter->device()->devicePixelRatio();
}

void BoxShadow::draw(QPainter *painter)
{
    const QPainter::RenderHints hints = painter->renderHints();
    // A widget painted inside another one reaches its place through the world matrix; with the
    // matrix off, the targets below are mapped through it by hand.
    const QTransform world = painter->worldTransform();
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter->setWorldMatrixEnabled(false);

    const QRectF sourceRect = sourceBoundingRect(Qt::LogicalCoordinates);
    const QRectF bounds = boundingRectFor(sourceRect);
    const int x0 = qRound(bounds.x());
    const int y0 = qRound(bounds.y());
    // Only half of the position's rounding remainder goes into the size, on purpose.
    const int width = qRound(bounds.width() + (bounds.x() - x0) * 0.5);
    const int height = qRound(bounds.height() + (bounds.y() - y0) * 0.5);

    if (!keptShadowsValid(painter, sourceRect.size())) {
        // The previous set goes only once the new one stands: freed first, its memory went back to
        // the system and each new pixmap paid for fresh pages, up to twice the building time.
        QPixmap source = paddedSource();
        if (!source.isNull()) {
            auto fresh = std::make_unique<Kept>();
            // Shadows of an empty list are blank whatever the style.
            const QImage argb = smooth ? QImage() : argbOf(source);
            if (!outsideShadows.empty())
                fresh->outer = smooth ? smoothOutsideShadow(source) : outsideShadow(source, argb);
            if (!insideShadows.empty())
                fresh->inner = smooth ? smoothInsideShadow(source) : insideShadow(source, argb);
            fresh->outerBlank = fresh->outer.isNull() || isBlankPixmap(fresh->outer);
            fresh->innerBlank = fresh->inner.isNull() || isBlankPixmap(fresh->inner);
            fresh->sourceSize = sourceRect.size();
            fresh->reusable = changesAnnounced();
            fresh->source = std::move(source);
            kept = std::move(fresh);
        } else {
            forgetKept();
        }
    }
    if (kept) {
        painter->setPen(Qt::NoPen);
        drawShadowLayer(painter, world.mapRect(QRect(x0, y0, width, height)), kept->outer, kept->outerBlank, kept->source);
        drawShadowPixmap(painter, world.mapRect(QRect(QPoint(x0, y0), logicalRect(kept->source).size())), kept->source);
        drawShadowLayer(painter, world.mapRect(QRect(x0 + border, y0 + border, width - 2 * border, height - 2 * border)), kept->inner,
                        kept->innerBlank, kept->source);
    }

    painter->setWorldMatrixEnabled(true);
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->setRenderHints(hints, true);
}

QPixmap BoxShadow::blurPixmap(const QPixmap &pixmap, double radius)
{
    // The scene scales a pixmap of another pixel ratio a second time, so the blur runs on
    // device pixels with the radius scaled to match.
    const qreal ratio = pixmap.devicePixelRatio();
    QPixmap devicePixels = pixmap;
    devicePixels.setDevicePixelRatio(1.0);
    QGraphicsScene scene;
    auto *item = new QGraphicsPixmapItem(devicePixels);
    auto *blur = new QGraphicsBlurEffect;
    blur->setBlurRadius(radius * ratio);
    item->setGraphicsEffect(blur);
    scene.addItem(item);

    QImage image(devicePixels.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    // Rendering only the pixmap's own rectangle crops the blur at its edges.
    const QRect area(QPoint(0, 0), devicePixels.size());
    scene.render(&painter, area, area, Qt::KeepAspectRatio);
    painter.end();
    QPixmap result = QPixmap::fromImage(image);
    result.setDevicePixelRatio(ratio);
    return result;
}

QPixmap BoxShadow::coloredPixmap(const QColor &color, const QPixmap &pixmap)
{
    QPixmap silhouette = pixmap;
    silhouette.fill(color);
    QPainter painter(&silhouette);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawPixmap(0, 0, pixmap);
    painter.end();
    return silhouette;
}

QPixmap BoxShadow::cutShadow(QPixmap shadow, const QPixmap &cutter, int dx, int dy)
{
    QPainter painter(&shadow);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.drawPixmap(dx, dy, cutter);
    painter.end();
    return shadow;
}

QPixmap BoxShadow::paddedSource() const
{
    return sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
}

QPixmap BoxShadow::blurredLayers(const QPixmap &source, const std::vector<ShadowData> &shadows,
                                 const std::function<QPixmap(const ShadowData &)> &layerOf)
{
    QPixmap result = blankLike(source);
    QPainter painter(&result);
    preparePainter(painter);
    for (const ShadowData &shadow : shadows) {
        const QPixmap blurred = blurPixmap(layerOf(shadow), shadow.blurRadius);
        drawShadowPixmap(&painter, placed(0, 0, blurred), blurred);
    }
    painter.end();
    return result;
}

QPixmap BoxShadow::outsideShadow(const QPixmap &source, const QImage &sourceArgb)
{
    const qreal ratio = source.devicePixelRatio();
    const QBitmap shape = maskOf(sourceArgb, ratio, Qt::transparent, Qt::MaskInColor);
    QPixmap result = blurredLayers(source, outsideShadows, [&](const ShadowData &shadow) {
        QPixmap layer = blankLike(source);
        QPainter painter(&layer);
        preparePainter(painter);
        const QPixmap bits = paintedBits(shape, colorOf(shadow));
        drawShadowPixmap(&painter, placed(shadow.xOffset, shadow.yOffset, bits), bits);
        painter.end();
        return layer;
    });
    result.setMask(maskOf(sourceArgb, ratio, Qt::transparent, Qt::MaskOutColor));
    return result;
}

QPixmap BoxShadow::insideShadow(const QPixmap &source, const QImage &sourceArgb)
{
    const QBitmap shape = maskOf(sourceArgb, source.devicePixelRatio(), Qt::transparent, Qt::MaskInColor);
    QPixmap result = blurredLayers(source, insideShadows, [&](const ShadowData &shadow) {
        const QColor color = colorOf(shadow);
        // The shifted copy must differ from the shadow colour or the ring below would be the whole shape.
        const QColor contrast(color.name() == QLatin1String("#000000") ? QStringLiteral("#FFFFFF") : QStringLiteral("#000000"));
        QPixmap layer = blankLike(source);
        QPainter painter(&layer);
        preparePainter(painter);
        const QPixmap bits = paintedBits(shape, color);
        drawShadowPixmap(&painter, placed(0, 0, bits), bits);
        const QPixmap shifted = paintedBits(shape, contrast);
        drawShadowPixmap(&painter, placed(shadow.xOffset, shadow.yOffset, shifted), shifted);
        painter.end();
        // Set only where the shadow colour survived: the part of the shape the shifted copy left.
        return paintedBits(maskOf(argbOf(layer), layer.devicePixelRatio(), color, Qt::MaskOutColor), color);
    });
    result.setMask(shape);
    return result;
}

QPixmap BoxShadow::smoothOutsideShadow(const QPixmap &source)
{
    const QRect area = logicalRect(source);
    QPixmap result = blurredLayers(source, outsideShadows, [&](const ShadowData &shadow) {
        QPixmap layer = blankLike(source);
        QPainter painter(&layer);
        preparePainter(painter);
        drawShadowPixmap(&painter, area.translated(shadow.xOffset, shadow.yOffset), coloredPixmap(colorOf(shadow), source));
        painter.end();
        return layer;
    });
    // The widget's own alpha removes the shadow beneath it, keeping soft edges soft.
    QPainter painter(&result);
    preparePainter(painter);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    drawShadowPixmap(&painter, area, source);
    painter.end();
    return result;
}

QPixmap BoxShadow::smoothInsideShadow(const QPixmap &source)
{
    const QRect area = logicalRect(source);
    QPixmap result = blurredLayers(source, insideShadows, [&](const ShadowData &shadow) {
        // Inner shadows are cut at half the offset (toward zero); outer ones use the full offset.
        const QPixmap crescent = cutShadow(coloredPixmap(colorOf(shadow), source), source, shadow.xOffset / 2, shadow.yOffset / 2);
        QPixmap layer = blankLike(source);
        QPainter painter(&layer);
        preparePainter(painter);
        drawShadowPixmap(&painter, area, crescent);
        painter.end();
        return layer;
    });
    QPainter painter(&result);
    preparePainter(painter);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    drawShadowPixmap(&painter, area, source);
    painter.end();
    return result;
}

BoxShadowWrapper::BoxShadowWrapper(QWidget *parent, int border, bool customMargins, const std::vector<int> &margins, bool smooth)
    : QWidget(parent)
    , customMargins(customMargins || !margins.empty())
    , boxLayout(new QVBoxLayout(this))
    , effect(new BoxShadow(border, smooth))
{
    boxLayout->setAlignment(Qt::AlignCenter);
    if (!this->customMargins)
        boxLayout->setContentsMargins(0, 0, 0, 0);
    else if (margins.size() == 4)
        boxLayout->setContentsMargins(margins[0], margins[1], margins[2], margins[3]);
    else if (margins.size() == 2)
        boxLayout->setContentsMargins(margins[0], margins[1], margins[0], margins[1]);
}

BoxShadowWrapper::~BoxShadowWrapper()
{
    // Without a widget nobody took ownership of the effect.
    if (!widget)
        effect->deleteLater();
}

void BoxShadowWrapper::setWidget(QWidget *child)
{
    widget = child;
    widget->setGraphicsEffect(effect);
    boxLayout->addWidget(widget);
}

void BoxShadowWrapper::setInsideShadowList(std::vector<ShadowData> &&shadows)
{
    effect->setInsideShadowList(std::move(shadows));
}

void BoxShadowWrapper::setOutsideShadowList(std::vector<ShadowData> &&shadows)
{
    effect->setOutsideShadowList(std::move(shadows));
    if (!customMargins) {
        const QSize reach = effect->necessary_indentation();
        boxLayout->setContentsMargins(reach.width(), reach.height(), reach.width(), reach.height());
    }
}

void BoxShadowWrapper::setBorder(int value)
{
    effect->setBorder(value);
}

#include <lumo/sheets.h>

#include <QBitmap>
#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QVBoxLayout>

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
QBitmap maskOf(const QPixmap &pixmap, const QColor &color, Qt::MaskMode mode)
{
    QBitmap mask = pixmap.createMaskFromColor(color, mode);
    mask.setDevicePixelRatio(pixmap.devicePixelRatio());
    return mask;
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
}

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
    update();
}

void BoxShadow::setOutsideShadowList(std::vector<ShadowData> &&shadows)
{
    if (&shadows != &outsideShadows)
        outsideShadows = shadows;
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

void BoxShadow::draw(QPainter *painter)
{
    const QPainter::RenderHints hints = painter->renderHints();
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter->setWorldMatrixEnabled(false);

    const QRectF bounds = boundingRectFor(sourceBoundingRect(Qt::LogicalCoordinates));
    const int x0 = qRound(bounds.x());
    const int y0 = qRound(bounds.y());
    // Only half of the position's rounding remainder goes into the size, on purpose.
    const int width = qRound(bounds.width() + (bounds.x() - x0) * 0.5);
    const int height = qRound(bounds.height() + (bounds.y() - y0) * 0.5);

    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
    if (source.isNull()) {
        painter->setWorldMatrixEnabled(true);
        painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
        painter->setRenderHints(hints, true);
        return;
    }
    const QPixmap outer = smooth ? smoothOutsideShadow() : outsideShadow();
    const QPixmap inner = smooth ? smoothInsideShadow() : insideShadow();

    painter->setPen(Qt::NoPen);
    painter->drawPixmap(QRect(x0, y0, width, height), outer);
    painter->drawPixmap(x0, y0, source);
    painter->drawPixmap(QRect(x0 + border, y0 + border, width - 2 * border, height - 2 * border), inner);

    painter->setWorldMatrixEnabled(true);
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->setRenderHints(hints, true);
}

QPixmap BoxShadow::blurPixmap(const QPixmap &pixmap, double radius)
{
    QGraphicsScene scene;
    auto *item = new QGraphicsPixmapItem(pixmap);
    auto *blur = new QGraphicsBlurEffect;
    blur->setBlurRadius(radius);
    item->setGraphicsEffect(blur);
    scene.addItem(item);

    QImage image(pixmap.size(), QImage::Format_ARGB32);
    image.setDevicePixelRatio(pixmap.devicePixelRatio());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    // Rendering only the pixmap's own rectangle crops the blur at its edges.
    const QRect area = logicalRect(pixmap);
    scene.render(&painter, area, area, Qt::KeepAspectRatio);
    painter.end();
    return QPixmap::fromImage(image);
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

QPixmap BoxShadow::outsideShadow()
{
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
    const QBitmap shape = maskOf(source, Qt::transparent, Qt::MaskInColor);
    QPixmap result = blankLike(source);
    QPainter painter(&result);
    preparePainter(painter);
    for (const ShadowData &shadow : outsideShadows) {
        QPixmap layer = blankLike(source);
        QPainter layerPainter(&layer);
        preparePainter(layerPainter);
        layerPainter.setPen(colorOf(shadow));
        // A bitmap drawn with a pen paints its set bits in the pen colour.
        layerPainter.drawPixmap(shadow.xOffset, shadow.yOffset, shape);
        layerPainter.end();
        painter.drawPixmap(0, 0, blurPixmap(layer, shadow.blurRadius));
    }
    painter.end();

    const QPixmap again = sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
    result.setMask(maskOf(again, Qt::transparent, Qt::MaskOutColor));
    return result;
}

QPixmap BoxShadow::insideShadow()
{
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
    const QBitmap shape = maskOf(source, Qt::transparent, Qt::MaskInColor);
    QPixmap result = blankLike(source);
    QPainter painter(&result);
    preparePainter(painter);
    for (const ShadowData &shadow : insideShadows) {
        const QColor color = colorOf(shadow);
        // The shifted copy must differ from the shadow colour or the ring below would be the whole shape.
        const QColor contrast(color.name() == QLatin1String("#000000") ? QStringLiteral("#FFFFFF") : QStringLiteral("#000000"));
        QPixmap layer = blankLike(source);
        QPainter layerPainter(&layer);
        preparePainter(layerPainter);
        layerPainter.setPen(color);
        layerPainter.drawPixmap(0, 0, shape);
        layerPainter.setPen(contrast);
        layerPainter.drawPixmap(shadow.xOffset, shadow.yOffset, shape);
        layerPainter.end();

        const QBitmap ring = maskOf(layer, color, Qt::MaskOutColor);
        layer.fill(Qt::transparent);
        layerPainter.begin(&layer);
        preparePainter(layerPainter);
        layerPainter.setPen(color);
        layerPainter.drawPixmap(0, 0, ring);
        layerPainter.end();
        painter.drawPixmap(0, 0, blurPixmap(layer, shadow.blurRadius));
    }
    painter.end();
    result.setMask(shape);
    return result;
}

QPixmap BoxShadow::smoothOutsideShadow()
{
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
    const QRect area = logicalRect(source);
    QPixmap result = blankLike(source);
    QPainter painter(&result);
    preparePainter(painter);
    for (const ShadowData &shadow : outsideShadows) {
        QPixmap layer = blankLike(source);
        QPainter layerPainter(&layer);
        preparePainter(layerPainter);
        layerPainter.drawPixmap(area.translated(shadow.xOffset, shadow.yOffset), coloredPixmap(colorOf(shadow), source));
        layerPainter.end();
        painter.drawPixmap(area, blurPixmap(layer, shadow.blurRadius));
    }
    // The widget's own alpha removes the shadow beneath it, keeping soft edges soft.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.drawPixmap(area, source);
    painter.end();
    return result;
}

QPixmap BoxShadow::smoothInsideShadow()
{
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, nullptr, QGraphicsEffect::PadToEffectiveBoundingRect);
    const QRect area = logicalRect(source);
    QPixmap result = blankLike(source);
    QPainter painter(&result);
    preparePainter(painter);
    for (const ShadowData &shadow : insideShadows) {
        const QPixmap silhouette = coloredPixmap(colorOf(shadow), source);
        // Inner shadows are cut at half the offset (toward zero); outer ones use the full offset.
        const QPixmap crescent = cutShadow(silhouette, source, shadow.xOffset / 2, shadow.yOffset / 2);
        QPixmap layer = blankLike(source);
        QPainter layerPainter(&layer);
        preparePainter(layerPainter);
        layerPainter.drawPixmap(area, crescent);
        layerPainter.end();
        painter.drawPixmap(0, 0, blurPixmap(layer, shadow.blurRadius));
    }
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawPixmap(area, source);
    painter.end();
    return result;
}

BoxShadowWrapper::BoxShadowWrapper(QWidget *parent, int border, bool customMargins, const std::vector<int> &margins, bool smooth)
    : QWidget(parent)
    , customMargins(customMargins || !margins.empty())
    , layout(new QVBoxLayout(this))
    , effect(new BoxShadow(border, smooth))
{
    layout->setAlignment(Qt::AlignCenter);
    if (!this->customMargins)
        layout->setContentsMargins(0, 0, 0, 0);
    else if (margins.size() == 4)
        layout->setContentsMargins(margins[0], margins[1], margins[2], margins[3]);
    else if (margins.size() == 2)
        layout->setContentsMargins(margins[0], margins[1], margins[0], margins[1]);
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
    layout->addWidget(widget);
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
        layout->setContentsMargins(reach.width(), reach.height(), reach.width(), reach.height());
    }
}

void BoxShadowWrapper::setBorder(int value)
{
    effect->setBorder(value);
}

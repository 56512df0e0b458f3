#include <lumo/sheets.h>

#include "resources/registries_p.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPixmapCache>

namespace
{
// QFrame puts its contents margins back to its frame width whenever it is polished,
// re-parented or restyled, which may well happen before the sheet is shown and sized:
// the shadow band is restored the moment they change.
class ShadowBandKeeper : public QObject
{
public:
    ShadowBandKeeper(QWidget *sheet, int margin)
        : QObject(sheet)
        , band(margin, margin, margin, margin)
    {
        sheet->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ContentsRectChange) {
            auto *sheet = static_cast<QWidget *>(watched);
            if (sheet->contentsMargins() != band)
                sheet->setContentsMargins(band);
        }
        return false;
    }

private:
    const QMargins band;
};
}

LumoSheet::LumoSheet(QWidget *parent)
    : QFrame(parent)
    , shadowMargin(lumo::scaled(22))
{
    setContentsMargins(shadowMargin, shadowMargin, shadowMargin, shadowMargin);
    new ShadowBandKeeper(this, shadowMargin);
    // Keeps the size of its content inside a mask's layout instead of filling the window.
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

LumoSheet::~LumoSheet() = default;

void LumoSheet::setWidget(QWidget *widget)
{
    delete layout();
    auto *box = new QHBoxLayout(this);
    box->addWidget(widget, 0, Qt::AlignCenter);
    updateGeometry();
    adjustSize();
}

void LumoSheet::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    drawShadow(painter);
    const int m = shadowMargin;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRect(QRect(QPoint(m, m), QPoint(width() - 1 - m, height() - 1 - m)));
}

void LumoSheet::showEvent(QShowEvent *event)
{
    // Subclasses may have changed the margins; the shadow band needs them back.
    setContentsMargins(shadowMargin, shadowMargin, shadowMargin, shadowMargin);
    QFrame::showEvent(event);
}

namespace
{
// An edge tile stretched to @p size logical pixels, keeping the tile's pixel ratio.
// Sheets repaint at one size far more often than they resize, so the stretched
// tile is kept in QPixmapCache under the tile's identity, the size and the ratio.
QPixmap stretched(const QPixmap &tile, const QSize &size)
{
    const qreal ratio = tile.devicePixelRatio();
    const QString key = QStringLiteral("lumo-sheet-edge:%1:%2x%3@%4").arg(tile.cacheKey()).arg(size.width()).arg(size.height()).arg(ratio);
    QPixmap result;
    if (QPixmapCache::find(key, &result))
        return result;
    result = tile.scaled(size * ratio, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    result.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, result);
    return result;
}
}

void LumoSheet::drawShadow(QPainter &painter)
{
    const QPixmap left = getGlobalImage("bg_tutorial_l", ImageManager::Normal);
    const QPixmap right = getGlobalImage("bg_tutorial_r", ImageManager::Normal);
    const QPixmap top = getGlobalImage("bg_tutorial_t", ImageManager::Normal);
    const QPixmap bottom = getGlobalImage("bg_tutorial_b", ImageManager::Normal);
    const QPixmap leftTop = getGlobalImage("bg_tutorial_lt", ImageManager::Normal);
    const QPixmap rightTop = getGlobalImage("bg_tutorial_rt", ImageManager::Normal);
    const QPixmap leftBottom = getGlobalImage("bg_tutorial_lb", ImageManager::Normal);
    const QPixmap rightBottom = getGlobalImage("bg_tutorial_rb", ImageManager::Normal);

    const int m = shadowMargin;
    const int w = width();
    const int h = height();
    painter.drawPixmap(QRect(0, 0, m, m), leftTop);
    painter.drawPixmap(QRect(w - m, 0, m, m), rightTop);
    painter.drawPixmap(QRect(0, h - m, m, m), leftBottom);
    painter.drawPixmap(QRect(w - m, h - m, m, m), rightBottom);
    // A sheet narrower than 2 * m gives negative sizes here; the tiles are then skipped by Qt.
    painter.drawPixmap(QRect(0, m, m, h - 2 * m), stretched(left, QSize(m, h - 2 * m)));
    painter.drawPixmap(QRect(w - m, m, m, h - 2 * m), stretched(right, QSize(m, h - 2 * m)));
    painter.drawPixmap(QRect(m, 0, w - 2 * m, m), stretched(top, QSize(w - 2 * m, m)));
    painter.drawPixmap(QRect(m, h - m, w - 2 * m, m), stretched(bottom, QSize(w - 2 * m, m)));
}

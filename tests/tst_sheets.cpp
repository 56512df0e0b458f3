// Sheet frame, dimming mask, box shadow and the mouse filters: reach arithmetic,
// margins, mask geometry and lifetime, and the pixels the shadows really paint.

#include "testsupport.h"

#include <lumo/lumo.h>

#include <QBitmap>
#include <QDialogButtonBox>
#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmapCache>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>
#include <variant>

using Shadows = std::vector<ShadowData>;
using Margins = std::vector<int>;
Q_DECLARE_METATYPE(Shadows)
Q_DECLARE_METATYPE(Margins)

namespace
{
const QColor veil(0, 0, 0, 20);

// A white window of @p size, shown and exposed.
std::unique_ptr<QWidget> makeWindow(QSize size = QSize(400, 300))
{
    auto window = std::make_unique<QWidget>();
    window->setPalette(QPalette(Qt::white));
    window->setAutoFillBackground(true);
    window->resize(size);
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get()))
        qWarning("window not exposed");
    return window;
}

// Grey level of the logical pixel (x, y) of @p image, rendered at any pixel ratio.
int greyAt(const QImage &image, int x, int y)
{
    const qreal ratio = image.devicePixelRatio();
    return qGray(image.pixel(int((x + 0.5) * ratio), int((y + 0.5) * ratio)));
}

// A 200 x 160 white window with a white child at (60, 50), 80 x 60, carrying a new BoxShadow.
QImage renderShadow(int border, bool smooth, Shadows outside, Shadows inside, int setBorder = INT_MIN)
{
    auto *effect = new BoxShadow(border, smooth);
    effect->setOutsideShadowList(std::move(outside));
    effect->setInsideShadowList(std::move(inside));
    if (setBorder != INT_MIN)
        effect->setBorder(setBorder);
    auto window = makeWindow(QSize(200, 160));
    auto *widget = new QWidget(window.get());
    widget->setAutoFillBackground(true);
    widget->setGeometry(60, 50, 80, 60);
    widget->setGraphicsEffect(effect);
    widget->show();
    return window->grab().toImage();
}

// @p widget alone, on a transparent background.
QImage renderAlone(QWidget *widget)
{
    const qreal ratio = widget->devicePixelRatioF();
    QImage image(widget->size() * ratio, QImage::Format_ARGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    widget->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

// The designed shadow steps done the plain way, for comparison with the library's painting: a
// graphics scene per blur, 1-bit masks of the shape, QPainter composition modes. Blurs run on
// device pixels with the radius scaled to match, and bitmaps are filled rather than drawn with a
// pen, as the raster engine misplaces both on high-DPI pixmaps.
namespace designed
{
QPixmap blank(const QPixmap &like)
{
    QPixmap pixmap(like.size());
    pixmap.setDevicePixelRatio(like.devicePixelRatio());
    pixmap.fill(Qt::transparent);
    return pixmap;
}

QBitmap mask(const QPixmap &pixmap, const QColor &color, Qt::MaskMode mode)
{
    QBitmap bits = pixmap.createMaskFromColor(color, mode);
    bits.setDevicePixelRatio(pixmap.devicePixelRatio());
    return bits;
}

QPixmap bitsIn(const QBitmap &bits, const QColor &color)
{
    QPixmap pixmap(bits.size());
    pixmap.setDevicePixelRatio(bits.devicePixelRatio());
    pixmap.fill(color);
    pixmap.setMask(bits);
    return pixmap;
}

QPixmap blur(const QPixmap &pixmap, double radius)
{
    QPixmap device = pixmap;
    device.setDevicePixelRatio(1.0);
    QGraphicsScene scene;
    auto *item = scene.addPixmap(device);
    auto *effect = new QGraphicsBlurEffect;
    effect->setBlurRadius(radius * pixmap.devicePixelRatio());
    item->setGraphicsEffect(effect);
    QImage image(device.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.render(&painter, image.rect(), image.rect(), Qt::KeepAspectRatio);
    painter.end();
    QPixmap result = QPixmap::fromImage(image);
    result.setDevicePixelRatio(pixmap.devicePixelRatio());
    return result;
}

// Paints @p pixmap onto @p target with the effect's hints, or composes it in with @p mode: into a
// rectangle, or at a point at its own size.
void paint(QPixmap &target, const std::variant<QRect, QPoint> &place, const QPixmap &pixmap,
           QPainter::CompositionMode mode = QPainter::CompositionMode_SourceOver, const QRect &clip = QRect())
{
    QPainter painter(&target);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(mode);
    if (clip.isValid())
        painter.setClipRect(clip);
    if (const auto *rect = std::get_if<QRect>(&place))
        painter.drawPixmap(*rect, pixmap);
    else
        painter.drawPixmap(std::get<QPoint>(place), pixmap);
}

QPixmap silhouette(const QColor &color, const QPixmap &source)
{
    QPixmap result = source;
    result.fill(color);
    paint(result, QPoint(), source, QPainter::CompositionMode_DestinationIn);
    return result;
}

// Outer (inside false) or inner shadows of @p source in the chosen style.
QPixmap shadows(const QPixmap &source, const Shadows &list, bool smooth, bool inside)
{
    const QRect area(QPoint(), source.deviceIndependentSize().toSize());
    const QBitmap shape = mask(source, Qt::transparent, Qt::MaskInColor);
    QPixmap result = blank(source);
    for (const ShadowData &s : list) {
        const QColor color(QString::fromStdString(s.color));
        QPixmap layer = blank(source);
        if (smooth && !inside) {
            paint(layer, area.translated(s.xOffset, s.yOffset), silhouette(color, source));
        } else if (smooth) {
            QPixmap crescent = silhouette(color, source);
            paint(crescent, QPoint(s.xOffset / 2, s.yOffset / 2), source, QPainter::CompositionMode_DestinationOut);
            paint(layer, area, crescent);
        } else if (!inside) {
            paint(layer, QPoint(s.xOffset, s.yOffset), bitsIn(shape, color));
        } else {
            const QColor contrast(color.name() == QLatin1String("#000000") ? "#FFFFFF" : "#000000");
            paint(layer, QPoint(), bitsIn(shape, color));
            paint(layer, QPoint(s.xOffset, s.yOffset), bitsIn(shape, contrast));
            layer = bitsIn(mask(layer, color, Qt::MaskOutColor), color);
        }
        paint(result, QPoint(), blur(layer, s.blurRadius));
    }
    if (smooth)
        paint(result, area, source, inside ? QPainter::CompositionMode_DestinationIn : QPainter::CompositionMode_DestinationOut);
    else
        result.setMask(inside ? shape : mask(source, Qt::transparent, Qt::MaskOutColor));
    return result;
}

// @p window as it looks with @p widget under a BoxShadow of these settings, painted the designed way.
QImage render(QWidget *window, QWidget *widget, bool smooth, const Shadows &outside, const Shadows &inside, int border)
{
    QSize reach(0, 0);
    for (const ShadowData &s : outside)
        reach = reach.expandedTo(QSize(int(2 * s.blurRadius) + std::abs(s.xOffset), int(2 * s.blurRadius) + std::abs(s.yOffset)));
    const QRect bounds = widget->rect().adjusted(-reach.width(), -reach.height(), reach.width(), reach.height());
    const qreal ratio = window->devicePixelRatioF();
    QPixmap source(bounds.size() * ratio);
    source.setDevicePixelRatio(ratio);
    source.fill(Qt::transparent);
    widget->graphicsEffect()->setEnabled(false);
    widget->render(&source, -bounds.topLeft(), QRegion(), QWidget::DrawChildren);
    widget->hide();
    QPixmap result = window->grab();
    widget->show();
    widget->graphicsEffect()->setEnabled(true);
    const QRect target = bounds.translated(widget->pos());
    paint(result, target, shadows(source, outside, smooth, false));
    paint(result, QRect(target.topLeft(), bounds.size()), source);
    // Like any effect, the shadows stay inside the effect's bounding rectangle, even with a negative border.
    paint(result, target.adjusted(border, border, -border, -border), shadows(source, inside, smooth, true),
          QPainter::CompositionMode_SourceOver, target);
    return result.toImage();
}
}

// Records the mouse button events that reach it.
class Recorder : public QWidget
{
public:
    QList<QEvent::Type> seen;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() >= QEvent::MouseButtonPress && event->type() <= QEvent::MouseButtonDblClick)
            seen << event->type();
        return QWidget::event(event);
    }
};
}

class TestSheets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { testsupport::startWithDefaultTheme(userData); }
    void cleanup() { QTRY_VERIFY(QApplication::topLevelWidgets().isEmpty()); }

    void reach_data()
    {
        QTest::addColumn<Shadows>("outside");
        QTest::addColumn<QSize>("reach");
        QTest::newRow("empty") << Shadows {} << QSize(0, 0);
        QTest::newRow("blur truncated") << Shadows {{2.6, -3, 5, "black"}} << QSize(8, 10);
        QTest::newRow("below one pixel") << Shadows {{0.49, 0, 0, "black"}} << QSize(0, 0);
        QTest::newRow("negative blur toward zero") << Shadows {{-0.7, 3, -4, "black"}} << QSize(2, 3);
        QTest::newRow("largest per axis") << Shadows {{1.5, 0, 6, "black"}, {4.9, -2, 0, "#80ff0000"}} << QSize(11, 9);
    }

    void reach()
    {
        QFETCH(Shadows, outside);
        QFETCH(QSize, reach);
        BoxShadow effect(0, false);
        effect.setOutsideShadowList(std::move(outside));
        // Inner shadows never count.
        effect.setInsideShadowList({{30.0, 40, 40, "black"}});
        QCOMPARE(effect.necessary_indentation(), reach);
        const QRectF source(10, 20, 30, 40);
        QCOMPARE(effect.boundingRectFor(source), source.adjusted(-reach.width(), -reach.height(), reach.width(), reach.height()));
    }

    void borderClampedOnlyBySetter()
    {
        const Shadows outside {{5.0, 0, 0, "#00000000"}}; // room around the widget, nothing painted
        const Shadows inside {{1.0, 8, 8, "#203040"}};
        const QImage plain = renderShadow(0, false, outside, inside);
        QVERIFY(renderShadow(-10, false, outside, inside) != plain);
        QCOMPARE(renderShadow(7, false, outside, inside, -10), plain);
    }

    void wrapperMargins_data()
    {
        QTest::addColumn<bool>("custom");
        QTest::addColumn<Margins>("margins");
        QTest::addColumn<QMargins>("expected");
        QTest::addColumn<bool>("followsReach");
        QWidget reference;
        const QMargins standard = (new QVBoxLayout(&reference))->contentsMargins(); // the style's default
        QTest::newRow("derived") << false << Margins {} << QMargins(0, 0, 0, 0) << true;
        QTest::newRow("custom, no list") << true << Margins {} << standard << false;
        QTest::newRow("two values") << false << Margins {3, 4} << QMargins(3, 4, 3, 4) << false;
        QTest::newRow("four values") << true << Margins {1, 2, 3, 4} << QMargins(1, 2, 3, 4) << false;
        QTest::newRow("three values") << false << Margins {1, 2, 3} << standard << false;
        QTest::newRow("one value") << true << Margins {9} << standard << false;
    }

    void wrapperMargins()
    {
        QFETCH(bool, custom);
        QFETCH(Margins, margins);
        QFETCH(QMargins, expected);
        QFETCH(bool, followsReach);
        BoxShadowWrapper wrapper(nullptr, 2, custom, margins, true);
        QLayout *box = wrapper.layout();
        QCOMPARE(box->contentsMargins(), expected);
        auto *child = new QWidget;
        wrapper.setWidget(child);
        QVERIFY(qobject_cast<BoxShadow *>(child->graphicsEffect()));
        wrapper.setOutsideShadowList({{2.6, -3, 5, "black"}});
        QCOMPARE(box->contentsMargins(), followsReach ? QMargins(8, 10, 8, 10) : expected);
        // Nothing owns the effect of a wrapper that never gets a widget; the sanitizer run reports a leak otherwise.
        BoxShadowWrapper(nullptr, 0, custom, margins, false).setOutsideShadowList({{3.0, 1, 1, "black"}});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // Shown and hidden with its content (the sheets' result-code tests watch that); sized to the window.
    void maskCoversWindowAndFollowsIt()
    {
        auto window = makeWindow();
        QCOMPARE(LumoMask::createMask(nullptr, window.get(), veil), nullptr);
        auto orphan = std::make_unique<QWidget>();
        QCOMPARE(LumoMask::createMask(orphan.get(), nullptr, veil), nullptr);
        QCOMPARE(orphan->parentWidget(), nullptr);
        auto *panel = new QWidget(window.get());
        panel->setGeometry(10, 10, 100, 80);
        panel->show();
        auto *content = new QWidget(panel);
        content->setFixedSize(100, 60);
        // Without a parent the content's own parent is used, yet the mask covers the whole window.
        QCOMPARE(LumoMask::createMask(content, nullptr, veil), content);
        QWidget *mask = content->parentWidget();
        QCOMPARE(mask->parentWidget(), panel);
        content->show();
        QCOMPARE(mask->size(), QSize(400, 300));
        QCOMPARE(greyAt(window->grab().toImage(), 20, 20), 235); // white under a black veil of alpha 20
        window->resize(500, 360);
        panel->resize(90, 70); // the watched parent's resize brings back the window's size
        QTRY_COMPARE(mask->size(), QSize(500, 360));
    }

    void shadowsPaintWhereDesigned_data()
    {
        QTest::addColumn<bool>("smooth");
        QTest::addColumn<QString>("color");
        QTest::newRow("mask, black by name") << false << QStringLiteral("black");
        QTest::newRow("mask, black") << false << QStringLiteral("#000000");
        QTest::newRow("mask, blue") << false << QStringLiteral("#102040");
        QTest::newRow("smooth, black") << true << QStringLiteral("black");
        QTest::newRow("smooth, blue") << true << QStringLiteral("#102040");
    }

    void shadowsPaintWhereDesigned()
    {
        QFETCH(bool, smooth);
        QFETCH(QString, color);
        const ShadowData data {2.0, 6, 6, color.toStdString()};
        // The child covers logical (60, 50) to (139, 109).
        const QImage outer = renderShadow(0, smooth, {data}, {});
        QVERIFY(greyAt(outer, 145, 115) < 200); // below right of the widget
        QCOMPARE(greyAt(outer, 55, 45), 255); // the shadow is offset away from here
        QCOMPARE(greyAt(outer, 100, 80), 255); // never over the widget

        const QImage inner = renderShadow(0, smooth, {}, {data});
        QVERIFY(greyAt(inner, 61, 80) < 200); // inside the left edge
        QVERIFY(greyAt(inner, 100, 51) < 200); // inside the top edge
        // A black shadow keeps its ring: its shifted copy is drawn in white.
        QCOMPARE(greyAt(inner, 100, 80), 255);
        QCOMPARE(greyAt(inner, 138, 108), 255);
        QCOMPARE(greyAt(inner, 58, 80), 255); // never outside the widget
        QCOMPARE(greyAt(inner, 145, 115), 255);
    }

    void shadowsMatchTheDesignedSteps_data()
    {
        QTest::addColumn<bool>("smooth");
        QTest::addColumn<Shadows>("outside");
        QTest::addColumn<Shadows>("inside");
        QTest::addColumn<int>("border");
        QTest::addColumn<bool>("filled");
        QTest::addColumn<QSize>("size");
        const Shadows card {{9.0, 0, 5, "#400B1A33"}};
        const Shadows two {{3.0, -3, 1, "#380B1A33"}, {2.6, 1, -5, "#C0102040"}};
        const Shadows odd {{1.3, 3, -7, "red"}};
        const Shadows inner {{4.0, 3, -5, "#8C98A8"}, {1.5, -1, 3, "black"}};
        // An odd size leaves a fraction of a pixel at scale 1.5. Where a border stretches the inner
        // shadows, Qt's own rounding then depends on the painter's clip, which a test cannot copy.
        const QSize oddSize(161, 81);
        const QSize evenSize(160, 80);
        for (bool smooth : {false, true}) {
            const char *style = smooth ? "smooth" : "mask";
            QTest::addRow("%s, card", style) << smooth << card << Shadows() << 0 << true << oddSize;
            QTest::addRow("%s, card of glyphs", style) << smooth << card << Shadows() << 0 << false << oddSize;
            QTest::addRow("%s, both, negative border", style) << smooth << two << inner << -3 << false << evenSize;
            QTest::addRow("%s, both, border 2", style) << smooth << two << inner << 2 << true << evenSize;
            QTest::addRow("%s, odd reach, inner only", style) << smooth << odd << inner << 0 << false << oddSize;
            QTest::addRow("%s, inner only", style) << smooth << Shadows() << inner << 1 << true << evenSize;
        }
    }

    // Every paint equals the designed steps: the first, one from what was kept, and those after the
    // content, the lists or the visibility changed.
    void shadowsMatchTheDesignedSteps()
    {
        QFETCH(bool, smooth);
        QFETCH(Shadows, outside);
        QFETCH(Shadows, inside);
        QFETCH(int, border);
        QFETCH(bool, filled);
        QFETCH(QSize, size);
        auto window = makeWindow(QSize(220, 140));
        auto *widget = new QWidget(window.get()); // without a background the label's glyphs are the shape
        widget->setAutoFillBackground(filled);
        widget->setGeometry(QRect(QPoint(31, 29), size));
        auto *label = new QLabel(QStringLiteral("Ab"), widget);
        label->setGeometry(8, 8, 144, 64);
        QFont font = label->font();
        font.setPixelSize(40);
        label->setFont(font);
        auto *effect = new BoxShadow(border, smooth);
        effect->setOutsideShadowList(Shadows(outside));
        effect->setInsideShadowList(Shadows(inside));
        widget->setGraphicsEffect(effect);
        widget->show();

        const QImage first = window->grab().toImage();
        QCOMPARE(window->grab().toImage(), first);
        QCOMPARE(first, designed::render(window.get(), widget, smooth, outside, inside, border));

        QCOMPARE(window->grab().toImage(), first); // kept again, then the content changes
        label->setText(QStringLiteral("Wy"));
        const QImage changed = window->grab().toImage();
        QVERIFY(changed != first);
        QCOMPARE(changed, designed::render(window.get(), widget, smooth, outside, inside, border));

        // Nothing is marked dirty in a hidden window: what changed meanwhile shows once it is back.
        window->hide();
        QCOMPARE(window->grab().toImage(), changed);
        label->setText(QStringLiteral("Ab"));
        window->show();
        QCOMPARE(window->grab().toImage(), first);

        // A new inner list leaves the reach, and so the source's pixels, as they were.
        effect->setInsideShadowList(Shadows(outside));
        QCOMPARE(window->grab().toImage(), designed::render(window.get(), widget, smooth, outside, outside, border));
    }

    // On a graphics item the kept shadows follow the item's updates as well.
    void shadowOnItemFollowsTheItem()
    {
        auto render = [](QGraphicsScene &scene) {
            QImage image(200, 160, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::white);
            QPainter painter(&image);
            scene.render(&painter, image.rect(), scene.sceneRect());
            return image;
        };
        auto addCard = [](QGraphicsScene &scene, const QColor &color) {
            scene.setSceneRect(0, 0, 200, 160);
            auto *item = scene.addRect(60, 50, 80, 60, Qt::NoPen, color);
            auto *effect = new BoxShadow(0, false);
            effect->setOutsideShadowList({{4.0, 3, 3, "black"}});
            item->setGraphicsEffect(effect);
            return item;
        };
        QGraphicsScene scene;
        QGraphicsRectItem *item = addCard(scene, Qt::white);
        const QImage first = render(scene);
        QCOMPARE(render(scene), first);
        item->setBrush(QColor(0x8c98a8)); // the same shape in another colour
        QGraphicsScene fresh;
        addCard(fresh, QColor(0x8c98a8));
        const QImage changed = render(scene);
        QVERIFY(changed != first);
        QCOMPARE(changed, render(fresh));
    }

    void smoothInnerCutsAtHalfOffsetTowardZero()
    {
        // Offset -5 cuts at -2 (toward zero, not -3): only the two rightmost columns stay.
        const QImage image = renderShadow(0, true, {}, {{0.0, -5, 0, "black"}});
        QCOMPARE(greyAt(image, 139, 80), 0);
        QCOMPARE(greyAt(image, 138, 80), 0);
        QCOMPARE(greyAt(image, 137, 80), 255);
    }

    void mouseFilters_data()
    {
        QTest::addColumn<bool>("releaseOnly");
        QTest::addColumn<QList<QEvent::Type>>("swallowed");
        QTest::newRow("button filter") << false
                                       << QList<QEvent::Type> {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                                               QEvent::MouseButtonDblClick};
        QTest::newRow("release filter") << true << QList<QEvent::Type> {QEvent::MouseButtonRelease};
    }

    void mouseFilters()
    {
        QFETCH(bool, releaseOnly);
        QFETCH(QList<QEvent::Type>, swallowed);
        auto window = makeWindow();
        auto *plain = new Recorder;
        auto *filtered = new Recorder;
        auto *row = new QHBoxLayout(window.get());
        row->addWidget(plain);
        row->addWidget(filtered);
        std::unique_ptr<QObject> filter(releaseOnly ? static_cast<QObject *>(new MouseReleaseFilter) : new MouseButtonFilter);
        filtered->installEventFilter(filter.get());
        QTRY_VERIFY(filtered->width() > 20);

        for (Recorder *target : {plain, filtered}) {
            QTest::mouseClick(target, Qt::LeftButton);
            QTest::mouseDClick(target, Qt::RightButton);
        }
        for (QEvent::Type type : swallowed)
            QVERIFY(plain->seen.contains(type));
        QList<QEvent::Type> expected = plain->seen;
        expected.removeIf([&](QEvent::Type type) { return swallowed.contains(type); });
        QCOMPARE(filtered->seen, expected);
    }

    void sheetBand_data()
    {
        QTest::addColumn<bool>("masked");
        QTest::newRow("over a mask") << true;
        QTest::newRow("without a mask") << false;
    }

    // Re-parenting, polishing and restyling reset a frame's margins; the shadow band stays in every state.
    void sheetBand()
    {
        QFETCH(bool, masked);
        const int m = int(22 * testsupport::expectedScale());
        const QMargins band(m, m, m, m);
        auto window = makeWindow(QSize(1200, 800));
        auto *sheet = new LumoSheet(window.get());
        QCOMPARE(sheet->contentsMargins(), band);
        auto *body = new QWidget;
        body->setFixedSize(200, 120);
        sheet->setWidget(body);
        if (masked)
            LumoMask::createMask(sheet, window.get(), veil);
        sheet->show();
        sheet->setStyleSheet(QStringLiteral("QWidget { color: red; }"));
        QCOMPARE(sheet->contentsMargins(), band);
        QTRY_COMPARE(sheet->size(), body->size().grownBy(sheet->layout()->contentsMargins() + band));
        QVERIFY(!masked || sheet->geometry().center() == sheet->parentWidget()->rect().center());

        // Rendered without a background: the band's pixels are the tiles' own, fading outward.
        const QImage image = renderAlone(sheet);
        const int y = sheet->height() / 2;
        const auto pixelAt = [&](int x) {
            return image.pixel(int((x + 0.5) * image.devicePixelRatio()), int((y + 0.5) * image.devicePixelRatio()));
        };
        for (int x : {m, sheet->width() / 2, sheet->width() - m - 1})
            QCOMPARE(pixelAt(x), qRgb(255, 255, 255)); // opaque white
        for (int x : {m - 1, sheet->width() - m})
            QVERIFY(qAlpha(pixelAt(x)) > 0 && qAlpha(pixelAt(x)) < 255);
        QVERIFY(qAlpha(pixelAt(m / 2)) < qAlpha(pixelAt(m - 1)));

        // An input sheet shown without a mask has its buttons inside the band.
        auto *input = new LumoInputSheet(QStringLiteral("Name"), window.get());
        input->showSheet();
        QVERIFY(input->rect().marginsRemoved(band).contains(input->findChild<QDialogButtonBox *>()->geometry()));
    }

    void sheetBandFromCacheMatchesUncached()
    {
        auto window = makeWindow(QSize(500, 400));
        auto *sheet = new LumoSheet(window.get());
        const QList<QSize> sizes {{260, 180}, {331, 203}, {260, 180}};
        QList<QImage> cached; // each size painted twice: stretching and keeping, then reusing
        for (QSize size : sizes) {
            sheet->resize(size);
            cached << renderAlone(sheet) << renderAlone(sheet);
        }
        const int limit = QPixmapCache::cacheLimit();
        QPixmapCache::setCacheLimit(0); // empties the cache and keeps nothing: every tile is stretched anew
        for (qsizetype i = 0; i < sizes.size(); ++i) {
            sheet->resize(sizes[i]);
            const QImage uncached = renderAlone(sheet);
            QCOMPARE(cached[2 * i], uncached);
            QCOMPARE(cached[2 * i + 1], uncached);
        }
        QPixmapCache::setCacheLimit(limit);
    }

private:
    QTemporaryDir userData;
};

QTEST_MAIN(TestSheets)
#include "tst_sheets.moc"

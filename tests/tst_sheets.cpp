// Sheet frame, dimming mask, box shadow and the mouse filters: reach arithmetic,
// margins, mask geometry and lifetime, and the pixels the shadows really paint.

#include "testsupport.h"

#include <lumo/lumo.h>

#include <QLayout>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using Shadows = std::vector<ShadowData>;
using Margins = std::vector<int>;
Q_DECLARE_METATYPE(Shadows)
Q_DECLARE_METATYPE(Margins)

namespace
{
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

// A white child of @p parent carrying @p effect at (60, 50), 80 x 60 logical pixels.
QWidget *decorated(QWidget *parent, QGraphicsEffect *effect)
{
    auto *widget = new QWidget(parent);
    widget->setPalette(QPalette(Qt::white));
    widget->setAutoFillBackground(true);
    widget->setGeometry(60, 50, 80, 60);
    widget->setGraphicsEffect(effect);
    widget->show();
    return widget;
}

// Grey level of the logical pixel (x, y) of @p image (rendered at any pixel ratio).
int greyAt(const QImage &image, int x, int y)
{
    const qreal ratio = image.devicePixelRatio();
    return qGray(image.pixel(int((x + 0.5) * ratio), int((y + 0.5) * ratio)));
}

QImage rendered(QWidget *widget)
{
    return widget->grab().toImage();
}

// Renders a 200 x 160 white window whose decorated child carries a shadow built by @p make.
QImage renderEffect(const std::function<BoxShadow *()> &make)
{
    auto window = makeWindow(QSize(200, 160));
    decorated(window.get(), make());
    return rendered(window.get());
}

BoxShadow *shadow(int border, bool smooth, Shadows outside, Shadows inside)
{
    auto *effect = new BoxShadow(border, smooth);
    effect->setOutsideShadowList(std::move(outside));
    effect->setInsideShadowList(std::move(inside));
    return effect;
}

// Records the mouse button events that reach it.
class Recorder : public QWidget
{
public:
    QList<QEvent::Type> seen;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease ||
            event->type() == QEvent::MouseButtonDblClick)
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

    void sheetMarginFollowsScale()
    {
        const QMap<double, int> expected {{1.0, 22}, {1.5, 33}, {2.0, 44}};
        LumoSheet sheet(nullptr);
        const int m = expected.value(testsupport::expectedScale());
        QCOMPARE(sheet.contentsMargins(), QMargins(m, m, m, m));
        sheet.setContentsMargins(1, 2, 3, 4);
        sheet.show();
        QCOMPARE(sheet.contentsMargins(), QMargins(m, m, m, m));
    }

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
        const QImage plain = renderEffect([&] { return shadow(0, false, Shadows(outside), Shadows(inside)); });
        const QImage kept = renderEffect([&] { return shadow(-10, false, Shadows(outside), Shadows(inside)); });
        const QImage clamped = renderEffect([&] {
            BoxShadow *effect = shadow(7, false, Shadows(outside), Shadows(inside));
            effect->setBorder(-10);
            return effect;
        });
        QVERIFY(kept != plain);
        QCOMPARE(clamped, plain);
    }

    void wrapperMargins_data()
    {
        QTest::addColumn<bool>("custom");
        QTest::addColumn<Margins>("margins");
        QTest::addColumn<QMargins>("expected"); // (-1, ...) = the layout's default margins
        QTest::addColumn<bool>("followsReach");
        const QMargins standard(-1, -1, -1, -1);
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
        QWidget reference;
        const QMargins standard = (new QVBoxLayout(&reference))->contentsMargins();
        if (expected.left() < 0)
            expected = standard;

        BoxShadowWrapper wrapper(nullptr, 2, custom, margins, true);
        QLayout *box = static_cast<QWidget &>(wrapper).layout(); // the wrapper's field hides layout()
        QCOMPARE(box->contentsMargins(), expected);
        QCOMPARE(box->alignment(), Qt::AlignCenter);
        auto *child = new QWidget;
        wrapper.setWidget(child);
        QCOMPARE(child->parentWidget(), &wrapper);
        QVERIFY(qobject_cast<BoxShadow *>(child->graphicsEffect()));
        wrapper.setOutsideShadowList({{2.6, -3, 5, "black"}});
        QCOMPARE(box->contentsMargins(), followsReach ? QMargins(8, 10, 8, 10) : expected);
    }

    void wrapperWithoutWidgetReleasesEffect()
    {
        // Nothing owns the effect until a widget takes it; the sanitizer build reports a leak otherwise.
        auto *wrapper = new BoxShadowWrapper(nullptr, 0, false, {}, false);
        wrapper->setOutsideShadowList({{3.0, 1, 1, "black"}});
        delete wrapper;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void createMaskRefusals()
    {
        auto orphan = std::make_unique<QWidget>();
        QCOMPARE(LumoMask::createMask(nullptr, orphan.get(), QColor(0, 0, 0, 20)), nullptr);
        QCOMPARE(LumoMask::createMask(orphan.get(), nullptr, QColor(0, 0, 0, 20)), nullptr);
        QCOMPARE(orphan->parentWidget(), nullptr);
        QVERIFY(orphan->findChildren<LumoMask *>().isEmpty());
    }

    void maskCoversWindowAndFollowsIt()
    {
        auto window = makeWindow();
        auto *panel = new QWidget(window.get());
        panel->setGeometry(10, 10, 100, 80);
        panel->show();
        auto *inPanel = new QWidget(panel);
        // Without a parent the content's own parent is used, yet the mask covers the whole window.
        QCOMPARE(LumoMask::createMask(inPanel, nullptr, QColor(0, 0, 0, 20)), inPanel);
        auto *panelMask = qobject_cast<LumoMask *>(inPanel->parentWidget());
        QVERIFY(panelMask);
        QCOMPARE(panelMask->parentWidget(), panel);
        QCOMPARE(panelMask->size(), QSize(400, 300));
        panelMask->setFixedSize(10, 10);
        panel->resize(90, 70); // the watched parent's resize brings back the window's size
        QCOMPARE(panelMask->size(), QSize(400, 300));

        auto *sheet = new QWidget(window.get());
        LumoMask::createMask(sheet, window.get(), QColor(0, 0, 0, 20));
        QWidget *mask = sheet->parentWidget();
        window->resize(500, 360);
        QTRY_COMPARE(mask->size(), QSize(500, 360));
    }

    void maskShownAndHiddenWithContentAndStacked()
    {
        auto window = makeWindow();
        auto *first = new QWidget(window.get());
        first->setFixedSize(100, 60);
        auto *second = new QWidget(window.get());
        second->setFixedSize(80, 40);
        QCOMPARE(LumoMask::createMask(first, window.get(), QColor(0, 0, 0, 20)), first);
        QCOMPARE(LumoMask::createMask(second, window.get(), QColor(0, 0, 0, 20)), second);
        QWidget *lower = first->parentWidget();
        QWidget *upper = second->parentWidget();
        QVERIFY(!lower->isVisible());

        first->show();
        QVERIFY(lower->isVisible());
        QCOMPARE(first->geometry().center(), lower->rect().center());
        QCOMPARE(greyAt(rendered(window.get()), 2, 2), 235); // white under a black veil of alpha 20

        second->show();
        QVERIFY(upper->isVisible());
        QVERIFY(window->children().indexOf(upper) > window->children().indexOf(lower));
        QCOMPARE(window->childAt(2, 2), upper);
        QVERIFY(greyAt(rendered(window.get()), 2, 2) < 235); // the veils add up

        first->hide();
        QVERIFY(!lower->isVisible());
        QVERIFY(upper->isVisible());
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
        const QImage outer = renderEffect([&] { return shadow(0, smooth, {data}, {}); });
        QVERIFY(greyAt(outer, 145, 115) < 200); // below right of the widget
        QCOMPARE(greyAt(outer, 55, 45), 255); // the shadow is offset away from here
        QCOMPARE(greyAt(outer, 100, 80), 255); // never over the widget
        QCOMPARE(greyAt(outer, 5, 5), 255);

        const QImage inner = renderEffect([&] { return shadow(0, smooth, {}, {data}); });
        QVERIFY(greyAt(inner, 61, 80) < 200); // inside the left edge
        QVERIFY(greyAt(inner, 100, 51) < 200); // inside the top edge
        // A black shadow keeps its ring: its shifted copy is drawn in white.
        QCOMPARE(greyAt(inner, 100, 80), 255);
        QCOMPARE(greyAt(inner, 138, 108), 255);
        QCOMPARE(greyAt(inner, 58, 80), 255); // never outside the widget
        QCOMPARE(greyAt(inner, 145, 115), 255);
    }

    void smoothInnerCutsAtHalfOffsetTowardZero()
    {
        // Offset -5 cuts at -2 (toward zero, not -3): only the two rightmost columns stay.
        const QImage image = renderEffect([] { return shadow(0, true, {}, {{0.0, -5, 0, "black"}}); });
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
        std::unique_ptr<QObject> filter(releaseOnly ? static_cast<QObject *>(new MouseReleaseFilter)
                                                    : static_cast<QObject *>(new MouseButtonFilter));
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
        QCOMPARE(filtered->seen.isEmpty(), !releaseOnly);
    }

    void sheetPaintsBandAndWhiteInterior()
    {
        auto window = makeWindow(QSize(500, 400));
        auto *sheet = new LumoSheet(window.get());
        auto *body = new QWidget;
        body->setFixedSize(200, 120);
        sheet->setWidget(body);
        LumoMask::createMask(sheet, window.get(), QColor(0, 0, 0, 20));
        sheet->show(); // re-parenting and polishing reset a frame's margins; showing restores the band
        const int m = int(22 * testsupport::expectedScale());
        QCOMPARE(sheet->contentsMargins(), QMargins(m, m, m, m));
        const QMargins layout = sheet->layout()->contentsMargins(); // the style's, left as they are
        QTRY_COMPARE(sheet->size(), QSize(200, 120).grownBy(layout + QMargins(m, m, m, m)));
        QCOMPARE(sheet->geometry().center(), sheet->parentWidget()->rect().center());

        const qreal ratio = window->devicePixelRatioF();
        QImage image(sheet->size() * ratio, QImage::Format_ARGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        sheet->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        const int y = sheet->height() / 2;
        auto alphaAt = [&](int x) { return qAlpha(image.pixel(int((x + 0.5) * ratio), int((y + 0.5) * ratio))); };
        QCOMPARE(image.pixel(int((m + 0.5) * ratio), int((y + 0.5) * ratio)), qRgb(255, 255, 255));
        QCOMPARE(image.pixel(int((sheet->width() - m - 0.5) * ratio), int((m + 0.5) * ratio)), qRgb(255, 255, 255));
        QVERIFY(alphaAt(m - 1) > 0 && alphaAt(m - 1) < 255);
        QVERIFY(alphaAt(m / 2) < alphaAt(m - 1)); // fading outward
        QVERIFY(alphaAt(sheet->width() - m) > 0 && alphaAt(sheet->width() - m) < 255);
    }

private:
    QTemporaryDir userData;
};

QTEST_MAIN(TestSheets)
#include "tst_sheets.moc"

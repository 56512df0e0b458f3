// One paint of a 300 x 200 frame carrying two outer and one inner shadow, in the
// "mask" and the "smooth" style, against the same frame without the effect.
// BoxShadow rebuilds its pixmaps on every paint by design, so this is its real cost.

#include <lumo/lumo.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFrame>
#include <QImage>
#include <QPainter>
#include <QVBoxLayout>

#include <cstdio>
#include <memory>

namespace
{
constexpr int Renders = 200;

// A host with room around a white 300 x 200 frame; the frame gets @p effect when given.
std::unique_ptr<QWidget> makeHost(BoxShadow *effect)
{
    auto host = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(host.get());
    layout->setContentsMargins(24, 24, 24, 24);
    auto *frame = new QFrame;
    frame->setFixedSize(300, 200);
    frame->setAutoFillBackground(true);
    frame->setPalette(QPalette(Qt::white));
    if (effect)
        frame->setGraphicsEffect(effect);
    layout->addWidget(frame);
    host->adjustSize();
    host->show();
    return host;
}

BoxShadow *makeEffect(bool smooth)
{
    auto *effect = new BoxShadow(0, smooth);
    effect->setOutsideShadowList({{3.0, 0, 1, "#380B1A33"}, {9.0, 0, 5, "#400B1A33"}});
    effect->setInsideShadowList({{4.0, 2, 4, "#8C98A8"}});
    return effect;
}

// Milliseconds per paint of @p host into an image, over Renders paints after a warm-up.
double msPerPaint(QWidget *host)
{
    const qreal ratio = host->devicePixelRatioF();
    QImage image(host->size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    for (int i = 0; i < 5; ++i)
        host->render(&image);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < Renders; ++i) {
        image.fill(Qt::white);
        host->render(&image);
    }
    return timer.nsecsElapsed() / 1e6 / Renders;
}
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    auto plain = makeHost(nullptr);
    auto mask = makeHost(makeEffect(false));
    auto smooth = makeHost(makeEffect(true));
    const double plainMs = msPerPaint(plain.get());
    const double maskMs = msPerPaint(mask.get());
    const double smoothMs = msPerPaint(smooth.get());
    std::printf("one paint of a 300x200 frame, %d paints each, device pixel ratio %.1f\n", Renders, plain->devicePixelRatioF());
    std::printf("  %-26s %7.3f ms\n", "plain frame", plainMs);
    std::printf("  %-26s %7.3f ms  ratio %6.1f\n", "mask style, 2 out 1 in", maskMs, maskMs / plainMs);
    std::printf("  %-26s %7.3f ms  ratio %6.1f\n", "smooth style, 2 out 1 in", smoothMs, smoothMs / plainMs);
    return 0;
}

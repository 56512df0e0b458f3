// One paint of a 300 x 200 card (a white frame holding a label, or a bare frame)
// with one outer shadow (blur 9, offset 0,5), in the "mask" and the "smooth"
// style, against QGraphicsDropShadowEffect with the same shadow on the same
// frame and against the frame without any effect. "Repaint" paints unchanged
// content; "first paint" changes the label's text before every paint.

#include "benchreport.h"

#include <lumo/lumo.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFrame>
#include <QGraphicsDropShadowEffect>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <memory>

namespace
{
const QString shadowColor = QStringLiteral("#400B1A33");

struct Host {
    std::unique_ptr<QWidget> widget;
    QLabel *label = nullptr;
};

// A host with room around a white 300 x 200 frame; the frame gets @p effect when given.
Host makeHost(QGraphicsEffect *effect, bool withLabel)
{
    Host host {std::make_unique<QWidget>(), nullptr};
    auto *layout = new QVBoxLayout(host.widget.get());
    layout->setContentsMargins(24, 24, 24, 24);
    auto *frame = new QFrame;
    frame->setFixedSize(300, 200);
    frame->setAutoFillBackground(true);
    frame->setPalette(QPalette(Qt::white));
    if (withLabel) {
        auto *inner = new QVBoxLayout(frame);
        host.label = new QLabel(QStringLiteral("Quarterly report, 14 pages"));
        inner->addWidget(host.label);
    }
    if (effect)
        frame->setGraphicsEffect(effect);
    layout->addWidget(frame);
    host.widget->adjustSize();
    host.widget->show();
    QApplication::processEvents();
    return host;
}

QGraphicsEffect *boxShadow(bool smooth)
{
    auto *effect = new BoxShadow(0, smooth);
    effect->setOutsideShadowList({{9.0, 0, 5, shadowColor.toStdString()}});
    return effect;
}

QGraphicsEffect *dropShadow()
{
    auto *effect = new QGraphicsDropShadowEffect;
    effect->setBlurRadius(9.0);
    effect->setOffset(0, 5);
    effect->setColor(QColor(shadowColor));
    return effect;
}

// Milliseconds per paint of the host into an image: the best of batches of five
// paints over at least 300 ms after a warm-up (the best, as other processes share the machine).
double msPerPaint(const Host &host, bool changeContent)
{
    QWidget *widget = host.widget.get();
    const qreal ratio = widget->devicePixelRatioF();
    QImage image(widget->size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    int flip = 0;
    auto paint = [&] {
        if (changeContent)
            host.label->setText(++flip % 2 ? QStringLiteral("Quarterly report, 15 pages") : QStringLiteral("Quarterly report, 14 pages"));
        image.fill(Qt::white);
        widget->render(&image);
    };
    for (int i = 0; i < 3; ++i)
        paint();
    QElapsedTimer total;
    total.start();
    double best = 1e300;
    for (int batch = 0; batch < 3 || total.elapsed() < 300; ++batch) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 5; ++i)
            paint();
        best = qMin(best, timer.nsecsElapsed() / 1e6 / 5);
    }
    return best;
}
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    for (bool withLabel : {true, false}) {
        const QString what = withLabel ? QStringLiteral("card") : QStringLiteral("bare frame");
        const double plain = msPerPaint(makeHost(nullptr, withLabel), false);
        const Host qtHost = makeHost(dropShadow(), withLabel);
        const double qtRepaint = msPerPaint(qtHost, false);
        const double qtFirst = withLabel ? msPerPaint(qtHost, true) : 0;
        for (bool smooth : {false, true}) {
            const QString style = smooth ? QStringLiteral("smooth") : QStringLiteral("mask");
            const Host host = makeHost(boxShadow(smooth), withLabel);
            const double repaint = msPerPaint(host, false);
            const QString job = QStringLiteral("BoxShadow %1, %2: ").arg(style, what);
            bench::report(bench::atScale(job + QStringLiteral("repaint vs drop shadow")), repaint, qtRepaint, 0.1);
            bench::report(bench::atScale(job + QStringLiteral("repaint vs no effect")), repaint, plain, 3.0);
            if (withLabel)
                bench::report(bench::atScale(job + QStringLiteral("first paint vs drop shadow")), msPerPaint(host, true), qtFirst, 2.0);
        }
    }
    return 0;
}

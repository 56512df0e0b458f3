#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QEvent>
#include <QScrollBar>

namespace
{
const char plainSheet[] = "QScrollArea {border: 0; background-color: white}";
}

LumoVerticalScrollArea::LumoVerticalScrollArea(QWidget *parent)
    : QScrollArea(parent)
    , shadowSize(1.0)
{
    setWidgetResizable(true);
    setStyleSheet(QLatin1String(plainSheet));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    horizontalScrollBar()->setEnabled(false);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    verticalScrollBar()->setStyleSheet(lumo::style("component.scrollbar"));
    verticalScrollBar()->installEventFilter(this);
    connect(verticalScrollBar(), SIGNAL(valueChanged(int)), this, SLOT(slotScrollValueChanged(int)));
}

LumoVerticalScrollArea::~LumoVerticalScrollArea() = default;

void LumoVerticalScrollArea::setShadowSize(double size)
{
    shadowSize = size;
}

void LumoVerticalScrollArea::slotScrollValueChanged(int value)
{
    QString sheet;
    if (value != verticalScrollBar()->maximum()) {
        double s = shadowSize;
        if (s > 1.0)
            s = height() > 0 ? s / height() : 1.0;
        // A shade taller than the area (or a nonsensical size) is clamped to a valid gradient stop.
        const double stop = qBound(0.0, 1.0 - s, 1.0);
        sheet = QStringLiteral("QScrollArea {border: 0; background-color: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:") +
            QString::number(stop, 'f', 6) + QStringLiteral(" #FFFFFF, stop:1 #E0E0E0);}");
    } else {
        sheet = QLatin1String(plainSheet);
    }
    // Re-polishing the whole area on every scroll step is costly; only a change is applied.
    if (sheet != styleSheet())
        setStyleSheet(sheet);
}

bool LumoVerticalScrollArea::eventFilter(QObject *watched, QEvent *event)
{
    // The shade follows the bar: a hidden bar means everything fits.
    if (watched == verticalScrollBar()) {
        if (event->type() == QEvent::Hide)
            Q_EMIT verticalScrollBar()->valueChanged(0);
        else if (event->type() == QEvent::Show)
            Q_EMIT verticalScrollBar()->valueChanged(-1);
    }
    return QScrollArea::eventFilter(watched, event);
}

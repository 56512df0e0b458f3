#include <lumo/controls.h>

#include <QGuiApplication>
#include <QScreen>
#include <QShowEvent>

LumoMenu::LumoMenu(QWidget *parent)
    : QMenu(parent)
{
}

LumoMenu::~LumoMenu() = default;

void LumoMenu::showEvent(QShowEvent *event)
{
    QMenu::showEvent(event);
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    // right() and bottom() are inclusive, and a menu left of or above the area
    // goes to 0 rather than to its edge; callers rely on both.
    const QRect avail = screen->availableGeometry();
    const int x = pos().x();
    const int y = pos().y();
    int newX = x;
    if (x < avail.left())
        newX = 0;
    else if (x + width() > avail.right())
        newX = avail.right() - width();
    int newY = y;
    if (y < avail.top())
        newY = 0;
    else if (y + height() > avail.bottom())
        newY = avail.bottom() - height();
    if (newX != x || newY != y)
        move(newX, newY);
}

#include <lumo/sheets.h>

#include <QEvent>

MouseButtonFilter::MouseButtonFilter(QObject *parent)
    : QObject(parent)
{
}

MouseButtonFilter::~MouseButtonFilter() = default;

bool MouseButtonFilter::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

MouseReleaseFilter::MouseReleaseFilter(QObject *parent)
    : QObject(parent)
{
}

MouseReleaseFilter::~MouseReleaseFilter() = default;

bool MouseReleaseFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease)
        return true;
    return QObject::eventFilter(watched, event);
}

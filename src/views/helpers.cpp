#include "views/views_p.h"

#include <QObject>

namespace lumo
{
void installOwnedFilter(QObject *watched, QObject *filter)
{
    watched->installEventFilter(filter);
    releaseWith(watched, filter);
}

void releaseWith(QObject *owner, QObject *object)
{
    QObject::connect(owner, SIGNAL(destroyed()), object, SLOT(deleteLater()));
}
}

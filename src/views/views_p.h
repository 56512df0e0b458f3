#ifndef LUMO_VIEWS_P_H
#define LUMO_VIEWS_P_H

// Helpers shared by the data views. Not installed.

class QObject;

namespace lumo
{
/**
 * Installs the parentless @p filter on @p watched and releases it once
 * @p watched is destroyed, so that per-widget filters do not outlive it.
 */
void installOwnedFilter(QObject *watched, QObject *filter);
/** Deletes the parentless @p object once @p owner is destroyed. */
void releaseWith(QObject *owner, QObject *object);
}

#endif

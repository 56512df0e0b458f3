#ifndef LUMO_EXPORT_H
#define LUMO_EXPORT_H

#include <QtCore/qglobal.h>

#if defined(LUMO_BUILDING_LIBRARY)
#define LUMO_EXPORT Q_DECL_EXPORT
#else
#define LUMO_EXPORT Q_DECL_IMPORT
#endif

#endif

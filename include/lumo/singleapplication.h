#ifndef LUMO_SINGLEAPPLICATION_H
#define LUMO_SINGLEAPPLICATION_H

#include <lumo/lumo_export.h>

#endif

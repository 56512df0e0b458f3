#ifndef LUMO_VIEWS_H
#define LUMO_VIEWS_H

#include <lumo/lumo_export.h>

#endif

#ifndef LUMO_SHEETS_H
#define LUMO_SHEETS_H

#include <lumo/lumo_export.h>

#endif

#ifndef LUMO_HELP_H
#define LUMO_HELP_H

#include <lumo/lumo_export.h>

#endif

#ifndef LUMO_CONTROLS_H
#define LUMO_CONTROLS_H

#include <lumo/lumo_export.h>

#endif

#ifndef LUMO_LUMO_H
#define LUMO_LUMO_H

// The whole public interface of the library.

#include <lumo/controls.h>
#include <lumo/help.h>
#include <lumo/registries.h>
#include <lumo/sheets.h>
#include <lumo/singleapplication.h>
#include <lumo/views.h>

#endif

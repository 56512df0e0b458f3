// Source compatibility with the Qt Solutions single-application component.
#include <lumo/singleapplication.h>

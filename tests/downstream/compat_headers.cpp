// Every header spelling of the Qt Solutions component, as its clients include them.
#include <QtLocalPeer>
#include <QtLockedFile>
#include <QtSingleApplication>
#include <QtSingleCoreApplication>
#include <qtlocalpeer.h>
#include <qtlockedfile.h>
#include <qtsingleapplication.h>
#include <qtsinglecoreapplication.h>

#include <type_traits>

static_assert(std::is_base_of<QApplication, QtSingleApplication>::value, "QtSingleApplication is a QApplication");
static_assert(std::is_base_of<QCoreApplication, QtSingleCoreApplication>::value &&
                  !std::is_base_of<QGuiApplication, QtSingleCoreApplication>::value,
              "QtSingleCoreApplication is a QCoreApplication without a GUI");
static_assert(std::is_base_of<QFile, QtLockedFile>::value, "QtLockedFile is a QFile");
static_assert(std::is_base_of<QObject, QtLocalPeer>::value, "QtLocalPeer is a QObject");

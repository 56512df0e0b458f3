#include <lumo/controls.h>

// Registered at load time so that QMetaType::fromName() can build the pickers
// and bars by name, e.g. from a UI description.
static void registerPickerMetaTypes()
{
    qRegisterMetaType<LumoComboBox>("LumoComboBox");
    qRegisterMetaType<LumoTimeComboBox>("LumoTimeComboBox");
    qRegisterMetaType<LumoButtonPath>("LumoButtonPath");
    qRegisterMetaType<LumoFilterBar>("LumoFilterBar");
    qRegisterMetaType<LumoVerticalScrollArea>("LumoVerticalScrollArea");
}
Q_CONSTRUCTOR_FUNCTION(registerPickerMetaTypes)

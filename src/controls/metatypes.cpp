#include <lumo/controls.h>

// Registered at load time so that QMetaType::fromName() can build the
// default-constructible controls by name, e.g. from a UI description.
static void registerControlMetaTypes()
{
    qRegisterMetaType<LumoCheckBox>("LumoCheckBox");
    qRegisterMetaType<LumoRadioButton>("LumoRadioButton");
    qRegisterMetaType<LumoMenu>("LumoMenu");
    qRegisterMetaType<LumoLineEdit>("LumoLineEdit");
    qRegisterMetaType<LumoLabel>("LumoLabel");
    qRegisterMetaType<LumoComboBox>("LumoComboBox");
    qRegisterMetaType<LumoTimeComboBox>("LumoTimeComboBox");
    qRegisterMetaType<LumoButtonPath>("LumoButtonPath");
    qRegisterMetaType<LumoFilterBar>("LumoFilterBar");
    qRegisterMetaType<LumoVerticalScrollArea>("LumoVerticalScrollArea");
}
Q_CONSTRUCTOR_FUNCTION(registerControlMetaTypes)

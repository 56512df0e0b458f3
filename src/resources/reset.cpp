#include "resources/registries_p.h"

namespace lumo
{
struct RegistryReset {
    static void reset()
    {
        ImageManager::getInstance()->imageFiles.clear();
        StyleManager::getInstance()->styleSheets.clear();
        ComponentStrings::getInstance()->strings.clear();
    }
};

void resetRegistries()
{
    RegistryReset::reset();
}
}

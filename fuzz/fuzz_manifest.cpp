// The image manifest: names to load and temporary images to write, nowhere but their folder.

#include "fuzzsupport.h"
#include "resources/registries_p.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    lumo::resetRegistries();
    static const QStringList allowed = {QStringLiteral("user/tmp_images")};
    const QByteArray input = fuzzsupport::bytes(data, size);
    fuzzsupport::writeFile(fuzzsupport::root() + QStringLiteral("/resource/images.json"), input);
    static const QStringList before = fuzzsupport::filesOutside(allowed);
    ImageManager::getInstance()->initialize(size % 2 ? ImageManager::LoadAll : ImageManager::LoadLazily);

    // Look-ups go through the same path for every name; a few per input keep the runs fast.
    const QJsonArray names = QJsonDocument::fromJson(input).object().value(QStringLiteral("images")).toArray();
    for (qsizetype i = 0; i < std::min<qsizetype>(names.size(), 8); ++i) {
        for (int type = -1; type <= 4; ++type)
            getGlobalImage(names.at(i).toString(), ImageManager::ImageType(type));
    }
    fuzzsupport::check(fuzzsupport::filesOutside(allowed) == before, "the manifest wrote outside the temporary image folder");
    return 0;
}

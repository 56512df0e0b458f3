// Captions, locale names and file name extensions: look-ups of outside text.

#include "fuzzsupport.h"
#include "resources/registries_p.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    lumo::resetRegistries();
    // One caption per line: key, a tab, the text.
    const QString text = QString::fromUtf8(fuzzsupport::bytes(data, size));
    const QStringList lines = text.split(QLatin1Char('\n'));
    QMap<QString, QString> captions;
    for (const QString &line : lines)
        captions.insert(line.section(QLatin1Char('\t'), 0, 0), line.section(QLatin1Char('\t'), 1));
    ComponentStrings::getInstance()->installStrings(captions);

    for (const QString &line : lines) {
        const QString key = line.section(QLatin1Char('\t'), 0, 0);
        fuzzsupport::check(ComponentStrings::getInstance()->getString(key) == captions.value(key), "a caption was not found");
        const QString language = LumoLocale::getInstance()->getLanguageByLocale(line);
        fuzzsupport::check(language.size() == 3, "a locale gave no three-letter language");
        const QString icon = FileTypeMap::getInstance()->getFiletypeMapping(line, line.size() % 2);
        fuzzsupport::check(icon.endsWith(QLatin1String(".png")), "a file type gave no icon name");
    }
    const QString missing = text + QStringLiteral("\n\t");
    fuzzsupport::check(ComponentStrings::getInstance()->getString(missing) == missing, "a missing caption is not its key");
    return 0;
}

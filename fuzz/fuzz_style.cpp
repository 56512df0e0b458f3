// Style files: comments, placeholders, sections and the px rewriting of every section.

#include "fuzzsupport.h"
#include "resources/registries_p.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    lumo::resetRegistries();
    const QByteArray input = fuzzsupport::bytes(data, size);
    const QString path = fuzzsupport::root() + QStringLiteral("/style.qss");
    fuzzsupport::writeFile(path, input);
    StyleManager::getInstance()->initialize({path});

    // Every section the input names, scaled the way widgets ask for it.
    const QString text = QString::fromUtf8(input);
    for (QStringView line : QStringView(text).split(u'\n')) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (!line.startsWith(u"==") || !line.endsWith(u"=="))
            continue;
        QString key = line.toString();
        key.remove(QLatin1Char('=')).remove(QLatin1Char(' '));
        const QString raw = getStyleSheet(key, true);
        fuzzsupport::check(getStyleSheet(key, false) == lumo::scalePxLengths(raw, DPIinfo::getInstance()->getDPI()),
                           "a section is not scaled by the screen factor");
    }
    // The scanners on the text as it stands, comments and lengths not yet separated.
    lumo::scalePxLengths(text, 1.5);
    fuzzsupport::check(lumo::removeBlockComments(text).size() <= text.size(), "comment removal grew the text");
    return 0;
}

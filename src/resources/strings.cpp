#include "resources/registries_p.h"

#include <QLocale>
#include <QSettings>

ComponentStrings::ComponentStrings() = default;
ComponentStrings::~ComponentStrings() = default;

ComponentStrings *ComponentStrings::getInstance()
{
    static ComponentStrings instance;
    return &instance;
}

void ComponentStrings::installStrings(const QMap<QString, QString> &newStrings)
{
    strings = newStrings;
}

QString ComponentStrings::getString(const QString &key)
{
    const auto it = strings.constFind(key);
    if (it == strings.constEnd()) {
        qCWarning(lumoLog) << "Cannot find key in ComponentStrings" << key;
        return key;
    }
    return *it;
}

UIPathManager::UIPathManager() = default;
UIPathManager::~UIPathManager() = default;

UIPathManager *UIPathManager::getInstance()
{
    static UIPathManager instance;
    return &instance;
}

void UIPathManager::setPath(const QString &key, const QString &path)
{
    // The message names the incoming path although it speaks of the existing one.
    if (paths.count(key))
        qCWarning(lumoLog) << "Existing path is" << path << "with key" << key << "but overwrite it now";
    paths[key] = path;
}

QString UIPathManager::getPath(const QString &key)
{
    const auto it = paths.find(key);
    if (it == paths.end()) {
        qCWarning(lumoLog) << "Cannot find path by key" << key;
        return QString();
    }
    return it->second;
}

LumoLocale::LumoLocale()
    : defaultLanguage(QStringLiteral("enu"))
{
    // Several codes do not follow the two-letter code; they are the product's own.
    static const char *const table[][2] = {
        {"en", "enu"}, {"ja", "jpn"}, {"de", "deu"}, {"ko", "krn"}, {"fr", "fra"}, {"it", "ita"},
        {"es", "esn"}, {"ru", "rus"}, {"da", "dan"}, {"no", "nor"}, {"nb", "nor"}, {"nn", "nor"},
        {"sv", "sve"}, {"nl", "nld"}, {"pl", "plk"}, {"hu", "hun"}, {"tr", "trk"}, {"cs", "csy"},
    };
    for (const auto &row : table)
        setLanguageMap(QString::fromLatin1(row[0]), QString::fromLatin1(row[1]));
}

LumoLocale::~LumoLocale() = default;

LumoLocale *LumoLocale::getInstance()
{
    static LumoLocale instance;
    return &instance;
}

QString LumoLocale::getDefaultLanguage()
{
    return getLanguageByLocale(QLocale::system().name().toLower());
}

QString LumoLocale::getLanguageByLocale(const QString &locale)
{
    const QString lang = locale.section(QLatin1Char('_'), 0, 0);
    if (lang == QLatin1String("pt"))
        return getPortugueseLanguage(locale);
    if (lang == QLatin1String("zh"))
        return getChineseLanguage();
    const auto it = languageMap.find(lang);
    return it != languageMap.end() ? it->second : defaultLanguage;
}

QString LumoLocale::getPortugueseLanguage(const QString &locale)
{
    if (locale == QLatin1String("pt") || locale == QLatin1String("pt_pt"))
        return QStringLiteral("ptg");
    return QStringLiteral("ptb");
}

QString LumoLocale::getChineseLanguage()
{
#ifdef Q_OS_MACOS
    // Traditional unless the user's first preferred language is a simplified-script one.
    const QVariant languages = QSettings().value(QStringLiteral("AppleLanguages"));
    if (languages.isValid()) {
        const QStringList list = languages.toStringList();
        if (!list.isEmpty() && list.first().contains(QLatin1String("zh-Hans")))
            return QStringLiteral("chs");
    }
#endif
    return QStringLiteral("cht");
}

void LumoLocale::setLanguageMap(QString twoLetter, QString threeLetter)
{
    languageMap[twoLetter] = threeLetter;
}

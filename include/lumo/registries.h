#ifndef LUMO_REGISTRIES_H
#define LUMO_REGISTRIES_H

#include <lumo/lumo_export.h>

#include <QHash>
#include <QMap>
#include <QPixmap>
#include <QString>

#include <array>
#include <map>
#include <vector>

namespace lumo
{
struct RegistryReset; // the library's internal path back to empty registries
}

/**
 * Process-wide registry of the library's bitmap images.
 *
 * Images are PNG files drawn at four times their display size, listed in
 * "images.json" under the resource path. They are scaled once to the screen's
 * scale factor and device pixel ratio and handed out as shared copies.
 */
class LUMO_EXPORT ImageManager
{
    friend struct lumo::RegistryReset;

public:
    // Fixed underlying types: callers may pass any 32-bit value (other values load nothing).
    enum ImageType : int { Normal = 0, Hover = 1, Click = 2, Disable = 3 };
    enum InitializeType : int { LoadAll = 0, LoadLazily = 1 };

    struct ImageFile {
        std::array<QString, 4> fileNames;
        std::array<QPixmap, 4> pixmaps;
        bool loaded = false;
    };

    static ImageManager *getInstance();

    /** Reads the manifest and writes the temporary images; call once after UIPathManager is filled. */
    void initialize(ImageManager::InitializeType type);
    QPixmap getImage(const QString &name, ImageManager::ImageType type);

    /** Both abort the process when called before initialize(). */
    const QString &getImageFolder();
    const QString &getTempImageFolder();

    QString getImageFullPath(const QString &fileName);
    QString getTempImageFullPath(const QString &name);

private:
    ImageManager();
    ~ImageManager();
    Q_DISABLE_COPY(ImageManager)

    void readJson();
    void parseJson(const QString &name);
    void prepareImages();
    void lazyLoad(const QString &name);
    void prepareTempImage(const QString &name);
    void loadEntry(ImageFile &entry);

    InitializeType initializeType = LoadAll;
    QString imageFolder;
    QString tempImageFolder;
    std::map<QString, ImageFile> imageFiles;
};

LUMO_EXPORT QPixmap getGlobalImage(const char *name, ImageManager::ImageType type);
LUMO_EXPORT QPixmap getGlobalImage(const QString &name, ImageManager::ImageType type);

/**
 * Process-wide registry of style sheet sections, read from the application's
 * style files and keyed by "component." names.
 */
class LUMO_EXPORT StyleManager
{
    friend struct lumo::RegistryReset;

public:
    static StyleManager *getInstance();

    /** Call once, after ImageManager::initialize(): the image folders are substituted into the text. */
    void initialize(const std::vector<QString> &files);
    /** The section of @p key; with @p raw false its px lengths are scaled to the screen. */
    QString getStyleSheet(const QString &key, bool raw);

private:
    StyleManager();
    ~StyleManager();
    Q_DISABLE_COPY(StyleManager)

    QMap<QString, QString> styleSheets;
    // Scaled text per key: the scale factor never changes once read, so a key's
    // result only changes when initialize() replaces its text.
    QHash<QString, QString> scaledSheets;
};

LUMO_EXPORT QString getStyleSheet(const char *key, bool raw);
LUMO_EXPORT QString getStyleSheet(const QString &key, bool raw);

/**
 * The primary screen's scale factor (logical DPI / 72) and device pixel ratio,
 * read once at first use; create the QApplication first.
 */
class LUMO_EXPORT DPIinfo
{
public:
    static DPIinfo *getInstance();

    double getDPI() const;
    double getDPR() const;
    /** Rewrites every "<number>px" length of @p styleSheet by the scale factor, truncating. */
    QString getScaledStyleSheet(QString styleSheet);

private:
    DPIinfo();
    ~DPIinfo();
    Q_DISABLE_COPY(DPIinfo)

    double dpi = 1.0;
    double dpr = 1.0;
};

/** The translated captions of the library's own words; a missing key yields the key itself. */
class LUMO_EXPORT ComponentStrings
{
    friend struct lumo::RegistryReset;

public:
    static ComponentStrings *getInstance();

    void installStrings(const QMap<QString, QString> &strings);
    QString getString(const QString &key);

private:
    ComponentStrings();
    ~ComponentStrings();
    Q_DISABLE_COPY(ComponentStrings)

    QMap<QString, QString> strings;
};

/** Named folders of the application, above all "resource_path" and "user_data_path". */
class LUMO_EXPORT UIPathManager
{
public:
    static UIPathManager *getInstance();

    void setPath(const QString &key, const QString &path);
    QString getPath(const QString &key);

private:
    UIPathManager();
    ~UIPathManager();
    Q_DISABLE_COPY(UIPathManager)

    std::map<QString, QString> paths;
};

/** Turns the system locale into the product's three-letter language code ("enu", "deu", "chs", ...). */
class LUMO_EXPORT LumoLocale
{
public:
    static LumoLocale *getInstance();

    QString getDefaultLanguage();
    QString getLanguageByLocale(const QString &locale);
    QString getPortugueseLanguage(const QString &locale);
    QString getChineseLanguage();
    void setLanguageMap(QString twoLetter, QString threeLetter);

private:
    LumoLocale();
    ~LumoLocale();
    Q_DISABLE_COPY(LumoLocale)

    std::map<QString, QString> languageMap;
    QString defaultLanguage;
};

/** Orders QStrings without regard to case. */
struct LUMO_EXPORT CaseLessCompare {
    bool operator()(const QString &a, const QString &b) const;
};

/** Maps a file extension to the file name of its type icon ("mp3" gives "audio.png"). */
class LUMO_EXPORT FileTypeMap
{
public:
    static FileTypeMap *getInstance();

    QString getFiletypeMapping(const QString &extension, bool removed);
    void mappingFile(const QString &type, const QString &extensions);

private:
    FileTypeMap();
    ~FileTypeMap();
    Q_DISABLE_COPY(FileTypeMap)

    static std::map<QString, QString, CaseLessCompare> m_file_type_map;
};

#endif

#ifndef LUMO_REGISTRIES_H
#define LUMO_REGISTRIES_H

/**
 * @file
 * The process-wide registries: paths, images, style sheets, captions, the
 * screen's scale factor, language codes and file-type icons.
 *
 * Fill them once at start-up, in this order, after the QApplication exists:
 * UIPathManager, ImageManager, StyleManager, ComponentStrings. Every widget of
 * the library reads them while it is built. A lookup that fails logs a warning
 * on the "debug.message" category and returns a neutral value (an empty string
 * or a null pixmap); nothing throws.
 */

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
    /** The state variant of an image: file `<name>`, `<name>_hover`, `<name>_click` or `<name>_disable`. */
    enum ImageType : int {
        Normal = 0, ///< `<name>.png`
        Hover = 1, ///< `<name>_hover.png`
        Click = 2, ///< `<name>_click.png`
        Disable = 3 ///< `<name>_disable.png`
    };
    /** When the image files are read. */
    enum InitializeType : int {
        LoadAll = 0, ///< Every listed image is read and scaled in initialize().
        LoadLazily = 1 ///< An image is read and scaled at its first getImage().
    };

    /** The four state files of one listed image, indexed by ImageType. */
    struct ImageFile {
        /** File names without folder and ".png"; emptied for a state whose file could not be read. */
        std::array<QString, 4> fileNames;
        /** The state images, scaled for the screen. */
        std::array<QPixmap, 4> pixmaps;
        /** True once at least one state file was read. */
        bool loaded = false;
    };

    /** The one registry of the process. */
    static ImageManager *getInstance();

    /** Reads the manifest and writes the temporary images; call once after UIPathManager is filled. */
    void initialize(ImageManager::InitializeType type);
    /**
     * The image @p name of "images.json" in state @p type. An unknown name gives
     * a null pixmap; a state without a file gives the Normal image. Both warn.
     */
    QPixmap getImage(const QString &name, ImageManager::ImageType type);

    /** `<resource_path>/images`. Aborts the process when called before initialize(), like getTempImageFolder(). */
    const QString &getImageFolder();
    /** `<user_data_path>/tmp_images`: the images that style sheets name by file (check marks, arrows). */
    const QString &getTempImageFolder();

    /** The image folder + "/" + @p fileName + ".png"; the file need not exist. */
    QString getImageFullPath(const QString &fileName);
    /** The temporary image folder + "/tmp_" + @p name + ".png". */
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

/** ImageManager::getImage() of the one registry; @p name is UTF-8. */
LUMO_EXPORT QPixmap getGlobalImage(const char *name, ImageManager::ImageType type);
/** ImageManager::getImage() of the one registry. */
LUMO_EXPORT QPixmap getGlobalImage(const QString &name, ImageManager::ImageType type);

/**
 * Process-wide registry of style sheet sections, read from the application's
 * style files and keyed by "component." names.
 *
 * A style file is Qt style sheet text cut into sections by lines of the form
 * "== component.name ==". "IMG_LOC" and "TMPIMG_LOC" in the text become the
 * image folder and the temporary image folder. A later section of the same key
 * replaces an earlier one.
 */
class LUMO_EXPORT StyleManager
{
    friend struct lumo::RegistryReset;

public:
    /** The one registry of the process. */
    static StyleManager *getInstance();

    /**
     * Reads @p files in the given order; a missing, unreadable or oversized file
     * is skipped with a warning. Call once, after ImageManager::initialize(): the image folders are substituted into the text.
     */
    void initialize(const std::vector<QString> &files);
    /** The section of @p key; with @p raw false its px lengths are scaled to the screen. An unknown key gives "" and warns. */
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

/** StyleManager::getStyleSheet() of the one registry; @p key is UTF-8. */
LUMO_EXPORT QString getStyleSheet(const char *key, bool raw);
/** StyleManager::getStyleSheet() of the one registry. */
LUMO_EXPORT QString getStyleSheet(const QString &key, bool raw);

/**
 * The primary screen's scale factor (logical DPI / 72) and device pixel ratio,
 * read once at first use; create the QApplication first.
 *
 * Design pixels are 72 DPI pixels: on a 96 DPI desktop the factor is 96 / 72 =
 * 1.33, so a 10px length of a style sheet becomes 13px. Without a screen the
 * factor stays 1 (with a warning).
 */
class LUMO_EXPORT DPIinfo
{
public:
    /** The one instance; the first call reads the primary screen. */
    static DPIinfo *getInstance();

    /** The scale factor: the primary screen's logical DPI / 72. */
    double getDPI() const;
    /** The primary screen's device pixel ratio. */
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
    /** The one registry of the process. */
    static ComponentStrings *getInstance();

    /** Replaces every caption by @p strings (key to translated text), typically one `captions/<code>.json` file. */
    void installStrings(const QMap<QString, QString> &strings);
    /** The caption of @p key; an unknown key warns and gives the key itself. */
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
    /** The one registry of the process. */
    static UIPathManager *getInstance();

    /** Sets the folder of @p key; replacing an existing one warns. */
    void setPath(const QString &key, const QString &path);
    /** The folder of @p key; an unknown key warns and gives "". */
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
    /** The one instance of the process. */
    static LumoLocale *getInstance();

    /** The code of the system locale (QLocale::system()). */
    QString getDefaultLanguage();
    /**
     * The code of a lower-case locale name such as "de_de": its two-letter
     * language through the map, "ptg"/"ptb" for Portuguese, "cht"/"chs" for
     * Chinese, and "enu" for any language the map lacks.
     */
    QString getLanguageByLocale(const QString &locale);
    /** "ptg" for "pt" and "pt_pt", "ptb" (Brazilian) for every other Portuguese locale. */
    QString getPortugueseLanguage(const QString &locale);
    /** "cht"; on macOS "chs" when the user's first preferred language is a simplified-script one. */
    QString getChineseLanguage();
    /** Adds or replaces the code of a two-letter language. */
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
    /** True when @p a sorts before @p b, ignoring case. */
    bool operator()(const QString &a, const QString &b) const;
};

/** Maps a file extension to the file name of its type icon ("mp3" gives "audio.png"). */
class LUMO_EXPORT FileTypeMap
{
public:
    /** The one instance of the process. */
    static FileTypeMap *getInstance();

    /**
     * The icon file of @p extension (no dot, any case): `<type>.png`, or
     * `<type>_removed.png` with @p removed. An unknown extension gives the "xxx" type.
     */
    QString getFiletypeMapping(const QString &extension, bool removed);
    /** Maps every blank-separated extension of @p extensions to @p type, replacing earlier mappings. */
    void mappingFile(const QString &type, const QString &extensions);

private:
    FileTypeMap();
    ~FileTypeMap();
    Q_DISABLE_COPY(FileTypeMap)

    static std::map<QString, QString, CaseLessCompare> m_file_type_map;
};

#endif

#ifndef LUMO_REGISTRIES_P_H
#define LUMO_REGISTRIES_P_H

// Helpers shared by every family of the library. Not installed.

#include <lumo/registries.h>

#include <QLoggingCategory>
#include <QSize>
#include <QStringList>

#include <functional>
#include <initializer_list>

Q_DECLARE_LOGGING_CATEGORY(lumoLog)

namespace lumo
{
/** Rounds half away from zero, saturating at the int range (NaN gives 0). */
int roundHalfAway(double value);
/** Converts toward zero, saturating at the int range (NaN gives 0). */
int truncated(double value);
/** A design length in pixels times the screen's scale factor, truncated toward zero. */
int scaled(double value);
/** A pixmap's size in device-independent pixels: divided by the device pixel ratio, rounded. */
QSize logicalSize(const QPixmap &pixmap);
/** The px-scaled style section of @p key. */
QString style(const char *key);
/** The sections of @p keys joined with nothing between them. */
QString styles(std::initializer_list<const char *> keys);
/** The caption of @p key from ComponentStrings. */
QString caption(const char *key);
/**
 * Writes @p data to @p path through a fresh temporary file in the same folder
 * that is then renamed over @p path: whatever sits at @p path, a planted link
 * included, is replaced and never followed.
 */
bool replaceFile(const QString &path, const QByteArray &data);

/** One image a theme must provide: its name, and whether all four state files are asked for or the normal one only. */
struct ThemeImage {
    QString name;
    bool allStates;
};

/** Everything the library's own widgets ask a theme for. */
struct ThemeCatalogue {
    QList<ThemeImage> images;
    QStringList styleKeys;
    QStringList captionKeys;
};

/** The one list of images, style keys and caption keys; lumo-theme-check reads it too. */
LUMO_EXPORT const ThemeCatalogue &themeCatalogue();
/** The type icon names of FileTypeMap, each also with "_removed". */
LUMO_EXPORT QStringList fileTypeImages();

/**
 * Empties the image, style and caption registries as a fresh process has them;
 * the folders stay. For harnesses that feed one process many inputs.
 */
LUMO_EXPORT void resetRegistries();

// The style text transformations, exported for the tests that compare them with
// the regular expressions they stand for.
LUMO_EXPORT QString removeBlockComments(const QString &text);
LUMO_EXPORT QString removeLineComments(const QString &text);
LUMO_EXPORT QString replacePlaceholder(const QString &text, QStringView placeholder, const QString &value);
LUMO_EXPORT QString scalePxLengths(const QString &sheet, double factor);
/** Removes the comments of style text and hands each section to @p store, in file order. */
LUMO_EXPORT void forEachStyleSection(QString text, const std::function<void(const QString &, const QString &)> &store);
}

#endif

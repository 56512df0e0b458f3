#ifndef LUMO_GALLERY_H
#define LUMO_GALLERY_H

#include <lumo/lumo.h>

#include <QColor>
#include <QMainWindow>
#include <QString>

#include <functional>
#include <vector>

class QLabel;
class QListWidget;
class QScrollArea;
class QVBoxLayout;
class QStackedWidget;
class QTextStream;

namespace gallery
{
/** One page of the gallery. Pages register themselves with LUMO_GALLERY_PAGE. */
struct Page {
    int order = 0;
    QString title;
    std::function<QWidget *()> create;
    /** Optional: puts the page into the state worth a screenshot (opens a sheet, a popup, ...). */
    std::function<void(QWidget *page)> stage;
};

bool registerPage(int order, const QString &title, std::function<QWidget *()> create, std::function<void(QWidget *page)> stage = {});
/** The registered pages in display order. */
std::vector<Page> pages();

struct Startup {
    QString themeDir; // the theme folder: images.json, images/, styles/, captions/
    QString userDataDir; // per-user writable folder for the temporary images
    QString language; // caption language code; empty: the system's
};

/** Runs the library's start-up in its required order. Call after the QApplication exists. */
void startUp(const Startup &startup);
QString defaultThemeDir();
/** A shipped theme's name ("default", "dark") as its folder beside the gallery or in the build tree; anything else is a folder. */
QString themeDir(const QString &nameOrFolder);
/** The gallery's own style text in the theme's colours (the theme's palette.json, if it has one). */
QString themed(const QString &css);
QColor themedColor(const char *color, bool text = false);
/** The theme's style files, in the order they are loaded. */
std::vector<QString> styleFiles(const QString &themeDir);
/** The caption language used for @p requested (a code, or empty for the system's). */
QString captionLanguage(const QString &themeDir, const QString &requested);
/** Reads one caption file ("key": "text" pairs); unreadable input gives an empty map. */
QMap<QString, QString> readCaptions(const QString &file);
/** Design pixels at 72 DPI scaled to the screen, as the library's widgets size themselves. */
int px(double designPixels);
/** A word-wrapped label in one of the gallery's roles: "title", "section" or "note". */
QLabel *label(const QString &text, const char *role);

/** A long page: a borderless scroll area named "galleryScroll" around a white column that starts with the title. */
struct ScrollingPage {
    QWidget *page;
    QScrollArea *scroll;
    QVBoxLayout *layout; // the column; add the page's sections here
};
ScrollingPage scrollingPage(const QString &title, int spacing = 8);
/** Gives an existing @p page that frame; returns the column. */
QVBoxLayout *installScrollingFrame(QWidget *page, const QString &title, int spacing = 8);

class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(QWidget *parent = nullptr);
    int pageCount() const;
    QWidget *showPage(int index);
    QWidget *page(int index) const;

private:
    QListWidget *navigation;
    QStackedWidget *stack;
};

/** Renders every page (staged) to PNG files in @p folder and prints each path to @p out. */
bool renderPages(MainWindow &window, const QString &folder, QTextStream &out);
}

#define LUMO_GALLERY_CONCAT2(a, b) a##b
#define LUMO_GALLERY_CONCAT(a, b) LUMO_GALLERY_CONCAT2(a, b)
#define LUMO_GALLERY_PAGE(...) static const bool LUMO_GALLERY_CONCAT(galleryPageRegistered, __LINE__) = gallery::registerPage(__VA_ARGS__);

#endif

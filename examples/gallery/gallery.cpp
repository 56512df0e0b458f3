#include "gallery.h"

#include "palette.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QListWidget>
#include <QPalette>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTextStream>
#include <QVBoxLayout>

#include <algorithm>

namespace gallery
{
namespace
{
std::vector<Page> &registry()
{
    static std::vector<Page> pages;
    return pages;
}

QString slug(const QString &title)
{
    QString s;
    for (const QChar c : title.toLower())
        s += c.isLetterOrNumber() ? c : QLatin1Char('-');
    while (s.contains(QStringLiteral("--")))
        s.replace(QStringLiteral("--"), QStringLiteral("-"));
    return s;
}
}

bool registerPage(int order, const QString &title, std::function<QWidget *()> create, std::function<void(QWidget *page)> stage)
{
    registry().push_back(Page {order, title, std::move(create), std::move(stage)});
    return true;
}

std::vector<Page> pages()
{
    std::vector<Page> sorted = registry();
    std::stable_sort(sorted.begin(), sorted.end(), [](const Page &a, const Page &b) { return a.order < b.order; });
    return sorted;
}

int px(double designPixels)
{
    return int(DPIinfo::getInstance()->getDPI() * designPixels);
}

QLabel *label(const QString &text, const char *role)
{
    auto *l = new QLabel(text);
    l->setProperty("galleryRole", QString::fromLatin1(role));
    l->setWordWrap(true);
    return l;
}

QVBoxLayout *installScrollingFrame(QWidget *page, const QString &title, int spacing)
{
    auto *outer = new QVBoxLayout(page);
    outer->setContentsMargins(0, 0, 0, 0);
    auto *scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("galleryScroll"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    outer->addWidget(scroll);

    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("galleryContent"));
    content->setStyleSheet(themed(QStringLiteral("QWidget#galleryContent { background: #FFFFFF; }")));
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(px(24), px(20), px(24), px(20));
    layout->setSpacing(px(spacing));
    layout->addWidget(label(title, "title"));
    scroll->setWidget(content);
    return layout;
}

ScrollingPage scrollingPage(const QString &title, int spacing)
{
    auto *page = new QWidget;
    QVBoxLayout *layout = installScrollingFrame(page, title, spacing);
    return {page, page->findChild<QScrollArea *>(QStringLiteral("galleryScroll")), layout};
}

QString defaultThemeDir()
{
    return themeDir(QStringLiteral("default"));
}

QString themeDir(const QString &nameOrFolder)
{
    if (nameOrFolder != QLatin1String("default") && nameOrFolder != QLatin1String("dark"))
        return nameOrFolder;
    // Next to an installed gallery first, then the build tree.
    const QString installed = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/lumo/themes/") + nameOrFolder;
    if (QFile::exists(installed + QStringLiteral("/images.json")))
        return QDir::cleanPath(installed);
    return QStringLiteral(LUMO_GALLERY_THEMES_DIR "/") + nameOrFolder;
}

namespace
{
Palette &galleryPalette()
{
    static Palette palette;
    return palette;
}
}

QString themed(const QString &css)
{
    return galleryPalette().recolorSheet(css);
}

QColor themedColor(const char *color, bool text)
{
    return QColor(galleryPalette().recolor(QString::fromLatin1(color), text));
}

std::vector<QString> styleFiles(const QString &themeDir)
{
    std::vector<QString> files;
    const QDir dir(themeDir + QStringLiteral("/styles"));
    const QStringList names = dir.entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        files.push_back(dir.filePath(name));
    return files;
}

QString captionLanguage(const QString &themeDir, const QString &requested)
{
    const QString code = requested.isEmpty() ? LumoLocale::getInstance()->getDefaultLanguage() : requested;
    if (QFile::exists(themeDir + QStringLiteral("/captions/") + code + QStringLiteral(".json")))
        return code;
    return QStringLiteral("enu");
}

QMap<QString, QString> readCaptions(const QString &file)
{
    QMap<QString, QString> captions;
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return captions;
    const QJsonObject object = QJsonDocument::fromJson(f.readAll()).object();
    for (auto it = object.begin(); it != object.end(); ++it)
        captions.insert(it.key(), it.value().toString());
    return captions;
}

void startUp(const Startup &startup)
{
    galleryPalette() = Palette::load(startup.themeDir + QStringLiteral("/palette.json"));
    if (!galleryPalette().isEmpty()) {
        // Widgets the theme does not style (an unstyled button, viewports) follow it through the palette.
        QPalette palette = QApplication::palette();
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
            palette.setColor(role, themedColor("#FFFFFF"));
        palette.setColor(QPalette::AlternateBase, themedColor("#F5F7FA"));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            palette.setColor(role, themedColor("#1F2933", true));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
            palette.setColor(role == QPalette::PlaceholderText ? QPalette::All : QPalette::Disabled, role, themedColor("#A7B1BD", true));
        QApplication::setPalette(palette);
    }
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), startup.themeDir);
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), startup.userDataDir);
    ImageManager::getInstance()->initialize(ImageManager::LoadAll);
    StyleManager::getInstance()->initialize(styleFiles(startup.themeDir));
    const QString language = captionLanguage(startup.themeDir, startup.language);
    ComponentStrings::getInstance()->installStrings(
        readCaptions(startup.themeDir + QStringLiteral("/captions/") + language + QStringLiteral(".json")));
}

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , navigation(new QListWidget)
    , stack(new QStackedWidget)
{
    setWindowTitle(QStringLiteral("Lumo Gallery"));
    auto *central = new QWidget;
    central->setObjectName(QStringLiteral("galleryCentral"));
    auto *layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    navigation->setObjectName(QStringLiteral("galleryNavigation"));
    navigation->setFixedWidth(px(168));
    navigation->setFrameShape(QFrame::NoFrame);
    layout->addWidget(navigation);
    layout->addWidget(stack, 1);
    setCentralWidget(central);
    setStyleSheet(DPIinfo::getInstance()->getScaledStyleSheet(themed(QStringLiteral(
        "QWidget#galleryCentral { background: #FFFFFF; }"
        "QListWidget#galleryNavigation { background: #F5F7FA; border-right: 1px solid #E3E8EE; padding: 12px 8px; outline: 0px; }"
        "QListWidget#galleryNavigation::item { color: #3C4A5C; padding: 7px 10px; border-radius: 6px; font-size: 13px; }"
        "QListWidget#galleryNavigation::item:selected { background: #E4ECFD; color: #1F55C2; }"
        "QLabel[galleryRole=\"title\"] { color: #1F2933; font-size: 20px; font-weight: 600; }"
        "QLabel[galleryRole=\"section\"] { color: #1F2933; font-size: 14px; font-weight: 600; padding-top: 8px; }"
        "QLabel[galleryRole=\"note\"] { color: #5B6B7F; font-size: 12px; }"))));

    for (const Page &page : pages()) {
        navigation->addItem(page.title);
        QWidget *widget = page.create();
        widget->setObjectName(QStringLiteral("galleryPage-") + slug(page.title));
        stack->addWidget(widget);
    }
    connect(navigation, SIGNAL(currentRowChanged(int)), stack, SLOT(setCurrentIndex(int)));
    navigation->setCurrentRow(0);
    resize(px(900), px(640));
}

int MainWindow::pageCount() const
{
    return stack->count();
}

QWidget *MainWindow::page(int index) const
{
    return stack->widget(index);
}

QWidget *MainWindow::showPage(int index)
{
    navigation->setCurrentRow(index);
    return stack->currentWidget();
}

bool renderPages(MainWindow &window, const QString &folder, QTextStream &out)
{
    if (!QDir().mkpath(folder))
        return false;
    window.show();
    const std::vector<Page> all = pages();
    bool ok = true;
    for (int i = 0; i < int(all.size()); ++i) {
        QWidget *page = window.showPage(i);
        if (all[size_t(i)].stage)
            all[size_t(i)].stage(page);
        for (int round = 0; round < 3; ++round)
            QApplication::processEvents();
        const QString base =
            QDir(folder).filePath(QStringLiteral("%1-%2").arg(i + 1, 2, 10, QLatin1Char('0')).arg(slug(all[size_t(i)].title)));
        const QString shot = base + QStringLiteral(".png");
        ok = window.grab().save(shot) && ok;
        out << QDir(shot).absolutePath() << '\n';
        // Long pages also get their whole content, beyond what the window shows.
        if (auto *scroll = page->findChild<QScrollArea *>(QStringLiteral("galleryScroll")); scroll && scroll->widget()) {
            const QString full = base + QStringLiteral("-full.png");
            ok = scroll->widget()->grab().save(full) && ok;
            out << QDir(full).absolutePath() << '\n';
        }
        out.flush();
    }
    return ok;
}
}

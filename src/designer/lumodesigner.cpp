// Qt Designer plugin: one collection, one data table, one interface class for every widget.

#include <lumo/lumo.h>

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QTemporaryDir>

#include <dlfcn.h>

namespace
{
// What Designer needs to place one widget. Constructors that want arguments get
// the defaults a form author would pick first.
struct WidgetEntry {
    const char *className;
    const char *header;
    const char *toolTip;
    const char *defaultProperties; // DOM <property> elements, or ""
    QWidget *(*create)(QWidget *parent);
};

template<typename W, typename... Args> QWidget *adopt(QWidget *parent, Args &&...args)
{
    auto *widget = new W(std::forward<Args>(args)...);
    widget->setParent(parent);
    return widget;
}

template<typename W> QWidget *withParent(QWidget *parent)
{
    return new W(parent);
}

#define LUMO_TEXT(t) "<property name=\"text\"><string>" t "</string></property>"

const WidgetEntry widgetTable[] = {
    {"LumoButton", "controls", "Flat push button in the apply look", LUMO_TEXT("Apply"),
     [](QWidget *p) { return adopt<LumoButton>(p, QStringLiteral("Apply"), int(LumoButton::Apply)); }},
    {"LumoIconButton", "controls", "Icon button with hover, pressed and disabled images", "",
     [](QWidget *p) { return adopt<LumoIconButton>(p, QStringLiteral("bt_pagebar_refresh")); }},
    {"LumoCheckBox", "controls", "Check box", LUMO_TEXT("Check box"), [](QWidget *p) { return adopt<LumoCheckBox>(p); }},
    {"LumoRadioButton", "controls", "Radio button", LUMO_TEXT("Radio button"), [](QWidget *p) { return adopt<LumoRadioButton>(p); }},
    {"LumoLineEdit", "controls", "Line edit between two labels, with an error look", "", withParent<LumoLineEdit>},
    {"LumoLabel", "controls", "Label that grows to fit wrapped text", LUMO_TEXT("Label"), withParent<LumoLabel>},
    {"ClickableLabel", "controls", "Label that emits clicked()", LUMO_TEXT("Clickable label"),
     [](QWidget *p) { return adopt<ClickableLabel>(p); }},
    {"LinkLabel", "controls", "Label that looks like a hyperlink under the pointer", LUMO_TEXT("Link"),
     [](QWidget *p) { return adopt<LinkLabel>(p); }},
    {"LumoComboBox", "controls", "Combo box", "", withParent<LumoComboBox>},
    {"LumoTimeComboBox", "controls", "Combo box for a time of day", "", withParent<LumoTimeComboBox>},
    {"LumoButtonPath", "controls", "Breadcrumb bar for a slash-separated path", "", withParent<LumoButtonPath>},
    {"LumoFilterBar", "controls", "Search field with a filter menu button", "", withParent<LumoFilterBar>},
    {"LumoFootbar", "controls", "Button row at the bottom of a page or sheet", "", withParent<LumoFootbar>},
    {"LumoVerticalScrollArea", "controls", "Vertical scroll area that shades its bottom edge", "", withParent<LumoVerticalScrollArea>},
    {"LumoPagingBar", "views", "Paging bar with its own paging model", "",
     [](QWidget *p) -> QWidget * {
         auto *model = new LumoPagingModel(20);
         auto *bar = new LumoPagingBar(model, p);
         model->setParent(bar);
         return bar;
     }},
    {"LumoCalanderView", "views", "Month calendar", "", withParent<LumoCalanderView>},
    {"LumoDateSelector", "views", "Combo box that drops down a calendar", "", [](QWidget *p) { return adopt<LumoDateSelector>(p); }},
    {"ResizeSignalTableWidget", "views", "Table widget that announces its new size", "",
     [](QWidget *p) { return adopt<ResizeSignalTableWidget>(p, 3, 3); }},
    {"LumoTableWidget", "views", "Table with a separate header and proportional columns", "",
     [](QWidget *p) -> QWidget * {
         LumoTableColumnsInfo info;
         info.addColumn(QStringLiteral("Name"), 200, true, 1.0);
         info.addColumn(QStringLiteral("Size"), 80, false, 0.0);
         return new LumoTableWidget(info, p);
     }},
    {"LumoTreeWidget", "views", "Folder tree", "", withParent<LumoTreeWidget>},
    {"LumoSheet", "sheets", "Sheet frame with its shadow", "", withParent<LumoSheet>},
    {"BoxShadowWrapper", "sheets", "Holder that draws a box shadow around one widget", "",
     [](QWidget *p) -> QWidget * { return new BoxShadowWrapper(p, 4, false, {}, true); }},
    {"MessageLabel", "sheets", "Text label of a message sheet", LUMO_TEXT("Message"), withParent<MessageLabel>},
    {"LumoMessageSheet", "sheets", "Message sheet (shown over its window with exec())", "",
     [](QWidget *p) -> QWidget * { return new LumoMessageSheet(LumoMessageSheet::Information, QStringLiteral("Message"), p); }},
    {"LumoInputSheet", "sheets", "Sheet that asks for one line of text", "", withParent<LumoInputSheet>},
    {"HtmlTextBrowser", "help", "Text browser that fetches a page's remote images", "", withParent<HtmlTextBrowser>},
};

#undef LUMO_TEXT

// The installed theme sits at a fixed place relative to the installed plugin;
// a plugin loaded from the build tree uses the build tree's theme.
QString themeDir()
{
    Dl_info info;
    if (dladdr(reinterpret_cast<void *>(&themeDir), &info) && info.dli_fname) {
        const QString installed = QFileInfo(QFile::decodeName(info.dli_fname)).absolutePath() + QStringLiteral("/" LUMO_DESIGNER_TO_THEME);
        if (QFile::exists(installed + QStringLiteral("/images.json")))
            return QDir::cleanPath(installed);
    }
    return QStringLiteral(LUMO_DESIGNER_BUILD_THEME);
}

QtMessageHandler forwardedHandler = nullptr;

void dropMissingPathWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!message.startsWith(QLatin1String("Cannot find path by key")))
        forwardedHandler(type, context, message);
}

// An application that loads forms at run time has already started the
// registries with its own theme; asking must not warn about it.
bool registriesStarted()
{
    forwardedHandler = qInstallMessageHandler(dropMissingPathWarning);
    const bool started = !UIPathManager::getInstance()->getPath(QStringLiteral("resource_path")).isEmpty();
    qInstallMessageHandler(forwardedHandler);
    return started;
}

void ensureRegistries()
{
    static bool checked = false;
    if (checked)
        return;
    checked = true;
    if (registriesStarted())
        return;
    // The temporary images must outlive every widget that shows them: keep them until exit.
    static QTemporaryDir userData;
    const QDir theme(themeDir());
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), theme.path());
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), userData.path());
    ImageManager::getInstance()->initialize(ImageManager::LoadLazily);
    std::vector<QString> styles;
    const QDir styleDir(theme.filePath(QStringLiteral("styles")));
    for (const QFileInfo &file : styleDir.entryInfoList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name))
        styles.push_back(file.filePath());
    StyleManager::getInstance()->initialize(styles);
    QFile captions(theme.filePath(QStringLiteral("captions/enu.json")));
    QMap<QString, QString> strings;
    if (captions.open(QIODevice::ReadOnly)) {
        const QVariantMap map = QJsonDocument::fromJson(captions.readAll()).object().toVariantMap();
        for (auto it = map.begin(); it != map.end(); ++it)
            strings.insert(it.key(), it.value().toString());
    }
    ComponentStrings::getInstance()->installStrings(strings);
}

// The widget box shows each widget as it looks: a miniature of a fresh instance.
QIcon miniature(const WidgetEntry &entry)
{
    const int side = 64;
    QWidget *widget = entry.create(nullptr);
    widget->resize(widget->sizeHint().expandedTo(QSize(side, side / 2)).boundedTo(QSize(4 * side, 4 * side)));
    const QPixmap shot = widget->grab().scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    delete widget;
    QPixmap icon(side, side);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.drawPixmap((side - shot.width()) / 2, (side - shot.height()) / 2, shot);
    return QIcon(icon);
}

class LumoWidgetInterface : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    LumoWidgetInterface(const WidgetEntry &entry, QObject *parent)
        : QObject(parent)
        , entry(entry)
    {
    }

    QString name() const override { return QLatin1String(entry.className); }
    QString group() const override { return QStringLiteral("Lumo"); }
    QString toolTip() const override { return QLatin1String(entry.toolTip); }
    QString whatsThis() const override { return toolTip(); }
    QString includeFile() const override { return QStringLiteral("lumo/%1.h").arg(QLatin1String(entry.header)); }
    bool isContainer() const override { return false; }
    bool isInitialized() const override { return initialized; }
    void initialize(QDesignerFormEditorInterface *) override { initialized = true; }

    QIcon icon() const override
    {
        ensureRegistries();
        if (cachedIcon.isNull())
            cachedIcon = miniature(entry);
        return cachedIcon;
    }

    QWidget *createWidget(QWidget *parent) override
    {
        ensureRegistries();
        return entry.create(parent);
    }

    QString domXml() const override
    {
        QString objectName = name();
        objectName[0] = objectName[0].toLower();
        return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\">%3</widget></ui>")
            .arg(name(), objectName, QLatin1String(entry.defaultProperties));
    }

private:
    const WidgetEntry &entry;
    mutable QIcon cachedIcon;
    bool initialized = false;
};
}

class LumoDesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
public:
    explicit LumoDesignerPlugin(QObject *parent = nullptr)
        : QObject(parent)
    {
        for (const WidgetEntry &entry : widgetTable)
            widgets.append(new LumoWidgetInterface(entry, this));
    }

    QList<QDesignerCustomWidgetInterface *> customWidgets() const override { return widgets; }

private:
    QList<QDesignerCustomWidgetInterface *> widgets;
};

#include "lumodesigner.moc"

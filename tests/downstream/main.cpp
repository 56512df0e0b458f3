// A client of the installed package: the usual start-up from the theme that the
// package names, then a window of widgets. Any warning of the library fails it.
#include <lumo/lumo.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVBoxLayout>
#include <cstdio>

static int libraryWarnings = 0;
static QtMessageHandler previousHandler = nullptr;

static void countWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && qstrcmp(context.category, "debug.message") == 0)
        ++libraryWarnings;
    previousHandler(type, context, message);
}

int main(int argc, char **argv)
{
    previousHandler = qInstallMessageHandler(countWarnings);
    QApplication app(argc, argv);
    if (argc < 2)
        return 2;
    const QString theme = QStringLiteral(DOWNSTREAM_THEME_DIR);
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), theme);
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), QString::fromLocal8Bit(argv[1]));
    ImageManager::getInstance()->initialize(ImageManager::LoadAll);
    std::vector<QString> styles;
    const QStringList names = QDir(theme + QStringLiteral("/styles")).entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        styles.push_back(theme + QStringLiteral("/styles/") + name);
    StyleManager::getInstance()->initialize(styles);
    QFile captionFile(theme + QStringLiteral("/captions/enu.json"));
    QMap<QString, QString> captions;
    if (captionFile.open(QIODevice::ReadOnly)) {
        const QJsonObject object = QJsonDocument::fromJson(captionFile.readAll()).object();
        for (auto it = object.begin(); it != object.end(); ++it)
            captions.insert(it.key(), it.value().toString());
    }
    ComponentStrings::getInstance()->installStrings(captions);

    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new LumoButton(QStringLiteral("Apply"), LumoButton::Apply));
    layout->addWidget(new LumoLineEdit);
    layout->addWidget(new LumoDateSelector);
    layout->addWidget(new LumoPagingBar(new LumoPagingModel(20, &window)));
    layout->addWidget(new LumoTreeWidget);
    window.show();
    QApplication::processEvents();
    const bool styled = !window.grab().isNull() && !getGlobalImage("icon_information", ImageManager::Normal).isNull() &&
        getStyleSheet("component.apply_button", false).contains(QStringLiteral("QPushButton")) &&
        ComponentStrings::getInstance()->getString(QStringLiteral("today")) != QStringLiteral("today") &&
        FileTypeMap::getInstance()->getFiletypeMapping(QStringLiteral("MP3"), false) == QStringLiteral("audio.png");
    const bool ok = styled && libraryWarnings == 0;
    std::printf("%s (theme %s, %d library warnings)\n", ok ? "downstream ok" : "downstream FAILED", qPrintable(theme), libraryWarnings);
    return ok ? 0 : 1;
}

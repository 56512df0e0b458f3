// A client of the installed package: the usual start-up with the installed theme.
#include <lumo/lumo.h>

#include <QApplication>
#include <QDir>
#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc < 3)
        return 2;
    const QString theme = QString::fromLocal8Bit(argv[1]);
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), theme);
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), QString::fromLocal8Bit(argv[2]));
    ImageManager::getInstance()->initialize(ImageManager::LoadLazily);
    std::vector<QString> styles;
    const QStringList names = QDir(theme + QStringLiteral("/styles")).entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        styles.push_back(theme + QStringLiteral("/styles/") + name);
    StyleManager::getInstance()->initialize(styles);
    const bool ok = !getGlobalImage("icon_information", ImageManager::Normal).isNull() &&
        getStyleSheet("component.apply_button", false).contains(QStringLiteral("QPushButton")) &&
        FileTypeMap::getInstance()->getFiletypeMapping(QStringLiteral("MP3"), false) == QStringLiteral("audio.png");
    std::printf("%s\n", ok ? "downstream ok" : "downstream FAILED");
    return ok ? 0 : 1;
}

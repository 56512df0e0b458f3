#include "resources/registries_p.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdlib>

namespace
{
// A manifest only lists names; anything this large is not one.
constexpr qint64 MaxManifestBytes = 16 * 1024 * 1024;

// Design images are drawn at four times their display size.
QPixmap scaleForScreen(const QPixmap &source, bool applyDevicePixelRatio)
{
    const double dpi = DPIinfo::getInstance()->getDPI();
    const double dpr = DPIinfo::getInstance()->getDPR();
    auto dimension = [&](int d) {
        const int a = lumo::roundHalfAway(d * 0.25);
        const int b = lumo::roundHalfAway(a * dpi);
        return applyDevicePixelRatio ? lumo::roundHalfAway(b * dpr) : b;
    };
    QPixmap result = source.scaled(dimension(source.width()), dimension(source.height()), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (applyDevicePixelRatio)
        result.setDevicePixelRatio(dpr);
    return result;
}

// What QPixmap(path) gives, without its detour through QPixmapCache: a file
// lookup per load and a cache entry holding the unscaled source, neither of
// which is ever used again, cost more than the decoding itself.
QPixmap loadPixmap(const QString &path)
{
    return QPixmap::fromImage(QImage(path));
}
}

ImageManager::ImageManager() = default;
ImageManager::~ImageManager() = default;

ImageManager *ImageManager::getInstance()
{
    static ImageManager instance;
    return &instance;
}

void ImageManager::initialize(ImageManager::InitializeType type)
{
    initializeType = type;
    imageFolder = UIPathManager::getInstance()->getPath(QStringLiteral("resource_path")) + QStringLiteral("/images");
    tempImageFolder = UIPathManager::getInstance()->getPath(QStringLiteral("user_data_path")) + QStringLiteral("/tmp_images");
    QDir().mkpath(tempImageFolder);
    readJson();
    if (type == LoadAll)
        prepareImages();
}

void ImageManager::readJson()
{
    QFile file(UIPathManager::getInstance()->getPath(QStringLiteral("resource_path")) + QStringLiteral("/images.json"));
    QJsonObject manifest;
    if (file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        if (file.size() > MaxManifestBytes)
            qCWarning(lumoLog) << "Cannot read image manifest" << file.fileName() << "larger than" << MaxManifestBytes << "bytes";
        else
            manifest = QJsonDocument::fromJson(file.readAll()).object();
    }
    const QJsonArray images = manifest.value(QStringLiteral("images")).toArray();
    for (const QJsonValue &name : images)
        parseJson(name.toString());
    const QJsonArray temporary = manifest.value(QStringLiteral("tmp_images")).toArray();
    for (const QJsonValue &name : temporary)
        prepareTempImage(name.toString().remove(QLatin1Char(' ')));
}

void ImageManager::parseJson(const QString &name)
{
    ImageFile entry;
    entry.fileNames = {name, name + QStringLiteral("_hover"), name + QStringLiteral("_click"), name + QStringLiteral("_disable")};
    imageFiles[name] = entry;
}

void ImageManager::prepareImages()
{
    for (auto &entry : imageFiles)
        loadEntry(entry.second);
}

void ImageManager::lazyLoad(const QString &name)
{
    ImageFile &entry = imageFiles[name];
    if (!entry.loaded)
        loadEntry(entry);
}

void ImageManager::loadEntry(ImageFile &entry)
{
    for (int state = Normal; state <= Disable; ++state) {
        const QPixmap source = loadPixmap(getImageFullPath(entry.fileNames[state]));
        if (source.isNull()) {
            entry.fileNames[state].clear();
            continue;
        }
        entry.pixmaps[state] = scaleForScreen(source, true);
        entry.loaded = true;
    }
}

void ImageManager::prepareTempImage(const QString &name)
{
    // The name becomes part of a file name; a separator would let it leave the folder.
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\'))) {
        qCWarning(lumoLog) << "Cannot write temporary image" << name;
        return;
    }
    const QPixmap source = loadPixmap(getImageFullPath(name));
    if (source.isNull())
        return;
    const QPixmap scaled = scaleForScreen(source, false);
    QByteArray png;
    QBuffer buffer(&png);
    if (buffer.open(QIODevice::WriteOnly) && scaled.save(&buffer, "PNG"))
        lumo::replaceFile(getTempImageFullPath(name), png);
}

QPixmap ImageManager::getImage(const QString &name, ImageManager::ImageType type)
{
    auto it = imageFiles.find(name);
    if (it == imageFiles.end()) {
        qCWarning(lumoLog) << "Cannot load pixmap" << name;
        return QPixmap();
    }
    if (initializeType == LoadLazily)
        lazyLoad(name);
    const ImageFile &entry = it->second;
    const bool known = type >= Normal && type <= Disable;
    if (known && !entry.fileNames[type].isEmpty())
        return entry.pixmaps[type];
    qCWarning(lumoLog) << "Cannot load pixmap" << name << "with type" << int(type) << "[use default icon]";
    return entry.pixmaps[Normal];
}

const QString &ImageManager::getImageFolder()
{
    if (imageFolder.isEmpty()) {
        qCWarning(lumoLog) << "ImageManager is not initialized";
        std::abort();
    }
    return imageFolder;
}

const QString &ImageManager::getTempImageFolder()
{
    if (tempImageFolder.isEmpty()) {
        qCWarning(lumoLog) << "ImageManager is not initialized";
        std::abort();
    }
    return tempImageFolder;
}

QString ImageManager::getImageFullPath(const QString &fileName)
{
    return imageFolder + QLatin1Char('/') + fileName + QStringLiteral(".png");
}

QString ImageManager::getTempImageFullPath(const QString &name)
{
    return tempImageFolder + QStringLiteral("/tmp_") + name + QStringLiteral(".png");
}

QPixmap getGlobalImage(const char *name, ImageManager::ImageType type)
{
    return ImageManager::getInstance()->getImage(QString::fromUtf8(name), type);
}

QPixmap getGlobalImage(const QString &name, ImageManager::ImageType type)
{
    return ImageManager::getInstance()->getImage(name, type);
}

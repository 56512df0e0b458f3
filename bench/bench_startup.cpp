// Start-up costs of the registries: ImageManager::initialize(LoadAll) on the
// default theme against decoding the same PNG files, and a scaled style sheet
// lookup against a bare QMap lookup of the same text.

#include "benchreport.h"

#include <lumo/lumo.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmapCache>
#include <QTemporaryDir>

#include <vector>

namespace
{
const QString theme = QStringLiteral(LUMO_THEME_DIR);

// Every file the manifest makes the image manager read.
QStringList manifestFiles()
{
    QFile file(theme + QStringLiteral("/images.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject manifest = QJsonDocument::fromJson(file.readAll()).object();
    QStringList paths;
    auto add = [&](const QString &name) {
        const QString path = theme + QStringLiteral("/images/") + name + QStringLiteral(".png");
        if (QFile::exists(path))
            paths << path;
    };
    for (const QJsonValue &name : manifest.value(QStringLiteral("images")).toArray()) {
        for (const char *suffix : {"", "_hover", "_click", "_disable"})
            add(name.toString() + QLatin1String(suffix));
    }
    for (const QJsonValue &name : manifest.value(QStringLiteral("tmp_images")).toArray())
        add(name.toString().remove(QLatin1Char(' ')));
    return paths;
}

template<typename F> double bestMs(int rounds, F &&work)
{
    double best = 1e300;
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        best = qMin(best, timer.nsecsElapsed() / 1e6);
    }
    return best;
}
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QTemporaryDir userData;
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), theme);
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), userData.path());

    const QStringList files = manifestFiles();
    qint64 pixels = 0;
    for (const QString &path : files)
        pixels += QImage(path).sizeInBytes() / 4;
    std::printf("%lld files, %.1f Mpx\n", qlonglong(files.size()), pixels / 1e6);

    double lumo = 1e300;
    double decode = 1e300;
    double decodeAndKeep = 1e300;
    std::vector<QImage> kept;
    for (int round = 0; round < 3; ++round) {
        // QPixmap keeps files it loaded in QPixmapCache; every round starts cold.
        QPixmapCache::clear();
        lumo = qMin(lumo, bestMs(1, [] { ImageManager::getInstance()->initialize(ImageManager::LoadAll); }));
        decode = qMin(decode, bestMs(1, [&] {
                          for (const QString &path : files) {
                              const QImage image(path);
                              if (image.isNull())
                                  std::printf("cannot decode %s\n", qPrintable(path));
                          }
                      }));
        // Holding every decoded image, as a registry must, costs fresh memory on top.
        decodeAndKeep = qMin(decodeAndKeep, bestMs(1, [&] {
                                 for (const QString &path : files)
                                     kept.emplace_back(path);
                             }));
        kept.clear();
    }
    bench::report(bench::atScale(QStringLiteral("ImageManager::initialize(LoadAll) vs decoding the PNGs")), lumo, decode, 1.3);
    bench::report(bench::atScale(QStringLiteral("ImageManager::initialize(LoadAll) vs decoding and keeping the PNGs")), lumo, decodeAndKeep,
                  1.3);

    const std::vector<QString> styleFiles = bench::styleFiles(theme);
    StyleManager::getInstance()->initialize(styleFiles);

    // The peer holds the finished text of every key in a plain map.
    QMap<QString, QString> plain;
    QStringList keys;
    for (const QString &path : styleFiles) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            continue;
        for (const QByteArray &line : file.readAll().split('\n')) {
            const QString text = QString::fromUtf8(line).trimmed();
            if (text.startsWith(QLatin1String("==")) && text.endsWith(QLatin1String("==")))
                keys << QString(text).remove(QLatin1Char('=')).remove(QLatin1Char(' '));
        }
    }
    for (const QString &key : keys)
        plain.insert(key, getStyleSheet(key, false));
    constexpr int Lookups = 200000;
    qsizetype sink = 0;
    double sheet = 1e300;
    double map = 1e300;
    for (int round = 0; round < 3; ++round) {
        sheet = qMin(sheet, bestMs(1, [&] {
                         for (int i = 0; i < Lookups; ++i)
                             sink += getStyleSheet(keys[i % keys.size()], false).size();
                     }));
        map = qMin(map, bestMs(1, [&] {
                       for (int i = 0; i < Lookups; ++i)
                           sink += plain.value(keys[i % keys.size()]).size();
                   }));
    }
    std::printf("%lld style keys (checksum %lld)\n", qlonglong(keys.size()), qlonglong(sink));
    bench::report(bench::atScale(QStringLiteral("getStyleSheet(key, false) vs QMap lookup")), sheet * 1000 / Lookups, map * 1000 / Lookups,
                  2.0, "us");
    return 0;
}

// Derives a theme's stylesheets from another theme's through a colour map.
//
// Usage: lumo_recolor <palette.json> <input folder> <output folder>

#include "palette.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 4) {
        std::fprintf(stderr, "usage: lumo_recolor <palette.json> <input folder> <output folder>\n");
        return 1;
    }
    const Palette palette = Palette::load(args[1]);
    if (palette.isEmpty()) {
        std::fprintf(stderr, "lumo_recolor: no colour map in %s\n", qPrintable(args[1]));
        return 1;
    }
    const QDir in(args[2]), out(args[3]);
    if (!QDir().mkpath(out.path()))
        return 1;
    for (const QString &name : in.entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name)) {
        QFile source(in.filePath(name)), target(out.filePath(name));
        if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            std::fprintf(stderr, "lumo_recolor: cannot read %s or write %s\n", qPrintable(source.fileName()),
                         qPrintable(target.fileName()));
            return 1;
        }
        target.write(palette.recolorStyles(QString::fromUtf8(source.readAll())).toUtf8());
    }
    return 0;
}

#include "resources/registries_p.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cmath>
#include <cstdio>
#include <limits>

Q_LOGGING_CATEGORY(lumoLog, "debug.message")

namespace lumo
{
namespace
{
int saturate(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return int(value);
}
}

int roundHalfAway(double value)
{
    return saturate(std::round(value));
}

int truncated(double value)
{
    return saturate(std::trunc(value));
}

int scaled(double value)
{
    return truncated(DPIinfo::getInstance()->getDPI() * value);
}

QSize logicalSize(const QPixmap &pixmap)
{
    const double dpr = DPIinfo::getInstance()->getDPR();
    return QSize(roundHalfAway(pixmap.width() / dpr), roundHalfAway(pixmap.height() / dpr));
}

QString style(const char *key)
{
    return getStyleSheet(key, false);
}

QString styles(std::initializer_list<const char *> keys)
{
    QString text;
    for (const char *key : keys)
        text += style(key);
    return text;
}

QString caption(const char *key)
{
    return ComponentStrings::getInstance()->getString(QString::fromUtf8(key));
}

bool replaceFile(const QString &path, const QByteArray &data)
{
    const QFileInfo target(path);
    QTemporaryFile temporary(target.absolutePath() + QStringLiteral("/.lumo-XXXXXX"));
    if (!temporary.open() || temporary.write(data) != data.size() || !temporary.flush())
        return false;
    temporary.close();
    // QFile::rename refuses to overwrite and QSaveFile writes through links; rename(2) replaces the entry itself.
    if (std::rename(QFile::encodeName(temporary.fileName()).constData(), QFile::encodeName(target.absoluteFilePath()).constData()) != 0)
        return false;
    temporary.setAutoRemove(false);
    return true;
}
}

#include "help/help_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>
#include <QTemporaryFile>

#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace lumo
{
namespace help
{
bool announcesOversize(QNetworkReply *reply)
{
    return reply->header(QNetworkRequest::ContentLengthHeader).toLongLong() > maximumBodySize;
}

bool ensurePrivateFolder(const QString &path)
{
    constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    QFileInfo info(path);
    // isSymLink() looks at the entry itself, so a dangling link counts as taken too.
    if (!info.isSymLink() && !info.exists()) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 3, 0)
        QDir().mkdir(path, ownerOnly);
#else
        QDir().mkdir(path);
#endif
    }
    info.refresh();
    if (info.isSymLink() || info.isJunction() || !info.isDir())
        return false;
#ifdef Q_OS_UNIX
    if (info.ownerId() != uint(::geteuid()))
        return false;
#endif
    if (info.permissions() & (QFile::WriteGroup | QFile::WriteOther))
        return QFile::setPermissions(path, ownerOnly);
    return true;
}

bool isSafeCacheFileName(const QString &name)
{
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return false;
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) || name.contains(QChar(0)))
        return false;
    // Longer than a file name may be on any of our platforms: it could never be written.
    return QFile::encodeName(name).size() <= 255;
}

bool replaceFile(const QString &path, const QByteArray &data)
{
    const QFileInfo target(path);
    QTemporaryFile temporary(target.absolutePath() + QStringLiteral("/.download-XXXXXX"));
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
}

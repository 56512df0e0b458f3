#include "help/help_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>

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

}
}

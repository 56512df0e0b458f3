#include <lumo/singleapplication.h>

#include "resources/registries_p.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace
{
bool setLock(int fd, short type, bool block)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET; // start 0 and length 0: the whole file, however it grows
    int result;
    do {
        result = ::fcntl(fd, block ? F_SETLKW : F_SETLK, &lock);
    } while (result == -1 && errno == EINTR);
    return result != -1;
}
}

QtLockedFile::QtLockedFile() = default;

QtLockedFile::QtLockedFile(const QString &name)
    : QFile(name)
{
}

QtLockedFile::~QtLockedFile()
{
    if (isOpen())
        unlock();
}

bool QtLockedFile::open(OpenMode mode)
{
    if (mode & QIODevice::Truncate) {
        qCWarning(lumoLog) << "Cannot open" << fileName() << "with Truncate: truncate it after taking the write lock";
        return false;
    }
    return QFile::open(mode);
}

bool QtLockedFile::lock(LockMode mode, bool block)
{
    if (!isOpen()) {
        qCWarning(lumoLog) << "Cannot lock" << fileName() << "because it is not open";
        return false;
    }
    if (mode == NoLock)
        return unlock();
    if (mode == currentMode)
        return true;
    // A held lock is converted in place, so a failed attempt keeps it.
    if (!setLock(handle(), mode == ReadLock ? F_RDLCK : F_WRLCK, block)) {
        const int error = errno;
        if (!block && (error == EAGAIN || error == EACCES))
            return false; // held by another process: an answer, not a failure
        qCWarning(lumoLog) << "Cannot lock" << fileName() << std::strerror(error);
        return false;
    }
    currentMode = mode;
    return true;
}

bool QtLockedFile::unlock()
{
    if (!isOpen()) {
        qCWarning(lumoLog) << "Cannot unlock" << fileName() << "because it is not open";
        return false;
    }
    if (currentMode == NoLock)
        return true;
    if (!setLock(handle(), F_UNLCK, false)) {
        qCWarning(lumoLog) << "Cannot unlock" << fileName() << std::strerror(errno);
        return false;
    }
    currentMode = NoLock;
    return true;
}

bool QtLockedFile::isLocked() const
{
    return currentMode != NoLock;
}

QtLockedFile::LockMode QtLockedFile::lockMode() const
{
    return currentMode;
}

void QtLockedFile::close()
{
    currentMode = NoLock;
    QFile::close();
}

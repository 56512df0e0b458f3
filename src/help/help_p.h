#ifndef LUMO_HELP_P_H
#define LUMO_HELP_P_H

// Limits and cache-folder checks shared by the help classes. Not installed.

#include <QByteArray>
#include <QString>
#include <QtGlobal>

class QNetworkReply;

namespace lumo
{
namespace help
{
/** A help page or picture larger than this is aborted: it cannot be a real one. */
constexpr qint64 maximumBodySize = qint64(32) * 1024 * 1024;
/** How much a reply buffers before the network thread waits for it to be read. */
constexpr qint64 networkBufferSize = qint64(1) * 1024 * 1024;
/** Picture downloads running at once per view; the others wait their turn. */
constexpr int maximumRunningDownloads = 6;
/** A stalled picture download gives up after this long without data, freeing its slot. */
constexpr int downloadStallTimeout = 30000;
/** A base address or image source longer than this is ignored rather than requested. */
constexpr int maximumSourceLength = 4096;
/** Picture arrivals within this many ms share one re-layout of the page. */
constexpr int relayoutDelay = 50;

/** Whether @p reply announced a body larger than maximumBodySize. */
bool announcesOversize(QNetworkReply *reply);

/**
 * Makes sure @p path is a real folder of this user that other users cannot
 * write into, creating it (owner-only) when it is missing. A link, a foreign
 * folder or a file in its place gives false and nothing is created.
 */
bool ensurePrivateFolder(const QString &path);

/** Whether @p name can name a file directly inside the cache folder. */
bool isSafeCacheFileName(const QString &name);

}
}

#endif

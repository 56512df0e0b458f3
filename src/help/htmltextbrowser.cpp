#include <lumo/help.h>

#include "help/help_p.h"
#include "resources/registries_p.h"

#include <QDir>
#include <QTimer>

namespace
{
bool isWebAddress(const QString &address)
{
    const QString scheme = QUrl(address, QUrl::TolerantMode).scheme().toLower();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https");
}
}

HtmlTextBrowser::HtmlTextBrowser(QWidget *parent)
    : QTextBrowser(parent)
{
}

HtmlTextBrowser::~HtmlTextBrowser()
{
    // Deleting a running downloader also drops its request.
    for (ImageDownloader *downloader : std::as_const(owned))
        delete downloader;
}

QString HtmlTextBrowser::imageCacheFolder()
{
    return QDir::tempPath() + QStringLiteral("/lumora_help/image");
}

void HtmlTextBrowser::setText(const QString &text)
{
    if (!Qt::mightBeRichText(text)) {
        QTextEdit::setText(text);
        return;
    }
    static const QString baseMarker = QStringLiteral("<base href=\"");
    const qsizetype b = text.indexOf(baseMarker);
    const qsizetype e = b < 0 ? -1 : text.indexOf(QLatin1Char('"'), b + 12);
    // A base address too long to be real would be copied into every image address.
    if (b < 0 || e < 0 || e - b - 12 > lumo::help::maximumSourceLength) {
        QTextEdit::setText(text);
        return;
    }
    baseHref = text.mid(b + 12, e - b - 12);

    const QString cache = imageCacheFolder();
    // Both levels are checked, not just created: the temporary folder is shared with other users.
    const bool cacheUsable =
        lumo::help::ensurePrivateFolder(QDir::tempPath() + QStringLiteral("/lumora_help")) && lumo::help::ensurePrivateFolder(cache);
    if (!cacheUsable) {
        qCWarning(lumoLog) << "Cannot use the help image folder" << cache;
        QTextEdit::setText(text);
        return;
    }
    setSearchPaths(QStringList(cache) + searchPaths());

    static const QString imageMarker = QStringLiteral("<img");
    static const QString sourceMarker = QStringLiteral("src=\"");
    QSet<QString> seen;
    qsizetype pos = e;
    for (;;) {
        const qsizetype i = text.indexOf(imageMarker, pos);
        if (i < 0)
            break;
        const qsizetype s = text.indexOf(sourceMarker, i);
        if (s < 0)
            break;
        const qsizetype q = text.indexOf(QLatin1Char('"'), s + 5);
        // An unterminated attribute runs to the end of the page: nothing after it is an image.
        if (q < 0)
            break;
        pos = s;
        if (q - s - 5 > lumo::help::maximumSourceLength)
            continue;
        const QString src = text.mid(s + 5, q - s - 5);
        if (seen.contains(src))
            continue;
        seen.insert(src);

        const QString name = src.mid(src.lastIndexOf(QLatin1Char('/')) + 1);
        const QString address = baseHref + src;
        if (!lumo::help::isSafeCacheFileName(name) || !isWebAddress(address))
            continue;
        auto *downloader = new ImageDownloader(cache + QStringLiteral("/../image/") + name, address, nullptr);
        connect(downloader, SIGNAL(sigDownloadFinish(QString, int)), this, SLOT(slotDownloadFinished(QString, int)));
        downloaders.insert(address, downloader);
        owned.insert(downloader);
        waiting.enqueue(downloader);
    }
    startWaitingDownloads();
    QTextEdit::setText(text);
}

void HtmlTextBrowser::reload()
{
    relayoutScheduled = false;
    if (!source().isEmpty()) {
        QTextBrowser::reload();
        return;
    }
    // A page given as text has no source to load again; laying it out again picks up the new pictures.
    document()->markContentsDirty(0, document()->characterCount());
}

void HtmlTextBrowser::slotDownloadFinished(QString url, int result)
{
    Q_UNUSED(result)
    // The sender, not the map entry: a later showing of the page may have replaced the entry.
    auto *downloader = qobject_cast<ImageDownloader *>(sender());
    if (!downloader || !owned.remove(downloader))
        return;
    if (downloaders.value(url) == downloader)
        downloaders.remove(url);
    downloader->deleteLater();
    --running;
    startWaitingDownloads();
    if (!relayoutScheduled) {
        relayoutScheduled = true;
        QTimer::singleShot(lumo::help::relayoutDelay, this, SLOT(reload()));
    }
}

void HtmlTextBrowser::startWaitingDownloads()
{
    while (running < lumo::help::maximumRunningDownloads && !waiting.isEmpty()) {
        ++running;
        waiting.dequeue()->start();
    }
}

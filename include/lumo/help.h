#ifndef LUMO_HELP_H
#define LUMO_HELP_H

/**
 * @file
 * The help viewer: a dialog that asks the application's knowledge-base server
 * for a page and falls back to the installed offline pages, and the text
 * browser that fetches a page's pictures into a local cache.
 */

#include <lumo/lumo_export.h>

#include <QDialog>
#include <QHash>
#include <QMap>
#include <QQueue>
#include <QSet>
#include <QString>
#include <QTextBrowser>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

/**
 * One-shot download of one picture of a help page into the local image cache.
 *
 * The body is written through a temporary file that is renamed over the target,
 * so a link planted in place of the cache file is replaced, never followed.
 */
class LUMO_EXPORT ImageDownloader : public QObject
{
    Q_OBJECT
public:
    /** Will fetch @p url into @p filePath; nothing is sent before start(). */
    ImageDownloader(const QString &filePath, const QString &url, QObject *parent);
    ~ImageDownloader() override;
    Q_DISABLE_COPY(ImageDownloader)

    /** Sends the request; the result arrives as sigDownloadFinish(). Call once. */
    void start();
    /** True once sigDownloadFinish() was emitted. */
    bool isFinished();

Q_SIGNALS:
    /** @p url as given to the constructor; @p result 0 on success, -1 on a network error. */
    void sigDownloadFinish(QString url, int result);

private Q_SLOTS:
    void slotFinishDownload(QNetworkReply *reply);
    void slotCheckSize();

private:
    QString filePath;
    QString url;
    QNetworkAccessManager *networkManager = nullptr;
    bool finished = false;
    int result = 0;
    QByteArray body; // received so far
};

/**
 * Text browser for help pages: fetches the pictures a page names relative to its
 * HTML base element into a local cache and re-renders the page as they arrive.
 */
class LUMO_EXPORT HtmlTextBrowser : public QTextBrowser
{
    Q_OBJECT
public:
    /** An empty browser; set its page with setText(). */
    explicit HtmlTextBrowser(QWidget *parent = nullptr);
    ~HtmlTextBrowser() override;
    Q_DISABLE_COPY(HtmlTextBrowser)

    /** The folder the pictures are cached in: the temporary folder + "/lumora_help/image". */
    static QString imageCacheFolder();

public Q_SLOTS:
    /**
     * Shows @p text; rich text with a base element also starts its picture
     * downloads. Each such page puts the cache folder in front of the search
     * paths again: the list grows by one entry per page shown.
     */
    void setText(const QString &text);
    /** Lays a page given as text out again (with the pictures that arrived since); a source is loaded again. */
    void reload() override;

private Q_SLOTS:
    void slotDownloadFinished(QString url, int result);

private:
    void startWaitingDownloads();

    QString baseHref;
    QMap<QString, ImageDownloader *> downloaders;
    // Every downloader alive (running or waiting), including ones a later page replaced in downloaders.
    QSet<ImageDownloader *> owned;
    QQueue<ImageDownloader *> waiting;
    int running = 0;
    bool relayoutScheduled = false;
};

/** What the application knows about one help request. */
struct LUMO_EXPORT HelpContext {
    QString language; ///< Three-letter code as from LumoLocale; HelpWindow::helpLanguage() turns it into the help's code.
    QString offlineHelpPath; ///< Installed help: one sub-folder per help language code ("enu", "ger", ...).
    QString link; ///< Page file name, also sent to the server.
    QString section; ///< Section of the product, sent to the server.
    QString version = QStringLiteral("1.0"); ///< Product version, sent to the server.
};

/**
 * Modal dialog that loads one URL into an HtmlTextBrowser, giving up after ten
 * seconds or on any error and calling fallbackOffline() instead.
 */
class LUMO_EXPORT BrowserWindow : public QDialog
{
    Q_OBJECT
public:
    /** An application-modal dialog holding an empty browser; nothing is requested yet. */
    explicit BrowserWindow(QWidget *parent = nullptr);
    ~BrowserWindow() override;
    Q_DISABLE_COPY(BrowserWindow)

    /** Loads @p url, replacing the stored one. */
    void reload(const QUrl &url);
    /** Loads the stored URL again; a request still running is not aborted. */
    void reload();
    /** Sends the request for the stored URL and starts the ten-second limit. */
    void query();

protected:
    /** Shows a replacement page when the query failed or timed out; does nothing here. */
    virtual void fallbackOffline();

Q_SIGNALS:
    /** Aborts every reply this dialog has started so far. */
    void sigAbortRequest();

protected Q_SLOTS:
    /** Shows the page of @p reply, or calls fallbackOffline() on an error or an oversized body. */
    void slotReceiveReply(QNetworkReply *reply);
    /** The ten seconds ran out: aborts the request, which ends in slotReceiveReply() with an error. */
    void slotQueryTimeout();

private Q_SLOTS:
    void slotCheckReplySize();

protected:
    QUrl url; ///< The address query() loads.
    QNetworkAccessManager *networkManager = nullptr; ///< Owned; its replies end in slotReceiveReply().
    QTimer *queryTimer = nullptr; ///< Owned; the single-shot ten-second limit.
    HtmlTextBrowser *browser = nullptr; ///< The page view, a child of the dialog.

private:
    void init();

    QHash<QNetworkReply *, QByteArray> pageBodies; // received so far, per running reply
};

/**
 * The help dialog: asks the knowledge base for the page of a HelpContext and
 * falls back to the installed offline page. Starts its request when built;
 * the caller shows it.
 */
class LUMO_EXPORT HelpWindow : public BrowserWindow
{
    Q_OBJECT
public:
    /** Stores @p context and calls retrieveHelpContent(). */
    HelpWindow(const HelpContext &context, QWidget *parent = nullptr);
    ~HelpWindow() override;
    Q_DISABLE_COPY(HelpWindow)

    /**
     * The knowledge-base server of the application: only its scheme, host and
     * port are used. Without one (the default) help windows show the offline page.
     */
    static void setKnowledgeBaseUrl(const QUrl &url);
    /** The server set by setKnowledgeBaseUrl(), reduced to scheme, host and port; empty when none. */
    static QUrl knowledgeBaseUrl();
    /** The help server's code for the language code @p language ("deu" gives "ger"). */
    static QString helpLanguage(const QString &language);

    /**
     * Asks the knowledge-base server for the page (path "/cgi/knowledgebase/",
     * the context in the query), or shows the offline page at once when no
     * server is set.
     */
    void retrieveHelpContent();

protected:
    /** Shows `<offlineHelpPath>/<help language>/<link>`; a missing file leaves the browser as it was. */
    void fallbackOffline() override;

private:
    QString language;
    QString offlineHelpPath;
    QString link;
    QString section;
    QString version;
    QString offlineFolder;
};

#endif

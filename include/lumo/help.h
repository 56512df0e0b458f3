#ifndef LUMO_HELP_H
#define LUMO_HELP_H

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
    ImageDownloader(const QString &filePath, const QString &url, QObject *parent);
    ~ImageDownloader() override;
    Q_DISABLE_COPY(ImageDownloader)

    /** Sends the request; the result arrives as sigDownloadFinish(). Call once. */
    void start();
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
    explicit HtmlTextBrowser(QWidget *parent = nullptr);
    ~HtmlTextBrowser() override;
    Q_DISABLE_COPY(HtmlTextBrowser)

    /** The folder the pictures are cached in: the temporary folder + "/lumora_help/image". */
    static QString imageCacheFolder();

public Q_SLOTS:
    /** Shows @p text; rich text with a base element also starts its picture downloads. */
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
    QString language; // three-letter code as from LumoLocale
    QString offlineHelpPath; // installed help: one sub-folder per language code
    QString link; // page file name, also sent to the server
    QString section;
    QString version = QStringLiteral("1.0");
};

/**
 * Modal dialog that loads one URL into an HtmlTextBrowser, giving up after ten
 * seconds or on any error and calling fallbackOffline() instead.
 */
class LUMO_EXPORT BrowserWindow : public QDialog
{
    Q_OBJECT
public:
    explicit BrowserWindow(QWidget *parent = nullptr);
    ~BrowserWindow() override;
    Q_DISABLE_COPY(BrowserWindow)

    void reload(const QUrl &url);
    void reload();
    void query();

protected:
    /** Shows a replacement page when the query failed or timed out; does nothing here. */
    virtual void fallbackOffline();

Q_SIGNALS:
    /** Aborts every reply this dialog has started so far. */
    void sigAbortRequest();

protected Q_SLOTS:
    void slotReceiveReply(QNetworkReply *reply);
    void slotQueryTimeout();

private Q_SLOTS:
    void slotCheckReplySize();

protected:
    QUrl url;
    QNetworkAccessManager *networkManager = nullptr;
    QTimer *queryTimer = nullptr;
    HtmlTextBrowser *browser = nullptr;

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
    HelpWindow(const HelpContext &context, QWidget *parent = nullptr);
    ~HelpWindow() override;
    Q_DISABLE_COPY(HelpWindow)

    /**
     * The knowledge-base server of the application: only its scheme, host and
     * port are used. Without one (the default) help windows show the offline page.
     */
    static void setKnowledgeBaseUrl(const QUrl &url);
    static QUrl knowledgeBaseUrl();
    /** The help server's code for the language code @p language ("deu" gives "ger"). */
    static QString helpLanguage(const QString &language);

    void retrieveHelpContent();

protected:
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

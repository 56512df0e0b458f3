#include <lumo/help.h>

#include <QFile>
#include <QTextStream>
#include <QTimer>

namespace
{
QUrl &knowledgeBase()
{
    static QUrl server;
    return server;
}
}

HelpWindow::HelpWindow(const HelpContext &context, QWidget *parent)
    : BrowserWindow(parent)
    , language(helpLanguage(context.language))
    , offlineHelpPath(context.offlineHelpPath)
    , link(context.link)
    , section(context.section)
    , version(context.version)
{
    retrieveHelpContent();
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::setKnowledgeBaseUrl(const QUrl &url)
{
    QUrl server;
    if (url.isValid() && !url.host().isEmpty()) {
        server.setScheme(url.scheme());
        server.setHost(url.host());
        server.setPort(url.port());
    }
    knowledgeBase() = server;
}

QUrl HelpWindow::knowledgeBaseUrl()
{
    return knowledgeBase();
}

QString HelpWindow::helpLanguage(const QString &language)
{
    if (language == QLatin1String("deu"))
        return QStringLiteral("ger");
    if (language == QLatin1String("esn"))
        return QStringLiteral("spn");
    if (language == QLatin1String("fra"))
        return QStringLiteral("fre");
    // These have no help of their own and read the English pages.
    static const QStringList english = {QStringLiteral("dan"), QStringLiteral("sve"), QStringLiteral("hun"), QStringLiteral("trk"),
                                        QStringLiteral("nor"), QStringLiteral("ptg"), QStringLiteral("ptb"), QStringLiteral("tha")};
    if (english.contains(language))
        return QStringLiteral("enu");
    return language;
}

void HelpWindow::retrieveHelpContent()
{
    QUrl address = knowledgeBase();
    if (address.isEmpty()) {
        queryTimer->stop();
        fallbackOffline();
        return;
    }
    address.setPath(QStringLiteral("/cgi/knowledgebase/"));
    const std::pair<const char *, QString> items[] = {
        {"action", QStringLiteral("findHelpFile")},        {"section", section}, {"lang", language}, {"link", link},
        {"unique", QStringLiteral("lumora_utility_help")}, {"version", version},
    };
    // Every value fully percent-encoded: "&", "=", "#", "+" or "%" inside one must not reshape the query.
    QByteArray query;
    for (const auto &item : items) {
        if (!query.isEmpty())
            query += '&';
        query += item.first;
        query += '=';
        query += QUrl::toPercentEncoding(item.second);
    }
    address.setQuery(QString::fromLatin1(query), QUrl::StrictMode);
    url = address;
    reload();
}

void HelpWindow::fallbackOffline()
{
    offlineFolder = offlineHelpPath + QLatin1Char('/') + language;
    browser->setSearchPaths(QStringList(offlineFolder));
    QFile file(offlineFolder + QLatin1Char('/') + link);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QTextStream stream(&file);
    stream.setEncoding(QStringConverter::Utf8);
    browser->setText(stream.readAll());
    file.close();
}

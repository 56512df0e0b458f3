// Help: the help window on the theme's offline help set, and how context languages map to help languages.

#include "gallery.h"

#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QScrollArea>
#include <QTableWidget>
#include <QVBoxLayout>

#include <iterator>

namespace
{
using gallery::label;

QString offlineHelpPath()
{
    return UIPathManager::getInstance()->getPath(QStringLiteral("resource_path")) + QStringLiteral("/help");
}

/** A help window embedded in the page, rebuilt for the chosen context language. */
class HelpDemo : public QWidget
{
public:
    HelpDemo()
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(gallery::px(6));
        auto *row = new QHBoxLayout;
        row->addWidget(new QLabel(QStringLiteral("Context language:")));
        languages->setObjectName(QStringLiteral("galleryHelpLanguage"));
        for (const char *code : {"enu", "deu", "ptb", "fra"})
            languages->addItem(QString::fromLatin1(code));
        row->addWidget(languages);
        row->addWidget(status, 1);
        layout->addLayout(row);
        holder->setMinimumHeight(gallery::px(430));
        holderLayout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(holder, 1);
        QObject::connect(languages, &QComboBox::currentTextChanged, this, [this](const QString &code) { showLanguage(code); });
        showLanguage(languages->currentText());
    }

private:
    void showLanguage(const QString &code)
    {
        delete window;
        HelpContext context;
        context.language = code;
        context.offlineHelpPath = offlineHelpPath();
        context.link = QStringLiteral("index.html");
        context.section = QStringLiteral("backup");
        window = new HelpWindow(context, holder);
        // Embedded in the page instead of opening as its own modal window.
        window->setWindowFlags(Qt::Widget);
        window->setObjectName(QStringLiteral("galleryHelpWindow"));
        // Help pages are documents with their own colours: they stay on white in every theme.
        window->setStyleSheet(window->styleSheet() + QStringLiteral("QTextBrowser { background: #FFFFFF; border: 1px solid #D5DCE4; }"));
        holderLayout->addWidget(window);
        window->show();
        const QString help = HelpWindow::helpLanguage(code);
        const bool installed = QDir(offlineHelpPath() + QLatin1Char('/') + help).exists();
        status->setText(QStringLiteral("help language <b>%1</b>, offline folder help/%1/%2")
                            .arg(help, installed ? QString() : QStringLiteral(" (not installed: the view stays empty)")));
    }

    QComboBox *languages = new QComboBox;
    QLabel *status = new QLabel;
    QWidget *holder = new QWidget;
    QVBoxLayout *holderLayout = new QVBoxLayout(holder);
    HelpWindow *window = nullptr;
};

QWidget *languageTable()
{
    const char *codes[] = {"deu", "esn", "fra", "dan", "sve", "hun", "trk", "nor", "ptg", "ptb", "tha", "enu", "chs"};
    auto *table = new QTableWidget(int(std::size(codes)), 3);
    table->setHorizontalHeaderLabels({QStringLiteral("Context"), QStringLiteral("Help"), QStringLiteral("Offline pages")});
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionMode(QAbstractItemView::NoSelection);
    for (int i = 0; i < int(std::size(codes)); ++i) {
        const QString code = QString::fromLatin1(codes[i]);
        const QString help = HelpWindow::helpLanguage(code);
        table->setItem(i, 0, new QTableWidgetItem(code));
        auto *mapped = new QTableWidgetItem(help);
        if (help != code) {
            QFont bold = mapped->font();
            bold.setBold(true);
            mapped->setFont(bold);
        }
        table->setItem(i, 1, mapped);
        const bool installed = QDir(offlineHelpPath() + QLatin1Char('/') + help).exists();
        table->setItem(i, 2, new QTableWidgetItem(installed ? QStringLiteral("help/") + help : QStringLiteral("none")));
    }
    table->resizeColumnsToContents();
    table->setFixedHeight(table->verticalHeader()->length() + table->horizontalHeader()->height() + gallery::px(4));
    table->setMinimumWidth(gallery::px(230));
    return table;
}

QWidget *createPage()
{
    const gallery::ScrollingPage frame = gallery::scrollingPage(QStringLiteral("Help"));
    QVBoxLayout *layout = frame.layout;
    layout->addWidget(label(QStringLiteral("No knowledge-base address is configured, so the help window goes straight to the "
                                           "installed offline page of the theme (help/<language>/index.html) with its pictures."),
                            "note"));
    auto *row = new QHBoxLayout;
    row->setSpacing(gallery::px(16));
    auto *left = new QVBoxLayout;
    left->addWidget(label(QStringLiteral("Help window"), "section"));
    left->addWidget(new HelpDemo, 1);
    row->addLayout(left, 3);
    auto *right = new QVBoxLayout;
    right->addWidget(label(QStringLiteral("Language mapping"), "section"));
    right->addWidget(languageTable());
    right->addStretch(1);
    row->addLayout(right, 1);
    layout->addLayout(row, 1);
    return frame.page;
}

// German context: the screenshot shows the rewritten language and its own folder.
void stagePage(QWidget *page)
{
    if (auto *languages = page->findChild<QComboBox *>(QStringLiteral("galleryHelpLanguage")))
        languages->setCurrentText(QStringLiteral("deu"));
}
}

LUMO_GALLERY_PAGE(70, QStringLiteral("Help"), createPage, stagePage)

// Messages: every type of message sheet, the input sheet, the countdown box and
// the double-confirm sheet, each run over this window, with its result code.

#include "gallery.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

namespace
{
using gallery::label;

QString resultName(int code)
{
    switch (code) {
    case QMessageBox::Ok:
        return QStringLiteral("Ok");
    case QMessageBox::Apply:
        return QStringLiteral("Apply");
    case QMessageBox::Discard:
        return QStringLiteral("Discard");
    case QMessageBox::Reset:
        return QStringLiteral("Reset");
    case QMessageBox::Cancel:
        return QStringLiteral("Cancel");
    case 0:
        return QStringLiteral("quit");
    default:
        return QStringLiteral("code");
    }
}

const QColor veil(0, 0, 0, 20);

// Ends a sheet opened for the screenshot when its page is left.
class CloseWithPage : public QObject
{
public:
    CloseWithPage(LumoMessageSheet *sheet, QWidget *page)
        : QObject(sheet)
        , sheet(sheet)
    {
        page->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Hide && sheet && sheet->isVisible())
            sheet->done(0);
        return QObject::eventFilter(watched, event);
    }

private:
    QPointer<LumoMessageSheet> sheet;
};

LumoMessageSheet *doubleConfirmSheet(QWidget *page)
{
    auto *sheet = new LumoMessageSheet(LumoMessageSheet::WarningConfirm, QStringLiteral("Delete the project \"Harbour survey\"?"),
                                       QStringLiteral("All 248 files and their history are removed for every member of the team. "
                                                      "This cannot be undone."),
                                       page);
    sheet->setDoubleConfirmCheckBox(true, QStringLiteral("I understand that the files cannot be restored"));
    LumoMask::createMask(sheet, page->window(), veil);
    return sheet;
}

class MessagesPage : public QWidget
{
public:
    MessagesPage()
    {
        QVBoxLayout *column = gallery::installScrollingFrame(this, QStringLiteral("Messages"), 10);
        column->addWidget(label(QStringLiteral("Sheets drop over their window behind a light veil and block like a dialog until a "
                                               "button, Return or Escape ends them. Tab stays inside the sheet."),
                                "note"));

        column->addWidget(label(QStringLiteral("Message sheet types"), "section"));
        QHBoxLayout *rows[2] = {new QHBoxLayout, new QHBoxLayout};
        const QList<QPair<QString, LumoMessageSheet::MessageType>> kinds {
            {QStringLiteral("Notice"), LumoMessageSheet::AppNotice},
            {QStringLiteral("Information"), LumoMessageSheet::Information},
            {QStringLiteral("Warning"), LumoMessageSheet::Warning},
            {QStringLiteral("Confirm"), LumoMessageSheet::Confirm},
            {QStringLiteral("Confirm with reset"), LumoMessageSheet::ConfirmWithReset},
            {QStringLiteral("Upgrade"), LumoMessageSheet::Upgrading},
            {QStringLiteral("Warning confirm"), LumoMessageSheet::WarningConfirm},
            {QStringLiteral("Processing"), LumoMessageSheet::Processing},
        };
        for (int i = 0; i < kinds.size(); ++i) {
            auto *button = new LumoButton(kinds[i].first, LumoButton::Default);
            const LumoMessageSheet::MessageType kind = kinds[i].second;
            connect(button, &QPushButton::clicked, this, [this, kind] { runType(kind); });
            rows[i / 4]->addWidget(button);
        }
        for (QHBoxLayout *row : rows) {
            row->setSpacing(gallery::px(10));
            row->addStretch(1);
            column->addLayout(row);
        }

        column->addWidget(label(QStringLiteral("Sheets and boxes"), "section"));
        auto *others = new QHBoxLayout;
        others->setSpacing(gallery::px(10));
        const QList<QPair<QString, void (MessagesPage::*)()>> actions {
            {QStringLiteral("Input sheet"), &MessagesPage::runInput},
            {QStringLiteral("Countdown box"), &MessagesPage::runCountdown},
            {QStringLiteral("Double confirm"), &MessagesPage::runDoubleConfirm},
            {QStringLiteral("Long text"), &MessagesPage::runScrolling},
        };
        for (const auto &action : actions) {
            auto *button = new LumoButton(action.first, LumoButton::Default);
            connect(button, &QPushButton::clicked, this, action.second);
            others->addWidget(button);
        }
        others->addStretch(1);
        column->addLayout(others);

        column->addWidget(label(QStringLiteral("One-call functions"), "section"));
        auto *calls = new QHBoxLayout;
        calls->setSpacing(gallery::px(10));
        auto *confirm = new LumoButton(QStringLiteral("showConfirmMsg"), LumoButton::Apply);
        connect(confirm, &QPushButton::clicked, this, [this] {
            report(QStringLiteral("showConfirmMsg"),
                   showConfirmMsg(QStringLiteral("Lumo Gallery"), QStringLiteral("Publish the edited pages now?"), this));
        });
        auto *plain = new LumoButton(QStringLiteral("Without a parent"), LumoButton::Default);
        connect(plain, &QPushButton::clicked, this, [this] {
            report(QStringLiteral("showConfirmMsg without a parent"),
                   showConfirmMsg(QStringLiteral("Lumo Gallery"), QStringLiteral("Publish the edited pages now?"), nullptr));
        });
        calls->addWidget(confirm);
        calls->addWidget(plain);
        calls->addStretch(1);
        column->addLayout(calls);

        result->setProperty("galleryRole", QStringLiteral("note"));
        column->addSpacing(gallery::px(6));
        column->addWidget(result);
        column->addStretch(1);
    }

private:
    void report(const QString &what, int code)
    {
        result->setText(QStringLiteral("%1 returned %2 (0x%3)").arg(what, resultName(code), QString::number(code, 16)));
    }

    void runSheet(LumoMessageSheet *sheet, const QString &what)
    {
        QPointer<LumoMessageSheet> guard(sheet);
        LumoMask::createMask(sheet, window(), veil);
        const int code = sheet->exec();
        delete guard.data();
        report(what, code);
    }

    void runType(LumoMessageSheet::MessageType kind)
    {
        static const QMap<int, QPair<QString, QString>> texts {
            {LumoMessageSheet::AppNotice,
             {QStringLiteral("Lumo Gallery 2.4"), QStringLiteral("Shared components for the product line's desktop clients.")}},
            {LumoMessageSheet::Information,
             {QStringLiteral("Your export is ready."), QStringLiteral("The report was saved to the Documents folder.")}},
            {LumoMessageSheet::Warning,
             {QStringLiteral("The server could not be reached."), QStringLiteral("Changes are kept and sent when you are back online.")}},
            {LumoMessageSheet::Confirm, {QStringLiteral("Replace the existing file?"), QString()}},
            {LumoMessageSheet::ConfirmWithReset,
             {QStringLiteral("Apply the new layout to all pages?"), QStringLiteral("Reset returns every page to the default layout.")}},
            {LumoMessageSheet::Upgrading,
             {QStringLiteral("A new version is available."), QStringLiteral("Version 2.5 brings faster sync and offline search.")}},
            {LumoMessageSheet::WarningConfirm,
             {QStringLiteral("Sign out of all devices?"), QStringLiteral("You will have to sign in again everywhere.")}},
            {LumoMessageSheet::Processing, {QStringLiteral("Preparing the export..."), QString()}},
        };
        const auto text = texts.value(kind);
        auto *sheet = new LumoMessageSheet(kind, text.first, text.second, this);
        if (kind == LumoMessageSheet::AppNotice || kind == LumoMessageSheet::Processing) {
            // No buttons: the application ends these itself.
            QTimer::singleShot(2000, sheet, [sheet] { sheet->quit(); });
        }
        runSheet(sheet, QStringLiteral("Sheet"));
    }

    void runInput()
    {
        QPointer<LumoInputSheet> sheet = new LumoInputSheet(QStringLiteral("Name of the new folder:"), this);
        sheet->getLineEdit()->setPlaceholderText(QStringLiteral("Untitled folder"));
        LumoMask::createMask(sheet, window(), veil);
        const int code = sheet->exec();
        const QString typed = sheet ? sheet->getContent() : QString();
        delete sheet.data();
        report(QStringLiteral("Input sheet (\"%1\")").arg(typed), code);
    }

    void runCountdown()
    {
        LumoCountdownMessageBox box(5, window());
        box.setWindowTitle(QStringLiteral("Lumo Gallery"));
        box.setText(QStringLiteral("The update installs when the count runs out."));
        report(QStringLiteral("Countdown box"), box.exec());
    }

    void runDoubleConfirm() { runSheet(doubleConfirmSheet(this), QStringLiteral("Double confirm")); }

    void runScrolling()
    {
        QStringList lines;
        for (int i = 1; i <= 24; ++i)
            lines << QStringLiteral("Line %1 of the licence terms that nobody reads to the end.").arg(i);
        auto *sheet = new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Accept the licence terms?"),
                                           lines.join(QLatin1Char(' ')), this);
        sheet->setScrollArea(420, 160);
        runSheet(sheet, QStringLiteral("Long text"));
    }

    QLabel *result = new QLabel(QStringLiteral("Run a sheet to see its result code."));
};

QWidget *createPage()
{
    return new MessagesPage;
}

void stagePage(QWidget *page)
{
    LumoMessageSheet *sheet = doubleConfirmSheet(page);
    new CloseWithPage(sheet, page);
    sheet->showSheet();
}
}

LUMO_GALLERY_PAGE(40, QStringLiteral("Messages"), createPage, stagePage)

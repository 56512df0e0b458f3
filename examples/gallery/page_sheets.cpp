// Sheets and shadows: a sheet over a dimmed miniature window, and cards carrying
// BoxShadow in its "mask" and "smooth" styles with outer and inner shadows.

#include "gallery.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace
{
using gallery::label;

QLabel *styled(const QString &text, const QString &css)
{
    auto *l = new QLabel(text);
    l->setStyleSheet(css);
    l->setWordWrap(true);
    return l;
}

QString size(double designPixels)
{
    return QString::number(gallery::px(designPixels)) + QStringLiteral("px");
}

// A mask covers its whole top-level window by design; in this miniature window it is held to
// the frame instead, each time the window's size is pushed onto it.
class HoldToFrame : public QObject
{
public:
    HoldToFrame(QWidget *mask, QWidget *frame)
        : QObject(mask)
        , mask(mask)
        , frame(frame)
    {
        mask->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == mask && event->type() == QEvent::Resize && mask->size() != frame->size())
            mask->setFixedSize(frame->size());
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget *mask;
    QWidget *frame;
};

// A file list in a window frame, the backdrop of the sheet.
QFrame *miniatureWindow()
{
    auto *window = new QFrame;
    window->setObjectName(QStringLiteral("miniWindow"));
    window->setFixedSize(gallery::px(540), gallery::px(300));
    window->setStyleSheet(
        gallery::themed(QStringLiteral("QFrame#miniWindow { background: #FFFFFF; border: 1px solid #D5DBE3; border-radius: %1; }"
                                       "QFrame#miniTitle { background: #EEF1F5; border-bottom: 1px solid #D5DBE3;"
                                       " border-top-left-radius: %1; border-top-right-radius: %1; }"))
            .arg(size(8)));
    auto *column = new QVBoxLayout(window);
    column->setContentsMargins(1, 1, 1, 1);
    column->setSpacing(0);

    auto *title = new QFrame;
    title->setObjectName(QStringLiteral("miniTitle"));
    title->setFixedHeight(gallery::px(30));
    auto *titleRow = new QHBoxLayout(title);
    titleRow->setContentsMargins(gallery::px(12), 0, gallery::px(12), 0);
    titleRow->setSpacing(gallery::px(7));
    for (const char *color : {"#F2695C", "#F5BE4F", "#62C554"}) {
        auto *dot = new QLabel;
        dot->setFixedSize(gallery::px(11), gallery::px(11));
        dot->setStyleSheet(QStringLiteral("background: %1; border-radius: %2;").arg(QLatin1String(color), size(5.5)));
        titleRow->addWidget(dot);
    }
    titleRow->addStretch(1);
    QLabel *caption =
        styled(QStringLiteral("Harbour survey — Files"), gallery::themed(QStringLiteral("color: #3E4C5E; font-weight: 600;")));
    caption->setWordWrap(false);
    titleRow->addWidget(caption);
    titleRow->addStretch(1);
    titleRow->addSpacing(gallery::px(51));
    column->addWidget(title);

    auto *list = new QVBoxLayout;
    list->setContentsMargins(gallery::px(18), gallery::px(10), gallery::px(18), gallery::px(10));
    list->setSpacing(0);
    const char *files[][3] = {{"Quay measurements.xlsx", "2.4 MB", "Today, 09:12"},
                              {"Sonar scans", "38 items", "Yesterday"},
                              {"Tide tables 2024.pdf", "880 KB", "12 March"},
                              {"Site photos", "214 items", "9 March"},
                              {"Budget draft.docx", "64 KB", "2 March"},
                              {"Permit application.pdf", "1.1 MB", "28 February"},
                              {"Crew schedule.xlsx", "40 KB", "20 February"}};
    for (const auto &file : files) {
        auto *row = new QHBoxLayout;
        row->setContentsMargins(0, gallery::px(7), 0, gallery::px(7));
        row->addWidget(styled(QString::fromUtf8(file[0]), gallery::themed(QStringLiteral("color: #1F2933;"))), 3);
        row->addWidget(styled(QString::fromUtf8(file[1]), gallery::themed(QStringLiteral("color: #7B8794;"))), 1);
        row->addWidget(styled(QString::fromUtf8(file[2]), gallery::themed(QStringLiteral("color: #7B8794;"))), 1);
        list->addLayout(row);
    }
    list->addStretch(1);
    column->addLayout(list, 1);
    return window;
}

// The sheet's content: a question with its two buttons.
QWidget *sheetContent()
{
    auto *content = new QWidget;
    content->setFixedWidth(gallery::px(330));
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(gallery::px(8), gallery::px(6), gallery::px(8), gallery::px(4));
    column->setSpacing(gallery::px(8));
    column->addWidget(styled(QStringLiteral("Move 3 files to the archive?"),
                             QStringLiteral("color: #1F2933; font-size: %1; font-weight: 600;").arg(size(15))));
    column->addWidget(
        styled(QStringLiteral("They stay searchable and can be restored at any time from Archive."), QStringLiteral("color: #52606D;")));
    column->addSpacing(gallery::px(8));
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(gallery::px(10));
    buttons->addStretch(1);
    buttons->addWidget(new LumoButton(QStringLiteral("Cancel"), LumoButton::Cancel));
    buttons->addWidget(new LumoButton(QStringLiteral("Move"), LumoButton::Apply));
    column->addLayout(buttons);
    return content;
}

ShadowData shadow(double blur, int x, int y, const char *color)
{
    return ShadowData {blur, x, y, gallery::themedColor(color).name(QColor::HexArgb).toStdString()};
}

// A white card of fixed size in a BoxShadowWrapper carrying the given shadows.
QWidget *card(const QString &title, const QString &detail, bool smooth, std::vector<ShadowData> outside, std::vector<ShadowData> inside,
              const QString &fill = QStringLiteral("#FFFFFF"))
{
    auto *body = new QFrame;
    body->setObjectName(QStringLiteral("shadowCard"));
    body->setFixedSize(gallery::px(168), gallery::px(92));
    body->setStyleSheet(
        gallery::themed(QStringLiteral("QFrame#shadowCard { background: %1; border-radius: %2; }").arg(fill, size(smooth ? 12 : 0))));
    auto *column = new QVBoxLayout(body);
    column->setContentsMargins(gallery::px(16), gallery::px(14), gallery::px(16), gallery::px(14));
    column->setSpacing(gallery::px(4));
    column->addWidget(styled(title, gallery::themed(QStringLiteral("color: #1F2933; font-weight: 600;"))));
    column->addWidget(styled(detail, gallery::themed(QStringLiteral("color: #7B8794;"))));
    column->addStretch(1);

    // Equal margins for every card keep the row aligned whatever each shadow reaches.
    auto *wrapper = new BoxShadowWrapper(nullptr, 0, true, {gallery::px(22), gallery::px(20)}, smooth);
    wrapper->setWidget(body);
    wrapper->setOutsideShadowList(std::move(outside));
    wrapper->setInsideShadowList(std::move(inside));
    return wrapper;
}

QWidget *cardRow(std::initializer_list<QWidget *> cards)
{
    auto *stage = new QFrame;
    stage->setObjectName(QStringLiteral("shadowStage"));
    stage->setStyleSheet(gallery::themed(QStringLiteral("QFrame#shadowStage { background: #F3F5F8; border-radius: %1; }").arg(size(10))));
    auto *row = new QHBoxLayout(stage);
    row->setContentsMargins(gallery::px(4), gallery::px(4), gallery::px(4), gallery::px(4));
    row->setSpacing(0);
    for (QWidget *c : cards)
        row->addWidget(c);
    row->addStretch(1);
    return stage;
}

class SheetsPage : public QWidget
{
public:
    SheetsPage()
    {
        QVBoxLayout *column = gallery::installScrollingFrame(this, QStringLiteral("Sheets & shadows"), 10);
        column->addWidget(label(QStringLiteral("A sheet is a white panel with a soft shadow that drops over its window behind "
                                               "a light veil. BoxShadow puts outer and inner shadows on any widget."),
                                "note"));

        column->addWidget(label(QStringLiteral("Sheet over a dimmed window"), "section"));
        QFrame *window = miniatureWindow();
        sheet = new LumoSheet(window);
        sheet->setWidget(sheetContent());
        LumoMask::createMask(sheet, window, QColor(0, 0, 0, 20));
        new HoldToFrame(sheet->parentWidget(), window);
        sheet->hide();
        auto *toggle = new LumoButton(QStringLiteral("Show the sheet"), LumoButton::Default);
        connect(toggle, &QPushButton::clicked, this, [this, toggle] {
            sheet->setVisible(sheet->isHidden());
            toggle->setText(sheet->isHidden() ? QStringLiteral("Show the sheet") : QStringLiteral("Hide the sheet"));
        });
        showSheet = [this, toggle] {
            if (sheet->isHidden())
                toggle->click();
        };
        column->addWidget(window);
        auto *toggleRow = new QHBoxLayout;
        toggleRow->setSpacing(gallery::px(12));
        toggleRow->addWidget(toggle);
        toggleRow->addWidget(label(QStringLiteral("The veil follows the sheet: hiding the sheet lifts it."), "note"), 1);
        column->addLayout(toggleRow);

        column->addWidget(label(QStringLiteral("BoxShadow, mask style"), "section"));
        column->addWidget(label(QStringLiteral("Shadows follow the widget's 1-bit shape: crisp, for square cards."), "note"));
        column->addWidget(cardRow({
            card(QStringLiteral("Raised"), QStringLiteral("One outer shadow\nblur 6, offset 0, 3"), false,
                 {shadow(gallery::px(6), 0, gallery::px(3), "#4A0B1A33")}, {}),
            card(QStringLiteral("Floating"), QStringLiteral("Ambient and key\nblur 3 + 10, offset 0, 6"), false,
                 {shadow(gallery::px(3), 0, gallery::px(1), "#380B1A33"), shadow(gallery::px(10), 0, gallery::px(6), "#3A0B1A33")}, {}),
            card(QStringLiteral("Pressed"), QStringLiteral("Inner shadow\nblur 5, offset 2, 4"), false, {},
                 {shadow(gallery::px(5), gallery::px(2), gallery::px(4), "#9AA5B4")}, QStringLiteral("#F7F9FB")),
        }));

        column->addWidget(label(QStringLiteral("BoxShadow, smooth style"), "section"));
        column->addWidget(label(QStringLiteral("Shadows follow the widget's own alpha, so rounded corners stay soft."), "note"));
        column->addWidget(cardRow({
            card(QStringLiteral("Lifted"), QStringLiteral("Two outer shadows\nblur 3 + 9, offset 0, 5"), true,
                 {shadow(gallery::px(3), 0, gallery::px(1), "#380B1A33"), shadow(gallery::px(9), 0, gallery::px(5), "#400B1A33")}, {}),
            card(QStringLiteral("Accent glow"), QStringLiteral("Coloured shadow\nblur 8, offset 0, 2"), true,
                 {shadow(gallery::px(8), 0, gallery::px(2), "#663D7BF2")}, {}),
            card(QStringLiteral("Inset well"), QStringLiteral("Rim, two inner shadows\nfrom the top and left"), true,
                 {shadow(gallery::px(2), 0, gallery::px(1), "#400B1A33")},
                 {shadow(gallery::px(5), 0, gallery::px(6), "#8C98A8"), shadow(gallery::px(4), gallery::px(4), 0, "#B4BDC9")},
                 QStringLiteral("#F4F6F9")),
        }));
        column->addStretch(1);
    }

    std::function<void()> showSheet;

private:
    LumoSheet *sheet;
};

QWidget *createPage()
{
    return new SheetsPage;
}

void stagePage(QWidget *page)
{
    auto *sheets = static_cast<SheetsPage *>(page);
    sheets->showSheet();
}
}

LUMO_GALLERY_PAGE(30, QStringLiteral("Sheets & shadows"), createPage, stagePage)

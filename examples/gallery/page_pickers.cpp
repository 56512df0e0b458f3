// Pickers and bars: time and plain combo boxes, the breadcrumb path bar, the
// filter bar, the footbar and the shaded scroll area.

#include "gallery.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

namespace
{
using gallery::label;

QWidget *row(std::initializer_list<QWidget *> widgets)
{
    auto *w = new QWidget;
    auto *layout = new QHBoxLayout(w);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gallery::px(12));
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    layout->addStretch(1);
    return w;
}

const QString deepPath = QStringLiteral("/Users/alex/Library/Mobile Documents/Projects/2024/Research & Development/Prototypes/"
                                        "Lumo Widgets/Design Reviews/Quarter 3/Final Drafts");
const QString shortPath = QStringLiteral("/Users/alex/Documents/Invoices");

QWidget *timePickers()
{
    auto *time = new LumoTimeComboBox;
    time->setEditable(true);
    for (int h = 7; h < 20; ++h) {
        time->addItem(QStringLiteral("%1:00").arg(h, 2, 10, QLatin1Char('0')));
        time->addItem(QStringLiteral("%1:30").arg(h, 2, 10, QLatin1Char('0')));
    }
    time->setCustomText(QStringLiteral("(custom)"));
    time->setMaxVisibleItems(8);
    time->setDefault("09:00");
    time->setCurrentText("09:45"); // not in the list: shown in the custom row
    time->setFixedWidth(gallery::px(150));

    auto *plain = new LumoComboBox;
    plain->addItems({QStringLiteral("Every day"), QStringLiteral("Weekdays"), QStringLiteral("Weekends"), QStringLiteral("Once a week"),
                     QStringLiteral("Once a month")});
    plain->setCurrentIndex(1);
    plain->setFixedWidth(gallery::px(170));

    auto *chosen = label(QString(), "note");
    QObject::connect(time, &QComboBox::currentIndexChanged, chosen,
                     [time, chosen] { chosen->setText(QStringLiteral("Starts at %1").arg(time->currentText().left(5))); });
    chosen->setText(QStringLiteral("Starts at %1").arg(time->currentText().left(5)));
    auto *start = new LumoLabel(QStringLiteral("Start"));
    auto *repeat = new LumoLabel(QStringLiteral("Repeat"));
    return row({start, time, repeat, plain, chosen});
}

QWidget *shadedArea()
{
    auto *area = new LumoVerticalScrollArea;
    area->setShadowSize(40);
    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("galleryActivity"));
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(gallery::px(14), gallery::px(10), gallery::px(14), gallery::px(10));
    layout->setSpacing(gallery::px(8));
    const char *const lines[] = {"Backup completed",        "Folder \"Invoices\" synchronised",
                                 "Shared link created",     "Version 12 restored",
                                 "Storage quota at 80 %",   "New device signed in",
                                 "Backup completed",        "Recycle bin emptied",
                                 "Folder \"Drafts\" moved", "Backup completed"};
    int n = 0;
    for (const char *line : lines)
        layout->addWidget(new QLabel(QStringLiteral("%1.  %2").arg(++n).arg(QString::fromUtf8(line))));
    area->setWidget(content);
    // The shade is the area's background: the content must not paint over it,
    // and QScrollArea::setWidget() turns background filling on.
    content->setAutoFillBackground(false);

    auto *frame = new QFrame;
    frame->setObjectName(QStringLiteral("galleryShadeFrame"));
    frame->setStyleSheet(DPIinfo::getInstance()->getScaledStyleSheet(
        gallery::themed(
            QStringLiteral("QFrame#galleryShadeFrame { border: 1px solid #E3E8EE; border-radius: 6px; background: #FFFFFF; }")) +
        // The scroll area is white in every theme, so its rows keep dark text.
        QStringLiteral("QWidget#galleryActivity QLabel { color: #1F2933; font-size: 13px; }")));
    auto *frameLayout = new QVBoxLayout(frame);
    frameLayout->setContentsMargins(1, 1, 1, 1);
    frameLayout->addWidget(area);
    frame->setFixedSize(gallery::px(360), gallery::px(160));
    return frame;
}

QWidget *createPage()
{
    const gallery::ScrollingPage frame = gallery::scrollingPage(QStringLiteral("Pickers & bars"));
    QVBoxLayout *layout = frame.layout;

    layout->addWidget(label(QStringLiteral("Time and plain combo boxes"), "section"));
    layout->addWidget(label(QStringLiteral("Type a time such as 9:7 and press Return: it becomes 09:07 in the custom row. "
                                           "The validator refuses 24, 7:60 and letters."),
                            "note"));
    layout->addWidget(timePickers());

    layout->addWidget(label(QStringLiteral("Breadcrumb path bar"), "section"));
    auto *path = new LumoButtonPath;
    path->setObjectName(QStringLiteral("galleryPathBar"));
    path->setProperty("galleryPath", deepPath);
    path->setFixedWidth(gallery::px(520));
    auto *picked = label(QStringLiteral("Click a folder; the folder button lists those scrolled out of sight."), "note");
    auto *toggle = new LumoButton(QStringLiteral("Change path"), LumoButton::Default);
    // The bar only reports a click; navigating is the owner's decision.
    QObject::connect(path, &LumoButtonPath::sigUpdatePath, path, [path, picked](const QString &target) {
        picked->setText(QStringLiteral("Picked: /") + target);
        path->slotUpdatePath(target);
    });
    QObject::connect(toggle, &QPushButton::clicked, path, [path] {
        const QString next = path->property("galleryPath").toString() == deepPath ? shortPath : deepPath;
        path->setProperty("galleryPath", next);
        path->refresh(next);
    });
    layout->addWidget(row({path, toggle}));
    layout->addWidget(picked);

    layout->addWidget(label(QStringLiteral("Filter bar"), "section"));
    auto *filter = new LumoFilterBar;
    filter->setPlaceholderText(QStringLiteral("Search file names"));
    filter->setFixedWidth(gallery::px(300));
    auto *menu = new QMenu(filter);
    menu->setStyleSheet(getStyleSheet("component.menu", false));
    for (const char *choice : {"All files", "Documents", "Images", "Videos", "Shared with me"}) {
        QAction *action = menu->addAction(QString::fromLatin1(choice));
        action->setCheckable(true);
        action->setChecked(qstrcmp(choice, "All files") == 0);
    }
    auto *keyword = label(QStringLiteral("Press Return to search, Down for the filter menu."), "note");
    QObject::connect(filter, &LumoFilterBar::sigKeywordChanged, keyword,
                     [keyword](const QString &text) { keyword->setText(QStringLiteral("Searching for \"%1\"").arg(text)); });
    filter->setMenu(menu);
    layout->addWidget(row({filter, keyword}));

    layout->addWidget(label(QStringLiteral("Footbar"), "section"));
    auto *foot = new LumoFootbar;
    foot->setObjectName(QStringLiteral("galleryFootbar"));
    foot->setStyleSheet(gallery::themed(QStringLiteral("QWidget#galleryFootbar { background: #F7F9FB; border-top: 1px solid #E3E8EE; }")));
    foot->setAttribute(Qt::WA_StyledBackground);
    auto *help = new LinkLabel(QStringLiteral("Learn more"));
    help->setHoverUnderline(true);
    help->setStyleSheet(
        DPIinfo::getInstance()->getScaledStyleSheet(gallery::themed(QStringLiteral("QLabel { color: #2F6FED; font-size: 13px; }"))));
    foot->pushLeftWidget(help);
    foot->pushLeftWidget(label(QStringLiteral("3 items selected"), "note"));
    foot->pushRightWidget(new LumoButton(QStringLiteral("Cancel"), LumoButton::Cancel));
    foot->pushRightWidget(new LumoButton(QStringLiteral("Apply"), LumoButton::Apply));
    foot->init();
    layout->addWidget(foot);

    layout->addWidget(label(QStringLiteral("Vertical scroll area"), "section"));
    layout->addWidget(label(QStringLiteral("A grey shade at the bottom edge while more lies below; it goes at the end."), "note"));
    layout->addWidget(shadedArea());
    layout->addStretch(1);

    // The bar reads its width when it rebuilds: fill it once the page is laid out.
    QTimer::singleShot(0, path, [path] { path->refresh(path->property("galleryPath").toString()); });
    return frame.page;
}

void stagePage(QWidget *page)
{
    QApplication::processEvents();
    if (auto *path = page->findChild<LumoButtonPath *>(QStringLiteral("galleryPathBar")))
        path->refresh(path->property("galleryPath").toString());
}
}

LUMO_GALLERY_PAGE(50, QStringLiteral("Pickers & bars"), createPage, stagePage)

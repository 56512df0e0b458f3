// Data views: a paged list, date selector and calendar, the table widget and a folder tree.

#include "gallery.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QTextCharFormat>
#include <QVBoxLayout>

namespace
{
using gallery::label;

const char *const owners[] = {"Ada", "Grace", "Linus", "Margaret", "Dennis", "Barbara"};
const char *const kinds[] = {"Invoice", "Contract", "Report", "Offer", "Minutes"};

QString rowText(int index)
{
    return QStringLiteral("%1 %2 \u2014 %3, %4 KB")
        .arg(QString::fromLatin1(kinds[index % 5]))
        .arg(index + 1, 5, 10, QLatin1Char('0'))
        .arg(QString::fromLatin1(owners[(index * 7) % 6]))
        .arg(12 + (index * 37) % 900);
}

// A list of generated rows shown one page at a time.
class PagedList : public QWidget
{
public:
    PagedList()
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        list->setFrameShape(QFrame::NoFrame);
        list->setStyleSheet(
            gallery::themed(QStringLiteral("QListWidget { background: #FFFFFF; border: 1px solid #E3E8EE; border-bottom: none;"
                                           " font-size: %1px; color: #1F2933; }"
                                           "QListWidget::item { padding-left: %2px; height: %3px; }"))
                .arg(gallery::px(13))
                .arg(gallery::px(10))
                .arg(gallery::px(26)));
        list->setFixedHeight(gallery::px(26) * rows + gallery::px(4));
        layout->addWidget(list);
        layout->addWidget(bar);
        bar->setItemCount(itemCount);
        bar->setFooterInfos({{QStringLiteral("%L1 items").arg(itemCount), 0}, {QStringLiteral("%1 per page").arg(rows), 0}});
        QObject::connect(bar, &LumoPagingBar::sigPageChanged, this, [this] { load(); });
        QObject::connect(bar, &LumoPagingBar::sigRefresh, this, [this] { load(); });
        load();
    }

private:
    void load()
    {
        list->clear();
        const int first = model.startItem();
        for (int i = first; i < qMin(first + rows, itemCount); ++i)
            list->addItem(rowText(i));
    }

    static constexpr int rows = 8;
    static constexpr int itemCount = 3250;
    LumoPagingModel model {rows};
    QListWidget *list = new QListWidget;
    LumoPagingBar *bar = new LumoPagingBar(&model);
};

QWidget *dates()
{
    auto *box = new QWidget;
    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gallery::px(32));

    auto *left = new QVBoxLayout;
    left->setSpacing(gallery::px(8));
    left->addWidget(label(QStringLiteral("Date selector: a combo box whose popup is the calendar below."), "note"));
    auto *selector = new LumoDateSelector(QStringLiteral("Choose a date"));
    selector->setFixedWidth(gallery::px(180));
    left->addWidget(selector);
    auto *chosen = new LumoDateSelector;
    chosen->setFixedWidth(gallery::px(180));
    chosen->dateSelect(QDate(2024, 3, 14));
    left->addWidget(chosen);
    left->addStretch(1);
    layout->addLayout(left);

    auto *calendar = new LumoCalanderView;
    calendar->setObjectName(QStringLiteral("galleryCalendar"));
    calendar->setFixedSize(gallery::px(280), gallery::px(260));
    calendar->setCurrentPage(2024, 3);
    // Standing alone, the calendar takes the look its date selector popup has.
    calendar->setStyleSheet(getStyleSheet("component.date_selector", false));
    // The calendar draws weekend dates black; on a dark theme the application gives them the text colour.
    if (const QColor text = gallery::themedColor("#1F2933", true); text != QColor(QStringLiteral("#1F2933"))) {
        for (auto *grid : calendar->findChildren<QCalendarWidget *>()) {
            QTextCharFormat weekend = grid->weekdayTextFormat(Qt::Saturday);
            weekend.setForeground(text);
            grid->setWeekdayTextFormat(Qt::Saturday, weekend);
            grid->setWeekdayTextFormat(Qt::Sunday, weekend);
        }
    }
    layout->addWidget(calendar);
    layout->addStretch(1);
    return box;
}

QWidget *table()
{
    LumoTableColumnsInfo columns;
    columns.addColumn(QStringLiteral("Name"), 160, true, 0.4);
    columns.addColumn(QStringLiteral("Type"), 90, false, 0.0);
    columns.addColumn(QStringLiteral("Owner"), 100, true, 0.0);
    columns.addColumn(QStringLiteral("Location"), 140, true, 0.6);
    auto *widget = new LumoTableWidget(columns);
    QTableWidget *rows = widget->getTable();
    const int count = 500;
    rows->setRowCount(count);
    for (int i = 0; i < count; ++i) {
        rows->setItem(i, 0, new QTableWidgetItem(rowText(i).section(QStringLiteral(" \u2014 "), 0, 0)));
        rows->setItem(i, 1, new QTableWidgetItem(QString::fromLatin1(kinds[i % 5])));
        rows->setItem(i, 2, new QTableWidgetItem(QString::fromLatin1(owners[(i * 7) % 6])));
        rows->setItem(i, 3, new QTableWidgetItem(QStringLiteral("/projects/%1/archive/%2").arg(2020 + i % 5).arg(i % 12 + 1)));
    }
    widget->setFixedHeight(gallery::px(30) + gallery::px(28) * 7);
    widget->setStyleSheet(gallery::themed(QStringLiteral("LumoTableWidget { border: 1px solid #E3E8EE; }")));
    return widget;
}

QWidget *tree()
{
    auto *tree = new LumoTreeWidget;
    tree->setObjectName(QStringLiteral("galleryTree"));
    auto *delegate = new ItemDelegate;
    delegate->setParent(tree);
    tree->setItemDelegate(delegate);
    tree->setHeaderHidden(true);
    tree->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    tree->setBackgroundColor(gallery::themedColor("#DCE7FD"), gallery::themedColor("#F1F5FB"));
    // The tree takes no look of its own: the theme offers one for it.
    tree->setStyleSheet(getStyleSheet("component.tree", false) + getStyleSheet("component.scrollbar", false));
    const QIcon folder(getGlobalImage("folder", ImageManager::Normal));

    auto add = [&](QTreeWidgetItem *parent, const QString &name, bool checkable, Qt::CheckState state) {
        auto *item = new FileSystemTreeWidgetItem;
        item->itemName = name;
        item->setText(0, name);
        item->setIcon(0, folder);
        Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
        if (checkable)
            flags |= Qt::ItemIsUserCheckable;
        item->setFlags(flags);
        if (checkable)
            item->setCheckState(0, state);
        if (parent)
            parent->addChild(item);
        else
            tree->addTopLevelItem(item);
        return item;
    };
    QTreeWidgetItem *home = add(nullptr, QStringLiteral("home"), true, Qt::PartiallyChecked);
    QTreeWidgetItem *documents = add(home, QStringLiteral("Documents"), true, Qt::Checked);
    add(documents, QStringLiteral("Contracts"), true, Qt::Checked);
    add(documents, QStringLiteral("Invoices 2024"), true, Qt::Checked);
    add(home, QStringLiteral("Downloads"), true, Qt::Unchecked);
    QTreeWidgetItem *pictures = add(home, QStringLiteral("Pictures"), true, Qt::Unchecked);
    add(pictures, QStringLiteral("Holidays"), true, Qt::Unchecked);
    add(nullptr, QStringLiteral("System (read only)"), false, Qt::Unchecked);
    add(nullptr, QStringLiteral("Archive"), true, Qt::Unchecked);
    tree->sortItems(0, Qt::AscendingOrder);
    tree->expandAll();
    tree->setCurrentItem(documents);
    tree->setFixedHeight(gallery::px(28) * 9 + gallery::px(12));
    return tree;
}

QWidget *createPage()
{
    const gallery::ScrollingPage frame = gallery::scrollingPage(QStringLiteral("Data"));
    QVBoxLayout *layout = frame.layout;
    layout->addWidget(label(QStringLiteral("Paging, dates, a table with a separate header and a folder tree."), "note"));

    layout->addWidget(label(QStringLiteral("Paging bar"), "section"));
    layout->addWidget(
        label(QStringLiteral("3,250 generated rows, eight per page. The current page always sits in the middle button."), "note"));
    layout->addWidget(new PagedList);

    layout->addSpacing(gallery::px(8));
    layout->addWidget(label(QStringLiteral("Date selector and calendar"), "section"));
    layout->addWidget(dates());

    layout->addSpacing(gallery::px(8));
    layout->addWidget(label(QStringLiteral("Table widget"), "section"));
    layout->addWidget(label(QStringLiteral("Name and Location share the free width 40:60 and never go below their own width; Type is "
                                           "fixed, Owner can be dragged. The header follows the rows sideways."),
                            "note"));
    layout->addWidget(table());

    layout->addSpacing(gallery::px(8));
    layout->addWidget(label(QStringLiteral("Folder tree"), "section"));
    layout->addWidget(label(QStringLiteral("Checkable folders are the choices; the rest draw disabled. Double-click or F2 renames in "
                                           "place; characters not allowed in file names cannot be typed."),
                            "note"));
    layout->addWidget(tree());
    layout->addStretch(1);
    return frame.page;
}

void stage(QWidget *page)
{
    // The rightmost button reads "3" on page 1: a real page move, so the list follows.
    if (auto *bar = page->findChild<LumoPagingBar *>())
        bar->pageClick(4);
}
}

LUMO_GALLERY_PAGE(60, QStringLiteral("Data"), createPage, stage)

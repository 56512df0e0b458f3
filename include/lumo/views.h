#ifndef LUMO_VIEWS_H
#define LUMO_VIEWS_H

/**
 * @file
 * Views: the paging bar and its model, the calendar and date selector, the
 * list table with a fixed header, and the folder tree with its item delegate.
 */

#include <lumo/lumo_export.h>

#include <QAbstractItemView>
#include <QColor>
#include <QComboBox>
#include <QDate>
#include <QItemDelegate>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTableWidget>
#include <QTreeWidget>
#include <QWidget>

#include <cstdint>
#include <vector>

class QAction;
class QCalendarWidget;
class QHBoxLayout;
class QHeaderView;
class QLabel;
class QScrollArea;
class QSignalMapper;
class QVBoxLayout;
class LumoButton;
class LumoIconButton;

// ---------------------------------------------------------------------------
// Paging bar
// ---------------------------------------------------------------------------

/**
 * The numbers behind a paging bar: rows per page, total item count and the
 * current page (counted from 1). Plain accessors without checks or signals.
 */
class LUMO_EXPORT LumoPagingModel : public QObject
{
public:
    /** @p rowLimit items per page, no items, page 1. */
    explicit LumoPagingModel(int rowLimit, QObject *parent = nullptr);
    ~LumoPagingModel() override;

    /** Items per page. */
    int rowLimit() const;
    /** Sets the items per page; a value below 1 counts as 1 in pageCount(). */
    void setRowLimit(int rowLimit);
    /** Total number of items. */
    int itemCount() const;
    /** Sets the total number of items. */
    void setItemCount(int count);
    /** The current page, counted from 1. */
    int nowPage() const;
    /** Sets the current page, unchecked. */
    void setNowPage(int page);

    /** The item count divided by the row limit, rounded up; never less than 1. */
    int pageCount() const;
    /** Zero-based index of the first item of the current page. */
    int startItem() const;

private:
    Q_DISABLE_COPY(LumoPagingModel)

    int m_rowLimit;
    int m_itemCount = 0;
    int m_nowPage = 1;
};

/** One footer text of a paging bar; a width of 0 leaves the label's width free. */
struct PagingFooterInfo {
    QString text; ///< The label's text, e.g. "36 file(s)".
    int width = 0; ///< Fixed width in design pixels (scaled); 0 or less for none.
};

/**
 * A one-line bar under a paged list: first/back-five arrows, five page buttons
 * with the current page in the middle, forward-five/last arrows, and on the
 * right a refresh button and footer texts.
 *
 * Every page move ends in one sigPageChanged(), after which the owner reads
 * nowPage() and startItem() from the model. Call setItemCount() once after
 * construction; the buttons are not drawn for a page before that.
 *
 * The bar is 32 design pixels high (scaled). At scale 1.33, page 1 of 4 with
 * the footer "36 file(s)" shows everything from about 478 pixels. In a
 * narrower pane the gap before the footer gives way first, then the footer
 * text is elided, down to the minimum (423 pixels) where only its ellipsis
 * is left; the page numbers are never cut.
 */
class LUMO_EXPORT LumoPagingBar : public QWidget
{
    Q_OBJECT
public:
    /** @p model is not owned. */
    explicit LumoPagingBar(LumoPagingModel *model, QWidget *parent = nullptr);
    ~LumoPagingBar() override;

    /** Stores the count and redraws for the model's page; emits nothing and does not clamp the page. */
    void setItemCount(int count);
    /** Redraws the buttons for @p page and stores it in the model unclamped; emits nothing. */
    void setPage(int page);
    /** One footer label showing @p text, without a fixed width. */
    void setFooterText(const QString &text);
    /** One footer label as @p info describes it. */
    void setFooterInfo(const PagingFooterInfo &info);
    /**
     * Reuses the existing labels in order and creates the missing ones. Labels
     * beyond the list are hidden and taken out of the row, never deleted; their
     * separators stay.
     */
    void setFooterInfos(const std::vector<PagingFooterInfo> &infos);
    /** Hides or shows the refresh button at the right end. */
    void setRefreshButtonHidden(bool hidden);
    /** Back to page 1, with one sigPageChanged(). */
    void reset();

    /** Builds the widget tree; called once by the constructor. */
    virtual void initializeUI();
    /** Connects the arrow and refresh buttons; called once by the constructor. */
    void connectSignals();

Q_SIGNALS:
    /** The user or reset() moved to another page; read it from the model. */
    void sigPageChanged();
    /** The refresh button was clicked. */
    void sigRefresh();

public Q_SLOTS:
    /** Moves to the number shown on page button @p index (0 when it shows none). */
    void pageClick(int index);
    /** Five pages on, at most to the last page. */
    void next_5_page();
    /** Five pages back, at least to page 1. */
    void prev_5_page();
    /** To page 1. */
    void first_page();
    /** To the last page. */
    void last_page();

private:
    Q_DISABLE_COPY(LumoPagingBar)
    void moveTo(int page);

    LumoPagingModel *model;
    QHBoxLayout *mainLayout = nullptr;
    QHBoxLayout *rightLayout = nullptr;
    LumoIconButton *firstPageButton;
    LumoIconButton *prev5Button;
    LumoIconButton *next5Button;
    LumoIconButton *lastPageButton;
    LumoButton *pageButtons[5] = {};
    std::vector<QLabel *> footerLabels;
    LumoIconButton *refreshButton = nullptr;
    QSignalMapper *pageMapper;
};

// ---------------------------------------------------------------------------
// Calendar view and date selector
// ---------------------------------------------------------------------------

/**
 * A month calendar with a "today" button, restyled from a wrapped
 * QCalendarWidget. It is an item view only so that a combo box can use it as
 * its popup; it shows no model. Every date pick arrives as sigDateSelect().
 */
class LUMO_EXPORT LumoCalanderView : public QAbstractItemView
{
    Q_OBJECT
public:
    /** A calendar at today's month, captions from the "month_*", weekday and "today" keys. */
    explicit LumoCalanderView(QWidget *parent = nullptr);
    ~LumoCalanderView() override;

    /** Shows @p month (1 to 12) of @p year. */
    void setCurrentPage(int year, int month);
    /** Dates before @p date are greyed out and cannot be picked. */
    void setMinimumDate(const QDate &date);
    /** Dates after @p date are greyed out and cannot be picked. */
    void setMaximumDate(const QDate &date);

    /** Consumes Tab and Backtab on the watched children, moving focus within the view. */
    bool eventFilter(QObject *watched, QEvent *event) override;

    /** The size of the calendar with its weekday row and today button, unlike an item view's fixed default. */
    QSize sizeHint() const override;
    /** The smallest size at which every row of the calendar shows. */
    QSize minimumSizeHint() const override;

    /** An empty rectangle: the view shows no model. */
    QRect visualRect(const QModelIndex &index) const override;
    /** Does nothing: the view shows no model. */
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    /** An invalid index: the view shows no model. */
    QModelIndex indexAt(const QPoint &point) const override;

Q_SIGNALS:
    /** A date was picked, by a click, by the keyboard or with the today button. */
    void sigDateSelect(const QDate &date);

public Q_SLOTS:
    /** Selects today and emits sigDateSelect() with it. */
    void selectToday();
    /** Shows the full name of @p month on the month button; @p year is unused. */
    void pageChanged(int year, int month);
    /** Shows the full name of the month of @p action; not connected by the view itself. */
    void slotMonthTriggered(QAction *action);

protected:
    /** Closes the tab cycle between the today button and the view, which Qt's focus chain cannot express. */
    bool focusNextPrevChild(bool next) override;
    /** An invalid index: the calendar moves its own cursor. */
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    /** 0: the view does not scroll. */
    int horizontalOffset() const override;
    /** 0: the view does not scroll. */
    int verticalOffset() const override;
    /** True for every index: nothing of a model is ever shown. */
    bool isIndexHidden(const QModelIndex &index) const override;
    /** Does nothing: the view shows no model. */
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    /** An empty region: the view shows no model. */
    QRegion visualRegionForSelection(const QItemSelection &selection) const override;

private:
    Q_DISABLE_COPY(LumoCalanderView)
    void handleNavigationBar();
    void handleMonthMenu();
    void handleWeekdayHeader();
    void handleTabOrder();

    QTableWidget *weekdayHeader = nullptr;
    QStringList monthNames;
    QCalendarWidget *calendar;
};

/**
 * A combo box whose popup is a LumoCalanderView. It always holds one item:
 * the default text with a null QDate, or the chosen date as "yyyy-MM-dd" with
 * the QDate as item data (read it with currentData()).
 */
class LUMO_EXPORT LumoDateSelector : public QComboBox
{
    Q_OBJECT
public:
    /** A selector showing @p text until a date is chosen. */
    explicit LumoDateSelector(QString text = QStringLiteral("choose date"), QWidget *parent = nullptr);
    ~LumoDateSelector() override;

    /** Back to the default text with the calendar at today's month; the selected date stays. */
    void clearDate();
    /** The popup view, for setting its date range. */
    LumoCalanderView *getCalendarView();
    /** The date shown, or a null date while the default text shows. */
    QDate date() const;

Q_SIGNALS:
    /** The date shown changed (to a null date when the default text comes back). */
    void sigDateChanged(QDate date);

public Q_SLOTS:
    /** Shows a valid date and closes the popup; an invalid one shows the default text and changes nothing else. */
    void dateSelect(const QDate &date);

private:
    Q_DISABLE_COPY(LumoDateSelector)

    LumoCalanderView *calendarView;
    QString defaultText;
};

// ---------------------------------------------------------------------------
// Table widget
// ---------------------------------------------------------------------------

/** The columns of a LumoTableWidget, described up front. */
class LUMO_EXPORT LumoTableColumnsInfo
{
public:
    /** One column. */
    struct ColumnInfo {
        QString name; ///< The header text.
        /** Unscaled pixels: the initial width, and the floor of a column with a share. */
        int width = 0;
        /** false: the column cannot be dragged, nor does it take a share. */
        bool resizable = false;
        /** Share of the free width; 0.0 for none. Shares are not normalised. */
        double ratio = 0.0;
    };

    LumoTableColumnsInfo();

    /** Appends a column and returns its index. */
    int addColumn(const QString &name, int width, bool resizable, double ratio);

    /** The columns in order; addColumn() appends here. */
    std::vector<ColumnInfo> columns;
};

/**
 * A QTableWidget that announces its new size before handling a resize. As for
 * every scroll area, the resize events it receives are its viewport's.
 */
class LUMO_EXPORT ResizeSignalTableWidget : public QTableWidget
{
    Q_OBJECT
public:
    /** An empty table of @p rows by @p columns. */
    ResizeSignalTableWidget(int rows, int columns);
    ~ResizeSignalTableWidget() override;

Q_SIGNALS:
    /** Emitted with the new size before the table handles the resize. */
    void sigResized(const QSize &size);

protected:
    /** Emits sigResized(), then resizes as usual. */
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DISABLE_COPY(ResizeSignalTableWidget)
};

/**
 * A list table whose header stays put while the rows scroll vertically and
 * follows them sideways. Columns with a share of the free width are resized
 * with the table, never below their own width.
 */
class LUMO_EXPORT LumoTableWidget : public QWidget
{
    Q_OBJECT
public:
    /** A table with the columns of @p info and no rows: rows in "component.table" and "component.scrollbar", header in
     * "component.table_header". */
    explicit LumoTableWidget(const LumoTableColumnsInfo &info, QWidget *parent = nullptr);
    ~LumoTableWidget() override;

    /** The row table; add rows and items here. */
    QTableWidget *getTable();
    /** The visible header. */
    QHeaderView *getHeader();

public Q_SLOTS:
    /** A header section was dragged: the row table's column @p logicalIndex takes @p newSize. */
    void slotSectionResized(int logicalIndex, int oldSize, int newSize);
    /** Hides the vertical scroll bar while @p max is 0 (everything fits). */
    void slotVerticalScrollRangeChanged(int min, int max);
    /** Shares the free width among the columns with a share; none goes below its own width. */
    void slotTableResized(const QSize &size);

private:
    Q_DISABLE_COPY(LumoTableWidget)
    void initailze();

    std::vector<LumoTableColumnsInfo::ColumnInfo> columns;
    QScrollArea *headerScrollArea = nullptr;
    QHeaderView *header = nullptr;
    QTableWidget *headerModelTable = nullptr;
    ResizeSignalTableWidget *table = nullptr;
    QVBoxLayout *boxLayout = nullptr;
};

// ---------------------------------------------------------------------------
// Tree widget and item delegate
// ---------------------------------------------------------------------------

/**
 * A folder tree that paints the selected row and the row under the mouse as a
 * rounded band, and reports right clicks and key presses.
 *
 * Rows whose items are not user-checkable are drawn in the disabled look, for
 * trees in which only the checkable folders are choices.
 *
 * The tree takes no style of its own: apply "component.tree" plus
 * "component.scrollbar" to match the other widgets, and give it the band
 * colours with setBackgroundColor().
 */
class LUMO_EXPORT LumoTreeWidget : public QTreeWidget
{
    Q_OBJECT
public:
    /** An empty tree with hover tracking on. */
    explicit LumoTreeWidget(QWidget *parent = nullptr);
    ~LumoTreeWidget() override;

    /** The band colours; both are invalid (an outline only) until set. */
    void setBackgroundColor(QColor selected, QColor hover);
    /** Scrolls sideways so that @p item's left edge is centred, unless 100 pixels of it already show. */
    void updateScrollArea(QTreeWidgetItem *item);

Q_SIGNALS:
    /** A right button press, before the tree handles it; @p event is valid only during the emission. */
    void sigMouseRightClickEvent(QMouseEvent *event);
    /** Any key press, before the tree handles it; @p event is valid only during the emission. */
    void sigKeyPressEvent(QKeyEvent *event);

protected:
    /** Paints the band of a selected or hovered row, then the row itself. */
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    /** Emits sigKeyPressEvent(), then handles the key as usual. */
    void keyPressEvent(QKeyEvent *event) override;
    /** Emits sigMouseRightClickEvent() for the right button, then handles the press as usual. */
    void mousePressEvent(QMouseEvent *event) override;
    /** Re-announces the current item, or makes the topmost visible item current. */
    void focusInEvent(QFocusEvent *event) override;

private:
    Q_DISABLE_COPY(LumoTreeWidget)

    QColor selectedColor;
    QColor hoverColor;
};

/**
 * A tree item for file-system trees. No item sorts before one whose itemName
 * is "home"; the rule is one-sided on purpose.
 */
class LUMO_EXPORT FileSystemTreeWidgetItem : public QTreeWidgetItem
{
public:
    FileSystemTreeWidgetItem();
    ~FileSystemTreeWidgetItem() override;

    /** False whenever @p other is a "home" item; otherwise the sort column's text decides. */
    bool operator<(const QTreeWidgetItem &other) const override;

    /** The name the sort order looks at; set by the client. */
    QString itemName;
    /** Client data; the library never reads these. */
    QString itemPath;
    int itemFlags = 0; ///< Client data.
    qint64 itemId = 0; ///< Client data.
};

/**
 * Delegate for renaming items in place: names are limited to characters valid
 * in file names, rows have a fixed height, Escape is reported, and the last
 * check box drawn is recorded in g_check_rect.
 */
class LUMO_EXPORT ItemDelegate : public QItemDelegate
{
    Q_OBJECT
public:
    /** A parentless delegate; set it on the view and keep it alive as long as the view. */
    ItemDelegate();
    ~ItemDelegate() override;

    /** The base width and a fixed height of 28 design pixels (scaled). */
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    /**
     * A line edit gets a validator (no leading dot, none of \\ / : * ? " < > |),
     * the "component.tree_item" look and all its text selected.
     */
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;

Q_SIGNALS:
    /** Escape was pressed in an editor. */
    void sigKeyPressed(QKeyEvent *event);

protected:
    /** Reports Escape with sigKeyPressed(), then filters as QItemDelegate does. */
    bool eventFilter(QObject *object, QEvent *event) override;
    /** Records @p rect in g_check_rect, then draws as usual. */
    void drawCheck(QPainter *painter, const QStyleOptionViewItem &option, const QRect &rect, Qt::CheckState state) const override;

private:
    Q_DISABLE_COPY(ItemDelegate)
};

/** The check box rectangle an ItemDelegate drew last, in the painting widget's coordinates. */
LUMO_EXPORT extern QRect g_check_rect;

#endif

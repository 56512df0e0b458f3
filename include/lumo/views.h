#ifndef LUMO_VIEWS_H
#define LUMO_VIEWS_H

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
    explicit LumoPagingModel(int rowLimit, QObject *parent = nullptr);
    ~LumoPagingModel() override;

    int rowLimit() const;
    void setRowLimit(int rowLimit);
    int itemCount() const;
    void setItemCount(int count);
    int nowPage() const;
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
    QString text;
    int width = 0;
};

/**
 * A one-line bar under a paged list: first/back-five arrows, five page buttons
 * with the current page in the middle, forward-five/last arrows, and on the
 * right a refresh button and footer texts.
 *
 * Every page move ends in one sigPageChanged(), after which the owner reads
 * nowPage() and startItem() from the model. Call setItemCount() once after
 * construction; the buttons are not drawn for a page before that.
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
    void setFooterText(const QString &text);
    void setFooterInfo(const PagingFooterInfo &info);
    /**
     * Reuses the existing labels in order and creates the missing ones. Labels
     * beyond the list are hidden and taken out of the row, never deleted; their
     * separators stay.
     */
    void setFooterInfos(const std::vector<PagingFooterInfo> &infos);
    void setRefreshButtonHidden(bool hidden);
    /** Back to page 1, with one sigPageChanged(). */
    void reset();

    /** Builds the widget tree; called once by the constructor. */
    virtual void initializeUI();
    void connectSignals();

Q_SIGNALS:
    void sigPageChanged();
    void sigRefresh();

public Q_SLOTS:
    /** Moves to the number shown on page button @p index (0 when it shows none). */
    void pageClick(int index);
    void next_5_page();
    void prev_5_page();
    void first_page();
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
    explicit LumoCalanderView(QWidget *parent = nullptr);
    ~LumoCalanderView() override;

    void setCurrentPage(int year, int month);
    void setMinimumDate(const QDate &date);
    void setMaximumDate(const QDate &date);

    /** Consumes Tab and Backtab on the watched children, moving focus within the view. */
    bool eventFilter(QObject *watched, QEvent *event) override;

    /** The size of the calendar with its weekday row and today button, unlike an item view's fixed default. */
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint &point) const override;

Q_SIGNALS:
    void sigDateSelect(const QDate &date);

public Q_SLOTS:
    void selectToday();
    void pageChanged(int year, int month);
    /** Shows the full name of the month of @p action; not connected by the view itself. */
    void slotMonthTriggered(QAction *action);

protected:
    /** Closes the tab cycle between the today button and the view, which Qt's focus chain cannot express. */
    bool focusNextPrevChild(bool next) override;
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex &index) const override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
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
    struct ColumnInfo {
        QString name;
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
    ResizeSignalTableWidget(int rows, int columns);
    ~ResizeSignalTableWidget() override;

Q_SIGNALS:
    void sigResized(const QSize &size);

protected:
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
    explicit LumoTableWidget(const LumoTableColumnsInfo &info, QWidget *parent = nullptr);
    ~LumoTableWidget() override;

    /** The row table; add rows and items here. */
    QTableWidget *getTable();
    /** The visible header. */
    QHeaderView *getHeader();

public Q_SLOTS:
    void slotSectionResized(int logicalIndex, int oldSize, int newSize);
    void slotVerticalScrollRangeChanged(int min, int max);
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
 */
class LUMO_EXPORT LumoTreeWidget : public QTreeWidget
{
    Q_OBJECT
public:
    explicit LumoTreeWidget(QWidget *parent = nullptr);
    ~LumoTreeWidget() override;

    /** The band colours; both are invalid (an outline only) until set. */
    void setBackgroundColor(QColor selected, QColor hover);
    /** Scrolls sideways so that @p item's left edge is centred, unless 100 pixels of it already show. */
    void updateScrollArea(QTreeWidgetItem *item);

Q_SIGNALS:
    void sigMouseRightClickEvent(QMouseEvent *event);
    void sigKeyPressEvent(QKeyEvent *event);

protected:
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void keyPressEvent(QKeyEvent *event) override;
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
    int itemFlags = 0;
    qint64 itemId = 0;
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
    ItemDelegate();
    ~ItemDelegate() override;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;

Q_SIGNALS:
    void sigKeyPressed(QKeyEvent *event);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void drawCheck(QPainter *painter, const QStyleOptionViewItem &option, const QRect &rect, Qt::CheckState state) const override;

private:
    Q_DISABLE_COPY(ItemDelegate)
};

/** The check box rectangle an ItemDelegate drew last, in the painting widget's coordinates. */
LUMO_EXPORT extern QRect g_check_rect;

#endif

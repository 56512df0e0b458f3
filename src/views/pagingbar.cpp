#include <lumo/views.h>

#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLayoutItem>
#include <QPainter>
#include <QSignalMapper>
#include <QStyle>

#include <limits>

namespace
{
// The layout's view of a page button: never narrower than its number needs.
// The button's own minimum width is only the floor for short numbers, and a
// squeezed row would otherwise cut the number at it.
class PageButtonItem : public QWidgetItem
{
public:
    using QWidgetItem::QWidgetItem;
    QSize minimumSize() const override { return QWidgetItem::minimumSize().expandedTo(QWidgetItem::sizeHint()); }
};

// A footer text that a pane too narrow for the whole row squeezes loses its
// end behind an ellipsis instead of its start behind the label's left edge.
class FooterLabel : public QLabel
{
public:
    using QLabel::QLabel;

    // How much narrower than its whole text the label may be squeezed: down to the
    // ellipsis. A label given a fixed width has no say.
    int squeezable() const
    {
        if (minimumWidth() == maximumWidth() || isHidden())
            return 0;
        const QFontMetrics metrics = fontMetrics();
        return qMax(0, metrics.horizontalAdvance(text()) - metrics.horizontalAdvance(QString(QChar(0x2026))));
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        // QLabel's own text rectangle: inside the margin, indented as a framed label is.
        QRect room = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
        const int indent =
            this->indent() < 0 && frameWidth() ? fontMetrics().horizontalAdvance(QLatin1Char('x')) / 2 - margin() : this->indent();
        if (indent > 0)
            room.adjust(alignment() & Qt::AlignLeft ? indent : 0, 0, alignment() & Qt::AlignRight ? -indent : 0, 0);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
        if (shown == text()) {
            QLabel::paintEvent(event);
            return;
        }
        QFrame::paintEvent(event);
        QPainter painter(this);
        style()->drawItemText(&painter, room, int(QStyle::visualAlignment(layoutDirection(), alignment())), palette(), isEnabled(), shown,
                              foregroundRole());
    }
};

// The bordered row as the bar's own layout sees it: its minimum leaves the footer
// texts only their ellipses. Below the row's own minimum, Qt takes the width from
// the widest item first, which is the footer, so the page buttons keep their numbers
// and the footer loses its end (see FooterLabel).
class RowItem : public QWidgetItem
{
public:
    using QWidgetItem::QWidgetItem;
    QSize minimumSize() const override
    {
        QSize size = QWidgetItem::minimumSize();
        for (const QLabel *label : widget()->findChildren<QLabel *>())
            if (const auto *footer = dynamic_cast<const FooterLabel *>(label))
                size.rwidth() -= footer->squeezable();
        return size;
    }
};

// Pages are ints; arithmetic near the ends of the range saturates instead of wrapping.
int clampToInt(qint64 value)
{
    return int(qBound(qint64(std::numeric_limits<int>::min()), value, qint64(std::numeric_limits<int>::max())));
}
}

LumoPagingModel::LumoPagingModel(int rowLimit, QObject *parent)
    : QObject(parent)
    , m_rowLimit(rowLimit)
{
}

LumoPagingModel::~LumoPagingModel() = default;

int LumoPagingModel::rowLimit() const
{
    return m_rowLimit;
}

void LumoPagingModel::setRowLimit(int rowLimit)
{
    m_rowLimit = rowLimit;
}

int LumoPagingModel::itemCount() const
{
    return m_itemCount;
}

void LumoPagingModel::setItemCount(int count)
{
    m_itemCount = count;
}

int LumoPagingModel::nowPage() const
{
    return m_nowPage;
}

void LumoPagingModel::setNowPage(int page)
{
    m_nowPage = page;
}

int LumoPagingModel::pageCount() const
{
    // A row limit below 1 is a caller's error; one page is the neutral answer.
    if (m_rowLimit < 1 || m_itemCount < 1)
        return 1;
    return (m_itemCount - 1) / m_rowLimit + 1;
}

int LumoPagingModel::startItem() const
{
    return clampToInt((qint64(m_nowPage) - 1) * m_rowLimit);
}

LumoPagingBar::LumoPagingBar(LumoPagingModel *model, QWidget *parent)
    : QWidget(parent)
    , model(model)
{
    model->setNowPage(1);
    model->setItemCount(0);
    pageMapper = new QSignalMapper(this);

    firstPageButton = new LumoIconButton(QStringLiteral("bt_pagebar_backend"));
    firstPageButton->setToolTip(lumo::caption("first_page"));
    prev5Button = new LumoIconButton(QStringLiteral("bt_pagebar_back"));
    prev5Button->setToolTip(lumo::caption("prev_5_pages"));
    lastPageButton = new LumoIconButton(QStringLiteral("bt_pagebar_nextend"));
    lastPageButton->setToolTip(lumo::caption("last_page"));
    next5Button = new LumoIconButton(QStringLiteral("bt_pagebar_next"));
    next5Button->setToolTip(lumo::caption("next_5_pages"));

    initializeUI();
    connectSignals();
}

LumoPagingBar::~LumoPagingBar() = default;

void LumoPagingBar::initializeUI()
{
    mainLayout = new QHBoxLayout;
    mainLayout->setSpacing(lumo::scaled(0));
    // One pixel at the top only: it keeps the buttons clear of the border line.
    mainLayout->setContentsMargins(lumo::scaled(0), lumo::scaled(1), lumo::scaled(0), lumo::scaled(0));
    mainLayout->setAlignment(Qt::AlignVCenter);

    for (int i = 0; i < 5; ++i) {
        pageButtons[i] = new LumoButton(QString(), i == 2 ? LumoButton::SelectPaging : LumoButton::NonselectPaging);
        pageButtons[i]->setFixedHeight(lumo::scaled(24));
        pageButtons[i]->setMinimumWidth(lumo::scaled(24));
        connect(pageButtons[i], SIGNAL(clicked()), pageMapper, SLOT(map()));
        pageMapper->setMapping(pageButtons[i], i);
    }
    pageButtons[2]->setText(QStringLiteral("1"));
    connect(pageMapper, SIGNAL(mappedInt(int)), this, SLOT(pageClick(int)));

    refreshButton = new LumoIconButton(QStringLiteral("bt_pagebar_refresh"));
    refreshButton->setAccessibleName(lumo::caption("pagebar_refresh"));
    refreshButton->setFixedSize(lumo::scaled(24), lumo::scaled(24));

    rightLayout = new QHBoxLayout;
    rightLayout->setDirection(QBoxLayout::RightToLeft);
    rightLayout->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rightLayout->setSpacing(lumo::scaled(4));
    rightLayout->setContentsMargins(lumo::scaled(0), lumo::scaled(0), lumo::scaled(0), lumo::scaled(0));
    rightLayout->addWidget(refreshButton, 0, Qt::AlignCenter);

    // The gaps are uneven on purpose: none between the back-five arrow and the
    // page buttons, none around the two right arrows.
    mainLayout->addSpacing(lumo::scaled(8));
    mainLayout->addWidget(firstPageButton, 0, Qt::AlignLeft | Qt::AlignVCenter);
    mainLayout->addSpacing(lumo::scaled(4));
    mainLayout->addWidget(prev5Button, 0, Qt::AlignLeft | Qt::AlignVCenter);
    for (int i = 0; i < 5; ++i) {
        if (i > 0)
            mainLayout->addSpacing(lumo::scaled(4));
        auto *item = new PageButtonItem(pageButtons[i]); // the inner widget adopts it with the layout
        item->setAlignment(Qt::AlignCenter);
        mainLayout->addItem(item);
    }
    mainLayout->addWidget(next5Button, 0, Qt::AlignRight | Qt::AlignVCenter);
    mainLayout->addWidget(lastPageButton, 0, Qt::AlignRight | Qt::AlignVCenter);
    mainLayout->addStretch();
    // The gap is the first to give way in a narrow pane, before any text is cut.
    mainLayout->addSpacerItem(new QSpacerItem(lumo::scaled(50), 0, QSizePolicy::Maximum, QSizePolicy::Minimum));
    mainLayout->addLayout(rightLayout, 0);

    auto *border = new QWidget;
    border->setLayout(mainLayout);
    border->setObjectName(QStringLiteral("PAGINGBARBORDER"));
    border->setStyleSheet(lumo::style("component.paging_bar_border"));
    border->setFixedHeight(lumo::scaled(32));

    auto *outer = new QHBoxLayout(this);
    outer->setSpacing(lumo::scaled(0));
    outer->setContentsMargins(lumo::scaled(0), lumo::scaled(0), lumo::scaled(0), lumo::scaled(0));
    border->setParent(this);
    outer->addItem(new RowItem(border));
}

void LumoPagingBar::connectSignals()
{
    connect(refreshButton, SIGNAL(clicked()), this, SIGNAL(sigRefresh()));
    connect(firstPageButton, SIGNAL(clicked()), this, SLOT(first_page()));
    connect(lastPageButton, SIGNAL(clicked()), this, SLOT(last_page()));
    connect(next5Button, SIGNAL(clicked()), this, SLOT(next_5_page()));
    connect(prev5Button, SIGNAL(clicked()), this, SLOT(prev_5_page()));
}

void LumoPagingBar::setItemCount(int count)
{
    model->setItemCount(count);
    setPage(model->nowPage());
}

void LumoPagingBar::setPage(int page)
{
    const int count = model->pageCount();
    for (int i = 0; i < 5; ++i) {
        // The numbers never shift at the ends: the current page stays in the middle.
        const qint64 number = qint64(page) - 2 + i;
        const bool shown = number >= 1 && number <= count;
        pageButtons[i]->setText(shown ? QString::number(number) : QStringLiteral(" "));
        pageButtons[i]->setEnabled(shown);
    }
    next5Button->setEnabled(count > page);
    lastPageButton->setEnabled(count > page);
    prev5Button->setEnabled(page != 1);
    firstPageButton->setEnabled(page != 1);
    model->setNowPage(page);
}

void LumoPagingBar::setFooterText(const QString &text)
{
    setFooterInfo(PagingFooterInfo {text, 0});
}

void LumoPagingBar::setFooterInfo(const PagingFooterInfo &info)
{
    setFooterInfos(std::vector<PagingFooterInfo> {info});
}

void LumoPagingBar::setFooterInfos(const std::vector<PagingFooterInfo> &infos)
{
    for (size_t i = 0; i < infos.size(); ++i) {
        const PagingFooterInfo &info = infos[i];
        // Negative widths count as "no fixed width", like 0.
        const bool fixedWidth = info.width > 0;
        if (i < footerLabels.size()) {
            footerLabels[i]->setText(info.text);
            if (fixedWidth)
                footerLabels[i]->setFixedWidth(lumo::scaled(info.width));
            continue;
        }
        auto *label = new FooterLabel(info.text);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        label->setFixedHeight(lumo::scaled(24));
        if (fixedWidth)
            label->setFixedWidth(lumo::scaled(info.width));
        // Decided once, here: hiding the refresh button later does not restyle the label.
        const bool rightmost = i == 0 && refreshButton->isHidden();
        label->setStyleSheet(lumo::style(rightmost ? "component.paging_bar_rightmost_label" : "component.paging_bar_label"));
        footerLabels.push_back(label);

        auto *separator = new QLabel;
        separator->setFixedSize(lumo::scaled(1), lumo::scaled(24));
        separator->setStyleSheet(QStringLiteral("QLabel {background: rgba(171,181,194,0.20);}"));
        rightLayout->addWidget(separator, 0, Qt::AlignVCenter);
        rightLayout->addWidget(label, 0, Qt::AlignVCenter);
    }
    // Surplus labels are hidden and dropped but kept alive; their separators stay in the row.
    while (footerLabels.size() > infos.size()) {
        QLabel *label = footerLabels.back();
        label->hide();
        rightLayout->removeWidget(label);
        footerLabels.pop_back();
    }
}

void LumoPagingBar::setRefreshButtonHidden(bool hidden)
{
    refreshButton->setHidden(hidden);
}

void LumoPagingBar::reset()
{
    setPage(1);
    Q_EMIT sigPageChanged();
}

void LumoPagingBar::moveTo(int page)
{
    setPage(page);
    Q_EMIT sigPageChanged();
}

void LumoPagingBar::pageClick(int index)
{
    if (index < 0 || index > 4) {
        qCWarning(lumoLog) << "Cannot click page button" << index;
        return;
    }
    bool ok = false;
    const int page = pageButtons[index]->text().toInt(&ok, 10);
    moveTo(ok ? page : 0);
}

void LumoPagingBar::next_5_page()
{
    moveTo(int(qMin<qint64>(qint64(model->nowPage()) + 5, model->pageCount())));
}

void LumoPagingBar::prev_5_page()
{
    const int now = model->nowPage();
    moveTo(now > 5 ? now - 5 : 1);
}

void LumoPagingBar::first_page()
{
    moveTo(1);
}

void LumoPagingBar::last_page()
{
    moveTo(model->pageCount());
}

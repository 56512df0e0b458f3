// The paging bar and its model: page buttons, arrows, page moves and footer labels.

#include "testsupport.h"

#include <lumo/controls.h>
#include <lumo/registries.h>
#include <lumo/views.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
// Design pixels at this run's scale, truncated like the library's sizes.
int scaled(double designPixels)
{
    return int(testsupport::expectedScale() * designPixels);
}

QString caption(const char *key)
{
    return ComponentStrings::getInstance()->getString(QLatin1String(key));
}

struct Bar {
    LumoPagingModel model {10};
    LumoPagingBar bar {&model};

    QList<LumoButton *> pageButtons() const
    {
        QList<LumoButton *> buttons;
        for (LumoButton *button : bar.findChildren<LumoButton *>())
            buttons << button;
        // Left to right on screen is the design's index order.
        std::sort(buttons.begin(), buttons.end(), [](QWidget *a, QWidget *b) { return a->x() < b->x(); });
        return buttons;
    }
    LumoIconButton *arrow(const char *captionKey) const
    {
        for (LumoIconButton *button : bar.findChildren<LumoIconButton *>()) {
            if (button->toolTip() == caption(captionKey))
                return button;
        }
        return nullptr;
    }
    LumoIconButton *refresh() const
    {
        for (LumoIconButton *button : bar.findChildren<LumoIconButton *>()) {
            if (button->accessibleName() == caption("pagebar_refresh"))
                return button;
        }
        return nullptr;
    }
    QList<QLabel *> separators() const
    {
        QList<QLabel *> labels;
        for (QLabel *label : bar.findChildren<QLabel *>()) {
            if (label->text().isEmpty() && label->minimumWidth() == scaled(1) && label->maximumWidth() == scaled(1))
                labels << label;
        }
        return labels;
    }
    void show()
    {
        bar.resize(scaled(900), scaled(32));
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
    }
};
}

class TestPagingBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void modelArithmetic_data();
    void modelArithmetic();
    void newBarBeforeFirstPage();
    void widgetTree();
    void metaObjectOrder();
    void buttonsForPage_data();
    void buttonsForPage();
    void pageMoves_data();
    void pageMoves();
    void setItemCountNeitherClampsNorEmits();
    void refreshButton();
    void footerLabelsAreReusedAndHidden();
    void rightmostStyleIsDecidedAtCreation();
    void footerWidths();

private:
    QTemporaryDir userData;
};

void TestPagingBar::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
    QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
}

void TestPagingBar::modelArithmetic_data()
{
    QTest::addColumn<int>("rowLimit");
    QTest::addColumn<int>("itemCount");
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("pageCount");
    QTest::addColumn<int>("startItem");

    QTest::newRow("no items") << 10 << 0 << 1 << 1 << 0;
    QTest::newRow("negative count") << 10 << -45 << 1 << 1 << 0;
    QTest::newRow("one item") << 10 << 1 << 1 << 1 << 0;
    QTest::newRow("exactly full") << 10 << 40 << 4 << 4 << 30;
    QTest::newRow("one more") << 10 << 41 << 5 << 5 << 40;
    QTest::newRow("45 at 10") << 10 << 45 << 3 << 5 << 20;
    QTest::newRow("huge count") << 1 << INT_MAX << 2 << INT_MAX << 1;
    QTest::newRow("page 0") << 10 << 100 << 0 << 10 << -10;
    QTest::newRow("saturating start") << 1000 << 100 << INT_MAX << 1 << INT_MAX;
    QTest::newRow("row limit 0 is one page") << 0 << 100 << 1 << 1 << 0;
}

void TestPagingBar::modelArithmetic()
{
    QFETCH(int, rowLimit);
    QFETCH(int, itemCount);
    QFETCH(int, page);
    LumoPagingModel model(rowLimit);
    QCOMPARE(model.rowLimit(), rowLimit);
    QCOMPARE(model.itemCount(), 0);
    QCOMPARE(model.nowPage(), 1);
    model.setItemCount(itemCount);
    model.setNowPage(page);
    QCOMPARE(model.itemCount(), itemCount);
    QCOMPARE(model.nowPage(), page);
    QTEST(model.pageCount(), "pageCount");
    QTEST(model.startItem(), "startItem");
    // No meta-object of its own.
    QCOMPARE(model.metaObject(), &QObject::staticMetaObject);
}

void TestPagingBar::newBarBeforeFirstPage()
{
    LumoPagingModel model(25);
    model.setItemCount(300);
    model.setNowPage(4);
    LumoPagingBar bar(&model);
    // The constructor starts the model over; the row limit stays.
    QCOMPARE(model.nowPage(), 1);
    QCOMPARE(model.itemCount(), 0);
    QCOMPARE(model.rowLimit(), 25);
    const QList<LumoButton *> buttons = bar.findChildren<LumoButton *>();
    QCOMPARE(buttons.size(), 5);
    QStringList texts;
    for (LumoButton *button : buttons) {
        texts << button->text();
        QVERIFY(button->isEnabled());
        QCOMPARE(button->height(), scaled(24));
        QCOMPARE(button->minimumWidth(), scaled(24));
    }
    QCOMPARE(texts, QStringList({QString(), QString(), QStringLiteral("1"), QString(), QString()}));
    for (LumoIconButton *arrow : bar.findChildren<LumoIconButton *>())
        QVERIFY(arrow->isEnabled());
}

void TestPagingBar::widgetTree()
{
    Bar b;
    auto *border = b.bar.findChild<QWidget *>(QStringLiteral("PAGINGBARBORDER"));
    QVERIFY(border);
    QCOMPARE(border->styleSheet(), getStyleSheet("component.paging_bar_border", false));
    QCOMPARE(border->minimumHeight(), scaled(32));
    QCOMPARE(border->maximumHeight(), scaled(32));
    auto *main = qobject_cast<QHBoxLayout *>(border->layout());
    QVERIFY(main);
    QCOMPARE(main->contentsMargins(), QMargins(0, scaled(1), 0, 0));
    QCOMPARE(main->spacing(), 0);

    // The row, item by item: spacings (with their widths), widgets and the right layout.
    QStringList items;
    for (int i = 0; i < main->count(); ++i) {
        QLayoutItem *item = main->itemAt(i);
        if (QWidget *widget = item->widget()) {
            if (qobject_cast<LumoButton *>(widget))
                items << QStringLiteral("page");
            else
                items << QStringLiteral("arrow:") + widget->toolTip();
        } else if (item->layout()) {
            items << QStringLiteral("right");
        } else if (QSpacerItem *spacer = item->spacerItem()) {
            items << (spacer->expandingDirections() & Qt::Horizontal ? QStringLiteral("stretch")
                                                                     : QString::number(spacer->sizeHint().width()));
        }
    }
    const QString s4 = QString::number(scaled(4));
    const QStringList expected = {QString::number(scaled(8)),
                                  QStringLiteral("arrow:") + caption("first_page"),
                                  s4,
                                  QStringLiteral("arrow:") + caption("prev_5_pages"),
                                  QStringLiteral("page"),
                                  s4,
                                  QStringLiteral("page"),
                                  s4,
                                  QStringLiteral("page"),
                                  s4,
                                  QStringLiteral("page"),
                                  s4,
                                  QStringLiteral("page"),
                                  QStringLiteral("arrow:") + caption("next_5_pages"),
                                  QStringLiteral("arrow:") + caption("last_page"),
                                  QStringLiteral("stretch"),
                                  QString::number(scaled(50)),
                                  QStringLiteral("right")};
    QCOMPARE(items, expected);

    // The middle page button has the selected look, the others the unselected one.
    for (int i = 0; i < main->count(); ++i) {
        if (auto *button = qobject_cast<LumoButton *>(main->itemAt(i)->widget())) {
            const bool middle = i == 8;
            QCOMPARE(button->styleSheet(),
                     getStyleSheet(middle ? "component.select_paging_button" : "component.nonselect_paging_button", false));
        }
    }
    auto *right = qobject_cast<QHBoxLayout *>(main->itemAt(main->count() - 1)->layout());
    QCOMPARE(right->direction(), QBoxLayout::RightToLeft);
    QCOMPARE(right->spacing(), scaled(4));
    QCOMPARE(right->count(), 1);
    QCOMPARE(right->itemAt(0)->widget(), b.refresh());
    QCOMPARE(b.refresh()->size(), QSize(scaled(24), scaled(24)));
}

void TestPagingBar::metaObjectOrder()
{
    const QMetaObject &meta = LumoPagingBar::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods << QString::fromLatin1(meta.method(i).methodSignature());
    QCOMPARE(methods,
             QStringList({QStringLiteral("sigPageChanged()"), QStringLiteral("sigRefresh()"), QStringLiteral("pageClick(int)"),
                          QStringLiteral("next_5_page()"), QStringLiteral("prev_5_page()"), QStringLiteral("first_page()"),
                          QStringLiteral("last_page()")}));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 2).methodType(), QMetaMethod::Slot);
}

void TestPagingBar::buttonsForPage_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("page");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("enabled"); // five page buttons, then first, back five, forward five, last

    const QString blank = QStringLiteral(" ");
    QTest::newRow("0 items") << 0 << 1 << QStringList({blank, blank, QStringLiteral("1"), blank, blank}) << QStringLiteral("00100 0000");
    QTest::newRow("45 items, page 3") << 45 << 3
                                      << QStringList({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
                                                      QStringLiteral("5")})
                                      << QStringLiteral("11111 1111");
    QTest::newRow("page 1 of 20") << 200 << 1 << QStringList({blank, blank, QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")})
                                  << QStringLiteral("00111 0011");
    QTest::newRow("page 2 of 20") << 200 << 2
                                  << QStringList(
                                         {blank, QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")})
                                  << QStringLiteral("01111 1111");
    QTest::newRow("page 7 of 20") << 200 << 7
                                  << QStringList({QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8"),
                                                  QStringLiteral("9")})
                                  << QStringLiteral("11111 1111");
    QTest::newRow("page 18 of 20") << 200 << 18
                                   << QStringList({QStringLiteral("16"), QStringLiteral("17"), QStringLiteral("18"), QStringLiteral("19"),
                                                   QStringLiteral("20")})
                                   << QStringLiteral("11111 1111");
    QTest::newRow("page 20 of 20") << 200 << 20
                                   << QStringList({QStringLiteral("18"), QStringLiteral("19"), QStringLiteral("20"), blank, blank})
                                   << QStringLiteral("11100 1100");
    QTest::newRow("beyond the last page") << 200 << 25 << QStringList({blank, blank, blank, blank, blank}) << QStringLiteral("00000 1100");
    QTest::newRow("page 0") << 200 << 0 << QStringList({blank, blank, blank, QStringLiteral("1"), QStringLiteral("2")})
                            << QStringLiteral("00011 1111");
    QTest::newRow("negative page") << 200 << -3 << QStringList({blank, blank, blank, blank, blank}) << QStringLiteral("00000 1111");
    QTest::newRow("negative count") << -7 << 1 << QStringList({blank, blank, QStringLiteral("1"), blank, blank})
                                    << QStringLiteral("00100 0000");
    QTest::newRow("largest page") << INT_MAX << INT_MAX
                                  << QStringList({QStringLiteral("2147483645"), QStringLiteral("2147483646"), QStringLiteral("2147483647"),
                                                  blank, blank})
                                  << QStringLiteral("11100 1100");
}

void TestPagingBar::buttonsForPage()
{
    QFETCH(int, items);
    QFETCH(int, page);
    QFETCH(QStringList, texts);
    QFETCH(QString, enabled);

    Bar b;
    if (items == INT_MAX)
        b.model.setRowLimit(1);
    QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
    b.show();
    b.bar.setItemCount(items);
    b.bar.setPage(page);
    QCOMPARE(b.model.nowPage(), page);
    QCOMPARE(spy.count(), 0);

    const QList<LumoButton *> buttons = b.pageButtons();
    QCOMPARE(buttons.size(), 5);
    QString states;
    QStringList shown;
    for (LumoButton *button : buttons) {
        shown << button->text();
        states += button->isEnabled() ? QLatin1Char('1') : QLatin1Char('0');
    }
    states += QLatin1Char(' ');
    for (const char *key : {"first_page", "prev_5_pages", "next_5_pages", "last_page"})
        states += b.arrow(key)->isEnabled() ? QLatin1Char('1') : QLatin1Char('0');
    QCOMPARE(shown, texts);
    QCOMPARE(states, enabled);
}

void TestPagingBar::pageMoves_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("newPage");

    QTest::newRow("45 items page 3, forward five") << 45 << 3 << "next5" << 5;
    QTest::newRow("45 items page 3, back five") << 45 << 3 << "prev5" << 1;
    QTest::newRow("page 7 of 20, back five") << 200 << 7 << "prev5" << 2;
    QTest::newRow("page 7 of 20, forward five") << 200 << 7 << "next5" << 12;
    QTest::newRow("page 18 of 20, forward five") << 200 << 18 << "next5" << 20;
    QTest::newRow("page 6 of 20, back five") << 200 << 6 << "prev5" << 1;
    QTest::newRow("page 7 of 20, first") << 200 << 7 << "first" << 1;
    QTest::newRow("page 7 of 20, last") << 200 << 7 << "last" << 20;
    QTest::newRow("page 7 of 20, leftmost number") << 200 << 7 << "click0" << 5;
    QTest::newRow("page 7 of 20, rightmost number") << 200 << 7 << "click4" << 9;
    QTest::newRow("page 7 of 20, middle number") << 200 << 7 << "click2" << 7;
    QTest::newRow("page 7 of 20, reset") << 200 << 7 << "reset" << 1;
    // Moves that do not change the page still announce once.
    QTest::newRow("page 1, first (slot)") << 200 << 1 << "slot:first_page" << 1;
    QTest::newRow("last page, forward five (slot)") << 200 << 20 << "slot:next_5_page" << 20;
    QTest::newRow("last page, last (slot)") << 200 << 20 << "slot:last_page" << 20;
    QTest::newRow("page 1, back five (slot)") << 200 << 1 << "slot:prev_5_page" << 1;
    QTest::newRow("beyond the end, forward five clamps") << 200 << 30 << "slot:next_5_page" << 20;
    QTest::newRow("blank button reads 0") << 0 << 1 << "pageClick0" << 0;
}

void TestPagingBar::pageMoves()
{
    QFETCH(int, items);
    QFETCH(int, page);
    QFETCH(QString, action);

    Bar b;
    b.show();
    b.bar.setItemCount(items);
    b.bar.setPage(page);
    QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
    const QList<LumoButton *> buttons = b.pageButtons();

    if (action == QLatin1String("next5"))
        QTest::mouseClick(b.arrow("next_5_pages"), Qt::LeftButton);
    else if (action == QLatin1String("prev5"))
        QTest::mouseClick(b.arrow("prev_5_pages"), Qt::LeftButton);
    else if (action == QLatin1String("first"))
        QTest::mouseClick(b.arrow("first_page"), Qt::LeftButton);
    else if (action == QLatin1String("last"))
        QTest::mouseClick(b.arrow("last_page"), Qt::LeftButton);
    else if (action.startsWith(QLatin1String("click")))
        QTest::mouseClick(buttons[action.mid(5).toInt()], Qt::LeftButton);
    else if (action == QLatin1String("reset"))
        b.bar.reset();
    else if (action.startsWith(QLatin1String("slot:")))
        QVERIFY(QMetaObject::invokeMethod(&b.bar, action.mid(5).toLatin1().constData()));
    else if (action == QLatin1String("pageClick0"))
        b.bar.pageClick(0);

    QCOMPARE(spy.count(), 1);
    QTEST(b.model.nowPage(), "newPage");
    // The buttons are redrawn for the new page: the middle one shows it when it exists.
    QFETCH(int, newPage);
    if (newPage >= 1 && newPage <= b.model.pageCount())
        QCOMPARE(buttons[2]->text(), QString::number(newPage));
}

void TestPagingBar::setItemCountNeitherClampsNorEmits()
{
    Bar b;
    b.show();
    b.bar.setItemCount(200);
    b.bar.setPage(7);
    QSignalSpy spy(&b.bar, SIGNAL(sigPageChanged()));
    b.bar.setItemCount(30);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(b.model.nowPage(), 7);
    QCOMPARE(b.model.itemCount(), 30);
    const QList<LumoButton *> buttons = b.pageButtons();
    QCOMPARE(buttons[2]->text(), QStringLiteral(" "));
    QVERIFY(!buttons[2]->isEnabled());
    QVERIFY(!b.arrow("next_5_pages")->isEnabled());
    QVERIFY(b.arrow("first_page")->isEnabled());

    // Out-of-range button indexes are refused with a warning and no emission.
    testsupport::LogCatcher log;
    b.bar.pageClick(5);
    b.bar.pageClick(-1);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(log.warnings(), QStringList({QStringLiteral("Cannot click page button 5"), QStringLiteral("Cannot click page button -1")}));
}

void TestPagingBar::refreshButton()
{
    Bar b;
    b.show();
    QSignalSpy refresh(&b.bar, SIGNAL(sigRefresh()));
    QSignalSpy page(&b.bar, SIGNAL(sigPageChanged()));
    QTest::mouseClick(b.refresh(), Qt::LeftButton);
    QCOMPARE(refresh.count(), 1);
    QCOMPARE(page.count(), 0);
    b.bar.setRefreshButtonHidden(true);
    QVERIFY(b.refresh()->isHidden());
    b.bar.setRefreshButtonHidden(false);
    QVERIFY(b.refresh()->isVisible());
}

void TestPagingBar::footerLabelsAreReusedAndHidden()
{
    Bar b;
    b.show();
    b.bar.setFooterInfos({{QStringLiteral("120 items"), 0}, {QStringLiteral("3 selected"), 0}});
    QCOMPARE(b.separators().size(), 2);
    QCoreApplication::processEvents();
    QList<QLabel *> labels;
    for (QLabel *label : b.bar.findChildren<QLabel *>()) {
        if (!label->text().isEmpty())
            labels << label;
    }
    QCOMPARE(labels.size(), 2);
    QPointer<QLabel> first = labels[0]->text() == QLatin1String("120 items") ? labels[0] : labels[1];
    QPointer<QLabel> second = first == labels[0] ? labels[1] : labels[0];
    QCOMPARE(first->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QCOMPARE(first->height(), scaled(24));
    // Right to left: label 0 stands next to the refresh button, left of its separator.
    QVERIFY(first->x() < b.refresh()->x());
    QVERIFY(second->x() < first->x());

    b.bar.setFooterText(QStringLiteral("99 items"));
    QCoreApplication::processEvents();
    QVERIFY(first);
    QVERIFY(second);
    QCOMPARE(first->text(), QStringLiteral("99 items"));
    QVERIFY(first->isVisible());
    QVERIFY(second->isHidden());
    // Both separators stay in the row.
    QCOMPARE(b.separators().size(), 2);
    for (QLabel *separator : b.separators())
        QVERIFY(separator->isVisible());

    // A longer list again creates a new label rather than reviving the hidden one.
    b.bar.setFooterInfos({{QStringLiteral("a"), 0}, {QStringLiteral("b"), 0}});
    QCOMPARE(first->text(), QStringLiteral("a"));
    QVERIFY(second->isHidden());
    QCOMPARE(second->text(), QStringLiteral("3 selected"));
    QCOMPARE(b.separators().size(), 3);

    b.bar.setFooterInfos({});
    QVERIFY(first->isHidden());
    QCOMPARE(b.separators().size(), 3);
}

void TestPagingBar::rightmostStyleIsDecidedAtCreation()
{
    const QString rightmost = getStyleSheet("component.paging_bar_rightmost_label", false);
    const QString plain = getStyleSheet("component.paging_bar_label", false);
    QVERIFY(rightmost != plain);
    {
        Bar b;
        b.bar.setRefreshButtonHidden(true);
        b.bar.setFooterInfos({{QStringLiteral("zero"), 0}, {QStringLiteral("one"), 0}});
        QLabel *zero = nullptr;
        QLabel *one = nullptr;
        for (QLabel *label : b.bar.findChildren<QLabel *>()) {
            if (label->text() == QLatin1String("zero"))
                zero = label;
            if (label->text() == QLatin1String("one"))
                one = label;
        }
        QVERIFY(zero && one);
        QCOMPARE(zero->styleSheet(), rightmost);
        QCOMPARE(one->styleSheet(), plain);
        // Showing the refresh button again does not restyle it either.
        b.bar.setRefreshButtonHidden(false);
        b.bar.setFooterText(QStringLiteral("zero again"));
        QCOMPARE(zero->styleSheet(), rightmost);
    }
    {
        Bar b;
        b.bar.setFooterText(QStringLiteral("zero"));
        b.bar.setRefreshButtonHidden(true);
        b.bar.setFooterText(QStringLiteral("still zero"));
        QLabel *zero = nullptr;
        for (QLabel *label : b.bar.findChildren<QLabel *>()) {
            if (label->text() == QLatin1String("still zero"))
                zero = label;
        }
        QVERIFY(zero);
        QCOMPARE(zero->styleSheet(), plain);
    }
}

void TestPagingBar::footerWidths()
{
    Bar b;
    b.bar.setFooterInfo({QStringLiteral("fixed"), 80});
    QLabel *label = nullptr;
    for (QLabel *candidate : b.bar.findChildren<QLabel *>()) {
        if (candidate->text() == QLatin1String("fixed"))
            label = candidate;
    }
    QVERIFY(label);
    QCOMPARE(label->minimumWidth(), scaled(80));
    QCOMPARE(label->maximumWidth(), scaled(80));
    // Width 0 keeps the earlier fixed width; a negative one counts as 0.
    b.bar.setFooterInfo({QStringLiteral("fixed"), 0});
    QCOMPARE(label->maximumWidth(), scaled(80));
    b.bar.setFooterInfo({QStringLiteral("fixed"), -40});
    QCOMPARE(label->maximumWidth(), scaled(80));
    b.bar.setFooterInfo({QStringLiteral("wider"), 120});
    QCOMPARE(label->maximumWidth(), scaled(120));
    b.bar.setFooterInfos({{QStringLiteral("fixed"), 0}, {QStringLiteral("negative"), -5}});
    for (QLabel *candidate : b.bar.findChildren<QLabel *>()) {
        if (candidate->text() == QLatin1String("negative"))
            QCOMPARE(candidate->maximumWidth(), QWIDGETSIZE_MAX);
    }
}

QTEST_MAIN(TestPagingBar)
#include "tst_pagingbar.moc"

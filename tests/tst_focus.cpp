// The focus-chain walk: order, exclusions, hidden subtrees, non-widget
// children and the numeric focus-level comparison.

#include <lumo/controls.h>

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>

using WidgetList = QList<QWidget *>;

namespace
{
// root (no focus)
//   a: push button, wheel focus
//   [layout]
//   frame (no focus)
//     b: line edit, strong focus
//     c: label, no focus
//   hidden container, click focus
//     d: push button, strong focus (marked visible, parent hidden)
//   [timer]
//   e: check box, click focus
//   f: plain widget, tab focus
struct Tree {
    Tree()
    {
        a = new QPushButton(QStringLiteral("a"), &root);
        a->setFocusPolicy(Qt::WheelFocus);
        new QVBoxLayout(&root);
        frame = new QFrame(&root);
        b = new QLineEdit(frame);
        b->setFocusPolicy(Qt::StrongFocus);
        c = new QLabel(QStringLiteral("c"), frame);
        hidden = new QWidget(&root);
        hidden->setFocusPolicy(Qt::ClickFocus);
        d = new QPushButton(QStringLiteral("d"), hidden);
        d->setFocusPolicy(Qt::StrongFocus);
        new QTimer(&root);
        e = new QCheckBox(QStringLiteral("e"), &root);
        e->setFocusPolicy(Qt::ClickFocus);
        f = new QWidget(&root);
        f->setFocusPolicy(Qt::TabFocus);
        root.show();
        hidden->hide();
        d->setVisible(true);
        // Tab order differs from child order; the walk follows child order.
        QWidget::setTabOrder(f, e);
        QWidget::setTabOrder(e, a);
    }

    QWidget root;
    QWidget *a, *frame, *b, *c, *hidden, *d, *e, *f;
};
}

class TestFocus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkOrderAndPolicy();
    void excludedWidgetKeepsDescendants();
    void nullAndHiddenRoots();
    void focusLevelIsNumeric_data();
    void focusLevelIsNumeric();
    void filterExclusions();
    void filterAccessors();
    void adjustFocusPolicySetsAll();
};

void TestFocus::walkOrderAndPolicy()
{
    Tree t;
    QVERIFY(QTest::qWaitForWindowExposed(&t.root));
    QVERIFY(!t.d->isVisible());
    QCOMPARE(accessibleList(&t.root, WidgetList()), (WidgetList {t.a, t.b, t.e, t.f}));
    // With the default filter every visible widget is listed, focusable or not.
    QCOMPARE(accessibleList(&t.root, AccessibleFilter()), (WidgetList {&t.root, t.a, t.frame, t.b, t.c, t.e, t.f}));
    // A subtree root is listed before its descendants.
    QCOMPARE(accessibleList(t.frame, AccessibleFilter()), (WidgetList {t.frame, t.b, t.c}));
}

void TestFocus::excludedWidgetKeepsDescendants()
{
    Tree t;
    t.frame->setFocusPolicy(Qt::StrongFocus);
    QCOMPARE(accessibleList(&t.root, WidgetList()), (WidgetList {t.a, t.frame, t.b, t.e, t.f}));
    QCOMPARE(accessibleList(&t.root, WidgetList {t.frame, t.e}), (WidgetList {t.a, t.b, t.f}));
    // Excluding the root itself still walks the tree.
    QCOMPARE(accessibleList(t.frame, WidgetList {t.frame}), (WidgetList {t.b}));
    // Widgets outside the tree in the exclusions change nothing.
    QWidget stranger;
    QCOMPARE(accessibleList(&t.root, WidgetList {&stranger, nullptr}), (WidgetList {t.a, t.frame, t.b, t.e, t.f}));
}

void TestFocus::nullAndHiddenRoots()
{
    QCOMPARE(accessibleList(nullptr, WidgetList()), WidgetList());
    QCOMPARE(accessibleList(nullptr, AccessibleFilter()), WidgetList());
    Tree t;
    QCOMPARE(accessibleList(t.hidden, WidgetList()), WidgetList());
    QCOMPARE(accessibleList(t.hidden, AccessibleFilter()), WidgetList());
    t.root.hide();
    QVERIFY(!t.a->isHidden());
    QCOMPARE(accessibleList(&t.root, WidgetList()), WidgetList());
    QCOMPARE(accessibleList(&t.root, AccessibleFilter()), WidgetList());
    QCOMPARE(accessibleList(t.frame, AccessibleFilter()), WidgetList());
}

void TestFocus::focusLevelIsNumeric_data()
{
    QTest::addColumn<Qt::FocusPolicy>("level");
    QTest::addColumn<QStringList>("listed");
    QTest::newRow("no focus") << Qt::NoFocus
                              << QStringList {QStringLiteral("root"), QStringLiteral("a"), QStringLiteral("frame"), QStringLiteral("b"),
                                              QStringLiteral("c"),    QStringLiteral("e"), QStringLiteral("f")};
    // Tab focus (1) also admits click-only widgets (2).
    QTest::newRow("tab") << Qt::TabFocus
                         << QStringList {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("e"), QStringLiteral("f")};
    QTest::newRow("click") << Qt::ClickFocus << QStringList {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("e")};
    QTest::newRow("strong") << Qt::StrongFocus << QStringList {QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("wheel") << Qt::WheelFocus << QStringList {QStringLiteral("a")};
}

void TestFocus::focusLevelIsNumeric()
{
    QFETCH(Qt::FocusPolicy, level);
    QFETCH(QStringList, listed);
    Tree t;
    t.root.setObjectName(QStringLiteral("root"));
    t.frame->setObjectName(QStringLiteral("frame"));
    const QList<std::pair<QWidget *, const char *>> names {{t.a, "a"}, {t.b, "b"}, {t.c, "c"}, {t.e, "e"}, {t.f, "f"}, {t.d, "d"}};
    for (const auto &named : names)
        named.first->setObjectName(QString::fromLatin1(named.second));
    QStringList got;
    for (QWidget *w : accessibleList(&t.root, AccessibleFilter(WidgetList(), level)))
        got << w->objectName();
    QCOMPARE(got, listed);
}

void TestFocus::filterExclusions()
{
    Tree t;
    QCOMPARE(accessibleList(&t.root, AccessibleFilter({t.a, t.frame}, Qt::NoFocus)), (WidgetList {&t.root, t.b, t.c, t.e, t.f}));
    QCOMPARE(accessibleList(&t.root, AccessibleFilter({t.b}, Qt::TabFocus)), (WidgetList {t.a, t.e, t.f}));
}

void TestFocus::filterAccessors()
{
    AccessibleFilter filter;
    QCOMPARE(filter.focusLevel(), Qt::NoFocus);
    QVERIFY(filter.filterWidgets().isEmpty());
    QWidget w;
    filter.setFilterWidgets({&w});
    filter.setFocusLevel(Qt::StrongFocus);
    QCOMPARE(filter.filterWidgets(), WidgetList {&w});
    QCOMPARE(filter.focusLevel(), Qt::StrongFocus);
    const AccessibleFilter copy = filter;
    QCOMPARE(AccessibleFilter(copy).focusLevel(), Qt::StrongFocus);
}

void TestFocus::adjustFocusPolicySetsAll()
{
    Tree t;
    adjustFocusPolicy(Qt::NoFocus, {t.a, t.b, t.e});
    QCOMPARE(t.a->focusPolicy(), Qt::NoFocus);
    QCOMPARE(t.b->focusPolicy(), Qt::NoFocus);
    QCOMPARE(t.e->focusPolicy(), Qt::NoFocus);
    QCOMPARE(t.f->focusPolicy(), Qt::TabFocus);
    QCOMPARE(accessibleList(&t.root, WidgetList()), WidgetList {t.f});
    adjustFocusPolicy(Qt::StrongFocus, {t.c});
    QCOMPARE(t.c->focusPolicy(), Qt::StrongFocus);
    adjustFocusPolicy(Qt::TabFocus, {});
}

QTEST_MAIN(TestFocus)
#include "tst_focus.moc"

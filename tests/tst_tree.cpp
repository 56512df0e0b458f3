// The tree widget, the file-system item's sort order and the renaming delegate.

#include "testsupport.h"

#include <lumo/registries.h>
#include <lumo/views.h>

#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
// Design pixels at this run's scale, truncated like the library's sizes.
int scaled(double designPixels)
{
    return int(testsupport::expectedScale() * designPixels);
}

FileSystemTreeWidgetItem *fileItem(const QString &name, const QString &text)
{
    auto *item = new FileSystemTreeWidgetItem;
    item->itemName = name;
    item->setText(0, text);
    return item;
}

// Records the state each row was painted with.
class StateProbe : public ItemDelegate
{
public:
    mutable QMap<QString, QStyle::State> states;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        states[index.data().toString()] = option.state;
        ItemDelegate::paint(painter, option, index);
    }
};

QLineEdit *startRenaming(LumoTreeWidget &tree, QTreeWidgetItem *item)
{
    tree.editItem(item, 0);
    auto *editor = tree.viewport()->findChild<QLineEdit *>();
    return editor && editor->isVisible() ? editor : nullptr;
}
}

class TestTree : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void metaObjects();
    void homeOrdering_data();
    void homeOrdering();
    void failedCastFallsBackToText();
    void validator_data();
    void validator();
    void rowHeight();
    void escapeWhileRenaming();
    void focusInMakesTopmostItemCurrent();
    void focusInReannouncesCurrentItem();
    void checkRectAfterPainting();
    void uncheckableRowsDrawDisabled();
    void bandForSelectedRow();
    void rightClickAndKeySignals();
    void updateScrollArea();

private:
    QTemporaryDir userData;
};

void TestTree::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
    QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
}

void TestTree::metaObjects()
{
    auto methods = [](const QMetaObject &meta) {
        QStringList list;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            list << QString::fromLatin1(meta.method(i).methodSignature());
        return list;
    };
    QCOMPARE(methods(LumoTreeWidget::staticMetaObject),
             QStringList({QStringLiteral("sigMouseRightClickEvent(QMouseEvent*)"), QStringLiteral("sigKeyPressEvent(QKeyEvent*)")}));
    QCOMPARE(methods(ItemDelegate::staticMetaObject), QStringList({QStringLiteral("sigKeyPressed(QKeyEvent*)")}));
    FileSystemTreeWidgetItem item;
    QCOMPARE(item.type(), 0);
    QVERIFY(item.itemName.isEmpty());
    QCOMPARE(item.itemId, qint64(0));
}

void TestTree::homeOrdering_data()
{
    QTest::addColumn<QString>("leftName");
    QTest::addColumn<QString>("leftText");
    QTest::addColumn<QString>("rightName");
    QTest::addColumn<QString>("rightText");
    QTest::addColumn<bool>("less");

    QTest::newRow("by text") << "a"
                             << "Alpha"
                             << "b"
                             << "Beta" << true;
    QTest::newRow("by text, reversed") << "b"
                                       << "Beta"
                                       << "a"
                                       << "Alpha" << false;
    QTest::newRow("nothing is less than home") << "a"
                                               << "Alpha"
                                               << "home"
                                               << "Zulu" << false;
    QTest::newRow("not even with a smaller text") << "x"
                                                  << ""
                                                  << "home"
                                                  << "home" << false;
    QTest::newRow("home on the left compares by text") << "home"
                                                       << "Alpha"
                                                       << "b"
                                                       << "Beta" << true;
    QTest::newRow("home on the left, larger text") << "home"
                                                   << "Zulu"
                                                   << "b"
                                                   << "Beta" << false;
    QTest::newRow("home against home") << "home"
                                       << "Alpha"
                                       << "home"
                                       << "Beta" << false;
    QTest::newRow("case-sensitive name") << "a"
                                         << "Alpha"
                                         << "Home"
                                         << "Beta" << true;
    QTest::newRow("text alone does not count") << "a"
                                               << "Alpha"
                                               << "docs"
                                               << "home" << true;
}

void TestTree::homeOrdering()
{
    QFETCH(QString, leftName);
    QFETCH(QString, leftText);
    QFETCH(QString, rightName);
    QFETCH(QString, rightText);
    std::unique_ptr<FileSystemTreeWidgetItem> left(fileItem(leftName, leftText));
    std::unique_ptr<FileSystemTreeWidgetItem> right(fileItem(rightName, rightText));
    QTEST(*left < *right, "less");
}

void TestTree::failedCastFallsBackToText()
{
    // A plain item on the right cannot be a home item: the text decides, and nothing throws.
    std::unique_ptr<FileSystemTreeWidgetItem> left(fileItem(QStringLiteral("a"), QStringLiteral("Alpha")));
    QTreeWidgetItem plain(QStringList {QStringLiteral("home")});
    QVERIFY(*left < plain);
    QTreeWidgetItem smaller(QStringList {QStringLiteral("Aa")});
    QVERIFY(!(*left < smaller));
}

void TestTree::validator_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");

    for (QChar forbidden : QStringLiteral("\\/:*?\"<>|"))
        QTest::addRow("inner %c", forbidden.toLatin1())
            << QStringLiteral("ab") + forbidden + QStringLiteral("cd") << QStringLiteral("abcd");
    for (QChar forbidden : QStringLiteral(".\\/:*?\"<>|"))
        QTest::addRow("leading %c", forbidden.toLatin1()) << forbidden + QStringLiteral("name") << QStringLiteral("name");
    QTest::newRow("inner dot") << "report.final.txt"
                               << "report.final.txt";
    QTest::newRow("leading blank") << " notes"
                                   << " notes";
    QTest::newRow("every forbidden character") << "x\\/:*?\"<>|y"
                                               << "xy";
}

void TestTree::validator()
{
    QFETCH(QString, typed);
    LumoTreeWidget tree;
    ItemDelegate delegate;
    tree.setItemDelegate(&delegate);
    auto *item = new QTreeWidgetItem(QStringList {QStringLiteral("old name")});
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    tree.addTopLevelItem(item);
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));

    QLineEdit *editor = startRenaming(tree, item);
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("old name"));
    QCOMPARE(editor->styleSheet(), getStyleSheet("component.tree_item", false));
    QVERIFY(!editor->testAttribute(Qt::WA_MacShowFocusRect));
    QVERIFY(editor->validator());
    editor->clear();
    QTest::keyClicks(editor, typed);
    QTEST(editor->text(), "shown");
    // An empty name may be typed (and is then not accepted as a rename).
    int position = 0;
    QString empty;
    QCOMPARE(editor->validator()->validate(empty, position), QValidator::Intermediate);
    QTest::keyClick(editor, Qt::Key_Return);
    QFETCH(QString, shown);
    QTRY_COMPARE(item->text(0), shown);
}

void TestTree::rowHeight()
{
    ItemDelegate delegate;
    QTreeWidget tree;
    tree.setItemDelegate(&delegate);
    auto *item = new QTreeWidgetItem(QStringList {QStringLiteral("A rather long folder name")});
    tree.addTopLevelItem(item);
    QStyleOptionViewItem option;
    option.initFrom(&tree);
    const QModelIndex index = tree.model()->index(0, 0);
    const QSize hint = delegate.sizeHint(option, index);
    QCOMPARE(hint.height(), scaled(28));
    QCOMPARE(hint.width(), static_cast<QItemDelegate &>(delegate).QItemDelegate::sizeHint(option, index).width());
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QCOMPARE(tree.visualItemRect(item).height(), scaled(28));
}

void TestTree::escapeWhileRenaming()
{
    LumoTreeWidget tree;
    ItemDelegate delegate;
    tree.setItemDelegate(&delegate);
    auto *item = new QTreeWidgetItem(QStringList {QStringLiteral("keep me")});
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    tree.addTopLevelItem(item);
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QSignalSpy spy(&delegate, SIGNAL(sigKeyPressed(QKeyEvent *)));
    QPointer<QLineEdit> editor = startRenaming(tree, item);
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("changed"));
    QTest::keyClick(editor, Qt::Key_A);
    QCOMPARE(spy.count(), 0);
    QTest::keyClick(editor, Qt::Key_Escape);
    QCOMPARE(spy.count(), 1);
    // The edit is still cancelled.
    QTRY_VERIFY(!editor || !editor->isVisible());
    QCOMPARE(item->text(0), QStringLiteral("keep me"));
}

void TestTree::focusInMakesTopmostItemCurrent()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *other = new QLineEdit;
    auto *tree = new LumoTreeWidget;
    layout->addWidget(other);
    layout->addWidget(tree);
    for (int i = 0; i < 200; ++i)
        tree->addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("Folder %1").arg(i)}));
    window.resize(scaled(300), scaled(300));
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    QTRY_VERIFY(other->hasFocus());
    tree->scrollToItem(tree->topLevelItem(50), QAbstractItemView::PositionAtTop);
    QVERIFY(!tree->currentItem());
    tree->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(tree->hasFocus());
    QCOMPARE(tree->currentItem(), tree->topLevelItem(50));
}

void TestTree::focusInReannouncesCurrentItem()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *other = new QLineEdit;
    auto *tree = new LumoTreeWidget;
    layout->addWidget(other);
    layout->addWidget(tree);
    for (int i = 0; i < 10; ++i)
        tree->addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("Folder %1").arg(i)}));
    tree->setCurrentItem(tree->topLevelItem(4));
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    QTRY_VERIFY(other->hasFocus());
    QSignalSpy spy(tree, SIGNAL(currentItemChanged(QTreeWidgetItem *, QTreeWidgetItem *)));
    tree->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(tree->hasFocus());
    QCOMPARE(tree->currentItem(), tree->topLevelItem(4));
    // Away to none and straight back.
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).value<QTreeWidgetItem *>(), nullptr);
    QCOMPARE(spy.at(1).at(0).value<QTreeWidgetItem *>(), tree->topLevelItem(4));
}

void TestTree::checkRectAfterPainting()
{
    LumoTreeWidget tree;
    ItemDelegate delegate;
    tree.setItemDelegate(&delegate);
    tree.addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("plain")}));
    auto *checkable = new QTreeWidgetItem(QStringList {QStringLiteral("checkable")});
    checkable->setFlags(checkable->flags() | Qt::ItemIsUserCheckable);
    checkable->setCheckState(0, Qt::Checked);
    tree.addTopLevelItem(checkable);
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));

    g_check_rect = QRect();
    tree.viewport()->grab();
    QVERIFY(!g_check_rect.isNull());
    const QRect row = tree.visualItemRect(checkable);
    QVERIFY2(row.contains(g_check_rect.center()),
             qPrintable(QStringLiteral("%1,%2 %3x%4")
                            .arg(g_check_rect.x())
                            .arg(g_check_rect.y())
                            .arg(g_check_rect.width())
                            .arg(g_check_rect.height())));
    QVERIFY(g_check_rect.width() > 0 && g_check_rect.width() < row.width() / 2);
}

void TestTree::uncheckableRowsDrawDisabled()
{
    LumoTreeWidget tree;
    StateProbe probe;
    tree.setItemDelegate(&probe);
    auto *plain = new QTreeWidgetItem(QStringList {QStringLiteral("plain")});
    plain->setFlags(plain->flags() & ~Qt::ItemIsUserCheckable);
    tree.addTopLevelItem(plain);
    auto *checkable = new QTreeWidgetItem(QStringList {QStringLiteral("checkable")});
    checkable->setFlags(checkable->flags() | Qt::ItemIsUserCheckable);
    tree.addTopLevelItem(checkable);
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    tree.viewport()->grab();
    QVERIFY(probe.states.contains(QStringLiteral("plain")));
    QVERIFY(!(probe.states.value(QStringLiteral("plain")) & QStyle::State_Enabled));
    QVERIFY(probe.states.value(QStringLiteral("checkable")) & QStyle::State_Enabled);
    // The item itself stays enabled: only its look changes.
    QVERIFY(tree.topLevelItem(0)->flags() & Qt::ItemIsEnabled);
}

void TestTree::bandForSelectedRow()
{
    LumoTreeWidget tree;
    ItemDelegate delegate;
    tree.setItemDelegate(&delegate);
    // Keep the style's own selection fill out of the way of the band.
    tree.setStyleSheet(QStringLiteral("QTreeView { background: white; selection-background-color: transparent; }"
                                      "QTreeView::item:selected { background: transparent; }"));
    for (int i = 0; i < 3; ++i) {
        auto *item = new QTreeWidgetItem(QStringList {QString()});
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        tree.addTopLevelItem(item);
    }
    tree.setBackgroundColor(QColor(200, 30, 30), QColor(30, 200, 30));
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QCursor::setPos(tree.mapToGlobal(QPoint(tree.width() + 50, tree.height() + 50)));
    tree.setCurrentItem(tree.topLevelItem(1));

    const QImage image = tree.viewport()->grab().toImage();
    const qreal dpr = image.devicePixelRatio();
    const QRect selected = tree.visualItemRect(tree.topLevelItem(1));
    const QRect plain = tree.visualItemRect(tree.topLevelItem(0));
    auto pixel = [&](int x, int y) { return QColor(image.pixel(int(x * dpr), int(y * dpr))); };
    const int inside = selected.left() + selected.width() / 2;
    const QColor band = pixel(inside, selected.center().y());
    QVERIFY2(band.red() > 150 && band.green() < 60 && band.blue() < 60, qPrintable(band.name()));
    QCOMPARE(pixel(inside, plain.center().y()), QColor(Qt::white));
    // The band stops 3 scaled pixels short of the row's right edge.
    const int bandWidth = int(selected.width() - 3 * testsupport::expectedScale());
    const QColor beyond = pixel(selected.left() + bandWidth + 1, selected.center().y());
    QVERIFY2(beyond.red() - beyond.green() < 30, qPrintable(beyond.name()));
    const QColor end = pixel(selected.left() + bandWidth - 3, selected.center().y());
    QVERIFY2(end.red() > 150 && end.green() < 60, qPrintable(end.name()));
}

void TestTree::rightClickAndKeySignals()
{
    LumoTreeWidget tree;
    tree.addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("a")}));
    tree.addTopLevelItem(new QTreeWidgetItem(QStringList {QStringLiteral("b")}));
    tree.resize(scaled(300), scaled(200));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QSignalSpy right(&tree, SIGNAL(sigMouseRightClickEvent(QMouseEvent *)));
    QSignalSpy key(&tree, SIGNAL(sigKeyPressEvent(QKeyEvent *)));
    const QPoint second = tree.visualItemRect(tree.topLevelItem(1)).center();
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, second);
    QCOMPARE(right.count(), 0);
    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, tree.visualItemRect(tree.topLevelItem(0)).center());
    QCOMPARE(right.count(), 1);
    // The base handling still ran: the right-clicked row is current.
    QCOMPARE(tree.currentItem(), tree.topLevelItem(0));
    QTest::keyClick(&tree, Qt::Key_Down);
    QCOMPARE(key.count(), 1);
    QCOMPARE(tree.currentItem(), tree.topLevelItem(1));
}

void TestTree::updateScrollArea()
{
    LumoTreeWidget tree;
    tree.setColumnCount(1);
    tree.header()->setStretchLastSection(false);
    tree.header()->resizeSection(0, scaled(3000));
    tree.setIndentation(scaled(400));
    tree.setRootIsDecorated(false);
    QTreeWidgetItem *parent = new QTreeWidgetItem(QStringList {QStringLiteral("root")});
    tree.addTopLevelItem(parent);
    QTreeWidgetItem *deep = parent;
    for (int level = 0; level < 4; ++level) {
        auto *child = new QTreeWidgetItem(QStringList {QStringLiteral("level %1").arg(level)});
        deep->addChild(child);
        deep = child;
    }
    tree.expandAll();
    tree.resize(scaled(500), scaled(300));
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QScrollBar *bar = tree.horizontalScrollBar();
    QVERIFY(bar->maximum() > 0);

    // The deepest item starts beyond the viewport: its left edge comes to the middle.
    const int w = tree.viewport()->width();
    const int x = tree.visualItemRect(deep).left();
    QVERIFY(x + scaled(100) > w);
    tree.updateScrollArea(deep);
    QCOMPARE(bar->value(), qBound(0, 0 - w / 2 + x, bar->maximum()));
    // The root is now left of the viewport: it comes back.
    const int value = bar->value();
    const int rootX = tree.visualItemRect(parent).left();
    QVERIFY(rootX < 0);
    tree.updateScrollArea(parent);
    QCOMPARE(bar->value(), qBound(0, value - w / 2 + rootX, bar->maximum()));
    // Visible enough: nothing moves.
    bar->setValue(0);
    tree.updateScrollArea(parent);
    QCOMPARE(bar->value(), 0);
    tree.updateScrollArea(nullptr);
    QCOMPARE(bar->value(), 0);
}

QTEST_MAIN(TestTree)
#include "tst_tree.moc"

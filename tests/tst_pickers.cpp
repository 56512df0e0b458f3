// Combo boxes, the breadcrumb path bar, the filter bar, the footbar and the shaded scroll area.

#include "testsupport.h"

#include <lumo/controls.h>
#include <lumo/registries.h>

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

namespace
{
// A design length on this screen, truncated as the widgets size themselves.
int px(double value)
{
    return int(DPIinfo::getInstance()->getDPI() * value);
}

QString sheet(const char *key)
{
    return getStyleSheet(QString::fromLatin1(key), false);
}

// Every half hour of the day, as an owner would fill the box.
QStringList halfHours()
{
    QStringList times;
    for (int h = 0; h < 24; ++h) {
        times << QStringLiteral("%1:00").arg(h, 2, 10, QLatin1Char('0'));
        times << QStringLiteral("%1:30").arg(h, 2, 10, QLatin1Char('0'));
    }
    return times;
}

// A window with a time box and a second field to move the focus to.
struct TimeBoxWindow {
    QWidget window;
    LumoTimeComboBox *box = new LumoTimeComboBox;
    QLineEdit *other = new QLineEdit;

    explicit TimeBoxWindow(bool editable = true)
    {
        auto *layout = new QHBoxLayout(&window);
        layout->addWidget(box);
        layout->addWidget(other);
        box->setEditable(editable);
        box->addItems(halfHours());
    }
    bool show()
    {
        window.show();
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window);
    }
    void type(const QString &text)
    {
        box->setFocus();
        box->lineEdit()->selectAll();
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClicks(box, text);
    }
    bool customHidden() const { return static_cast<QListView *>(box->view())->isRowHidden(0); }
    bool customEnabled() const { return static_cast<QStandardItemModel *>(box->model())->item(0)->flags().testFlag(Qt::ItemIsEnabled); }
};

// A path bar in a window, wide enough unless told otherwise.
struct PathWindow {
    QWidget window;
    LumoButtonPath *bar = new LumoButtonPath(&window);

    explicit PathWindow(int width = 2000)
    {
        bar->setFixedWidth(width);
        window.resize(width + 20, px(40));
        window.show();
    }
    QPushButton *button(int column) const { return qobject_cast<QPushButton *>(bar->cellWidget(0, column)); }
    QToolButton *folder() const { return bar->findChild<QToolButton *>(); }
    QStringList menuTexts() const
    {
        QStringList texts;
        for (QAction *action : folder()->menu()->actions())
            texts << action->text();
        return texts;
    }
};

// Records the keys that reach it, i.e. the ones its children did not consume.
class KeySink : public QWidget
{
public:
    QList<int> keys;

protected:
    void keyPressEvent(QKeyEvent *event) override { keys << event->key(); }
};

QString gradientStop(const QString &sheet)
{
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("stop:([0-9.]+) #FFFFFF")).match(sheet);
    return m.hasMatch() ? m.captured(1) : QString();
}
}

class TestPickers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void metaTypesBuildByName_data();
    void metaTypesBuildByName();

    void comboStyleAndDelegate();
    void comboPopupOpensBelow();

    void typedTimeIsNormalised_data();
    void typedTimeIsNormalised();
    void validatorRefuses_data();
    void validatorRefuses();
    void focusInStripsSuffix();
    void customRowAndMaxVisible();
    void editableToggle();
    void setTextAndDefault_data();
    void setTextAndDefault();
    void correctTimeEmits();

    void pathStructure_data();
    void pathStructure();
    void pathSizes();
    void ampersands();
    void clicksEmitPaths();
    void overflowMenu_data();
    void overflowMenu();
    void hostilePaths();

    void filterBarLayout();
    void filterBarDownKey();
    void filterBarReturn();

    void footbarLayout();
    void footbarEdgeCases();

    void shadeStop();
    void shadeFollowsScrolling();
    void fittingContentNeverShades();

private:
    QTemporaryDir userData;
};

void TestPickers::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
    QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
}

void TestPickers::metaTypesBuildByName_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"LumoComboBox", "LumoTimeComboBox", "LumoButtonPath", "LumoFilterBar", "LumoVerticalScrollArea"})
        QTest::newRow(name) << QByteArray(name);
}

void TestPickers::metaTypesBuildByName()
{
    QFETCH(QByteArray, name);
    const QMetaType type = QMetaType::fromName(name);
    QVERIFY(type.isValid());
    void *object = type.create();
    QVERIFY(object);
    auto *widget = static_cast<QWidget *>(object);
    QCOMPARE(QByteArray(widget->metaObject()->className()), name);
    QVERIFY(!widget->parent());
    type.destroy(object);
}

void TestPickers::comboStyleAndDelegate()
{
    LumoComboBox box;
    const QString expected = sheet("component.combobox").arg(QString()).arg(QStringLiteral("border: none;")) + sheet("component.scrollbar");
    QCOMPARE(box.styleSheet(), expected);
    QVERIFY(!box.styleSheet().contains(QLatin1String("%1")));
    QVERIFY(!box.styleSheet().contains(QLatin1String("#C8D2DC")));
    auto *delegate = qobject_cast<QStyledItemDelegate *>(box.view()->itemDelegate());
    QVERIFY(delegate);
    QVERIFY(!delegate->parent());
}

void TestPickers::comboPopupOpensBelow()
{
    QWidget window;
    auto *box = new LumoComboBox(&window);
    box->addItems({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")});
    box->move(px(30), px(40));
    box->setFixedWidth(px(160));
    window.resize(px(300), px(200));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    box->setFocus();
    box->showPopup();
    auto *container = box->findChild<QFrame *>();
    QVERIFY(container);
    QTRY_VERIFY(container->isVisible());
    const QPoint origin = box->mapToGlobal(QPoint(0, 0));
    QCOMPARE(container->pos(), QPoint(origin.x(), origin.y() + box->height() + 2));
    QVERIFY(!box->hasFocus());
    box->hidePopup();
}

void TestPickers::typedTimeIsNormalised_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("pressReturn");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("custom");

    QTest::newRow("7 -> 07:00") << QStringLiteral("7") << false << QStringLiteral("07:00") << false;
    QTest::newRow("7: -> 07:00") << QStringLiteral("7:") << false << QStringLiteral("07:00") << false;
    QTest::newRow("7:5 -> 07:05 custom") << QStringLiteral("7:5") << false << QStringLiteral("07:05") << true;
    QTest::newRow("9:7 -> 09:07 custom") << QStringLiteral("9:7") << true << QStringLiteral("09:07") << true;
    QTest::newRow("12:30 stays") << QStringLiteral("12:30") << false << QStringLiteral("12:30") << false;
    QTest::newRow("1 -> 01:00") << QStringLiteral("1") << false << QStringLiteral("01:00") << false;
    QTest::newRow("9 + Return -> 09:00") << QStringLiteral("9") << true << QStringLiteral("09:00") << false;
    QTest::newRow("23:59 custom") << QStringLiteral("23:59") << true << QStringLiteral("23:59") << true;
    QTest::newRow("empty -> default") << QString() << false << QStringLiteral("08:30") << false;
}

void TestPickers::typedTimeIsNormalised()
{
    QFETCH(QString, typed);
    QFETCH(bool, pressReturn);
    QFETCH(QString, text);
    QFETCH(bool, custom);

    TimeBoxWindow w;
    w.box->setDefault("08:30");
    QVERIFY(w.show());
    const int rows = w.box->count();
    w.type(typed);
    QCOMPARE(w.box->lineEdit()->text(), typed);
    if (pressReturn)
        QTest::keyClick(w.box, Qt::Key_Return);
    else
        w.other->setFocus();
    QTRY_VERIFY(!w.box->hasFocus());

    QCOMPARE(w.box->currentText(), text);
    QCOMPARE(w.box->lineEdit()->text(), text);
    QCOMPARE(w.box->count(), rows); // nothing typed ever becomes a new row
    if (custom) {
        QCOMPARE(w.box->currentIndex(), 0);
        QVERIFY(!w.customHidden());
        QVERIFY(w.customEnabled());
    } else {
        QCOMPARE(w.box->currentIndex(), halfHours().indexOf(text) + 1);
        QVERIFY(w.customHidden());
        QVERIFY(!w.customEnabled());
    }
}

void TestPickers::validatorRefuses_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::newRow("24") << QStringLiteral("24") << QStringLiteral("2");
    QTest::newRow("7:60") << QStringLiteral("7:60") << QStringLiteral("7:6");
    QTest::newRow("letters") << QStringLiteral("ab") << QString();
    QTest::newRow("letter between digits") << QStringLiteral("1x2") << QStringLiteral("12");
    QTest::newRow("second colon") << QStringLiteral("12::30") << QStringLiteral("12:30");
    QTest::newRow("minute tens 6") << QStringLiteral("7:6") << QStringLiteral("7:6");
    QTest::newRow("three minute digits") << QStringLiteral("7:456") << QStringLiteral("7:45");
    QTest::newRow("three hour digits") << QStringLiteral("123") << QStringLiteral("12");
    QTest::newRow("blank") << QStringLiteral(" 9") << QStringLiteral("9");
    QTest::newRow("hour 30") << QStringLiteral("30") << QStringLiteral("3");
}

void TestPickers::validatorRefuses()
{
    QFETCH(QString, typed);
    QFETCH(QString, kept);
    TimeBoxWindow w;
    QVERIFY(w.show());
    w.type(typed);
    QCOMPARE(w.box->lineEdit()->text(), kept);
    w.other->setFocus();
    QTRY_VERIFY(!w.box->hasFocus());
    // Whatever was typed, the box ends on a valid time of its rows or the custom
    // row; nothing left (and no default set) is the default row 0, the custom row.
    const QRegularExpression time(QStringLiteral("^([01]\\d|2[0-3]):[0-5]\\d$"));
    if (kept.isEmpty()) {
        QCOMPARE(w.box->currentIndex(), 0);
        QCOMPARE(w.box->currentText(), QString());
    } else {
        QVERIFY2(time.match(w.box->currentText()).hasMatch(), qPrintable(w.box->currentText()));
        QCOMPARE(w.box->currentText() == w.box->itemText(0), w.box->currentIndex() == 0);
    }
    QCOMPARE(w.box->count(), halfHours().size() + 1);
}

void TestPickers::focusInStripsSuffix()
{
    TimeBoxWindow w;
    w.box->setCustomText(QStringLiteral("(custom)"));
    QVERIFY(w.show());
    w.type(QStringLiteral("9:7"));
    w.other->setFocus();
    QTRY_COMPARE(w.box->currentText(), QStringLiteral("09:07 (custom)"));
    QCOMPARE(w.box->itemText(0), QStringLiteral("09:07 (custom)"));
    w.box->setFocus();
    QTRY_VERIFY(w.box->hasFocus());
    QCOMPARE(w.box->itemText(0), QStringLiteral("09:07"));
    QCOMPARE(w.box->lineEdit()->text(), QStringLiteral("09:07"));
    QTest::keyClick(w.box, Qt::Key_Backspace);
    QTest::keyClicks(w.box, QStringLiteral("5"));
    QTest::keyClick(w.box, Qt::Key_Enter);
    QTRY_VERIFY(!w.box->hasFocus());
    QCOMPARE(w.box->currentText(), QStringLiteral("09:05 (custom)"));
    QCOMPARE(w.box->currentIndex(), 0);
}

void TestPickers::customRowAndMaxVisible()
{
    TimeBoxWindow w;
    QCOMPARE(static_cast<QComboBox *>(w.box)->maxVisibleItems(), 11); // Qt's default 10, plus the hidden row
    w.box->setMaxVisibleItems(10);
    QCOMPARE(static_cast<QComboBox *>(w.box)->maxVisibleItems(), 11);
    QVERIFY(w.customHidden());
    QVERIFY(!w.customEnabled());

    w.box->setItemVisible(true);
    QVERIFY(!w.customHidden());
    QVERIFY(w.customEnabled());
    QCOMPARE(static_cast<QComboBox *>(w.box)->maxVisibleItems(), 10);
    w.box->setMaxVisibleItems(4);
    QCOMPARE(static_cast<QComboBox *>(w.box)->maxVisibleItems(), 4);

    w.box->setItemVisible(false);
    QVERIFY(w.customHidden());
    QVERIFY(!w.customEnabled());
    QCOMPARE(static_cast<QComboBox *>(w.box)->maxVisibleItems(), 5);

    // A plain box has no custom row: its first row is the owner's and stays visible.
    TimeBoxWindow plain(false);
    plain.box->setMaxVisibleItems(10);
    plain.box->setItemVisible(false);
    QVERIFY(!plain.customHidden());
    QCOMPARE(static_cast<QComboBox *>(plain.box)->maxVisibleItems(), 10);
}

void TestPickers::editableToggle()
{
    LumoTimeComboBox box;
    box.addItems({QStringLiteral("08:00"), QStringLiteral("09:00")});
    box.setEditable(true);
    QCOMPARE(box.count(), 3);
    QCOMPARE(box.itemText(0), QString());
    QVERIFY(box.lineEdit()->validator());
    QCOMPARE(box.lineEdit()->focusPolicy(), Qt::StrongFocus);
    box.setEditable(true); // no change, no second row
    QCOMPARE(box.count(), 3);
    box.setEditable(false);
    QCOMPARE(box.count(), 2);
    QCOMPARE(box.itemText(0), QStringLiteral("08:00"));
    box.setEditable(false);
    QCOMPARE(box.count(), 2);
}

void TestPickers::setTextAndDefault_data()
{
    QTest::addColumn<bool>("editable");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("row"); // row in halfHours(), -1 for the custom row, -2 for row 0
    QTest::addColumn<QString>("customLabel");

    QTest::newRow("plain, known") << false << QByteArray("10:30") << QString() << 21 << QString();
    QTest::newRow("plain, unknown selects row 0") << false << QByteArray("10:31") << QString() << -2 << QString();
    QTest::newRow("editable, known") << true << QByteArray("10:30") << QString() << 21 << QString();
    QTest::newRow("editable, unknown") << true << QByteArray("10:31") << QString() << -1 << QStringLiteral("10:31");
    QTest::newRow("editable, unknown, suffix") << true << QByteArray("10:31") << QStringLiteral("ab") << -1 << QStringLiteral("10:31 ab");
    QTest::newRow("editable, UTF-8") << true << QByteArray("10:31 \xe5\x8d\x88") << QString() << -1 << QStringLiteral("10:31 \u5348");
    QTest::newRow("case sensitive") << true << QByteArray("10:30 ") << QString() << -1 << QStringLiteral("10:30 ");
}

void TestPickers::setTextAndDefault()
{
    QFETCH(bool, editable);
    QFETCH(QByteArray, text);
    QFETCH(QString, suffix);
    QFETCH(int, row);
    QFETCH(QString, customLabel);

    const int offset = editable ? 1 : 0;
    const int expected = row >= 0 ? row + offset : row == -1 ? 0 : 0;

    TimeBoxWindow current(editable);
    current.box->setCustomText(suffix);
    current.box->setCurrentIndex(5);
    current.box->setCurrentText(text.toStdString());
    QCOMPARE(current.box->currentIndex(), expected);
    if (editable) {
        QCOMPARE(current.customHidden(), row != -1);
        QCOMPARE(static_cast<QComboBox *>(current.box)->maxVisibleItems(), row != -1 ? 11 : 10);
        if (row == -1)
            QCOMPARE(current.box->currentText(), customLabel);
    }

    // The default is only remembered: the current row stays, and empty input returns to it.
    TimeBoxWindow byDefault(editable);
    byDefault.box->setCustomText(suffix);
    byDefault.box->setCurrentIndex(5);
    byDefault.box->setDefault(text.toStdString());
    QCOMPARE(byDefault.box->currentIndex(), 5);
    if (editable) {
        QCOMPARE(byDefault.customHidden(), row != -1);
        if (row == -1)
            QCOMPARE(byDefault.box->itemText(0), customLabel);
        QVERIFY(byDefault.show());
        byDefault.type(QString());
        byDefault.other->setFocus();
        QTRY_VERIFY(!byDefault.box->hasFocus());
        QCOMPARE(byDefault.box->currentIndex(), expected);
    }
}

void TestPickers::correctTimeEmits()
{
    TimeBoxWindow w;
    QSignalSpy spy(w.box, SIGNAL(currentIndexChanged(int)));
    w.box->setCurrentIndex(3);
    spy.clear();

    // A new time on the custom row: the row change and the explicit emission.
    w.box->lineEdit()->setText(QStringLiteral("7:5"));
    w.box->correctTime();
    QCOMPARE(w.box->currentText(), QStringLiteral("07:05"));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toInt(), 0);
    QCOMPARE(spy.at(1).at(0).toInt(), 0);

    // Already on the custom row: only the explicit emission tells of the new time.
    spy.clear();
    w.box->setItemText(0, QStringLiteral("7:6"));
    w.box->correctTime();
    QCOMPARE(w.box->currentText(), QStringLiteral("07:06"));
    QCOMPARE(spy.count(), 1);

    // A listed time: one ordinary change.
    spy.clear();
    w.box->setItemText(0, QStringLiteral("7"));
    w.box->correctTime();
    QCOMPARE(w.box->currentText(), QStringLiteral("07:00"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), halfHours().indexOf(QStringLiteral("07:00")) + 1);

    // A plain box falls back to row 0 for a time it does not list.
    LumoTimeComboBox plain;
    plain.addItems({QStringLiteral("08:00"), QStringLiteral("09:00"), QStringLiteral("9:5")});
    plain.setCurrentIndex(2);
    plain.correctTime();
    QCOMPARE(plain.currentIndex(), 0);
    QCOMPARE(plain.count(), 3);
}

void TestPickers::pathStructure_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("root") << QStringLiteral("/") << QStringList();
    QTest::newRow("only slashes") << QStringLiteral("////") << QStringList();
    QTest::newRow("a//b/") << QStringLiteral("a//b/") << QStringList {QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("absolute") << QStringLiteral("/usr/local/share")
                              << QStringList {QStringLiteral("usr"), QStringLiteral("local"), QStringLiteral("share")};
    QTest::newRow("blanks kept") << QStringLiteral(" / a ") << QStringList {QStringLiteral(" "), QStringLiteral(" a ")};
}

void TestPickers::pathStructure()
{
    QFETCH(QString, path);
    QFETCH(QStringList, texts);
    PathWindow w;
    w.bar->refresh(QStringLiteral("old/path/first"));
    w.bar->refresh(path);
    QCOMPARE(w.bar->rowCount(), 1);
    QCOMPARE(w.bar->columnCount(), texts.isEmpty() ? 0 : int(texts.size()) * 2 - 1);
    for (int i = 0; i < texts.size(); ++i) {
        QCOMPARE(w.button(2 * i)->text(), texts[i]);
        if (i > 0)
            QVERIFY(w.button(2 * i - 1)->text().isEmpty());
    }
    QVERIFY(w.folder()->isHidden());
    QVERIFY(w.folder()->menu()->actions().isEmpty());
    // The previous row's buttons are gone.
    QCOMPARE(w.bar->viewport()->findChildren<QPushButton *>().size(), w.bar->columnCount());
}

void TestPickers::pathSizes()
{
    PathWindow w;
    w.bar->refresh(QStringLiteral("Documents/Reports/2024"));
    QCOMPARE(w.bar->height(), px(28));
    QFontMetrics metrics(QPushButton().font());
    const double scale = DPIinfo::getInstance()->getDPI();
    for (int column : {0, 2, 4}) {
        const QString text = w.button(column)->text();
        QCOMPARE(w.button(column)->width(), int(scale * (metrics.boundingRect(text).width() + 16)));
        QCOMPARE(w.button(column)->height(), px(26));
        QCOMPARE(w.bar->columnWidth(column), w.button(column)->width());
    }
    for (int column : {1, 3}) {
        QCOMPARE(w.button(column)->size(), QSize(px(6), px(28)));
        QCOMPARE(w.bar->columnWidth(column), px(6));
    }
    QCOMPARE(w.folder()->size(), QSize(px(26), px(26)));
    QCOMPARE(w.folder()->pos(), QPoint(px(1), px(1)));
    QCOMPARE(w.folder()->iconSize(), QSize(20, 20));
}

void TestPickers::ampersands()
{
    PathWindow w;
    w.bar->refresh(QStringLiteral("x/R&D/&&/a&"));
    QCOMPARE(w.button(2)->text(), QStringLiteral("R&&D"));
    QCOMPARE(w.button(4)->text(), QStringLiteral("&&&&"));
    QCOMPARE(w.button(6)->text(), QStringLiteral("a&&"));
    QFontMetrics metrics(QPushButton().font());
    QCOMPARE(w.button(2)->width(), int(DPIinfo::getInstance()->getDPI() * (metrics.boundingRect(QStringLiteral("R&D")).width() + 16)));
    QCOMPARE(w.bar->getPath(2), QStringLiteral("x/R&D"));
    QCOMPARE(w.bar->getPath(4), QStringLiteral("x/R&D/&&"));
    QCOMPARE(w.bar->getPath(6), QStringLiteral("x/R&D/&&/a&"));
    QCOMPARE(w.bar->getPath(-1), QString());
    QCOMPARE(w.bar->getPath(99), QStringLiteral("x/R&D/&&/a&")); // clamped to the last button
}

void TestPickers::clicksEmitPaths()
{
    PathWindow w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));
    QSignalSpy spy(w.bar, SIGNAL(sigUpdatePath(QString)));

    w.bar->refresh(QStringLiteral("/a/b"));
    QApplication::processEvents();
    QTest::mouseClick(w.button(2), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.takeFirst().at(0).toString(), QStringLiteral("a/b")); // the leading slash is not kept

    w.bar->slotUpdatePath(QStringLiteral("x/y/z"));
    QApplication::processEvents();
    QTest::mouseClick(w.button(4), Qt::LeftButton);
    QTest::mouseClick(w.button(0), Qt::LeftButton);
    QTest::mouseClick(w.button(1), Qt::LeftButton); // an arrow is no segment
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("x/y/z"));
    QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("x"));
    QCOMPARE(w.bar->columnCount(), 5); // clicking never navigates

    const QMetaObject *meta = w.bar->metaObject();
    QCOMPARE(meta->method(meta->methodOffset()).methodSignature(), QByteArray("sigUpdatePath(QString)"));
    QCOMPARE(meta->method(meta->methodOffset() + 1).methodSignature(), QByteArray("slotUpdatePath(QString)"));
    QCOMPARE(meta->method(meta->methodOffset() + 2).methodSignature(), QByteArray("slotPathBarClicked(int)"));
}

void TestPickers::overflowMenu_data()
{
    QTest::addColumn<QString>("excess"); // how much wider than the view the row is
    QTest::newRow("fits exactly") << QStringLiteral("0");
    QTest::newRow("1 px") << QStringLiteral("1");
    QTest::newRow("first segment - 1") << QStringLiteral("first-1");
    QTest::newRow("first segment") << QStringLiteral("first");
    QTest::newRow("first segment + arrow") << QStringLiteral("first+arrow");
    QTest::newRow("first segment + arrow + 1") << QStringLiteral("first+arrow+1");
    QTest::newRow("half") << QStringLiteral("half");
    QTest::newRow("all but the last") << QStringLiteral("allButLast");
}

void TestPickers::overflowMenu()
{
    QFETCH(QString, excess);
    const QString path = QStringLiteral("home/Mitarbeiter & Partner/Projects/Q3 Planning/Draft/Final");
    PathWindow wide;
    wide.bar->refresh(path);
    const int columns = wide.bar->columnCount();
    QCOMPARE(columns, 11);
    int total = 0;
    for (int c = 0; c < columns; ++c)
        total += wide.bar->columnWidth(c);
    const int first = wide.bar->columnWidth(0);
    const int arrow = wide.bar->columnWidth(1);
    const QHash<QString, int> excesses {
        {QStringLiteral("0"), 0},
        {QStringLiteral("1"), 1},
        {QStringLiteral("first-1"), first - 1},
        {QStringLiteral("first"), first},
        {QStringLiteral("first+arrow"), first + arrow},
        {QStringLiteral("first+arrow+1"), first + arrow + 1},
        {QStringLiteral("half"), total / 2},
        {QStringLiteral("allButLast"), total - wide.bar->columnWidth(columns - 1)},
    };
    const int over = excesses.value(excess);

    // Size the bar so that its view is exactly total - over pixels wide.
    PathWindow w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));
    const int chrome = w.bar->width() - w.bar->viewport()->width();
    w.bar->setFixedWidth(total - over + chrome);
    QApplication::processEvents();
    QCOMPARE(w.bar->horizontalScrollBar()->pageStep(), total - over);
    w.bar->refresh(path);
    QApplication::processEvents();

    // Independently of the walk: every segment whose right edge lies at or left
    // of the view's left edge, plus the first one still (partly) in sight.
    QStringList expected;
    if (over > 0) {
        for (int c = 0; c < columns; c += 2) {
            expected << w.button(c)->text();
            if (w.bar->columnViewportPosition(c) + w.bar->columnWidth(c) > 0)
                break;
        }
    }
    QCOMPARE(w.menuTexts(), expected);
    QCOMPARE(w.folder()->isVisible(), over > 0);
    QCOMPARE(w.bar->horizontalScrollBar()->value(), w.bar->horizontalScrollBar()->maximum());
    QCOMPARE(w.bar->horizontalScrollBar()->maximum(), over);

    // Each entry emits what a click on its segment button would.
    QSignalSpy spy(w.bar, SIGNAL(sigUpdatePath(QString)));
    const QList<QAction *> actions = w.folder()->menu()->actions();
    for (int i = 0; i < actions.size(); ++i) {
        actions[i]->trigger();
        QCOMPARE(spy.count(), 2 * i + 1);
        w.button(2 * i)->click();
        QCOMPARE(spy.count(), 2 * i + 2);
        QCOMPARE(spy.at(2 * i).at(0).toString(), spy.at(2 * i + 1).at(0).toString());
    }
    if (!actions.isEmpty())
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("home"));
    if (actions.size() > 1)
        QCOMPARE(spy.at(2).at(0).toString(), QStringLiteral("home/Mitarbeiter & Partner"));
}

void TestPickers::hostilePaths()
{
    PathWindow w(px(400));
    QVERIFY(QTest::qWaitForWindowExposed(&w.window));

    QStringList many;
    for (int i = 0; i < 5000; ++i)
        many << QStringLiteral("folder %1").arg(i);
    w.bar->refresh(many.join(QLatin1Char('/')));
    QCOMPARE(w.bar->columnCount(), 9999);
    QVERIFY(w.folder()->isVisible());
    QCOMPARE(w.bar->horizontalScrollBar()->value(), w.bar->horizontalScrollBar()->maximum());
    const int listed = int(w.folder()->menu()->actions().size());
    QVERIFY(listed > 4900 && listed < 5000);
    QCOMPARE(w.bar->getPath(9998), many.join(QLatin1Char('/')));
    QApplication::processEvents();
    QSignalSpy spy(w.bar, SIGNAL(sigUpdatePath(QString)));
    QTest::mouseClick(w.button(9998), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), many.join(QLatin1Char('/')));

    // Rebuilding a big row replaces it entirely.
    w.bar->refresh(QStringLiteral("a/b"));
    QCOMPARE(w.bar->columnCount(), 3);
    QCOMPARE(w.bar->viewport()->findChildren<QPushButton *>().size(), 3);
    QVERIFY(w.folder()->isHidden());

    const QString amps(300, QLatin1Char('&'));
    w.bar->refresh(amps + QLatin1Char('/') + amps);
    QCOMPARE(w.button(0)->text().size(), 600);
    QCOMPARE(w.bar->getPath(2), amps + QLatin1Char('/') + amps);

    const QString longName(20000, QLatin1Char('W'));
    w.bar->refresh(QStringLiteral("short/") + longName);
    QVERIFY(w.button(2)->width() > w.button(0)->width());
    QVERIFY(w.folder()->isVisible());
    QCOMPARE(w.menuTexts(), (QStringList {QStringLiteral("short"), longName}));
    QCOMPARE(w.bar->getPath(2), QStringLiteral("short/") + longName);
}

void TestPickers::filterBarLayout()
{
    LumoFilterBar bar;
    QCOMPARE(bar.height(), px(28));
    QCOMPARE(bar.styleSheet(), sheet("component.lineedit") + sheet("component.filter_bar_padding"));
    auto *button = bar.findChild<LumoIconButton *>();
    QVERIFY(button);
    QCOMPARE(button->pos(), QPoint(px(4), px(2)));
    QCOMPARE(button->size(), QSize(px(34), px(24)));
    QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    QCOMPARE(button->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(button->styleSheet(), sheet("component.filter_search_button"));
    QVERIFY(!bar.testAttribute(Qt::WA_MacShowFocusRect));

    const QMetaObject *meta = bar.metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 2);
    QCOMPARE(meta->method(meta->methodOffset()).methodSignature(), QByteArray("sigKeywordChanged(QString)"));
    QCOMPARE(meta->method(meta->methodOffset() + 1).methodSignature(), QByteArray("slotKeywordChange()"));
}

void TestPickers::filterBarDownKey()
{
    KeySink sink;
    auto *bar = new LumoFilterBar(&sink);
    auto *plain = new QLineEdit(&sink);
    plain->move(0, px(40));
    sink.resize(px(300), px(100));
    sink.show();
    sink.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&sink));

    // The baseline: a plain line edit lets Down through to its parent.
    plain->setFocus();
    QTest::keyClick(plain, Qt::Key_Down);
    QCOMPARE(sink.keys, QList<int> {Qt::Key_Down});
    sink.keys.clear();

    // Without a menu Down is swallowed and nothing moves.
    bar->setFocus();
    QTest::keyClicks(bar, QStringLiteral("abc"));
    QTest::keyClick(bar, Qt::Key_Home);
    QTest::keyClick(bar, Qt::Key_Down);
    QCOMPARE(bar->cursorPosition(), 0);
    QVERIFY(sink.keys.isEmpty());
    QVERIFY(!QApplication::activePopupWidget());

    // With a menu Down opens it.
    QMenu menu;
    menu.addAction(QStringLiteral("Name"));
    menu.addAction(QStringLiteral("Type"));
    bar->setMenu(&menu);
    QWidget *opened = nullptr;
    QTimer::singleShot(0, &menu, [&] {
        opened = QApplication::activePopupWidget();
        menu.close();
    });
    QTest::keyClick(bar, Qt::Key_Down);
    QCOMPARE(opened, &menu);
    QVERIFY(sink.keys.isEmpty());
    QCOMPARE(bar->text(), QStringLiteral("abc"));

    // Other keys still edit.
    QTest::keyClick(bar, Qt::Key_End);
    QTest::keyClick(bar, Qt::Key_Backspace);
    QCOMPARE(bar->text(), QStringLiteral("ab"));
}

void TestPickers::filterBarReturn()
{
    LumoFilterBar bar;
    bar.show();
    bar.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bar));
    QSignalSpy spy(&bar, SIGNAL(sigKeywordChanged(QString)));
    QTest::keyClick(&bar, Qt::Key_Return);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QString());
    QTest::keyClicks(&bar, QStringLiteral("report"));
    QCOMPARE(spy.count(), 1); // typing alone emits nothing
    QTest::keyClick(&bar, Qt::Key_Enter);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("report"));
}

void TestPickers::footbarLayout()
{
    LumoFootbar bar;
    QWidget a, b, c;
    bar.pushLeftWidget(&a);
    bar.pushRightWidget(&c);
    bar.pushLeftWidget(&b);
    bar.init();
    auto *layout = qobject_cast<QHBoxLayout *>(bar.QWidget::layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 4);
    QCOMPARE(layout->itemAt(0)->widget(), &a);
    QCOMPARE(layout->itemAt(1)->widget(), &b);
    QVERIFY(layout->itemAt(2)->spacerItem());
    QCOMPARE(layout->stretch(2), 1);
    QCOMPARE(layout->itemAt(3)->widget(), &c);
    for (int i : {0, 1, 3}) {
        QCOMPARE(layout->itemAt(i)->alignment(), Qt::AlignVCenter);
        QCOMPARE(layout->stretch(i), 0);
    }
    QCOMPARE(layout->alignment(), Qt::AlignLeft);
    QCOMPARE(layout->contentsMargins(), QMargins(px(20), px(8), px(20), px(8)));
    QCOMPARE(layout->spacing(), px(10));

    bar.setMargins(1, 3, 5, 7);
    bar.setSpacing(5);
    const double s = testsupport::expectedScale();
    QCOMPARE(layout->contentsMargins(), QMargins(int(1 * s), int(3 * s), int(5 * s), int(7 * s)));
    QCOMPARE(layout->spacing(), int(5 * s));

    // Laid out: the left group at the left margin, the right group at the right one.
    bar.resize(px(400), px(50));
    a.setFixedSize(20, 10);
    b.setFixedSize(20, 10);
    c.setFixedSize(20, 10);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QCOMPARE(a.x(), int(1 * s));
    QCOMPARE(b.x(), a.x() + 20 + int(5 * s));
    QCOMPARE(c.geometry().right(), bar.width() - 1 - int(5 * s));
    QVERIFY(bar.metaObject() == &QWidget::staticMetaObject);
}

void TestPickers::footbarEdgeCases()
{
    LumoFootbar bar;
    bar.init();
    auto *layout = qobject_cast<QHBoxLayout *>(bar.QWidget::layout());
    QCOMPARE(layout->count(), 1);
    QVERIFY(layout->itemAt(0)->spacerItem());
    QWidget late;
    bar.pushLeftWidget(&late);
    QCOMPARE(layout->count(), 1); // pushing after init() lays out nothing
    QVERIFY(!late.parent());
    bar.init();
    QCOMPARE(layout->count(), 3); // the late widget and a second stretch
    QCOMPARE(layout->itemAt(1)->widget(), &late);
    QVERIFY(layout->itemAt(2)->spacerItem());
}

void TestPickers::shadeStop()
{
    const QString plain = QStringLiteral("QScrollArea {border: 0; background-color: white}");
    LumoVerticalScrollArea area;
    QCOMPARE(area.styleSheet(), plain);
    QCOMPARE(area.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(!area.horizontalScrollBar()->isEnabled());
    QCOMPARE(area.verticalScrollBar()->styleSheet(), sheet("component.scrollbar"));
    QVERIFY(area.widgetResizable());
    area.setFixedSize(200, 200);

    area.slotScrollValueChanged(-1);
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.000000")); // default: the whole height
    QCOMPARE(area.styleSheet(),
             QStringLiteral("QScrollArea {border: 0; background-color: qlineargradient(x1:0, y1:0, x2:0, y2:1, "
                            "stop:0.000000 #FFFFFF, stop:1 #E0E0E0);}"));
    area.setShadowSize(20);
    area.slotScrollValueChanged(-1);
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.900000"));
    area.setShadowSize(0.05);
    area.slotScrollValueChanged(-1);
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.950000"));
    area.setShadowSize(1.0);
    area.slotScrollValueChanged(-1);
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.000000")); // 1.0 is a fraction, not a pixel
    area.setShadowSize(3);
    area.slotScrollValueChanged(-1);
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.985000"));
    area.setShadowSize(500); // taller than the area
    area.slotScrollValueChanged(-1);
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.000000"));
    area.slotScrollValueChanged(area.verticalScrollBar()->maximum());
    QCOMPARE(area.styleSheet(), plain);

    const QMetaObject *meta = area.metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 1);
    QCOMPARE(meta->method(meta->methodOffset()).methodSignature(), QByteArray("slotScrollValueChanged(int)"));
}

void TestPickers::shadeFollowsScrolling()
{
    LumoVerticalScrollArea area;
    area.setShadowSize(20);
    area.setFixedSize(200, 200);
    auto *content = new QWidget;
    content->setMinimumHeight(1000);
    area.setWidget(content);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    QScrollBar *bar = area.verticalScrollBar();
    QTRY_VERIFY(bar->isVisible());
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.900000"));

    bar->setValue(bar->maximum());
    QCOMPARE(area.styleSheet(), QStringLiteral("QScrollArea {border: 0; background-color: white}"));
    bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
    QVERIFY(bar->value() < bar->maximum());
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.900000"));

    // The content shrinks to fit: the bar hides and the shade goes with it.
    QSignalSpy spy(bar, SIGNAL(valueChanged(int)));
    content->setMinimumHeight(50);
    QTRY_VERIFY(!bar->isVisible());
    QCOMPARE(area.styleSheet(), QStringLiteral("QScrollArea {border: 0; background-color: white}"));
    QVERIFY(spy.count() >= 1);
    QCOMPARE(spy.last().at(0).toInt(), 0);
    // ...and comes back with the bar.
    spy.clear();
    content->setMinimumHeight(800);
    QTRY_VERIFY(bar->isVisible());
    QVERIFY(spy.contains(QVariantList {-1}));
    QCOMPARE(gradientStop(area.styleSheet()), QStringLiteral("0.900000"));
}

void TestPickers::fittingContentNeverShades()
{
    LumoVerticalScrollArea area;
    area.setShadowSize(20);
    area.resize(200, 200);
    auto *content = new QWidget;
    content->setMinimumHeight(100);
    area.setWidget(content);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    area.resize(200, 300);
    QApplication::processEvents();
    QVERIFY(!area.verticalScrollBar()->isVisible());
    QCOMPARE(area.styleSheet(), QStringLiteral("QScrollArea {border: 0; background-color: white}"));
}

QTEST_MAIN(TestPickers)
#include "tst_pickers.moc"

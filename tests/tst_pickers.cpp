// Combo boxes, the breadcrumb path bar, the filter bar, the footbar and the shaded scroll area.

#include "testsupport.h"

#include <lumo/controls.h>
#include <lumo/registries.h>
#include <lumo/views.h>

#include <QtTest>
#include <QtWidgets>

namespace
{
using testsupport::px;

// Deep enough to overflow a narrow bar, with a blank and an ampersand in a segment.
const QString deepPath = QStringLiteral("home/Mitarbeiter & Partner/Projects/Q3 Planning/Draft/Final");

// Every half hour of the day, as an owner would fill the box.
QStringList halfHours()
{
    QStringList times;
    for (int h = 0; h < 48; ++h)
        times << QTime(h / 2, h % 2 * 30).toString(QStringLiteral("hh:mm"));
    return times;
}

// A window with a time box filled with halfHours() and a second field to move the focus to.
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
    // Types @p text into the shown box and leaves it by Return or by moving the focus.
    bool typeAndLeave(const QString &text, bool pressReturn)
    {
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            return false;
        box->setFocus();
        box->lineEdit()->selectAll();
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClicks(box, text);
        typed = box->lineEdit()->text();
        if (pressReturn)
            QTest::keyClick(box, Qt::Key_Return);
        else
            other->setFocus();
        return QTest::qWaitFor([this] { return !box->hasFocus(); });
    }
    bool firstRowShown() const { return !static_cast<QListView *>(box->view())->isRowHidden(0); }
    // "text@row", then "+custom" while an editable box shows its custom row: visible and
    // enabled, which always change together.
    QString state() const
    {
        const bool enabled = static_cast<QStandardItemModel *>(box->model())->item(0)->flags().testFlag(Qt::ItemIsEnabled);
        const QString custom = !box->isEditable() ? QString()
            : firstRowShown() == enabled          ? QLatin1String(enabled ? "+custom" : "")
                                                  : QStringLiteral("+half-shown");
        return QStringLiteral("%1@%2").arg(box->currentText()).arg(box->currentIndex()) + custom;
    }
    int qtMaxVisible() const { return static_cast<QComboBox *>(box)->maxVisibleItems(); }
    QString typed;
};

QString listed(const QString &time)
{
    return QStringLiteral("%1@%2").arg(time).arg(halfHours().indexOf(time) + 1);
}

// A path bar in a shown window, wide enough unless told otherwise.
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
    int rowWidth() const
    {
        int total = 0;
        for (int c = 0; c < bar->columnCount(); ++c)
            total += bar->columnWidth(c);
        return total;
    }
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

const QString plainArea = QStringLiteral("QScrollArea {border: 0; background-color: white}");
}

class TestPickers : public QObject
{
    Q_OBJECT

    QTemporaryDir userData;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(userData.isValid());
        testsupport::startWithDefaultTheme(userData);
        QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
    }

    void comboPopupOpensBelow()
    {
        QWidget window;
        auto *box = new LumoComboBox(&window);
        box->addItems({QStringLiteral("One"), QStringLiteral("Two")});
        box->move(px(30), px(40));
        window.resize(px(300), px(200));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        box->setFocus();
        QCOMPARE(window.focusWidget(), box);
        box->showPopup();
        auto *container = box->findChild<QFrame *>();
        QTRY_VERIFY(container && container->isVisible());
        QCOMPARE(container->pos(), box->mapToGlobal(QPoint(0, box->height() + 2)));
        QCOMPARE(window.focusWidget(), nullptr); // no focus frame while the list is open
        box->hidePopup();
    }

    void typedTime_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept"); // what the validator lets into the field
        QTest::addColumn<bool>("pressReturn");
        QTest::addColumn<QString>("state");
        const auto row = [](const char *typed, const char *kept, bool pressReturn, const QString &state) {
            QTest::newRow(*typed ? typed : "empty") << QString::fromLatin1(typed) << QString::fromLatin1(kept) << pressReturn << state;
        };
        row("7", "7", false, listed(QStringLiteral("07:00")));
        row("7:", "7:", false, listed(QStringLiteral("07:00")));
        row("7:5", "7:5", false, QStringLiteral("07:05@0+custom")); // a single minute digit is units
        row("9:7", "9:7", true, QStringLiteral("09:07@0+custom"));
        row("9", "9", true, listed(QStringLiteral("09:00")));
        row("", "", false, listed(QStringLiteral("08:30"))); // empty returns to the default
        // Refused while typing.
        row("24", "2", false, listed(QStringLiteral("02:00")));
        row("123", "12", false, listed(QStringLiteral("12:00")));
        row("7:60", "7:6", false, QStringLiteral("07:06@0+custom"));
        row("7:456", "7:45", false, QStringLiteral("07:45@0+custom"));
        row("12::30", "12:30", false, listed(QStringLiteral("12:30")));
        row("1x2", "12", false, listed(QStringLiteral("12:00")));
        row(" ab", "", false, listed(QStringLiteral("08:30")));
    }

    void typedTime()
    {
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        QFETCH(bool, pressReturn);
        QFETCH(QString, state);
        TimeBoxWindow w;
        w.box->setDefault("08:30");
        QVERIFY(w.typeAndLeave(typed, pressReturn));
        QCOMPARE(w.typed, kept);
        QCOMPARE(w.state(), state);
        QCOMPARE(w.box->count(), halfHours().size() + 1); // nothing typed ever becomes a new row
    }

    void customRow_data()
    {
        QTest::addColumn<bool>("throughQComboBox");
        QTest::newRow("the box's own calls") << false;
        QTest::newRow("through QComboBox") << true;
    }

    void customRow()
    {
        QFETCH(bool, throughQComboBox);
        TimeBoxWindow w(false);
        QComboBox *base = w.box;
        // Through QComboBox the box catches up once control returns to the event loop.
        const auto setEditable = [&](bool editable) {
            for (int twice = 0; twice < 2; ++twice) // the second call changes nothing
                throughQComboBox ? base->setEditable(editable) : w.box->setEditable(editable);
            if (throughQComboBox)
                QTest::qWait(0);
        };
        setEditable(true);
        QCOMPARE(w.box->count(), halfHours().size() + 1);
        QCOMPARE(w.state(), QStringLiteral("00:00@1")); // the hidden row goes in before the current one
        QVERIFY(w.box->lineEdit()->validator());
        QVERIFY(!w.box->completer());
        QCOMPARE(w.qtMaxVisible(), 11); // Qt's default 10, plus the hidden row
        w.box->setItemVisible(true);
        QCOMPARE(w.state(), QStringLiteral("00:00@1+custom"));
        QCOMPARE(w.qtMaxVisible(), 10);
        w.box->setItemVisible(false);
        throughQComboBox ? base->setMaxVisibleItems(4) : w.box->setMaxVisibleItems(4);
        if (throughQComboBox) { // a limit set through QComboBox counts from the next popup
            w.box->showPopup();
            w.box->hidePopup();
        }
        QCOMPARE(w.qtMaxVisible(), 5);
        w.box->setItemVisible(true);
        QCOMPARE(w.qtMaxVisible(), 4);
        w.box->setCustomText(QStringLiteral("(custom)"));
        QVERIFY(w.typeAndLeave(QStringLiteral("9:7"), true));
        QCOMPARE(w.state(), QStringLiteral("09:07 (custom)@0+custom"));
        QCOMPARE(w.box->time(), QTime(9, 7));
        // Back in the field only the time itself is edited.
        w.box->setFocus();
        QTRY_VERIFY(w.box->hasFocus());
        QCOMPARE(w.box->itemText(0), QStringLiteral("09:07"));
        QTest::keyClick(w.box, Qt::Key_Backspace);
        QTest::keyClicks(w.box, QStringLiteral("5"));
        QTest::keyClick(w.box, Qt::Key_Enter);
        QTRY_COMPARE(w.state(), QStringLiteral("09:05 (custom)@0+custom"));

        // Without the custom row the first row is the owner's and stays visible.
        setEditable(false);
        QCOMPARE(w.box->count(), halfHours().size());
        w.box->setItemVisible(false);
        QCOMPARE(w.state(), QStringLiteral("00:00@0"));
        QVERIFY(w.firstRowShown());
        QCOMPARE(w.qtMaxVisible(), 4);
    }

    void setTextAndDefault_data()
    {
        QTest::addColumn<bool>("editable");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("state"); // after setCurrentText()
        QTest::newRow("plain, known") << false << QByteArray("10:30") << QString() << QStringLiteral("10:30@21");
        QTest::newRow("plain, unknown selects row 0") << false << QByteArray("10:31") << QString() << QStringLiteral("00:00@0");
        QTest::newRow("editable, known") << true << QByteArray("10:30") << QString() << listed(QStringLiteral("10:30"));
        QTest::newRow("editable, unknown") << true << QByteArray("10:31") << QString() << QStringLiteral("10:31@0+custom");
        QTest::newRow("editable, suffix") << true << QByteArray("10:31") << QStringLiteral("ab") << QStringLiteral("10:31 ab@0+custom");
        QTest::newRow("editable, UTF-8") << true << QByteArray("10:31 \xe5\x8d\x88") << QString()
                                         << QStringLiteral("10:31 \u5348@0+custom");
        QTest::newRow("exact match only") << true << QByteArray("10:30 ") << QString() << QStringLiteral("10:30 @0+custom");
    }

    void setTextAndDefault()
    {
        QFETCH(bool, editable);
        QFETCH(QByteArray, text);
        QFETCH(QString, suffix);
        QFETCH(QString, state);
        TimeBoxWindow current(editable), byDefault(editable);
        for (TimeBoxWindow *w : {&current, &byDefault}) {
            w->box->setCustomText(suffix);
            w->box->setCurrentIndex(5);
        }
        current.box->setCurrentText(text.toStdString());
        QCOMPARE(current.state(), state);
        const bool custom = state.endsWith(QLatin1String("+custom"));
        if (editable)
            QCOMPARE(current.qtMaxVisible(), custom ? 10 : 11);

        // The default is only remembered: the current row stays, and empty input returns to it.
        byDefault.box->setDefault(text.toStdString());
        QCOMPARE(byDefault.box->currentIndex(), 5);
        if (editable) {
            QCOMPARE(byDefault.state(), QStringLiteral("02:00@5") + QLatin1String(custom ? "+custom" : ""));
            QCOMPARE(byDefault.box->itemText(0), custom ? state.section(QLatin1Char('@'), 0, 0) : QString());
            QVERIFY(byDefault.typeAndLeave(QString(), false));
            QCOMPARE(byDefault.box->currentIndex(), current.box->currentIndex());
        }
    }

    void correctTimeEmits()
    {
        TimeBoxWindow w;
        QCOMPARE(w.state(), QStringLiteral("@0")); // filled after it became editable: the hidden row is current
        w.box->setCurrentIndex(3);
        QSignalSpy spy(w.box, SIGNAL(currentIndexChanged(int)));
        // A new time on the custom row: the row change and the explicit emission.
        w.box->lineEdit()->setText(QStringLiteral("7:5"));
        w.box->correctTime();
        QCOMPARE(w.state(), QStringLiteral("07:05@0+custom"));
        QCOMPARE(spy, (QList<QVariantList> {{0}, {0}}));
        // Already on the custom row: only the explicit emission tells of the new time.
        w.box->setItemText(0, QStringLiteral("7:6"));
        w.box->correctTime();
        QCOMPARE(w.state(), QStringLiteral("07:06@0+custom"));
        QCOMPARE(spy.count(), 3);
        // A listed time: one ordinary change.
        w.box->setItemText(0, QStringLiteral("7"));
        w.box->correctTime();
        QCOMPARE(w.state(), listed(QStringLiteral("07:00")));
        QCOMPARE(spy.count(), 4);
        QCOMPARE(spy.last(), QVariantList {halfHours().indexOf(QStringLiteral("07:00")) + 1});
        // A literal takes the box's own route; a QString QComboBox's, which only fills the line edit.
        w.box->setCurrentText("10:31");
        QCOMPARE(w.state(), QStringLiteral("10:31@0+custom"));
        w.box->setCurrentText(QStringLiteral("7"));
        QCOMPARE(w.box->lineEdit()->text(), QStringLiteral("7"));
        QCOMPARE(w.box->time(), QTime());
        w.box->correctTime();
        QCOMPARE(w.box->time(), QTime(7, 0));

        // A plain box falls back to row 0 for a time it does not list.
        LumoTimeComboBox plain;
        plain.addItems({QStringLiteral("08:00"), QStringLiteral("9:5")});
        plain.setCurrentIndex(1);
        plain.correctTime();
        QCOMPARE(plain.currentIndex(), 0);
        QCOMPARE(plain.count(), 2);
    }

    void pathRow_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QStringList>("texts"); // on the segment buttons
        QTest::addColumn<QString>("fullPath"); // emitted by the last segment
        QTest::newRow("empty") << QString() << QStringList() << QString();
        QTest::newRow("root") << QStringLiteral("/") << QStringList() << QString();
        QTest::newRow("only slashes") << QStringLiteral("////") << QStringList() << QString();
        QTest::newRow("a//b/") << QStringLiteral("a//b/") << QStringList {QStringLiteral("a"), QStringLiteral("b")}
                               << QStringLiteral("a/b");
        QTest::newRow("absolute loses its slash")
            << QStringLiteral("/usr/local/share") << QStringList {QStringLiteral("usr"), QStringLiteral("local"), QStringLiteral("share")}
            << QStringLiteral("usr/local/share");
        QTest::newRow("blanks kept") << QStringLiteral(" / a ") << QStringList {QStringLiteral(" "), QStringLiteral(" a ")}
                                     << QStringLiteral(" / a ");
        QTest::newRow("ampersands doubled on buttons only")
            << QStringLiteral("x/R&D/&&/a&")
            << QStringList {QStringLiteral("x"), QStringLiteral("R&&D"), QStringLiteral("&&&&"), QStringLiteral("a&&")}
            << QStringLiteral("x/R&D/&&/a&");
    }

    void pathRow()
    {
        QFETCH(QString, path);
        QFETCH(QStringList, texts);
        QFETCH(QString, fullPath);
        // A font on the row reaches the buttons' text but not their measured widths.
        QFont font = QApplication::font();
        font.setPointSizeF(font.pointSizeF() * 1.5);
        PathWindow w;
        w.bar->viewport()->setFont(font);
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));
        w.bar->refresh(QStringLiteral("old/path/first"));
        w.bar->slotUpdatePath(path);
        QTest::qWait(0); // the old row is deleted once control returns
        PathWindow fresh;
        fresh.bar->viewport()->setFont(font);
        fresh.bar->refresh(path);
        QVERIFY(QTest::qWaitForWindowExposed(&fresh.window));
        QCOMPARE(w.bar->grab().toImage(), fresh.bar->grab().toImage()); // a rebuild looks like a first build
        const int columns = texts.isEmpty() ? 0 : int(texts.size()) * 2 - 1;
        QCOMPARE(w.bar->columnCount(), columns);
        QCOMPARE(w.bar->viewport()->findChildren<QPushButton *>().size(), columns); // the previous row's buttons are gone
        QVERIFY(w.folder()->isHidden());
        QVERIFY(w.folder()->menu()->actions().isEmpty());
        QCOMPARE(w.bar->getPath(-1), QString());
        QCOMPARE(w.bar->getPath(99), fullPath); // clamped to the last button

        // Widths are measured on the raw segment; the scale applies to the sum and is truncated.
        const QFontMetrics metrics(QPushButton().font());
        const QStringList raw = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        for (int i = 0; i < texts.size(); ++i) {
            QCOMPARE(w.button(2 * i)->text(), texts[i]);
            QCOMPARE(w.bar->columnWidth(2 * i), int(DPIinfo::getInstance()->getDPI() * (metrics.boundingRect(raw[i]).width() + 16)));
            if (i > 0)
                QCOMPARE(w.bar->columnWidth(2 * i - 1), px(6));
        }
        if (texts.isEmpty())
            return;
        // The button route: a segment emits its path, an arrow nothing, and the bar never navigates by itself.
        QSignalSpy spy(w.bar, SIGNAL(sigUpdatePath(QString)));
        QTest::mouseClick(w.button(columns - 1), Qt::LeftButton);
        QTest::mouseClick(w.button(1), Qt::LeftButton); // an arrow is no segment
        QTest::mouseClick(w.button(0), Qt::LeftButton);
        QCOMPARE(spy, (QList<QVariantList> {{fullPath}, {raw[0]}}));
        QCOMPARE(w.bar->columnCount(), columns);
    }

    void overflowMenu_data()
    {
        QTest::addColumn<int>("over"); // how much wider than the view the row is
        PathWindow wide;
        wide.bar->refresh(deepPath);
        const int total = wide.rowWidth();
        const int first = wide.bar->columnWidth(0);
        const int arrow = wide.bar->columnWidth(1);
        QTest::newRow("fits exactly") << 0;
        QTest::newRow("1 px") << 1;
        QTest::newRow("first segment - 1") << first - 1;
        QTest::newRow("first segment") << first;
        QTest::newRow("first segment + arrow") << first + arrow;
        QTest::newRow("first segment + arrow + 1") << first + arrow + 1;
        QTest::newRow("half") << total / 2;
        QTest::newRow("all but the last") << total - wide.bar->columnWidth(wide.bar->columnCount() - 1);
    }

    void overflowMenu()
    {
        QFETCH(int, over);
        PathWindow w;
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));
        w.bar->refresh(deepPath);
        const int total = w.rowWidth();
        // Size the bar so that its view is exactly total - over pixels wide.
        w.bar->setFixedWidth(total - over + w.bar->width() - w.bar->viewport()->width());
        QApplication::processEvents();
        QCOMPARE(w.bar->horizontalScrollBar()->pageStep(), total - over);
        w.bar->refresh(deepPath);
        QApplication::processEvents();
        QCOMPARE(w.bar->horizontalScrollBar()->maximum(), over);
        QCOMPARE(w.bar->horizontalScrollBar()->value(), over); // scrolled to the right end

        // Independently of the walk: every segment whose right edge lies at or left
        // of the view's left edge, plus the first one still (partly) in sight.
        QStringList expected;
        for (int c = 0; over > 0 && c < w.bar->columnCount(); c += 2) {
            expected << w.button(c)->text();
            if (w.bar->columnViewportPosition(c) + w.bar->columnWidth(c) > 0)
                break;
        }
        QCOMPARE(w.menuTexts(), expected);
        QCOMPARE(w.folder()->isVisible(), over > 0);
        // Widened: no folder button, no stale menu, the row from its start; narrowed again: the same as a rebuild.
        const int narrow = w.bar->width();
        w.bar->setFixedWidth(narrow + total);
        QTRY_VERIFY(w.folder()->isHidden());
        QVERIFY(w.menuTexts().isEmpty());
        QCOMPARE(w.bar->horizontalScrollBar()->value(), 0);
        w.bar->setFixedWidth(narrow);
        QTRY_COMPARE(w.menuTexts(), expected);
        QCOMPARE(w.folder()->isVisible(), over > 0);
        QCOMPARE(w.bar->horizontalScrollBar()->value(), over);

        // The menu route: each entry emits what a click on its segment button would.
        QSignalSpy spy(w.bar, SIGNAL(sigUpdatePath(QString)));
        const QList<QAction *> actions = w.folder()->menu()->actions();
        for (int i = 0; i < actions.size(); ++i) {
            actions[i]->trigger();
            w.button(2 * i)->click();
        }
        QCOMPARE(spy.size(), 2 * actions.size());
        for (int i = 0; i < actions.size(); ++i)
            QCOMPARE(spy.at(2 * i), spy.at(2 * i + 1));
        if (!actions.isEmpty())
            QCOMPARE(spy.at(0), QVariantList {QStringLiteral("home")});
    }

    void hostilePaths()
    {
        PathWindow w(px(400));
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));
        QStringList many;
        for (int i = 0; i < 5000; ++i)
            many << QStringLiteral("folder %1").arg(i);
        w.bar->refresh(many.join(QLatin1Char('/')));
        QCOMPARE(w.bar->columnCount(), 9999);
        QCOMPARE(w.bar->horizontalScrollBar()->value(), w.bar->horizontalScrollBar()->maximum());
        const int listed = int(w.folder()->menu()->actions().size());
        QVERIFY(listed > 4900 && listed < 5000);
        QApplication::processEvents();
        QSignalSpy spy(w.bar, SIGNAL(sigUpdatePath(QString)));
        QTest::mouseClick(w.button(9998), Qt::LeftButton);
        QCOMPARE(spy, QList<QVariantList> {{many.join(QLatin1Char('/'))}});
        w.bar->refresh(QStringLiteral("a/b")); // a row that fits after one that overflowed
        QVERIFY(w.folder()->isHidden());

        const QString longName(20000, QLatin1Char('W'));
        w.bar->refresh(QStringLiteral("short/") + longName);
        QCOMPARE(w.menuTexts(), (QStringList {QStringLiteral("short"), longName}));
        QCOMPARE(w.bar->getPath(2), QStringLiteral("short/") + longName);
    }

    void pathMenuPickWhileRefreshing()
    {
        // An owner that follows a focused folder tree and navigates on every pick.
        QWidget window;
        auto *tree = new LumoTreeWidget;
        auto *bar = new LumoButtonPath;
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(bar);
        layout->addWidget(tree);
        bar->setFixedWidth(px(200));
        tree->addTopLevelItem(new QTreeWidgetItem(QStringList {deepPath}));
        connect(tree, &QTreeWidget::currentItemChanged, bar, [bar](QTreeWidgetItem *item) {
            if (item)
                bar->refresh(item->text(0));
        });
        connect(bar, SIGNAL(sigUpdatePath(QString)), bar, SLOT(slotUpdatePath(QString)));
        QSignalSpy spy(bar, SIGNAL(sigUpdatePath(QString)));
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        tree->setFocus();
        tree->setCurrentItem(tree->topLevelItem(0));
        auto *folder = bar->findChild<QToolButton *>();
        QTRY_VERIFY(folder->isVisible());

        // The pick closes the menu, the tree gets the focus back and re-announces
        // its item, which rebuilds the bar before the picked entry fires.
        QMenu *menu = folder->menu();
        QTimer::singleShot(0, menu, [menu] {
            QTRY_VERIFY(menu->isVisible());
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().at(0)).center());
        });
        QTest::mouseClick(folder, Qt::LeftButton);
        QTRY_COMPARE(spy, QList<QVariantList> {{QStringLiteral("home")}});
        QCOMPARE(bar->columnCount(), 1);

        // A segment button whose click rebuilds the row it sits in.
        bar->refresh(deepPath);
        QTest::mouseClick(qobject_cast<QPushButton *>(bar->cellWidget(0, 2)), Qt::LeftButton);
        QCOMPARE(spy.last(), QVariantList {QStringLiteral("home/Mitarbeiter & Partner")});
        QCOMPARE(bar->columnCount(), 3);
        QTest::qWait(0);
        QCOMPARE(bar->viewport()->findChildren<QPushButton *>().size(), 3);
    }

    void filterBarKeys()
    {
        KeySink sink;
        auto *bar = new LumoFilterBar(&sink);
        sink.show();
        sink.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&sink));
        QSignalSpy spy(bar, SIGNAL(sigKeywordChanged(QString)));

        // Return with an empty field emits the empty keyword; typing alone emits nothing.
        bar->setFocus();
        QTest::keyClick(bar, Qt::Key_Return);
        QTest::keyClicks(bar, QStringLiteral("abc"));
        QCOMPARE(spy, QList<QVariantList> {{QString()}});
        // The baseline: the line edit lets Up through to the parent, as it would Down.
        sink.keys.clear();
        QTest::keyClick(bar, Qt::Key_Up);
        QCOMPARE(sink.keys, QList<int> {Qt::Key_Up});
        sink.keys.clear();

        // Without a menu Down is swallowed and nothing moves.
        QTest::keyClick(bar, Qt::Key_Home);
        QTest::keyClick(bar, Qt::Key_Down);
        QCOMPARE(bar->cursorPosition(), 0);
        QVERIFY(!QApplication::activePopupWidget());
        // With a menu Down opens it.
        QMenu menu;
        menu.addAction(QStringLiteral("Name"));
        bar->setMenu(&menu);
        QWidget *opened = nullptr;
        QTimer::singleShot(0, &menu, [&] {
            opened = QApplication::activePopupWidget();
            menu.close();
        });
        QTest::keyClick(bar, Qt::Key_Down);
        QCOMPARE(opened, &menu);
        QVERIFY(sink.keys.isEmpty());

        // Other keys still edit, and Enter delivers like Return.
        QTest::keyClick(bar, Qt::Key_End);
        QTest::keyClick(bar, Qt::Key_Backspace);
        QTest::keyClick(bar, Qt::Key_Enter);
        QCOMPARE(spy, (QList<QVariantList> {{QString()}, {QStringLiteral("ab")}}));
    }

    void footbar()
    {
        LumoFootbar bar, empty;
        QWidget a, b, c, late;
        // The row as widget names, "|" for a stretch.
        const auto row = [](LumoFootbar &footbar) {
            QStringList items;
            for (int i = 0; i < footbar.layout()->count(); ++i) {
                QLayoutItem *item = footbar.layout()->itemAt(i);
                items << (item->spacerItem() ? QStringLiteral("|") : item->widget()->objectName());
            }
            return items.join(QLatin1Char(' '));
        };
        a.setObjectName(QStringLiteral("a"));
        b.setObjectName(QStringLiteral("b"));
        c.setObjectName(QStringLiteral("c"));
        late.setObjectName(QStringLiteral("late"));
        bar.pushLeftWidget(&a);
        bar.pushRightWidget(&c);
        bar.pushLeftWidget(&b);
        bar.init();
        QCOMPARE(row(bar), QStringLiteral("a b | c"));
        QCOMPARE(static_cast<QHBoxLayout *>(bar.layout())->stretch(2), 1);
        // Truncated after scaling: at 1.5, 3 gives 4 and 5 gives 7.
        bar.setMargins(1, 3, 5, 7);
        bar.setSpacing(5);
        QCOMPARE(bar.layout()->contentsMargins(), QMargins(px(1), px(3), px(5), px(7)));
        QCOMPARE(bar.layout()->spacing(), px(5));

        // init() before any push gives the stretch alone; a later push waits for the next init().
        empty.init();
        empty.pushLeftWidget(&late);
        QCOMPARE(row(empty), QStringLiteral("|"));
        QVERIFY(!late.parent());
        empty.init();
        QCOMPARE(row(empty), QStringLiteral("| late |"));
    }

    void shade_data()
    {
        QTest::addColumn<double>("shadow"); // negative: left at the default
        QTest::addColumn<QString>("stop"); // where the shade begins in the 200-pixel area
        QTest::newRow("default: the whole height") << -1.0 << "0.000000";
        QTest::newRow("20 px of 200") << 20.0 << "0.900000";
        QTest::newRow("3 px of 200") << 3.0 << "0.985000";
        QTest::newRow("a fraction") << 0.05 << "0.950000";
        QTest::newRow("1.0 is a fraction, not a pixel") << 1.0 << "0.000000";
        QTest::newRow("taller than the area") << 500.0 << "0.000000";
    }

    void shade()
    {
        QFETCH(double, shadow);
        QFETCH(QString, stop);
        const QString shaded =
            QStringLiteral("QScrollArea {border: 0; background-color: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:%1 #FFFFFF, "
                           "stop:1 #E0E0E0);}")
                .arg(stop);
        LumoVerticalScrollArea area;
        if (shadow >= 0)
            area.setShadowSize(shadow);
        area.setFixedSize(200, 200);
        auto *content = new QWidget;
        content->setMinimumHeight(50);
        area.setWidget(content);
        area.show();
        QVERIFY(QTest::qWaitForWindowExposed(&area));
        QScrollBar *bar = area.verticalScrollBar();
        QVERIFY(!bar->isVisible());
        QCOMPARE(area.styleSheet(), plainArea); // content that fits never shades

        // The bar appears: its show is announced as -1 and the shade comes.
        QSignalSpy spy(bar, SIGNAL(valueChanged(int)));
        content->setMinimumHeight(1000);
        QTRY_VERIFY(bar->isVisible());
        QVERIFY(spy.contains(QVariantList {-1}));
        QCOMPARE(area.styleSheet(), shaded);
        bar->setValue(bar->maximum());
        QCOMPARE(area.styleSheet(), plainArea);
        bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
        QVERIFY(bar->value() < bar->maximum());
        QCOMPARE(area.styleSheet(), shaded);

        // The content shrinks to fit: the bar hides, announced as 0, and the shade goes.
        content->setMinimumHeight(50);
        QTRY_VERIFY(!bar->isVisible());
        QCOMPARE(spy.last(), QVariantList {0});
        QCOMPARE(area.styleSheet(), plainArea);
    }
};

QTEST_MAIN(TestPickers)
#include "tst_pickers.moc"

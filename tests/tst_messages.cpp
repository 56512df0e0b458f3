// Message sheet, input sheet, the one-call message functions and the countdown box:
// result codes for every way a sheet ends, sizes, keyboard, focus and lifetime.

#include "testsupport.h"

#include <lumo/lumo.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtMath>
#include <QtTest/qtestspontaneevent.h>
#include <QtTest>

#include <functional>
#include <memory>

namespace
{
constexpr int Ok = QMessageBox::Ok; // 0x400
constexpr int Apply = QMessageBox::Apply; // 0x2000000
constexpr int Discard = QMessageBox::Discard; // 0x800000
constexpr int Reset = QMessageBox::Reset; // 0x4000000
constexpr int Hung = -999; // the watchdog's code: the sheet did not end by itself
constexpr int StillOpen = 77; // a key was swallowed and the sheet was then ended with this code

double dpi()
{
    return DPIinfo::getInstance()->getDPI();
}

int px(double v)
{
    return int(dpi() * v);
}

// A shown, active window with a focusable button of its own behind the sheets.
std::unique_ptr<QWidget> makeWindow(int logicalWidth = 800)
{
    auto window = std::make_unique<QWidget>();
    window->resize(qCeil(dpi() * logicalWidth), px(600));
    auto *behind = new QPushButton(QStringLiteral("Behind"), window.get());
    behind->setObjectName(QStringLiteral("behind"));
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window.get()))
        qWarning("window not active");
    return window;
}

template<typename Sheet> Sheet *over(QWidget *window, Sheet *sheet)
{
    LumoMask::createMask(sheet, window, QColor(0, 0, 0, 20));
    return sheet;
}

// exec() with @p action run inside its loop; a watchdog ends a sheet that would hang.
template<typename Sheet> int execWith(Sheet *sheet, const std::function<void()> &action)
{
    QTimer::singleShot(0, sheet, action);
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, sheet, [sheet] { sheet->done(Hung); });
    watchdog.start(10000);
    return sheet->exec();
}

// A key as the user types it: to the focused widget, from where it propagates.
void typeKey(QWidget *window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget *target = QApplication::focusWidget() ? QApplication::focusWidget() : window;
    QTest::keyClick(target, key, modifiers);
}

void userClose(QWidget *window)
{
    // What the title bar's close button delivers: a spontaneous close to the native window.
    QCloseEvent close;
    QSpontaneKeyEvent::setSpontaneous(&close);
    QApplication::sendEvent(window->windowHandle(), &close);
}

struct SeenBox {
    bool seen = false;
    QString title, text, informative, style;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMap<int, QPair<QString, QString>> buttons; // standard button -> caption, style sheet
};
}

class TestMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void resultCodes_data();
    void resultCodes();
    void userCloseIsRefused();
    void windowClosedByApplicationEndsSheet();
    void windowDestroyedDuringExec();
    void stackedSheetsEndInOrder();
    void sheetRunsAgainAfterDone();
    void runningSheetRefusesSecondExec();

    void messageSheetWidth_data();
    void messageSheetWidth();
    void inputSheetWidth_data();
    void inputSheetWidth();
    void layoutMargins_data();
    void layoutMargins();
    void widthHeightAndScrollArea();
    void captionsAndSizes();
    void reinitialisedSheetEndsOnce();
    void textLabelsRecreatedOrKept();
    void tabCyclesInsideSheet();
    void doubleConfirm();
    void badMovieWarns();

    void inputSheet();
    void fallbackMessageBoxes_data();
    void fallbackMessageBoxes();

    void countdownSteps();
    void countdownRunsOut_data();
    void countdownRunsOut();
    void countdownCancel();

private:
    QTemporaryDir userData;
};

void TestMessages::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::startWithDefaultTheme(userData);
    QApplication::setQuitOnLastWindowClosed(false);
    QCOMPARE(dpi(), testsupport::expectedScale());
}

void TestMessages::cleanup()
{
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QCOMPARE(QApplication::topLevelWidgets().size(), 0);
}

// ---------------------------------------------------------------------------
// How a sheet ends
// ---------------------------------------------------------------------------

void TestMessages::resultCodes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("expected");

    using S = LumoMessageSheet;
    QTest::newRow("info ok") << int(S::Information) << "Ok" << Ok;
    QTest::newRow("info return") << int(S::Information) << "Return" << Ok;
    QTest::newRow("info enter") << int(S::Information) << "Enter" << Ok;
    QTest::newRow("info space") << int(S::Information) << "Space" << Ok;
    QTest::newRow("info escape swallowed") << int(S::Information) << "Escape" << StillOpen;
    QTest::newRow("info other key swallowed") << int(S::Information) << "A" << StillOpen;
    QTest::newRow("warning return") << int(S::Warning) << "Return" << Ok;
    QTest::newRow("confirm apply") << int(S::Confirm) << "Apply" << Apply;
    QTest::newRow("confirm discard") << int(S::Confirm) << "Discard" << Discard;
    QTest::newRow("confirm return") << int(S::Confirm) << "Return" << Apply;
    QTest::newRow("confirm space") << int(S::Confirm) << "Space" << Apply;
    QTest::newRow("confirm escape") << int(S::Confirm) << "Escape" << Discard;
    QTest::newRow("confirm escape at window") << int(S::Confirm) << "window Escape" << Discard;
    QTest::newRow("confirm return on discard") << int(S::Confirm) << "focus Discard, Return" << Apply;
    QTest::newRow("confirm space on discard") << int(S::Confirm) << "focus Discard, Space" << Discard;
    QTest::newRow("reset") << int(S::ConfirmWithReset) << "Reset" << Reset;
    QTest::newRow("upgrading enter") << int(S::Upgrading) << "Enter" << Apply;
    QTest::newRow("warning confirm escape") << int(S::WarningConfirm) << "Escape" << Discard;
    QTest::newRow("notice return swallowed") << int(S::AppNotice) << "Return" << StillOpen;
    QTest::newRow("processing escape swallowed") << int(S::Processing) << "Escape" << StillOpen;
    QTest::newRow("done") << int(S::Confirm) << "done" << 5;
    QTest::newRow("quit") << int(S::Confirm) << "quit" << 0;
}

void TestMessages::resultCodes()
{
    QFETCH(int, type);
    QFETCH(QString, action);
    QFETCH(int, expected);

    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::MessageType(type), QStringLiteral("Text"), window.get()));
    QSignalSpy finished(sheet, SIGNAL(finished(int)));
    const QMap<QString, Qt::Key> keys {{QStringLiteral("Return"), Qt::Key_Return},
                                       {QStringLiteral("Enter"), Qt::Key_Enter},
                                       {QStringLiteral("Space"), Qt::Key_Space},
                                       {QStringLiteral("Escape"), Qt::Key_Escape},
                                       {QStringLiteral("A"), Qt::Key_A}};
    const QMap<QString, QMessageBox::StandardButton> buttons {{QStringLiteral("Ok"), QMessageBox::Ok},
                                                              {QStringLiteral("Apply"), QMessageBox::Apply},
                                                              {QStringLiteral("Discard"), QMessageBox::Discard},
                                                              {QStringLiteral("Reset"), QMessageBox::Reset}};
    const int result = execWith(sheet, [&] {
        QVERIFY(sheet->isVisible());
        QVERIFY(sheet->parentWidget()->isVisible()); // the mask
        if (buttons.contains(action)) {
            QTest::mouseClick(sheet->button(buttons[action]), Qt::LeftButton);
        } else if (keys.contains(action)) {
            typeKey(window.get(), keys[action]);
        } else if (action.startsWith(QLatin1String("window "))) {
            QTest::keyClick(window.get(), keys[action.mid(7)]);
        } else if (action.startsWith(QLatin1String("focus Discard, "))) {
            sheet->button(QMessageBox::Discard)->setFocus();
            QCOMPARE(QApplication::focusWidget(), sheet->button(QMessageBox::Discard));
            typeKey(window.get(), keys[action.mid(15)]);
        } else if (action == QLatin1String("done")) {
            sheet->done(5);
        } else {
            sheet->quit();
        }
        if (sheet->isVisible())
            sheet->done(StillOpen);
    });
    QCOMPARE(result, expected);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toInt(), expected);
    QVERIFY(!sheet->isVisible());
    QVERIFY(!sheet->parentWidget()->isVisible());
}

void TestMessages::userCloseIsRefused()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), window.get()));
    bool openAfterClose = false;
    const int result = execWith(sheet, [&] {
        userClose(window.get());
        openAfterClose = window->isVisible() && sheet->isVisible();
        QTest::mouseClick(sheet->button(QMessageBox::Apply), Qt::LeftButton);
    });
    QVERIFY(openAfterClose);
    QCOMPARE(result, Apply);

    // Not blocked: the user's close goes through and the sheet ends with 0.
    sheet->setBlockWindowButton(false);
    QCOMPARE(execWith(sheet, [&] { userClose(window.get()); }), 0);
    QVERIFY(!window->isVisible());
}

void TestMessages::windowClosedByApplicationEndsSheet()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), window.get()));
    QSignalSpy finished(sheet, SIGNAL(finished(int)));
    QCOMPARE(execWith(sheet, [&] { window->close(); }), 0);
    QVERIFY(!window->isVisible());
    QCOMPARE(finished.count(), 1);

    auto second = makeWindow();
    auto *input = over(second.get(), new LumoInputSheet(QStringLiteral("Name"), second.get()));
    QCOMPARE(execWith(input, [&] { second->hide(); }), 0);
}

void TestMessages::windowDestroyedDuringExec()
{
    auto *window = makeWindow().release();
    QPointer<LumoMessageSheet> sheet = over(window, new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), window));
    QCOMPARE(execWith(sheet.data(), [&] { delete window; }), 0);
    QVERIFY(sheet.isNull());

    window = makeWindow().release();
    QPointer<LumoInputSheet> input = over(window, new LumoInputSheet(QStringLiteral("Name"), window));
    QCOMPARE(execWith(input.data(), [&] { window->deleteLater(); }), 0);
    QVERIFY(input.isNull());

    // The one-call functions own their sheet; the window may take it down with it.
    window = makeWindow().release();
    QTimer::singleShot(0, qApp, [&] { delete window; });
    QCOMPARE(showConfirmMsg(QStringLiteral("Title"), QStringLiteral("Text"), window), 0);
}

void TestMessages::stackedSheetsEndInOrder()
{
    auto window = makeWindow();
    auto *lower = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Lower"), window.get()));
    LumoMessageSheet *upper = nullptr;
    QStringList returned;
    int upperResult = -1;
    bool lowerStillRuns = false;
    const int lowerResult = execWith(lower, [&] {
        upper = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Information, QStringLiteral("Upper"), window.get()));
        // The upper sheet takes the keys first.
        upperResult = execWith(upper, [&] { QTest::keyClick(window.get(), Qt::Key_Return); });
        returned << QStringLiteral("upper");
        lowerStillRuns = lower->isVisible();
        QTest::keyClick(window.get(), Qt::Key_Escape);
    });
    returned << QStringLiteral("lower");
    QCOMPARE(upperResult, Ok);
    QVERIFY(lowerStillRuns);
    QCOMPARE(lowerResult, Discard);
    QCOMPARE(returned, QStringList({QStringLiteral("upper"), QStringLiteral("lower")}));

    // The lower one ended while the upper one runs: it returns its own code once the upper one is done.
    const int lowerAgain = execWith(lower, [&] {
        upperResult = execWith(upper, [&] {
            lower->done(9);
            upper->done(4);
        });
    });
    QCOMPARE(upperResult, 4);
    QCOMPARE(lowerAgain, 9);

    // Both running when the window goes: both return 0, inner first.
    auto *doomed = window.release();
    QPointer<LumoMessageSheet> lowerGuard = lower, upperGuard = upper;
    const int lowerGone = execWith(lower, [&] { upperResult = execWith(upper, [&] { delete doomed; }); });
    QCOMPARE(upperResult, 0);
    QCOMPARE(lowerGone, 0);
    QVERIFY(lowerGuard.isNull() && upperGuard.isNull());
}

void TestMessages::sheetRunsAgainAfterDone()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), window.get()));
    QCOMPARE(execWith(sheet, [&] { typeKey(window.get(), Qt::Key_Return); }), Apply);
    QCOMPARE(execWith(sheet, [&] { typeKey(window.get(), Qt::Key_Escape); }), Discard);

    sheet->showSheet();
    QVERIFY(sheet->isVisible() && sheet->parentWidget()->isVisible());
    QTest::keyClick(window.get(), Qt::Key_Escape);
    QVERIFY(!sheet->isVisible());
    sheet->showSheet();
    QVERIFY(sheet->isVisible() && sheet->parentWidget()->isVisible());
    sheet->done(3);
    QVERIFY(!sheet->parentWidget()->isVisible());
}

void TestMessages::runningSheetRefusesSecondExec()
{
    testsupport::LogCatcher log;
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), window.get()));
    int inner = -1;
    QCOMPARE(execWith(sheet,
                      [&] {
                          inner = sheet->exec();
                          sheet->done(2);
                      }),
             2);
    QCOMPARE(inner, 0);
    QCOMPARE(log.warnings(), QStringList(QStringLiteral("Cannot run a sheet that is already running")));
}

// ---------------------------------------------------------------------------
// Sizes
// ---------------------------------------------------------------------------

void TestMessages::messageSheetWidth_data()
{
    QTest::addColumn<int>("parentWidth");
    QTest::addColumn<int>("sheetWidth");
    QTest::newRow("1000") << 1000 << 540;
    QTest::newRow("560") << 560 << 520;
    QTest::newRow("541") << 541 << 501;
    QTest::newRow("540 exactly") << 540 << 480;
    QTest::newRow("539") << 539 << 499;
    QTest::newRow("300") << 300 << 260;
}

void TestMessages::messageSheetWidth()
{
    QFETCH(int, parentWidth);
    QFETCH(int, sheetWidth);
    QWidget parent;
    parent.resize(qCeil(dpi() * parentWidth), 400); // logical width parentWidth (up to one device pixel more)
    LumoMessageSheet sheet(LumoMessageSheet::Information, QStringLiteral("Text"), &parent);
    QCOMPARE(sheet.width(), px(sheetWidth));
    QCOMPARE(sheet.minimumWidth(), sheet.maximumWidth());
}

void TestMessages::inputSheetWidth_data()
{
    QTest::addColumn<int>("parentWidth");
    QTest::addColumn<int>("sheetWidth");
    QTest::newRow("400") << 400 << 360;
    QTest::newRow("519") << 519 << 479;
    QTest::newRow("520") << 520 << 480;
    QTest::newRow("1000") << 1000 << 480;
}

void TestMessages::inputSheetWidth()
{
    QFETCH(int, parentWidth);
    QFETCH(int, sheetWidth);
    QWidget parent;
    parent.resize(qCeil(dpi() * parentWidth), 400);
    LumoInputSheet sheet(QStringLiteral("Name"), &parent);
    QCOMPARE(sheet.width(), px(sheetWidth));
}

void TestMessages::layoutMargins_data()
{
    QTest::addColumn<QList<int>>("given");
    QTest::addColumn<QList<int>>("design");
    QTest::newRow("designed example") << QList<int> {5, 30, 10, 12} << QList<int> {0, 20, 0, 2};
    QTest::newRow("all at the allowance") << QList<int> {10, 10, 10, 10} << QList<int> {0, 0, 0, 0};
    QTest::newRow("negative and large") << QList<int> {-50, 11, 110, 9} << QList<int> {0, 1, 100, 0};
    QTest::newRow("odd at 1.5") << QList<int> {13, 15, 17, 19} << QList<int> {3, 5, 7, 9};
}

void TestMessages::layoutMargins()
{
    QFETCH(QList<int>, given);
    QFETCH(QList<int>, design);
    QWidget parent;
    parent.resize(px(800), px(600));
    LumoMessageSheet sheet(LumoMessageSheet::Information, QStringLiteral("Text"), &parent);
    QCOMPARE(sheet.layout()->contentsMargins(), QMargins(px(20), px(20), px(20), px(10)));
    sheet.setLayoutMargins(given[0], given[1], given[2], given[3]);
    QCOMPARE(sheet.layout()->contentsMargins(), QMargins(px(design[0]), px(design[1]), px(design[2]), px(design[3])));
}

void TestMessages::widthHeightAndScrollArea()
{
    QWidget parent;
    parent.resize(px(800), px(600));
    LumoMessageSheet sheet(LumoMessageSheet::Warning, QStringLiteral("Text"), QStringLiteral("Details"), &parent);
    sheet.setWidth(301);
    sheet.setHeight(151);
    QCOMPARE(sheet.width(), px(325));
    QCOMPARE(sheet.height(), px(175));

    sheet.setSpacing(11, 21, 13, 31);
    auto *main = qobject_cast<QBoxLayout *>(sheet.layout());
    QCOMPARE(main->itemAt(main->count() - 1)->widget(), sheet.findChild<QDialogButtonBox *>());
    QCOMPARE(main->itemAt(main->count() - 2)->spacerItem()->sizeHint().height(), px(31));
    sheet.setButtonBoxSpacing(7);
    QCOMPARE(sheet.findChild<QDialogButtonBox *>()->layout()->spacing(), px(7));

    sheet.setScrollArea(301, 101);
    auto *area = sheet.findChild<QScrollArea *>(QStringLiteral("messageSheetScrollArea"));
    QVERIFY(area);
    QCOMPARE(area->size(), QSize(px(301), px(101)));
    QCOMPARE(area->widget()->minimumWidth(), px(277));
    QCOMPARE(area->widget()->maximumWidth(), px(277));
    QVERIFY(area->widget()->isAncestorOf(sheet.findChild<MessageLabel *>(QStringLiteral("messageSheetText"))));
    QVERIFY(area->widget()->isAncestorOf(sheet.findChild<MessageLabel *>(QStringLiteral("messageSheetInformativeText"))));
}

// ---------------------------------------------------------------------------
// Construction and re-initialisation
// ---------------------------------------------------------------------------

void TestMessages::captionsAndSizes()
{
    QWidget parent;
    parent.resize(px(800), px(600));
    LumoMessageSheet sheet(LumoMessageSheet::ConfirmWithReset, QStringLiteral("Text"),
                           MsgBoxCustomBtnText {QStringLiteral("Yes"), QStringLiteral("No"), QStringLiteral("Later")}, &parent);
    auto *apply = qobject_cast<QPushButton *>(sheet.button(QMessageBox::Apply));
    auto *discard = sheet.button(QMessageBox::Discard);
    auto *reset = sheet.button(QMessageBox::Reset);
    QVERIFY(apply && discard && reset);
    QVERIFY(!sheet.button(QMessageBox::Ok));
    QCOMPARE(apply->text(), QStringLiteral("Yes"));
    QCOMPARE(discard->text(), QStringLiteral("No"));
    QCOMPARE(reset->text(), QStringLiteral("Later"));
    QVERIFY(apply->isDefault());
    QCOMPARE(apply->styleSheet(), getStyleSheet("component.apply_button", false));
    QCOMPARE(discard->styleSheet(), getStyleSheet("component.cancel_button", false));
    QCOMPARE(reset->styleSheet(), getStyleSheet("component.reset_button", false));
    for (QAbstractButton *sized : {static_cast<QAbstractButton *>(apply), discard}) {
        QCOMPARE(sized->minimumHeight(), px(32));
        QCOMPARE(sized->maximumHeight(), px(32));
        QCOMPARE(sized->minimumWidth(), px(100));
    }
    // Reset keeps its natural size.
    QCOMPARE(reset->minimumSize(), QSize(0, 0));
    QCOMPARE(reset->maximumHeight(), QWIDGETSIZE_MAX);
    // The sizes hold once the sheet is shown and a button is hovered and focused.
    parent.show();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&parent));
    QTest::mouseMove(discard);
    discard->setFocus();
    QCOMPARE(discard->height(), px(32));
    QCOMPARE(apply->height(), px(32));
    QVERIFY(apply->width() >= px(100));
    QCOMPARE(sheet.styleSheet(), getStyleSheet("component.message_sheet_other", false));

    // Re-initialising brings the default captions back.
    sheet.setIconVisible(false);
    QCOMPARE(sheet.button(QMessageBox::Apply)->text(), QStringLiteral("OK"));
    QCOMPARE(sheet.button(QMessageBox::Discard)->text(), QStringLiteral("Cancel"));
    QCOMPARE(sheet.button(QMessageBox::Reset)->text(), QStringLiteral("Reset"));
    QVERIFY(!sheet.findChild<QLabel *>(QStringLiteral("messageSheetIcon"))->isVisibleTo(&sheet));

    sheet.setMessageType(LumoMessageSheet::Upgrading);
    QCOMPARE(sheet.button(QMessageBox::Apply)->text(), QStringLiteral("Upgrade"));
    QVERIFY(!sheet.button(QMessageBox::Reset));
    sheet.setMessageType(LumoMessageSheet::Processing);
    QVERIFY(sheet.findChild<QDialogButtonBox *>()->buttons().isEmpty());
    QCOMPARE(sheet.styleSheet(), getStyleSheet("component.message_sheet_processing", false));
    sheet.setMessageType(LumoMessageSheet::MessageType(42));
    QVERIFY(sheet.findChild<QDialogButtonBox *>()->buttons().isEmpty());
    QCOMPARE(sheet.styleSheet(), getStyleSheet("component.message_sheet_other", false));
}

void TestMessages::reinitialisedSheetEndsOnce()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), window.get()));
    sheet->setIconVisible(false);
    sheet->setMessageType(LumoMessageSheet::WarningConfirm);
    sheet->setDoubleConfirmCheckBox(false, QStringLiteral("ignored"));
    QSignalSpy finished(sheet, SIGNAL(finished(int)));
    QCOMPARE(execWith(sheet, [&] { QTest::mouseClick(sheet->button(QMessageBox::Discard), Qt::LeftButton); }), Discard);
    QCOMPARE(finished.count(), 1);
}

void TestMessages::textLabelsRecreatedOrKept()
{
    QWidget parent;
    parent.resize(px(800), px(600));
    LumoMessageSheet sheet(LumoMessageSheet::Information, QStringLiteral("One"), QStringLiteral("Details"), &parent);
    QPointer<MessageLabel> text = sheet.findChild<MessageLabel *>(QStringLiteral("messageSheetText"));
    QPointer<MessageLabel> informative = sheet.findChild<MessageLabel *>(QStringLiteral("messageSheetInformativeText"));
    QVERIFY(text && informative);
    sheet.setText(QStringLiteral("Two"), QStringLiteral("QLabel { color: red; }"));
    sheet.setInformativeText(QStringLiteral("More"), QStringLiteral("QLabel { color: red; }"));
    QTRY_VERIFY(text.isNull()); // always a new label
    auto *newText = sheet.findChild<MessageLabel *>(QStringLiteral("messageSheetText"));
    QCOMPARE(newText->text(), QStringLiteral("Two"));
    QCOMPARE(newText->styleSheet(), QStringLiteral("QLabel { color: red; }"));
    QCOMPARE(sheet.findChild<MessageLabel *>(QStringLiteral("messageSheetInformativeText")), informative.data());
    QCOMPARE(informative->text(), QStringLiteral("More"));
    QCOMPARE(informative->styleSheet(), getStyleSheet("component.message_sheet_informative_text", false)); // keeps its first
    sheet.setInformativeText(QString());
    QTRY_VERIFY(informative.isNull());
    sheet.setText(QString());
    QTRY_VERIFY(!sheet.findChild<MessageLabel *>());
}

// ---------------------------------------------------------------------------
// Keyboard focus and the double-confirm box
// ---------------------------------------------------------------------------

void TestMessages::tabCyclesInsideSheet()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(),
                       new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Text"), QStringLiteral("Details"), window.get()));
    QList<QWidget *> forward, backward;
    const int result = execWith(sheet, [&] {
        QWidget *start = QApplication::focusWidget();
        QCOMPARE(start, sheet->findChild<QWidget *>(QStringLiteral("messageSheetText")));
        for (int i = 0; i < 8; ++i) {
            typeKey(window.get(), Qt::Key_Tab);
            forward << QApplication::focusWidget();
        }
        for (int i = 0; i < 8; ++i) {
            typeKey(window.get(), Qt::Key_Backtab);
            backward << QApplication::focusWidget();
        }
        // A Tab that reaches the window itself starts the cycle at the first focusable widget.
        window->setFocus();
        QTest::keyClick(window.get(), Qt::Key_Tab);
        forward << QApplication::focusWidget();
        sheet->quit();
    });
    QCOMPARE(result, 0);
    const QList<QWidget *> cycle {sheet->findChild<QWidget *>(QStringLiteral("messageSheetText")),
                                  sheet->findChild<QWidget *>(QStringLiteral("messageSheetInformativeText")),
                                  sheet->button(QMessageBox::Discard), sheet->button(QMessageBox::Apply)};
    // Every stop is inside the sheet, all four are reached, and the walk repeats with period 4.
    for (QWidget *w : std::as_const(forward))
        QVERIFY2(w && sheet->isAncestorOf(w), w ? qPrintable(w->objectName()) : "no focus");
    for (QWidget *w : cycle)
        QVERIFY(forward.mid(0, 4).contains(w));
    QCOMPARE(forward.mid(4, 4), forward.mid(0, 4));
    // Backtab walks the same cycle the other way.
    QCOMPARE(backward.at(0), forward.at(2));
    QCOMPARE(backward.at(1), forward.at(1));
    QCOMPARE(backward.at(2), forward.at(0));
    QCOMPARE(forward.at(8), sheet->button(QMessageBox::Discard)); // first focusable: Discard precedes Apply
}

void TestMessages::doubleConfirm()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Confirm, QStringLiteral("Delete?"), window.get()));
    sheet->setDoubleConfirmCheckBox(true, QStringLiteral("I understand"));
    QAbstractButton *apply = sheet->button(QMessageBox::Apply);
    auto *box = sheet->findChild<QCheckBox *>(QStringLiteral("messageSheetCheckBox"));
    auto *label = sheet->findChild<ClickableLabel *>(QStringLiteral("messageSheetCheckBoxLabel"));
    QVERIFY(box && label);
    QCOMPARE(label->text(), QStringLiteral("I understand"));
    QVERIFY(!apply->isEnabled());

    bool swallowedWhileDisabled = false;
    QList<bool> states;
    QList<QWidget *> tabStops;
    const int result = execWith(sheet, [&] {
        typeKey(window.get(), Qt::Key_Return);
        swallowedWhileDisabled = sheet->isVisible();
        for (int i = 0; i < 6; ++i) {
            typeKey(window.get(), Qt::Key_Tab);
            tabStops << QApplication::focusWidget();
        }
        QTest::mouseClick(box, Qt::LeftButton);
        states << apply->isEnabled();
        QTest::mouseClick(box, Qt::LeftButton);
        states << apply->isEnabled();
        QTest::mouseClick(label, Qt::LeftButton);
        states << apply->isEnabled() << box->isChecked();
        QTest::mouseClick(apply, Qt::LeftButton);
    });
    QVERIFY(swallowedWhileDisabled);
    // Tab passes over the disabled Apply and still reaches the text, box and Cancel.
    QVERIFY(!tabStops.contains(apply));
    QVERIFY(tabStops.contains(box));
    QVERIFY(tabStops.contains(sheet->button(QMessageBox::Discard)));
    QVERIFY(tabStops.contains(sheet->findChild<QWidget *>(QStringLiteral("messageSheetText"))));
    QCOMPARE(tabStops.mid(3, 3), tabStops.mid(0, 3));
    QCOMPARE(states, QList<bool>({true, false, true, true}));
    QCOMPARE(result, Apply);

    // Re-initialised: unticked again, the label keeps its text; switched off: Apply is free.
    sheet->setIconVisible(false);
    QVERIFY(!sheet->button(QMessageBox::Apply)->isEnabled());
    QVERIFY(!box->isChecked());
    QCOMPARE(label->text(), QStringLiteral("I understand"));
    sheet->setDoubleConfirmCheckBox(false, QStringLiteral("off"));
    QVERIFY(sheet->button(QMessageBox::Apply)->isEnabled());
    QVERIFY(!box->parentWidget()->isVisibleTo(sheet));

    // Off on a sheet that never had the box: nothing to label, nothing breaks.
    LumoMessageSheet plain(LumoMessageSheet::Confirm, QStringLiteral("Text"), window.get());
    plain.setDoubleConfirmCheckBox(false, QStringLiteral("nowhere"));
    QVERIFY(!plain.findChild<QCheckBox *>());
    QVERIFY(plain.button(QMessageBox::Apply)->isEnabled());
}

void TestMessages::badMovieWarns()
{
    testsupport::LogCatcher log;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("spinner.gif"));
    QVERIFY(testsupport::writeFile(path, QByteArray("not an animation")));
    QWidget parent;
    parent.resize(px(800), px(600));
    LumoMessageSheet sheet(QStringLiteral("Working"), path, &parent);
    QCOMPARE(log.warnings(), QStringList(QStringLiteral("Cannot read the animation \"%1\"").arg(path)));
    QVERIFY(sheet.findChild<QDialogButtonBox *>()->buttons().isEmpty());
    QCOMPARE(sheet.findChild<QLabel *>(QStringLiteral("messageSheetIcon"))->movie()->scaledSize(),
             QSize(qRound(dpi() * 32), qRound(dpi() * 32)));
}

// ---------------------------------------------------------------------------
// Input sheet
// ---------------------------------------------------------------------------

void TestMessages::inputSheet()
{
    auto window = makeWindow();
    auto *sheet = over(window.get(), new LumoInputSheet(QString(), window.get()));
    auto *label = sheet->findChild<MessageLabel *>();
    QCOMPARE(label->text(), QStringLiteral("<p style='line-height: %1px;'></p>").arg(px(20)));
    QCOMPARE(sheet->getLineEdit()->height(), px(28));
    QCOMPARE(sheet->button(QMessageBox::Ok)->text(), QStringLiteral("OK"));
    QCOMPARE(sheet->button(QMessageBox::Discard)->text(), QStringLiteral("Cancel"));

    // Return in the line edit reaches the window and clicks Ok; Space is typed.
    int result = execWith(sheet, [&] {
        QCOMPARE(QApplication::focusWidget(), sheet->getLineEdit());
        QTest::keyClicks(sheet->getLineEdit(), QStringLiteral("new name"));
        typeKey(window.get(), Qt::Key_Return);
    });
    QCOMPARE(result, Ok);
    QCOMPARE(sheet->getContent(), QStringLiteral("new name"));

    result = execWith(sheet, [&] { typeKey(window.get(), Qt::Key_Escape); });
    QCOMPARE(result, Discard);
    result = execWith(sheet, [&] {
        QTest::keyClick(window.get(), Qt::Key_A); // swallowed at the window
        QVERIFY(sheet->isVisible());
        QTest::keyClick(window.get(), Qt::Key_Space);
    });
    QCOMPARE(result, Ok);
    result = execWith(sheet, [&] {
        userClose(window.get());
        QVERIFY(window->isVisible());
        sheet->quit();
    });
    QCOMPARE(result, 0);
    QCOMPARE(execWith(sheet, [&] { QTest::mouseClick(sheet->button(QMessageBox::Discard), Qt::LeftButton); }), Discard);
}

// ---------------------------------------------------------------------------
// The one-call functions without a parent: a plain QMessageBox
// ---------------------------------------------------------------------------

void TestMessages::fallbackMessageBoxes_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<bool>("showIcon");
    QTest::addColumn<int>("click");
    QTest::addColumn<int>("icon");
    QTest::addColumn<QString>("styleKey");
    QTest::addColumn<int>("expected");

    const QString info = QStringLiteral("component.info_message_box");
    const QString warning = QStringLiteral("component.warning_message_box");
    const QString confirm = QStringLiteral("component.confirm_message_box");
    QTest::newRow("info") << "info" << true << Ok << int(QMessageBox::Information) << info << -1;
    QTest::newRow("info without icon") << "info" << false << Ok << int(QMessageBox::NoIcon) << info << -1;
    QTest::newRow("warning") << "warning" << true << Ok << int(QMessageBox::Warning) << warning << -1;
    QTest::newRow("warning informative") << "warningInformative" << true << Ok << int(QMessageBox::Warning) << warning << -1;
    QTest::newRow("upgrading") << "upgrading" << true << Ok << int(QMessageBox::Warning)
                               << QStringLiteral("component.upgrading_message_box") << -1;
    QTest::newRow("confirm yes") << "confirm" << true << Apply << int(QMessageBox::Question) << confirm << Apply;
    QTest::newRow("confirm no") << "confirm" << true << int(QMessageBox::Cancel) << int(QMessageBox::Question) << confirm
                                << int(QMessageBox::Cancel);
    QTest::newRow("custom yes") << "custom" << false << Apply << int(QMessageBox::NoIcon) << confirm << Apply;
}

void TestMessages::fallbackMessageBoxes()
{
    QFETCH(QString, function);
    QFETCH(bool, showIcon);
    QFETCH(int, click);
    QFETCH(int, icon);
    QFETCH(QString, styleKey);
    QFETCH(int, expected);

    SeenBox seen;
    QTimer poll;
    poll.setInterval(10);
    connect(&poll, &QTimer::timeout, this, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        poll.stop();
        seen.seen = true;
        seen.title = box->windowTitle();
        seen.text = box->text();
        seen.informative = box->informativeText();
        seen.icon = box->icon();
        seen.style = box->styleSheet();
        for (QAbstractButton *b : box->buttons())
            seen.buttons.insert(int(box->standardButton(b)), {b->text(), b->styleSheet()});
        if (QAbstractButton *target = box->button(QMessageBox::StandardButton(click)))
            QTest::mouseClick(target, Qt::LeftButton);
        else
            box->done(Hung);
    });
    poll.start();

    const QString title = QStringLiteral("Title");
    const QString text = QStringLiteral("Text");
    int result = -1;
    if (function == QLatin1String("info"))
        showInfoMsg(title, text, nullptr, showIcon);
    else if (function == QLatin1String("warning"))
        showWarningMsg(title, text, nullptr, showIcon);
    else if (function == QLatin1String("warningInformative"))
        showWarningMsg(title, text, QStringLiteral("Details"), nullptr, showIcon);
    else if (function == QLatin1String("upgrading"))
        showUpgradingMsg(title, text, nullptr, showIcon);
    else if (function == QLatin1String("confirm"))
        result = showConfirmMsg(title, text, nullptr, showIcon);
    else
        result = showConfirmMsgCustomBtn(title, text, MsgBoxCustomBtnText {QStringLiteral("Go"), QStringLiteral("Stop"), QString()},
                                         nullptr, showIcon);

    QVERIFY(seen.seen);
    QCOMPARE(result, expected);
    QCOMPARE(seen.title, title);
    QCOMPARE(seen.text, text);
    QCOMPARE(seen.informative, function == QLatin1String("warningInformative") ? QStringLiteral("Details") : QString());
    QCOMPARE(int(seen.icon), icon);
    QCOMPARE(seen.style, getStyleSheet(styleKey, false));
    const QString apply = getStyleSheet("component.apply_button", false);
    const QString cancel = getStyleSheet("component.cancel_button", false);
    QMap<int, QPair<QString, QString>> buttons;
    if (function == QLatin1String("confirm")) {
        buttons.insert(int(QMessageBox::Cancel), {QStringLiteral("Cancel"), cancel});
        buttons.insert(Apply, {QStringLiteral("OK"), apply});
    } else if (function == QLatin1String("custom")) {
        buttons.insert(int(QMessageBox::Cancel), {QStringLiteral("Stop"), cancel});
        buttons.insert(Apply, {QStringLiteral("Go"), apply});
    } else {
        buttons.insert(Ok, {QStringLiteral("OK"), apply});
    }
    QCOMPARE(seen.buttons, buttons);
}

// ---------------------------------------------------------------------------
// Countdown message box
// ---------------------------------------------------------------------------

void TestMessages::countdownSteps()
{
    LumoCountdownMessageBox box(3, nullptr);
    QAbstractButton *ok = box.button(QMessageBox::Ok);
    QCOMPARE(ok->text(), QStringLiteral("OK(3)"));
    QCOMPARE(box.button(QMessageBox::Discard)->text(), QStringLiteral("Cancel"));
    QCOMPARE(box.defaultButton(), ok);
    QCOMPARE(box.styleSheet(), getStyleSheet("component.info_message_box", false));
    QCOMPARE(ok->styleSheet(), getStyleSheet("component.apply_button", false));
    QSignalSpy clicked(&box, SIGNAL(buttonClicked(QAbstractButton *)));

    box.show(); // the number drops at once
    QCOMPARE(ok->text(), QStringLiteral("OK(2)"));
    box.slotTick();
    QCOMPARE(ok->text(), QStringLiteral("OK(1)"));
    box.hide();
    box.show(); // showing again is one more step
    QCOMPARE(ok->text(), QStringLiteral("OK(0)"));
    QCOMPARE(clicked.count(), 0);
    box.slotTick(); // the count has run out: Ok is clicked
    QTRY_COMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).value<QAbstractButton *>(), ok);
    QCOMPARE(ok->text(), QStringLiteral("OK(0)"));
    QVERIFY(!box.isVisible());
}

void TestMessages::countdownRunsOut_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("clicks");
    QTest::newRow("one second") << 1 << "OK(1)" << 1;
    QTest::newRow("zero") << 0 << "OK(0)" << 2;
    QTest::newRow("negative") << -3 << "OK(-3)" << 2;
}

void TestMessages::countdownRunsOut()
{
    QFETCH(int, seconds);
    QFETCH(QString, before);
    QFETCH(int, clicks);
    LumoCountdownMessageBox box(seconds, nullptr);
    QCOMPARE(box.button(QMessageBox::Ok)->text(), before);
    QSignalSpy clicked(&box, SIGNAL(buttonClicked(QAbstractButton *)));
    int result = -1;
    QTimer::singleShot(0, &box, [&] { QCOMPARE(box.button(QMessageBox::Ok)->text(), seconds > 0 ? QStringLiteral("OK(0)") : before); });
    result = box.exec();
    QCOMPARE(result, Ok);
    // A count at or below 0 clicks at show, and once more at the next tick; then the timer stays stopped.
    QTRY_COMPARE(clicked.count(), clicks);
    QTest::qWait(1200);
    QCOMPARE(clicked.count(), clicks);
}

void TestMessages::countdownCancel()
{
    LumoCountdownMessageBox box(30, nullptr);
    QTimer::singleShot(0, &box, [&] { QTest::mouseClick(box.button(QMessageBox::Discard), Qt::LeftButton); });
    QCOMPARE(box.exec(), Discard);
    QCOMPARE(box.button(QMessageBox::Ok)->text(), QStringLiteral("OK(29)"));
}

QTEST_MAIN(TestMessages)
#include "tst_messages.moc"

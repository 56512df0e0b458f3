// Message sheet, input sheet, the one-call message functions and the countdown box:
// result codes for every way a sheet ends, sizes, keyboard, focus and lifetime.

#include "testsupport.h"

#include <lumo/lumo.h>

#include <QtTest/qtestspontaneevent.h>
#include <QtTest>
#include <QtWidgets>

#include <functional>
#include <memory>
#include <type_traits>

namespace
{
constexpr int Ok = QMessageBox::Ok;
constexpr int Apply = QMessageBox::Apply;
constexpr int Discard = QMessageBox::Discard;
constexpr int Hung = -999; // the watchdog's code: the sheet did not end by itself
constexpr int StillOpen = 77; // the action left the sheet running; it was then ended with this code
constexpr int InputSheet = -1; // in the "type" column: the input sheet

using testsupport::px;

QString str(const char *s)
{
    return QString::fromUtf8(s);
}

// Changes to a label's text, font and geometry, applied in order by messageLabelMeasuresAsQLabel.
using LabelChange = QPair<const char *, std::function<void(QLabel *)>>;
const QList<LabelChange> &labelChanges()
{
    static const QList<LabelChange> changes = {
        {"wrapped selectable text",
         [](QLabel *l) {
             l->setWordWrap(true);
             l->setTextInteractionFlags(Qt::TextSelectableByMouse);
             l->setText(str("A text long enough to wrap at the narrower of the widths asked for."));
         }},
        {"text", [](QLabel *l) { l->setText(l->text() + str(" And <b>some</b> more.")); }},
        {"font",
         [](QLabel *l) {
             QFont font = l->font();
             font.setPointSizeF(font.pointSizeF() * 1.5);
             l->setFont(font);
         }},
        {"fixed to its own height", [](QLabel *l) { l->setFixedHeight(l->heightForWidth(px(120))); }},
        {"height freed", [](QLabel *l) { l->setMinimumHeight(0), l->setMaximumHeight(QWIDGETSIZE_MAX); }},
        {"large minimum", [](QLabel *l) { l->setMinimumSize(px(300), px(200)); }},
        {"minimum gone, margin", [](QLabel *l) { l->setMinimumSize(0, 0), l->setMargin(px(7)); }},
        {"indent", [](QLabel *l) { l->setIndent(px(12)); }},
        {"frame", [](QLabel *l) { l->setFrameStyle(QFrame::Box), l->setLineWidth(3), l->setIndent(-1); }},
        {"contents margins", [](QLabel *l) { l->setContentsMargins(1, 2, 3, 4); }},
        {"style sheet", [](QLabel *l) { l->setStyleSheet(str("QLabel { font-size: 20px; padding: 5px; }")); }},
        {"plain text", [](QLabel *l) { l->setTextFormat(Qt::PlainText); }},
        {"right to left", [](QLabel *l) { l->setLayoutDirection(Qt::RightToLeft); }},
        {"not selectable", [](QLabel *l) { l->setTextInteractionFlags(Qt::NoTextInteraction); }},
        {"maximum width", [](QLabel *l) { l->setMaximumWidth(px(150)); }},
        {"unwrapped", [](QLabel *l) { l->setWordWrap(false); }},
    };
    return changes;
}

// A shown, active window with a focusable button of its own behind the sheets.
std::unique_ptr<QWidget> makeWindow()
{
    auto window = std::make_unique<QWidget>();
    window->resize(px(800), px(600));
    new QPushButton(str("Behind"), window.get());
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

LumoMessageSheet *confirmOver(QWidget *window, const QString &details = QString())
{
    return over(window, new LumoMessageSheet(LumoMessageSheet::Confirm, str("Text"), details, window));
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

// Runs @p action on the modal message box once the coming exec() shows it.
void whenModal(const std::function<void(QMessageBox *)> &action)
{
    QTimer::singleShot(0, qApp, [action] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            action(box);
    });
}

// Asks for icons on dialog buttons, as some platforms (X11 desktops) do.
class IconStyle : public QProxyStyle
{
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *data) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 1 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

// A key as the user types it: to the focused widget, from where it propagates.
void typeKey(QWidget *window, Qt::Key key)
{
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : window, key);
}

// What the title bar's close button delivers: a spontaneous close to the native window.
void userClose(QWidget *window)
{
    QCloseEvent close;
    QSpontaneKeyEvent::setSpontaneous(&close);
    QApplication::sendEvent(window->windowHandle(), &close);
}

// Runs @p sheet, does @p action ("<verb> <argument>") inside exec() and checks the code, the
// signal, and that sheet and mask are hidden, or gone with the window.
template<typename Sheet> void endSheet(Sheet *sheet, std::unique_ptr<QWidget> &window, const QByteArray &action, int expected)
{
    constexpr bool input = std::is_same_v<Sheet, LumoInputSheet>;
    QPointer<Sheet> guard = sheet;
    QPointer<QWidget> mask = sheet->parentWidget();
    QSignalSpy finished(sheet, SIGNAL(finished(int)));
    const QList<QByteArray> words = action.split(' ');
    const QByteArray &verb = words.first(), arg = words.value(1);
    const auto key = Qt::Key(QMetaEnum::fromType<Qt::Key>().keyToValue(("Key_" + arg).constData()));
    const auto button = QMessageBox::StandardButton(QMetaEnum::fromType<QMessageBox::StandardButtons>().keyToValue(arg.constData()));
    const QHash<QByteArray, std::function<void()>> actions {
        {"click", [&] { QTest::mouseClick(sheet->button(button), Qt::LeftButton); }},
        {"key", [&] { typeKey(window.get(), key); }},
        {"windowKey", [&] { QTest::keyClick(window.get(), key); }},
        {"discardFocused",
         [&] {
             sheet->button(QMessageBox::Discard)->setFocus();
             QCOMPARE(QApplication::focusWidget(), sheet->button(QMessageBox::Discard));
             typeKey(window.get(), key);
         }},
        {"done", [&] { sheet->done(5); }},
        {"quit", [&] { sheet->quit(); }},
        {"close", [&] { window->close(); }},
        {"hide", [&] { window->hide(); }},
        {"delete", [&] { delete window.release(); }},
        {"deleteLater", [&] { window.release()->deleteLater(); }},
        {"userClose", [&] { userClose(window.get()); }},
        {"unblockedClose",
         [&] {
             sheet->setBlockWindowButton(false);
             userClose(window.get());
         }},
    };
    QVERIFY2(actions.contains(verb), action.constData());
    const int result = execWith(sheet, [&] {
        QVERIFY(sheet->isVisible() && mask->isVisible());
        if constexpr (input) {
            QCOMPARE(QApplication::focusWidget(), sheet->getLineEdit());
            QTest::keyClicks(sheet->getLineEdit(), str("new name"));
        }
        actions[verb]();
        if (window && sheet->isVisible())
            sheet->done(StillOpen);
    });
    QCOMPARE(result, expected);
    QVERIFY(window || guard.isNull()); // a destroyed window takes the sheet with it
    if (!window)
        return;
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toInt(), expected);
    QVERIFY(!sheet->isVisible() && !mask->isVisible());
    QCOMPARE(window->isVisible(), verb != "close" && verb != "hide" && verb != "unblockedClose");
    if constexpr (input)
        QCOMPARE(sheet->getContent(), str("new name"));
}

}

class TestMessages : public QObject
{
    Q_OBJECT
    QTemporaryDir userData;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(userData.isValid());
        testsupport::startWithDefaultTheme(userData);
        QApplication::setQuitOnLastWindowClosed(false);
        QApplication::setStyle(new IconStyle);
        QCOMPARE(DPIinfo::getInstance()->getDPI(), testsupport::expectedScale());
    }

    void cleanup()
    {
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
    }

    void resultCodes_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("expected");
        using S = LumoMessageSheet;
        QTest::newRow("info ok") << int(S::Information) << "click Ok" << Ok;
        QTest::newRow("info return") << int(S::Information) << "key Return" << Ok;
        QTest::newRow("info enter") << int(S::Information) << "key Enter" << Ok;
        QTest::newRow("info space") << int(S::Information) << "key Space" << Ok;
        QTest::newRow("info escape swallowed") << int(S::Information) << "key Escape" << StillOpen;
        QTest::newRow("info other key swallowed") << int(S::Information) << "key A" << StillOpen;
        QTest::newRow("confirm apply") << int(S::Confirm) << "click Apply" << Apply;
        QTest::newRow("confirm discard") << int(S::Confirm) << "click Discard" << Discard;
        QTest::newRow("confirm return") << int(S::Confirm) << "key Return" << Apply;
        QTest::newRow("confirm escape") << int(S::Confirm) << "key Escape" << Discard;
        QTest::newRow("confirm escape at window") << int(S::Confirm) << "windowKey Escape" << Discard;
        QTest::newRow("confirm return on discard") << int(S::Confirm) << "discardFocused Return" << Apply;
        QTest::newRow("confirm space on discard") << int(S::Confirm) << "discardFocused Space" << Discard;
        QTest::newRow("reset") << int(S::ConfirmWithReset) << "click Reset" << int(QMessageBox::Reset);
        QTest::newRow("notice return swallowed") << int(S::AppNotice) << "key Return" << StillOpen;
        QTest::newRow("processing escape swallowed") << int(S::Processing) << "key Escape" << StillOpen;
        QTest::newRow("done") << int(S::Confirm) << "done" << 5;
        QTest::newRow("quit") << int(S::Confirm) << "quit" << 0;
        QTest::newRow("user close refused") << int(S::Confirm) << "userClose" << StillOpen;
        QTest::newRow("user close not blocked") << int(S::Confirm) << "unblockedClose" << 0;
        QTest::newRow("window closed") << int(S::Confirm) << "close" << 0;
        QTest::newRow("window destroyed") << int(S::Confirm) << "delete" << 0;
        QTest::newRow("input return") << InputSheet << "key Return" << Ok;
        QTest::newRow("input escape") << InputSheet << "key Escape" << Discard;
        QTest::newRow("input discard") << InputSheet << "click Discard" << Discard;
        QTest::newRow("input space at window") << InputSheet << "windowKey Space" << Ok;
        QTest::newRow("input key at window swallowed") << InputSheet << "windowKey A" << StillOpen;
        QTest::newRow("input quit") << InputSheet << "quit" << 0;
        QTest::newRow("input user close refused") << InputSheet << "userClose" << StillOpen;
        QTest::newRow("input window hidden") << InputSheet << "hide" << 0;
        QTest::newRow("input window destroyed later") << InputSheet << "deleteLater" << 0;
    }

    void resultCodes()
    {
        QFETCH(int, type);
        QFETCH(QString, action);
        QFETCH(int, expected);
        auto window = makeWindow();
        if (type == InputSheet)
            endSheet(over(window.get(), new LumoInputSheet(str("Name"), window.get())), window, action.toLatin1(), expected);
        else
            endSheet(over(window.get(), new LumoMessageSheet(LumoMessageSheet::MessageType(type), str("Text"), window.get())), window,
                     action.toLatin1(), expected);
    }

    void stackedSheets()
    {
        auto window = makeWindow();
        auto *lower = confirmOver(window.get());
        auto *upper = over(window.get(), new LumoMessageSheet(LumoMessageSheet::Information, str("Upper"), window.get()));
        int upperResult = -1;
        bool lowerRunsOn = false;
        // The upper sheet takes the keys first; the lower one runs on after it.
        int lowerResult = execWith(lower, [&] {
            upperResult = execWith(upper, [&] { QTest::keyClick(window.get(), Qt::Key_Return); });
            lowerRunsOn = lower->isVisible();
            QTest::keyClick(window.get(), Qt::Key_Escape);
        });
        QVERIFY(lowerRunsOn);
        QCOMPARE(QList<int>({upperResult, lowerResult}), QList<int>({Ok, Discard}));

        // The lower one ended while the upper one runs: it returns its own code once the upper one is done.
        lowerResult = execWith(lower, [&] {
            upperResult = execWith(upper, [&] {
                lower->done(9);
                upper->done(4);
            });
        });
        QCOMPARE(QList<int>({upperResult, lowerResult}), QList<int>({4, 9}));

        // Both running when the window goes: both return 0.
        QPointer<LumoMessageSheet> lowerGuard = lower, upperGuard = upper;
        lowerResult = execWith(lower, [&] { upperResult = execWith(upper, [&] { delete window.release(); }); });
        QCOMPARE(QList<int>({upperResult, lowerResult}), QList<int>({0, 0}));
        QVERIFY(lowerGuard.isNull() && upperGuard.isNull());

        // The one-call functions own their sheet; the window may take it down with it.
        QWidget *owner = makeWindow().release();
        QTimer::singleShot(0, qApp, [&] { delete owner; });
        QCOMPARE(showConfirmMsg(str("Title"), str("Text"), owner), 0);
    }

    void sheetRunsAgainAfterDone()
    {
        testsupport::LogCatcher log;
        auto window = makeWindow();
        auto *sheet = confirmOver(window.get());
        int inner = -1;
        const int result = execWith(sheet, [&] {
            inner = sheet->exec(); // refused while running
            typeKey(window.get(), Qt::Key_Return);
        });
        QCOMPARE(QList<int>({inner, result}), QList<int>({0, Apply}));
        QCOMPARE(log.warnings(), QStringList(str("Cannot run a sheet that is already running")));
        QCOMPARE(execWith(sheet, [&] { typeKey(window.get(), Qt::Key_Escape); }), Discard);
        for (int round = 0; round < 2; ++round) { // shown without exec(), ended by a key
            sheet->showSheet();
            QVERIFY(sheet->isVisible() && sheet->parentWidget()->isVisible());
            QTest::keyClick(window.get(), Qt::Key_Escape);
            QVERIFY(!sheet->isVisible() && !sheet->parentWidget()->isVisible());
        }
    }

    void sheetWidth_data()
    {
        QTest::addColumn<bool>("input");
        QTest::addColumn<int>("parentWidth");
        QTest::addColumn<int>("sheetWidth");
        QTest::newRow("message 1000") << false << 1000 << 540;
        QTest::newRow("message 541") << false << 541 << 501;
        QTest::newRow("message 540 exactly") << false << 540 << 480;
        QTest::newRow("message 539") << false << 539 << 499;
        QTest::newRow("message 300") << false << 300 << 260;
        QTest::newRow("input 400") << true << 400 << 360;
        QTest::newRow("input 519") << true << 519 << 479;
        QTest::newRow("input 520") << true << 520 << 480;
        QTest::newRow("input 1000") << true << 1000 << 480;
    }

    void sheetWidth()
    {
        QFETCH(bool, input);
        QFETCH(int, parentWidth);
        QFETCH(int, sheetWidth);
        QWidget parent;
        parent.resize(qCeil(testsupport::expectedScale() * parentWidth), 400); // logical width parentWidth (up to one device pixel more)
        QWidget *sheet = input ? static_cast<QWidget *>(new LumoInputSheet(str("Name"), &parent))
                               : new LumoMessageSheet(LumoMessageSheet::Information, str("Text"), &parent);
        QCOMPARE(sheet->width(), px(sheetWidth));
        QCOMPARE(sheet->minimumWidth(), sheet->maximumWidth());
    }

    void layoutMargins_data()
    {
        QTest::addColumn<QMargins>("given");
        QTest::addColumn<QMargins>("design"); // scaled and truncated: odd ones differ at 1.5
        QTest::newRow("allowance subtracted") << QMargins(5, 30, 10, 12) << QMargins(0, 20, 0, 2);
        QTest::newRow("all at the allowance") << QMargins(10, 10, 10, 10) << QMargins(0, 0, 0, 0);
        QTest::newRow("negative and large") << QMargins(-50, 11, 110, 9) << QMargins(0, 1, 100, 0);
        QTest::newRow("odd at 1.5") << QMargins(13, 15, 17, 19) << QMargins(3, 5, 7, 9);
    }

    void layoutMargins()
    {
        QFETCH(QMargins, given);
        QFETCH(QMargins, design);
        QWidget parent;
        LumoMessageSheet sheet(LumoMessageSheet::Information, str("Text"), &parent);
        QCOMPARE(sheet.layout()->contentsMargins(), QMargins(px(20), px(20), px(20), px(10)));
        sheet.setLayoutMargins(given.left(), given.top(), given.right(), given.bottom());
        QCOMPARE(sheet.layout()->contentsMargins(), QMargins(px(design.left()), px(design.top()), px(design.right()), px(design.bottom())));
    }

    void buttonsAndSizes()
    {
        QWidget parent;
        parent.resize(px(800), px(600));
        LumoMessageSheet sheet(LumoMessageSheet::ConfirmWithReset, str("Text"), MsgBoxCustomBtnText {str("Yes"), str("No"), str("Later")},
                               &parent);
        const auto captions = [&] {
            QStringList texts;
            for (auto which : {QMessageBox::Apply, QMessageBox::Discard, QMessageBox::Reset, QMessageBox::Ok})
                texts << (sheet.button(which) ? sheet.button(which)->text() : str("-"));
            return texts;
        };
        QCOMPARE(captions(), QStringList({str("Yes"), str("No"), str("Later"), str("-")}));
        // The sizes hold once shown in a mask, which re-polishes the sheet, with a button
        // hovered and focused; Reset keeps its natural size.
        parent.show();
        LumoMask::createMask(&sheet, &parent, QColor(0, 0, 0, 20));
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&parent));
        QTest::mouseMove(sheet.button(QMessageBox::Discard));
        sheet.button(QMessageBox::Discard)->setFocus();
        for (auto which : {QMessageBox::Apply, QMessageBox::Discard})
            QCOMPARE(QSize(sheet.button(which)->minimumWidth(), sheet.button(which)->height()), QSize(px(100), px(32)));
        QCOMPARE(sheet.button(QMessageBox::Reset)->minimumSize(), QSize(0, 0));
        QCOMPARE(sheet.button(QMessageBox::Reset)->maximumHeight(), QWIDGETSIZE_MAX);
        sheet.setIconVisible(false); // re-initialised: the default captions are back
        QCOMPARE(captions(), QStringList({str("OK"), str("Cancel"), str("Reset"), str("-")}));

        // An unknown type: no buttons, the neutral style.
        sheet.setMessageType(LumoMessageSheet::MessageType(42));
        QVERIFY(sheet.findChild<QDialogButtonBox *>()->buttons().isEmpty());
        QCOMPARE(sheet.styleSheet(), getStyleSheet("component.message_sheet_other", false));
    }

    void messageLabelMeasuresAsQLabel_data()
    {
        QTest::addColumn<int>("steps"); // how many of labelChanges() are applied, in order
        for (int i = 0; i < int(labelChanges().size()); ++i)
            QTest::newRow(labelChanges().at(i).first) << i + 1;
    }

    void messageLabelMeasuresAsQLabel()
    {
        // A message label keeps its size answers; whatever changes must reach them.
        QFETCH(int, steps);
        MessageLabel kept;
        QLabel plain;
        for (int i = 0; i < steps; ++i) {
            for (QLabel *label : {static_cast<QLabel *>(&kept), &plain})
                labelChanges().at(i).second(label);
            QCOMPARE(kept.sizeHint(), plain.sizeHint()); // asked between the changes too, to be kept
            QCOMPARE(kept.heightForWidth(px(120)), plain.heightForWidth(px(120)));
        }
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(kept.sizeHint(), plain.sizeHint());
            QCOMPARE(kept.minimumSizeHint(), plain.minimumSizeHint());
            for (int width : {0, px(120), px(400), QWIDGETSIZE_MAX})
                QCOMPARE(kept.heightForWidth(width), plain.heightForWidth(width));
        }
    }

    void settersTwiceLookAsOnce_data()
    {
        // A sheet built as "start" and given the setters once looks like one given them twice.
        QTest::addColumn<LumoMessageSheet::MessageType>("start");
        QTest::addColumn<LumoMessageSheet::MessageType>("type"); // for setMessageType
        QTest::addColumn<bool>("icon"); // for setIconVisible
        using S = LumoMessageSheet;
        QTest::newRow("type") << S::Information << S::ConfirmWithReset << true;
        QTest::newRow("type to processing") << S::Warning << S::AppNotice << true;
        QTest::newRow("icon off") << S::Warning << S::Warning << false;
    }

    void settersTwiceLookAsOnce()
    {
        QFETCH(LumoMessageSheet::MessageType, start);
        QFETCH(LumoMessageSheet::MessageType, type);
        QFETCH(bool, icon);
        QWidget parent;
        parent.resize(px(800), px(600));
        const QString text = str("A text long enough to wrap onto a second line of the sheet at its width, surely.");
        LumoMessageSheet once(start, text, &parent), twice(start, text, &parent);
        for (LumoMessageSheet *sheet : {&once, &twice, &twice}) {
            sheet->setMessageType(type);
            sheet->setIconVisible(icon);
        }
        parent.show();
        QVERIFY(QTest::qWaitForWindowExposed(&parent));
        once.showSheet();
        twice.showSheet();
        QApplication::processEvents();
        QCOMPARE(twice.size(), once.size());
        QCOMPARE(twice.grab().toImage(), once.grab().toImage());
    }

    void tabCycles_data()
    {
        QTest::addColumn<bool>("doubleConfirm");
        QTest::addColumn<QStringList>("cycle"); // from the initially focused text on; buttons by caption
        const QString text = str("messageSheetText"), informative = str("messageSheetInformativeText");
        QTest::newRow("plain") << false << QStringList({text, informative, str("Cancel"), str("OK")});
        QTest::newRow("double confirm skips disabled Apply")
            << true << QStringList({text, informative, str("Cancel"), str("messageSheetCheckBox")});
    }

    void tabCycles()
    {
        QFETCH(bool, doubleConfirm);
        QFETCH(QStringList, cycle);
        auto window = makeWindow();
        auto *sheet = confirmOver(window.get(), str("Details"));
        sheet->setDoubleConfirmCheckBox(doubleConfirm, str("I understand")); // off on a sheet that never had it: nothing breaks
        QCOMPARE(bool(sheet->findChild<QCheckBox *>()), doubleConfirm);
        QStringList walked;
        const auto step = [&](QWidget *to, Qt::Key key) {
            if (to)
                QTest::keyClick(to, key);
            QWidget *w = QApplication::focusWidget();
            walked << (w->objectName().isEmpty() ? qobject_cast<QAbstractButton *>(w)->text() : w->objectName());
        };
        QCOMPARE(execWith(sheet,
                          [&] {
                              step(nullptr, Qt::Key_Tab);
                              for (int i = 0; i < 4 * cycle.size(); ++i)
                                  step(QApplication::focusWidget(), i < 2 * cycle.size() ? Qt::Key_Tab : Qt::Key_Backtab);
                              window->setFocus();
                              step(window.get(), Qt::Key_Tab);
                              sheet->quit();
                          }),
                 0);
        // Twice round with Tab, twice back with Backtab, then a Tab that reached the window itself.
        QStringList expected = cycle + cycle + cycle.mid(0, 1);
        for (int i = 0; i < 2 * cycle.size(); ++i)
            expected << cycle.at((2 * cycle.size() - 1 - i) % cycle.size());
        QCOMPARE(walked, expected << str("Cancel")); // the first focusable widget
    }

    void doubleConfirm()
    {
        auto window = makeWindow();
        auto *sheet = confirmOver(window.get());
        sheet->setDoubleConfirmCheckBox(true, str("I understand"));
        QAbstractButton *apply = sheet->button(QMessageBox::Apply);
        auto *box = sheet->findChild<QCheckBox *>(str("messageSheetCheckBox"));
        auto *label = sheet->findChild<ClickableLabel *>(str("messageSheetCheckBoxLabel"));
        QVERIFY(box && label && !apply->isEnabled());
        QSignalSpy finished(sheet, SIGNAL(finished(int)));
        QList<bool> states;
        QCOMPARE(execWith(sheet,
                          [&] {
                              typeKey(window.get(), Qt::Key_Return); // swallowed while Apply is disabled
                              states << sheet->isVisible();
                              for (QWidget *w : std::initializer_list<QWidget *> {box, box, label}) {
                                  QTest::mouseClick(w, Qt::LeftButton);
                                  states << apply->isEnabled();
                              }
                              QTest::mouseClick(apply, Qt::LeftButton);
                          }),
                 Apply);
        QCOMPARE(states, QList<bool>({true, true, false, true}));

        // Re-initialised: unticked again, the label keeps its text; switched off: Apply ends the sheet, once.
        sheet->setIconVisible(false);
        QVERIFY(!box->isChecked() && !sheet->button(QMessageBox::Apply)->isEnabled());
        QCOMPARE(label->text(), str("I understand"));
        sheet->setDoubleConfirmCheckBox(false, str("off"));
        QVERIFY(!box->parentWidget()->isVisibleTo(sheet));
        QCOMPARE(execWith(sheet, [&] { QTest::mouseClick(sheet->button(QMessageBox::Apply), Qt::LeftButton); }), Apply);
        QCOMPARE(finished.count(), 2);
    }

    void badMovieWarns()
    {
        testsupport::LogCatcher log;
        QTemporaryDir dir;
        const QString path = dir.filePath(str("spinner.gif"));
        QVERIFY(testsupport::writeFile(path, QByteArray("not an animation")));
        QWidget parent;
        LumoMessageSheet sheet(str("Working"), path, &parent);
        QCOMPARE(log.warnings(), QStringList(str("Cannot read the animation \"%1\"").arg(path)));
        QVERIFY(sheet.findChild<QDialogButtonBox *>()->buttons().isEmpty());
        QCOMPARE(sheet.findChild<QLabel *>(str("messageSheetIcon"))->movie()->scaledSize(), QSize(px(32), px(32)));
    }

    // Without a parent the one-call functions show a plain QMessageBox.
    void fallbackMessageBoxes_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<bool>("showIcon");
        QTest::addColumn<int>("click");
        QTest::addColumn<int>("result");
        QTest::addColumn<QMessageBox::Icon>("icon");
        QTest::addColumn<QString>("look");
        QTest::addColumn<QStringList>("captions"); // in standard-button order
        using B = QMessageBox;
        const QStringList ok {str("OK")}, cancelOk {str("Cancel"), str("OK")};
        QTest::newRow("info") << "info" << true << Ok << -1 << B::Information << "info" << ok;
        QTest::newRow("info without icon") << "info" << false << Ok << -1 << B::NoIcon << "info" << ok;
        QTest::newRow("warning") << "warning" << true << Ok << -1 << B::Warning << "warning" << ok;
        QTest::newRow("warning informative") << "warningInformative" << true << Ok << -1 << B::Warning << "warning" << ok;
        QTest::newRow("upgrading") << "upgrading" << true << Ok << -1 << B::Warning << "upgrading" << ok;
        QTest::newRow("confirm yes") << "confirm" << true << Apply << Apply << B::Question << "confirm" << cancelOk;
        QTest::newRow("confirm no") << "confirm" << true << int(B::Cancel) << int(B::Cancel) << B::Question << "confirm" << cancelOk;
        QTest::newRow("custom yes") << "custom" << false << Apply << Apply << B::NoIcon << "confirm"
                                    << QStringList({str("Stop"), str("Go")});
    }

    void fallbackMessageBoxes()
    {
        QFETCH(QString, function);
        QFETCH(bool, showIcon);
        QFETCH(int, click);
        QFETCH(QString, look);
        QFETCH(QStringList, captions);
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QStringList seen;
        whenModal([&](QMessageBox *box) {
            QMap<int, QString> buttons;
            for (QAbstractButton *b : box->buttons())
                buttons.insert(box->standardButton(b), b->icon().isNull() ? b->text() : b->text() + str(" with an icon"));
            icon = box->icon();
            seen << box->windowTitle() << box->text() << box->informativeText() << box->styleSheet() << buttons.values();
            QTest::mouseClick(box->button(QMessageBox::StandardButton(click)), Qt::LeftButton);
        });
        const QString title = str("Title"), text = str("Text"), details = str("Details");
        int result = -1;
        if (function == QLatin1String("info"))
            showInfoMsg(title, text, nullptr, showIcon);
        else if (function == QLatin1String("warning"))
            showWarningMsg(title, text, nullptr, showIcon);
        else if (function == QLatin1String("warningInformative"))
            showWarningMsg(title, text, details, nullptr, showIcon);
        else if (function == QLatin1String("upgrading"))
            showUpgradingMsg(title, text, nullptr, showIcon);
        else if (function == QLatin1String("confirm"))
            result = showConfirmMsg(title, text, nullptr, showIcon);
        else
            result = showConfirmMsgCustomBtn(title, text, MsgBoxCustomBtnText {str("Go"), str("Stop"), QString()}, nullptr, showIcon);
        QTEST(result, "result");
        QTEST(icon, "icon");
        QCOMPARE(seen,
                 QStringList({title, text, function == QLatin1String("warningInformative") ? details : QString(),
                              getStyleSheet(str("component.%1_message_box").arg(look), false)}) +
                     captions);
    }

    // The style of this program asks for icons on dialog buttons, as X11 desktops do; no Lumo button shows one,
    // and buttons a caller puts on the countdown box take the box's look.
    void buttonsWithoutPlatformIcons()
    {
        QVERIFY(!QDialogButtonBox(QDialogButtonBox::Ok).button(QDialogButtonBox::Ok)->icon().isNull());
        auto window = makeWindow();
        auto *input = over(window.get(), new LumoInputSheet(str("Name"), window.get()));
        auto *sheet = confirmOver(window.get());
        LumoCountdownMessageBox box(30, window.get());
        LumoCountdownMessageBox replaced(30, window.get());
        replaced.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        input->showSheet();
        sheet->showSheet();
        box.show();
        replaced.show();
        const QList<QAbstractButton *> buttons =
            input->findChildren<QAbstractButton *>() + sheet->findChildren<QAbstractButton *>() + box.buttons() + replaced.buttons();
        QCOMPARE(buttons.size(), 8);
        for (QAbstractButton *button : buttons)
            QVERIFY2(button->icon().isNull(), qPrintable(button->text()));
        QCOMPARE(replaced.button(QMessageBox::Ok)->styleSheet(), getStyleSheet("component.apply_button", false));
        QCOMPARE(replaced.button(QMessageBox::Cancel)->styleSheet(), getStyleSheet("component.cancel_button", false));
    }

    void countdownSteps()
    {
        LumoCountdownMessageBox box(3, nullptr);
        QAbstractButton *ok = box.button(QMessageBox::Ok);
        QSignalSpy clicked(&box, SIGNAL(buttonClicked(QAbstractButton *)));
        QStringList captions {ok->text(), box.button(QMessageBox::Discard)->text()};
        box.show(); // the number drops at once
        captions << ok->text();
        box.slotTick();
        captions << ok->text();
        box.hide();
        box.show(); // showing again is one more step
        captions << ok->text();
        QCOMPARE(captions, QStringList({str("OK(3)"), str("Cancel"), str("OK(2)"), str("OK(1)"), str("OK(0)")}));
        QCOMPARE(clicked.count(), 0);
        box.slotTick(); // the count has run out: Ok is clicked
        QTRY_COMPARE(clicked.count(), 1);
        QCOMPARE(clicked.at(0).at(0).value<QAbstractButton *>(), ok);
        QVERIFY(!box.isVisible());
    }

    void countdownEnds_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("shown"); // Ok's caption once shown
        QTest::addColumn<int>("expected");
        QTest::addColumn<int>("clicks");
        QTest::addColumn<bool>("okCancel"); // the caller replaced the buttons with setStandardButtons(Ok | Cancel)
        QTest::newRow("one second") << 1 << "OK(0)" << Ok << 1 << false;
        QTest::newRow("zero") << 0 << "OK(0)" << Ok << 2 << false;
        QTest::newRow("negative") << -3 << "OK(-3)" << Ok << 2 << false;
        QTest::newRow("cancelled") << 30 << "OK(29)" << Discard << 1 << false;
        QTest::newRow("caller's Ok and Cancel") << 1 << "OK(0)" << Ok << 1 << true;
    }

    void countdownEnds()
    {
        QFETCH(int, seconds);
        QFETCH(QString, shown);
        QFETCH(int, expected);
        QFETCH(int, clicks);
        QFETCH(bool, okCancel);
        LumoCountdownMessageBox box(seconds, nullptr);
        QCOMPARE(box.button(QMessageBox::Ok)->text(), str("OK(%1)").arg(seconds));
        if (okCancel) {
            box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
            box.button(QMessageBox::Cancel)->setFocus(); // the count still ends on Ok, the designed default
        }
        box.setText(str("The backup of your files will start automatically when the count runs out."));
        QSignalSpy clicked(&box, SIGNAL(buttonClicked(QAbstractButton *)));
        QString caption;
        bool textFits = false;
        QTimer::singleShot(0, &box, [&] {
            caption = box.button(QMessageBox::Ok)->text();
            const auto *label = box.findChild<QLabel *>(str("qt_msgbox_label"));
            textFits =
                label->wordWrap() ? label->heightForWidth(label->width()) <= label->height() : label->sizeHint().width() <= label->width();
            if (expected == Discard)
                QTest::mouseClick(box.button(QMessageBox::Discard), Qt::LeftButton);
        });
        QTimer::singleShot(10000, &box, [&] { box.done(Hung); }); // a box that never presses itself
        QCOMPARE(box.exec(), expected);
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::Ok));
        QCOMPARE(caption, shown);
        QVERIFY(textFits);
        // A count at or below 0 clicks at show, and once more at the next tick; then the timer stays stopped.
        QTRY_COMPARE(clicked.count(), clicks);
        if (expected == Ok) {
            QTest::qWait(1200);
            QCOMPARE(clicked.count(), clicks);
        }
    }
};

QTEST_MAIN(TestMessages)
#include "tst_messages.moc"

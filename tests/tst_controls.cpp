// Buttons, menus, line edit, labels and the focus walk: looks by kind, DPI rounding,
// icon state switching under real pointer events, menu placement, the label rules
// and the order and exclusions of the focus-chain walk.

#include "testsupport.h"

#include <lumo/controls.h>
#include <lumo/registries.h>

#include <QtTest>
#include <QtWidgets>

#include <array>
#include <functional>
#include <memory>

using WidgetList = QList<QWidget *>;

namespace
{
QPixmap solid(const QString &color, int width = 24, int height = 24)
{
    QPixmap pixmap(width, height);
    pixmap.fill(QColor::fromString(color));
    return pixmap;
}

// Picks the expected value of the scale this run was started for.
int atScale(int at1, int at15, int at2)
{
    const double scale = testsupport::expectedScale();
    return scale < 1.25 ? at1 : scale < 1.75 ? at15 : at2;
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// A one-entry menu; frameless, which keeps the offscreen platform from adding frame margins to its position.
void setUpMenu(LumoMenu &menu)
{
    menu.setWindowFlags(menu.windowFlags() | Qt::FramelessWindowHint);
    menu.setStyleSheet(getStyleSheet("component.menu", false));
    menu.addAction(QStringLiteral("Open"));
}

// A window holding @p target and a free spot for the pointer to go to.
struct PointerWindow {
    QWidget window;
    QWidget *target, *elsewhere = new QWidget;
    bool on = false; // where the pointer was sent last

    explicit PointerWindow(QWidget *t)
        : target(t)
    {
        auto *layout = new QHBoxLayout(&window);
        layout->addWidget(target);
        layout->addWidget(elsewhere);
        elsewhere->setMinimumSize(60, 60);
    }
    bool show()
    {
        // Windows open at the top left; a pointer left there would enter a child at
        // show time without a matching leave later.
        QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight() - QPoint(10, 10));
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            return false;
        QTest::mouseMove(&window, QPoint(1, 1)); // the first move must be a real change of position
        return move(false);
    }
    // Sends the pointer onto the target or off it and waits until the widgets know.
    bool move(bool onTarget)
    {
        on = onTarget;
        QTest::mouseMove(on ? target : elsewhere);
        return QTest::qWaitFor([this] { return target->underMouse() == on && elsewhere->underMouse() != on; });
    }
};

// root (no focus): a (wheel), [layout], frame (click) holding b (strong) and c (no focus),
// hidden (click, hidden) holding d (strong, not hidden itself), [timer], e (click), f (tab).
struct FocusTree {
    QWidget root, stranger;

    FocusTree()
    {
        root.setObjectName(QStringLiteral("root"));
        stranger.setObjectName(QStringLiteral("stranger"));
        add("a", &root, Qt::WheelFocus);
        new QVBoxLayout(&root);
        QWidget *frame = add("frame", &root, Qt::ClickFocus);
        add("b", frame, Qt::StrongFocus);
        add("c", frame, Qt::NoFocus);
        QWidget *hidden = add("hidden", &root, Qt::ClickFocus);
        add("d", hidden, Qt::StrongFocus);
        hidden->hide();
        new QTimer(&root);
        add("e", &root, Qt::ClickFocus);
        add("f", &root, Qt::TabFocus);
        root.show();
        // Tab order differs from child order; the walk follows child order.
        const WidgetList order = pick(words("f e a"));
        QWidget::setTabOrder(order[0], order[1]);
        QWidget::setTabOrder(order[1], order[2]);
    }
    static QWidget *add(const char *name, QWidget *parent, Qt::FocusPolicy policy)
    {
        auto *w = new QWidget(parent);
        w->setObjectName(QString::fromLatin1(name));
        w->setFocusPolicy(policy);
        return w;
    }
    // The widgets of these names; an unknown name (such as "null") gives a null entry.
    WidgetList pick(const QStringList &names)
    {
        WidgetList result;
        for (const QString &name : names)
            result << (name == root.objectName() ? &root : name == stranger.objectName() ? &stranger : root.findChild<QWidget *>(name));
        return result;
    }
    static QStringList names(const WidgetList &list)
    {
        QStringList result;
        for (const QWidget *w : list)
            result << w->objectName();
        return result;
    }
};
}

class TestControls : public QObject
{
    Q_OBJECT
    QTemporaryDir userData;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(userData.isValid());
        testsupport::LogCatcher log;
        testsupport::startWithDefaultTheme(userData);
        QCOMPARE(DPIinfo::getInstance()->getDPR(), testsupport::expectedScale());
        QVERIFY2(log.cannotWarnings().isEmpty(), qPrintable(log.cannotWarnings().join(QLatin1Char('\n'))));
    }

    void cleanup()
    {
        while (QGuiApplication::overrideCursor())
            QGuiApplication::restoreOverrideCursor();
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
    }

    // Kinds outside the table, negative ones included, leave the button unstyled.
    void buttonStyleByKind()
    {
        const QStringList keys = words("apply cancel select_paging nonselect_paging default red");
        for (int kind : {std::numeric_limits<int>::min(), -1, 0, 1, 2, 3, 4, 5, 6}) {
            LumoButton button(QStringLiteral("Save"), kind);
            const QString key = QStringLiteral("component.%1_button").arg(keys.value(kind));
            QCOMPARE(button.styleSheet().isEmpty(), kind < 0 || kind >= keys.size());
            QVERIFY2(button.styleSheet().isEmpty() || button.styleSheet() == getStyleSheet(key, false), qPrintable(key));
            QVERIFY(button.isFlat() && button.sizePolicy() == QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed));
        }
    }

    // Registered by name, so that a form loader can build them.
    void metaTypes()
    {
        for (const char *name : {"LumoCheckBox", "LumoRadioButton", "LumoMenu", "LumoLineEdit", "LumoLabel", "LumoComboBox",
                                 "LumoTimeComboBox", "LumoButtonPath", "LumoFilterBar", "LumoVerticalScrollArea"}) {
            const QMetaType type = QMetaType::fromName(name);
            QVERIFY2(type.isValid(), name);
            std::unique_ptr<QWidget> widget(static_cast<QWidget *>(type.create()));
            QCOMPARE(widget->metaObject()->className(), name);
        }
    }

    void iconSizeFromPixmap_data()
    {
        QTest::addColumn<QSize>("pixmap");
        QTest::addColumn<QSize>("shown");
        QTest::newRow("48x48") << QSize(48, 48) << QSize(atScale(48, 32, 24), atScale(48, 32, 24));
        // 16.67 rounds to 17; 12.5 rounds half away from zero to 13.
        QTest::newRow("25x25") << QSize(25, 25) << QSize(atScale(25, 17, 13), atScale(25, 17, 13));
        QTest::newRow("3x1") << QSize(3, 1) << QSize(atScale(3, 2, 2), atScale(1, 1, 1));
        QTest::newRow("31x20") << QSize(31, 20) << QSize(atScale(31, 21, 16), atScale(20, 13, 10));
    }

    void iconSizeFromPixmap()
    {
        QFETCH(QSize, pixmap);
        QFETCH(QSize, shown);
        LumoIconButton button(solid(QStringLiteral("red"), pixmap.width(), pixmap.height()));
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        QCOMPARE(button.iconSize(), shown);
    }

    void pointerScript_data()
    {
        // Steps run on a widget in a window, "step=state" also checking the state it leaves;
        // steps before "show" run before the window is shown. Icon buttons start red in every
        // state, "icons:h,p,d" replacing the hover, press and disable icons; their state is the
        // colour shown. The image button's state names the variant of its image shown. A link's
        // state is the cursor on top of the application's override stack, "_" for underlined text.
        QTest::addColumn<QString>("widget");
        QTest::addColumn<QString>("script");
        const auto row = [](const char *tag, const char *widget, const char *script) {
            QTest::newRow(tag) << QString::fromLatin1(widget) << QString::fromLatin1(script);
        };
        row("icon follows the pointer; release shows normal while still hovered", "icon",
            "icons:green,blue show=red enter=green press=blue release=red leave=red enter=green leave=red");
        row("one image until replaced; replacements show at the next event", "icon",
            "show=red enter=red press=red release=red icons:yellow,cyan,gray=red press=cyan release=red leave=red enter=yellow "
            "normal=red hover=yellow disable=gray");
        row("focus keeps hover after leave", "icon", "icons:green show=red focus enter=green leave=green unfocus enter=green leave=red");
        row("disabled icon ignores the pointer", "icon",
            "icons:green,blue,gray disable show=gray enter=gray press=gray release=gray leave=gray enable=red parentoff=gray");
        row("image variants by state", "image", "show=normal enter=hover press=click release=normal disable=disable");
        row("link keeps the application's cursor beneath", "link",
            "show=none wait enter=hand_ leave=wait restore=none plain enter=hand leave=none");
        // Kept on purpose: a link disabled while hovered keeps both until an enabled leave,
        // and a disabled enter pushes nothing.
        row("link disabled while hovered", "link", "show=none enter=hand_ disable leave=hand_ enter=hand_ enable leave=none");
    }

    void pointerScript()
    {
        QFETCH(QString, widget);
        QFETCH(QString, script);
        LinkLabel *link = widget == QLatin1String("link") ? new LinkLabel(QStringLiteral("Open the folder")) : nullptr;
        LumoIconButton *button = link          ? nullptr
            : widget == QLatin1String("image") ? new LumoIconButton(QStringLiteral("bt_pagebar_refresh"))
                                               : new LumoIconButton(solid(QStringLiteral("red")));
        QWidget *target = link ? static_cast<QWidget *>(link) : button;
        target->setFocusPolicy(Qt::NoFocus);
        PointerWindow w(target);
        const double dpr = DPIinfo::getInstance()->getDPR();
        QList<QImage> variants; // normal, hover, click, disable
        for (int type = 0; widget == QLatin1String("image") && type < 4; ++type)
            variants
                << getGlobalImage("bt_pagebar_refresh", ImageManager::ImageType(type)).toImage().convertToFormat(QImage::Format_ARGB32);
        const auto state = [&]() -> QString {
            if (link) {
                const QCursor *top = QGuiApplication::overrideCursor();
                const char *shape = !top                     ? "none"
                    : top->shape() == Qt::PointingHandCursor ? "hand"
                    : top->shape() == Qt::WaitCursor         ? "wait"
                                                             : "?";
                return QLatin1String(shape) + QLatin1String(link->font().underline() ? "_" : "");
            }
            const QImage shown = button->icon().pixmap(button->iconSize(), dpr).toImage().convertToFormat(QImage::Format_ARGB32);
            return variants.isEmpty() ? shown.pixelColor(0, 0).name()
                                      : words("normal hover click disable ?").value(variants.indexOf(shown), QStringLiteral("?"));
        };
        QString arg;
        const QHash<QString, std::function<void()>> steps {
            {QStringLiteral("show"), [&w] { QVERIFY(w.show()); }},
            {QStringLiteral("enter"), [&w] { QVERIFY(w.move(true)); }},
            {QStringLiteral("leave"), [&w] { QVERIFY(w.move(false)); }},
            {QStringLiteral("press"), [target] { QTest::mousePress(target, Qt::LeftButton); }},
            {QStringLiteral("release"), [target] { QTest::mouseRelease(target, Qt::LeftButton); }},
            {QStringLiteral("focus"), [target] { target->setFocus(); }},
            {QStringLiteral("unfocus"), [target] { target->clearFocus(); }},
            {QStringLiteral("enable"), [target] { target->setEnabled(true); }},
            {QStringLiteral("disable"), [target] { target->setEnabled(false); }},
            {QStringLiteral("parentoff"), [&w] { w.window.setEnabled(false); }}, // an enabled change as well
            {QStringLiteral("normal"), [button] { button->applyNormalStyle(); }},
            {QStringLiteral("hover"), [button] { button->applyHoverStyle(); }},
            {QStringLiteral("wait"), [] { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }},
            {QStringLiteral("restore"), [] { QGuiApplication::restoreOverrideCursor(); }},
            {QStringLiteral("plain"), [link] { link->setHoverUnderline(false); }},
            {QStringLiteral("icons"),
             [&] {
                 const QStringList colors = arg.split(QLatin1Char(','));
                 const std::array setters {&LumoIconButton::setHoverIcon, &LumoIconButton::setPressIcon, &LumoIconButton::setDisableIcon};
                 for (int i = 0; i < colors.size(); ++i)
                     (button->*setters[i])(solid(colors[i]));
             }},
        };
        for (const QString &step : script.split(QLatin1Char(' '))) {
            const QString verb = step.section(QLatin1Char('='), 0, 0).section(QLatin1Char(':'), 0, 0);
            const QString want = step.section(QLatin1Char('='), 1);
            arg = step.section(QLatin1Char('='), 0, 0).section(QLatin1Char(':'), 1);
            QVERIFY2(steps.contains(verb), qPrintable(step));
            steps[verb]();
            if (QTest::currentTestFailed())
                return;
            const QString expected = widget == QLatin1String("icon") ? QColor::fromString(want).name() : want;
            QVERIFY2(want.isEmpty() || state() == expected, qPrintable(step + QLatin1String(" leaves ") + state()));
        }
        if (!variants.isEmpty()) // shown at the image's size in logical pixels
            QCOMPARE(button->iconSize(), QSize(qRound(variants[0].width() / dpr), qRound(variants[0].height() / dpr)));
    }

    void menuStaysOnPrimaryScreen_data()
    {
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<QPoint>("expected");
        LumoMenu menu; // the one the test shows, at its natural size
        setUpMenu(menu);
        menu.ensurePolished();
        menu.adjustSize();
        const int w = menu.width();
        const int h = menu.height();
        const QRect a = QGuiApplication::primaryScreen()->availableGeometry();
        const int x = a.left() + 40;
        const int y = a.top() + 30;
        // right() and bottom() are inclusive: a menu pushed back ends one pixel short of the edge.
        QTest::newRow("inside") << QPoint(x, y) << QPoint(x, y);
        QTest::newRow("left of the area goes to 0") << QPoint(a.left() - 20, y) << QPoint(0, y);
        QTest::newRow("above the area goes to 0") << QPoint(x, a.top() - 5) << QPoint(x, 0);
        QTest::newRow("last column on the right edge") << QPoint(a.right() - w + 1, y) << QPoint(a.right() - w, y);
        QTest::newRow("one short of the right edge") << QPoint(a.right() - w, y) << QPoint(a.right() - w, y);
        QTest::newRow("far right") << QPoint(a.right() + 300, y) << QPoint(a.right() - w, y);
        QTest::newRow("below the area") << QPoint(x, a.bottom() - 2) << QPoint(x, a.bottom() - h);
        QTest::newRow("bottom right corner") << QPoint(a.right() - 3, a.bottom() - 3) << QPoint(a.right() - w, a.bottom() - h);
    }

    void menuStaysOnPrimaryScreen()
    {
        QFETCH(QPoint, at);
        QFETCH(QPoint, expected);
        LumoMenu menu;
        setUpMenu(menu);
        menu.move(at);
        menu.show();
        QCOMPARE(menu.pos(), expected);
    }

    void lineEditValidateAndErrorLook()
    {
        LumoLineEdit edit;
        QLayout *row = static_cast<QWidget &>(edit).layout();
        QCOMPARE(QList<int>({row->indexOf(edit.getPreLabel()), row->indexOf(edit.getLineEdit()), row->indexOf(edit.getPostLabel())}),
                 QList<int>({0, 1, 2}));
        QVERIFY(edit.validate()); // no validator: valid, even empty
        edit.setValidator([](const QString &text) { return text.toInt() > 0; });
        QVERIFY(!edit.validate());
        QVERIFY(!edit.getLineEdit()->property("error").isValid());
        edit.getLineEdit()->setText(QStringLiteral("42"));
        QVERIFY(edit.validate());
        edit.setValidator(nullptr);
        edit.getLineEdit()->setText(QStringLiteral("x"));
        QVERIFY(edit.validate());
        // Margins and spacing are scaled and truncated: at 1.5, 3 gives 4 and 5 gives 7.
        QCOMPARE(row->contentsMargins(), QMargins());
        edit.setMargins(3, 5, 11, 0);
        edit.setSpacing(5);
        QCOMPARE(row->contentsMargins(), QMargins(testsupport::px(3), testsupport::px(5), testsupport::px(11), 0));
        QCOMPARE(row->spacing(), testsupport::px(5));

        // The look follows setError() at once, without any further event; validation leaves it alone.
        edit.show();
        QVERIFY(QTest::qWaitForWindowExposed(&edit));
        const QImage normal = edit.getLineEdit()->grab().toImage();
        edit.setError(true);
        const QImage error = edit.getLineEdit()->grab().toImage();
        QVERIFY(error != normal);
        edit.setError(true);
        QCOMPARE(edit.getLineEdit()->grab().toImage(), error);
        edit.setError(false);
        QCOMPARE(edit.getLineEdit()->grab().toImage(), normal);
    }

    void labelMinimumHeight_data()
    {
        QTest::addColumn<bool>("wrap");
        QTest::addColumn<QSizePolicy::Policy>("vertical");
        QTest::addColumn<bool>("follows");
        QTest::newRow("wrapping, minimum") << true << QSizePolicy::Minimum << true;
        QTest::newRow("wrapping, preferred") << true << QSizePolicy::Preferred << false;
        QTest::newRow("not wrapping, minimum") << false << QSizePolicy::Minimum << false;
    }

    void labelMinimumHeight()
    {
        QFETCH(bool, wrap);
        QFETCH(QSizePolicy::Policy, vertical);
        QFETCH(bool, follows);
        LumoLabel label(QStringLiteral("A long sentence that has to wrap over several lines when the label gets narrow enough."));
        label.setWordWrap(wrap);
        label.setSizePolicy(QSizePolicy::Preferred, vertical);
        label.setMinimumHeight(7);
        label.show();
        QVERIFY(QTest::qWaitForWindowExposed(&label));
        // Shrinks as well as grows: narrow first, then wide.
        for (int width : {120, 500}) {
            label.resize(width, label.height());
            QCOMPARE(label.minimumHeight(), follows ? label.heightForWidth(width) : 7);
        }
        QVERIFY(!wrap || label.heightForWidth(500) < label.heightForWidth(120));
    }

    void clickableLabelAnyButton()
    {
        ClickableLabel label(QStringLiteral("Click me"));
        label.show();
        QVERIFY(QTest::qWaitForWindowExposed(&label));
        QSignalSpy clicked(&label, SIGNAL(clicked()));
        QTest::mouseClick(&label, Qt::RightButton);
        QTest::mouseClick(&label, Qt::MiddleButton);
        QTest::mousePress(&label, Qt::LeftButton);
        QCOMPARE(clicked.count(), 3); // any button, on the press
        QTest::mouseRelease(&label, Qt::LeftButton);
        QCOMPARE(clicked.count(), 3);
    }

    void toolTipEscaping_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("html");
        QTest::newRow("markup, line feed, blanks") << QStringLiteral("a<b\n  c") << QStringLiteral("a&lt;b<br>  c");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("carriage return stays") << QStringLiteral("x\r\ny") << QStringLiteral("x\r<br>y");
        QTest::newRow("entities") << QStringLiteral("Tom & \"Jerry\" > 'Spike'")
                                  << QStringLiteral("Tom &amp; &quot;Jerry&quot; &gt; 'Spike'");
        QTest::newRow("literal br is escaped") << QStringLiteral("<br>") << QStringLiteral("&lt;br&gt;");
    }

    void toolTipEscaping()
    {
        QFETCH(QString, text);
        QFETCH(QString, html);
        QCOMPARE(getHtmlEscapedStringForToolTip(text), QStringLiteral("<p style='white-space:pre'>") + html + QStringLiteral("</p>"));
    }

    void focusWalk_data()
    {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QStringList>("excluded");
        QTest::addColumn<int>("level"); // -1: the overload taking a plain exclusion list
        QTest::addColumn<QStringList>("listed");
        const auto row = [](const char *tag, const char *root, const char *excluded, int level, const char *listed) {
            QTest::newRow(tag) << QString::fromLatin1(root) << words(excluded) << level << words(listed);
        };
        row("list: focusable only, child order", "root", "", -1, "a frame b e f");
        row("list: excluded keep descendants", "root", "frame e", -1, "a b f");
        row("list: excluded root still walked", "frame", "frame", -1, "b");
        row("list: strangers change nothing", "root", "stranger null", -1, "a frame b e f");
        // A null root, and a hidden one whose child is not hidden itself, list nothing.
        row("list: null root", "null", "", -1, "");
        row("list: hidden root", "hidden", "", -1, "");
        row("filter: null root", "null", "", Qt::NoFocus, "");
        row("filter: hidden root", "hidden", "", Qt::NoFocus, "");
        // With the default level every visible widget is listed, focusable or not.
        row("filter: default", "root", "", Qt::NoFocus, "root a frame b c e f");
        row("filter: subtree root first", "frame", "", Qt::NoFocus, "frame b c");
        row("filter: exclusions", "root", "a frame", Qt::NoFocus, "root b c e f");
        // Levels compare as numbers: tab focus (1) also admits click-only widgets (2).
        row("filter: tab", "root", "b", Qt::TabFocus, "a frame e f");
        row("filter: click", "root", "", Qt::ClickFocus, "a frame b e");
        row("filter: strong", "root", "", Qt::StrongFocus, "a b");
        row("filter: wheel", "root", "", Qt::WheelFocus, "a");
    }

    void focusWalk()
    {
        QFETCH(QString, root);
        QFETCH(QStringList, excluded);
        QFETCH(int, level);
        QFETCH(QStringList, listed);
        FocusTree t;
        QWidget *start = t.pick({root}).constFirst();
        const WidgetList got = level < 0 ? accessibleList(start, t.pick(excluded))
                                         : accessibleList(start, AccessibleFilter(t.pick(excluded), Qt::FocusPolicy(level)));
        QCOMPARE(FocusTree::names(got), listed);
    }

    void focusWalkHiddenRoots()
    {
        FocusTree t;
        QVERIFY(!t.pick(words("d")).constFirst()->isHidden());
        adjustFocusPolicy(Qt::NoFocus, t.pick(words("a b e")));
        QCOMPARE(FocusTree::names(accessibleList(&t.root, WidgetList())), words("frame f"));
        // A hidden window hides its whole tree, though its children are not hidden themselves.
        t.root.hide();
        QCOMPARE(accessibleList(&t.root, AccessibleFilter()), WidgetList());
        QCOMPARE(accessibleList(t.pick(words("frame")).constFirst(), WidgetList()), WidgetList());
    }
};

QTEST_MAIN(TestControls)
#include "tst_controls.moc"

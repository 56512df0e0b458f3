// Buttons, menus, line edit and labels: looks by key, DPI rounding, icon state
// switching under real pointer events, menu placement and the label rules.

#include "testsupport.h"

#include <lumo/registries.h>

#include <lumo/controls.h>

#include <QHBoxLayout>
#include <QLineEdit>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
QPixmap solid(const QColor &color, int width = 24, int height = 24)
{
    QPixmap pixmap(width, height);
    pixmap.fill(color);
    return pixmap;
}

// The colour the button shows now, read from its current icon.
QColor shownColor(const QToolButton *button)
{
    return button->icon().pixmap(QSize(8, 8), 1.0).toImage().pixelColor(4, 4);
}

// Picks the expected value of the scale this run was started for.
int atScale(int at1, int at15, int at2)
{
    const double scale = testsupport::expectedScale();
    return scale < 1.25 ? at1 : scale < 1.75 ? at15 : at2;
}

// Moves the pointer over @p target through a free spot of @p window, so that the
// first move is a real change of position.
void pointerInto(QWidget *window, QWidget *target)
{
    QTest::mouseMove(window, QPoint(1, 1));
    QTest::mouseMove(target);
    QTRY_VERIFY(target->underMouse());
}

bool validNumber(const QString &text)
{
    bool ok = false;
    text.toInt(&ok);
    return ok;
}
}

class TestControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void buttonStyleByKind_data();
    void buttonStyleByKind();
    void controlsTakeTheirStyle();
    void defaultConstructibleMetaTypes_data();
    void defaultConstructibleMetaTypes();

    void iconSizeFromPixmap_data();
    void iconSizeFromPixmap();
    void iconsFromImageName();
    void iconFollowsPointer();
    void iconReplacementsShowAtNextEvent();
    void focusedIconKeepsHoverAfterLeave();
    void disabledIconIgnoresPointer();

    void menuStaysOnPrimaryScreen_data();
    void menuStaysOnPrimaryScreen();

    void lineEditLayout();
    void lineEditMarginsAndSpacing_data();
    void lineEditMarginsAndSpacing();
    void lineEditValidate();
    void lineEditErrorLook();

    void labelMinimumHeight_data();
    void labelMinimumHeight();
    void clickableLabelAnyButton();
    void linkLabelCursorStack();
    void linkLabelDisabledWhileHovered();
    void toolTipEscaping_data();
    void toolTipEscaping();

private:
    QTemporaryDir userData;
};

void TestControls::initTestCase()
{
    QVERIFY(userData.isValid());
    testsupport::LogCatcher log;
    testsupport::startWithDefaultTheme(userData);
    QCOMPARE(DPIinfo::getInstance()->getDPR(), testsupport::expectedScale());
    QVERIFY2(log.cannotWarnings().isEmpty(), qPrintable(log.cannotWarnings().join(QLatin1Char('\n'))));
}

void TestControls::init()
{
    // Windows open at the top left; a pointer left there by an earlier test would
    // enter a new window's child at show time without a matching leave later.
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    QCursor::setPos(screen.bottomRight() - QPoint(10, 10));
}

void TestControls::cleanup()
{
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    QCOMPARE(QApplication::topLevelWidgets().size(), 0);
}

void TestControls::buttonStyleByKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("key");
    QTest::newRow("apply") << 0 << QStringLiteral("component.apply_button");
    QTest::newRow("cancel") << 1 << QStringLiteral("component.cancel_button");
    QTest::newRow("selected paging") << 2 << QStringLiteral("component.select_paging_button");
    QTest::newRow("unselected paging") << 3 << QStringLiteral("component.nonselect_paging_button");
    QTest::newRow("default") << 4 << QStringLiteral("component.default_button");
    QTest::newRow("red") << 5 << QStringLiteral("component.red_button");
    QTest::newRow("6") << 6 << QString();
    QTest::newRow("-1") << -1 << QString();
    QTest::newRow("int min") << std::numeric_limits<int>::min() << QString();
}

void TestControls::buttonStyleByKind()
{
    QFETCH(int, kind);
    QFETCH(QString, key);
    LumoButton button(QStringLiteral("Save"), kind);
    const QString expected = key.isEmpty() ? QString() : getStyleSheet(key, false);
    QVERIFY(key.isEmpty() || !expected.isEmpty());
    QCOMPARE(button.styleSheet(), expected);
    QCOMPARE(button.text(), QStringLiteral("Save"));
    QVERIFY(button.isFlat());
    QCOMPARE(button.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(button.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(button.parentWidget(), nullptr);
}

void TestControls::controlsTakeTheirStyle()
{
    LumoIconButton icon(solid(Qt::red));
    QCOMPARE(icon.styleSheet(), getStyleSheet("component.icon_button", false));
    QCOMPARE(icon.toolButtonStyle(), Qt::ToolButtonIconOnly);
    QCOMPARE(icon.popupMode(), QToolButton::InstantPopup);
    QCOMPARE(icon.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(icon.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);

    QWidget parent;
    LumoCheckBox check(QStringLiteral("Remember"), &parent);
    QCOMPARE(check.styleSheet(), getStyleSheet("component.checkbox", false));
    QCOMPARE(check.parentWidget(), &parent);
    LumoRadioButton radio(QStringLiteral("One"), &parent);
    QCOMPARE(radio.styleSheet(), getStyleSheet("component.radio_button", false));
    QCOMPARE(radio.text(), QStringLiteral("One"));
    LumoLabel label(QStringLiteral("Name"), &parent);
    QCOMPARE(label.styleSheet(), getStyleSheet("component.label", false));
    QVERIFY(!label.styleSheet().isEmpty());
    LumoMenu menu(&parent);
    QVERIFY(menu.styleSheet().isEmpty());
}

void TestControls::defaultConstructibleMetaTypes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("constructible");
    for (const char *name : {"LumoCheckBox", "LumoRadioButton", "LumoMenu", "LumoLineEdit", "LumoLabel"})
        QTest::newRow(name) << QByteArray(name) << true;
    QTest::newRow("LumoButton") << QByteArray("LumoButton") << false;
    QTest::newRow("LumoIconButton") << QByteArray("LumoIconButton") << false;
}

void TestControls::defaultConstructibleMetaTypes()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, constructible);
    const QMetaType type = QMetaType::fromName(name);
    QCOMPARE(type.isValid(), constructible);
    if (!constructible)
        return;
    void *object = type.create();
    QVERIFY(object);
    auto *widget = static_cast<QWidget *>(object);
    QCOMPARE(QByteArray(widget->metaObject()->className()), name);
    QCOMPARE(widget->parentWidget(), nullptr);
    QVERIFY(!widget->styleSheet().isEmpty() || name == "LumoMenu" || name == "LumoLineEdit");
    type.destroy(object);
}

void TestControls::iconSizeFromPixmap_data()
{
    QTest::addColumn<QSize>("pixmap");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("48x48") << QSize(48, 48) << QSize(atScale(48, 32, 24), atScale(48, 32, 24));
    // 16.67 rounds to 17; 12.5 rounds half away from zero to 13.
    QTest::newRow("25x25") << QSize(25, 25) << QSize(atScale(25, 17, 13), atScale(25, 17, 13));
    QTest::newRow("3x1") << QSize(3, 1) << QSize(atScale(3, 2, 2), atScale(1, 1, 1));
    QTest::newRow("31x20") << QSize(31, 20) << QSize(atScale(31, 21, 16), atScale(20, 13, 10));
}

void TestControls::iconSizeFromPixmap()
{
    QFETCH(QSize, pixmap);
    QFETCH(QSize, shown);
    LumoIconButton button(solid(Qt::red, pixmap.width(), pixmap.height()));
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    QCOMPARE(button.iconSize(), shown);
}

void TestControls::iconsFromImageName()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *button = new LumoIconButton(QStringLiteral("bt_pagebar_refresh"));
    button->setFocusPolicy(Qt::NoFocus);
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(button);
    layout->addWidget(elsewhere);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    pointerInto(&window, elsewhere);
    QTRY_VERIFY(!button->underMouse());

    QImage variants[4];
    for (int type = 0; type < 4; ++type) {
        const QPixmap pixmap = getGlobalImage("bt_pagebar_refresh", ImageManager::ImageType(type));
        QVERIFY(!pixmap.isNull());
        variants[type] = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    }
    QVERIFY(variants[0] != variants[1] && variants[0] != variants[2] && variants[0] != variants[3]);
    const double dpr = DPIinfo::getInstance()->getDPR();
    const QSize logical(qRound(variants[0].width() / dpr), qRound(variants[0].height() / dpr));
    QCOMPARE(button->iconSize(), logical);
    const auto shown = [button, dpr] {
        return button->icon().pixmap(button->iconSize(), dpr).toImage().convertToFormat(QImage::Format_ARGB32);
    };
    QCOMPARE(shown(), variants[ImageManager::Normal]);
    QTest::mouseMove(button);
    QTRY_COMPARE(shown(), variants[ImageManager::Hover]);
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(shown(), variants[ImageManager::Click]);
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(shown(), variants[ImageManager::Normal]);
    button->setEnabled(false);
    QCOMPARE(shown(), variants[ImageManager::Disable]);
    QCOMPARE(button->iconSize(), logical);
}

void TestControls::iconFollowsPointer()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *button = new LumoIconButton(solid(Qt::red));
    button->setFocusPolicy(Qt::NoFocus);
    button->setHoverIcon(solid(Qt::green));
    button->setPressIcon(solid(Qt::blue));
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(button);
    layout->addWidget(elsewhere);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    pointerInto(&window, elsewhere);
    QTRY_VERIFY(!button->underMouse());
    QCOMPARE(shownColor(button), QColor(Qt::red));

    QTest::mouseMove(button);
    QTRY_COMPARE(shownColor(button), QColor(Qt::green));
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(shownColor(button), QColor(Qt::blue));
    // Still under the pointer, yet back to normal: hover returns only with the next enter.
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(shownColor(button), QColor(Qt::red));
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!button->underMouse());
    QCOMPARE(shownColor(button), QColor(Qt::red));
    QTest::mouseMove(button);
    QTRY_COMPARE(shownColor(button), QColor(Qt::green));
    QTest::mouseMove(elsewhere);
    QTRY_COMPARE(shownColor(button), QColor(Qt::red));
    QCOMPARE(button->iconSize(), QSize(atScale(24, 16, 12), atScale(24, 16, 12)));
}

void TestControls::iconReplacementsShowAtNextEvent()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *button = new LumoIconButton(solid(Qt::red));
    button->setFocusPolicy(Qt::NoFocus);
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(button);
    layout->addWidget(elsewhere);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    pointerInto(&window, elsewhere);
    QTRY_VERIFY(!button->underMouse());

    // One image for every state until replaced.
    QTest::mouseMove(button);
    QTRY_VERIFY(button->underMouse());
    QCOMPARE(shownColor(button), QColor(Qt::red));
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(shownColor(button), QColor(Qt::red));
    QTest::mouseRelease(button, Qt::LeftButton);

    button->setHoverIcon(solid(Qt::yellow));
    button->setPressIcon(solid(Qt::cyan));
    button->setDisableIcon(solid(Qt::gray));
    QCOMPARE(shownColor(button), QColor(Qt::red));
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(shownColor(button), QColor(Qt::cyan));
    QTest::mouseRelease(button, Qt::LeftButton);
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!button->underMouse());
    QTest::mouseMove(button);
    QTRY_COMPARE(shownColor(button), QColor(Qt::yellow));
    button->applyNormalStyle();
    QCOMPARE(shownColor(button), QColor(Qt::red));
    button->applyHoverStyle();
    QCOMPARE(shownColor(button), QColor(Qt::yellow));
    button->setEnabled(false);
    QCOMPARE(shownColor(button), QColor(Qt::gray));
}

void TestControls::focusedIconKeepsHoverAfterLeave()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *button = new LumoIconButton(solid(Qt::red));
    button->setHoverIcon(solid(Qt::green));
    button->setFocusPolicy(Qt::StrongFocus);
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(button);
    layout->addWidget(elsewhere);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    pointerInto(&window, elsewhere);
    button->setFocus();
    QTRY_VERIFY(button->hasFocus());

    QTest::mouseMove(button);
    QTRY_COMPARE(shownColor(button), QColor(Qt::green));
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!button->underMouse());
    QCOMPARE(shownColor(button), QColor(Qt::green));

    button->clearFocus();
    QTest::mouseMove(button);
    QTRY_VERIFY(button->underMouse());
    QTest::mouseMove(elsewhere);
    QTRY_COMPARE(shownColor(button), QColor(Qt::red));
}

void TestControls::disabledIconIgnoresPointer()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *button = new LumoIconButton(solid(Qt::red));
    button->setHoverIcon(solid(Qt::green));
    button->setPressIcon(solid(Qt::blue));
    button->setDisableIcon(solid(Qt::gray));
    button->setEnabled(false);
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(button);
    layout->addWidget(elsewhere);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(shownColor(button), QColor(Qt::gray));

    pointerInto(&window, elsewhere);
    QTest::mouseMove(button);
    QTRY_VERIFY(button->underMouse());
    QCOMPARE(shownColor(button), QColor(Qt::gray));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(shownColor(button), QColor(Qt::gray));
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!button->underMouse());
    QCOMPARE(shownColor(button), QColor(Qt::gray));

    button->setEnabled(true);
    QCOMPARE(shownColor(button), QColor(Qt::red));
    // Disabling through the parent is an enabled change as well.
    window.setEnabled(false);
    QCOMPARE(shownColor(button), QColor(Qt::gray));
}

void TestControls::menuStaysOnPrimaryScreen_data()
{
    // Where the menu is put (relative to the available area) and where it must end up.
    QTest::addColumn<QString>("place");
    QTest::newRow("inside") << QStringLiteral("inside");
    QTest::newRow("left of the area") << QStringLiteral("left");
    QTest::newRow("above the area") << QStringLiteral("above");
    QTest::newRow("last column on the right edge") << QStringLiteral("rightEdge");
    QTest::newRow("one short of the right edge") << QStringLiteral("rightShort");
    QTest::newRow("far right") << QStringLiteral("farRight");
    QTest::newRow("below the area") << QStringLiteral("below");
    QTest::newRow("bottom right corner") << QStringLiteral("corner");
}

void TestControls::menuStaysOnPrimaryScreen()
{
    QFETCH(QString, place);
    const QRect avail = QGuiApplication::primaryScreen()->availableGeometry();
    LumoMenu menu;
    // Keeps the offscreen platform from adding frame margins to the position.
    menu.setWindowFlags(menu.windowFlags() | Qt::FramelessWindowHint);
    menu.setStyleSheet(getStyleSheet("component.menu", false));
    menu.addAction(QStringLiteral("Open"));
    menu.addAction(QStringLiteral("Rename"));
    menu.ensurePolished();
    menu.adjustSize();
    const int w = menu.width();
    const int h = menu.height();
    QVERIFY(w > 0 && h > 0);

    QPoint at(avail.left() + 40, avail.top() + 30);
    QPoint expected = at;
    if (place == QLatin1String("left")) {
        at.setX(avail.left() - 20);
        expected.setX(0);
    } else if (place == QLatin1String("above")) {
        at.setY(avail.top() - 5);
        expected.setY(0);
    } else if (place == QLatin1String("rightEdge")) {
        at.setX(avail.right() - w + 1);
        expected.setX(avail.right() - w);
    } else if (place == QLatin1String("rightShort")) {
        at.setX(avail.right() - w);
        expected.setX(avail.right() - w);
    } else if (place == QLatin1String("farRight")) {
        at.setX(avail.right() + 300);
        expected.setX(avail.right() - w);
    } else if (place == QLatin1String("below")) {
        at.setY(avail.bottom() - 2);
        expected.setY(avail.bottom() - h);
    } else if (place == QLatin1String("corner")) {
        at = QPoint(avail.right() - 3, avail.bottom() - 3);
        expected = QPoint(avail.right() - w, avail.bottom() - h);
    }
    menu.move(at);
    QCOMPARE(menu.pos(), at);
    menu.show();
    QCOMPARE(menu.size(), QSize(w, h));
    QCOMPARE(menu.pos(), expected);
    menu.hide();
}

void TestControls::lineEditLayout()
{
    LumoLineEdit edit;
    // The row layout field hides QWidget::layout() on the derived type.
    auto *layout = qobject_cast<QHBoxLayout *>(static_cast<QWidget &>(edit).layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 3);
    QCOMPARE(layout->itemAt(0)->widget(), edit.getPreLabel());
    QCOMPARE(layout->itemAt(1)->widget(), edit.getLineEdit());
    QCOMPARE(layout->itemAt(2)->widget(), edit.getPostLabel());
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(layout->alignment(), Qt::AlignLeft);
    QVERIFY(edit.getPreLabel()->text().isEmpty());
    QVERIFY(edit.getPostLabel()->text().isEmpty());
    QCOMPARE(edit.getPreLabel()->styleSheet(), getStyleSheet("component.lineedit_label", false));
    QCOMPARE(edit.getPostLabel()->styleSheet(), getStyleSheet("component.lineedit_label", false));
    QCOMPARE(edit.getLineEdit()->styleSheet(), getStyleSheet("component.lineedit", false));
    QVERIFY(!edit.getLineEdit()->property("error").isValid());
    edit.getLineEdit()->setText(QStringLiteral("abc"));
    QCOMPARE(edit.getEditText(), QStringLiteral("abc"));
}

void TestControls::lineEditMarginsAndSpacing_data()
{
    QTest::addColumn<QMargins>("margins");
    QTest::addColumn<QMargins>("scaledMargins");
    QTest::addColumn<int>("spacing");
    QTest::addColumn<int>("scaledSpacing");
    // Products are truncated: 3 x 1.5 = 4.5 gives 4, 5 x 1.5 = 7.5 gives 7.
    QTest::newRow("small") << QMargins(3, 5, 1, 0) << QMargins(atScale(3, 4, 6), atScale(5, 7, 10), atScale(1, 1, 2), 0) << 5
                           << atScale(5, 7, 10);
    QTest::newRow("odd") << QMargins(7, 9, 11, 13)
                         << QMargins(atScale(7, 10, 14), atScale(9, 13, 18), atScale(11, 16, 22), atScale(13, 19, 26)) << 3
                         << atScale(3, 4, 6);
    QTest::newRow("zero") << QMargins(0, 0, 0, 0) << QMargins(0, 0, 0, 0) << 0 << 0;
    QTest::newRow("one") << QMargins(1, 1, 1, 1) << QMargins(1, 1, 1, 1) * atScale(1, 1, 2) << 1 << atScale(1, 1, 2);
}

void TestControls::lineEditMarginsAndSpacing()
{
    QFETCH(QMargins, margins);
    QFETCH(QMargins, scaledMargins);
    QFETCH(int, spacing);
    QFETCH(int, scaledSpacing);
    LumoLineEdit edit;
    edit.setMargins(margins.left(), margins.top(), margins.right(), margins.bottom());
    edit.setSpacing(spacing);
    QCOMPARE(static_cast<QWidget &>(edit).layout()->contentsMargins(), scaledMargins);
    QCOMPARE(static_cast<QWidget &>(edit).layout()->spacing(), scaledSpacing);
}

void TestControls::lineEditValidate()
{
    LumoLineEdit edit;
    QVERIFY(edit.validate());
    edit.getLineEdit()->setText(QStringLiteral("anything"));
    QVERIFY(edit.validate());

    edit.setValidator(validNumber);
    QVERIFY(!edit.validate());
    edit.getLineEdit()->setText(QStringLiteral("42"));
    QVERIFY(edit.validate());
    edit.getLineEdit()->clear();
    QVERIFY(!edit.validate());
    // Validation leaves the look alone.
    QVERIFY(!edit.getLineEdit()->property("error").isValid());

    edit.setValidator(nullptr);
    QVERIFY(edit.validate());
}

void TestControls::lineEditErrorLook()
{
    LumoLineEdit edit;
    edit.getLineEdit()->setFixedWidth(120);
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    const QImage normal = edit.getLineEdit()->grab().toImage();

    edit.setError(true);
    QCOMPARE(edit.getLineEdit()->property("error"), QVariant(true));
    const QImage error = edit.getLineEdit()->grab().toImage();
    QVERIFY2(error != normal, "the error look must show without any further event");
    edit.setError(true);
    QCOMPARE(edit.getLineEdit()->grab().toImage(), error);

    edit.setError(false);
    QCOMPARE(edit.getLineEdit()->property("error"), QVariant(false));
    QCOMPARE(edit.getLineEdit()->grab().toImage(), normal);
    QVERIFY(edit.getEditText().isEmpty());
    QVERIFY(edit.getLineEdit()->toolTip().isEmpty());
}

void TestControls::labelMinimumHeight_data()
{
    QTest::addColumn<bool>("wrap");
    QTest::addColumn<QSizePolicy::Policy>("vertical");
    QTest::addColumn<bool>("follows");
    QTest::newRow("wrapping, minimum") << true << QSizePolicy::Minimum << true;
    QTest::newRow("wrapping, preferred") << true << QSizePolicy::Preferred << false;
    QTest::newRow("wrapping, minimum expanding") << true << QSizePolicy::MinimumExpanding << false;
    QTest::newRow("not wrapping, minimum") << false << QSizePolicy::Minimum << false;
}

void TestControls::labelMinimumHeight()
{
    QFETCH(bool, wrap);
    QFETCH(QSizePolicy::Policy, vertical);
    QFETCH(bool, follows);
    LumoLabel label(QStringLiteral("A long sentence that has to wrap over several lines when the label gets narrow enough."));
    label.setWordWrap(wrap);
    label.setSizePolicy(QSizePolicy::Preferred, vertical);
    label.setMinimumHeight(7);
    label.resize(600, 20);
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));

    label.resize(120, label.height());
    const int narrow = label.heightForWidth(120);
    QCOMPARE(label.minimumHeight(), follows ? narrow : 7);
    label.resize(500, label.height());
    const int wide = label.heightForWidth(500);
    QCOMPARE(label.minimumHeight(), follows ? wide : 7);
    if (follows)
        QVERIFY(wide < narrow);
}

void TestControls::clickableLabelAnyButton()
{
    ClickableLabel label(QStringLiteral("Click me"));
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));
    QSignalSpy clicked(&label, SIGNAL(clicked()));
    QTest::mouseClick(&label, Qt::RightButton);
    QCOMPARE(clicked.count(), 1);
    QTest::mouseClick(&label, Qt::LeftButton);
    QTest::mouseClick(&label, Qt::MiddleButton);
    QCOMPARE(clicked.count(), 3);
    // Only the press counts.
    QTest::mousePress(&label, Qt::LeftButton);
    QCOMPARE(clicked.count(), 4);
    QTest::mouseRelease(&label, Qt::LeftButton);
    QCOMPARE(clicked.count(), 4);
}

void TestControls::linkLabelCursorStack()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *link = new LinkLabel(QStringLiteral("Open the folder"));
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(link);
    layout->addWidget(elsewhere);
    QCOMPARE(link->getHyperLink(), QString());
    link->setHyperLink(QStringLiteral("https://example.invalid/help"));
    QCOMPARE(link->getHyperLink(), QStringLiteral("https://example.invalid/help"));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    pointerInto(&window, elsewhere);
    QTRY_VERIFY(!link->underMouse());

    // An application's own override is kept beneath the link's.
    QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    QTest::mouseMove(link);
    QTRY_VERIFY(link->underMouse());
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::PointingHandCursor);
    QVERIFY(link->font().underline());
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!link->underMouse());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QVERIFY(!link->font().underline());
    QGuiApplication::restoreOverrideCursor();
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);

    link->setHoverUnderline(false);
    QTest::mouseMove(link);
    QTRY_VERIFY(link->underMouse());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::PointingHandCursor);
    QVERIFY(!link->font().underline());
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!link->underMouse());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);

    // A disabled link pushes nothing.
    link->setEnabled(false);
    QTest::mouseMove(link);
    QTRY_VERIFY(link->underMouse());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!link->underMouse());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

void TestControls::linkLabelDisabledWhileHovered()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *link = new LinkLabel(QStringLiteral("Details"));
    auto *elsewhere = new QWidget;
    elsewhere->setMinimumSize(60, 60);
    layout->addWidget(link);
    layout->addWidget(elsewhere);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    pointerInto(&window, elsewhere);
    QTRY_VERIFY(!link->underMouse());

    QTest::mouseMove(link);
    QTRY_VERIFY(link->underMouse());
    link->setEnabled(false);
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!link->underMouse());
    // Kept on purpose: the override and the underline stay until an enabled leave.
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::PointingHandCursor);
    QVERIFY(link->font().underline());

    link->setEnabled(true);
    QTest::mouseMove(link);
    QTRY_VERIFY(link->underMouse());
    QTest::mouseMove(elsewhere);
    QTRY_VERIFY(!link->underMouse());
    QVERIFY(!link->font().underline());
    // The second push was popped; the one left from the disabled leave remains.
    QVERIFY(QGuiApplication::overrideCursor());
    QGuiApplication::restoreOverrideCursor();
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

void TestControls::toolTipEscaping_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("html");
    QTest::newRow("markup, line feed, blanks") << QStringLiteral("a<b\n  c")
                                               << QStringLiteral("<p style='white-space:pre'>a&lt;b<br>  c</p>");
    QTest::newRow("empty") << QString() << QStringLiteral("<p style='white-space:pre'></p>");
    QTest::newRow("carriage return stays") << QStringLiteral("x\r\ny") << QStringLiteral("<p style='white-space:pre'>x\r<br>y</p>");
    QTest::newRow("entities") << QStringLiteral("Tom & \"Jerry\" > 'Spike'")
                              << QStringLiteral("<p style='white-space:pre'>Tom &amp; &quot;Jerry&quot; &gt; 'Spike'</p>");
    QTest::newRow("only line feeds") << QStringLiteral("\n\n") << QStringLiteral("<p style='white-space:pre'><br><br></p>");
    QTest::newRow("literal br is escaped") << QStringLiteral("<br>") << QStringLiteral("<p style='white-space:pre'>&lt;br&gt;</p>");
}

void TestControls::toolTipEscaping()
{
    QFETCH(QString, text);
    QFETCH(QString, html);
    QCOMPARE(getHtmlEscapedStringForToolTip(text), html);
}

QTEST_MAIN(TestControls)
#include "tst_controls.moc"

#include "sheets/messagesheet_p.h"

#include "resources/registries_p.h"

#include <lumo/controls.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QMovie>
#include <QPicture>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
bool canTakeFocus(const QWidget *widget)
{
    return widget && widget->focusPolicy() != Qt::NoFocus && widget->isEnabled() && widget->isVisible();
}

// Setting a widget's style sheet re-polishes it and all its children, even to the same text.
void restyle(QWidget *widget, const QString &styleSheet)
{
    if (widget->styleSheet() != styleSheet)
        widget->setStyleSheet(styleSheet);
}

void sizeButton(QAbstractButton *button)
{
    // Polished first: a min-height in the button's style sheet is applied at polish
    // and would otherwise replace the fixed height.
    button->ensurePolished();
    button->setFixedHeight(lumo::scaled(32));
    button->setMinimumWidth(lumo::scaled(100));
}
}

// ---------------------------------------------------------------------------
// MessageLabel, DialogButtonBoxStyle
// ---------------------------------------------------------------------------

bool MessageLabelPrivate::Inputs::operator==(const Inputs &other) const
{
    return text == other.text && font == other.font && alignment == other.alignment && wordWrap == other.wordWrap &&
        format == other.format && interaction == other.interaction && direction == other.direction && indent == other.indent &&
        margin == other.margin && frameWidth == other.frameWidth && contents == other.contents && maximumWidth == other.maximumWidth &&
        buddy == other.buddy && dpiX == other.dpiX && dpiY == other.dpiY;
}

void MessageLabelPrivate::follow(const QLabel *label)
{
    Inputs now;
    now.text = label->text();
    now.font = label->font();
    now.alignment = label->alignment();
    now.wordWrap = label->wordWrap();
    now.format = label->textFormat();
    now.interaction = label->textInteractionFlags();
    now.direction = label->layoutDirection();
    now.indent = label->indent();
    now.margin = label->margin();
    now.frameWidth = label->frameWidth();
    now.contents = label->contentsMargins();
    now.maximumWidth = label->maximumWidth();
    now.buddy = label->buddy() != nullptr;
    now.dpiX = label->logicalDpiX();
    now.dpiY = label->logicalDpiY();
    if (followed && now == inputs)
        return;
    inputs = now;
    followed = true;
    heights.clear();
}

namespace
{
// Only text is kept: an image's size is cheap to ask for and has inputs of its own.
bool showsText(const QLabel *label)
{
    return label->pixmap().isNull() && !label->movie() && label->picture().isNull();
}
}

MessageLabel::MessageLabel(QWidget *parent)
    : QLabel(parent)
    , d(new MessageLabelPrivate)
{
}

MessageLabel::~MessageLabel()
{
    delete d;
}

int MessageLabel::heightForWidth(int width) const
{
    if (!showsText(this))
        return QLabel::heightForWidth(width);
    d->follow(this);
    const int minimum = minimumHeight();
    for (const MessageLabelPrivate::Height &kept : std::as_const(d->heights)) {
        if (kept.width != width)
            continue;
        // QLabel answers max(natural, minimum height): the natural height is known when
        // the answer exceeded the minimum of its time or there was none, and cannot
        // matter when the minimum now is at least that one.
        if (kept.answer > kept.minimum || kept.minimum <= 0)
            return std::max(kept.answer, minimum);
        if (minimum >= kept.minimum)
            return minimum;
    }
    const int height = QLabel::heightForWidth(width);
    d->heights.removeIf([width](const MessageLabelPrivate::Height &kept) { return kept.width == width; });
    if (d->heights.size() >= 8)
        d->heights.removeFirst();
    d->heights.append({width, height, minimum});
    return height;
}

void MessageLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    const int height = heightForWidth(width());
    if (height >= 0)
        setFixedHeight(height);
}

DialogButtonBoxStyle::DialogButtonBoxStyle() = default;

DialogButtonBoxStyle::~DialogButtonBoxStyle() = default;

int DialogButtonBoxStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const
{
    if (hint == QStyle::SH_DialogButtonLayout)
        return QDialogButtonBox::WinLayout;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

// ---------------------------------------------------------------------------
// LumoMessageSheetPrivate
// ---------------------------------------------------------------------------

LumoMessageSheetPrivate::LumoMessageSheetPrivate(LumoMessageSheet *q, int messageType, bool showIcon)
    : QObject(q)
    , q(q)
    , iconLabel(new QLabel(q))
    , messageType(messageType)
    , buttonBox(new QDialogButtonBox(q))
    , showIcon(showIcon)
    , checkBoxWidget(new QWidget(q))
    , run(q, buttonBox)
{
    run.acceptButtons = {QDialogButtonBox::Ok, QDialogButtonBox::Apply};
    run.onlyWhileVisible = true;
    run.tab = [this, q](bool next) { moveFocus(q->window(), next); };
    run.quit = [q] { q->quit(); };
    iconLabel->setObjectName(QStringLiteral("messageSheetIcon"));
    buttonBox->setObjectName(QStringLiteral("messageSheetButtonBox"));
    checkBoxWidget->setObjectName(QStringLiteral("messageSheetCheckBoxRow"));
    checkBoxWidget->hide();
}

void LumoMessageSheetPrivate::initialize(const MsgBoxCustomBtnText &texts)
{
    const char *image = nullptr;
    QDialogButtonBox::StandardButtons buttons = QDialogButtonBox::NoButton;
    switch (messageType) {
    case LumoMessageSheet::AppNotice:
        image = "app_img";
        break;
    case LumoMessageSheet::Information:
        image = "icon_information";
        buttons = QDialogButtonBox::Ok;
        break;
    case LumoMessageSheet::Warning:
        image = "icon_warning";
        buttons = QDialogButtonBox::Ok;
        break;
    case LumoMessageSheet::Confirm:
        image = "icon_question";
        buttons = QDialogButtonBox::Apply | QDialogButtonBox::Discard;
        break;
    case LumoMessageSheet::ConfirmWithReset:
        image = "icon_question";
        buttons = QDialogButtonBox::Apply | QDialogButtonBox::Discard | QDialogButtonBox::Reset;
        break;
    case LumoMessageSheet::Upgrading:
        image = "icon_information";
        buttons = QDialogButtonBox::Apply | QDialogButtonBox::Discard;
        break;
    case LumoMessageSheet::WarningConfirm:
        image = "icon_warning";
        buttons = QDialogButtonBox::Apply | QDialogButtonBox::Discard;
        break;
    case LumoMessageSheet::Processing:
        break; // keeps the animation of the movie constructor
    default:
        iconLabel->clear();
        break;
    }
    if (image)
        iconLabel->setPixmap(getGlobalImage(image, ImageManager::Normal));
    if (!showIcon)
        iconLabel->clear();

    // The sheet's look and the box's proxy style come before the buttons: a button
    // styled first is polished again by each of them. On a later run both are in
    // place already, and setting them again would only re-polish the whole sheet.
    const bool processing = messageType == LumoMessageSheet::AppNotice || messageType == LumoMessageSheet::Processing;
    restyle(q, lumo::style(processing ? "component.message_sheet_processing" : "component.message_sheet_other"));
    if (!buttonStyle) {
        buttonStyle = new DialogButtonBoxStyle;
        buttonBox->setStyle(buttonStyle);
    }
    // Unique: initialize() runs again on every type, icon or check box change, and a
    // second connection would end the sheet twice per click.
    QObject::connect(buttonBox, SIGNAL(clicked(QAbstractButton *)), q, SLOT(buttonClick(QAbstractButton *)), Qt::UniqueConnection);

    buttonBox->setStandardButtons(buttons);
    QPushButton *ok = buttonBox->button(QDialogButtonBox::Ok);
    QPushButton *apply = buttonBox->button(QDialogButtonBox::Apply);
    QPushButton *discard = buttonBox->button(QDialogButtonBox::Discard);
    QPushButton *reset = buttonBox->button(QDialogButtonBox::Reset);
    lumo::clearButtonIcons(buttonBox->buttons());

    QString okText = texts.okText;
    if (okText.isEmpty())
        okText = lumo::caption(messageType == LumoMessageSheet::Upgrading ? "wizard_client_upgrade" : "ok");
    for (QPushButton *accept : {ok, apply}) {
        if (!accept)
            continue;
        accept->setText(okText);
        accept->setDefault(true);
        accept->setStyleSheet(lumo::style("component.apply_button"));
        sizeButton(accept);
    }
    if (discard) {
        discard->setText(texts.cancelText.isEmpty() ? lumo::caption("cancel") : texts.cancelText);
        discard->setStyleSheet(lumo::style("component.cancel_button"));
        sizeButton(discard);
    }
    if (reset) {
        reset->setText(texts.resetText.isEmpty() ? lumo::caption("reset") : texts.resetText);
        reset->setStyleSheet(lumo::style("component.reset_button"));
        // Deliberate: the size goes to Discard again and Reset keeps its natural size.
        if (discard)
            sizeButton(discard);
    }

    initCheckBox();
    setupLayout();

    if (textLabel) {
        textLabel->installEventFilter(q);
        restyle(textLabel, lumo::style("component.message_sheet_text"));
    }
    if (informativeLabel) {
        informativeLabel->installEventFilter(q);
        restyle(informativeLabel, lumo::style("component.message_sheet_informative_text"));
    }
    for (QPushButton *button : {ok, apply, discard, reset}) {
        if (button)
            button->installEventFilter(q);
    }
}

void LumoMessageSheetPrivate::initCheckBox()
{
    if (!doubleConfirm)
        return;
    if (QAbstractButton *apply = buttonBox->button(QDialogButtonBox::Apply))
        apply->setEnabled(false);
    if (checkBox) {
        // Built on an earlier run: start unticked again and keep the label's text.
        checkBox->setChecked(false);
        checkBoxWidget->setVisible(doubleConfirm);
        return;
    }
    checkBox = new QCheckBox(QString(), checkBoxWidget);
    checkBox->setObjectName(QStringLiteral("messageSheetCheckBox"));
    checkBox->setChecked(false);
    checkBox->setStyleSheet(lumo::style("component.checkbox_warning"));
    QObject::connect(checkBox, SIGNAL(stateChanged(int)), q, SLOT(slotChangeApplyButtonStatus(int)));
    auto *boxColumn = new QVBoxLayout;
    boxColumn->setContentsMargins(0, 0, 0, 0);
    boxColumn->addWidget(checkBox);
    boxColumn->addStretch(1);

    checkBoxLabel = new ClickableLabel(QString(), checkBoxWidget);
    checkBoxLabel->setObjectName(QStringLiteral("messageSheetCheckBoxLabel"));
    checkBoxLabel->setStyleSheet(lumo::style("component.label_checkbox_warning"));
    checkBoxLabel->setWordWrap(true);
    checkBoxLabel->setMinimumWidth(lumo::scaled(400));
    checkBoxLabel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    QObject::connect(checkBoxLabel, SIGNAL(clicked()), checkBox, SLOT(click()));

    auto *row = new QHBoxLayout(checkBoxWidget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addLayout(boxColumn);
    row->addSpacing(lumo::scaled(8));
    row->addWidget(checkBoxLabel);
    checkBoxWidget->setVisible(doubleConfirm);
    checkBox->setFixedSize(lumo::scaled(24), lumo::scaled(24));
}

void LumoMessageSheetPrivate::setupLayout()
{
    delete q->layout();
    auto *main = new QVBoxLayout(q);
    auto *textColumn = new QVBoxLayout;
    auto *row = new QHBoxLayout;

    const bool hasIcon = !iconLabel->pixmap().isNull() || iconLabel->movie();
    main->setContentsMargins(lumo::scaled(20), lumo::scaled(20), lumo::scaled(20), lumo::scaled(10));
    main->setSpacing(0);
    textColumn->setContentsMargins(0, 0, 0, 0);
    textColumn->setSpacing(0);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    iconLabel->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);

    if (textLabel)
        textColumn->addWidget(textLabel);
    if (informativeLabel) {
        textColumn->addSpacing(lumo::scaled(textSpacing));
        textColumn->addWidget(informativeLabel);
    }

    iconLabel->setVisible(hasIcon);
    if (hasIcon) {
        row->addWidget(iconLabel, 0, Qt::AlignTop);
        row->addSpacing(lumo::scaled(iconSpacing));
    }
    row->addLayout(textColumn);

    if (useScrollArea) {
        delete scrollContent->layout();
        scrollContent->setLayout(row);
        main->addWidget(scrollArea);
    } else {
        main->addLayout(row);
    }

    checkBoxWidget->setVisible(doubleConfirm);
    if (doubleConfirm) {
        main->addSpacing(lumo::scaled(checkBoxSpacing));
        main->addWidget(checkBoxWidget);
    }

    const bool hasButtons = !buttonBox->buttons().isEmpty();
    buttonBox->setVisible(hasButtons);
    if (hasButtons) {
        main->addSpacing(lumo::scaled(buttonBoxSpacing));
        main->addWidget(buttonBox);
    }

    lumo::fitSheet(q, getPreferredWidth());
}

int LumoMessageSheetPrivate::getPreferredWidth() const
{
    const QWidget *parent = q->parentWidget();
    if (!parent)
        return 540; // nothing to fit into: the widest sheet
    const double p = parent->width() / DPIinfo::getInstance()->getDPI();
    if (p < 540)
        return lumo::truncated(p - 40);
    if (p == 540)
        return 480; // deliberate: a parent of exactly 540 gets the narrow sheet
    return lumo::truncated(std::min(p - 40, 540.0));
}

void LumoMessageSheetPrivate::setScrollArea(int width, int height)
{
    useScrollArea = true;
    if (!scrollArea) {
        scrollArea = new QScrollArea(q);
        scrollArea->setObjectName(QStringLiteral("messageSheetScrollArea"));
        scrollArea->setWidgetResizable(true);
        scrollArea->setStyleSheet(lumo::styles({"component.scrollarea", "component.scrollbar"}));
        scrollContent = new QWidget(scrollArea);
        scrollArea->setWidget(scrollContent);
    }
    scrollArea->setFixedSize(lumo::scaled(width), lumo::scaled(height));
    // Room for the vertical scroll bar.
    scrollContent->setFixedWidth(lumo::scaled(width - 24));
}

void LumoMessageSheetPrivate::moveFocus(QWidget *start, bool next)
{
    QWidget *reached = start;
    do {
        reached = next ? reached->nextInFocusChain() : reached->previousInFocusChain();
        // Disabled widgets are skipped too: focusing one fails and would trap Tab.
    } while (reached != start && (reached->focusPolicy() == Qt::NoFocus || !reached->isEnabled()));

    QWidget *target = nullptr;
    if (reached != start && focusList.contains(reached) && canTakeFocus(reached)) {
        target = reached;
    } else {
        target = next ? firstFocusWidget : lastFocusWidget;
        if (target && !canTakeFocus(target)) {
            // The end of the list cannot take focus now (a disabled Apply): take the nearest one that can.
            target = nullptr;
            const int count = int(focusList.size());
            for (int i = 0; i < count && !target; ++i) {
                QWidget *candidate = focusList.at(next ? i : count - 1 - i);
                if (canTakeFocus(candidate))
                    target = candidate;
            }
        }
    }
    if (target)
        target->setFocus(Qt::TabFocusReason);
}

// ---------------------------------------------------------------------------
// LumoMessageSheet
// ---------------------------------------------------------------------------

LumoMessageSheet::LumoMessageSheet(MessageType type, const QString &text, const MsgBoxCustomBtnText &texts, QWidget *parent, bool showIcon)
    : LumoSheet(parent)
    , d(new LumoMessageSheetPrivate(this, type, showIcon))
{
    d->initialize(texts);
    blockWindowButton = true;
    setText(text, QString());
}

LumoMessageSheet::LumoMessageSheet(MessageType type, QWidget *parent, bool showIcon)
    : LumoSheet(parent)
    , d(new LumoMessageSheetPrivate(this, type, showIcon))
{
    d->initialize();
    blockWindowButton = true;
}

LumoMessageSheet::LumoMessageSheet(MessageType type, const QString &text, QWidget *parent, bool showIcon)
    : LumoMessageSheet(type, parent, showIcon)
{
    setText(text, QString());
}

LumoMessageSheet::LumoMessageSheet(MessageType type, const QString &text, const QString &informativeText, QWidget *parent, bool showIcon)
    : LumoMessageSheet(type, text, parent, showIcon)
{
    setInformativeText(informativeText, QString());
}

LumoMessageSheet::LumoMessageSheet(const QString &text, const QString &moviePath, QWidget *parent)
    : LumoMessageSheet(Processing, parent, true)
{
    auto *movie = new QMovie(moviePath, QByteArray(), d->iconLabel);
    if (!movie->isValid())
        qCWarning(lumoLog) << "Cannot read the animation" << moviePath;
    const int side = lumo::roundHalfAway(DPIinfo::getInstance()->getDPI() * 32);
    movie->setScaledSize(QSize(side, side));
    d->iconLabel->setMovie(movie);
    setText(text, QString());
}

LumoMessageSheet::~LumoMessageSheet()
{
    d->run.release(blockWindowButton);
    // The buttons use the proxy style: they go first.
    delete d->buttonBox;
    d->buttonBox = nullptr;
    delete d->buttonStyle;
    d->buttonStyle = nullptr;
}

void LumoMessageSheet::setText(const QString &text, const QString &styleSheet)
{
    if (d->textLabel) {
        d->textLabel->hide();
        d->textLabel->deleteLater();
        d->textLabel = nullptr;
    }
    if (!text.isEmpty()) {
        auto *label = new MessageLabel(this);
        label->setObjectName(QStringLiteral("messageSheetText"));
        label->setStyleSheet(styleSheet.isEmpty() ? lumo::style("component.message_sheet_text") : styleSheet);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignTop);
        label->setFocusPolicy(Qt::StrongFocus);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        label->setOpenExternalLinks(true);
        label->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Maximum);
        label->setText(text);
        d->textLabel = label;
    }
    d->setupLayout();
}

void LumoMessageSheet::setInformativeText(const QString &text, const QString &styleSheet)
{
    if (text.isEmpty()) {
        if (d->informativeLabel) {
            d->informativeLabel->hide();
            d->informativeLabel->deleteLater();
            d->informativeLabel = nullptr;
        }
    } else {
        if (!d->informativeLabel) {
            auto *label = new MessageLabel(this);
            label->setObjectName(QStringLiteral("messageSheetInformativeText"));
            label->setStyleSheet(styleSheet.isEmpty() ? lumo::style("component.message_sheet_informative_text") : styleSheet);
            label->setTextInteractionFlags(
                Qt::TextInteractionFlags(style()->styleHint(QStyle::SH_MessageBox_TextInteractionFlags, nullptr, label)));
            label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
            label->setOpenExternalLinks(true);
            label->setWordWrap(true);
            label->setFocusPolicy(Qt::StrongFocus);
            label->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Maximum);
            d->informativeLabel = label;
        }
        d->informativeLabel->setText(text);
    }
    d->setupLayout();
}

void LumoMessageSheet::setIcon(const QPixmap &pixmap)
{
    d->iconLabel->setPixmap(pixmap);
    d->setupLayout();
}

void LumoMessageSheet::setIconVisible(bool visible)
{
    d->showIcon = visible;
    d->initialize();
}

void LumoMessageSheet::setMessageType(MessageType type)
{
    d->messageType = type;
    d->initialize();
}

void LumoMessageSheet::setDoubleConfirmCheckBox(bool on, const QString &text)
{
    d->doubleConfirm = on;
    d->initialize();
    // Turning it off on a sheet that never had the box leaves no label to take the text.
    if (d->checkBoxLabel)
        d->checkBoxLabel->setText(text);
}

void LumoMessageSheet::setBlockWindowButton(bool block)
{
    blockWindowButton = block;
}

QAbstractButton *LumoMessageSheet::button(QMessageBox::StandardButton which) const
{
    return d->buttonBox->button(QDialogButtonBox::StandardButton(int(which)));
}

void LumoMessageSheet::setDefaultButton(QPushButton *button)
{
    if (button)
        button->setDefault(true);
}

void LumoMessageSheet::setLayoutMargins(int left, int top, int right, int bottom)
{
    const auto margin = [](int v) { return lumo::scaled(std::max(v, 10) - 10); };
    if (QLayout *main = layout())
        main->setContentsMargins(margin(left), margin(top), margin(right), margin(bottom));
}

void LumoMessageSheet::setWidth(int w)
{
    setFixedWidth(lumo::scaled(w + 24));
}

void LumoMessageSheet::setHeight(int h)
{
    setFixedHeight(lumo::scaled(h + 24));
}

void LumoMessageSheet::setSpacing(int textSpacing, int iconSpacing, int checkBoxSpacing, int buttonBoxSpacing)
{
    d->textSpacing = textSpacing;
    d->iconSpacing = iconSpacing;
    d->checkBoxSpacing = checkBoxSpacing;
    d->buttonBoxSpacing = buttonBoxSpacing;
    d->setupLayout();
}

void LumoMessageSheet::setButtonBoxSpacing(int spacing)
{
    if (QLayout *buttons = d->buttonBox->layout())
        buttons->setSpacing(lumo::scaled(spacing));
}

void LumoMessageSheet::setScrollArea(int width, int height)
{
    d->setScrollArea(width, height);
    d->setupLayout();
}

void LumoMessageSheet::showSheet()
{
    show();
    d->run.watchWindow();
}

int LumoMessageSheet::exec()
{
    if (!d->run.begin(blockWindowButton))
        return 0;
    if (d->textLabel)
        d->textLabel->setFocus(Qt::TabFocusReason);
    if (d->messageType == Processing) {
        QMovie *movie = d->iconLabel->movie();
        if (movie && movie->isValid())
            movie->start();
    }
    return d->run.exec();
}

bool LumoMessageSheet::eventFilter(QObject *watched, QEvent *event)
{
    return d->run.filter(watched, event, blockWindowButton);
}

void LumoMessageSheet::done(int result)
{
    d->run.finish(result, blockWindowButton);
    Q_EMIT finished(result);
}

void LumoMessageSheet::quit()
{
    done(0);
}

void LumoMessageSheet::buttonClick(QAbstractButton *button)
{
    done(d->buttonBox->standardButton(button));
}

void LumoMessageSheet::slotChangeApplyButtonStatus(int state)
{
    if (QAbstractButton *apply = button(QMessageBox::Apply))
        apply->setEnabled(state == Qt::Checked);
}

void LumoMessageSheet::showEvent(QShowEvent *event)
{
    // A mask taking the sheet in re-polishes it, and the buttons' style sheets then
    // replace their fixed sizes with their own minimum height.
    for (QDialogButtonBox::StandardButton which : {QDialogButtonBox::Ok, QDialogButtonBox::Apply, QDialogButtonBox::Discard}) {
        if (QPushButton *b = d->buttonBox->button(which))
            sizeButton(b);
    }
    d->buttonBox->setFocusPolicy(Qt::NoFocus);
    for (QMessageBox::StandardButton which : {QMessageBox::Ok, QMessageBox::Discard}) {
        if (QAbstractButton *b = button(which))
            b->setFocusPolicy(Qt::StrongFocus);
    }
    d->focusList = accessibleList(this, AccessibleFilter({this}, Qt::NoFocus));
    d->firstFocusWidget = nullptr;
    d->lastFocusWidget = nullptr;
    for (QWidget *widget : std::as_const(d->focusList)) {
        if (widget->focusPolicy() == Qt::NoFocus)
            continue;
        // The window's tab order follows the list: the chain is creation order otherwise
        // (re-initialised buttons come last), and the walk would skip what lies before them.
        if (d->lastFocusWidget)
            QWidget::setTabOrder(d->lastFocusWidget, widget);
        if (!d->firstFocusWidget)
            d->firstFocusWidget = widget;
        d->lastFocusWidget = widget;
    }
    LumoSheet::showEvent(event);
}

bool LumoMessageSheet::focusNextPrevChild(bool next)
{
    // Tab handled by a widget inside the sheet comes here, not to the window's
    // filter: keep it inside the sheet too, continuing from the focused widget.
    if (!isVisible() || d->focusList.isEmpty())
        return LumoSheet::focusNextPrevChild(next);
    QWidget *start = window()->focusWidget();
    if (!start || !isAncestorOf(start))
        start = window();
    d->moveFocus(start, next);
    return true;
}

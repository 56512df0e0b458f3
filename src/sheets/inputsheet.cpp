#include "sheets/inputsheet_p.h"

#include "resources/registries_p.h"
#include "sheets/messagesheet_p.h"

#include <QDialogButtonBox>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

LumoInputSheetPrivate::LumoInputSheetPrivate(LumoInputSheet *q)
    : QObject(q)
    , q(q)
    , textLabel(new MessageLabel(q))
    , lineEdit(new QLineEdit(q))
    , buttonBox(new QDialogButtonBox(q))
{
    textLabel->setObjectName(QStringLiteral("inputSheetText"));
    lineEdit->setObjectName(QStringLiteral("inputSheetLineEdit"));
    buttonBox->setObjectName(QStringLiteral("inputSheetButtonBox"));
}

void LumoInputSheetPrivate::initialize()
{
    buttonBox->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Discard);
    QPushButton *ok = buttonBox->button(QDialogButtonBox::Ok);
    ok->setText(lumo::caption("ok"));
    ok->setDefault(true);
    ok->setStyleSheet(lumo::style("component.apply_button"));
    QPushButton *discard = buttonBox->button(QDialogButtonBox::Discard);
    discard->setText(lumo::caption("cancel"));
    discard->setStyleSheet(lumo::style("component.cancel_button"));
    q->setStyleSheet(lumo::style("component.message_sheet_other"));
    QObject::connect(buttonBox, SIGNAL(clicked(QAbstractButton *)), q, SLOT(buttonClick(QAbstractButton *)), Qt::UniqueConnection);
    setupLayout();
}

void LumoInputSheetPrivate::setupLayout()
{
    delete q->layout();
    auto *main = new QVBoxLayout(q);
    const int margin = lumo::scaled(10);
    main->setContentsMargins(margin, margin, margin, margin);
    main->setSpacing(0);
    lineEdit->setStyleSheet(lumo::style("component.lineedit"));
    // Polished first: the style sheet's min-height would replace the fixed height.
    lineEdit->ensurePolished();
    lineEdit->setFixedHeight(lumo::scaled(28));
    main->addWidget(textLabel);
    main->addSpacing(lumo::scaled(8));
    main->addWidget(lineEdit);
    if (!buttonBox->buttons().isEmpty()) {
        main->addSpacing(lumo::scaled(24));
        main->addWidget(buttonBox);
    }
    q->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Maximum);
    q->setFixedWidth(lumo::scaled(getPreferredWidth()));
    q->updateGeometry();
    q->adjustSize();
}

int LumoInputSheetPrivate::getPreferredWidth() const
{
    // Never wider than 480, unlike the message sheet.
    const QWidget *parent = q->parentWidget();
    if (!parent)
        return 480;
    const double p = parent->width() / DPIinfo::getInstance()->getDPI();
    if (p < 520)
        return lumo::truncated(p - 40);
    return 480;
}

void LumoInputSheetPrivate::watchWindow()
{
    unwatchWindow();
    watchedWindow = q->window();
    watchedWindow->installEventFilter(q);
}

void LumoInputSheetPrivate::unwatchWindow()
{
    if (watchedWindow)
        watchedWindow->removeEventFilter(q);
    watchedWindow = nullptr;
}

LumoInputSheet::LumoInputSheet(QWidget *parent)
    : LumoSheet(parent)
    , d(new LumoInputSheetPrivate(this))
{
    d->initialize();
    blockWindowButton = true;
}

LumoInputSheet::LumoInputSheet(const QString &text, QWidget *parent)
    : LumoInputSheet(parent)
{
    setText(text);
}

LumoInputSheet::~LumoInputSheet()
{
    if (d->eventLoop && d->inExec) {
        if (blockWindowButton)
            SHAPISetCloseButtonOfWindowEnable(this, true);
        lumo::releaseSheetLoop(d->eventLoop);
        d->eventLoop = nullptr;
    }
    d->unwatchWindow();
}

void LumoInputSheet::setText(const QString &text)
{
    const QString paragraph = QStringLiteral("<p style='line-height: 20px;'>%1</p>").arg(text);
    d->textLabel->setText(DPIinfo::getInstance()->getScaledStyleSheet(paragraph));
    d->textLabel->setWordWrap(true);
    d->textLabel->setAlignment(Qt::AlignTop);
    d->textLabel->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Maximum);
    d->setupLayout();
}

QLineEdit *LumoInputSheet::getLineEdit()
{
    return d->lineEdit;
}

QString LumoInputSheet::getContent()
{
    return d->lineEdit->text();
}

QAbstractButton *LumoInputSheet::button(QMessageBox::StandardButton which) const
{
    return d->buttonBox->button(QDialogButtonBox::StandardButton(int(which)));
}

void LumoInputSheet::setDefaultButton(QPushButton *button)
{
    if (button)
        button->setDefault(true);
}

void LumoInputSheet::setBlockWindowButton(bool block)
{
    blockWindowButton = block;
}

void LumoInputSheet::showSheet()
{
    show();
    d->watchWindow();
    d->lineEdit->setFocus(Qt::OtherFocusReason);
}

int LumoInputSheet::exec()
{
    if (d->inExec) {
        qCWarning(lumoLog) << "Cannot run a sheet that is already running";
        return 0;
    }
    show();
    if (blockWindowButton)
        SHAPISetCloseButtonOfWindowEnable(this, false);
    d->watchWindow();
    setFocus(Qt::TabFocusReason);
    d->lineEdit->setFocus(Qt::OtherFocusReason);
    if (d->eventLoop)
        d->eventLoop->deleteLater();
    d->eventLoop = new QEventLoop(this);
    return lumo::runSheetLoop(this, d->eventLoop, d->inExec);
}

bool LumoInputSheet::eventFilter(QObject *watched, QEvent *event)
{
    if (blockWindowButton && lumo::isUserClose(event)) {
        event->ignore();
        return true;
    }
    if (watched == d->watchedWindow && lumo::isWindowGone(event)) {
        quit();
        return false;
    }
    if (watched != window())
        return LumoSheet::eventFilter(watched, event);
    if (event->type() == QEvent::ShortcutOverride) {
        // Keeps the window's own shortcuts from firing behind the sheet.
        event->accept();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return LumoSheet::eventFilter(watched, event);
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (QAbstractButton *ok = button(QMessageBox::Ok))
            ok->click();
        break;
    case Qt::Key_Escape:
        if (QAbstractButton *discard = button(QMessageBox::Discard))
            discard->click();
        break;
    default:
        break;
    }
    return true;
}

void LumoInputSheet::done(int result)
{
    if (blockWindowButton)
        SHAPISetCloseButtonOfWindowEnable(this, true);
    if (d->eventLoop)
        d->eventLoop->exit(result);
    d->unwatchWindow();
    hide();
    Q_EMIT finished(result);
}

void LumoInputSheet::quit()
{
    done(0);
}

void LumoInputSheet::buttonClick(QAbstractButton *button)
{
    done(d->buttonBox->standardButton(button));
}

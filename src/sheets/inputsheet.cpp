#include "sheets/inputsheet_p.h"

#include "resources/registries_p.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

LumoInputSheetPrivate::LumoInputSheetPrivate(LumoInputSheet *q)
    : QObject(q)
    , q(q)
    , textLabel(new MessageLabel(q))
    , lineEdit(new QLineEdit(q))
    , buttonBox(new QDialogButtonBox(q))
    , run(q, buttonBox)
{
    run.acceptButtons = {QDialogButtonBox::Ok};
    run.quit = [q] { q->quit(); };
    textLabel->setObjectName(QStringLiteral("inputSheetText"));
    lineEdit->setObjectName(QStringLiteral("inputSheetLineEdit"));
    buttonBox->setObjectName(QStringLiteral("inputSheetButtonBox"));
}

void LumoInputSheetPrivate::initialize()
{
    buttonBox->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Discard);
    lumo::clearButtonIcons(buttonBox->buttons());
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
    lumo::fitSheet(q, getPreferredWidth());
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
    d->run.release(blockWindowButton);
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
    d->run.watchWindow();
    d->lineEdit->setFocus(Qt::OtherFocusReason);
}

int LumoInputSheet::exec()
{
    if (!d->run.begin(blockWindowButton))
        return 0;
    setFocus(Qt::TabFocusReason);
    d->lineEdit->setFocus(Qt::OtherFocusReason);
    return d->run.exec();
}

bool LumoInputSheet::eventFilter(QObject *watched, QEvent *event)
{
    return d->run.filter(watched, event, blockWindowButton);
}

void LumoInputSheet::done(int result)
{
    d->run.finish(result, blockWindowButton);
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

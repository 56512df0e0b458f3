#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QStyle>

LumoLineEdit::LumoLineEdit(QWidget *parent)
    : QWidget(parent)
    , boxLayout(nullptr)
    , preLabel(new QLabel)
    , postLabel(nullptr)
    , lineEdit(nullptr)
    , validator(nullptr)
{
    preLabel->setStyleSheet(lumo::style("component.lineedit_label"));
    lineEdit = new QLineEdit;
    lineEdit->setStyleSheet(lumo::style("component.lineedit"));
    postLabel = new QLabel;
    postLabel->setStyleSheet(lumo::style("component.lineedit_label"));

    boxLayout = new QHBoxLayout(this);
    boxLayout->setAlignment(Qt::AlignLeft);
    boxLayout->setSpacing(lumo::scaled(0));
    boxLayout->setContentsMargins(lumo::scaled(0), lumo::scaled(0), lumo::scaled(0), lumo::scaled(0));
    boxLayout->addWidget(preLabel, 0);
    boxLayout->addWidget(lineEdit, 0);
    boxLayout->addWidget(postLabel, 0);
}

LumoLineEdit::~LumoLineEdit() = default;

void LumoLineEdit::setMargins(int left, int top, int right, int bottom)
{
    boxLayout->setContentsMargins(lumo::scaled(left), lumo::scaled(top), lumo::scaled(right), lumo::scaled(bottom));
}

void LumoLineEdit::setSpacing(int spacing)
{
    boxLayout->setSpacing(lumo::scaled(spacing));
}

void LumoLineEdit::setValidator(Validator fn)
{
    validator = fn;
}

bool LumoLineEdit::validate()
{
    if (!validator)
        return true;
    return validator(lineEdit->text());
}

void LumoLineEdit::setError(bool on)
{
    lineEdit->setProperty("error", on);
    // The style sheet selects on the property; only a re-polish makes it look again.
    lineEdit->style()->polish(lineEdit);
    lineEdit->update();
}

QLabel *LumoLineEdit::getPreLabel()
{
    return preLabel;
}

QLabel *LumoLineEdit::getPostLabel()
{
    return postLabel;
}

QLineEdit *LumoLineEdit::getLineEdit()
{
    return lineEdit;
}

QString LumoLineEdit::getEditText() const
{
    return lineEdit->text();
}

#include <lumo/sheets.h>

#include "resources/registries_p.h"

#include <QPushButton>

LumoCountdownMessageBox::LumoCountdownMessageBox(int seconds, QWidget *parent)
    : QMessageBox(parent)
    , remainingSeconds(seconds)
{
    connect(&timer, SIGNAL(timeout()), this, SLOT(slotTick()));
    timer.setInterval(1000);
    setStandardButtons(QMessageBox::Ok | QMessageBox::Discard);
    setStyleSheet(lumo::style("component.info_message_box"));
    button(QMessageBox::Ok)->setStyleSheet(lumo::style("component.apply_button"));
    button(QMessageBox::Discard)->setStyleSheet(lumo::style("component.cancel_button"));
    button(QMessageBox::Discard)->setText(lumo::caption("cancel"));
    setDefaultButton(QMessageBox::Ok);
    updateButtonText();
}

LumoCountdownMessageBox::~LumoCountdownMessageBox() = default;

void LumoCountdownMessageBox::updateButtonText()
{
    if (QAbstractButton *ok = button(QMessageBox::Ok))
        ok->setText(QStringLiteral("%1(%2)").arg(lumo::caption("ok"), QString::number(remainingSeconds)));
}

void LumoCountdownMessageBox::step()
{
    const int r = remainingSeconds;
    remainingSeconds = r - 1;
    if (r < 1) {
        timer.stop();
        if (QPushButton *ok = defaultButton())
            ok->animateClick();
    } else {
        updateButtonText();
    }
}

void LumoCountdownMessageBox::slotTick()
{
    step();
}

void LumoCountdownMessageBox::showEvent(QShowEvent *event)
{
    QMessageBox::showEvent(event);
    step();
    // Deliberately restarted even when the step has just stopped it: a count of 0
    // clicks Ok at once and once more a second later.
    timer.start();
}

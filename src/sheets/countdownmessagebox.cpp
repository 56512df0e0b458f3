#include <lumo/sheets.h>

#include "resources/registries_p.h"
#include "sheets/sheets_p.h"

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
        if (QPushButton *target = defaultButton())
            target->animateClick();
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
    // Here rather than at construction: the caller may have replaced the buttons since,
    // and the new ones get the look of the box's own.
    const QList<QAbstractButton *> current = buttons();
    lumo::clearButtonIcons(current);
    for (QAbstractButton *button : current) {
        if (button->styleSheet().isEmpty())
            button->setStyleSheet(
                lumo::style(standardButton(button) == QMessageBox::Ok ? "component.apply_button" : "component.cancel_button"));
    }
    // setStandardButtons() leaves no default; QDialog would then make whichever button
    // follows the focus widget the default, so the count could end on Cancel.
    if (!defaultButton())
        if (auto *ok = qobject_cast<QPushButton *>(button(QMessageBox::Ok)))
            setDefaultButton(ok);
    QMessageBox::showEvent(event);
    step();
    // Deliberately restarted even when the step has just stopped it: a count of 0
    // clicks Ok at once and once more a second later.
    timer.start();
}

#include "sheets/sheets_p.h"

#include "resources/registries_p.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPointer>

namespace
{
// The sheet lives on the heap: the window owns it through the mask and may
// destroy it while exec() runs; exec() then returns 0 and nothing is left to delete.
int runSheet(LumoMessageSheet *sheet, QWidget *parent)
{
    QPointer<LumoMessageSheet> guard(sheet);
    LumoMask::createMask(sheet, parent->window(), lumo::standardMaskColor());
    const int result = sheet->exec();
    delete guard.data();
    return result;
}

QAbstractButton *styledButton(QMessageBox &box, QMessageBox::StandardButton which, const QString &text, const char *styleKey)
{
    QAbstractButton *button = box.addButton(which);
    button->setText(text);
    button->setStyleSheet(lumo::style(styleKey));
    lumo::clearButtonIcons({button});
    return button;
}

int runFallback(QMessageBox::Icon icon, const QString &title, const QString &text, const QString &informativeText, bool showIcon,
                const char *styleKey)
{
    QMessageBox box;
    box.setWindowTitle(title);
    box.setText(text);
    if (!informativeText.isEmpty())
        box.setInformativeText(informativeText);
    if (showIcon)
        box.setIcon(icon);
    box.setStyleSheet(lumo::style(styleKey));
    styledButton(box, QMessageBox::Ok, lumo::caption("ok"), "component.apply_button");
    return box.exec();
}
}

void showInfoMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon)
{
    if (parent)
        runSheet(new LumoMessageSheet(LumoMessageSheet::Information, text, parent, showIcon), parent);
    else
        runFallback(QMessageBox::Information, title, text, QString(), showIcon, "component.info_message_box");
}

void showWarningMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon)
{
    if (parent)
        runSheet(new LumoMessageSheet(LumoMessageSheet::Warning, text, parent, showIcon), parent);
    else
        runFallback(QMessageBox::Warning, title, text, QString(), showIcon, "component.warning_message_box");
}

void showWarningMsg(const QString &title, const QString &text, const QString &informativeText, QWidget *parent, bool showIcon)
{
    if (parent)
        runSheet(new LumoMessageSheet(LumoMessageSheet::Warning, text, informativeText, parent, showIcon), parent);
    else
        runFallback(QMessageBox::Warning, title, text, informativeText, showIcon, "component.warning_message_box");
}

int showConfirmMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon)
{
    return showConfirmMsgCustomBtn(title, text, MsgBoxCustomBtnText(), parent, showIcon);
}

int showConfirmMsgCustomBtn(const QString &title, const QString &text, const MsgBoxCustomBtnText &texts, QWidget *parent, bool showIcon)
{
    if (parent)
        return runSheet(new LumoMessageSheet(LumoMessageSheet::Confirm, text, texts, parent, showIcon), parent);

    QMessageBox box;
    box.setWindowTitle(title);
    box.setText(text);
    if (showIcon)
        box.setIcon(QMessageBox::Question);
    box.setStyleSheet(lumo::style("component.confirm_message_box"));
    styledButton(box, QMessageBox::Cancel, texts.cancelText.isEmpty() ? lumo::caption("cancel") : texts.cancelText,
                 "component.cancel_button");
    styledButton(box, QMessageBox::Apply, texts.okText.isEmpty() ? lumo::caption("ok") : texts.okText, "component.apply_button");
    return box.exec();
}

void showUpgradingMsg(const QString &title, const QString &text, QWidget *parent, bool showIcon)
{
    if (parent)
        runSheet(new LumoMessageSheet(LumoMessageSheet::Upgrading, text, parent, showIcon), parent);
    else
        runFallback(QMessageBox::Warning, title, text, QString(), showIcon, "component.upgrading_message_box");
}

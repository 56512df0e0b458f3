#include <lumo/sheets.h>

#include <QWindow>

#ifdef Q_OS_MACOS
#include <objc/message.h>
#include <objc/runtime.h>
#endif

void SHAPISetCloseButtonOfWindowEnable(QWidget *widget, bool enable, void **reserved)
{
    Q_UNUSED(reserved)
    if (!widget)
        return;
    QWindow *handle = widget->window()->windowHandle();
    if (!handle)
        return;
#ifdef Q_OS_MACOS
    // winId() of a Cocoa window is its NSView.
    id view = reinterpret_cast<id>(handle->winId());
    if (!view)
        return;
    auto sendId = reinterpret_cast<id (*)(id, SEL)>(objc_msgSend);
    auto sendButton = reinterpret_cast<id (*)(id, SEL, unsigned long)>(objc_msgSend);
    auto sendBool = reinterpret_cast<void (*)(id, SEL, BOOL)>(objc_msgSend);
    id nsWindow = sendId(view, sel_registerName("window"));
    if (!nsWindow)
        return;
    const unsigned long closeButton = 0; // NSWindowCloseButton
    id button = sendButton(nsWindow, sel_registerName("standardWindowButton:"), closeButton);
    if (button)
        sendBool(button, sel_registerName("setEnabled:"), enable ? YES : NO);
#else
    Q_UNUSED(enable)
#endif
}

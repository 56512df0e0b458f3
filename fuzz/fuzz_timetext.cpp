// The time combo box: times chosen by the application and times typed by the user.

#include "fuzzsupport.h"

#include <lumo/controls.h>

#include <QFocusEvent>
#include <QLineEdit>

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    static LumoTimeComboBox *box = [] {
        auto *created = new LumoTimeComboBox;
        for (int half = 0; half < 48; ++half)
            created->addItem(
                QStringLiteral("%1:%2").arg(half / 2, 2, 10, QLatin1Char('0')).arg(half % 2 ? 30 : 0, 2, 10, QLatin1Char('0')));
        created->setCustomText(QStringLiteral("(custom)"));
        created->show();
        return created;
    }();
    if (size == 0)
        return 0;
    // The first byte picks the way in and whether the box is editable.
    const uint8_t mode = data[0];
    const std::string text(reinterpret_cast<const char *>(data + 1), size - 1);
    box->setEditable(mode & 1);
    switch ((mode >> 1) % 3) {
    case 0:
        box->setCurrentText(text);
        break;
    case 1:
        box->setDefault(text);
        break;
    default:
        if (box->lineEdit())
            box->lineEdit()->setText(QString::fromUtf8(text.data(), qsizetype(text.size())));
        break;
    }
    QFocusEvent focusOut(QEvent::FocusOut);
    QCoreApplication::sendEvent(box, &focusOut);
    fuzzsupport::check(box->currentIndex() >= 0 && box->currentIndex() < box->count(), "no row is current");
    return 0;
}

#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QEnterEvent>
#include <QMouseEvent>
#include <QShowEvent>

LumoButton::LumoButton(const QString &text, int kind)
    : QPushButton(nullptr)
{
    static const char *const keys[] = {
        "component.apply_button",   "component.cancel_button", "component.select_paging_button", "component.nonselect_paging_button",
        "component.default_button", "component.red_button",
    };
    setText(text);
    setFlat(true);
    setSizePolicy(QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed));
    // Unsigned on purpose: negative kinds fall outside the table like 6 and above.
    if (unsigned(kind) < 6u)
        setStyleSheet(lumo::style(keys[kind]));
}

LumoButton::~LumoButton() = default;

LumoIconButton::LumoIconButton(const QPixmap &pixmap)
    : QToolButton(nullptr)
{
    setDefaultIcon(pixmap);
    initialize();
}

LumoIconButton::LumoIconButton(const QString &imageName)
    : QToolButton(nullptr)
{
    setAllIcon(imageName);
    initialize();
}

LumoIconButton::~LumoIconButton() = default;

void LumoIconButton::initialize()
{
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setSizePolicy(QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed));
    setStyleSheet(lumo::style("component.icon_button"));
    // An attached menu opens on a plain click.
    setPopupMode(QToolButton::InstantPopup);
}

void LumoIconButton::setDefaultIcon(const QPixmap &pixmap)
{
    normalIcon = QIcon(pixmap);
    pressIcon = normalIcon;
    hoverIcon = normalIcon;
    disableIcon = normalIcon;
    stateIconSize = lumo::logicalSize(pixmap);
    setIcon(normalIcon);
}

void LumoIconButton::setAllIcon(const QString &imageName)
{
    normalIcon = QIcon(getGlobalImage(imageName, ImageManager::Normal));
    hoverIcon = QIcon(getGlobalImage(imageName, ImageManager::Hover));
    pressIcon = QIcon(getGlobalImage(imageName, ImageManager::Click));
    disableIcon = QIcon(getGlobalImage(imageName, ImageManager::Disable));
    stateIconSize = lumo::logicalSize(getGlobalImage(imageName, ImageManager::Normal));
    setIcon(normalIcon);
}

void LumoIconButton::setPressIcon(const QPixmap &pixmap)
{
    pressIcon = QIcon(pixmap);
}

void LumoIconButton::setHoverIcon(const QPixmap &pixmap)
{
    hoverIcon = QIcon(pixmap);
}

void LumoIconButton::setDisableIcon(const QPixmap &pixmap)
{
    disableIcon = QIcon(pixmap);
}

void LumoIconButton::applyHoverStyle()
{
    showStateIcon(hoverIcon);
}

void LumoIconButton::applyNormalStyle()
{
    showStateIcon(normalIcon);
}

void LumoIconButton::showStateIcon(const QIcon &icon)
{
    setIcon(icon);
    setIconSize(stateIconSize);
}

void LumoIconButton::enterEvent(QEnterEvent *event)
{
    if (isEnabled())
        showStateIcon(hoverIcon);
    QToolButton::enterEvent(event);
}

void LumoIconButton::leaveEvent(QEvent *event)
{
    // A focused button keeps its hover image: it doubles as the focus look.
    if (isEnabled() && !hasFocus())
        showStateIcon(normalIcon);
    QToolButton::leaveEvent(event);
}

void LumoIconButton::mousePressEvent(QMouseEvent *event)
{
    if (isEnabled())
        showStateIcon(pressIcon);
    QToolButton::mousePressEvent(event);
}

void LumoIconButton::mouseReleaseEvent(QMouseEvent *event)
{
    // Back to normal even under the pointer; hover returns with the next enter.
    if (isEnabled())
        showStateIcon(normalIcon);
    QToolButton::mouseReleaseEvent(event);
}

void LumoIconButton::showEvent(QShowEvent *event)
{
    showStateIcon(isEnabled() ? normalIcon : disableIcon);
    QToolButton::showEvent(event);
}

void LumoIconButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        showStateIcon(isEnabled() ? normalIcon : disableIcon);
    QToolButton::changeEvent(event);
}

LumoCheckBox::LumoCheckBox(const QString &text, QWidget *parent)
    : QCheckBox(text, parent)
{
    setStyleSheet(lumo::style("component.checkbox"));
}

LumoCheckBox::~LumoCheckBox() = default;

LumoRadioButton::LumoRadioButton(const QString &text, QWidget *parent)
    : QRadioButton(text, parent)
{
    setStyleSheet(lumo::style("component.radio_button"));
}

LumoRadioButton::~LumoRadioButton() = default;

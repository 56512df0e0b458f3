#include <lumo/controls.h>

#include "resources/registries_p.h"

#include <QCursor>
#include <QEnterEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QResizeEvent>

LumoLabel::LumoLabel(QWidget *parent, Qt::WindowFlags flags)
    : QLabel(parent, flags)
{
    setStyleSheet(lumo::style("component.label"));
}

LumoLabel::LumoLabel(const QString &text, QWidget *parent, Qt::WindowFlags flags)
    : QLabel(text, parent, flags)
{
    setStyleSheet(lumo::style("component.label"));
}

LumoLabel::~LumoLabel() = default;

void LumoLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    if (!wordWrap() || sizePolicy().verticalPolicy() != QSizePolicy::Minimum)
        return;
    // Reset first so that the height can shrink as well as grow.
    setMinimumHeight(0);
    setMinimumHeight(heightForWidth(width()));
}

ClickableLabel::ClickableLabel(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
}

ClickableLabel::~ClickableLabel() = default;

void ClickableLabel::mousePressEvent(QMouseEvent *event)
{
    Q_EMIT clicked();
    QLabel::mousePressEvent(event);
}

LinkLabel::LinkLabel(const QString &text, QLabel *parent)
    : ClickableLabel(text, parent)
    , hoverUnderline(true)
{
}

LinkLabel::~LinkLabel() = default;

void LinkLabel::setHoverUnderline(bool underline)
{
    hoverUnderline = underline;
}

void LinkLabel::setHyperLink(const QString &link)
{
    hyperLink = link;
}

QString LinkLabel::getHyperLink()
{
    return hyperLink;
}

void LinkLabel::enterEvent(QEnterEvent *event)
{
    if (!isEnabled()) {
        QWidget::enterEvent(event);
        return;
    }
    QGuiApplication::setOverrideCursor(QCursor(Qt::PointingHandCursor));
    if (hoverUnderline) {
        QFont underlined = font();
        underlined.setUnderline(true);
        setFont(underlined);
    }
    QWidget::enterEvent(event);
}

void LinkLabel::leaveEvent(QEvent *event)
{
    if (isEnabled()) {
        QGuiApplication::restoreOverrideCursor();
        if (hoverUnderline) {
            QFont plain = font();
            plain.setUnderline(false);
            setFont(plain);
        }
        QWidget::leaveEvent(event);
        return;
    }
    // Deliberately lopsided: a disabled label forwards only enter events that
    // arrive here and swallows a real leave. Owners rely on the override staying.
    if (auto *enter = dynamic_cast<QEnterEvent *>(event))
        QWidget::enterEvent(enter);
}

QString getHtmlEscapedStringForToolTip(const QString &text)
{
    QString escaped = text.toHtmlEscaped();
    escaped.replace(QStringLiteral("\n"), QStringLiteral("<br>"), Qt::CaseSensitive);
    return QStringLiteral("<p style='white-space:pre'>") + escaped + QStringLiteral("</p>");
}

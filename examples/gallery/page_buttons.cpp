// Buttons & inputs: every push button kind, icon buttons, check and radio
// buttons, a menu, line edits with labels and the label classes.

#include "gallery.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

namespace
{
using gallery::label;

QHBoxLayout *row(QVBoxLayout *parent, int spacing = 10)
{
    auto *layout = new QHBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gallery::px(spacing));
    parent->addLayout(layout);
    return layout;
}

bool isPortNumber(const QString &text)
{
    bool ok = false;
    const int port = text.toInt(&ok);
    return ok && port > 0 && port < 65536;
}

// Counts the clicks of a ClickableLabel into its own text.
class ClickCounter : public QObject
{
    Q_OBJECT
public:
    explicit ClickCounter(ClickableLabel *target)
        : QObject(target)
        , target(target)
    {
        connect(target, SIGNAL(clicked()), this, SLOT(count()));
        show();
    }

private Q_SLOTS:
    void count()
    {
        ++clicks;
        show();
    }

private:
    void show() { target->setText(QStringLiteral("Clickable label: pressed %1 times").arg(clicks)); }

    ClickableLabel *target;
    int clicks = 0;
};

void addPushButtons(QVBoxLayout *layout)
{
    layout->addWidget(label(QStringLiteral("Push buttons"), "section"));
    layout->addWidget(label(QStringLiteral("Kinds 0 to 5 and an unstyled kind; the second row is disabled."), "note"));
    struct Kind {
        int kind;
        const char *text;
    };
    const Kind kinds[] = {{LumoButton::Apply, "Apply"},
                          {LumoButton::Cancel, "Cancel"},
                          {LumoButton::SelectPaging, "3"},
                          {LumoButton::NonselectPaging, "4"},
                          {LumoButton::Default, "Default"},
                          {LumoButton::Red, "Delete"},
                          {6, "Unstyled"}};
    for (const bool enabled : {true, false}) {
        QHBoxLayout *buttons = row(layout);
        for (const Kind &kind : kinds) {
            auto *button = new LumoButton(QString::fromLatin1(kind.text), kind.kind);
            if (kind.kind == LumoButton::SelectPaging || kind.kind == LumoButton::NonselectPaging)
                button->setFixedSize(gallery::px(26), gallery::px(26));
            button->setEnabled(enabled);
            buttons->addWidget(button);
        }
        buttons->addStretch(1);
    }
}

void addIconButtons(QVBoxLayout *layout)
{
    layout->addWidget(label(QStringLiteral("Icon buttons"), "section"));
    layout->addWidget(
        label(QStringLiteral("Normal, hover (forced), disabled, one built from a pixmap, and two that open a menu."), "note"));
    QHBoxLayout *buttons = row(layout, 6);
    for (const char *name : {"bt_pagebar_backend", "bt_pagebar_back", "bt_pagebar_next", "bt_pagebar_nextend"})
        buttons->addWidget(new LumoIconButton(QString::fromLatin1(name)));
    auto *hovered = new LumoIconButton(QStringLiteral("bt_pagebar_refresh"));
    hovered->setObjectName(QStringLiteral("hoveredIconButton"));
    hovered->setToolTip(getHtmlEscapedStringForToolTip(QStringLiteral("Refresh\n  (F5)")));
    buttons->addWidget(hovered);
    auto *disabled = new LumoIconButton(QStringLiteral("bt_pagebar_refresh"));
    disabled->setEnabled(false);
    buttons->addWidget(disabled);
    buttons->addSpacing(gallery::px(12));
    buttons->addWidget(new LumoIconButton(getGlobalImage("folder", ImageManager::Normal)));
    buttons->addSpacing(gallery::px(12));

    auto *withMenu = new LumoIconButton(QStringLiteral("bt_search_dropdown"));
    auto *menu = new LumoMenu(withMenu);
    menu->setStyleSheet(getStyleSheet("component.menu", false));
    menu->addAction(QStringLiteral("Refresh now"));
    menu->addAction(QStringLiteral("Refresh every minute"))->setCheckable(true);
    menu->addSeparator();
    menu->addAction(QStringLiteral("Settings…"));
    withMenu->setMenu(menu);
    buttons->addWidget(withMenu);

    auto *actions = new LumoButton(QStringLiteral("Actions"), LumoButton::Default);
    auto *actionMenu = new LumoMenu(actions);
    actionMenu->setStyleSheet(getStyleSheet("component.menu", false));
    actionMenu->addAction(QStringLiteral("Rename"));
    actionMenu->addAction(QStringLiteral("Move to…"));
    actionMenu->addAction(QStringLiteral("Delete"));
    actions->setMenu(actionMenu);
    buttons->addWidget(actions);
    buttons->addStretch(1);

    // A popup never reaches a window grab, so the menu look is also shown in place.
    layout->addWidget(label(QStringLiteral("The menu look, shown in place:"), "note"));
    auto *preview = new LumoMenu;
    preview->setWindowFlags(Qt::Widget);
    preview->setStyleSheet(getStyleSheet("component.menu", false));
    preview->addAction(QStringLiteral("Open"));
    QAction *checked = preview->addAction(QStringLiteral("Show hidden files"));
    checked->setCheckable(true);
    checked->setChecked(true);
    preview->addAction(QStringLiteral("Share link"))->setEnabled(false);
    preview->addSeparator();
    preview->addAction(QStringLiteral("Properties"));
    preview->setActiveAction(preview->actions().constFirst());
    QHBoxLayout *previewRow = row(layout);
    previewRow->addWidget(preview);
    previewRow->addStretch(1);
}

void addChoices(QVBoxLayout *layout)
{
    layout->addWidget(label(QStringLiteral("Check boxes and radio buttons"), "section"));
    QHBoxLayout *checks = row(layout, 24);
    auto *on = new LumoCheckBox(QStringLiteral("Keep me signed in"));
    on->setChecked(true);
    checks->addWidget(on);
    checks->addWidget(new LumoCheckBox(QStringLiteral("Send usage data")));
    auto *disabledOn = new LumoCheckBox(QStringLiteral("Locked on"));
    disabledOn->setChecked(true);
    disabledOn->setEnabled(false);
    checks->addWidget(disabledOn);
    auto *disabledOff = new LumoCheckBox(QStringLiteral("Locked off"));
    disabledOff->setEnabled(false);
    checks->addWidget(disabledOff);
    checks->addStretch(1);

    QHBoxLayout *radios = row(layout, 24);
    auto *group = new QButtonGroup(layout);
    const char *texts[] = {"Daily", "Weekly", "Monthly"};
    for (int i = 0; i < 3; ++i) {
        auto *radio = new LumoRadioButton(QString::fromLatin1(texts[i]));
        radio->setChecked(i == 1);
        group->addButton(radio);
        radios->addWidget(radio);
    }
    auto *never = new LumoRadioButton(QStringLiteral("Never (unavailable)"));
    never->setEnabled(false);
    radios->addWidget(never);
    radios->addStretch(1);
}

LumoLineEdit *lineEdit(const QString &pre, const QString &post, const QString &text)
{
    auto *edit = new LumoLineEdit;
    edit->getPreLabel()->setText(pre);
    edit->getPreLabel()->setFixedWidth(gallery::px(80));
    edit->getPostLabel()->setText(post);
    edit->getLineEdit()->setFixedWidth(gallery::px(220));
    edit->getLineEdit()->setText(text);
    edit->setSpacing(4);
    return edit;
}

void addLineEdits(QVBoxLayout *layout)
{
    layout->addWidget(label(QStringLiteral("Line edits"), "section"));
    auto *name = lineEdit(QStringLiteral("Name"), QString(), QStringLiteral("Quarterly report"));
    layout->addWidget(name);
    auto *empty = lineEdit(QStringLiteral("Server"), QString(), QString());
    empty->getLineEdit()->setPlaceholderText(QStringLiteral("backup.example.com"));
    layout->addWidget(empty);
    auto *port = lineEdit(QStringLiteral("Port"), QStringLiteral("Enter a number from 1 to 65535."), QStringLiteral("70000"));
    port->setValidator(isPortNumber);
    port->setError(!port->validate());
    port->getPostLabel()->setStyleSheet(
        port->getPostLabel()->styleSheet() +
        DPIinfo::getInstance()->getScaledStyleSheet(gallery::themed(QStringLiteral("QLabel { color: #D93F44; padding-left: 8px; }"))));
    layout->addWidget(port);
    auto *size = lineEdit(QStringLiteral("Limit"), QStringLiteral("GB"), QStringLiteral("250"));
    size->getPostLabel()->setStyleSheet(size->getPostLabel()->styleSheet() +
                                        DPIinfo::getInstance()->getScaledStyleSheet(QStringLiteral("QLabel { padding-left: 8px; }")));
    layout->addWidget(size);
    auto *disabled = lineEdit(QStringLiteral("Account"), QString(), QStringLiteral("admin (managed)"));
    disabled->getLineEdit()->setEnabled(false);
    layout->addWidget(disabled);
}

void addLabels(QVBoxLayout *layout)
{
    layout->addWidget(label(QStringLiteral("Labels"), "section"));
    auto *wrapped = new LumoLabel(
        QStringLiteral("A LumoLabel with word wrap and a Minimum vertical policy grows in height as its width shrinks, so a long "
                       "explanation like this one is never cut off, whatever width the layout gives it."));
    wrapped->setWordWrap(true);
    wrapped->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    wrapped->setMaximumWidth(gallery::px(440));
    layout->addWidget(wrapped);

    QHBoxLayout *links = row(layout, 24);
    auto *link = new LinkLabel(QStringLiteral("Open the help center"));
    link->setHyperLink(QStringLiteral("https://example.invalid/help"));
    link->setToolTip(getHtmlEscapedStringForToolTip(link->getHyperLink()));
    link->setStyleSheet(
        DPIinfo::getInstance()->getScaledStyleSheet(gallery::themed(QStringLiteral("QLabel { color: #2F6FED; font-size: 13px; }"))));
    links->addWidget(link);
    auto *clickable = new ClickableLabel;
    clickable->setStyleSheet(getStyleSheet("component.label", false));
    new ClickCounter(clickable);
    links->addWidget(clickable);
    links->addStretch(1);
}

QWidget *createPage()
{
    const gallery::ScrollingPage frame = gallery::scrollingPage(QStringLiteral("Buttons & inputs"), 10);
    QVBoxLayout *layout = frame.layout;
    addPushButtons(layout);
    addIconButtons(layout);
    addChoices(layout);
    addLineEdits(layout);
    addLabels(layout);
    layout->addStretch(1);
    return frame.page;
}

void stagePage(QWidget *page)
{
    if (auto *hovered = page->findChild<LumoIconButton *>(QStringLiteral("hoveredIconButton")))
        hovered->applyHoverStyle();
}
}

LUMO_GALLERY_PAGE(20, QStringLiteral("Buttons & inputs"), createPage, stagePage)

#include "page_buttons.moc"

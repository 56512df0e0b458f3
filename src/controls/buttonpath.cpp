#include <lumo/controls.h>

#include "controls/buttonpath_p.h"
#include "resources/registries_p.h"

#include <QAction>
#include <QFontMetrics>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalMapper>

#include <limits>

namespace lumo
{
QString segmentPath(const QStringList &texts, int last)
{
    QString result;
    for (int k = 0; k <= last && k < texts.size(); ++k) {
        if (k > 0)
            result += QLatin1Char('/');
        QString text = texts.at(k);
        if (text.contains(QLatin1Char('&')))
            text.replace(QStringLiteral("&&"), QStringLiteral("&"));
        result += text;
    }
    return result;
}
}

RetiredPathMenu::RetiredPathMenu(QMenu *menu, const QStringList &texts, QObject *parent)
    : QObject(parent)
    , texts(texts)
{
    for (QAction *action : menu->actions()) {
        menu->removeAction(action);
        action->setParent(this);
        connect(action, SIGNAL(triggered(bool)), this, SLOT(pick()));
    }
    deleteLater();
}

void RetiredPathMenu::pick()
{
    if (auto *action = qobject_cast<QAction *>(sender()))
        Q_EMIT picked(lumo::segmentPath(texts, action->data().toInt() / 2));
}

LumoButtonPath::LumoButtonPath(QWidget *parent)
    : QTableWidget(parent)
    , changeFolderBtn(new QToolButton)
    , viewWidth(0)
    , nameMapper(nullptr)
    , menuMapper(nullptr)
{
    menuMapper = new QSignalMapper(this);
    nameMapper = new QSignalMapper(this);

    insertRow(0);
    horizontalHeader()->hide();
    // The style's minimum would widen the 6-pixel arrow columns.
    horizontalHeader()->setMinimumSectionSize(0);
    verticalHeader()->hide();
    setShowGrid(false);
    setSelectionMode(QAbstractItemView::NoSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFocusPolicy(Qt::NoFocus);
    setFixedHeight(lumo::scaled(28));

    auto *menu = new QMenu;
    menu->setStyleSheet(lumo::style("component.menu"));
    changeFolderBtn->setMenu(menu);

    changeFolderBtn->setIcon(QIcon(getGlobalImage(QStringLiteral("folder"), ImageManager::Normal)));
    changeFolderBtn->setIconSize(QSize(20, 20));
    changeFolderBtn->setPopupMode(QToolButton::InstantPopup);
    changeFolderBtn->hide();
    changeFolderBtn->setParent(this);
    changeFolderBtn->setStyleSheet(lumo::style("component.button_path_change_folder_btn"));
    changeFolderBtn->setFixedSize(lumo::scaled(26), lumo::scaled(26));
    changeFolderBtn->move(lumo::scaled(1), lumo::scaled(1));

    connect(menuMapper, SIGNAL(mappedInt(int)), this, SLOT(slotPathBarClicked(int)));
    connect(nameMapper, SIGNAL(mappedInt(int)), this, SLOT(slotPathBarClicked(int)));

    setStyleSheet(lumo::style("component.button_path"));
}

LumoButtonPath::~LumoButtonPath()
{
    // Gone before the buttons: each destroyed button would otherwise be looked
    // up among thousands of senders.
    delete nameMapper;
    delete menuMapper;
    // A tool button does not own its menu.
    delete changeFolderBtn->menu();
}

void LumoButtonPath::retireMenu()
{
    QMenu *menu = changeFolderBtn->menu();
    const QList<QAction *> actions = menu->actions();
    if (actions.isEmpty())
        return;
    // Unmapped first: a mapper looks each destroyed sender up among all its
    // senders, which makes clearing thousands of entries quadratic.
    for (QAction *action : actions) {
        disconnect(action, nullptr, menuMapper, nullptr);
        menuMapper->removeMappings(action);
    }
    QStringList texts;
    for (int k = 0; k < buttons.size(); k += 2)
        texts << (buttons.at(k) ? buttons.at(k)->text() : QString());
    auto *retired = new RetiredPathMenu(menu, texts, this);
    connect(retired, SIGNAL(picked(QString)), this, SIGNAL(sigUpdatePath(QString)));
}

void LumoButtonPath::refresh(QString path)
{
    viewWidth = horizontalScrollBar()->pageStep();
    changeFolderBtn->hide();
    retireMenu();
    // Deleted once control returns to the event loop: the owner may refresh
    // from the click of one of them.
    while (!buttons.isEmpty()) {
        if (QPushButton *button = buttons.takeFirst()) {
            disconnect(button, nullptr, nameMapper, nullptr);
            nameMapper->removeMappings(button);
            button->hide();
            button->deleteLater();
        }
    }
    clear();
    setColumnCount(0);

    const QStringList segments = path.split(QLatin1Char('/'), Qt::SkipEmptyParts, Qt::CaseSensitive);
    if (!segments.isEmpty()) {
        // All columns at once: a view re-lays every cell widget out on each
        // inserted column, which makes thousands of segments quadratic.
        setColumnCount(int(segments.size()) * 2 - 1);
        const QIcon arrowIcon(getGlobalImage(QStringLiteral("bt_next"), ImageManager::Normal));
        const QString arrowStyle = lumo::style("component.button_path_arrow");
        const QString nameStyle = lumo::style("component.button_path_name_button");
        // Widths are measured with the font of a new parentless button before its
        // style sheet applies, whatever font the row's viewport passes on.
        const QFontMetrics metrics(QPushButton().font());
        for (int i = 0; i < segments.size(); ++i) {
            const QString &segment = segments.at(i);
            if (i > 0) {
                // Born in the viewport: a button that setCellWidget() moves there is
                // polished once for the move and again when shown.
                auto *arrow = new QPushButton(viewport());
                arrow->setIcon(arrowIcon);
                arrow->setFlat(true);
                arrow->setStyleSheet(arrowStyle);
                arrow->setFixedSize(lumo::scaled(6), lumo::scaled(28));
                buttons.append(arrow);
                setCellWidget(0, 2 * i - 1, arrow);
            }

            auto *button = new QPushButton(viewport());
            QString text = segment;
            if (text.contains(QLatin1Char('&')))
                text.replace(QLatin1Char('&'), QStringLiteral("&&")); // a literal "&", not a mnemonic
            button->setText(text);
            button->setFlat(true);
            button->setStyleSheet(nameStyle);
            button->setFixedHeight(lumo::scaled(26));
            button->setFixedWidth(lumo::scaled(double(metrics.boundingRect(segment).width()) + 16));

            connect(button, SIGNAL(clicked(bool)), nameMapper, SLOT(map()));
            nameMapper->setMapping(button, 2 * i);

            buttons.append(button);
            setCellWidget(0, 2 * i, button);
            setColumnWidth(2 * i, button->width());
        }
    }
    updateColumnSize();
}

QString LumoButtonPath::getPath(int index)
{
    if (index < 0)
        return QString();
    const int last = qMin(index, int(buttons.size()) - 1);
    QStringList texts;
    for (int k = 0; k <= last; k += 2)
        texts << (buttons.at(k) ? buttons.at(k)->text() : QString());
    // An arrow index ends the path with its slash.
    return lumo::segmentPath(texts, last / 2) + (last % 2 == 1 ? QStringLiteral("/") : QString());
}

void LumoButtonPath::updateColumnSize()
{
    const int arrowWidth = lumo::scaled(6);
    // 64 bits: thousands of very long segments add up beyond int.
    qint64 total = 0;
    for (int c = 0; c < columnCount(); ++c) {
        if (c % 2 == 1)
            setColumnWidth(c, arrowWidth);
        total += columnWidth(c);
    }
    if (total > viewWidth)
        setChangeFolderBtn(int(qMin<qint64>(total, std::numeric_limits<int>::max())));
}

void LumoButtonPath::setChangeFolderBtn(int totalWidth)
{
    changeFolderBtn->show();
    QMenu *menu = changeFolderBtn->menu();
    const qint64 overflow = qint64(totalWidth) - viewWidth;
    qint64 x = 0;
    for (int c = 0; c < columnCount(); ++c) {
        const int width = columnWidth(c);
        if (c % 2 == 1) {
            x += width;
            continue;
        }
        if (width <= 0 && x >= overflow && x + width <= overflow) {
            x += width;
            continue;
        }
        auto *action = new QAction(menu);
        menu->addAction(action);
        action->setText(c < buttons.size() && buttons.at(c) ? buttons.at(c)->text() : QString());
        action->setData(c);
        connect(action, SIGNAL(triggered(bool)), menuMapper, SLOT(map()));
        menuMapper->setMapping(action, c);
        // The first partly visible segment is listed too: the folder button covers it.
        if (overflow < x + width)
            break;
        x += width;
    }
    // The view defers its scroll range to the next layout pass; the row was just built.
    updateGeometries();
    horizontalScrollBar()->setValue(horizontalScrollBar()->maximum());
}

void LumoButtonPath::resizeEvent(QResizeEvent *event)
{
    QTableWidget::resizeEvent(event);
    // The overflow follows the width without a new refresh() by the owner.
    const int width = horizontalScrollBar()->pageStep();
    if (width == viewWidth || columnCount() == 0)
        return;
    viewWidth = width;
    changeFolderBtn->hide();
    retireMenu();
    updateColumnSize();
}

void LumoButtonPath::slotUpdatePath(QString path)
{
    refresh(path);
}

void LumoButtonPath::slotPathBarClicked(int index)
{
    Q_EMIT sigUpdatePath(getPath(index));
}

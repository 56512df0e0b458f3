#ifndef LUMO_BUTTONPATH_P_H
#define LUMO_BUTTONPATH_P_H

#include <QObject>
#include <QStringList>

class QAction;
class QMenu;

namespace lumo
{
/** The path of segment buttons @p texts ("&"-escaped) up to and including @p last. */
QString segmentPath(const QStringList &texts, int last);
}

/**
 * The entries of an overflow menu that a rebuild replaced. Closing the menu
 * gives the focus back to the window, and an owner that refreshes the bar on
 * focus changes does so before the picked entry fires; so the entries live
 * until control returns to the event loop (they are children of this object,
 * which deletes itself then) and still deliver the path of the row they were
 * listed for.
 */
class RetiredPathMenu : public QObject
{
    Q_OBJECT
public:
    /** Takes the actions out of @p menu; @p texts are the old row's segment buttons. */
    RetiredPathMenu(QMenu *menu, const QStringList &texts, QObject *parent);

Q_SIGNALS:
    void picked(QString path);

private Q_SLOTS:
    void pick();

private:
    QStringList texts;
};

#endif

#include <lumo/controls.h>

namespace
{
template<typename Admit> void collect(QWidget *root, const Admit &admit, QList<QWidget *> &result)
{
    // An invisible widget hides its whole subtree.
    if (!root || !root->isVisible())
        return;
    if (admit(root))
        result.append(root);
    const QObjectList children = root->children();
    for (QObject *child : children) {
        if (child->isWidgetType())
            collect(static_cast<QWidget *>(child), admit, result);
    }
}
}

AccessibleFilter::AccessibleFilter()
    : m_focusLevel(Qt::NoFocus)
{
}

AccessibleFilter::AccessibleFilter(const QList<QWidget *> &widgets, Qt::FocusPolicy level)
    : m_filterWidgets(widgets)
    , m_focusLevel(level)
{
}

QList<QWidget *> AccessibleFilter::filterWidgets()
{
    return m_filterWidgets;
}

Qt::FocusPolicy AccessibleFilter::focusLevel()
{
    return m_focusLevel;
}

void AccessibleFilter::setFilterWidgets(const QList<QWidget *> &widgets)
{
    m_filterWidgets = widgets;
}

void AccessibleFilter::setFocusLevel(Qt::FocusPolicy level)
{
    m_focusLevel = level;
}

QList<QWidget *> accessibleList(QWidget *root, QList<QWidget *> excluded)
{
    QList<QWidget *> result;
    collect(
        root, [&excluded](QWidget *w) { return w->focusPolicy() != Qt::NoFocus && !excluded.contains(w); }, result);
    return result;
}

QList<QWidget *> accessibleList(QWidget *root, AccessibleFilter filter)
{
    const QList<QWidget *> excluded = filter.filterWidgets();
    const int level = int(filter.focusLevel());
    QList<QWidget *> result;
    // Numeric comparison: Qt::TabFocus (1) also admits Qt::ClickFocus (2) widgets.
    collect(
        root, [&excluded, level](QWidget *w) { return int(w->focusPolicy()) >= level && !excluded.contains(w); }, result);
    return result;
}

void adjustFocusPolicy(Qt::FocusPolicy policy, QList<QWidget *> widgets)
{
    for (QWidget *widget : widgets)
        widget->setFocusPolicy(policy);
}

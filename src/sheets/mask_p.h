#ifndef LUMO_SHEETS_MASK_P_H
#define LUMO_SHEETS_MASK_P_H

#include <lumo/sheets.h>

#include <QColor>
#include <QObject>

class LumoMaskPrivate : public QObject
{
    Q_OBJECT
public:
    LumoMaskPrivate(LumoMask *q, QColor color);

    void init(QWidget *content);

    QColor color = QColor(0, 0, 0, 20);
    LumoMask *q;
    QWidget *content = nullptr;
};

#endif

#ifndef LUMO_SHEETS_INPUTSHEET_P_H
#define LUMO_SHEETS_INPUTSHEET_P_H

#include "sheets/sheets_p.h"

#include <QObject>

class QLineEdit;

class LumoInputSheetPrivate : public QObject
{
    Q_OBJECT
public:
    explicit LumoInputSheetPrivate(LumoInputSheet *q);

    void initialize();
    void setupLayout();
    int getPreferredWidth() const;

    LumoInputSheet *q;
    MessageLabel *textLabel;
    QLineEdit *lineEdit;
    QDialogButtonBox *buttonBox;

    // Lifetime bookkeeping.
    lumo::SheetRun run;
};

#endif

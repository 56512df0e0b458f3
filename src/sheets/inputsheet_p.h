#ifndef LUMO_SHEETS_INPUTSHEET_P_H
#define LUMO_SHEETS_INPUTSHEET_P_H

#include <lumo/sheets.h>

#include <QObject>
#include <QPointer>

class QDialogButtonBox;
class QEventLoop;
class QLineEdit;

class LumoInputSheetPrivate : public QObject
{
    Q_OBJECT
public:
    explicit LumoInputSheetPrivate(LumoInputSheet *q);

    void initialize();
    void setupLayout();
    int getPreferredWidth() const;
    void watchWindow();
    void unwatchWindow();

    LumoInputSheet *q;
    MessageLabel *textLabel;
    QLineEdit *lineEdit;
    QDialogButtonBox *buttonBox;
    QEventLoop *eventLoop = nullptr;

    // Lifetime bookkeeping.
    QPointer<QWidget> watchedWindow;
    bool inExec = false; // QEventLoop::isRunning() turns false at exit(), before exec() has returned
};

#endif

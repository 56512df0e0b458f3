// Building an information sheet over a window, showing it to its first painted
// frame and closing it, against a plain QMessageBox with the same text and button.

#include "benchreport.h"

#include <lumo/lumo.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVBoxLayout>

namespace
{
// Records the first paint event of the widget it watches.
class PaintWatcher : public QObject
{
public:
    bool painted = false;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            painted = true;
        return QObject::eventFilter(watched, event);
    }
};

bool waitForPaint(QWidget *widget, PaintWatcher &watcher)
{
    QElapsedTimer limit;
    limit.start();
    while (!watcher.painted && limit.elapsed() < 5000)
        QApplication::processEvents(QEventLoop::AllEvents);
    widget->removeEventFilter(&watcher);
    return watcher.painted;
}

void startUp(const QString &theme, const QString &userData)
{
    UIPathManager::getInstance()->setPath(QStringLiteral("resource_path"), theme);
    UIPathManager::getInstance()->setPath(QStringLiteral("user_data_path"), userData);
    ImageManager::getInstance()->initialize(ImageManager::LoadAll);
    StyleManager::getInstance()->initialize(bench::styleFiles(theme));
    QMap<QString, QString> captions;
    QFile file(theme + QStringLiteral("/captions/enu.json"));
    if (file.open(QIODevice::ReadOnly)) {
        const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
        for (auto it = object.begin(); it != object.end(); ++it)
            captions.insert(it.key(), it.value().toString());
    }
    ComponentStrings::getInstance()->installStrings(captions);
}

const QString text = QStringLiteral("Your export is ready. The report was saved to the Documents folder.");

bool showSheetOnce(QWidget *window)
{
    auto *sheet = new LumoMessageSheet(LumoMessageSheet::Information, text, window);
    LumoMask::createMask(sheet, window, QColor(0, 0, 0, 20));
    PaintWatcher watcher;
    sheet->installEventFilter(&watcher);
    sheet->showSheet();
    const bool painted = waitForPaint(sheet, watcher);
    sheet->done(QMessageBox::Ok);
    delete sheet->parentWidget(); // the mask, with the sheet
    return painted;
}

bool showMessageBoxOnce(QWidget *window)
{
    auto *box = new QMessageBox(window);
    box->setIcon(QMessageBox::Information);
    box->setText(text);
    box->setStandardButtons(QMessageBox::Ok);
    PaintWatcher watcher;
    box->installEventFilter(&watcher);
    box->show();
    const bool painted = waitForPaint(box, watcher);
    box->done(QMessageBox::Ok);
    delete box;
    return painted;
}

double measure(bool (*once)(QWidget *), QWidget *window, int iterations, bool &ok)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < iterations; ++i)
        ok = once(window) && ok;
    return timer.nsecsElapsed() / 1e6 / iterations;
}
}

int main(int argc, char **argv)
{
    // The offscreen platform reports every dialog it cannot size natively; that is noise here.
    static const QtMessageHandler previous = qInstallMessageHandler(nullptr);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &message) {
        if (!message.contains(QLatin1String("propagateSizeHints")))
            previous(type, context, message);
    });
    QApplication app(argc, argv);
    QTemporaryDir userData;
    startUp(QStringLiteral(LUMO_THEME_DIR), userData.path());

    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new QLabel(QStringLiteral("Window content behind the sheet")));
    window.resize(int(DPIinfo::getInstance()->getDPI() * 900), int(DPIinfo::getInstance()->getDPI() * 600));
    window.show();
    QApplication::processEvents();

    const int iterations = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 200;
    bool ok = true;
    // Warm up both paths (style sheets, fonts, glyph caches), then interleave two rounds.
    measure(showSheetOnce, &window, 10, ok);
    measure(showMessageBoxOnce, &window, 10, ok);
    double sheet = 0, box = 0;
    for (int round = 0; round < 2; ++round) {
        sheet += measure(showSheetOnce, &window, iterations / 2, ok);
        box += measure(showMessageBoxOnce, &window, iterations / 2, ok);
    }
    sheet /= 2;
    box /= 2;
    if (!ok) {
        std::fprintf(stderr, "a widget was never painted\n");
        return 1;
    }
    bench::report(bench::atScale(QStringLiteral("information sheet: build, show to first paint, close vs QMessageBox")), sheet, box, 1.5);
    return 0;
}

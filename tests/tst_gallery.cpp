// The gallery starts up with the default theme and builds every page without a
// "Cannot ..." warning from the registries, and every page renders.

#include "gallery.h"
#include "testsupport.h"

#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

class TestGallery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsAndBuildsEveryPageWithoutWarnings()
    {
        testsupport::LogCatcher log;
        QTemporaryDir userData, shots;
        testsupport::startWithDefaultTheme(userData);
        gallery::MainWindow window;
        QCOMPARE(window.pageCount(), int(gallery::pages().size()));

        QString printed;
        QTextStream out(&printed);
        QVERIFY(gallery::renderPages(window, shots.path(), out));
        const QStringList paths = printed.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QVERIFY(!paths.isEmpty() && paths.size() >= window.pageCount());
        for (const QString &path : paths) {
            const QImage image(path);
            QVERIFY2(image.width() > 100 && image.height() > 100, qPrintable(path));
        }
        QVERIFY2(log.cannotWarnings().isEmpty(), qPrintable(log.cannotWarnings().join(QLatin1Char('\n'))));
    }
};

QTEST_MAIN(TestGallery)
#include "tst_gallery.moc"

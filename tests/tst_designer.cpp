// The Designer plugin, as Designer and QUiLoader see it: every widget listed,
// a form with all of them loaded through the plugin, drawn in the default theme.

#include "testsupport.h"

#include <lumo/lumo.h>

#include <QtTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiTools/QUiLoader>

#include <cxxabi.h>
#include <memory>
#include <typeinfo>

namespace
{
QString dynamicClassName(const QObject *object)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void *)> name(abi::__cxa_demangle(typeid(*object).name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? QString::fromLatin1(name.get()) : QString();
}

// (class, object name) of every widget element of a .ui document.
QList<QPair<QString, QString>> formWidgets(const QByteArray &ui)
{
    QList<QPair<QString, QString>> widgets;
    QXmlStreamReader xml(ui);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("widget"))
            widgets.append(
                {xml.attributes().value(QLatin1String("class")).toString(), xml.attributes().value(QLatin1String("name")).toString()});
    }
    return widgets;
}
}

class TestDesigner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formLoadsEveryWidgetInTheDefaultTheme()
    {
        QPluginLoader pluginLoader(QStringLiteral(LUMO_DESIGNER_PLUGIN));
        auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(pluginLoader.instance());
        QVERIFY2(collection, qPrintable(pluginLoader.errorString()));

        QSet<QString> offered;
        for (QDesignerCustomWidgetInterface *widget : collection->customWidgets()) {
            const QString name = widget->name();
            offered.insert(name);
            QVERIFY2(widget->group() == QLatin1String("Lumo") && !widget->toolTip().isEmpty() && !widget->icon().isNull(),
                     qPrintable(name));
            QFile header(QStringLiteral(LUMO_INCLUDE_DIR "/") + widget->includeFile());
            QVERIFY2(header.open(QIODevice::ReadOnly) &&
                         header.readAll().contains(QStringLiteral("class LUMO_EXPORT %1 : public ").arg(name).toLatin1()),
                     qPrintable(name));
            const auto dom = formWidgets(widget->domXml().toUtf8());
            QVERIFY2(dom.size() == 1 && dom.first().first == name, qPrintable(name));
        }

        // Nothing has started the registries: the plugin does, with the build tree's theme.
        QUiLoader loader;
        loader.clearPluginPaths();
        loader.addPluginPath(QFileInfo(QStringLiteral(LUMO_DESIGNER_PLUGIN)).absolutePath());
        QFile file(QStringLiteral(LUMO_FORM));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray ui = file.readAll();
        QVERIFY(file.seek(0));
        std::unique_ptr<QWidget> form(loader.load(&file));
        QVERIFY2(form, qPrintable(loader.errorString()));
        QCOMPARE(UIPathManager::getInstance()->getPath(QStringLiteral("resource_path")), QStringLiteral(LUMO_THEME_DIR));

        QSet<QString> used;
        for (const auto &[className, objectName] : formWidgets(ui)) {
            if (className == QLatin1String("QWidget"))
                continue;
            used.insert(className);
            const QWidget *widget = form->findChild<QWidget *>(objectName);
            QVERIFY2(widget, qPrintable(objectName));
            QCOMPARE(dynamicClassName(widget), className);
        }
        QCOMPARE(used, offered);

        const QString applyStyle = getStyleSheet("component.apply_button", false);
        QVERIFY(!applyStyle.isEmpty());
        QCOMPARE(form->findChild<QPushButton *>(QStringLiteral("lumoButton"))->styleSheet(), applyStyle);
        QCOMPARE(form->findChild<LinkLabel *>(QStringLiteral("linkLabel"))->getHyperLink(), QStringLiteral("https://example.com/manual"));

        form->resize(form->sizeHint());
        const QImage shot = form->grab().toImage();
        QCOMPARE(shot.devicePixelRatio(), testsupport::expectedScale());
        QVERIFY(shot.save(QCoreApplication::applicationDirPath() +
                          QStringLiteral("/designer-form-%1.png").arg(testsupport::expectedScale(), 0, 'f', 1)));
    }
};

QTEST_MAIN(TestDesigner)
#include "tst_designer.moc"

// Registries: every image in its four states, file-type icons, language and captions.

#include "gallery.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTableWidget>
#include <QVBoxLayout>

namespace
{
using gallery::label;

QStringList manifestImages()
{
    QFile file(UIPathManager::getInstance()->getPath(QStringLiteral("resource_path")) + QStringLiteral("/images.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList names;
    const QJsonArray images = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("images")).toArray();
    for (const QJsonValue &name : images)
        names << name.toString();
    return names;
}

QWidget *imageGrid()
{
    auto *grid = new QWidget;
    auto *layout = new QGridLayout(grid);
    layout->setHorizontalSpacing(gallery::px(6));
    layout->setVerticalSpacing(gallery::px(4));
    const QStringList names = manifestImages();
    const int perRow = 3;
    for (int i = 0; i < names.size(); ++i) {
        const int row = i / perRow;
        const int column = (i % perRow) * 5;
        auto *name = new QLabel(names[i]);
        name->setProperty("galleryRole", QStringLiteral("note"));
        name->setMinimumWidth(gallery::px(130));
        layout->addWidget(name, row, column);
        for (int state = ImageManager::Normal; state <= ImageManager::Disable; ++state) {
            auto *image = new QLabel;
            image->setPixmap(getGlobalImage(names[i], ImageManager::ImageType(state)));
            image->setAlignment(Qt::AlignCenter);
            image->setMinimumSize(gallery::px(36), gallery::px(36));
            image->setToolTip(names[i]);
            layout->addWidget(image, row, column + 1 + state);
        }
    }
    layout->setColumnStretch(perRow * 5, 1);
    return grid;
}

class FileTypeDemo : public QWidget
{
public:
    FileTypeDemo()
    {
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(gallery::px(10));
        edit->setText(QStringLiteral("Quarterly report.PDF"));
        edit->setFixedWidth(gallery::px(220));
        layout->addWidget(edit);
        layout->addWidget(removed);
        layout->addWidget(icon);
        layout->addWidget(result, 1);
        QObject::connect(edit, &QLineEdit::textChanged, this, [this] { update(); });
        QObject::connect(removed, &QCheckBox::toggled, this, [this] { update(); });
        update();
    }

private:
    void update()
    {
        const QString mapped = FileTypeMap::getInstance()->getFiletypeMapping(QFileInfo(edit->text()).suffix(), removed->isChecked());
        icon->setPixmap(getGlobalImage(mapped.chopped(4), ImageManager::Normal));
        result->setText(mapped);
    }

    QLineEdit *edit = new QLineEdit;
    QCheckBox *removed = new QCheckBox(QStringLiteral("removed"));
    QLabel *icon = new QLabel;
    QLabel *result = new QLabel;
};

class CaptionsDemo : public QWidget
{
public:
    CaptionsDemo()
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        const QString system = LumoLocale::getInstance()->getDefaultLanguage();
        auto *row = new QHBoxLayout;
        row->addWidget(
            new QLabel(QStringLiteral("System language code: <b>%1</b> (locale %2). Captions:").arg(system, QLocale::system().name())));
        for (const char *code : {"enu", "deu", "chs"})
            languages->addItem(QString::fromLatin1(code));
        const QString theme = UIPathManager::getInstance()->getPath(QStringLiteral("resource_path"));
        languages->setCurrentText(gallery::captionLanguage(theme, QString()));
        row->addWidget(languages);
        row->addStretch(1);
        layout->addLayout(row);
        table->setColumnCount(2);
        table->setHorizontalHeaderLabels({QStringLiteral("Key"), QStringLiteral("Caption")});
        table->horizontalHeader()->setStretchLastSection(true);
        table->verticalHeader()->hide();
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        layout->addWidget(table);
        QObject::connect(languages, &QComboBox::currentTextChanged, this, [this, theme](const QString &code) {
            ComponentStrings::getInstance()->installStrings(
                gallery::readCaptions(theme + QStringLiteral("/captions/") + code + QStringLiteral(".json")));
            fill(theme + QStringLiteral("/captions/") + code + QStringLiteral(".json"));
        });
        fill(theme + QStringLiteral("/captions/") + languages->currentText() + QStringLiteral(".json"));
    }

private:
    void fill(const QString &file)
    {
        const QStringList keys = gallery::readCaptions(file).keys();
        table->setRowCount(int(keys.size()));
        for (int i = 0; i < keys.size(); ++i) {
            table->setItem(i, 0, new QTableWidgetItem(keys[i]));
            table->setItem(i, 1, new QTableWidgetItem(ComponentStrings::getInstance()->getString(keys[i])));
        }
        table->setFixedHeight(table->verticalHeader()->length() + table->horizontalHeader()->height() + 4);
    }

    QComboBox *languages = new QComboBox;
    QTableWidget *table = new QTableWidget;
};

QWidget *createPage()
{
    const gallery::ScrollingPage frame = gallery::scrollingPage(QStringLiteral("Registries"));
    QVBoxLayout *layout = frame.layout;
    layout->addWidget(label(QStringLiteral("Scale factor %1, device pixel ratio %2. Images are drawn at four times their display size "
                                           "and scaled once at start-up.")
                                .arg(DPIinfo::getInstance()->getDPI())
                                .arg(DPIinfo::getInstance()->getDPR()),
                            "note"));
    layout->addWidget(label(QStringLiteral("File type icon"), "section"));
    layout->addWidget(new FileTypeDemo);
    layout->addWidget(label(QStringLiteral("Language and captions"), "section"));
    layout->addWidget(new CaptionsDemo);
    layout->addWidget(label(QStringLiteral("Images: normal, hover, click, disable"), "section"));
    layout->addWidget(imageGrid());
    layout->addStretch(1);
    return frame.page;
}
}

LUMO_GALLERY_PAGE(10, QStringLiteral("Registries"), createPage)

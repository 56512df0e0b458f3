// The path bar: any path split into segment buttons and joined back.

#include "fuzzsupport.h"

#include <lumo/controls.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    static LumoButtonPath *bar = [] {
        auto *created = new LumoButtonPath;
        created->resize(300, 40);
        created->show();
        return created;
    }();
    const QString path = QString::fromUtf8(fuzzsupport::bytes(data, size));
    bar->refresh(path);
    QCoreApplication::processEvents();
    fuzzsupport::deleteLaterObjects(); // the old segment buttons
    const QStringList segments = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const int last = int(segments.size()) * 2 - 2;
    // The whole path back, without its empty segments.
    fuzzsupport::check(bar->getPath(last) == segments.join(QLatin1Char('/')), "the path does not come back whole");
    for (int index = -1; index <= last + 2; index += 1 + last / 8)
        bar->getPath(index);
    return 0;
}

// Gathers the benchmarks' result lines into one table.
//
// Usage: lumo_benchtable <output folder> [files...]   (reads standard input without files)
//
// Every line "BENCH|job|lumo|peer|ratio|goal|met" becomes a row; other lines are
// ignored. Prints the table, writes results.csv and draws results.png: one bar
// per job, the ratio on a logarithmic axis, green when the goal is met, red when
// not, with the goal marked on the bar's row.

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace
{
struct Row {
    QString job;
    QString lumo;
    QString peer;
    double ratio = 0;
    double goal = 0;
    bool met = false;
};

// The leading number of @p text ("<= 1.5", "1.5x" and "1.5" all give 1.5); 0 when there is none.
double leadingNumber(const QString &text)
{
    qsizetype from = 0;
    while (from < text.size() && !text[from].isDigit() && text[from] != u'.')
        ++from;
    qsizetype to = from;
    while (to < text.size() && (text[to].isDigit() || text[to] == u'.' || text[to] == u'e' || text[to] == u'-'))
        ++to;
    return QStringView(text).mid(from, to - from).toDouble();
}

void readRows(QTextStream &in, std::vector<Row> &rows)
{
    QString line;
    while (in.readLineInto(&line)) {
        const qsizetype start = line.indexOf(QLatin1String("BENCH|"));
        if (start < 0)
            continue;
        const QStringList fields = line.mid(start).split(QLatin1Char('|'));
        if (fields.size() < 7)
            continue;
        Row row;
        row.job = fields[1].trimmed();
        row.lumo = fields[2].trimmed();
        row.peer = fields[3].trimmed();
        row.ratio = leadingNumber(fields[4]);
        row.goal = leadingNumber(fields[5]);
        row.met = fields[6].trimmed().compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0;
        rows.push_back(row);
    }
}

QString csvField(const QString &text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1String("\""), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString ratioText(double value)
{
    return QString::number(value, 'f', value < 0.1 ? 3 : 2) + QLatin1Char('x');
}

void printTable(const std::vector<Row> &rows)
{
    const QStringList header = {QStringLiteral("job"),   QStringLiteral("Lumo"), QStringLiteral("peer"),
                                QStringLiteral("ratio"), QStringLiteral("goal"), QStringLiteral("met")};
    std::vector<QStringList> cells;
    for (const Row &row : rows)
        cells.push_back({row.job, row.lumo, row.peer, ratioText(row.ratio), QStringLiteral("<= ") + ratioText(row.goal),
                         row.met ? QStringLiteral("yes") : QStringLiteral("NO")});
    std::vector<qsizetype> width(size_t(header.size()));
    for (qsizetype c = 0; c < header.size(); ++c) {
        width[size_t(c)] = header[c].size();
        for (const QStringList &line : cells)
            width[size_t(c)] = std::max(width[size_t(c)], line[c].size());
    }
    QTextStream out(stdout);
    auto print = [&](const QStringList &line) {
        for (qsizetype c = 0; c < line.size(); ++c)
            out << (c ? QStringLiteral(" | ") : QString())
                << (c == 0 ? line[c].leftJustified(width[size_t(c)]) : line[c].rightJustified(width[size_t(c)]));
        out << '\n';
    };
    print(header);
    QStringList rule;
    for (qsizetype w : width)
        rule << QString(w, QLatin1Char('-'));
    print(rule);
    for (const QStringList &line : cells)
        print(line);
    const auto missed = std::count_if(rows.begin(), rows.end(), [](const Row &row) { return !row.met; });
    out << rows.size() << " jobs, " << rows.size() - size_t(missed) << " goals met, " << missed << " missed\n";
}

bool writeCsv(const QString &path, const std::vector<Row> &rows)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    QTextStream out(&file);
    out << "job,lumo,peer,ratio,goal,met\n";
    for (const Row &row : rows)
        out << csvField(row.job) << ',' << csvField(row.lumo) << ',' << csvField(row.peer) << ',' << row.ratio << ',' << row.goal << ','
            << (row.met ? "yes" : "no") << '\n';
    return true;
}

bool drawChart(const QString &path, const std::vector<Row> &rows)
{
    constexpr int RowHeight = 26;
    constexpr int LabelWidth = 600;
    constexpr int PlotWidth = 640;
    constexpr int Top = 70;
    constexpr int Bottom = 40;
    const int width = LabelWidth + PlotWidth + 90;
    const int height = Top + int(rows.size()) * RowHeight + Bottom;

    // A logarithmic axis over whole decades holding every ratio and goal.
    double low = 1;
    double high = 1;
    for (const Row &row : rows) {
        for (double v : {row.ratio, row.goal}) {
            if (v > 0) {
                low = std::min(low, v);
                high = std::max(high, v);
            }
        }
    }
    // A goal right on the lowest decade would sit on the axis: keep some room left of it.
    const double lowExp = std::floor(std::log10(low) - 0.2);
    const double highExp = std::max(lowExp + 1, std::ceil(std::log10(high)));
    const int plotLeft = LabelWidth;
    auto xOf = [&](double v) {
        const double t = (std::log10(std::max(v, std::pow(10.0, lowExp))) - lowExp) / (highExp - lowExp);
        return plotLeft + int(std::lround(t * PlotWidth));
    };

    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font = p.font();
    font.setPixelSize(13);
    p.setFont(font);

    QFont title = font;
    title.setPixelSize(17);
    title.setBold(true);
    p.setFont(title);
    p.setPen(Qt::black);
    p.drawText(QRect(12, 8, width - 24, 24), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("Lumo / plain-Qt peer, same run (lower is faster)"));
    p.setFont(font);
    const QColor metColor(0x3C, 0xA0, 0x5A);
    const QColor missedColor(0xD2, 0x3C, 0x3C);
    int lx = 12;
    for (const auto &[color, text] :
         {std::pair {metColor, QStringLiteral("goal met")}, std::pair {missedColor, QStringLiteral("goal missed")},
          std::pair {QColor(Qt::black), QStringLiteral("goal")}}) {
        if (color == Qt::black)
            p.fillRect(lx + 6, 38, 3, 16, color);
        else
            p.fillRect(lx, 40, 14, 12, color);
        p.drawText(QRect(lx + 20, 36, 120, 20), Qt::AlignLeft | Qt::AlignVCenter, text);
        lx += 130;
    }

    // Grid: every 1, 2 and 5 of each decade, labelled below.
    const int plotBottom = Top + int(rows.size()) * RowHeight;
    for (int e = int(lowExp); e <= int(highExp); ++e) {
        for (double m : {1.0, 2.0, 5.0}) {
            const double v = m * std::pow(10.0, e);
            if (std::log10(v) > highExp + 1e-9)
                break;
            const int x = xOf(v);
            p.setPen(QPen(m == 1.0 ? QColor(0x99, 0x99, 0x99) : QColor(0xDD, 0xDD, 0xDD), 1));
            p.drawLine(x, Top - 4, x, plotBottom);
            p.setPen(QColor(0x44, 0x44, 0x44));
            if (m == 2.0 && PlotWidth / (highExp - lowExp) < 200)
                continue; // too crowded to label
            p.drawText(QRect(x - 30, plotBottom + 4, 60, 18), Qt::AlignCenter, QString::number(v) + QLatin1Char('x'));
        }
    }
    p.setPen(QPen(Qt::black, 1.5));
    p.drawLine(xOf(1.0), Top - 8, xOf(1.0), plotBottom); // parity with the peer

    for (size_t i = 0; i < rows.size(); ++i) {
        const Row &row = rows[i];
        const int y = Top + int(i) * RowHeight;
        if (i % 2)
            p.fillRect(0, y, width, RowHeight, QColor(0xF4, 0xF4, 0xF4));
        p.setPen(Qt::black);
        const QFontMetrics metrics(font);
        p.drawText(QRect(12, y, LabelWidth - 20, RowHeight), Qt::AlignRight | Qt::AlignVCenter,
                   metrics.elidedText(row.job, Qt::ElideMiddle, LabelWidth - 20));
        if (row.ratio > 0) {
            const int x = xOf(row.ratio);
            p.fillRect(QRect(QPoint(plotLeft, y + 5), QPoint(std::max(x, plotLeft + 2), y + RowHeight - 6)),
                       row.met ? metColor : missedColor);
        }
        const int gx = row.goal > 0 ? xOf(row.goal) : plotLeft;
        if (row.goal > 0)
            p.fillRect(gx - 1, y + 1, 3, RowHeight - 2, Qt::black);
        if (row.ratio > 0) // right of both the bar and the goal mark
            p.drawText(QRect(std::max(xOf(row.ratio), gx) + 8, y, 90, RowHeight), Qt::AlignLeft | Qt::AlignVCenter, ratioText(row.ratio));
    }
    p.end();
    return image.save(path, "PNG");
}
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 2) {
        std::fprintf(stderr, "usage: lumo_benchtable <output folder> [files...]\n");
        return 2;
    }
    std::vector<Row> rows;
    if (args.size() == 2) {
        QTextStream in(stdin);
        readRows(in, rows);
    }
    for (qsizetype i = 2; i < args.size(); ++i) {
        QFile file(args[i]);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            std::fprintf(stderr, "cannot read %s\n", qPrintable(args[i]));
            continue;
        }
        QTextStream in(&file);
        readRows(in, rows);
    }
    if (rows.empty()) {
        std::fprintf(stderr, "no BENCH lines found\n");
        return 1;
    }
    printTable(rows);
    const QDir folder(args[1]);
    QDir().mkpath(folder.path());
    const bool ok =
        writeCsv(folder.filePath(QStringLiteral("results.csv")), rows) && drawChart(folder.filePath(QStringLiteral("results.png")), rows);
    std::printf("%s\n%s\n", qPrintable(folder.filePath(QStringLiteral("results.csv"))),
                qPrintable(folder.filePath(QStringLiteral("results.png"))));
    return ok ? 0 : 1;
}

// SPDX-License-Identifier: MIT
#include "measurements.h"

#include "benchsupport.h"
#include "lessonreader.h"
#include "lxdoc.h"
#include "tableprinter.h"

#include <QColor>
#include <QCoreApplication>
#include <QDir>
#include <QDomDocument>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <memory>

namespace {

double elapsedMs(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}


template <typename Field>
double medianOf(const QList<Field> &runs, double Field::*member)
{
    QList<double> values;
    for (const Field &run : runs)
        values << run.*member;
    return BenchSupport::median(values);
}

double ratioOf(double value, double baseline)
{
    return value < 0 || baseline <= 0 ? -1 : value / baseline;
}

qint64 folderBytes(const QString &folder, const QStringList &files)
{
    qint64 total = 0;
    for (const QString &name : files)
        total += QFileInfo(folder + QLatin1Char('/') + name).size();
    return total;
}


// kB values of /proc/self/status ("VmHWM", "VmRSS").
qint64 statusKib(const char *key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

// Writing 5 to clear_refs sets the peak back to the current size, so the
// peak read later belongs to what ran in between.
bool resetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly) && file.write("5") == 1;
}

// The page whose two files together are the largest.
int largestPageId(const QString &folder)
{
    const QDir dir(folder);
    int best = -1;
    qint64 bestBytes = -1;
    const QStringList pages = dir.entryList({QStringLiteral("page*.svg")}, QDir::Files);
    for (const QString &name : pages) {
        const QString base = name.chopped(4);
        const qint64 bytes = QFileInfo(dir.filePath(name)).size()
            + QFileInfo(dir.filePath(base + QLatin1String(".mtrec"))).size();
        if (bytes > bestBytes) {
            bestBytes = bytes;
            best = base.mid(4).toInt();
        }
    }
    return best;
}

} // namespace

Measurements::Document Measurements::newDocument()
{
    Document document(get_interface());
    if (document)
        document->init(QString(), false);
    return document;
}

void Measurements::DocumentReleaser::operator()(ILXDocument *document) const
{
    document->release(true);
}

Measurements::Measurements(const Options &options)
    : m_options(options)
{
}

bool Measurements::run(QTextStream &out)
{
    QTemporaryDir temporary(m_options.dataFolder.isEmpty()
                                ? QDir::tempPath() + QLatin1String("/lxdoc-bench-XXXXXX")
                                : m_options.dataFolder + QLatin1String("/lxdoc-bench-XXXXXX"));
    if (!temporary.isValid()) {
        out << "cannot make a folder for the generated data\n";
        return false;
    }
    m_root = temporary.path();
    if (m_options.growthOnly)
        return runGrowth(out);

    LessonGenerator generator(m_options.shape);
    const QString sources = m_root + QLatin1String("/sources");
    if (!QDir().mkpath(sources) || !generator.prepareSources(sources)) {
        out << "cannot write the media sources\n";
        return false;
    }
    QList<Figures> runs;
    for (int run = 0; run < m_options.runs; ++run) {
        Figures figures;
        if (!runOnce(m_options.shape, generator, true, figures))
            return false;
        runs << figures;
        out << "run " << run + 1 << '/' << m_options.runs << " done\n";
        out.flush();
    }
    Memory memory;
    if (!measureMemory(memory))
        return false;
    printMain(out, runs, memory);
    return runGrowth(out);
}

bool Measurements::runOnce(const LessonShape &shape, LessonGenerator &generator, bool baselines,
                           Figures &figures)
{
    if (m_keepRuns)
        m_lessonName = QStringLiteral("lesson-%1").arg(++m_runNumber);
    return buildAndPack(shape, generator, baselines, figures) && openAndRead(shape, baselines, figures);
}

void Measurements::finish(Document document)
{
    if (m_keepRuns)
        m_kept.push_back(std::move(document));
}

bool Measurements::buildAndPack(const LessonShape &shape, LessonGenerator &generator, bool baselines,
                                Figures &figures)
{
    const QString folder = m_root + QLatin1Char('/') + m_lessonName;
    const QString archive = folder + QLatin1String(".lzn");
    BenchSupport::removePath(folder);
    BenchSupport::removePath(archive);
    Document document = newDocument();
    if (!document)
        return false;

    generator.resetStepTimes();
    QElapsedTimer timer;
    timer.start();
    if (!document->newFile(folder, true) || !generator.build(document.get())) {
        qWarning("building the lesson failed");
        return false;
    }
    figures.build = elapsedMs(timer);
    figures.inserts = double(generator.stepTimes().insertNs) / 1e6;
    figures.pageWrites = double(generator.stepTimes().saveNs) / 1e6;

    timer.restart();
    const bool saved = document->saveFile(archive, true);
    figures.pack = elapsedMs(timer);
    figures.archiveBytes = QFileInfo(archive).size();
    if (!saved || figures.archiveBytes <= 0) {
        qWarning("packing the lesson failed");
        return false;
    }
    if (baselines)
        m_archiveBaselines.timePacking(folder, m_root);
    Q_UNUSED(shape);
    finish(std::move(document));
    return true;
}

bool Measurements::openAndRead(const LessonShape &shape, bool baselines, Figures &figures)
{
    const QString archive = m_root + QLatin1Char('/') + m_lessonName + QLatin1String(".lzn");
    Document document = newDocument();
    if (!document)
        return false;
    QElapsedTimer timer;
    timer.start();
    if (!document->openFile(archive)) {
        qWarning("opening the lesson failed");
        return false;
    }
    figures.open = elapsedMs(timer);
    // Opening the unpacked folder again in place loads only the manifest,
    // which splits the open into unpacking and manifest loading.
    timer.restart();
    if (!document->openDocument(document->getDocPath()))
        return false;
    figures.manifestLoad = elapsedMs(timer);

    if (baselines)
        m_archiveBaselines.timeUnpacking(archive, m_root);

    timer.restart();
    const LessonReader::Counts counts = LessonReader::walk(document.get());
    figures.read = elapsedMs(timer);
    const qint64 texts = qint64(shape.pages) * shape.texts;
    if (counts.pages != shape.pages || counts.points != shape.expectedPoints()
        || counts.widths != shape.expectedPoints() || counts.texts != texts
        || counts.commands != qint64(shape.pages) * shape.commands) {
        qWarning("the walk read %lld pages, %lld points, %lld texts, %lld commands: not what was written",
                 counts.pages, counts.points, counts.texts, counts.commands);
        return false;
    }

    const QString folder = document->getDocPath();
    const QStringList files = pageFiles(folder);
    figures.xmlBytes = folderBytes(folder, files);
    if (baselines)
        figures.parse = plainParse(folder, files);
    if (!saveEdited(document.get(), figures))
        return false;
    if (baselines)
        figures.plainSave = plainSave(folder, files);
    finish(std::move(document));
    return true;
}

// One object of every page and one command of every recording change, and
// both files are saved. Only the saves are timed: loading is the read figure.
bool Measurements::saveEdited(ILXDocument *document, Figures &figures)
{
    figures.pageSaves = 0;
    figures.recordSaves = 0;
    QElapsedTimer timer;
    const int pages = document->getPagesCount();
    for (int index = 0; index < pages; ++index) {
        int id = 0;
        ILXFrontPage *const page = document->getPageByIndex(index, id);
        if (!page)
            return false;
        if (ILXObject *const object = page->getFirstLXObject()) {
            object->setStroke(QColor(0x12, 0x34, 0x56));
            object->release();
        }
        timer.start();
        const bool saved = page->saveFile();
        figures.pageSaves += elapsedMs(timer);
        page->release();

        ILXRecordPage *const record = document->getRecPageById(id);
        if (!record || !saved)
            return false;
        if (ILXCmd *const command = record->getFirstLXCmd()) {
            command->setLXCmdAttribute(QStringLiteral("time"), 1);
            command->release();
        }
        timer.start();
        const bool recorded = record->saveFile();
        figures.recordSaves += elapsedMs(timer);
        record->release();
        if (!recorded)
            return false;
    }
    figures.save = figures.pageSaves + figures.recordSaves;
    return true;
}

// Each figure comes from a fresh process, so its peak holds nothing of the
// runs before it.
bool Measurements::measureMemory(Memory &memory)
{
    const QString archive = m_root + QLatin1Char('/') + m_lessonName + QLatin1String(".lzn");
    const auto child = [&](const QString &mode, bool &reset) -> qint64 {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--measure-walk"), archive, QStringLiteral("--walk-mode"), mode});
        if (!process.waitForFinished(-1) || process.exitCode() != 0)
            return -1;
        const QList<QByteArray> fields = process.readAllStandardOutput().trimmed().split(' ');
        if (fields.size() != 3)
            return -1;
        reset = fields[2] == "1";
        return fields[1].toLongLong() - fields[0].toLongLong();
    };
    bool walkReset = false;
    bool largestReset = false;
    memory.walk = child(QStringLiteral("walk"), walkReset);
    memory.largest = child(QStringLiteral("largest"), largestReset);
    memory.reset = walkReset && largestReset;
    return memory.walk >= 0 && memory.largest >= 0;
}

int Measurements::measureWalkChild(const QString &archive, const QString &mode)
{
    const Document document = newDocument();
    if (!document || !document->openFile(archive))
        return 1;
    const bool reset = resetPeak();
    const qint64 before = reset ? statusKib("VmRSS") : statusKib("VmHWM");
    if (mode == QLatin1String("walk")) {
        LessonReader::walk(document.get());
    } else {
        const int id = largestPageId(document->getDocPath());
        ILXFrontPage *const page = document->getPageById(id);
        ILXRecordPage *const record = document->getRecPageById(id);
        if (!page || !record)
            return 1;
        LessonReader::Counts counts;
        LessonReader::readFrontPage(page, counts);
        LessonReader::readRecordPage(record, counts);
        // Both stay held until the peak is read.
        const qint64 peak = statusKib("VmHWM");
        page->release();
        record->release();
        QTextStream(stdout) << before << ' ' << peak << ' ' << int(reset) << '\n';
        return 0;
    }
    QTextStream(stdout) << before << ' ' << statusKib("VmHWM") << ' ' << int(reset) << '\n';
    return 0;
}

bool Measurements::runGrowth(QTextStream &out)
{
    if (m_options.growthPages.isEmpty())
        return true;
    const int runs = qMin(m_options.runs, 3);
    TablePrinter table(QStringLiteral("Growth: ms per page (light pages: 20 strokes x 50 points, 4 shapes, "
                                      "1 text, 100 commands; no media; median of %1 runs)")
                           .arg(runs));
    table.setHeader({QStringLiteral("pages"), QStringLiteral("build"), QStringLiteral("pack"),
                     QStringLiteral("open"), QStringLiteral("read"), QStringLiteral("save"),
                     QStringLiteral("total")});
    QList<QList<double>> perPage;
    QList<QList<Figures>> allResults;
    // Nothing is deleted until the table is done. Deleting a run's thousands
    // of files right before the next run's timed build and unpack made those
    // slower on a disk, and the more so the larger the lesson: ext4 without a
    // journal will not reuse an inode freed in the last 30 seconds, and every
    // new file's inode search steps over each such inode (the kernel's
    // recently_deleted in the profile). That was the previous run's cleanup,
    // not the lesson's cost per page.
    m_keepRuns = true;
    for (int pages : std::as_const(m_options.growthPages)) {
        const LessonShape shape = LessonShape::light(pages, m_options.shape.seed);
        LessonGenerator generator(shape);
        QList<Figures> results;
        for (int run = 0; run < runs; ++run) {
            Figures figures;
            if (!runOnce(shape, generator, false, figures))
                return false;
            results << figures;
        }
        allResults << results;
        QList<double> row;
        for (double Figures::*member : {&Figures::build, &Figures::pack, &Figures::open, &Figures::read,
                                        &Figures::save})
            row << medianOf(results, member) / pages;
        double total = 0;
        for (double value : std::as_const(row))
            total += value;
        row << total;
        perPage << row;
        QStringList cells{QString::number(pages)};
        for (double value : std::as_const(row))
            cells << QString::number(value, 'f', 3);
        table.addRow(cells);
        if (m_options.growthOnly) {
            out << pages << " pages done\n";
            out.flush();
        }
    }
    QStringList growth{QStringLiteral("%1/%2").arg(m_options.growthPages.last()).arg(m_options.growthPages.first())};
    for (int column = 0; column < perPage.first().size(); ++column)
        growth << TablePrinter::ratio(ratioOf(perPage.last()[column], perPage.first()[column]));
    table.addRow(growth);
    table.addNote(QStringLiteral("target: the last row (time per page at the largest size over the smallest) "
                                 "at most 1.20 in every column"));
    table.addNote(QStringLiteral("generated data in %1, document temp root %2")
                      .arg(m_root, Document(get_interface())->getTempPath()));
    table.print(out);
    out << '\n';
    printBreakdown(out, m_options.growthPages, allResults);
    m_kept.clear();
    m_keepRuns = false;
    return true;
}

// The parts the host can time from outside: inserting pages (each insert
// writes the manifest), writing the pages, unpacking against loading the
// manifest, and saving pages against records.
void Measurements::printBreakdown(QTextStream &out, const QList<int> &sizes, const QList<QList<Figures>> &results)
{
    TablePrinter table(QStringLiteral("Growth, where the time goes: ms per page (median of the same runs)"));
    table.setHeader({QStringLiteral("pages"), QStringLiteral("inserts"), QStringLiteral("pg writes"),
                     QStringLiteral("build rest"), QStringLiteral("unpack"), QStringLiteral("manifest"),
                     QStringLiteral("pg saves"), QStringLiteral("rec saves")});
    for (int i = 0; i < sizes.size(); ++i) {
        const QList<Figures> &runs = results[i];
        const double pages = sizes[i];
        const double build = medianOf(runs, &Figures::build);
        const double inserts = medianOf(runs, &Figures::inserts);
        const double writes = medianOf(runs, &Figures::pageWrites);
        const double open = medianOf(runs, &Figures::open);
        const double manifest = medianOf(runs, &Figures::manifestLoad);
        QStringList cells{QString::number(sizes[i])};
        for (double value : {inserts, writes, build - inserts - writes, open - manifest, manifest,
                             medianOf(runs, &Figures::pageSaves), medianOf(runs, &Figures::recordSaves)})
            cells << QString::number(value / pages, 'f', 3);
        table.addRow(cells);
    }
    table.addNote(QStringLiteral("inserts: insertFrontPage + insertRecPage, each writes the manifest; pg writes: "
                                 "saveFile of the new page and record; build rest: page content and preview"));
    table.addNote(QStringLiteral("manifest: openDocument of the unpacked folder; unpack: openFile less that"));
    table.print(out);
}

void Measurements::printMain(QTextStream &out, const QList<Figures> &runs, const Memory &memory) const
{
    const LessonShape &shape = m_options.shape;
    TablePrinter table(QStringLiteral("Lesson: %1 pages x (%2 strokes x %3 points, %4 shapes, %5 texts, "
                                      "%6 commands), %7 media x %8 KiB, %9 PNG; median of %10 runs")
                           .arg(shape.pages)
                           .arg(shape.strokes)
                           .arg(shape.strokePoints)
                           .arg(shape.shapes)
                           .arg(shape.texts)
                           .arg(shape.commands)
                           .arg(shape.mediaFiles)
                           .arg(shape.mediaBytes / 1024)
                           .arg(shape.images)
                           .arg(runs.size()));
    table.setHeader({QStringLiteral("figure"), QStringLiteral("LXDoc"), QStringLiteral("baseline"),
                     QStringLiteral("base"), QStringLiteral("ratio"), QStringLiteral("target"),
                     QStringLiteral("verdict")});
    const auto row = [&](const QString &name, double value, const QString &baseName, double base,
                         double target) {
        const double ratio = ratioOf(value, base);
        QString verdict = QStringLiteral("-");
        if (ratio >= 0 && target > 0)
            verdict = ratio <= target ? QStringLiteral("met") : QStringLiteral("MISSED");
        table.addRow({name, TablePrinter::millis(value), baseName, TablePrinter::millis(base),
                      TablePrinter::ratio(ratio), target > 0 ? QStringLiteral("<= %1").arg(target, 0, 'f', 2)
                                                             : QStringLiteral("-"),
                      verdict});
    };
    row(QStringLiteral("build (ms)"), medianOf(runs, &Figures::build), QStringLiteral("-"), -1, -1);
    for (const ArchiveBaselines::Figure &base : m_archiveBaselines.packing())
        row(QStringLiteral("pack (ms)"), medianOf(runs, &Figures::pack), base.tool, base.ms, base.target);
    for (const ArchiveBaselines::Figure &base : m_archiveBaselines.unpacking())
        row(QStringLiteral("open archive (ms)"), medianOf(runs, &Figures::open), base.tool, base.ms, base.target);
    row(QStringLiteral("open + read pages (ms)"), medianOf(runs, &Figures::read), QStringLiteral("QDom parse"),
        medianOf(runs, &Figures::parse), 1.15);
    row(QStringLiteral("save edited pages (ms)"), medianOf(runs, &Figures::save), QStringLiteral("QDom save"),
        medianOf(runs, &Figures::plainSave), 1.3);
    const auto kib = [](qint64 value) { return value < 0 ? -1.0 : double(value); };
    table.addRow({QStringLiteral("peak walk (KiB)"), TablePrinter::kib(memory.walk),
                  QStringLiteral("largest page"), TablePrinter::kib(memory.largest),
                  TablePrinter::ratio(ratioOf(kib(memory.walk), kib(memory.largest))), QStringLiteral("<= 2.00"),
                  ratioOf(kib(memory.walk), kib(memory.largest)) <= 2.0 ? QStringLiteral("met")
                                                                         : QStringLiteral("MISSED")});
    const Figures &last = runs.last();
    table.addNote(QStringLiteral("page XML %1 MiB; archive %2 MiB (%3)")
                      .arg(double(last.xmlBytes) / (1 << 20), 0, 'f', 1)
                      .arg(double(last.archiveBytes) / (1 << 20), 0, 'f', 1)
                      .arg(m_archiveBaselines.archiveSizes()));
    table.addNote(QStringLiteral("memory: peak RSS growth in a fresh process after openFile, %1")
                      .arg(memory.reset ? QStringLiteral("peak reset through /proc/self/clear_refs")
                                        : QStringLiteral("peak NOT reset (clear_refs refused): "
                                                         "includes the open")));
    table.print(out);
}

QStringList Measurements::pageFiles(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral("page*.svg"), QStringLiteral("page*.mtrec")}, QDir::Files,
                                  QDir::Name);
}

double Measurements::plainParse(const QString &folder, const QStringList &files)
{
    QElapsedTimer timer;
    timer.start();
    for (const QString &name : files) {
        QFile file(folder + QLatin1Char('/') + name);
        QDomDocument document;
        if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, false))
            return -1;
    }
    return elapsedMs(timer);
}

// The same trees written by QDomNode::save through a UTF-8 text stream.
double Measurements::plainSave(const QString &folder, const QStringList &files) const
{
    const QString target = m_root + QLatin1String("/plain");
    QDir().mkpath(target);
    double total = 0;
    QElapsedTimer timer;
    for (const QString &name : files) {
        QFile source(folder + QLatin1Char('/') + name);
        QDomDocument document;
        if (!source.open(QIODevice::ReadOnly) || !document.setContent(&source, false))
            return -1;
        timer.start();
        QFile file(target + QLatin1Char('/') + name);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return -1;
        QTextStream stream(&file);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        stream.setCodec("UTF-8");
#endif
        document.save(stream, 4);
        stream.flush();
        file.close();
        total += elapsedMs(timer);
    }
    BenchSupport::removePath(target);
    return total;
}

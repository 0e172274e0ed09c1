#include "commanddispatcher.h"

#include "archivecommands.h"
#include "commandline.h"
#include "console.h"
#include "demolesson.h"
#include "lessonchecker.h"
#include "lessondumper.h"
#include "lessoninfo.h"
#include "lessonpages.h"
#include "lessonrenderer.h"
#include "lessonsource.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

namespace {

struct Command {
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

QCommandLineOption option(const QString &name, const QString &description, const QString &value = QString())
{
    return value.isEmpty() ? QCommandLineOption(name, description) : QCommandLineOption(name, description, value);
}

bool parseSize(const QString &text, QSize *size)
{
    const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("^(\\d+)x(\\d+)$")).match(text);
    if (!match.hasMatch())
        return false;
    // Beyond this an image no longer fits in memory comfortably.
    const int largest = 20000;
    *size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    return !size->isEmpty() && size->width() <= largest && size->height() <= largest;
}

} // namespace

int CommandDispatcher::run(const QStringList &arguments) const
{
    static const Command commands[] = {
        {"demo", "build a sample lesson, show its summary and render its pages", &CommandDispatcher::demo},
        {"info", "pages and resources of a lesson", &CommandDispatcher::info},
        {"dump", "objects (and recorded commands) of a lesson as a tree or JSON", &CommandDispatcher::dump},
        {"check", "report what is inconsistent or broken in a lesson", &CommandDispatcher::check},
        {"render", "draw every page to PNG (and to one PDF)", &CommandDispatcher::render},
        {"pack", "pack a lesson folder into an archive", &ArchiveCommands::pack},
        {"unpack", "unpack a lesson archive into a folder", &ArchiveCommands::unpack},
    };
    const QString name = arguments.value(1);
    if (name.isEmpty() || name == QLatin1String("help") || name == QLatin1String("--help") || name == QLatin1String("-h")) {
        const QString topic = arguments.value(2);
        for (const Command &command : commands) {
            if (topic == QLatin1String(command.name))
                return command.run({arguments.first(), topic, QStringLiteral("--help")});
        }
        Console::out(QStringLiteral("Usage: lxdoc COMMAND [options] [arguments]\n\nCommands:"));
        for (const Command &command : commands)
            Console::out(QStringLiteral("  %1 %2").arg(QLatin1String(command.name), -8).arg(QLatin1String(command.summary)));
        Console::out(QStringLiteral("\nFILE is a lesson archive (.lzn, .resitem) or an unpacked lesson folder.\n"
                                    "'lxdoc COMMAND --help' describes a command."));
        return name.isEmpty() ? ExitUsage : ExitOk;
    }
    for (const Command &command : commands) {
        if (name == QLatin1String(command.name))
            return command.run(arguments);
    }
    return Console::fail(QStringLiteral("unknown command '%1' (see 'lxdoc --help')").arg(name), ExitUsage);
}

int CommandDispatcher::demo(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("demo"), QStringLiteral("Builds a sample lesson, reopens it, prints its summary "
                                                            "and renders its pages into FILE's folder."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The archive to write (default: sample.lzn)."), true);
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString file = line.argument(0, QStringLiteral("sample.lzn"));
    DemoLesson lesson(file);
    if (!lesson.create())
        return Console::fail(lesson.error());
    const QFileInfo info(file);
    const QString folder = info.dir().filePath(info.completeBaseName() + QStringLiteral("-pages"));
    return withLesson(file, [&](const LessonPages &pages) {
        for (const QString &text : LessonInfo(pages, file).lines())
            Console::out(text);
        return renderPages(pages, folder, QString(), QString());
    });
}

int CommandDispatcher::info(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("info"), QStringLiteral("Shows the pages of a lesson in order (id, title, size, "
                                                            "objects, recorded commands) and its resources."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder."));
    const int status = line.parse(arguments);
    return status >= 0 ? status : printInfo(line.argument(0));
}

int CommandDispatcher::dump(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("dump"), QStringLiteral("Shows the objects of a lesson's pages."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder."));
    line.addOption(option(QStringLiteral("page"), QStringLiteral("Only page N (counting from 1)."), QStringLiteral("N")));
    line.addOption(option(QStringLiteral("json"), QStringLiteral("Write JSON instead of a tree.")));
    line.addOption(option(QStringLiteral("records"), QStringLiteral("Also show the recorded commands.")));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    bool ok = true;
    const int page = line.isSet(QStringLiteral("page")) ? line.value(QStringLiteral("page")).toInt(&ok) : 0;
    if (!ok || page < 0 || (line.isSet(QStringLiteral("page")) && page == 0))
        return Console::fail(QStringLiteral("dump: --page takes a page number from 1 on"), ExitUsage);
    return withLesson(line.argument(0), [&](const LessonPages &pages) {
        LessonDumper dumper(pages);
        dumper.setRecords(line.isSet(QStringLiteral("records")));
        QJsonArray result;
        QString error;
        if (!dumper.dump(page, &result, &error))
            return Console::fail(QStringLiteral("cannot dump '%1': %2").arg(line.argument(0), error));
        if (line.isSet(QStringLiteral("json")))
            Console::out(QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Indented)).trimmed());
        else
            Console::out(LessonDumper::treeLines(result).join(QLatin1Char('\n')));
        return int(ExitOk);
    });
}

int CommandDispatcher::check(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("check"), QStringLiteral("Checks a lesson: manifest lists against the files present, "
                                                             "unreadable or malformed page and record files, missing "
                                                             "and unlisted resources. Exit status 0 only when clean."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder (only read)."));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString path = line.argument(0);
    LessonSource source(path);
    if (!source.prepareReadOnly())
        return Console::fail(source.error());
    LessonChecker checker(source.folder());
    checker.run();
    for (const QString &problem : checker.problems())
        Console::out(QStringLiteral("%1: %2").arg(path, problem));
    for (const QString &note : checker.notes())
        Console::out(QStringLiteral("%1: note: %2").arg(path, note));
    const int count = int(checker.problems().size());
    Console::out(count == 0 ? QStringLiteral("%1: no problems found").arg(path)
                            : QStringLiteral("%1: %2 problem(s) found").arg(path).arg(count));
    return count == 0 ? ExitOk : ExitFailure;
}

int CommandDispatcher::render(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("render"), QStringLiteral("Draws every page to OUTDIR/page-N.png."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder."));
    line.addArgument(QStringLiteral("OUTDIR"), QStringLiteral("The folder for the PNG files (made when missing)."));
    line.addOption(option(QStringLiteral("size"), QStringLiteral("Fit each page into WxH pixels, keeping its proportions."),
                          QStringLiteral("WxH")));
    line.addOption(option(QStringLiteral("pdf"), QStringLiteral("Also write all pages into one PDF file."), QStringLiteral("FILE")));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    QSize size;
    if (line.isSet(QStringLiteral("size")) && !parseSize(line.value(QStringLiteral("size")), &size))
        return Console::fail(QStringLiteral("render: --size takes WIDTHxHEIGHT, for example 800x600"), ExitUsage);
    return withLesson(line.argument(0), [&](const LessonPages &pages) {
        return renderPages(pages, line.argument(1), line.value(QStringLiteral("pdf")), line.value(QStringLiteral("size")));
    });
}

int CommandDispatcher::withLesson(const QString &path, const std::function<int(const LessonPages &)> &work)
{
    LessonSource source(path);
    if (!source.open())
        return Console::fail(source.error());
    const LessonPages pages(source.document(), source.folder());
    return work(pages);
}

int CommandDispatcher::printInfo(const QString &path)
{
    return withLesson(path, [&](const LessonPages &pages) {
        for (const QString &text : LessonInfo(pages, path).lines())
            Console::out(text);
        return int(ExitOk);
    });
}

int CommandDispatcher::renderPages(const LessonPages &pages, const QString &folder, const QString &pdf, const QString &size)
{
    LessonRenderer renderer(pages);
    QSize box;
    if (parseSize(size, &box))
        renderer.setBox(box);
    QStringList written;
    if (!renderer.renderImages(folder, &written))
        return Console::fail(QStringLiteral("cannot render: %1").arg(renderer.error()));
    if (!pdf.isEmpty() && !renderer.renderPdf(pdf))
        return Console::fail(QStringLiteral("cannot render: %1").arg(renderer.error()));
    Console::out(QStringLiteral("rendered %1 page(s) into %2%3").arg(written.size()).arg(QDir::toNativeSeparators(folder))
                     .arg(pdf.isEmpty() ? QString() : QStringLiteral(" and %1").arg(pdf)));
    return ExitOk;
}

#ifndef LXDOC_TOOL_COMMANDDISPATCHER_H
#define LXDOC_TOOL_COMMANDDISPATCHER_H

#include <QStringList>

#include <functional>

class LessonPages;

// Picks the subcommand named by the first argument and runs it.
class CommandDispatcher {
public:
    int run(const QStringList &arguments) const;

private:
    static int showOverview();
    static int demo(const QStringList &arguments);
    static int info(const QStringList &arguments);
    static int dump(const QStringList &arguments);
    static int check(const QStringList &arguments);
    static int render(const QStringList &arguments);

    // Opens a private copy of the lesson at path and hands its pages to work.
    static int withLesson(const QString &path, const std::function<int(const LessonPages &)> &work);
    static int printInfo(const QString &path);
    static int renderPages(const LessonPages &pages, const QString &folder, const QString &pdf, const QString &size);
};

#endif

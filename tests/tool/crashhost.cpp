// SPDX-License-Identifier: MIT
// A small host of the library for the recovery tests and measurements: it
// builds a lesson page by page in its temp root the way a board does (each
// page saved as it is finished, the lesson packed now and then) and says on
// stdout what reached the disk, so a test can kill it at a known moment.
//
//   lxdoc-crashhost NAME PAGES [ARCHIVE] [--pack-every N] [--hold]
//
// Without --hold it packs the lesson into ARCHIVE at the end and releases
// it; with --hold it waits to be killed once every page is saved.
#include "lxdoc.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QThread>

#include <cstdio>

namespace {

void say(const char *what, int page)
{
    std::printf("%s %d\n", what, page);
    std::fflush(stdout);
}

class CrashHostPage : public IDrawPage {
public:
    explicit CrashHostPage(int id) : m_id(id) {}

    bool renderPreview(QPixmap *target, QSize, int) override
    {
        target->fill(Qt::white);
        return true;
    }

    bool savePageTo(ILXDocument *document, int index, unsigned int) override
    {
        ILXFrontPage *page = document->insertFrontPage(index, m_id);
        if (!page)
            return false;
        page->setPageSize(QSize(800, 600));
        page->setPageTitle(QStringLiteral("Page %1").arg(m_id));
        page->setPageBgColor(QColor(255, 248, 225));
        for (int n = 1; n <= 12; ++n)
            addShape(page, n);
        page->setMaxGraphicId(12);
        const bool saved = page->saveFile();
        page->release();
        ILXRecordPage *record = document->insertRecPage(index, m_id);
        if (!record)
            return false;
        for (int n = 1; n <= 12; ++n) {
            ILXCmd *command = record->newLXCmd(QStringLiteral("create"));
            if (command) {
                command->setLXCmdAttribute(QStringLiteral("gids"), QString::number(n));
                command->setLXCmdAttribute(QStringLiteral("time"), n * 250);
                command->release();
            }
        }
        const bool recorded = record->saveFile();
        record->release();
        return saved && recorded;
    }

private:
    void addShape(ILXFrontPage *page, int n) const
    {
        ILXObject *object = page->newLXObject(QStringLiteral("rect"));
        if (!object)
            return;
        object->setLXObjectAttribute(QStringLiteral("gid"), n);
        object->setLXObjectAttribute(QStringLiteral("x"), 20 * n + m_id % 7);
        object->setLXObjectAttribute(QStringLiteral("y"), 15 * n);
        object->setLXObjectAttribute(QStringLiteral("width"), 40 + m_id);
        object->setLXObjectAttribute(QStringLiteral("height"), 30 + n);
        object->setLXObjectAttribute(QStringLiteral("fill"), QColor::fromHsv((m_id * 37 + n * 11) % 360, 160, 220).name());
        object->release();
    }

    int m_id;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    QStringList arguments = app.arguments().mid(1);
    const bool hold = arguments.removeAll(QStringLiteral("--hold")) > 0;
    int packEvery = 0;
    const int packAt = int(arguments.indexOf(QStringLiteral("--pack-every")));
    if (packAt >= 0) {
        packEvery = arguments.value(packAt + 1).toInt();
        arguments.erase(arguments.begin() + packAt, arguments.begin() + qMin(packAt + 2, int(arguments.size())));
    }
    const QString name = arguments.value(0);
    const int pages = arguments.value(1).toInt();
    const QString archive = arguments.value(2);
    if (name.isEmpty() || pages <= 0)
        return 2;
    ILXDocument *document = get_interface();
    document->init(QString(), false);
    if (!document->newFile(document->getTempPath() + name, true))
        return 1;
    for (int id = 1; id <= pages; ++id) {
        CrashHostPage page(id);
        if (!document->savePage(&page, id - 1, 0, id == 1))
            return 1;
        say("saved", id);
        if (packEvery > 0 && id % packEvery == 0 && !archive.isEmpty()) {
            say("packing", id);
            document->saveFile(archive, true);
            say("packed", id);
        }
    }
    if (hold) {
        say("holding", pages);
        for (;;)
            QThread::sleep(1);
    }
    const bool packed = archive.isEmpty() || document->saveFile(archive, true);
    document->release(false);
    return packed ? 0 : 1;
}

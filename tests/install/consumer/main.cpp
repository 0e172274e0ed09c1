// SPDX-License-Identifier: MIT
// A host of the installed library, through get_interface() alone.
//   consumer ARCHIVE          make a lesson, pack it, open it twice at once, check it
//   consumer --no-app ARCHIVE the same without an application object
//   consumer --open ARCHIVE N open and release the archive N times
// Prints the temp root in use on its first line; exit status 1 on a fault.

#include <lxdoc.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopedPointer>

#include <cstdio>
#include <cstring>
#include <cstdlib>

namespace {

const QString kTitle = QStringLiteral("Brüche – ½ + ¼");

int fail(const char *what)
{
    std::fprintf(stderr, "consumer: %s\n", what);
    return 1;
}

bool makeLesson(const QString &archive)
{
    ILXDocument *doc = get_interface();
    bool ok = doc->newFile(QString(), true);
    if (ILXFrontPage *page = ok ? doc->insertFrontPage(0, 7) : nullptr) {
        page->setPageTitle(kTitle);
        ok = page->saveFile();
        page->release();
    }
    if (ILXRecordPage *record = ok ? doc->insertRecPage(0, 7) : nullptr) {
        ok = record->saveFile();
        record->release();
    }
    ok = ok && doc->saveFile(archive, true) && QFileInfo(archive).size() > 0;
    doc->release(false);
    return ok;
}

bool checkLesson(ILXDocument *doc)
{
    int id = 0;
    ILXFrontPage *page = doc->getPagesCount() == 1 ? doc->getPageByIndex(0, id) : nullptr;
    if (!page)
        return false;
    QString title;
    const bool ok = id == 7 && page->getPageTitle(title) && title == kTitle;
    page->release();
    return ok;
}

// Two documents on one archive at once: each gets its own folder under the
// temp root, and releasing removes it.
int roundTrip(const QString &archive, const QString &root)
{
    if (!makeLesson(archive))
        return fail("cannot make and pack the lesson");
    ILXDocument *first = get_interface();
    ILXDocument *second = get_interface();
    const bool opened = first->openFile(archive) && second->openFile(archive);
    const QString one = first->getDocPath(), two = second->getDocPath();
    const bool ok = opened && checkLesson(first) && checkLesson(second) && one != two
        && one.startsWith(root) && two.startsWith(root);
    first->release(false);
    second->release(false);
    if (!ok)
        return fail("the reopened lesson differs");
    if (QFileInfo::exists(one) || QFileInfo::exists(two))
        return fail("release left a working folder behind");
    std::printf("unpacked into %s and %s\n", qPrintable(one), qPrintable(two));
    return 0;
}

int openRounds(const QString &archive, int rounds)
{
    for (int round = 0; round < rounds; ++round) {
        ILXDocument *doc = get_interface();
        const bool ok = doc->openFile(archive) && checkLesson(doc);
        doc->release(false);
        if (!ok)
            return fail("an open failed");
    }
    return 0;
}

// A host that never made an application object has no executable folder:
// the temp root must then be a private one, never "/Temp".
QString tempRoot()
{
    ILXDocument *doc = get_interface();
    doc->init(QString(), false);
    const QString root = doc->getTempPath();
    doc->release(false);
    std::printf("temp root %s\n", qPrintable(root));
    return root.isEmpty() || root == QLatin1String("/Temp/") || !root.endsWith(QLatin1Char('/')) ? QString() : root;
}

} // namespace

int main(int argc, char **argv)
{
    const bool withoutApp = argc > 2 && std::strcmp(argv[1], "--no-app") == 0;
    QScopedPointer<QCoreApplication> app(withoutApp ? nullptr : new QCoreApplication(argc, argv));
    const QString root = tempRoot();
    if (root.isEmpty())
        return fail("no usable temp root");
    if (argc == 4 && std::strcmp(argv[1], "--open") == 0)
        return openRounds(QString::fromLocal8Bit(argv[2]), std::atoi(argv[3]));
    if (argc == 2 || withoutApp)
        return roundTrip(QString::fromLocal8Bit(argv[argc - 1]), root);
    return fail("usage: consumer [--no-app] ARCHIVE | --open ARCHIVE ROUNDS");
}

// SPDX-License-Identifier: MIT
#include "demolesson.h"

#include "democontent.h"
#include "demopage.h"
#include "handle.h"
#include "lessonwriter.h"

#include <QDir>

DemoLesson::DemoLesson(const QString &archive)
    : m_archive(archive)
{
}

bool DemoLesson::create()
{
    LessonWriter writer(m_archive);
    const bool done = writer.startNew() && build(writer, writer.scratchFile(QStringLiteral("sample-picture.png")))
        && writer.finish();
    m_error = writer.error();
    return done;
}

QString DemoLesson::error() const
{
    return m_error;
}

bool DemoLesson::build(LessonWriter &writer, const QString &pictureFile)
{
    if (!DemoContent::writePicture(pictureFile))
        return writer.fail(QStringLiteral("cannot draw the sample picture"));
    QString pictureName;
    if (!addPicture(writer, pictureFile, &pictureName))
        return false;
    const QList<DemoPageModel> pages = DemoContent::pages(pictureName);
    for (int index = 0; index < pages.size(); ++index) {
        DemoPage page(pages.at(index), pictureFile);
        // The lesson's thumbnail is its first page.
        if (!writer.document()->savePage(&page, index, 0, index == 0))
            return writer.fail(QStringLiteral("cannot write page %1").arg(index + 1));
    }
    return true;
}

bool DemoLesson::addPicture(LessonWriter &writer, const QString &pictureFile, QString *name)
{
    ILXDocument *document = writer.document();
    ILXResMgr *resources = document->getLXResMgr();
    QString copy;
    if (!resources || !resources->addImageFile(pictureFile, copy))
        return writer.fail(QStringLiteral("cannot add the sample picture to the lesson"));
    *name = QDir(document->getDocPath()).relativeFilePath(copy);
    return true;
}

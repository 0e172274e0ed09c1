#include "demolesson.h"

#include "democontent.h"
#include "demopage.h"
#include "handle.h"
#include "outputfile.h"
#include "privatetemp.h"

#include <QDir>
#include <QFileInfo>

DemoLesson::DemoLesson(const QString &archive)
    : m_archive(archive)
{
}

bool DemoLesson::create()
{
    OutputFile output(m_archive, OutputFile::Archive);
    if (!output.check())
        return failOutput(output);
    const PrivateTemp temp;
    if (!temp.isValid())
        return fail(QStringLiteral("cannot make a temporary folder"));
    const QString pictureFile = temp.filePath(QStringLiteral("sample-picture.png"));
    if (!DemoContent::writePicture(pictureFile))
        return fail(QStringLiteral("cannot draw the sample picture"));
    const QString packed = temp.filePath(QFileInfo(m_archive).fileName());
    {
        // The working folder lies inside the temporary folder, and the
        // document deletes it on release.
        Handle<ILXDocument> document(get_interface());
        const QString folder = temp.filePath(QStringLiteral("lesson"));
        if (!document || !document->init(folder, false) || !document->newFile(folder, true))
            return fail(QStringLiteral("cannot start a new lesson"));
        if (!build(document.get(), pictureFile))
            return false;
        // A failed packing still reports success; the archive tells.
        if (!document->saveFile(packed, true) || QFileInfo(packed).size() == 0)
            return fail(QStringLiteral("packing failed (is ziplib.so beside lxdoc?)"));
    }
    return output.publish(packed) || failOutput(output);
}

QString DemoLesson::error() const
{
    return m_error;
}

bool DemoLesson::build(ILXDocument *document, const QString &pictureFile)
{
    QString pictureName;
    if (!addPicture(document, pictureFile, &pictureName))
        return false;
    const QList<DemoPageModel> pages = DemoContent::pages(pictureName);
    for (int index = 0; index < pages.size(); ++index) {
        DemoPage page(pages.at(index), pictureFile);
        // The lesson's thumbnail is its first page.
        if (!document->savePage(&page, index, 0, index == 0))
            return fail(QStringLiteral("cannot write page %1").arg(index + 1));
    }
    return true;
}

bool DemoLesson::addPicture(ILXDocument *document, const QString &pictureFile, QString *name)
{
    ILXResMgr *resources = document->getLXResMgr();
    QString copy;
    if (!resources || !resources->addImageFile(pictureFile, copy))
        return fail(QStringLiteral("cannot add the sample picture to the lesson"));
    *name = QDir(document->getDocPath()).relativeFilePath(copy);
    return true;
}

bool DemoLesson::fail(const QString &reason)
{
    m_error = QStringLiteral("cannot create '%1': %2").arg(m_archive, reason);
    return false;
}

bool DemoLesson::failOutput(const OutputFile &output)
{
    // Already one whole line naming the archive.
    m_error = output.error();
    return false;
}

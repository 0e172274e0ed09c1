#include "importsources.h"

#include "pdffile.h"

#include <QCollator>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace {

bool isPdf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(5) == "%PDF-";
}

bool isPictureName(const QString &name)
{
    const QByteArray suffix = QFileInfo(name).suffix().toLower().toLatin1();
    return !suffix.isEmpty() && QImageReader::supportedImageFormats().contains(suffix);
}

} // namespace

bool ImportSources::collect(const QStringList &paths)
{
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (!info.exists())
            return fail(path, QStringLiteral("no such file or folder"));
        if (!info.isDir()) {
            if (!addFile(path))
                return false;
            continue;
        }
        const QStringList pictures = picturesIn(path);
        if (pictures.isEmpty())
            return fail(path, QStringLiteral("the folder holds no pictures"));
        for (const QString &picture : pictures) {
            if (!addPicture(QDir(path).filePath(picture)))
                return false;
        }
    }
    return true;
}

const QList<ImportSources::Item> &ImportSources::items() const
{
    return m_items;
}

int ImportSources::pageCount() const
{
    int count = 0;
    for (const Item &item : m_items)
        count += item.pages;
    return count;
}

QString ImportSources::error() const
{
    return m_error;
}

QStringList ImportSources::picturesIn(const QString &folder)
{
    QStringList names;
    const QStringList files = QDir(folder).entryList(QDir::Files | QDir::Readable);
    for (const QString &name : files) {
        if (isPictureName(name))
            names << name;
    }
    QCollator collator;
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), [&](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    return names;
}

bool ImportSources::addFile(const QString &path)
{
    if (!QFileInfo(path).isReadable())
        return fail(path, QStringLiteral("permission denied"));
    return isPdf(path) ? addPdf(path) : addPicture(path);
}

bool ImportSources::addPdf(const QString &path)
{
    PdfFile pdf;
    if (!pdf.load(path))
        return fail(path, pdf.error());
    m_items << Item{path, true, pdf.pageCount()};
    return true;
}

bool ImportSources::addPicture(const QString &path)
{
    // Only the header is read here; the pixels are read when the page is made.
    QImageReader reader(path);
    if (!reader.canRead())
        return fail(path, QStringLiteral("not a PDF or a picture Qt can read"));
    m_items << Item{path, false, 1};
    return true;
}

bool ImportSources::fail(const QString &path, const QString &reason)
{
    m_error = QStringLiteral("cannot import '%1': %2").arg(path, reason);
    return false;
}

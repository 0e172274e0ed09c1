// SPDX-License-Identifier: MIT
#include "importsources.h"

#include "pdffile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QRegularExpression>

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

// Runs of digits compare by value, the rest without regard to case, so
// "page2" comes before "page10" in any locale.
bool naturalLess(const QString &a, const QString &b)
{
    int i = 0;
    int j = 0;
    while (i < a.size() && j < b.size()) {
        if (a.at(i).isDigit() && b.at(j).isDigit()) {
            const int startA = i;
            const int startB = j;
            while (i < a.size() && a.at(i).isDigit())
                ++i;
            while (j < b.size() && b.at(j).isDigit())
                ++j;
            // Leading zeros do not count; a longer run of digits is a larger number.
            const QString numberA = a.mid(startA, i - startA).remove(QRegularExpression(QStringLiteral("^0+(?=\\d)")));
            const QString numberB = b.mid(startB, j - startB).remove(QRegularExpression(QStringLiteral("^0+(?=\\d)")));
            if (numberA.size() != numberB.size())
                return numberA.size() < numberB.size();
            if (numberA != numberB)
                return numberA < numberB;
            continue;
        }
        const int order = QString::compare(a.at(i), b.at(j), Qt::CaseInsensitive);
        if (order != 0)
            return order < 0;
        ++i;
        ++j;
    }
    if ((a.size() - i) != (b.size() - j))
        return (a.size() - i) < (b.size() - j);
    return a < b;
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
    std::sort(names.begin(), names.end(), naturalLess);
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

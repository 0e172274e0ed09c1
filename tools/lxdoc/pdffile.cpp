// SPDX-License-Identifier: MIT
#include "pdffile.h"

#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <poppler-qt6.h>
#else
#include <poppler-qt5.h>
#endif

namespace {

// Qt 6's binding hands out owning pointers, Qt 5's raw ones.
template <typename T>
std::unique_ptr<T> owned(std::unique_ptr<T> pointer)
{
    return pointer;
}

template <typename T>
std::unique_ptr<T> owned(T *pointer)
{
    return std::unique_ptr<T>(pointer);
}

void collectTitles(const QVector<Poppler::OutlineItem> &items, QMap<int, QString> *titles)
{
    for (const Poppler::OutlineItem &item : items) {
        const QSharedPointer<const Poppler::LinkDestination> destination = item.destination();
        if (destination && item.externalFileName().isEmpty() && !titles->contains(destination->pageNumber()))
            titles->insert(destination->pageNumber(), item.name().simplified());
        if (item.hasChildren())
            collectTitles(item.children(), titles);
    }
}

} // namespace

PdfFile::PdfFile() = default;

PdfFile::~PdfFile() = default;

bool PdfFile::load(const QString &path)
{
    m_document = owned(Poppler::Document::load(path));
    if (!m_document) {
        m_error = QStringLiteral("not a PDF file, or a damaged one");
        return false;
    }
    if (m_document->isLocked()) {
        m_error = QStringLiteral("the PDF is encrypted");
        m_document.reset();
        return false;
    }
    if (m_document->numPages() < 1) {
        m_error = QStringLiteral("the PDF has no pages");
        m_document.reset();
        return false;
    }
    m_document->setRenderHint(Poppler::Document::Antialiasing);
    m_document->setRenderHint(Poppler::Document::TextAntialiasing);
    return true;
}

int PdfFile::pageCount() const
{
    return m_document ? m_document->numPages() : 0;
}

QSizeF PdfFile::pageSize(int index) const
{
    const auto page = owned(m_document->page(index));
    return page ? page->pageSizeF() : QSizeF();
}

QImage PdfFile::render(int index, int dpi) const
{
    const auto page = owned(m_document->page(index));
    return page ? page->renderToImage(dpi, dpi) : QImage();
}

QMap<int, QString> PdfFile::outlineTitles() const
{
    QMap<int, QString> titles;
    collectTitles(m_document->outline(), &titles);
    titles.remove(0);
    return titles;
}

QString PdfFile::error() const
{
    return m_error;
}

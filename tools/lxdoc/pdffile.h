// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PDFFILE_H
#define LXDOC_TOOL_PDFFILE_H

#include <QImage>
#include <QMap>
#include <QSizeF>
#include <QString>

#include <memory>

namespace Poppler {
class Document;
}

// A PDF file read by Poppler, one page at a time: only the page being
// drawn is ever held as an image.
class PdfFile {
public:
    PdfFile();
    ~PdfFile();
    PdfFile(const PdfFile &) = delete;
    PdfFile &operator=(const PdfFile &) = delete;

    bool load(const QString &path);
    int pageCount() const;
    // In points.
    QSizeF pageSize(int index) const;
    // Null when Poppler cannot draw the page.
    QImage render(int index, int dpi) const;
    // The first outline title that leads to each page (1-based page numbers).
    QMap<int, QString> outlineTitles() const;
    QString error() const;

private:
    std::unique_ptr<Poppler::Document> m_document;
    QString m_error;
};

#endif

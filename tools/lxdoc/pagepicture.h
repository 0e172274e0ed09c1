// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PAGEPICTURE_H
#define LXDOC_TOOL_PAGEPICTURE_H

#include <QByteArray>
#include <QRectF>
#include <QSize>
#include <QString>

// A picture an image element names: a file inside the lesson folder (by the
// lesson's one naming rule) or data embedded in the page, and only a raster
// format that draws nothing but its own pixels. Anything else, a URL or a
// file outside the lesson above all, is not a picture of the page.
class PagePicture {
public:
    explicit PagePicture(const QString &lessonFolder);

    bool load(const QString &href);
    QSize size() const;
    // Where the picture is drawn inside box under a preserveAspectRatio
    // value (default "xMidYMid meet"), and the data URI of what is drawn
    // there: "slice" crops the picture to the box.
    QRectF place(const QRectF &box, const QString &aspect, QString *dataUri) const;

private:
    bool readFile(const QString &name);
    bool readData(const QString &uri);
    QString dataUri(const QRectF &crop) const;

    QString m_folder;
    QByteArray m_bytes;
    QByteArray m_format;
    QSize m_size;
};

#endif

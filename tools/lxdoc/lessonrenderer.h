// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONRENDERER_H
#define LXDOC_TOOL_LESSONRENDERER_H

#include <QByteArray>
#include <QRectF>
#include <QSize>
#include <QStringList>

class LessonPages;
class QPainter;

// Draws the pages of an open lesson with QtSvg: one PNG per page, or all
// pages into one PDF.
class LessonRenderer {
public:
    explicit LessonRenderer(const LessonPages &pages);

    // Each page is scaled to fit into box, keeping its proportions; an
    // empty box keeps the page size.
    void setBox(QSize box);
    // Writes "page-N.png" files into folder (made when missing).
    bool renderImages(const QString &folder, QStringList *written);
    bool renderPdf(const QString &file);
    QString error() const;
    // The page as the SVG that is drawn, and its size.
    bool pageSvg(int index, QByteArray *svg, QSize *size);

private:
    bool writePdf(const QString &partial, const QString &file);
    bool renderImage(int index, const QString &path);
    bool paintPage(QPainter &painter, const QByteArray &svg, const QRectF &target, int index);
    QSize outputSize(QSize page) const;
    bool fail(const QString &reason);

    const LessonPages &m_pages;
    QSize m_box;
    QString m_error;
};

#endif

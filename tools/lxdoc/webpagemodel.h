// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_WEBPAGEMODEL_H
#define LXDOC_TOOL_WEBPAGEMODEL_H

#include <QList>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QStringList>

// Words of a text object, and where on the page they stand.
struct WebText {
    QRectF bound;
    QString text;
};

// One page of an exported web lesson.
struct WebPageModel {
    QString title;
    QSize size;
    QString picture;             // the page's SVG, relative to index.html
    QList<WebText> texts;
    QStringList media;           // copied media, relative to index.html
};

#endif

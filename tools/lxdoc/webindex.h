// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_WEBINDEX_H
#define LXDOC_TOOL_WEBINDEX_H

#include "webpagemodel.h"

#include <QByteArray>
#include <QList>
#include <QString>

// The index.html of an exported lesson: every page in order with its title
// as a heading and its words as real text over the picture, buttons, arrow
// keys and a strip of thumbnails. Only inline style and script, so it opens
// from the file system with no network. "index.html?bare#page-N" shows page
// N alone at its own size, as a screenshot compares it.
class WebIndex {
public:
    static QByteArray html(const QString &lessonName, const QList<WebPageModel> &pages);

private:
    static QString page(const WebPageModel &model, int number);
    static QString texts(const WebPageModel &model);
    static QString media(const WebPageModel &model);
    static QString thumbnails(const QList<WebPageModel> &pages);
};

#endif

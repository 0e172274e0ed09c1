// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_WEBEXPORTER_H
#define LXDOC_TOOL_WEBEXPORTER_H

#include "webpagemodel.h"

#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>

class LessonPages;
class LessonRenderer;
class ILXFrontPage;

// Writes a lesson as a static web lesson into a new or empty folder:
// "index.html", each page as "pages/page-N.svg" (the SVG that render draws),
// and the media the pages name under "media/". Names from inside the lesson
// are resolved inside it or left out; nothing is written outside the folder.
class WebExporter {
public:
    WebExporter(const LessonPages &pages, const QString &folder);

    bool write(const QString &lessonName);
    QString error() const;

private:
    bool exportPage(LessonRenderer &renderer, int index, WebPageModel *model);
    void collectTexts(ILXFrontPage *page, WebPageModel *model) const;
    void copyMedia(const QByteArray &pageFile, WebPageModel *model);
    bool copyMediaFile(const QString &name);
    bool writeFile(const QString &name, const QByteArray &content);
    bool fail(const QString &reason);

    const LessonPages &m_pages;
    QString m_folder;
    QSet<QString> m_copied;
    QString m_error;
};

#endif

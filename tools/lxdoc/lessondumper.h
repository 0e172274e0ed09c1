// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONDUMPER_H
#define LXDOC_TOOL_LESSONDUMPER_H

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

class ILXFrontPage;
class LessonPages;

// The objects (and, on request, the recorded commands) of one page or all,
// as JSON or as an indented tree.
class LessonDumper {
public:
    explicit LessonDumper(const LessonPages &pages);
    void setRecords(bool on);

    // page is 1-based; 0 means every page. False when the page cannot be read.
    bool dump(int page, QJsonArray *result, QString *error) const;
    static QStringList treeLines(const QJsonArray &pages);

private:
    bool dumpPage(int index, QJsonObject *node, QString *error) const;
    QJsonArray objects(ILXFrontPage *page) const;
    // False when the page has a recording the library cannot read.
    bool commands(int id, QJsonArray *result) const;

    const LessonPages &m_pages;
    bool m_records = false;
};

#endif

// SPDX-License-Identifier: MIT
#include "lessonreader.h"

#include "lxdoc.h"

#include <QColor>
#include <QList>
#include <QPointF>
#include <QSize>

namespace {

void readObject(ILXObject *object, LessonReader::Counts &counts)
{
    ++counts.objects;
    QString cls;
    object->getClass(cls);
    int gid = 0;
    object->getgid(gid);
    QColor color;
    object->getStroke(color);
    float width = 0;
    object->getStrokeWidth(width);
    bool filled = false;
    object->getFill(filled, color);
    QPointF pos;
    QSizeF scale;
    float angle = 0;
    bool flipH = false;
    bool flipV = false;
    object->getTransform(pos, scale, angle, flipH, flipV);
    const int polygons = object->getPolygonCount();
    for (int i = 0; i < polygons; ++i) {
        QList<QPointF> points;
        QList<float> widths;
        object->getPolygonPoints(i, points, widths);
        counts.points += points.size();
        counts.widths += widths.size();
    }
    if (cls == QLatin1String("text")) {
        QString text;
        if (object->getSvgText(text))
            ++counts.texts;
    } else if (cls == QLatin1String("shape")) {
        QRectF bound;
        object->getBound(bound);
    }
}

} // namespace

LessonReader::Counts LessonReader::walk(ILXDocument *document)
{
    Counts counts;
    const int pages = document->getPagesCount();
    for (int index = 0; index < pages; ++index) {
        int id = 0;
        ILXFrontPage *const page = document->getPageByIndex(index, id);
        if (!page)
            continue;
        readFrontPage(page, counts);
        page->release();
        ILXRecordPage *const record = document->getRecPageById(id);
        if (!record)
            continue;
        readRecordPage(record, counts);
        record->release();
    }
    return counts;
}

void LessonReader::readFrontPage(ILXFrontPage *page, Counts &counts)
{
    ++counts.pages;
    QSize size;
    page->getPageSize(size);
    QString title;
    page->getPageTitle(title);
    QColor background;
    page->getPageBgColor(background);
    for (ILXObject *object = page->getFirstLXObject(); object; object = page->getNextLXObject()) {
        readObject(object, counts);
        object->release();
    }
}

void LessonReader::readRecordPage(ILXRecordPage *record, Counts &counts)
{
    int duration = 0;
    record->getLXPageAttribute(QStringLiteral("duration"), duration);
    for (ILXCmd *command = record->getFirstLXCmd(); command; command = record->getNextLXCmd()) {
        ++counts.commands;
        QString cls;
        command->getClass(cls);
        int time = 0;
        command->getLXCmdAttribute(QStringLiteral("time"), time);
        QList<int> ids;
        command->getListGraphicsId(ids);
        QList<QPointF> points;
        command->getPointFList(QStringLiteral("points"), points);
        counts.commandPoints += points.size();
        command->release();
    }
}

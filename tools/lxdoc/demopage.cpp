// SPDX-License-Identifier: MIT
#include "demopage.h"

#include "demopainter.h"
#include "demoshapewriter.h"
#include "handle.h"

#include <QPainter>
#include <QPixmap>

namespace {

const QString kCommandTag = QStringLiteral("cmd");

} // namespace

DemoPage::DemoPage(const DemoPageModel &model, const QString &pictureFile)
    : m_model(model)
    , m_pictureFile(pictureFile)
{
}

bool DemoPage::renderPreview(QPixmap *target, QSize size, int)
{
    QPainter painter(target);
    DemoPainter(m_model, m_pictureFile).paint(painter, size);
    return true;
}

bool DemoPage::savePageTo(ILXDocument *document, int index, unsigned int)
{
    Handle<ILXFrontPage> page(document->insertFrontPage(index, m_model.id));
    if (!page || !writeFrontPage(page.get()))
        return false;
    Handle<ILXRecordPage> record(document->insertRecPage(index, m_model.id));
    return record && writeRecording(record.get());
}

bool DemoPage::writeFrontPage(ILXFrontPage *page) const
{
    writeProperties(page);
    // Objects go into the foreground layer, above background, title and grid.
    if (!page->setForeground(true))
        return false;
    int gid = 0;
    for (const DemoShape &shape : m_model.shapes) {
        if (!DemoShapeWriter::write(page, shape, ++gid))
            return false;
    }
    page->setMaxGraphicId(gid);
    return page->saveFile();
}

void DemoPage::writeProperties(ILXFrontPage *page) const
{
    const QSize size = m_model.size;
    page->setPageSize(size);
    page->setPageFormat(PageFormatLzn);
    // Namespaces and viewBox make the page file a standalone SVG picture.
    page->setLXPageAttribute(QStringLiteral("xmlns"), QStringLiteral("http://www.w3.org/2000/svg"));
    page->setLXPageAttribute(QStringLiteral("xmlns:xlink"), QStringLiteral("http://www.w3.org/1999/xlink"));
    page->setLXPageAttribute(QStringLiteral("viewBox"), QStringLiteral("0 0 %1 %2").arg(size.width()).arg(size.height()));
    page->setPageMargin(20, 20, 20, 20);
    page->setPageBgColor(m_model.background);
    page->setPageTitle(m_model.title);
    tagPageGrid grid = m_model.grid;
    page->setPageGrid(&grid);
}

bool DemoPage::writeRecording(ILXRecordPage *record) const
{
    for (const DemoCommand &model : m_model.commands) {
        Handle<ILXCmd> command(record->newLXCmd(kCommandTag));
        if (!command)
            return false;
        writeCommand(command.get(), model);
    }
    return record->saveFile();
}

void DemoPage::writeCommand(ILXCmd *command, const DemoCommand &model)
{
    command->setClass(model.cls);
    command->setLXCmdAttribute(QStringLiteral("time"), model.time);
    command->setListGraphicsId(model.gids);
    if (!model.points.isEmpty())
        command->setPointFList(QStringLiteral("points"), model.points);
    if (!model.moveBy.isNull())
        command->setTransform(model.moveBy, QSizeF(1, 1), 0.0f, false, false, QPointF());
    for (const DemoCommand &step : model.steps) {
        Handle<ILXCmd> child(command->newLXCmd(kCommandTag));
        if (child)
            writeCommand(child.get(), step);
    }
}

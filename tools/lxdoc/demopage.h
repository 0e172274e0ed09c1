// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOPAGE_H
#define LXDOC_TOOL_DEMOPAGE_H

#include "demopagemodel.h"
#include "idrawpage.h"

class ILXCmd;
class ILXFrontPage;
class ILXRecordPage;

// A board page of the sample lesson, handed to the document's savePage:
// the document has it draw its preview, then write itself back.
class DemoPage final : public IDrawPage {
public:
    DemoPage(const DemoPageModel &model, const QString &pictureFile);

    bool renderPreview(QPixmap *target, QSize size, int reserved) override;
    bool savePageTo(ILXDocument *document, int index, unsigned int flags) override;

private:
    bool writeFrontPage(ILXFrontPage *page) const;
    void writeProperties(ILXFrontPage *page) const;
    bool writeRecording(ILXRecordPage *record) const;
    static void writeCommand(ILXCmd *command, const DemoCommand &model);

    DemoPageModel m_model;
    QString m_pictureFile;
};

#endif

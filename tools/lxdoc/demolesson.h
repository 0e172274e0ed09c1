#ifndef LXDOC_TOOL_DEMOLESSON_H
#define LXDOC_TOOL_DEMOLESSON_H

#include <QString>

class ILXDocument;
class OutputFile;

// Builds the sample lesson through the document interfaces, the way the
// board saves a lesson: each page through savePage, then saveFile packing.
class DemoLesson {
public:
    explicit DemoLesson(const QString &archive);

    bool create();
    QString error() const;

private:
    bool build(ILXDocument *document, const QString &pictureFile);
    bool addPicture(ILXDocument *document, const QString &pictureFile, QString *name);
    bool fail(const QString &reason);
    bool failOutput(const OutputFile &output);

    QString m_archive;
    QString m_error;
};

#endif

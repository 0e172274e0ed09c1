#ifndef LXDOC_PAGETESTHELPERS_H
#define LXDOC_PAGETESTHELPERS_H

#include "ilxobject.h"
#include "page/qlxfrontpage.h"
#include "xml/xmlstream.h"
#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

struct Releaser {
    template <typename T> void operator()(T *p) const { p->release(); }
};
using PagePtr = std::unique_ptr<QLXFrontPage, Releaser>;
using ObjPtr = std::unique_ptr<ILXObject, Releaser>;

// Every test works in its own temporary folder and reads results back from
// disk with a fresh page or a plain DOM parse.
class PageTestBase : public QObject {
protected:
    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

    QString writeFile(const QString &name, const QString &content) const
    {
        QFile file(path(name));
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write(content.toUtf8());
        return file.fileName();
    }

    static QByteArray readFile(const QString &file)
    {
        QFile f(file);
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }

    static bool hasXmllint() { return !QStandardPaths::findExecutable("xmllint").isEmpty(); }

    // A no-op without xmllint; pageFilesAreWellFormed reports the skip.
    static void expectWellFormed(const QString &file)
    {
        if (!hasXmllint())
            return;
        QProcess lint;
        lint.start("xmllint", {"--noout", file});
        QVERIFY(lint.waitForFinished());
        QVERIFY2(lint.exitCode() == 0, qPrintable(file + ": " + lint.readAllStandardError()));
    }

    static QDomDocument fileDoc(const QString &file)
    {
        QDomDocument doc;
        doc.setContent(readFile(file));
        return doc;
    }

    static QDomElement fileRoot(const QString &file) { return fileDoc(file).documentElement(); }

    static PagePtr reopen(const QString &file)
    {
        expectWellFormed(file);
        return PagePtr(new QLXFrontPage(file));
    }

    static QStringList childNames(const QDomNode &node)
    {
        QStringList names;
        for (QDomNode n = node.firstChild(); !n.isNull(); n = n.nextSibling())
            names << n.nodeName();
        return names;
    }
};

#endif

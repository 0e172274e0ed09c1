// SPDX-License-Identifier: MIT
#include "lessonrepair.h"

#include "filetree.h"
#include "manifestreader.h"
#include "xmlfilecheck.h"

#include "document/lessonpath.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

const QString kManifest = QStringLiteral("manifest.xml");
const QString kPages = QStringLiteral("pages");
const QString kSetAside = QStringLiteral(".damaged");

// The lists in the order a new manifest has them.
const QStringList kWriteOrder = {kPages, QStringLiteral("records"), QStringLiteral("images"),
                                 QStringLiteral("sounds"), QStringLiteral("flashes"), QStringLiteral("avmedia"),
                                 QStringLiteral("fillblocks"), QStringLiteral("attachments")};

QString rootOf(const QString &list)
{
    return list == kPages ? QStringLiteral("svg") : QStringLiteral("record");
}

const QRegularExpression &pageFilePattern(const QString &list)
{
    static const QRegularExpression svg(QStringLiteral("^page(\\d+)\\.svg$"));
    static const QRegularExpression record(QStringLiteral("^page(\\d+)\\.mtrec$"));
    return list == kPages ? svg : record;
}

qulonglong pageId(const QString &file, const QString &list)
{
    return pageFilePattern(list).match(file).captured(1).toULongLong();
}

} // namespace

LessonRepair::LessonRepair(const QString &folder)
    : m_folder(folder)
{
}

void LessonRepair::setListUnlistedPages(bool list)
{
    m_listUnlistedPages = list;
}

bool LessonRepair::run()
{
    ManifestReader manifest;
    m_rebuilt = !readManifest(&manifest);
    m_changed = m_changed || m_rebuilt;
    for (const QString &list : {kPages, QStringLiteral("records")})
        repairPageList(manifest, list);
    for (const QString &kind : ManifestReader::resourceKinds())
        repairResourceList(manifest, kind);
    listUnlistedResources();
    return !m_changed || writeManifest();
}

void LessonRepair::setAside(const QString &name, const QString &problem)
{
    QDir folder(m_folder);
    QString target = setAsideName(name);
    for (int n = 1; folder.exists(target); ++n)
        target = setAsideName(name) + QString::number(n);
    if (LessonPath::inspect(m_folder, name) == LessonPath::Regular && folder.rename(name, target))
        lose(QStringLiteral("%1: %2; set aside as %3").arg(name, problem, target));
    else
        lose(QStringLiteral("%1: %2").arg(name, problem));
}

bool LessonRepair::readManifest(ManifestReader *manifest)
{
    const QString problem = XmlFileCheck::problem(m_folder, kManifest, QStringLiteral("manifest"));
    if (problem.isEmpty() && manifest->load(QDir(m_folder).filePath(kManifest)))
        return true;
    if (LessonPath::inspect(m_folder, kManifest) == LessonPath::Regular)
        setAside(kManifest, problem);
    repair(QStringLiteral("%1: rebuilt from the files present").arg(kManifest));
    return false;
}

void LessonRepair::repairPageList(const ManifestReader &manifest, const QString &list)
{
    QStringList &kept = m_lists[list];
    if (m_rebuilt || !manifest.hasList(list)) {
        kept = pageFiles(list);
        if (!m_rebuilt)
            repair(QStringLiteral("%1: the '%2' list was missing; rebuilt with %3 file(s)").arg(kManifest, list).arg(kept.size()));
        m_changed = true;
        return;
    }
    for (const QString &entry : manifest.list(list)) {
        const QString problem = XmlFileCheck::problem(m_folder, entry, rootOf(list));
        if (kept.contains(entry))
            repair(QStringLiteral("%1: listed twice in '%2'; the second entry removed").arg(entry, list));
        else if (!problem.isEmpty() && LessonPath::inspect(m_folder, entry) == LessonPath::Regular)
            setAside(entry, problem);
        else if (!problem.isEmpty())
            lose(QStringLiteral("%1: %2; removed from '%3'").arg(entry, problem, list));
        else
            kept << entry;
    }
    m_changed = m_changed || kept.size() != manifest.list(list).size();
    if (!m_listUnlistedPages)
        return;
    for (const QString &file : pageFiles(list)) {
        if (!kept.contains(file) && !manifest.list(list).contains(file)) {
            kept << file;
            repair(QStringLiteral("%1: saved but not listed; added to '%2'").arg(file, list));
            m_changed = true;
        }
    }
}

void LessonRepair::repairResourceList(const ManifestReader &manifest, const QString &kind)
{
    QStringList &kept = m_lists[kind];
    if (m_rebuilt || !manifest.hasList(kind)) {
        // Listed from the folder's files by listUnlistedResources.
        m_changed = true;
        return;
    }
    for (const QString &entry : manifest.list(kind)) {
        const LessonPath::Verdict verdict = LessonPath::inspect(m_folder, entry);
        if (kept.contains(entry))
            repair(QStringLiteral("%1: listed twice in '%2'; the second entry removed").arg(entry, kind));
        else if (verdict != LessonPath::Regular)
            lose(QStringLiteral("%1: %2; removed from '%3'").arg(entry, LessonPath::verdictText(verdict), kind));
        else
            kept << entry;
    }
    m_changed = m_changed || kept.size() != manifest.list(kind).size();
}

void LessonRepair::listUnlistedResources()
{
    // Fill blocks and attachments may be listed under each other's name, so
    // a file counts as listed when any resource list names it.
    QSet<QString> listed;
    for (const QString &kind : ManifestReader::resourceKinds()) {
        for (const QString &entry : m_lists.value(kind))
            listed.insert(LessonPath::clean(entry));
    }
    for (const QString &kind : ManifestReader::resourceKinds()) {
        const QString folder = ManifestReader::folderOfKind(kind);
        for (const QString &file : FileTree::files(QDir(m_folder).filePath(folder))) {
            const QString entry = folder + QLatin1Char('/') + file;
            if (listed.contains(entry))
                continue;
            m_lists[kind] << entry;
            if (!m_rebuilt)
                repair(QStringLiteral("%1: present but not listed; added to '%2'").arg(entry, kind));
            m_changed = true;
        }
    }
}

QStringList LessonRepair::pageFiles(const QString &list)
{
    QStringList files;
    for (const QString &file : QDir(m_folder).entryList(QDir::Files | QDir::NoSymLinks)) {
        if (!pageFilePattern(list).match(file).hasMatch())
            continue;
        const QString problem = XmlFileCheck::problem(m_folder, file, rootOf(list));
        if (problem.isEmpty())
            files << file;
        else
            setAside(file, problem);
    }
    std::sort(files.begin(), files.end(), [&list](const QString &a, const QString &b) {
        return pageId(a, list) < pageId(b, list);
    });
    return files;
}

bool LessonRepair::writeManifest()
{
    QSaveFile file(QDir(m_folder).filePath(kManifest));
    if (!file.open(QIODevice::WriteOnly)) {
        m_error = QStringLiteral("cannot write %1: %2").arg(kManifest, file.errorString());
        return false;
    }
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(4);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("manifest"));
    xml.writeAttribute(QStringLiteral("identifier"), QStringLiteral("lzn"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("6.0.0"));
    for (const QString &list : kWriteOrder) {
        xml.writeStartElement(QStringLiteral("resource"));
        xml.writeAttribute(QStringLiteral("identifier"), list);
        for (const QString &entry : m_lists.value(list)) {
            xml.writeEmptyElement(QStringLiteral("file"));
            xml.writeAttribute(QStringLiteral("href"), entry);
        }
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    if (file.commit())
        return true;
    m_error = QStringLiteral("cannot write %1: %2").arg(kManifest, file.errorString());
    return false;
}

void LessonRepair::repair(const QString &line)
{
    m_repairs << line;
}

void LessonRepair::lose(const QString &line)
{
    m_losses << line;
    m_changed = true;
}

QStringList LessonRepair::repairs() const
{
    return m_repairs;
}

QStringList LessonRepair::losses() const
{
    return m_losses;
}

int LessonRepair::pageCount() const
{
    return int(m_lists.value(kPages).size());
}

QString LessonRepair::errorString() const
{
    return m_error;
}

QString LessonRepair::setAsideName(const QString &name)
{
    return name + kSetAside;
}

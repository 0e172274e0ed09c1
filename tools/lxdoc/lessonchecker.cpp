// SPDX-License-Identifier: MIT
#include "lessonchecker.h"

#include "console.h"
#include "filetree.h"
#include "lessonrepair.h"
#include "manifestreader.h"
#include "xmlfilecheck.h"

#include "document/lessonpath.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kManifest = QStringLiteral("manifest.xml");

} // namespace

LessonChecker::LessonChecker(const QString &folder)
    : m_folder(folder)
{
}

void LessonChecker::run()
{
    const QString manifestProblem = xmlProblem(kManifest, QStringLiteral("manifest"));
    if (!manifestProblem.isEmpty()) {
        m_problems << QStringLiteral("%1: %2").arg(kManifest, manifestProblem);
        return;
    }
    ManifestReader manifest;
    manifest.load(QDir(m_folder).filePath(kManifest));
    const QString tooLong = manifest.pageLimitProblem();
    if (!tooLong.isEmpty()) {
        m_problems << QStringLiteral("%1: %2, so the library refuses it").arg(kManifest, tooLong);
        return;
    }
    checkPageFiles(manifest, QStringLiteral("pages"), QStringLiteral("svg"));
    checkPageFiles(manifest, QStringLiteral("records"), QStringLiteral("record"));
    checkResources(manifest);
    checkUnlistedPages(manifest);
    Console::endProgress();
}

QStringList LessonChecker::problems() const
{
    return m_problems;
}

QStringList LessonChecker::notes() const
{
    return m_notes;
}

void LessonChecker::checkPageFiles(const ManifestReader &manifest, const QString &list, const QString &root)
{
    if (!manifest.hasList(list)) {
        m_problems << QStringLiteral("%1: has no '%2' list").arg(kManifest, list);
        return;
    }
    const QStringList entries = manifest.list(list);
    checkDuplicates(entries, list);
    // A file listed twice is read once: its duplicates are a finding already.
    QSet<QString> checked;
    for (int i = 0; i < entries.size(); ++i) {
        Console::progress(i + 1, int(entries.size()), QStringLiteral("checking %1").arg(list));
        const QString &entry = entries.at(i);
        if (checked.contains(entry))
            continue;
        checked.insert(entry);
        const QString problem = xmlProblem(entry, root);
        if (!problem.isEmpty())
            m_problems << QStringLiteral("%1: %2 (listed in '%3')").arg(entry, problem, list);
    }
}

void LessonChecker::checkResources(const ManifestReader &manifest)
{
    QSet<QString> listed;
    for (const QString &kind : ManifestReader::resourceKinds()) {
        const QStringList entries = manifest.list(kind);
        checkDuplicates(entries, kind);
        for (const QString &entry : entries) {
            listed.insert(LessonPath::clean(entry));
            const LessonPath::Verdict verdict = LessonPath::inspect(m_folder, entry);
            if (verdict == LessonPath::Missing)
                m_problems << QStringLiteral("%1: listed in '%2' but missing").arg(entry, kind);
            else if (verdict != LessonPath::Regular)
                m_problems << QStringLiteral("%1: %2 (listed in '%3')").arg(entry, LessonPath::verdictText(verdict), kind);
        }
    }
    checkUnlistedResources(listed);
}

void LessonChecker::checkUnlistedResources(const QSet<QString> &listed)
{
    // Fill blocks and attachments may be listed under each other's name, so
    // a file counts as listed when any resource list names it.
    for (const QString &kind : ManifestReader::resourceKinds()) {
        const QString folder = ManifestReader::folderOfKind(kind);
        for (const QString &file : FileTree::files(QDir(m_folder).filePath(folder))) {
            const QString entry = folder + QLatin1Char('/') + file;
            if (!listed.contains(entry))
                m_problems << QStringLiteral("%1: present but not listed in the manifest").arg(entry);
        }
    }
}

void LessonChecker::checkUnlistedPages(const ManifestReader &manifest)
{
    const QStringList names = manifest.list(QStringLiteral("pages")) + manifest.list(QStringLiteral("records"));
    const QSet<QString> listed(names.cbegin(), names.cend());
    const QStringList present = QDir(m_folder).entryList({QStringLiteral("page*.svg"), QStringLiteral("page*.mtrec")},
                                                         QDir::Files, QDir::Name);
    // Deleting a page leaves its files behind on purpose; packing keeps them.
    for (const QString &file : present) {
        if (!listed.contains(file))
            m_notes << QStringLiteral("%1: present but not listed in the manifest (left by a deleted page?)").arg(file);
    }
    const QString setAside = LessonRepair::setAsideName(QStringLiteral("*")) + QLatin1Char('*');
    for (const QString &file : QDir(m_folder).entryList({setAside}, QDir::Files, QDir::Name))
        m_notes << QStringLiteral("%1: set aside by a repair because it could not be read; the lesson no longer lists it").arg(file);
}

void LessonChecker::checkDuplicates(const QStringList &entries, const QString &list)
{
    QSet<QString> seen;
    QSet<QString> reported;
    for (const QString &entry : entries) {
        if (seen.contains(entry) && !reported.contains(entry)) {
            m_problems << QStringLiteral("%1: '%2' is listed more than once in '%3'").arg(kManifest, entry, list);
            reported.insert(entry);
        }
        seen.insert(entry);
    }
}

QString LessonChecker::xmlProblem(const QString &name, const QString &root) const
{
    const QString problem = XmlFileCheck::problem(m_folder, name, root);
    if (name == kManifest && problem == LessonPath::verdictText(LessonPath::Missing))
        return QStringLiteral("missing, so this is not a lesson");
    return problem;
}

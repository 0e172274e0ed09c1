// SPDX-License-Identifier: MIT
#include "manifest/listtextmemo.h"

#include <QMutex>
#include <QMutexLocker>
#include <QVector>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

struct Entry {
    QDomNode parent;
    QDomNode element;
    QStringList list;
    ListTextMemo::Texts texts;
};

// A host has a few lessons open at a time; a longer table would only hold
// the lists of manifests long closed.
const int kCapacity = 64;

QMutex &mutex()
{
    static QMutex lock;
    return lock;
}

QVector<Entry> &entries()
{
    static QVector<Entry> table;
    return table;
}

int find(const QDomNode &element)
{
    const QVector<Entry> &table = entries();
    for (int i = 0; i < table.size(); ++i) {
        if (table.at(i).element == element)
            return i;
    }
    return -1;
}

} // namespace

// Appending, the common case, adds up nothing.
void ListTextMemo::Texts::insert(int position, const QString &text)
{
    const int offset = position == lengths.size() ? int(joined.size())
                                                  : std::accumulate(lengths.cbegin(), lengths.cbegin() + position, 0);
    joined.insert(offset, text);
    lengths.insert(position, int(text.size()));
}

void ListTextMemo::Texts::remove(int position)
{
    joined.remove(std::accumulate(lengths.cbegin(), lengths.cbegin() + position, 0), lengths.at(position));
    lengths.removeAt(position);
}

bool ListTextMemo::take(const QDomNode &element, const QStringList &list, Texts *texts)
{
    if (element.isNull())
        return false;
    const QMutexLocker lock(&mutex());
    const int at = find(element);
    if (at < 0)
        return false;
    Entry entry = entries().takeAt(at);
    if (!list.isSharedWith(entry.list))
        return false;
    *texts = std::move(entry.texts);
    return true;
}

void ListTextMemo::put(const QDomNode &element, const QStringList &list, const Texts &texts)
{
    if (element.isNull())
        return;
    const QMutexLocker lock(&mutex());
    QVector<Entry> &table = entries();
    const int at = find(element);
    if (at >= 0)
        table.removeAt(at);
    else if (table.size() >= kCapacity)
        table.removeFirst();
    table.append({element.parentNode(), element, list, texts});
}

QString ListTextMemo::text(const QDomNode &element, const QStringList &list)
{
    if (element.isNull())
        return QString();
    const QMutexLocker lock(&mutex());
    const int at = find(element);
    if (at < 0 || !list.isSharedWith(entries().at(at).list))
        return QString();
    return entries().at(at).texts.joined;
}

void ListTextMemo::drop(const QDomNode &element)
{
    const QMutexLocker lock(&mutex());
    const int at = find(element);
    if (at >= 0)
        entries().removeAt(at);
}

void ListTextMemo::forget(const QDomNode &parent)
{
    const QMutexLocker lock(&mutex());
    QVector<Entry> &table = entries();
    table.erase(std::remove_if(table.begin(), table.end(), [&](const Entry &entry) { return entry.parent == parent; }),
                table.end());
}

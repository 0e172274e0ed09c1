// SPDX-License-Identifier: MIT
#ifndef LXDOC_LISTTEXTMEMO_H
#define LXDOC_LISTTEXTMEMO_H

#include <QDomNode>
#include <QStringList>
#include <QVector>

// What a save writes for the entries of manifest list elements, kept from
// one save to the next: the manifest is saved after every insert, and
// walking every entry of a long lesson each time made building it
// quadratic. The manifest's own members are those of the document model,
// so the texts are kept here, beside it. A text holds for an element only
// while the list still shares its data with the copy taken when the text
// was put: any change to the list not made through the manifest detaches
// the list and so drops the text.
class ListTextMemo {
public:
    // The entries' text joined, as a save writes it, with each entry's length.
    struct Texts {
        QString joined;
        QVector<int> lengths;

        void insert(int position, const QString &text);
        void remove(int position);
    };

    // Takes out the texts of the element's entries when it mirrors the list.
    static bool take(const QDomNode &element, const QStringList &list, Texts *texts);
    static void put(const QDomNode &element, const QStringList &list, const Texts &texts);
    // The entries' joined text; null when the element does not mirror the list.
    static QString text(const QDomNode &element, const QStringList &list);
    static void drop(const QDomNode &element);
    // Drops the texts of every element under the parent.
    static void forget(const QDomNode &parent);
};

#endif

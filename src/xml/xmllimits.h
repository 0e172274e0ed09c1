// SPDX-License-Identifier: MIT
#ifndef LXDOC_XMLLIMITS_H
#define LXDOC_XMLLIMITS_H

#include <QByteArray>
#include <QString>

// How far an XML file may go before the library refuses to build a tree of
// it. QDom builds the whole tree before anyone can look at it, frees it by
// recursion and checks repeated attributes in quadratic time, so the text is
// measured first, in linear time, and anything beyond these limits never
// reaches it. The numbers are the process's read limits (ReadLimits), which
// a host may raise.
class XmlLimits {
public:
    static int maxDepth();
    static int maxAttributes();

    enum Verdict { Within, TooDeep, TooManyAttributes };

    // Bytes as read from a file (any encoding QDom accepts), or text.
    static Verdict check(const QByteArray &data);
    static Verdict check(const QString &text);
    // The fixed warning for a verdict other than Within.
    static const char *warning(Verdict verdict);
};

#endif

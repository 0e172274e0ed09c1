// SPDX-License-Identifier: MIT
#include "treeprinter.h"

#include <QJsonArray>

QStringList TreePrinter::lines(const QJsonObject &node, int depth)
{
    QStringList result{nodeLine(node, depth)};
    for (auto it = node.begin(); it != node.end(); ++it) {
        if (!isNodeList(it.value()))
            continue;
        for (const QJsonValue &child : it.value().toArray())
            result << lines(child.toObject(), depth + 1);
    }
    return result;
}

QString TreePrinter::nodeLine(const QJsonObject &node, int depth)
{
    // Class and graphic id name a node; the other properties follow by name.
    QStringList parts{node.value(QLatin1String("class")).toString(QStringLiteral("(no class)"))};
    if (node.contains(QLatin1String("gid")))
        parts << QStringLiteral("gid=%1").arg(valueText(node.value(QLatin1String("gid"))));
    for (auto it = node.begin(); it != node.end(); ++it) {
        if (it.key() != QLatin1String("class") && it.key() != QLatin1String("gid") && !isNodeList(it.value()))
            parts << QStringLiteral("%1=%2").arg(it.key(), valueText(it.value()));
    }
    return QString(depth * 2, QLatin1Char(' ')) + parts.join(QLatin1Char(' '));
}

QString TreePrinter::valueText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String: {
        const QString text = value.toString();
        return text.contains(QLatin1Char(' ')) || text.isEmpty() ? QStringLiteral("\"%1\"").arg(text) : text;
    }
    case QJsonValue::Double: return QString::number(value.toDouble());
    case QJsonValue::Bool: return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    case QJsonValue::Array: {
        QStringList items;
        for (const QJsonValue &item : value.toArray())
            items << valueText(item);
        return items.join(QLatin1Char(','));
    }
    case QJsonValue::Object: {
        QStringList items;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it)
            items << QStringLiteral("%1:%2").arg(it.key(), valueText(it.value()));
        return QStringLiteral("(%1)").arg(items.join(QLatin1Char(' ')));
    }
    default: return QString();
    }
}

bool TreePrinter::isNodeList(const QJsonValue &value)
{
    return value.isArray() && !value.toArray().isEmpty() && value.toArray().first().isObject();
}

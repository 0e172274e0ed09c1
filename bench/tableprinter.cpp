// SPDX-License-Identifier: MIT
#include "tableprinter.h"

#include <QTextStream>

TablePrinter::TablePrinter(const QString &title) : m_title(title) {}

void TablePrinter::setHeader(const QStringList &header)
{
    m_header = header;
}

void TablePrinter::addRow(const QStringList &row)
{
    m_rows << row;
}

void TablePrinter::addNote(const QString &note)
{
    m_notes << note;
}

QString TablePrinter::millis(double ms)
{
    if (ms < 0)
        return QStringLiteral("-");
    return QString::number(ms, 'f', ms < 10 ? 2 : 1);
}

QString TablePrinter::ratio(double value)
{
    if (value < 0)
        return QStringLiteral("-");
    return QString::number(value, 'f', 2);
}

QString TablePrinter::kib(qint64 value)
{
    return value < 0 ? QStringLiteral("-") : QString::number(value);
}

bool TablePrinter::isNumber(const QString &cell)
{
    bool ok = false;
    cell.toDouble(&ok);
    return ok || cell == QLatin1String("-");
}

QList<int> TablePrinter::columnWidths() const
{
    QList<int> widths;
    const auto widen = [&widths](const QStringList &row) {
        for (int i = 0; i < row.size(); ++i) {
            if (i >= widths.size())
                widths << 0;
            widths[i] = qMax(widths[i], int(row[i].size()));
        }
    };
    widen(m_header);
    for (const QStringList &row : m_rows)
        widen(row);
    return widths;
}

void TablePrinter::print(QTextStream &out) const
{
    const QList<int> widths = columnWidths();
    const auto line = [&](const QStringList &row) {
        QString text;
        for (int i = 0; i < row.size(); ++i) {
            if (i > 0)
                text += QLatin1String("  ");
            text += isNumber(row[i]) && &row != &m_header ? row[i].rightJustified(widths[i])
                                                          : row[i].leftJustified(widths[i]);
        }
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        out << text << '\n';
    };
    out << m_title << '\n';
    line(m_header);
    int total = 0;
    for (int width : widths)
        total += width + 2;
    out << QString(qMax(0, total - 2), QLatin1Char('-')) << '\n';
    for (const QStringList &row : m_rows)
        line(row);
    for (const QString &note : m_notes)
        out << "  " << note << '\n';
    out << '\n';
    out.flush();
}

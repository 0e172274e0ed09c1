// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_TABLEPRINTER_H
#define LXDOC_BENCH_TABLEPRINTER_H

#include <QList>
#include <QString>
#include <QStringList>

class QTextStream;

// A plain-text table with aligned columns: text left, numbers right, so the
// output pastes into a Markdown code block as it is.
class TablePrinter {
public:
    explicit TablePrinter(const QString &title);
    void setHeader(const QStringList &header);
    void addRow(const QStringList &row);
    void addNote(const QString &note);
    void print(QTextStream &out) const;

    static QString millis(double ms);
    static QString ratio(double value);
    static QString kib(qint64 value);

private:
    QList<int> columnWidths() const;
    static bool isNumber(const QString &cell);

    QString m_title;
    QStringList m_header;
    QList<QStringList> m_rows;
    QStringList m_notes;
};

#endif

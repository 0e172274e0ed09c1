// SPDX-License-Identifier: MIT
#include "benchsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

double BenchSupport::median(QList<double> values)
{
    values.erase(std::remove(values.begin(), values.end(), -1.0), values.end());
    if (values.isEmpty())
        return -1;
    std::sort(values.begin(), values.end());
    const int middle = int(values.size()) / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void BenchSupport::removePath(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        QDir(path).removeRecursively();
    else if (info.exists())
        QFile::remove(path);
}

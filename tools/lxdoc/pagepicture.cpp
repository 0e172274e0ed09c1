// SPDX-License-Identifier: MIT
#include "pagepicture.h"

#include "document/lessonpath.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QStringList>

#include <cmath>

namespace {

// Larger files and pictures are not a board's, and would only stall the
// drawing.
const qint64 kMaxBytes = 32 * 1024 * 1024;
const qint64 kMaxPixels = 50 * 1000 * 1000;

QString mimeType(const QByteArray &format)
{
    return QStringLiteral("image/") + QString::fromLatin1(format == "jpg" ? QByteArray("jpeg") : format);
}

struct Alignment {
    double x = 0.5;
    double y = 0.5;
    bool none = false;
    bool slice = false;
};

double alignFactor(const QString &text)
{
    if (text == QLatin1String("Min"))
        return 0.0;
    return text == QLatin1String("Max") ? 1.0 : 0.5;
}

Alignment parseAspect(const QString &aspect)
{
    Alignment result;
    QStringList words = aspect.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (!words.isEmpty() && words.first() == QLatin1String("defer"))
        words.removeFirst();
    if (words.isEmpty())
        return result;
    const QString align = words.first();
    result.none = align == QLatin1String("none");
    if (align.size() == 8 && align.startsWith(QLatin1String("x")) && align.mid(4, 1) == QLatin1String("Y")) {
        result.x = alignFactor(align.mid(1, 3));
        result.y = alignFactor(align.mid(5, 3));
    }
    result.slice = words.size() > 1 && words.at(1) == QLatin1String("slice");
    return result;
}

} // namespace

PagePicture::PagePicture(const QString &lessonFolder)
    : m_folder(lessonFolder)
{
}

bool PagePicture::load(const QString &href)
{
    const bool read = href.startsWith(QLatin1String("data:")) ? readData(href) : readFile(href);
    if (!read)
        return false;
    QBuffer buffer(&m_bytes);
    QImageReader reader(&buffer);
    static const QList<QByteArray> raster = {"png", "jpeg", "jpg", "gif", "bmp"};
    m_format = reader.format();
    m_size = reader.size();
    return raster.contains(m_format) && !m_size.isEmpty() && qint64(m_size.width()) * m_size.height() <= kMaxPixels;
}

QSize PagePicture::size() const
{
    return m_size;
}

bool PagePicture::readFile(const QString &name)
{
    QFile file;
    if (!LessonPath::open(&file, m_folder, name) || file.size() > kMaxBytes)
        return false;
    m_bytes = file.readAll();
    return true;
}

bool PagePicture::readData(const QString &uri)
{
    const int comma = uri.indexOf(QLatin1Char(','));
    if (comma < 0 || uri.size() > kMaxBytes / 3 * 4 + 256 || !uri.left(comma).endsWith(QLatin1String(";base64")))
        return false;
    m_bytes = QByteArray::fromBase64(uri.mid(comma + 1).toLatin1());
    return true;
}

QRectF PagePicture::place(const QRectF &box, const QString &aspect, QString *dataUri) const
{
    const Alignment alignment = parseAspect(aspect);
    const QRectF whole(QPointF(0, 0), QSizeF(m_size));
    if (alignment.none) {
        *dataUri = this->dataUri(whole);
        return box;
    }
    const double sx = box.width() / m_size.width();
    const double sy = box.height() / m_size.height();
    const double scale = alignment.slice ? qMax(sx, sy) : qMin(sx, sy);
    const QSizeF drawn = QSizeF(m_size) * scale;
    const QPointF origin(box.x() + (box.width() - drawn.width()) * alignment.x,
                         box.y() + (box.height() - drawn.height()) * alignment.y);
    if (!alignment.slice) {
        *dataUri = this->dataUri(whole);
        return QRectF(origin, drawn);
    }
    // What shows through the box, in the picture's own pixels.
    const QRectF visible = QRectF(origin, drawn).intersected(box);
    *dataUri = this->dataUri(QRectF((visible.topLeft() - origin) / scale, visible.size() / scale));
    return visible;
}

QString PagePicture::dataUri(const QRectF &crop) const
{
    QByteArray bytes = m_bytes;
    QByteArray format = m_format;
    const QRect pixels = crop.toAlignedRect().intersected(QRect(QPoint(), m_size));
    if (pixels.size() != m_size && !pixels.isEmpty()) {
        bytes.clear();
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QImage::fromData(m_bytes, m_format.constData()).copy(pixels).save(&buffer, "PNG");
        format = "png";
    }
    return QStringLiteral("data:%1;base64,%2").arg(mimeType(format), QString::fromLatin1(bytes.toBase64()));
}

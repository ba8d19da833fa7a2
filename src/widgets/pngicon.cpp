#include "widgets/pngicon.h"

#include <QImageReader>
#include <QPixmap>

QIcon pngIcon(const QString &path)
{
    QImageReader reader(path, QByteArrayLiteral("png"));
    reader.setAutoDetectImageFormat(false);
    return QPixmap::fromImageReader(&reader);
}

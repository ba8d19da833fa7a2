#pragma once

#include "matrixview.h"

#include <QMap>
#include <QStringList>

/*!
 * The sentences of the channel editors, built here from what stands in them, so that a test never
 * leans on the builders of the tool. Each takes only what differs from an empty port.
 */
namespace EditorLines {

constexpr int channelCount = MatrixView::size;

/*! $VRFLT of six channels from \a first on: their masks by channel. */
inline QByteArray filter(int port, int first, const QMap<int, quint32> &masks)
{
    QByteArray body =
        "$VRFLT," + QByteArray::number(port) + ",W," + QByteArray::number(first) + ',';
    for (int channel = first; channel < first + 6; ++channel)
        body += QByteArray::number(masks.value(channel), 16).rightJustified(8, '0').toUpper();
    return checkedSentence(body);
}

/*! $VRHDC: the headers by channel. */
inline QByteArray headers(int port, const QMap<int, QByteArray> &headers)
{
    QByteArray body = "$VRHDC," + QByteArray::number(port) + ",W";
    for (int channel = 0; channel < channelCount; ++channel)
        body += ',' + headers.value(channel);
    return checkedSentence(body);
}

/*!
 * The four $VRFLS of a list: its names by slot. The checksum is of the names as they are, though
 * they go out in capitals.
 */
inline QList<QByteArray> list(const QMap<int, QString> &names)
{
    QList<QByteArray> lines;
    for (int first = 0; first < 32; first += 8) {
        QByteArray body = "$VRFLS," + QByteArray::number(first);
        for (int slot = first; slot < first + 8; ++slot)
            body += ',' + names.value(slot).toLatin1();
        lines += checkedSentence(body).toUpper();
    }
    return lines;
}

/*! The same from a text: the names from slot 0 on, '-' for a free slot. */
inline QMap<int, QString> slotNames(const QString &text)
{
    QMap<int, QString> names;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (int slot = 0; slot < words.size(); ++slot) {
        if (words.at(slot) != QLatin1String("-"))
            names[slot] = words.at(slot);
    }
    return names;
}

} // namespace EditorLines

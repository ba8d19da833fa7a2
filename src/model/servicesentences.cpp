#include "model/servicesentences.h"

#include "link/sentence.h"

namespace {

constexpr int packetBytes = 32;
constexpr double packetsPerByte = 1.0 / packetBytes;
constexpr double wholePercentage = 100;

} // namespace

QString MakeStatusSentence(uint port)
{
    return checkedSentence(QStringLiteral("$VRSTA,%1").arg(port));
}

QString MakeSetPasswordSentence(const QString &password)
{
    return checkedSentence(QStringLiteral("$VRPWS,") + password);
}

QString MakeUnlockSentence(const QString &password)
{
    return checkedSentence(QStringLiteral("$VRPWU,") + password);
}

QString MakeModeSentence(const QString &mode)
{
    return checkedSentence(QStringLiteral("$VRMOD,") + mode);
}

FirmwarePacket MakeFirmwarePacket(const QByteArray &image, quint32 number, QString &sentence)
{
    if (image.isEmpty())
        return FirmwarePacket::NoImage;
    const qint64 offset = (qint64(number) - 1) * packetBytes;
    if (offset < 0 || offset >= image.size())
        return FirmwarePacket::PastEnd;
    const QByteArray data = image.mid(int(offset), packetBytes);
    const QString body =
        QStringLiteral("$VRFWP,%1,%2").arg(number).arg(QString::fromLatin1(data.toHex()));
    sentence = checkedSentence(body.toUpper());
    return FirmwarePacket::Made;
}

int firmwareProgress(quint32 number, int size)
{
    if (size <= 0)
        return 0;
    return int(number * (wholePercentage / (size * packetsPerByte)));
}

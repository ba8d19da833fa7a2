#include "rules/ruledocument.h"

#include "model/rulefile.h"
#include "rules/difference.h"
#include "rules/words.h"

#include <QBuffer>
#include <QFile>

#include <cstddef>

namespace {

constexpr qint64 LongestFile = 65536; // far more than any rule file has
constexpr int ChannelBytes = 9;
constexpr int SpeedBytes = 4;
constexpr int HeaderPlace = 7; // within a channel
constexpr char HeaderFlag = 0x04;
constexpr char UnusedFlag = char(0x80);
constexpr char Blank = ' ';

const QString Torn = QStringLiteral("torn, or not a rule file");

/*! What one output port's block holds that the reader doesn't hand on. */
QStringList channelRemarks(const QByteArray &block, int port)
{
    QStringList remarks;
    for (int channel = 0; channel < ChannelCount; ++channel) {
        const char *record = block.constData() + std::ptrdiff_t(channel) * ChannelBytes;
        const char *header = record + HeaderPlace;
        const QString place = QStringLiteral("Output %1, channel %2: ").arg(port).arg(channel);
        const bool hasFlag = record[0] & HeaderFlag;
        const int blanks = (header[0] == Blank) + (header[1] == Blank);
        if (record[0] & UnusedFlag)
            remarks += place + QLatin1String("a bit without a meaning is set");
        if (blanks == 1)
            remarks += place + QLatin1String("half a header, read as none");
        else if (hasFlag != (blanks == 0))
            remarks += place
                + (hasFlag ? QLatin1String("the header is on, but blank, and read as none")
                           : QLatin1String("the header is off, but not blank, and read as on"));
    }
    return remarks;
}

bool isAscii(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

QStringList nameRemarks(const RouterModel &model)
{
    QStringList remarks;
    const auto look = [&remarks](const QString &place, const QString &name) {
        if (!isAscii(name))
            remarks +=
                QStringLiteral("%1: a name that is not plain ASCII: what follows it may have "
                               "been read wrongly")
                    .arg(place);
    };
    for (int port = 0; port < OutputPortCount; ++port)
        look(QStringLiteral("Output %1").arg(port),
             model.output_ports[std::size_t(port)].output_name);
    for (int slot = 0; slot < FilterSlotCount; ++slot)
        look(QStringLiteral("List of sentence names, slot %1").arg(slot),
             model.filter_list[std::size_t(slot)]);
    for (int port = 0; port < InputPortCount; ++port)
        look(QStringLiteral("Input %1").arg(port), model.input_ports[std::size_t(port)].input_name);
    return remarks;
}

std::optional<QByteArray> written(const RouterModel &model)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!RuleFile::write(buffer, model))
        return std::nullopt;
    return buffer.data();
}

} // namespace

std::optional<RuleDocument> RuleDocument::parse(const QByteArray &bytes, QString &error)
{
    RuleDocument document;
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const auto takeSpeed = [&](quint8 port, quint32 speed) {
        // The reader stands right behind the speed, and the speed behind the channels.
        const int channels = int(buffer.pos()) - SpeedBytes - ChannelCount * ChannelBytes;
        document.remarks += channelRemarks(bytes.mid(channels, ChannelCount * ChannelBytes), port);
        if (!document.model.setPortSpeed(port, speed))
            document.remarks += QStringLiteral("Output and input %1: %2 baud, a speed that no port "
                                               "has; read as %3")
                                    .arg(port)
                                    .arg(speed)
                                    .arg(document.model.output_ports[port].speed);
    };
    // The reader takes a file for whole that ends within the names of the inputs. What it has taken
    // is as long as what is written of it, byte for character, unless the end came too early.
    const bool isRead = RuleFile::read(buffer, document.model, takeSpeed);
    const auto again = isRead ? written(document.model) : std::nullopt;
    if (!again || again->size() > bytes.size()) {
        error = Torn;
        return std::nullopt;
    }
    document.remarks += nameRemarks(document.model);
    if (again->size() < bytes.size())
        document.remarks += QStringLiteral("Behind its end: %1 bytes that are not read")
                                .arg(bytes.size() - again->size());
    if (document.remarks.isEmpty() && *again != bytes)
        document.remarks += QStringLiteral("Bytes that no rule file has");
    return document;
}

std::optional<RuleDocument> RuleDocument::read(const QString &path, QString &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return std::nullopt;
    }
    const QByteArray bytes = file.read(LongestFile);
    if (file.error() != QFileDevice::NoError) {
        error = file.errorString();
        return std::nullopt;
    }
    if (bytes.size() == LongestFile) {
        error = Torn;
        return std::nullopt;
    }
    return parse(bytes, error);
}

std::optional<QByteArray> RuleDocument::bytes(const RouterModel &model, QString &error)
{
    auto result = written(model);
    if (!result) {
        error = QStringLiteral("a header or a sentence name is too short or too long");
        return std::nullopt;
    }
    const auto again = parse(*result, error);
    if (!again)
        return std::nullopt;
    const QStringList lost = differences(model, again->model) + again->remarks;
    if (!lost.isEmpty()) {
        error = lost.join(QLatin1String("; "));
        return std::nullopt;
    }
    return result;
}

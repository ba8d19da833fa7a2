#include "simulator/router/eepromfile.h"

#include "simulator/line/linespeed.h"
#include "simulator/router/lockstore.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cmath>

namespace tk7sim {

namespace {

constexpr int fileVersion = 1;
constexpr qint64 maxFileSize = 1'000'000; // far above any configuration
constexpr int maxSmart = 7;
constexpr double maxMask = 4294967295.0;

const QLatin1String formatName("tk7-router-eeprom");

// Reads values out of a document and remembers whether all of them fitted.
class Reader
{
public:
    bool isOk() const { return m_ok; }
    void fail() { m_ok = false; }

    double number(const QJsonValue &value, double maximum)
    {
        const double result = value.toDouble(-1);
        if (result < 0 || result > maximum || result != std::floor(result)) {
            m_ok = false;
            return 0;
        }
        return result;
    }

    bool flag(const QJsonValue &value)
    {
        m_ok = m_ok && value.isBool();
        return value.toBool();
    }

    // A field of a sentence: nothing in it may end the field or the sentence.
    QByteArray text(const QJsonValue &value, int minLength, int maxLength)
    {
        const QString string = value.toString();
        const bool fits = value.isString()
            && (string.isEmpty() || (string.size() >= minLength && string.size() <= maxLength));
        for (const QChar c : string) {
            m_ok = m_ok && c.unicode() >= ' ' && c.unicode() <= maxCharacter && c != deleteChar
                && !QStringLiteral("$!,*").contains(c);
        }
        m_ok = m_ok && fits;
        return string.toLatin1();
    }

    // A file that was written before there were passwords has none.
    QByteArray password(const QJsonValue &value)
    {
        QByteArray text = value.toString().toLatin1();
        const bool isGood = text.isEmpty() || LockStore::isPassword(text);
        m_ok = m_ok && isGood && (value.isString() || value.isUndefined());
        return text;
    }

    QJsonArray array(const QJsonValue &value, int size)
    {
        QJsonArray result = value.toArray();
        if (result.size() != size) {
            m_ok = false;
            return {};
        }
        return result;
    }

private:
    static constexpr ushort maxCharacter = 255;
    static constexpr QChar deleteChar{127};

    bool m_ok = true;
};

QJsonObject channelToJson(const Channel &channel)
{
    return {{QStringLiteral("main"), channel.mainInput},
            {QStringLiteral("reserve"), channel.reserveInput},
            {QStringLiteral("filter"), channel.filterEnabled},
            {QStringLiteral("filterMask"), static_cast<double>(channel.filterMask)},
            {QStringLiteral("blackList"), channel.filterType == FilterType::Black},
            {QStringLiteral("crs"), channel.crsEnabled},
            {QStringLiteral("header"), channel.hdrEnabled},
            {QStringLiteral("talker"), QString::fromLatin1(channel.hdr)},
            {QStringLiteral("smart"), channel.smart}};
}

Channel channelFromJson(const QJsonObject &object, Reader *reader)
{
    Channel channel;
    const auto input = [&](const char *key) {
        return static_cast<quint8>(reader->number(object.value(QLatin1String(key)), noPort));
    };
    const auto flag = [&](const char *key) {
        return reader->flag(object.value(QLatin1String(key)));
    };
    channel.mainInput = input("main");
    channel.reserveInput = input("reserve");
    channel.filterEnabled = flag("filter");
    channel.filterMask =
        static_cast<quint32>(reader->number(object.value(QLatin1String("filterMask")), maxMask));
    channel.filterType = flag("blackList") ? FilterType::Black : FilterType::White;
    channel.crsEnabled = flag("crs");
    channel.hdrEnabled = flag("header");
    channel.hdr = reader->text(object.value(QLatin1String("talker")), headerLength, headerLength);
    channel.smart =
        static_cast<quint8>(reader->number(object.value(QLatin1String("smart")), maxSmart));
    return channel;
}

QJsonObject toJson(const EepromContents &contents)
{
    const RouterConfig &config = contents.config;
    QJsonArray outputs;
    QJsonArray speeds;
    QJsonArray inputNames;
    QJsonArray outputNames;
    QJsonArray filterList;
    for (size_t port = 0; port < portCount; ++port) {
        QJsonArray channels;
        for (const Channel &channel : config.outputs[port].channels) {
            channels.append(channelToJson(channel));
        }
        outputs.append(channels);
        speeds.append(static_cast<int>(config.speeds[port]));
        inputNames.append(QString::fromLatin1(config.inputNames[port]));
        outputNames.append(QString::fromLatin1(config.outputNames[port]));
    }
    for (const QByteArray &formatter : config.filterList) {
        filterList.append(QString::fromLatin1(formatter));
    }
    return {{QStringLiteral("format"), formatName},
            {QStringLiteral("version"), fileVersion},
            {QStringLiteral("outputs"), outputs},
            {QStringLiteral("speeds"), speeds},
            {QStringLiteral("inputNames"), inputNames},
            {QStringLiteral("outputNames"), outputNames},
            {QStringLiteral("filterList"), filterList},
            {QStringLiteral("lockPassword"), QString::fromLatin1(contents.lockPassword)}};
}

template <size_t Count, typename Convert>
void readArray(const QJsonValue &value, Reader *reader, Convert convert)
{
    const QJsonArray values = reader->array(value, static_cast<int>(Count));
    for (int i = 0; i < values.size(); ++i) {
        convert(static_cast<size_t>(i), values.at(i));
    }
}

quint32 readSpeed(const QJsonValue &value, Reader *reader)
{
    const auto baud = static_cast<int>(reader->number(value, lineSpeeds.back()));
    if (!isLineSpeed(baud)) {
        reader->fail();
    }
    return static_cast<quint32>(baud);
}

void readOutput(Output *output, const QJsonValue &value, Reader *reader)
{
    readArray<channelCount>(value, reader, [&](size_t i, const QJsonValue &channel) {
        output->channels[i] = channelFromJson(channel.toObject(), reader);
    });
}

std::optional<EepromContents> fromJson(const QJsonObject &object)
{
    EepromContents contents;
    RouterConfig &config = contents.config;
    Reader reader;
    const auto value = [&](const char *key) { return object.value(QLatin1String(key)); };
    readArray<portCount>(value("outputs"), &reader, [&](size_t i, const QJsonValue &v) {
        readOutput(&config.outputs[i], v, &reader);
    });
    readArray<portCount>(value("speeds"), &reader, [&](size_t i, const QJsonValue &v) {
        config.speeds[i] = readSpeed(v, &reader);
    });
    readArray<portCount>(value("inputNames"), &reader, [&](size_t i, const QJsonValue &v) {
        config.inputNames[i] = reader.text(v, 0, maxNameLength);
    });
    readArray<portCount>(value("outputNames"), &reader, [&](size_t i, const QJsonValue &v) {
        config.outputNames[i] = reader.text(v, 0, maxNameLength);
    });
    readArray<filterSlotCount>(value("filterList"), &reader, [&](size_t i, const QJsonValue &v) {
        config.filterList[i] = reader.text(v, formatterLength, formatterLength);
    });
    contents.lockPassword = reader.password(value("lockPassword"));
    return reader.isOk() ? std::optional(contents) : std::nullopt;
}

} // namespace

EepromFile::EepromFile(const QString &path) : m_path(path) { }

bool EepromFile::exists() const
{
    return !isNull() && QFile::exists(m_path);
}

std::optional<EepromContents> EepromFile::load()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("%1: %2").arg(m_path, file.errorString());
        return std::nullopt;
    }
    const QByteArray bytes = file.read(maxFileSize);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        m_error = QStringLiteral("%1: %2").arg(m_path, error.errorString());
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    if (object.value(QLatin1String("format")).toString() != formatName
        || object.value(QLatin1String("version")).toInt() != fileVersion) {
        m_error = QStringLiteral("%1: not a file of this simulator").arg(m_path);
        return std::nullopt;
    }
    auto contents = fromJson(object);
    m_error =
        contents ? QString() : QStringLiteral("%1: a value is missing or out of range").arg(m_path);
    return contents;
}

bool EepromFile::save(const EepromContents &contents)
{
    if (isNull()) {
        return true;
    }
    QSaveFile file(m_path);
    const QByteArray bytes = QJsonDocument(toJson(contents)).toJson();
    const auto owner = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(owner)
        || file.write(bytes) != bytes.size() || !file.commit()) {
        m_error = QStringLiteral("%1: %2").arg(m_path, file.errorString());
        return false;
    }
    m_error.clear();
    return true;
}

} // namespace tk7sim

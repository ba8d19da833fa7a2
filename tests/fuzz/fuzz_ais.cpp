#include "ais/aissentence.h"
#include "ais/keptrecords.h"
#include "ais/qaisalarm.h"
#include "ais/timeofday.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QSet>
#include <QString>
#include <QTime>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

/*!
 * The AIS engine takes any sentences: a stream of bytes is cut into lines, and each goes the way it
 * has in the AIS test, with all its signals, to twelve ports. Everything that a window would read
 * is read, and what no input may break is checked. The first byte of the input is the seconds that
 * pass with each line.
 */

namespace {

volatile quint32 sink = 0;
QTime timeOfDay;

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

void read(const QString &text)
{
    constexpr int longestText = 64; // of a target; an alarm has no such bound
    require(text.size() <= longestText, "the texts of a target are short");
    for (const QChar sign : text)
        sink = sink + sign.unicode();
}

void readTarget(const QAisTarget &target)
{
    constexpr int longestName = 20;
    constexpr int longestCallSign = 7;
    read(target.statusText());
    read(target.accuracyText());
    read(target.rateOfTurnText());
    read(target.positionText());
    read(target.speedText());
    read(target.courseText());
    read(target.headingText());
    read(target.imoText());
    read(target.nameText());
    read(target.callSignText());
    read(target.shipTypeText());
    read(target.fixTypeText());
    read(target.lengthText());
    read(target.breadthText());
    read(target.draughtText());
    read(target.destinationText());
    read(target.etaText());
    require(target.m_dynamicValid || target.m_staticValid, "a target has brought something");
    require(!target.m_rangeValid || target.m_dynamicValid, "a range needs a position");
    require(target.m_shipName.size() <= longestName, "a name has at most 20 characters");
    require(target.m_destination.size() <= longestName, "a destination has at most 20 characters");
    require(target.m_callSign.size() <= longestCallSign, "a call sign has at most 7 characters");
    require(!target.m_shipName.endsWith('@') && !target.m_shipName.endsWith(' '), "padding is cut");
}

/*! What the window of the AIS test does, without a window. */
class Receiver : public QObject
{
public:
    Receiver()
    {
        for (uint port = 0; port < AisPortCount; ++port)
            connectPort(ports.at(port), port);
    }

    void take(const QString &sentence)
    {
        if (!sentence.startsWith("$VRAIP,")) {
            deliverAisSentence(sentence, ports);
            return;
        }
        QGpsKrd position;
        if (parseAisPosition(sentence, position)) {
            read(position.positionText());
            offer(QAis::RouterSource, &position);
        }
    }

    void passSeconds(int seconds)
    {
        timeOfDay = timeOfDay.addSecs(seconds);
        for (QAis &ais : ports)
            ais.expire();
    }

    void check() const
    {
        for (const QAis &ais : ports)
            checkPort(ais);
    }

private:
    void connectPort(QAis &ais, uint number)
    {
        ais.setPortNumber(number);
        connect(&ais, &QAis::signalAddTarget, this, &Receiver::readListed);
        connect(&ais, &QAis::signalUpdateTarget, this, &Receiver::readListed);
        connect(&ais, &QAis::signalDeleteTarget, this, &Receiver::readListed);
        connect(&ais, &QAis::signalUpdateOwnTarget, this,
                [this](uint port) { readTarget(*ports.at(port).ownTarget()); });
        connect(&ais, &QAis::signalNewOwnPosition, this, &Receiver::offer);
        connect(&ais, &QAis::signalLostPosition, this, [this](uint port) {
            require(!ports.at(port).hasOwnPosition(), "a lost position is not held");
        });
        connect(&ais, &QAis::signalUpdateAlarm, this, [this](uint port, quint8 id) {
            const QAisAlarm *alarm = ports.at(port).findAlarm(id);
            require(alarm && alarm->m_valid, "an alarm that is told of is there");
            require(alarm->m_text.endsWith('*'), "the text of an alarm keeps its star");
            require(alarm->m_hour < 24 && alarm->m_minute < 60 && alarm->m_second < 60,
                    "the time of an alarm is one");
        });
    }

    void readListed(uint port, uint mmsi)
    {
        const QAisTarget *target = ports.at(port).findTarget(mmsi);
        require(target, "a target that is told of is there");
        readTarget(*target);
    }

    void offer(uint source, QGpsKrd *position)
    {
        for (QAis &ais : ports)
            ais.setOwnPosition(source, position);
    }

    static void checkPort(const QAis &ais)
    {
        QSet<uint> known;
        for (int i = 0; i < ais.targetCount(); ++i) {
            const uint mmsi = ais.targetAt(i)->m_mmsi;
            require(!known.contains(mmsi), "an MMSI is listed once");
            require(ais.findTarget(mmsi) == ais.targetAt(i), "what is listed is found");
            known.insert(mmsi);
        }
        require(uint(ais.targetCount()) <= ais.messageCount(), "a target takes a message");
        for (int i = 0; i < ais.alarmCount(); ++i)
            require(ais.findAlarm(ais.alarmAt(i)->m_id) == ais.alarmAt(i), "an id is listed once");
        const double range = ais.maxRange();
        require(range >= 0 || range == -1.0, "a greatest range is one, or -1");
        require(range <= QGpsKrd::MaxLongitude, "no range is longer than half round the earth");
    }

    AisPorts ports;
};

} // namespace

// Only libFuzzer calls this; the other driver has an application of its own.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    timeOfDay = QTime(12, 0);
    TimeOfDay::setSource([] { return timeOfDay; });
    {
        const auto receiver = std::make_unique<Receiver>();
        const QByteArray stream(reinterpret_cast<const char *>(data + 1), int(size - 1));
        for (const QByteArray &line : stream.split('\n')) {
            receiver->take(QString::fromLatin1(line.constData(), line.size()));
            receiver->passSeconds(data[0]);
        }
        receiver->check();
    }
    KeptRecords::releaseAll();
    return 0;
}

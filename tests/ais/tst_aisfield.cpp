#include "ais/aissentence.h"
#include "aisjournal.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QtTest>

#include <memory>

namespace {

constexpr int port = 7;
constexpr qint64 longitudeTurns = qint64(1) << 28;
constexpr qint64 latitudeTurns = qint64(1) << 27;

struct Message
{
    QStringList sentences;
    QJsonObject decoded; //!< empty where the decoder gave nothing

    int type() const { return decoded.value("type").toInt(); }
    int number(const char *name) const { return decoded.value(QLatin1String(name)).toInt(); }
    QString text(const char *name) const { return decoded.value(QLatin1String(name)).toString(); }
    bool isReport() const { return type() >= 1 && type() <= 3; }
    bool isVoyage() const { return type() == 5; }
};

/*! The sentence as the router wraps it: the input port in place of the radio channel. */
QString wrapped(const QString &sentence)
{
    QStringList fields = sentence.split(',');
    fields[0] = "$VRAIM";
    fields[4] = QString::number(port);
    return QString(fields.join(',') + "\r\n");
}

QVector<Message> fieldMessages()
{
    QVector<Message> messages;
    QFile file(TK7_TEST_DATA "/field-messages.jsonl");
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    while (!file.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(file.readLine()).object();
        Message message;
        for (const QJsonValue sentence : line.value("sentences").toArray())
            message.sentences.append(wrapped(sentence.toString()));
        message.decoded = line.value("decoded").toObject();
        messages.append(message);
    }
    return messages;
}

} // namespace

Q_DECLARE_METATYPE(Message)

class tst_AisField : public QObject
{
    Q_OBJECT

private slots:
    void everyTypeIsThere();
    void message_data();
    void message();
    void wholeFile();

private:
    void checkReport(const Message &message, const QAisTarget &target);
    void checkVoyage(const Message &message, const QAisTarget &target);
};

void tst_AisField::everyTypeIsThere()
{
    const QVector<Message> messages = fieldMessages();
    QCOMPARE(messages.size(), 530);
    QMap<int, int> counts;
    for (const Message &message : messages)
        ++counts[message.type()];
    QCOMPARE(counts.value(1), 336);
    QCOMPARE(counts.value(3), 47);
    QCOMPARE(counts.value(5), 2);
    QCOMPARE(counts.value(0), 31); // not decoded
    QVERIFY(counts.value(4) > 0 && counts.value(18) > 0 && counts.value(24) == 0);
}

void tst_AisField::message_data()
{
    QTest::addColumn<Message>("message");
    int number = 0;
    for (const Message &message : fieldMessages())
        QTest::addRow("%d, type %d", ++number, message.type()) << message;
}

void tst_AisField::message()
{
    QFETCH(Message, message);
    const auto ports = std::make_unique<AisPorts>();
    QAis &ais = ports->at(port);
    ais.setPortNumber(port);
    AisJournal journal(ais);
    for (const QString &sentence : qAsConst(message.sentences))
        deliverAisSentence(sentence, *ports);

    QCOMPARE(ais.ownMessageCount(), 0U);
    if (!message.isReport() && !message.isVoyage()) {
        QCOMPARE(ais.messageCount(), 0U);
        QCOMPARE(ais.targetCount(), 0);
        QCOMPARE(journal.take(), QStringList());
        return;
    }
    QCOMPARE(ais.messageCount(), 1U);
    QCOMPARE(ais.targetCount(), 1);
    const uint mmsi = uint(message.number("mmsi"));
    const QAisTarget *target = ais.findTarget(mmsi);
    QVERIFY(target);
    QStringList expected{QStringLiteral("add %1 %2").arg(port).arg(mmsi)};
    if (message.isVoyage())
        expected.append(QStringLiteral("update %1 %2").arg(port).arg(mmsi));
    QCOMPARE(journal.take(), expected);
    if (message.isReport()) {
        checkReport(message, *target);
    } else {
        checkVoyage(message, *target);
    }
}

void tst_AisField::checkReport(const Message &message, const QAisTarget &target)
{
    QVERIFY(target.m_dynamicValid);
    QVERIFY(!target.m_staticValid);
    QCOMPARE(int(target.m_navStatus), message.number("status"));
    QCOMPARE(int(target.m_rateOfTurn), message.number("turn"));
    QCOMPARE(target.m_speed, message.number("speed") / 10.0);
    QCOMPARE(target.m_accuracy == 1, message.decoded.value("accuracy").toBool());
    QCOMPARE(target.m_course, message.number("course") / 10.0);
    QCOMPARE(target.m_heading, message.number("heading"));
    // Required difference from the public standard: west and south are not sign-extended.
    const qint64 lon = message.number("lon");
    const qint64 lat = message.number("lat");
    QCOMPARE(target.m_position.m_lon, double(lon < 0 ? lon + longitudeTurns : lon) / 10000.0);
    QCOMPARE(target.m_position.m_lat, double(lat < 0 ? lat + latitudeTurns : lat) / 10000.0);
    const bool onEarth = lon >= 0 && lat >= 0 && lon <= 108000000 && lat <= 54000000;
    QCOMPARE(target.m_position.isValid(), onEarth);
}

void tst_AisField::checkVoyage(const Message &message, const QAisTarget &target)
{
    QVERIFY(target.m_staticValid);
    QVERIFY(!target.m_dynamicValid);
    QCOMPARE(int(target.m_aisVersion), message.number("ais_version"));
    QCOMPARE(int(target.m_imo), message.number("imo"));
    QCOMPARE(target.m_callSign, message.text("callsign"));
    QCOMPARE(target.m_shipName, message.text("shipname"));
    QCOMPARE(int(target.m_shipType), message.number("shiptype"));
    QCOMPARE(int(target.m_toBow), message.number("to_bow"));
    QCOMPARE(int(target.m_toStern), message.number("to_stern"));
    QCOMPARE(int(target.m_toPort), message.number("to_port"));
    QCOMPARE(int(target.m_toStarboard), message.number("to_starboard"));
    QCOMPARE(int(target.m_fixType), message.number("epfd"));
    const QString eta = QStringLiteral("%1-%2T%3:%4Z")
                            .arg(uint(target.m_etaMonth), 2, 10, QLatin1Char('0'))
                            .arg(uint(target.m_etaDay), 2, 10, QLatin1Char('0'))
                            .arg(uint(target.m_etaHour), 2, 10, QLatin1Char('0'))
                            .arg(uint(target.m_etaMinute), 2, 10, QLatin1Char('0'));
    QCOMPARE(eta, message.text("eta"));
    QCOMPARE(target.m_draught, float(message.number("draught") / 10.0));
    QCOMPARE(target.m_destination, message.text("destination"));
    QCOMPARE(int(target.m_dte), message.number("dte"));
}

void tst_AisField::wholeFile()
{
    const auto ports = std::make_unique<AisPorts>();
    QSet<int> stations;
    uint messages = 0;
    for (const Message &message : fieldMessages()) {
        for (const QString &sentence : message.sentences)
            deliverAisSentence(sentence, *ports);
        if (!message.isReport() && !message.isVoyage())
            continue;
        ++messages;
        stations.insert(message.number("mmsi"));
    }
    QAis &ais = ports->at(port);
    QCOMPARE(messages, 336U + 47U + 2U);
    QCOMPARE(ais.messageCount(), messages);
    QCOMPARE(ais.targetCount(), stations.size());
    for (const int mmsi : qAsConst(stations))
        QVERIFY(ais.findTarget(uint(mmsi)));
}

QTEST_GUILESS_MAIN(tst_AisField)
#include "tst_aisfield.moc"

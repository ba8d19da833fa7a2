#include "ais/aissentence.h"
#include "ais/qaisalarm.h"
#include "payloadbuilder.h"

#include <QtTest>

#include <limits>
#include <memory>

namespace {

const char report[] = "13UbrN0uiiQfGB0E@>d<r:I:2PSG";
constexpr quint32 mmsi = 240827000;

} // namespace

Q_DECLARE_METATYPE(AisFragment)
Q_DECLARE_METATYPE(AisAlarmReport)

class tst_AisSentence : public QObject
{
    Q_OBJECT

private slots:
    void fragment_data();
    void fragment();
    void noFragment_data();
    void noFragment();
    void alarm_data();
    void alarm();
    void noAlarm_data();
    void noAlarm();
    void position_data();
    void position();
    void noPosition_data();
    void noPosition();
    void deliverReachesThePort();
    void deliverKinds();
    void deliverEmptyNumbers();
    void deliverAlarms();
    void alarmIdsShareTheirLowBits();
    void deliverDropsInSilence_data();
    void deliverDropsInSilence();
};

void tst_AisSentence::fragment_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<AisFragment>("expected");
    constexpr int target = QAis::TargetMessage;
    constexpr int own = QAis::OwnMessage;
    constexpr int max = std::numeric_limits<int>::max();
    const auto row = [](const char *name, const char *sentence, const AisFragment &expected) {
        QTest::newRow(name) << sentence << expected;
    };
    row("$VRAIM", "$VRAIM,1,1,,B,13Ub,0*2A\r\n", {target, 1, 1, 0, 11, "13Ub", 0});
    row("$VRAIO", "$VRAIO,2,1,5,3,53e,2*2A\r\n", {own, 2, 1, 5, 3, "53e", 2});
    row("nothing behind the star", "$VRAIM,1,1,,0,13Ub,0*", {target, 1, 1, 0, 0, "13Ub", 0});
    row("port in lower case", "$VRAIM,1,1,,b,13Ub,0*", {target, 1, 1, 0, 11, "13Ub", 0});
    row("port A", "$VRAIM,1,1,,A,13Ub,0*", {target, 1, 1, 0, 10, "13Ub", 0});
    row("empty numbers are 0", "$VRAIM,,,,0,13Ub,*", {target, 0, 0, 0, 0, "13Ub", 0});
    row("largest numbers", "$VRAIM,4294967295,4294967295,4294967295,0,13Ub,2147483647*",
        {target, 4294967295U, 4294967295U, 4294967295U, 0, "13Ub", max});
    row("negative fill bits", "$VRAIM,1,1,,0,13Ub,-6*", {target, 1, 1, 0, 0, "13Ub", -6});
    row("any payload", "$VRAIM,1,1,,0, !\"$xyz~,0*", {target, 1, 1, 0, 0, " !\"$xyz~", 0});
    row("a star in the payload is a part of it", "$VRAIM,1,1,,0,a*b,0*",
        {target, 1, 1, 0, 0, "a*b", 0});
    row("first star behind the payload ends the fill bits", "$VRAIM,1,1,,0,a,0*b*",
        {target, 1, 1, 0, 0, "a", 0});
}

void tst_AisSentence::fragment()
{
    QFETCH(QString, sentence);
    QFETCH(AisFragment, expected);
    const std::optional<AisFragment> read = parseAisFragment(sentence);
    QVERIFY(read);
    QCOMPARE(read->kind, expected.kind);
    QCOMPARE(read->total, expected.total);
    QCOMPARE(read->fragment, expected.fragment);
    QCOMPARE(read->sequence, expected.sequence);
    QCOMPARE(read->port, expected.port);
    QCOMPARE(read->payload, expected.payload);
    QCOMPARE(read->fillBits, expected.fillBits);
}

void tst_AisSentence::noFragment_data()
{
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const char *sentence) {
        QTest::newRow(name) << QString::fromLatin1(sentence);
    };
    row("no text", "");
    row("head alone", "$VRAIM");
    row("head and comma alone", "$VRAIM,");
    row("lower case", "$vraim,1,1,,0,13Ub,0*");
    row("alarm", "$VRAIA,1,1,,0,13Ub,0*");
    row("unknown", "$VRAIX,1,1,,0,13Ub,0*");
    row("text before the head", " $VRAIM,1,1,,0,13Ub,0*");
    row("one number only", "$VRAIM,1*");
    row("two numbers only", "$VRAIM,1,1*");
    row("three numbers only", "$VRAIM,1,1,1*");
    row("no payload field", "$VRAIM,1,1,1,0*");
    row("no fill field", "$VRAIM,1,1,1,0,13Ub*");
    row("total is no number", "$VRAIM,x,1,,0,13Ub,0*");
    row("fragment is no number", "$VRAIM,1,x,,0,13Ub,0*");
    row("sequence is no number", "$VRAIM,1,1,x,0,13Ub,0*");
    row("total is negative", "$VRAIM,-1,1,,0,13Ub,0*");
    row("total above 32 bits", "$VRAIM,4294967296,1,,0,13Ub,0*");
    row("hexadecimal total", "$VRAIM,A,1,,0,13Ub,0*");
    row("port C", "$VRAIM,1,1,,C,13Ub,0*");
    row("port F", "$VRAIM,1,1,,F,13Ub,0*");
    row("port of two characters", "$VRAIM,1,1,,00,13Ub,0*");
    row("port 11 in decimal", "$VRAIM,1,1,,11,13Ub,0*");
    row("empty port", "$VRAIM,1,1,,,13Ub,0*");
    row("port is no digit", "$VRAIM,1,1,,G,13Ub,0*");
    row("empty payload", "$VRAIM,1,1,,0,,0*");
    row("no star", "$VRAIM,1,1,,0,13Ub,0");
    row("no star in an empty fill field", "$VRAIM,1,1,,0,13Ub,");
    row("fill bits are no number", "$VRAIM,1,1,,0,13Ub,x*");
    row("fill bits above 31 bits", "$VRAIM,1,1,,0,13Ub,2147483648*");
    row("another field behind the fill bits", "$VRAIM,1,1,,0,13Ub,0,0*");
}

void tst_AisSentence::noFragment()
{
    QFETCH(QString, sentence);
    QVERIFY(!parseAisFragment(sentence));
}

void tst_AisSentence::alarm_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<AisAlarmReport>("expected");
    const auto row = [](const char *name, const char *sentence, const AisAlarmReport &expected) {
        QTest::newRow(name) << sentence << expected;
    };
    row("exceeded, not acknowledged", "$VRAIA,3,123456.00,001,A,V,AIS: Tx malfunction*33\r\n",
        {3, 12, 34, 56, 1, true, false, "AIS: Tx malfunction*"});
    row("not exceeded, acknowledged", "$VRAIA,B,000000.00,7,V,A,Text*33\r\n",
        {11, 0, 0, 0, 7, false, true, "Text*"});
    row("oddity: the closing star stays in an empty text", "$VRAIA,0,235959,7,A,A,*",
        {0, 23, 59, 59, 7, true, true, "*"});
    row("text with commas", "$VRAIA,0,123456,7,A,A,a,b,,c*",
        {0, 12, 34, 56, 7, true, true, "a,b,,c*"});
    row("text ends at the first star", "$VRAIA,0,123456,7,A,A,a*b*",
        {0, 12, 34, 56, 7, true, true, "a*"});
    row("port with leading zeros", "$VRAIA,000B,123456,7,A,A,a*",
        {11, 12, 34, 56, 7, true, true, "a*"});
    row("anything behind the seconds", "$VRAIA,0,123456xyz,7,A,A,a*",
        {0, 12, 34, 56, 7, true, true, "a*"});
    row("id 255", "$VRAIA,0,123456,255,A,A,a*", {0, 12, 34, 56, 255, true, true, "a*"});
    row("id 256 keeps its low byte", "$VRAIA,0,123456,256,A,A,a*",
        {0, 12, 34, 56, 0, true, true, "a*"});
    row("id 261 keeps its low byte", "$VRAIA,0,123456,261,A,A,a*",
        {0, 12, 34, 56, 5, true, true, "a*"});
    row("largest id", "$VRAIA,0,123456,4294967295,A,A,a*", {0, 12, 34, 56, 255, true, true, "a*"});
}

void tst_AisSentence::alarm()
{
    QFETCH(QString, sentence);
    QFETCH(AisAlarmReport, expected);
    const std::optional<AisAlarmReport> read = parseAisAlarm(sentence);
    QVERIFY(read);
    QCOMPARE(read->port, expected.port);
    QCOMPARE(int(read->hour), int(expected.hour));
    QCOMPARE(int(read->minute), int(expected.minute));
    QCOMPARE(int(read->second), int(expected.second));
    QCOMPARE(int(read->id), int(expected.id));
    QCOMPARE(read->condition, expected.condition);
    QCOMPARE(read->acknowledged, expected.acknowledged);
    QCOMPARE(read->text, expected.text);
}

void tst_AisSentence::noAlarm_data()
{
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const char *sentence) {
        QTest::newRow(name) << QString::fromLatin1(sentence);
    };
    row("no text", "");
    row("head alone", "$VRAIA,");
    row("lower case", "$vraia,0,123456,7,A,A,a*");
    row("message", "$VRAIM,0,123456,7,A,A,a*");
    row("port C", "$VRAIA,C,123456,7,A,A,a*");
    row("port 11 in decimal", "$VRAIA,11,123456,7,A,A,a*");
    row("empty port", "$VRAIA,,123456,7,A,A,a*");
    row("port is no digit", "$VRAIA,x,123456,7,A,A,a*");
    row("empty time", "$VRAIA,0,,7,A,A,a*");
    row("time of one digit", "$VRAIA,0,1,7,A,A,a*");
    row("time of two digits", "$VRAIA,0,12,7,A,A,a*");
    row("time of five digits", "$VRAIA,0,12345,7,A,A,a*");
    row("hour 24", "$VRAIA,0,243456,7,A,A,a*");
    row("minute 60", "$VRAIA,0,126056,7,A,A,a*");
    row("second 60", "$VRAIA,0,123460,7,A,A,a*");
    row("negative hour", "$VRAIA,0,-13456,7,A,A,a*");
    row("nothing behind the time", "$VRAIA,0,123456");
    row("no comma behind the time", "$VRAIA,0,123456*");
    row("empty id", "$VRAIA,0,123456,,A,A,a*");
    row("id is no number", "$VRAIA,0,123456,x,A,A,a*");
    row("hexadecimal id", "$VRAIA,0,123456,1F,A,A,a*");
    row("negative id", "$VRAIA,0,123456,-1,A,A,a*");
    row("id above 32 bits", "$VRAIA,0,123456,4294967296,A,A,a*");
    row("another letter as condition", "$VRAIA,0,123456,7,X,A,a*");
    row("condition in lower case", "$VRAIA,0,123456,7,a,A,a*");
    row("empty condition", "$VRAIA,0,123456,7,,A,a*");
    row("condition of two letters", "$VRAIA,0,123456,7,AA,A,a*");
    row("another letter as acknowledgement", "$VRAIA,0,123456,7,A,X,a*");
    row("empty acknowledgement", "$VRAIA,0,123456,7,A,,a*");
    row("acknowledgement of two letters", "$VRAIA,0,123456,7,A,VV,a*");
    row("no text field", "$VRAIA,0,123456,7,A,A*");
    row("no star", "$VRAIA,0,123456,7,A,A,a");
}

void tst_AisSentence::noAlarm()
{
    QFETCH(QString, sentence);
    QVERIFY(!parseAisAlarm(sentence));
}

void tst_AisSentence::position_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("$VRAIP") << "$VRAIP,5545.123,N,13736.456,E*5C\r\n" << 3345.123 << 8256.456;
    QTest::newRow("fields behind") << "$VRAIP,5545.123,S,13736.456,W,123519,A*5C\r\n"
                                   << -3345.123 << -8256.456;
    QTest::newRow("the head is not looked at")
        << "x,5545.123,N,13736.456,E*" << 3345.123 << 8256.456;
    QTest::newRow("the first star ends it")
        << "$VRAIP,5545.123,N,13736.456,E*,*" << 3345.123 << 8256.456;
}

void tst_AisSentence::position()
{
    QFETCH(QString, sentence);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QGpsKrd position;
    QVERIFY(parseAisPosition(sentence, position));
    QVERIFY(qAbs(position.m_lat - latitude) < 1e-9);
    QVERIFY(qAbs(position.m_lon - longitude) < 1e-9);
}

void tst_AisSentence::noPosition_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no text") << "";
    QTest::newRow("no comma") << "$VRAIP*5C";
    QTest::newRow("no star") << "$VRAIP,5545.123,N,13736.456,E";
    QTest::newRow("the star before the comma") << "$VRAIP*,5545.123,N,13736.456,E";
    QTest::newRow("nothing between comma and star") << "$VRAIP,*5C";
    QTest::newRow("torn by the star") << "$VRAIP,5545.123,N,13736*.456,E";
    QTest::newRow("no hemisphere") << "$VRAIP,5545.123,N,13736.456,*5C";
}

void tst_AisSentence::noPosition()
{
    QFETCH(QString, sentence);
    QGpsKrd position;
    position.m_lat = 7.0;
    QVERIFY(!parseAisPosition(sentence, position));
    QCOMPARE(position.m_lat, 7.0);
    QCOMPARE(position.m_lon, 0.0);
}

void tst_AisSentence::deliverReachesThePort()
{
    const QString digits("0123456789AB");
    for (int port = 0; port < AisPortCount; ++port) {
        const auto ports = std::make_unique<AisPorts>();
        deliverAisSentence(
            QStringLiteral("$VRAIM,1,1,,%1,%2,0*00\r\n").arg(digits.at(port)).arg(report), *ports);
        for (int other = 0; other < AisPortCount; ++other)
            QCOMPARE(ports->at(size_t(other)).targetCount(), other == port ? 1 : 0);
        QVERIFY(ports->at(size_t(port)).findTarget(mmsi));
    }
}

void tst_AisSentence::deliverKinds()
{
    const auto ports = std::make_unique<AisPorts>();
    QAis &ais = ports->at(4);
    deliverAisSentence(QStringLiteral("$VRAIO,1,1,,4,%1,0*00\r\n").arg(report), *ports);
    QCOMPARE(ais.ownMessageCount(), 1U);
    QCOMPARE(ais.messageCount(), 0U);
    QCOMPARE(ais.ownTarget()->m_mmsi, mmsi);
    deliverAisSentence(QStringLiteral("$VRAIM,1,1,,4,%1,0*00\r\n").arg(report), *ports);
    QCOMPARE(ais.messageCount(), 1U);
}

void tst_AisSentence::deliverEmptyNumbers()
{
    // They read as 0, and a fragment 0 is turned away.
    const auto ports = std::make_unique<AisPorts>();
    deliverAisSentence(QStringLiteral("$VRAIM,,,,4,%1,0*00\r\n").arg(report), *ports);
    QCOMPARE(ports->at(4).messageCount(), 0U);
    deliverAisSentence(QStringLiteral("$VRAIM,1,1,,4,%1,*00\r\n").arg(report), *ports);
    QCOMPARE(ports->at(4).messageCount(), 1U);
}

void tst_AisSentence::deliverAlarms()
{
    const auto ports = std::make_unique<AisPorts>();
    deliverAisSentence("$VRAIA,3,123456.00,001,A,V,AIS: Tx malfunction*33\r\n", *ports);
    deliverAisSentence("$VRAIA,4,123456.00,001,V,V,Other*33\r\n", *ports);
    const QAisAlarm *alarm = ports->at(3).findAlarm(1);
    QVERIFY(alarm);
    QCOMPARE(alarm->m_text, QString("AIS: Tx malfunction*"));
    QVERIFY(alarm->m_condition);
    QVERIFY(!alarm->m_acknowledged);
    QCOMPARE(int(alarm->m_hour), 12);
    QCOMPARE(int(alarm->m_minute), 34);
    QCOMPARE(int(alarm->m_second), 56);
    QCOMPARE(ports->at(4).findAlarm(1)->m_text, QString("Other*"));
}

void tst_AisSentence::alarmIdsShareTheirLowBits()
{
    const auto ports = std::make_unique<AisPorts>();
    deliverAisSentence("$VRAIA,3,123456,5,A,V,Text*33\r\n", *ports);
    deliverAisSentence("$VRAIA,3,123456,261,V,V,Text*33\r\n", *ports);
    QCOMPARE(ports->at(3).alarmCount(), 1);
    QVERIFY(!ports->at(3).findAlarm(5)->m_condition);
}

void tst_AisSentence::deliverDropsInSilence_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::newRow("port C") << QStringLiteral("$VRAIM,1,1,,C,%1,0*").arg(report);
    QTest::newRow("port of two characters") << QStringLiteral("$VRAIM,1,1,,03,%1,0*").arg(report);
    QTest::newRow("empty time of an alarm") << "$VRAIA,3,,5,A,V,Text*";
    QTest::newRow("another condition of an alarm") << "$VRAIA,3,123456,5,X,V,Text*";
    QTest::newRow("position, which has a slot of its own") << "$VRAIP,5545.123,N,13736.456,E*";
    QTest::newRow("not from the router") << QStringLiteral("!AIVDM,1,1,,3,%1,0*").arg(report);
}

void tst_AisSentence::deliverDropsInSilence()
{
    QFETCH(QString, sentence);
    const auto ports = std::make_unique<AisPorts>();
    deliverAisSentence(sentence, *ports);
    for (const QAis &ais : *ports) {
        QCOMPARE(ais.targetCount(), 0);
        QCOMPARE(ais.messageCount(), 0U);
        QCOMPARE(ais.ownMessageCount(), 0U);
        QCOMPARE(ais.alarmCount(), 0);
        QVERIFY(!ais.hasOwnPosition());
    }
}

QTEST_GUILESS_MAIN(tst_AisSentence)
#include "tst_aissentence.moc"

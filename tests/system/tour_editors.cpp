#include "conversations.h"
#include "dialogmap.h"
#include "limits.h"
#include "stepfailure.h"
#include "story.h"
#include "tour.h"
#include "wait.h"

#include <QStringList>

#include <algorithm>

using namespace tk7sim;

// The editors behind a channel's row, and what they do to the traffic that the monitor shows.

namespace {

const QString filterTitle = QStringLiteral("NMEA Filter");
const QString sentenceTitle = QStringLiteral("Sentence");
const QString deleteTitle = QStringLiteral("NMEA Sentence");
const QString headerTitle = QStringLiteral("NMEA Header");
const QString smartTitle = QStringLiteral("SMART");

// What the first visit to the filter adds to the list and lets pass, and what it doesn't any more.
const QByteArray addedSentence = QByteArrayLiteral("TXT");
const QByteArray droppedSentence = QByteArrayLiteral("ZDA");
// What the second visit deletes although other filters use it.
const QByteArray deletedSentence = QByteArrayLiteral("VTG");

const QByteArray newTalker = QByteArrayLiteral("II");
constexpr int spoiltShare = 50; // % of the sentences at the inputs

// The slot of `name` in the list of sentences; of an empty one the first that is free.
size_t slotOf(const RouterConfig &config, const QByteArray &name)
{
    const auto &list = config.filterList;
    return size_t(std::find(list.begin(), list.end(), name) - list.begin());
}

quint32 bitOf(const RouterConfig &config, const QByteArray &name)
{
    return quint32(1) << slotOf(config, name);
}

QString textOf(const QList<QByteArray> &heads)
{
    QStringList texts;
    for (const QByteArray &head : heads)
        texts += QString::fromLatin1(head);
    return texts.join(QStringLiteral(", "));
}

} // namespace

Channel &Tour::gpsChannel()
{
    return m_expected.outputs[Story::chosenOutput].channels[Story::gpsChannel];
}

// The router shows sentences with these heads, each of them and no other, all with a right
// checksum, and the tool lists them. The traffic stands still until the next step, so that what is
// seen can be compared.
void Tour::awaitTraffic(const QList<QByteArray> &heads)
{
    constexpr int rounds = 2;
    const int enough = int(rounds * heads.size());
    const auto isHeard = [&] {
        const QList<QByteArray> last = m_traffic.lines().mid(m_traffic.lines().size() - enough);
        const auto count = [&](const QByteArray &head) {
            return std::count_if(last.begin(), last.end(), [&](const QByteArray &line) {
                return Traffic::headOf(line) == head && Traffic::hasRightChecksum(line);
            });
        };
        return std::all_of(heads.begin(), heads.end(),
                           [&](const QByteArray &head) { return count(head) == rounds; });
    };
    await(isHeard, Limit::traffic,
          QStringLiteral("the router doesn't show %1 alone").arg(textOf(heads)));
    holdTraffic();
    awaitNoProblem(
        [&] {
            return m_monitor.problem(m_tool.look(m_tool.map().monitorHeads()), m_traffic.lines());
        },
        Limit::paint);
}

// Until the next step. What the router has said by then is seen when nothing moves any more.
void Tour::holdTraffic()
{
    m_router.setTrafficRate(0);
    awaitStill([this] { return m_tool.look(m_tool.map().monitorList()); });
}

QString Tour::viewGpsChannel()
{
    constexpr int code = Conversation::viewCode(Story::chosenOutput, Story::gpsChannel);
    m_traffic.restart();
    m_tool.click(m_tool.map().channelButton(Story::gpsChannel));
    m_listener.expect({Conversation::view(code)}, Limit::hear);
    awaitMatrix(code);
    awaitTraffic({"$GPRMC", "$GPGGA", "$GPVTG", "$GPZDA"});
    return QStringLiteral("of the GPS the monitor shows RMC, GGA, VTG and ZDA, as its filter says");
}

QString Tour::openFilter()
{
    m_tool.click(m_tool.map().filterSet(Story::gpsChannel));
    m_box = m_tool.awaitWindow(filterTitle, Limit::box);
    return QStringLiteral("the router's list of sentences; the router isn't told");
}

QString Tour::addSentence()
{
    m_editor = m_box;
    m_tool.click(m_editor, DialogMap::Filter::addSentence);
    m_box = m_tool.awaitWindow(sentenceTitle, Limit::box);
    m_tool.desktop().type(QString::fromLatin1(addedSentence).toLower());
    return QStringLiteral("a box for its name");
}

// The list is sorted by name, and goes to its first row at Ctrl+Home.
void Tour::selectSentence(const QByteArray &name)
{
    QList<QByteArray> names;
    for (const QByteArray &listed : m_expected.filterList) {
        if (!listed.isEmpty())
            names += listed;
    }
    std::sort(names.begin(), names.end());
    m_tool.click(m_editor, DialogMap::Filter::names);
    m_tool.awaitKeys(m_editor);
    m_tool.desktop().strike("Home", "Control_L");
    for (int i = int(names.indexOf(name)); i > 0; --i)
        m_tool.desktop().strike("Down");
}

QString Tour::changeFilter()
{
    m_tool.acceptBox(m_box);
    m_expected.filterList[slotOf(m_expected, QByteArray())] = addedSentence;
    for (const QByteArray &name : {droppedSentence, addedSentence}) {
        selectSentence(name);
        m_tool.desktop().strike("space");
        gpsChannel().filterMask ^= bitOf(m_expected, name);
    }
    m_listener.expectNothing();
    return QStringLiteral("%1 is ticked, %2 isn't any more")
        .arg(QString::fromLatin1(addedSentence), QString::fromLatin1(droppedSentence));
}

// What an accepted filter tells the router: its rules, the list of sentences, and the filters of
// the output ports `ports`.
void Tour::acceptFilter(const QList<int> &ports)
{
    m_traffic.restart();
    m_tool.click(m_editor, DialogMap::Filter::ok);
    m_tool.awaitGone(m_editor);
    QList<QByteArray> lines{Conversation::rules(Story::chosenOutput)};
    lines += Conversation::filterList();
    for (const int output : ports)
        lines += Conversation::filters(output, 0);
    m_listener.expect(lines, Limit::hear);
    require(m_router.working() == m_expected,
            QStringLiteral("the router's list or filters aren't what was set"));
    awaitMatrix(m_router.view());
}

QString Tour::applyFilter()
{
    acceptFilter({Story::chosenOutput});
    awaitTraffic({"$GPRMC", "$GPGGA", "$GPVTG"});
    return QStringLiteral("ZDA doesn't pass any more, the router and the monitor show the rest");
}

QString Tour::deleteSentence()
{
    openFilter();
    m_editor = m_box;
    selectSentence(deletedSentence);
    m_tool.click(m_editor, DialogMap::Filter::deleteSentence);
    m_box = m_tool.awaitWindow(deleteTitle, Limit::box);
    m_listener.expectNothing();
    return QStringLiteral("a question that names the three channels whose filters use it");
}

QString Tour::confirmDelete()
{
    m_tool.acceptBox(m_box);
    const quint32 bit = bitOf(m_expected, deletedSentence);
    QList<int> ports;
    for (int port = 0; port < portCount; ++port) {
        for (Channel &channel : m_expected.outputs[size_t(port)].channels) {
            if (!channel.filterEnabled || !(channel.filterMask & bit))
                continue;
            channel.filterMask &= ~bit;
            if (ports.isEmpty() || ports.last() != port)
                ports += port;
        }
    }
    m_expected.filterList[slotOf(m_expected, deletedSentence)].clear();
    acceptFilter(ports);
    awaitTraffic({"$GPRMC", "$GPGGA"});
    return QStringLiteral("it has left all filters; the channel shows RMC and GGA");
}

QString Tour::silenceMainInput()
{
    m_traffic.restart();
    m_router.setInputSilent(Story::gpsInput, true);
    awaitTraffic({"$GNRMC", "$GNGGA"});
    require(m_router.activeInput(Story::chosenOutput, Story::gpsChannel) == Story::reserveGpsInput,
            QStringLiteral("the channel doesn't listen to its reserve input"));
    m_listener.expectNothing();
    return QStringLiteral("the channel shows what the second GPS sends, by the same filter");
}

QString Tour::restoreMainInput()
{
    m_traffic.restart();
    m_router.setInputSilent(Story::gpsInput, false);
    awaitTraffic({"$GPRMC", "$GPGGA"});
    return QStringLiteral("the channel is back at its main input");
}

QString Tour::openHeader()
{
    m_tool.click(m_tool.map().hdrCheck(Story::gpsChannel));
    m_box = m_tool.awaitWindow(headerTitle, Limit::box);
    m_tool.desktop().type(QString::fromLatin1(newTalker).toLower());
    m_listener.expectNothing();
    return QStringLiteral("a box for the talker");
}

QString Tour::enterHeader()
{
    m_traffic.restart();
    m_tool.acceptBox(m_box);
    gpsChannel().hdrEnabled = true;
    gpsChannel().hdr = newTalker;
    m_listener.expect(
        {Conversation::headers(Story::chosenOutput), Conversation::rules(Story::chosenOutput)},
        Limit::hear);
    require(m_router.working() == m_expected, QStringLiteral("the router has another header"));
    awaitMatrix(m_router.view());
    awaitTraffic({"$IIRMC", "$IIGGA"});
    return QStringLiteral("every sentence comes from %1, with a right checksum")
        .arg(QString::fromLatin1(newTalker));
}

// The router holds the spoilt ones back until its check is switched off.
QString Tour::switchOffCheck()
{
    m_traffic.restart();
    m_router.setFault(Fault::InputErrors, spoiltShare);
    const auto spoilt = [this] {
        const QList<QByteArray> &lines = m_traffic.lines();
        return std::count_if(lines.begin(), lines.end(), [](const QByteArray &line) {
            return line.startsWith('$') && !Traffic::hasRightChecksum(line);
        });
    };
    constexpr int enough = 4;
    await([&] { return m_traffic.lines().size() >= enough; }, Limit::traffic,
          QStringLiteral("the router shows nothing"));
    require(spoilt() == 0, QStringLiteral("the router lets a spoilt sentence pass its check"));
    const QImage noErrors = m_tool.look(m_tool.map().checksumErrors());

    m_tool.click(m_tool.map().crsCheck(Story::gpsChannel));
    gpsChannel().crsEnabled = false;
    m_listener.expect({Conversation::rules(Story::chosenOutput)}, Limit::hear);
    require(m_router.working() == m_expected, QStringLiteral("the router still checks"));
    awaitMatrix(m_router.view());
    await([&] { return spoilt() > 0; }, Limit::traffic,
          QStringLiteral("no spoilt sentence comes through"));
    await([&] { return m_tool.look(m_tool.map().checksumErrors()) != noErrors; }, Limit::paint,
          QStringLiteral("the tool doesn't count the spoilt sentences"));
    holdTraffic();
    return QStringLiteral("half of the sentences are spoilt: now they pass, and the tool counts "
                          "them");
}

QString Tour::switchOnCheck()
{
    m_router.clearFault(Fault::InputErrors);
    m_tool.click(m_tool.map().crsCheck(Story::gpsChannel));
    gpsChannel().crsEnabled = true;
    m_listener.expect({Conversation::rules(Story::chosenOutput)}, Limit::hear);
    awaitMatrix(m_router.view());
    m_traffic.restart();
    awaitTraffic({"$IIRMC", "$IIGGA"});
    return QStringLiteral("the router checks again");
}

QString Tour::openSmart()
{
    m_tool.click(m_tool.map().smartButton(Story::gpsChannel));
    m_box = m_tool.awaitWindow(smartTitle, Limit::box);
    m_listener.expectNothing();
    return QStringLiteral("the channel's function, GPS");
}

QString Tour::chooseSmart()
{
    m_tool.click(m_box, DialogMap::Smart::off);
    m_tool.acceptBox(m_box);
    gpsChannel().smart = 0;
    m_listener.expect({Conversation::rules(Story::chosenOutput)}, Limit::hear);
    require(m_router.working() == m_expected, QStringLiteral("the router has another function"));
    awaitMatrix(m_router.view());
    return QStringLiteral("off: the button isn't yellow any more, the router has no function");
}

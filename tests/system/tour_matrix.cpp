#include "conversations.h"
#include "limits.h"
#include "stepfailure.h"
#include "story.h"
#include "tour.h"
#include "wait.h"

using namespace tk7sim;

// The matrix: ports that are selected, dragged and named, and their speeds.

namespace {

constexpr quint32 newSpeed = 9600;
constexpr int restBeforeDrop = 500; // ms

} // namespace

QString Tour::selectOutputs()
{
    for (int output = 0; output < portCount; ++output)
        select(output);
    return QStringLiteral("the channels of all of them are the router's");
}

QString Tour::selectOutput()
{
    select(Story::chosenOutput);
    return QStringLiteral("its channels, its button in orange; the router shows its traffic");
}

QString Tour::dragPort()
{
    const Channel &channel =
        m_router.working().outputs[Story::chosenOutput].channels[Story::freeChannel];
    require(channel.mainInput == noPort, QStringLiteral("the cell isn't empty"));
    dragLabel(m_tool.map().inputHome(Story::draggedInput),
              m_tool.map().mainCell(Story::freeChannel));
    return QStringLiteral("the label's picture is under the pointer");
}

QString Tour::dropPort()
{
    const RouterConfig before = m_expected;
    m_expected.outputs[Story::chosenOutput].channels[Story::freeChannel].mainInput =
        Story::draggedInput;
    require(m_router.working() == before, QStringLiteral("the router was told before the drop"));
    m_tool.desktop().release(XDesktop::LeftButton);
    awaitNoDrag();
    m_listener.expect({Conversation::rules(Story::chosenOutput)}, Limit::hear);
    require(m_router.working() == m_expected,
            QStringLiteral("the router's rules aren't what was dropped"));
    awaitMatrix(m_router.view());
    return QStringLiteral("the label lies in the cell; the router has the rule");
}

QString Tour::dragOntoOccupied()
{
    dragLabel(m_tool.map().inputHome(Story::refusedInput),
              m_tool.map().mainCell(Story::freeChannel));
    return QStringLiteral("the label's picture is under the pointer");
}

QString Tour::dropRefused()
{
    m_tool.desktop().release(XDesktop::LeftButton);
    awaitNoDrag();
    awaitMatrix(m_router.view());
    return QStringLiteral("every label is where it was");
}

QString Tour::openNameEditor()
{
    const QRect home = m_tool.map().inputHome(Story::namedInput);
    m_unnamedLabel = label(home);
    openEditor(home);
    const QImage empty = label(home);
    m_tool.desktop().type(Story::newName);
    await([&] { return shareOf(label(home), Qt::black) > shareOf(empty, Qt::black); }, Limit::paint,
          QStringLiteral("the keys don't reach the editor"));
    // A comma would break a sentence, so it can't be typed.
    m_tool.desktop().type(QStringLiteral(","));
    return QStringLiteral("an editor in place of the label, with the name in it");
}

QString Tour::enterName()
{
    const QRect home = m_tool.map().inputHome(Story::namedInput);
    m_tool.desktop().strike("Return");
    awaitMatrix(m_router.view());
    m_namedLabel = label(home);
    require(m_namedLabel != m_unnamedLabel, QStringLiteral("the label's text is what it was"));
    m_listener.expectNothing();
    return QStringLiteral("the label is back with another text; the router isn't told yet");
}

// Neither key nor click may store the text, and the click may press nothing else.
QString Tour::abandonName()
{
    const QRect home = m_tool.map().inputHome(Story::namedInput);
    const auto abandon = [&](const std::function<void()> &leave) {
        openEditor(home);
        m_tool.desktop().type(QStringLiteral("X"));
        leave();
        m_tool.restMouse();
        await([&] { return label(home) == m_namedLabel; }, Limit::paint,
              QStringLiteral("the label isn't as it was"));
    };
    abandon([this] { m_tool.desktop().strike("Escape"); });
    abandon([this] { m_tool.click(m_tool.map().channelButton(Story::freeChannel + 1)); });
    // The next click is one again, and the first one that the router hears of.
    m_tool.click(m_tool.map().channelButton(Story::freeChannel));
    m_listener.expect(
        {Conversation::view(Conversation::viewCode(Story::chosenOutput, Story::freeChannel))},
        Limit::hear);
    awaitMatrix(m_router.view());
    return QStringLiteral(
        "the name is as it was; the click did nothing else, and the next one works");
}

QString Tour::nameOutput()
{
    const QRect button = m_tool.map().outputButton(Story::namedOutput);
    const QImage before = m_tool.look(button);
    openEditor(button);
    m_tool.desktop().strike("a", "Control_L");
    m_tool.desktop().type(Story::newOutputName);
    m_tool.desktop().strike("Return");
    awaitMatrix(m_router.view());
    require(m_tool.look(button) != before, QStringLiteral("the button's text is what it was"));
    m_listener.expectNothing();
    return QStringLiteral("the button has another text; the router isn't told yet");
}

QString Tour::openSpeedList()
{
    m_tool.click(m_tool.map().outputSpeed(Story::chosenOutput));
    m_tool.awaitPopup(Limit::popup);
    return QStringLiteral("the list opens");
}

QString Tour::chooseSpeed()
{
    m_tool.desktop().type(QString::number(newSpeed));
    m_tool.desktop().strike("Return");
    m_tool.awaitNoPopup();
    m_expected.speeds[Story::chosenOutput] = newSpeed;
    m_listener.expect({Conversation::speed(Story::chosenOutput, newSpeed)}, Limit::hear);
    require(m_router.working() == m_expected, QStringLiteral("the router has another speed"));
    awaitMatrix(m_router.view());
    return QStringLiteral("the router has the speed");
}

QString Tour::returnInputs()
{
    m_saved = m_expected;
    m_tool.click(m_tool.map().returnInputs());
    m_listener.expect({Conversation::rules(Story::chosenOutput)}, Limit::hear);
    // The router keeps the masks and headers that a rule doesn't carry.
    m_expected = m_router.working();
    for (const auto &channel : m_expected.outputs[Story::chosenOutput].channels) {
        require(channel.mainInput == noPort && channel.reserveInput == noPort,
                QStringLiteral("the router still has inputs in output port 5"));
    }
    awaitMatrix(m_router.view());
    return QStringLiteral("the channels of output port 5 are empty, here and in the router");
}

void Tour::select(int output)
{
    m_output = output;
    m_tool.click(m_tool.map().outputButton(output));
    const int code = Conversation::viewCode(output, Conversation::wholePort);
    m_listener.expect({Conversation::view(code)}, Limit::hear);
    awaitMatrix(code);
}

// The editor lies over the whole place, on a white ground.
void Tour::openEditor(const QRect &place)
{
    m_tool.click(place, XDesktop::RightButton);
    await([&] { return shareOf(m_tool.look(place), Qt::white) > Story::mostly; }, Limit::paint,
          QStringLiteral("no editor opens"));
}

// Takes the label in `from` and holds it over `to`.
void Tour::dragLabel(const QRect &from, const QRect &to)
{
    XDesktop &desktop = m_tool.desktop();
    const QPoint start = m_tool.middleOf(from);
    const QRect taken = m_tool.map().labelIn(from).translated(m_tool.mainWindow().place.topLeft());
    const QPoint aside(m_tool.map().scaled(12), m_tool.map().scaled(9)); // so that both are seen
    const QPoint target = m_tool.middleOf(to) + aside;
    m_tool.glideTo(start);
    desktop.press(XDesktop::LeftButton);
    m_tool.glideTo(start + (target - start) / 3);
    QPoint place;
    await([&] { return !m_tool.draggedPicture(&place).isNull(); }, Limit::popup,
          QStringLiteral("nothing hangs on the pointer"));
    m_tool.glideTo(target);

    // The picture hangs on the pointer by the point where the label was taken.
    const QPoint hold = start - taken.topLeft();
    const auto problem = [&] {
        constexpr int tolerance = 2; // the frame's own border, scaled
        const QImage picture = m_tool.draggedPicture(&place);
        const QPoint slip = place + hold - desktop.pointer();
        if (slip.manhattanLength() > 2 * tolerance) {
            return QStringLiteral("the label's picture is off the pointer by %1, %2")
                .arg(slip.x())
                .arg(slip.y());
        }
        // On Windows a pointer lies over the label, and reaches beyond it.
        const double share = m_tool.isForWindows() ? Story::mostly / 2 : Story::mostly;
        if (shareOf(picture, Story::rs422) < share)
            return QStringLiteral("what is under the pointer isn't the label");
        return QString();
    };
    awaitNoProblem(problem, Limit::paint);
    // There the picture is the pointer's own, and doesn't tell how far the tool has followed it.
    if (m_tool.isForWindows())
        runFor(restBeforeDrop);
}

void Tour::awaitNoDrag()
{
    QPoint place;
    int step = 1;
    const auto isGone = [&] {
        if (m_tool.isForWindows()) // a pointer that rests there is as it was
            m_tool.desktop().moveTo(m_tool.desktop().pointer() + QPoint(step = -step, 0));
        return m_tool.draggedPicture(&place).isNull();
    };
    await(isGone, Limit::popup, QStringLiteral("the label's picture stays under the pointer"));
}

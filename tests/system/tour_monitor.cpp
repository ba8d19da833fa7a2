#include "conversations.h"
#include "limits.h"
#include "stepfailure.h"
#include "story.h"
#include "tour.h"
#include "wait.h"

// The monitor and the panel that it stands in.

namespace {

constexpr int viewedInput = 4;

} // namespace

// What the tool sends stays in order: had the refused drop sent anything, it would come first.
QString Tour::viewChannel()
{
    m_tool.click(m_tool.map().channelButton(Story::freeChannel));
    m_listener.expect(
        {Conversation::view(Conversation::viewCode(Story::chosenOutput, Story::freeChannel))},
        Limit::hear);
    require(m_router.working() == m_expected, QStringLiteral("a refused drop changed the rules"));
    awaitMatrix(Conversation::viewCode(Story::chosenOutput, Story::freeChannel));
    return QStringLiteral("the button is orange; the router has heard nothing of the refused drop");
}

QString Tour::viewInput()
{
    m_tool.click(m_tool.map().inputHome(viewedInput));
    constexpr int code = Conversation::viewCode(Conversation::anInput, viewedInput);
    m_listener.expect({Conversation::view(code)}, Limit::hear);
    require(m_router.view() == code, QStringLiteral("the router shows another port"));
    awaitMatrix(code);

    // New lines move the old ones up, time after time.
    constexpr int changes = 3;
    for (int i = 0; i < changes; ++i) {
        const QImage before = m_tool.look(m_tool.map().monitorList());
        await([&] { return m_tool.look(m_tool.map().monitorList()) != before; }, Limit::hear,
              QStringLiteral("no traffic is seen"));
    }
    return QStringLiteral("its label is orange, its traffic runs through the monitor");
}

QString Tour::pauseMonitor()
{
    constexpr int pause = 1500; // some lines of the port under view
    m_tool.click(m_tool.map().playButton());
    runFor(pause / 2);
    const QImage before = m_tool.look(m_tool.map().monitorList());
    runFor(pause);
    require(m_tool.look(m_tool.map().monitorList()) == before,
            QStringLiteral("lines are still moving"));
    m_tool.click(m_tool.map().playButton());
    await([&] { return m_tool.look(m_tool.map().monitorList()) != before; }, Limit::hear,
          QStringLiteral("no traffic is seen"));
    return QStringLiteral("the lines stand still, and move again");
}

QString Tour::foldPanel()
{
    m_unfolded = m_tool.mainWindow().place.size();
    m_tool.click(m_tool.map().foldButton());
    awaitSize(m_unfolded.width(), m_tool.map().foldedHeight());
    return QStringLiteral("the panel is a strip with the legend");
}

QString Tour::unfoldPanel()
{
    m_tool.click(m_tool.map().foldButton());
    awaitSize(m_unfolded.width(), m_unfolded.height());
    return QStringLiteral("the window is as high as before");
}

QString Tour::widenWindow()
{
    m_tool.click(m_tool.map().speedViewButton());
    awaitSize(m_unfolded.width() + m_tool.map().speedViewWidth(), m_unfolded.height());
    const auto hasText = [this](int port) {
        const int border = m_tool.map().scaled(6);
        const QImage inner =
            m_tool.look(m_tool.map().inputSpeed(port))
                .copy(border, border, m_tool.map().scaled(35), m_tool.map().scaled(19));
        const double ground = shareOf(inner, inner.pixelColor(0, 0));
        return ground > Story::mostly && ground < 1;
    };
    for (int port = 0; port < tk7sim::portCount; ++port) {
        await([&] { return hasText(port); }, Limit::paint,
              QStringLiteral("there is no speed beside input port %1").arg(port));
    }
    return QStringLiteral("the window is wider, with a speed beside each input port");
}

QString Tour::narrowWindow()
{
    m_tool.click(m_tool.map().speedViewButton());
    awaitSize(m_unfolded.width(), m_unfolded.height());
    awaitMatrix(m_router.view());
    return QStringLiteral("the window is as wide as before");
}

void Tour::awaitSize(int width, int height)
{
    await([&] { return m_tool.mainWindow().place.size() == QSize(width, height); }, Limit::paint,
          QStringLiteral("the window hasn't become %1 by %2").arg(width).arg(height));
}

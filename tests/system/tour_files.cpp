#include "conversations.h"
#include "limits.h"
#include "stepfailure.h"
#include "story.h"
#include "tour.h"
#include "wait.h"

#include <QFile>

#include <algorithm>

using namespace tk7sim;

// The rules in the router's memory and in files.

namespace {

const QString saveTitle = QStringLiteral("Save Rules");

constexpr QColor waitColor(240, 102, 104);
constexpr double shortestPace = 24; // ms a sentence, where 25 are due
constexpr double microsecondsPerMillisecond = 1000;

} // namespace

QString Tour::saveFile()
{
    QFile::remove(ruleFile());
    m_tool.click(m_tool.map().saveToFile());
    enterFileName(QStringLiteral("Save rules"), ruleFile());
    QFile file(ruleFile());
    await([&] { return file.exists() && file.size() > 0; }, Limit::box,
          QStringLiteral("%1 isn't written").arg(ruleFile()));
    require(file.open(QIODevice::ReadOnly) && file.read(3) == "VRR",
            QStringLiteral("%1 is no rule file").arg(ruleFile()));
    m_listener.expectNothing();
    return QStringLiteral("a rule file of %1 bytes; the router isn't told").arg(file.size());
}

QString Tour::loadFile()
{
    m_tool.click(m_tool.map().loadFromFile());
    speakDuringUpload();
    enterFileName(QStringLiteral("Load rules"), ruleFile());
    m_expected = m_saved;
    // Names have been given that only now reach the router.
    m_expected.inputNames[Story::namedInput] = Story::newName.toLatin1();
    m_expected.outputNames[Story::namedOutput] = Story::newOutputName.toLatin1();
    m_listener.expect(Conversation::upload(m_expected), Limit::upload);
    m_signsOfLife.stop();
    m_box = m_tool.awaitWindow(Story::routerTitle, Limit::box);
    require(m_router.working() == m_expected,
            QStringLiteral("the router's rules aren't those of the file"));
    require(m_router.eeprom() != m_expected, QStringLiteral("the router has saved its rules"));
    return QStringLiteral("%1 sentences; the router works by the file's rules")
        .arg(Conversation::uploadLength);
}

QString Tour::pressSave()
{
    m_tool.acceptBox(m_box);
    awaitMatrix(m_router.view());
    m_tool.click(m_tool.map().saveInRouter());
    m_box = m_tool.awaitWindow(saveTitle, Limit::box);
    m_listener.expectNothing();
    return QStringLiteral("the question \"%1\"").arg(m_box.title);
}

QString Tour::confirmSave()
{
    speakDuringUpload();
    m_saveAccepted = tk7sim::RouterSimulator::now();
    m_tool.acceptBox(m_box);
    const QRect place = m_tool.awaitPopup(Limit::popup).place;
    await([&] { return shareOf(m_tool.pictureOnScreen(place), waitColor) > Story::mostly; },
          Limit::paint, QStringLiteral("what popped up isn't the box that asks to wait"));
    return QStringLiteral("the box that asks to wait");
}

QString Tour::awaitSaved()
{
    const QList<ReceivedLine> upload =
        m_listener.expect(Conversation::save(m_expected), Limit::upload);
    m_signsOfLife.stop();
    // Any line may have been heard late, never too early: so the time is that since the click.
    const double pace = static_cast<double>(upload.constLast().microseconds - m_saveAccepted)
        / Conversation::uploadLength / microsecondsPerMillisecond;
    require(pace > shortestPace,
            QStringLiteral("the sentences come too fast, one in %1 ms").arg(pace, 0, 'f', 1));

    m_box = m_tool.awaitWindow(Story::routerTitle, Limit::save);
    m_tool.awaitNoPopup();
    require(m_router.working() == m_expected,
            QStringLiteral("the router's rules aren't those of the window"));
    require(m_router.eeprom() == m_expected, QStringLiteral("the router hasn't saved its rules"));
    return QStringLiteral(
               "%1 sentences and the save in order, one in %2 ms; rules, speed and names "
               "are in the EEPROM")
        .arg(Conversation::uploadLength)
        .arg(pace, 0, 'f', 1);
}

// Where the tool is started, and finds its files by their names alone. Letters of three alphabets.
QString Tour::filesFolder() const
{
    return QDir(m_options.output).absoluteFilePath(QStringLiteral("Schiff Ørsted Ладога"));
}

QString Tour::ruleFile() const
{
    return filesFolder() + QStringLiteral("/rules.vrr");
}

// An upload takes two seconds, and the question for a sign of life waits at its end. On a busy
// machine its answer would come too late, and the link would end: so the router speaks meanwhile.
void Tour::speakDuringUpload()
{
    constexpr int interval = 500; // ms
    m_signsOfLife.start(interval);
}

// The list of suggestions under the name may take a Return for itself, and a folder that is still
// being read may change what was typed: so the name is typed afresh at every try.
void Tour::enterFileName(const QString &title, const QString &file)
{
    constexpr int settle = 500; // until the dialog has read its folder, or shown its suggestions
    constexpr int closeLimit = 1500;
    constexpr int tries = 6;
    XDesktop &desktop = m_tool.desktop();
    const quint32 dialog = m_tool.awaitWindow(title, Limit::box).id;
    const auto isClosed = [&] {
        const auto windows = desktop.windowsOf(m_tool.processId());
        return std::none_of(windows.begin(), windows.end(),
                            [&](const auto &window) { return window.id == dialog; });
    };
    const auto hasKeys = [&] { return desktop.focusWindow() == dialog; };
    for (int i = 0; i < tries; ++i) {
        runFor(settle);
        if (!hasKeys())
            desktop.strike("Escape"); // a box that says that there is no such file
        if (!waitUntil(hasKeys, closeLimit))
            continue;
        desktop.strike("a", "Control_L");
        desktop.type(QFileInfo(file).fileName());
        runFor(settle);
        desktop.strike("Return");
        if (waitUntil(isClosed, closeLimit))
            return;
        if (hasKeys())
            desktop.strike("Return");
        if (waitUntil(isClosed, closeLimit))
            return;
    }
    require(false, QStringLiteral("the dialog \"%1\" stays open").arg(title));
}

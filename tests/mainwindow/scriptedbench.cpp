#include "scriptedbench.h"

#include "link/nmeaserialport.h"
#include "platform/keyboard.h"
#include "support/checkedline.h"
#include "windowbench.h"

#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int longestWait = 10000; // ms

} // namespace

bool inService(MainWindow &window, const std::function<void(servicedlg &)> &use)
{
    bool hasCome = false;
    QTimer timer; // goes with what it looks for
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &window, [&] {
        const QPointer<servicedlg> dialog = window.findChild<servicedlg *>();
        if (!dialog || !dialog->isVisible())
            return;
        hasCome = true;
        use(*dialog);
        if (dialog)
            dialog->close();
    });
    timer.start(0);
    window.findChild<QPushButton *>(QStringLiteral("pushButton_Service"))->click();
    return hasCome;
}

ScriptedBench::ScriptedBench(const QByteArray &version) : m_version(version)
{
    if (!line.isValid())
        qFatal("no pseudo-terminal");
    QObject::connect(&line, &PtyPair::lineReceived, &line, [this](const QByteArray &sentence) {
        answer(sentence);
        if (onLine)
            onLine(sentence);
    });
    platform::setLeftControlSource([this] { return leftControl; });
    auto *ports = find<QComboBox>(QStringLiteral("comboBox_connect_port"));
    ports->addItem(line.slavePath());
    ports->setCurrentText(line.slavePath());
    find<QPushButton>(QStringLiteral("pushButton_connect"))->setEnabled(true);
    window.show();
}

ScriptedBench::~ScriptedBench()
{
    platform::setLeftControlSource({});
}

void ScriptedBench::answer(const QByteArray &sentence)
{
    if (sentence == "$VRCNT\r\n")
        say("$VRCNU,3");
    else if (sentence == "$VRCNC\r\n")
        say("$VRERR,0000,00");
    else if (sentence == "$VRRLD\r\n")
        sayBare("$VRWBL");
    else if (sentence == "$VRVER\r\n" && !m_version.isEmpty())
        say("$VRVER," + m_version);
}

bool ScriptedBench::connectToRouter()
{
    const int before = boxes.answered();
    forgetHeard();
    boxes.expect(WindowBench::downloadBox());
    find<QPushButton>(QStringLiteral("pushButton_connect"))->click();
    const bool isDownloaded =
        QTest::qWaitFor([&] { return boxes.answered() > before; }, longestWait);
    const auto *label = find<QLabel>(QStringLiteral("label_firmware_version"));
    const auto isAsked = [this] { return heard().contains("$VRVER\r\n"); };
    const auto isTold = [this, label] { return m_version.isEmpty() || !label->text().isEmpty(); };
    const bool hasVersion = QTest::qWaitFor([&] { return isAsked() && isTold(); }, longestWait);
    waitUntilHeard();
    forgetHeard();
    return isDownloaded && hasVersion && window.isConnected();
}

void ScriptedBench::say(const QByteArray &body)
{
    line.write(checkedLine(body));
}

void ScriptedBench::sayBare(const QByteArray &head)
{
    line.write(head + "\r\n");
}

void ScriptedBench::waitUntilHeard()
{
    const QString mark = QString::number(++m_marks);
    say("$VRMOD," + mark.toLatin1());
    const auto *label = find<QLabel>(QStringLiteral("label_firmware_mode"));
    if (!QTest::qWaitFor([&] { return label->text() == QStringLiteral("mode: ") + mark; },
                         longestWait)) {
        QTest::qFail("the tool doesn't hear the router", __FILE__, __LINE__);
    }
}

QList<QByteArray> ScriptedBench::heard() const
{
    QList<QByteArray> sentences;
    for (int i = m_forgotten; i < line.lines().size(); ++i) {
        if (line.lines().at(i).text != "$VRCNC\r\n")
            sentences += line.lines().at(i).text;
    }
    return sentences;
}

QList<QByteArray> ScriptedBench::commands() const
{
    QList<QByteArray> sentences = heard();
    const auto isPoll = [](const QByteArray &sentence) {
        return sentence.startsWith("$VRSTA") || sentence.startsWith("$VRSER");
    };
    sentences.erase(std::remove_if(sentences.begin(), sentences.end(), isPoll), sentences.end());
    return sentences;
}

void ScriptedBench::endLink()
{
    // What the router has said until now is heard first, and puts the end off.
    constexpr int mostLooks = 10;
    const QPointer<NmeaSerialPort> link = window.currentLink();
    for (int i = 0; i < mostLooks && link && window.currentLink() == link; ++i)
        link->slot_confirm_timer();
}

#include "rules/routersession.h"

#include "link/nmeaserialport.h"
#include "model/commands.h"
#include "model/download.h"
#include "model/sentencebuilders.h"

#include <QEventLoop>

namespace {

constexpr int Endless = 0;
constexpr int SendInterval = 25;       // ms, that of the link: nothing piles up in its queue
constexpr int DownloadSilence = 10000; // ms without a part of the configuration
constexpr int DownloadAttempts = 3;
constexpr int SaveLimit = 30000;      // ms
constexpr int ViewLimit = 5000;       // ms
constexpr int DisconnectLimit = 3000; // ms; one sentence may stand before the last in the queue
constexpr int Hundred = 100;          // per cent
constexpr int ViewNibble = 4;         // bits
constexpr int ViewNibbleMask = 0x0f;

} // namespace

RouterSession::RouterSession(QObject *parent)
    : QObject(parent), m_link(std::make_unique<NmeaSerialPort>()),
      m_download(std::make_unique<Download>())
{
    m_limit.setSingleShot(true);
    m_limit.setTimerType(Qt::PreciseTimer);
    wireLink();
    wireDownload();
}

RouterSession::~RouterSession()
{
    m_link->closePort();
}

void RouterSession::wireLink()
{
    using Link = NmeaSerialPort;
    const NmeaSerialPort *link = m_link.get();
    connect(link, &Link::signalErrorOpenPort, this, [this] { breakOff(Outcome::PortError); });
    connect(link, &Link::signalVRBusy, this, [this] { breakOff(Outcome::Busy); });
    connect(link, &Link::signalVRTimeOutConnect, this,
            [this] { breakOff(m_isConnected ? Outcome::Lost : Outcome::NoRouter); });
    connect(link, &Link::signalVRConnectionProgress, this, [this](int percent) {
        if (!m_isConnected)
            emit progress(QStringLiteral("Looking for the router"), percent);
    });
    connect(link, &Link::signalVRConnect, this, [this] {
        m_isConnected = true;
        arrive(Awaited::Connection);
    });
    connect(link, &Link::signalVRUpdateVRData, this, [this] { arrive(Awaited::EndMark); });
    connect(link, &Link::signalVRSaveEepromOk, this, [this] { arrive(Awaited::SaveResult); });
    connect(link, &Link::signalVRSaveEepromError, this,
            [this] { arrive(Awaited::SaveResult, Outcome::SaveError); });
    connect(link, &Link::signalVRPortView, this, [this](quint8 code) {
        m_isShown = code == m_view;
        if (m_isShown)
            arrive(Awaited::View);
    });
    connect(link, &Link::signalVRLockStatus, this,
            [this](bool hasPassword, quint8 level) { m_isLocked = hasPassword && level == 0; });
    connect(link, &Link::signalNMEA_receive, this, &RouterSession::takeLine);
}

// Every part of the configuration gives the router time for the next.
template <typename Take> void RouterSession::receive(Take take)
{
    take();
    if (m_awaited != Awaited::EndMark)
        return;
    m_limit.start();
    emit progress(QStringLiteral("Reading the rules"),
                  m_download->received() * Hundred / Download::Total);
}

void RouterSession::wireDownload()
{
    using Link = NmeaSerialPort;
    const NmeaSerialPort *link = m_link.get();
    connect(link, &Link::signalVRNewRule, this,
            [this](quint8 port, int channel, quint8 rules, quint8 flags) {
                receive([&] { m_download->setRule(port, channel, rules, flags); });
            });
    connect(link, &Link::signalVRNewFilterMask, this,
            [this](quint8 port, int channel, quint32 mask) {
                receive([&] { m_download->setFilterMask(port, channel, mask); });
            });
    connect(link, &Link::signalVRNewHdr, this,
            [this](quint8 port, int channel, const QString &header) {
                receive([&] { m_download->setHdr(port, channel, header); });
            });
    connect(link, &Link::signalVRNewFilterStr, this, [this](quint8 index, const QString &name) {
        receive([&] { m_download->setFilterString(index, name); });
    });
    connect(link, &Link::signalVRNewPortSpeed, this, [this](quint8 port, quint32 speed) {
        receive([&] { m_download->setPortSpeed(port, speed); });
    });
    connect(link, &Link::signalVRNewPortName, this,
            [this](bool isOutput, quint8 port, const QString &name) {
                receive([&] { m_download->setPortName(isOutput, port, name); });
            });
}

void RouterSession::arrive(Awaited what, Outcome outcome)
{
    if (m_awaited != what || !m_loop)
        return;
    m_outcome = outcome;
    m_loop->quit();
}

// The first reason counts.
void RouterSession::breakOff(Outcome outcome)
{
    if (m_broken == Outcome::Ok)
        m_broken = outcome;
    if (outcome != Outcome::Stopped)
        m_isConnected = false;
    if (m_loop)
        m_loop->quit();
}

void RouterSession::stop()
{
    breakOff(Outcome::Stopped);
}

void RouterSession::resume()
{
    arrive(Awaited::Resumption);
}

// `milliseconds` of 0 is no limit.
RouterSession::Outcome RouterSession::wait(Awaited awaited, int milliseconds, Outcome atTimeOut)
{
    if (m_broken != Outcome::Ok)
        return m_broken;
    QEventLoop loop;
    const auto onLimit = connect(&m_limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    m_loop = &loop;
    m_awaited = awaited;
    m_outcome = atTimeOut;
    m_limit.setInterval(milliseconds);
    if (milliseconds != Endless)
        m_limit.start();
    loop.exec();
    m_limit.stop();
    m_loop = nullptr;
    m_awaited = Awaited::Nothing;
    return m_broken != Outcome::Ok ? m_broken : m_outcome;
}

RouterSession::Outcome RouterSession::send(const QString &sentence)
{
    if (m_broken == Outcome::Ok && !m_link->sendSentence(sentence))
        breakOff(Outcome::Lost);
    return m_broken;
}

RouterSession::Outcome RouterSession::open(const QString &port)
{
    emit progress(QStringLiteral("Looking for the router"), 0);
    m_link->openPort(port);
    return wait(Awaited::Connection, Endless, Outcome::NoRouter);
}

RouterSession::Outcome RouterSession::download(RouterModel &model)
{
    *m_download = Download();
    for (int attempt = 0; attempt < DownloadAttempts && !m_download->isComplete(); ++attempt) {
        send(Commands::Download);
        const Outcome outcome = wait(Awaited::EndMark, DownloadSilence, Outcome::Incomplete);
        if (m_broken != Outcome::Ok)
            return outcome;
    }
    m_missing = m_download->missing();
    if (!m_download->isComplete())
        return Outcome::Incomplete;
    model = m_download->model();
    return Outcome::Ok;
}

// Sentence by sentence and not all at once, so that a stop doesn't have to wait for the rest.
RouterSession::Outcome RouterSession::upload(const RouterModel &model)
{
    const QStringList sentences = uploadSentences(model);
    int sent = 0;
    for (const QString &sentence : sentences) {
        emit progress(QStringLiteral("Sending the rules"), sent * Hundred / int(sentences.size()));
        send(sentence);
        const Outcome outcome = wait(Awaited::Nothing, SendInterval, Outcome::Ok);
        if (outcome != Outcome::Ok)
            return outcome;
        ++sent;
    }
    return Outcome::Ok;
}

RouterSession::Outcome RouterSession::saveToEeprom()
{
    emit progress(QStringLiteral("The router saves its rules"), 0);
    send(Commands::SaveToEeprom);
    return wait(Awaited::SaveResult, SaveLimit, Outcome::NoAnswer);
}

RouterSession::Outcome RouterSession::record(ViewCode view, int milliseconds,
                                             const std::function<bool(const QString &)> &take)
{
    m_view = view.byte();
    m_isShown = false;
    m_take = take;
    send(MakeViewSentence(m_view >> ViewNibble, m_view & ViewNibbleMask));
    Outcome outcome = wait(Awaited::View, ViewLimit, Outcome::NoAnswer);
    if (outcome == Outcome::Ok)
        outcome = wait(Awaited::Resumption, milliseconds, Outcome::Ok);
    m_take = nullptr;
    return outcome;
}

void RouterSession::takeLine(const QString &line)
{
    if (!m_take || !m_isShown)
        return;
    QString text = line;
    while (text.endsWith(QLatin1Char('\n')) || text.endsWith(QLatin1Char('\r')))
        text.chop(1);
    if (!m_take(text))
        resume();
}

RouterSession::Outcome RouterSession::hold()
{
    return wait(Awaited::Resumption, Endless, Outcome::Ok);
}

void RouterSession::close()
{
    if (m_isConnected && m_link->sendSentence(Commands::Disconnect)) {
        QEventLoop loop;
        connect(m_link.get(), &NmeaSerialPort::signalVRSendDisconnect, &loop, &QEventLoop::quit);
        connect(m_link.get(), &NmeaSerialPort::signalVRTimeOutConnect, &loop, &QEventLoop::quit);
        QTimer::singleShot(DisconnectLimit, &loop, &QEventLoop::quit);
        loop.exec();
    }
    m_isConnected = false;
    m_link->closePort();
}

#include "routerhost.h"

using namespace tk7sim;

namespace {

constexpr int saveDuration = 150;   // ms
constexpr int flashDuration = 50;   // ms
constexpr int rebootDuration = 800; // ms
// A connection that the tool has left without a word keeps the router at 115200 baud that long.
constexpr int silenceLimit = 5000; // ms

// The codes of the sentences that carry the configuration.
bool isConfigLine(const QByteArray &line)
{
    static const char *const codes[] = {"RUL", "FLT", "HDC", "FLS", "PNM", "SPD"};
    return std::any_of(std::begin(codes), std::end(codes), [&line](const char *code) {
        return line.startsWith(QByteArray(QByteArray("$VR") + code + ','));
    });
}

} // namespace

RouterHost::RouterHost(quint32 seed)
{
    router.setSeed(seed);
    router.setSaveDuration(saveDuration);
    router.setFlashDuration(flashDuration);
    router.setRebootDuration(rebootDuration);
    router.setSilenceLimit(silenceLimit);
    router.setVersion(4, 0);
    connect(&router, &RouterSimulator::lineReceived, this, &RouterHost::hear);
    connect(&router, &RouterSimulator::lineSent, this, &RouterHost::speak);
    for (const auto &signal :
         {&RouterSimulator::connectedChanged, &RouterSimulator::pluggedChanged})
        connect(&router, signal, this, &RouterHost::countLoss);
    connect(&router, &RouterSimulator::rebooting, this, &RouterHost::countLoss);
}

bool RouterHost::isDeaf() const
{
    return router.hasFault(Fault::Silent) || router.hasFault(Fault::SilentAfter)
        || router.isRebooting();
}

// Faults with which a configuration doesn't reach the tool whole.
bool RouterHost::isSpoilt() const
{
    return isDeaf() || router.hasFault(Fault::WrongChecksums) || router.hasFault(Fault::Noise);
}

void RouterHost::setFault(Fault fault, double value)
{
    router.setFault(fault, value);
    const bool isSilence = fault == Fault::Silent || fault == Fault::SilentAfter;
    if (isSilence || (m_isDownloading && isSpoilt()))
        ++m_losses;
}

// Before the router acts on the line: what it made of the last one shows now.
void RouterHost::hear(const QByteArray &line)
{
    look();
    m_lastLine = line;
    m_lastHeard = RouterSimulator::now();
    if (isDeaf()) {
        ++m_losses;
        return;
    }
    if (line == "$VRRLD\r\n") {
        m_isDownloading = !isSpoilt();
        m_lossesAtDownload = m_losses;
    }
    if (line.startsWith("$VRRUL,0,B,"))
        m_lossesAtUpload = m_losses;
    if (line.startsWith("$VRPNM,I,6,") && m_lossesAtUpload == m_losses)
        ++m_uploads;
}

void RouterHost::speak(const QByteArray &line)
{
    if (line.startsWith("$VR") && !line.startsWith("$VRAI"))
        m_lastSpoken = RouterSimulator::now();
    if (!m_isDownloading)
        return;
    if (isSpoilt()) {
        m_isDownloading = false;
    } else if (line == "$VRWBL\r\n") {
        m_isDownloading = false;
        m_downloads += m_lossesAtDownload == m_losses ? 1 : 0;
    }
}

// Takes note of what the counters of the line tell.
void RouterHost::look()
{
    const Counters counters = router.counters();
    const quint64 lost = counters.lostBytes + counters.garbageBytes;
    if (lost != m_lostBytes)
        ++m_losses;
    m_lostBytes = lost;
    const quint64 refused = counters.refusedSentences + counters.checksumErrors;
    if (refused != m_refusedLines && isConfigLine(m_lastLine))
        m_refused = m_lastLine;
    m_refusedLines = refused;
    constexpr int enough = 1000;
    if (router.transcript().size() > enough)
        router.clearTranscript();
}

RouterState RouterHost::state()
{
    look();
    RouterState state;
    state.working = router.working();
    state.portName = router.portName();
    state.isPlugged = router.isPlugged();
    state.isConnected = router.isConnected();
    state.handshakes = router.handshakes();
    state.losses = m_losses;
    state.downloads = m_downloads;
    state.uploads = m_uploads;
    state.downloadLosses = m_lossesAtDownload;
    state.refused = m_refused;
    state.now = RouterSimulator::now();
    state.lastHeard = m_lastHeard;
    state.lastSpoken = m_lastSpoken;
    m_refused.clear();
    return state;
}

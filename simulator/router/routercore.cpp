#include "simulator/router/routercore.h"

#include "simulator/router/portstatistics.h"

#include <algorithm>
#include <iterator>

namespace tk7sim {

namespace {

constexpr int defaultStartSpeed = 4800;
constexpr int defaultSilenceLimit = 10000; // milliseconds
constexpr int defaultSaveDuration = 300;   // milliseconds

} // namespace

// What the router understands once a tool is connected. Before that it only knows the query for a
// connection.
const RouterCore::Handler RouterCore::handlers[] = {
    {"CNT", SentenceForm::Bare, &RouterCore::handleQuery},
    {"CNC", SentenceForm::Bare, &RouterCore::handleWatch},
    {"DCN", SentenceForm::Bare, &RouterCore::handleDisconnect},
    {"RLD", SentenceForm::Bare, &RouterCore::handleDownload},
    {"VER", SentenceForm::Bare, &RouterCore::handleVersion},
    {"RUL", SentenceForm::Checked, &RouterCore::handleConfig},
    {"FLT", SentenceForm::Checked, &RouterCore::handleConfig},
    {"HDC", SentenceForm::Checked, &RouterCore::handleConfig},
    {"FLS", SentenceForm::Checked, &RouterCore::handleConfig},
    {"PNM", SentenceForm::Checked, &RouterCore::handleConfig},
    {"SPD", SentenceForm::Checked, &RouterCore::handleConfig},
    {"WBL", SentenceForm::Bare, &RouterCore::handleBatchEnd},
    {"SVR", SentenceForm::Bare, &RouterCore::handleSave},
    {"VVW", SentenceForm::Plain, &RouterCore::handleView},
    {"SER", SentenceForm::Bare, &RouterCore::handleChipId},
    {"STA", SentenceForm::Checked, &RouterCore::handleStatistics},
    {"STC", SentenceForm::Bare, &RouterCore::handleClearStatistics},
    {"ATM", SentenceForm::Plain, &RouterCore::handleAisTest},
    {"MOD", SentenceForm::Checked, &RouterCore::handleMode},
    {"PWS", SentenceForm::Checked, &RouterCore::handleSetPassword},
    {"PWU", SentenceForm::Checked, &RouterCore::handleUnlock},
    {"PWD", SentenceForm::Bare, &RouterCore::handleRemovePassword},
    {"PWV", SentenceForm::Bare, &RouterCore::handleViewPassword},
    {"LGO", SentenceForm::Bare, &RouterCore::handleLock},
    {"FWS", SentenceForm::Bare, &RouterCore::handleFirmwareStart},
    {"FWP", SentenceForm::Checked, &RouterCore::handleFirmwarePacket},
    {"FWF", SentenceForm::Bare, &RouterCore::handleFirmwareEnd},
    {"FWW", SentenceForm::Bare, &RouterCore::handleFirmwareUse},
};

RouterCore::RouterCore(const FaultSet *faults, QObject *parent)
    : QObject(parent), m_faults(faults), m_startSpeed(defaultStartSpeed), m_speed(m_startSpeed),
      m_firmware(faults, this), m_silenceTimer(this), m_saveTimer(this), m_rebootTimer(this)
{
    m_silenceTimer.setSingleShot(true);
    m_silenceTimer.setTimerType(Qt::PreciseTimer);
    m_silenceTimer.setInterval(defaultSilenceLimit);
    connect(&m_silenceTimer, &QTimer::timeout, this, &RouterCore::endConnection);
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(defaultSaveDuration);
    connect(&m_saveTimer, &QTimer::timeout, this, &RouterCore::slotSaveDone);
    m_rebootTimer.setSingleShot(true);
    m_rebootTimer.setInterval(defaultRebootDuration);
    connect(&m_rebootTimer, &QTimer::timeout, this, &RouterCore::slotRebootDone);
    connect(&m_firmware, &FirmwareUpdate::said, this, &RouterCore::say);
}

void RouterCore::hear(const QByteArray &line)
{
    if (m_silenceTimer.isActive()) {
        m_silenceTimer.start();
    }
    const auto sentence = parseSentence(line);
    if (!sentence) {
        ++m_complaints.unknownSentences;
        return;
    }
    if (sentence->form == SentenceForm::WrongChecksum) {
        hearSpoilt(*sentence);
        return;
    }
    dispatch(*sentence);
}

void RouterCore::hearSpoilt(const Sentence &sentence)
{
    ++m_complaints.checksumErrors;
    if (m_statistics) {
        m_statistics->countChecksumError(m_status.controlPort);
    }
    if (sentence.code == "FWP") {
        m_firmware.takeSpoiltPacket();
    }
}

void RouterCore::dispatch(const Sentence &sentence)
{
    const auto *handler =
        std::find_if(std::begin(handlers), std::end(handlers), [&](const Handler &h) {
            return sentence.code == h.code && sentence.form == h.form;
        });
    const bool isHeard = m_connected && !m_isGivenAway;
    const bool isKnown =
        handler != std::end(handlers) && (isHeard || handler->function == &RouterCore::handleQuery);
    if (!isKnown) {
        ++m_complaints.unknownSentences;
        return;
    }
    (this->*handler->function)(sentence);
}

void RouterCore::moveTo(int baud)
{
    setSpeed(baud);
    if (silenceLimit() > 0) {
        m_silenceTimer.start();
    }
    if (m_isGivenAway) {
        endConnection();
    } else if (m_isAnswering) {
        m_isAnswering = false;
        ++m_handshakes;
        setConnected(true);
    }
}

void RouterCore::giveAway()
{
    m_isGivenAway = true;
    if (m_connected) {
        const int nextSpeed = m_returnsToStartSpeed ? m_startSpeed : m_speed;
        emit answered({"$VRCNB", SentenceForm::Bare, false, nextSpeed});
    }
}

void RouterCore::endConnection()
{
    m_silenceTimer.stop();
    if (m_saveTimer.isActive()) {
        // A write that has begun is finished, though nobody hears how it went.
        m_saveTimer.stop();
        finishSave();
    }
    m_batch.clear();
    if (m_working != m_eeprom) {
        m_working = m_eeprom;
        emit configurationChanged();
    }
    setView(viewNothing);
    setAisTest(false);
    m_firmware.abort();
    if (m_lock.lock()) {
        emit lockChanged();
    }
    m_isAnswering = false;
    if (m_returnsToStartSpeed) {
        setSpeed(m_startSpeed);
    }
    emit ended();
    setConnected(false);
}

void RouterCore::restart()
{
    m_saveTimer.stop();
    endConnection();
    setSpeed(m_startSpeed);
}

void RouterCore::setSpeed(int baud)
{
    if (baud != m_speed) {
        m_speed = baud;
        emit speedChanged(m_speed);
    }
}

void RouterCore::setStartSpeed(int baud)
{
    m_startSpeed = baud;
    if (!m_connected) {
        setSpeed(baud);
    }
}

void RouterCore::setSilenceLimit(int milliseconds)
{
    m_silenceTimer.setInterval(milliseconds);
    if (milliseconds <= 0) {
        m_silenceTimer.stop();
    } else if (m_connected || m_speed != m_startSpeed) {
        m_silenceTimer.start();
    }
}

bool RouterCore::setEepromFile(const EepromFile &file)
{
    m_eepromFile = file;
    if (!m_eepromFile.exists()) {
        return true;
    }
    const auto contents = m_eepromFile.load();
    m_eeprom = contents ? contents->config : RouterConfig::factory();
    m_working = m_eeprom;
    const QByteArray password = contents ? contents->lockPassword : QByteArray();
    m_lock.set(!password.isEmpty(), 0, password);
    return contents.has_value();
}

// Any speed gets an answer; only the answer at 115200 baud makes a connection.
void RouterCore::handleQuery(const Sentence & /*sentence*/)
{
    if (m_faults->has(Fault::Busy) || m_isGivenAway) {
        say("$VRCNB", SentenceForm::Bare);
        return;
    }
    if (m_speed == fastSpeed && m_faults->has(Fault::NoSecondAnswer)) {
        return;
    }
    const QByteArray body = "$VRCNU," + QByteArray::number(m_status.controlPort);
    m_isAnswering = m_speed == fastSpeed;
    emit answered({body, SentenceForm::Checked, false, fastSpeed});
}

// The sign of life is the error report: the tool can hear it any number of times. A lock status
// would say to it that a password was wrong.
void RouterCore::handleWatch(const Sentence & /*sentence*/)
{
    say(m_status.errorBody());
}

void RouterCore::handleDisconnect(const Sentence & /*sentence*/)
{
    endConnection();
}

void RouterCore::handleDownload(const Sentence & /*sentence*/)
{
    const auto bodies = configBodies(m_working);
    for (const QByteArray &body : bodies) {
        sayBulk(body);
    }
    sayBulk(viewBody(), SentenceForm::Plain);
    sayBulk("$VRMOD," + m_status.mode);
    sayBulk(m_status.errorBody());
    sayBulk("$VRFBK," + QByteArray::number(m_status.flashBank));
    sayBulk(lockBody());
    sayBulk("$VRWBL", SentenceForm::Bare);
}

void RouterCore::handleVersion(const Sentence & /*sentence*/)
{
    say("$VRVER," + m_status.version());
}

void RouterCore::handleConfig(const Sentence &sentence)
{
    const auto change = parseConfigSentence(sentence);
    if (!change) {
        refuse();
        return;
    }
    if (change->batch) {
        m_batch.insert(change->place, *change);
        return;
    }
    change->apply(m_working);
    emit configurationChanged();
}

void RouterCore::handleBatchEnd(const Sentence & /*sentence*/)
{
    if (m_batch.isEmpty()) {
        return;
    }
    for (const ConfigChange &change : qAsConst(m_batch)) {
        change.apply(m_working);
    }
    m_batch.clear();
    emit configurationChanged();
}

void RouterCore::handleSave(const Sentence & /*sentence*/)
{
    if (m_saveTimer.isActive()) {
        return; // one write at a time, with one answer
    }
    m_saving = m_working;
    m_saveTimer.start();
}

void RouterCore::handleView(const Sentence &sentence)
{
    const auto code = sentence.fields.size() == 1
        ? parseDecimal(sentence.fields.constFirst(), viewNothing)
        : std::nullopt;
    if (!code || !isViewCode(*code)) {
        refuse();
        return;
    }
    setView(*code);
    say(viewBody(), SentenceForm::Plain);
}

void RouterCore::slotSaveDone()
{
    finishSave();
}

void RouterCore::finishSave()
{
    const bool ok = !isLocked() && store(m_saving, m_lock.password());
    if (ok) {
        m_eeprom = m_saving;
    }
    say(ok ? "$VRSRO" : "$VRSRE", SentenceForm::Bare);
    emit saved(ok);
}

bool RouterCore::store(const RouterConfig &config, const QByteArray &password)
{
    if (m_faults->has(Fault::SaveError)) {
        return false;
    }
    const bool ok = m_eepromFile.save({config, password});
    if (!ok) {
        emit message(m_eepromFile.errorString());
    }
    return ok;
}

void RouterCore::setConnected(bool connected)
{
    if (connected == m_connected) {
        return;
    }
    m_connected = connected;
    emit connectedChanged(m_connected);
}

void RouterCore::setView(int viewCode)
{
    if (viewCode == m_view) {
        return;
    }
    m_view = viewCode;
    emit viewChanged(m_view);
}

void RouterCore::say(const QByteArray &body, SentenceForm form)
{
    emit answered({body, form, false, 0});
}

void RouterCore::sayBulk(const QByteArray &body, SentenceForm form)
{
    emit answered({body, form, true, 0});
}

QByteArray RouterCore::viewBody() const
{
    return "$VRVVW," + QByteArray::number(m_view);
}

} // namespace tk7sim

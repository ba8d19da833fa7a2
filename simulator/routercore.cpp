#include "simulator/routercore.h"

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
};

RouterCore::RouterCore(const FaultSet *faults, QObject *parent)
    : QObject(parent), m_faults(faults), m_startSpeed(defaultStartSpeed), m_speed(m_startSpeed),
      m_silenceTimer(this), m_saveTimer(this)
{
    m_silenceTimer.setSingleShot(true);
    m_silenceTimer.setTimerType(Qt::PreciseTimer);
    m_silenceTimer.setInterval(defaultSilenceLimit);
    connect(&m_silenceTimer, &QTimer::timeout, this, &RouterCore::endConnection);
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(defaultSaveDuration);
    connect(&m_saveTimer, &QTimer::timeout, this, &RouterCore::slotSaveDone);
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
        ++m_complaints.checksumErrors;
        return;
    }
    dispatch(*sentence);
}

void RouterCore::dispatch(const Sentence &sentence)
{
    const auto *handler =
        std::find_if(std::begin(handlers), std::end(handlers), [&](const Handler &h) {
            return sentence.code == h.code && sentence.form == h.form;
        });
    const bool isKnown = handler != std::end(handlers)
        && (m_connected || handler->function == &RouterCore::handleQuery);
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
    if (m_isAnswering) {
        m_isAnswering = false;
        ++m_handshakes;
        setConnected(true);
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
    const auto config = m_eepromFile.load();
    m_eeprom = config.value_or(RouterConfig::factory());
    m_working = m_eeprom;
    return config.has_value();
}

// Any speed gets an answer; only the answer at 115200 baud makes a connection.
void RouterCore::handleQuery(const Sentence & /*sentence*/)
{
    if (m_faults->has(Fault::Busy)) {
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
    say(errorBody());
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
    sayBulk(errorBody());
    sayBulk("$VRFBK," + QByteArray::number(m_status.flashBank));
    sayBulk(lockBody());
    sayBulk("$VRWBL", SentenceForm::Bare);
}

void RouterCore::handleVersion(const Sentence & /*sentence*/)
{
    say("$VRVER," + QByteArray::number(m_status.versionMajor) + '.'
        + QByteArray::number(m_status.versionMinor));
}

void RouterCore::handleConfig(const Sentence &sentence)
{
    const auto change = parseConfigSentence(sentence);
    if (!change) {
        ++m_complaints.refusedSentences;
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
        ++m_complaints.refusedSentences;
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
    bool ok = !m_faults->has(Fault::SaveError) && !isLocked();
    if (ok && !m_eepromFile.save(m_saving)) {
        emit message(m_eepromFile.errorString());
        ok = false;
    }
    if (ok) {
        m_eeprom = m_saving;
    }
    say(ok ? "$VRSRO" : "$VRSRE", SentenceForm::Bare);
    emit saved(ok);
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

bool RouterCore::isLocked() const
{
    return m_faults->has(Fault::Locked) || (m_status.lockEnabled && m_status.lockLevel == 0);
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

QByteArray RouterCore::errorBody() const
{
    constexpr int codeDigits = 4;
    constexpr int faultDigits = 2;
    return "$VRERR," + hex(m_status.errorCode, codeDigits) + ','
        + hex(m_status.errorFault, faultDigits);
}

QByteArray RouterCore::lockBody() const
{
    if (m_faults->has(Fault::Locked)) {
        return "$VRLCK,1,0";
    }
    return QByteArray("$VRLCK,") + (m_status.lockEnabled ? '1' : '0') + ','
        + QByteArray::number(m_status.lockLevel);
}

} // namespace tk7sim

#include "agreement.h"

#include <algorithm>

using namespace tk7sim;

static_assert(Agreement::nameCount == portCount + portCount, "every port has two names");

namespace {

// Without a line for that long, the queue of the tool is empty: it sends one every 25 ms.
constexpr qint64 quietTime = 500000; // microseconds
constexpr int quietChecks = 10;      // each in a turn of the event loop of its own

QString place(int output, int channel, const char *what)
{
    return QStringLiteral("output %1, channel %2: %3")
        .arg(output)
        .arg(channel)
        .arg(QLatin1String(what));
}

// The first field in which the two channels differ; null if none.
const char *channelDifference(const ChannelRecord &tool, const Channel &router)
{
    if (tool.main_input != router.mainInput || tool.reserve_input != router.reserveInput)
        return "inputs";
    if (tool.filter_enabled != router.filterEnabled)
        return "filter";
    if (int(tool.filter_type) != int(router.filterType))
        return "filter type";
    if (tool.filter_enabled && tool.filter_mask != router.filterMask)
        return "filter mask";
    if (tool.crs_enabled != router.crsEnabled)
        return "checksum test";
    if (tool.hdr_enabled != router.hdrEnabled)
        return "header";
    if (tool.hdr_enabled && tool.hdr != QString::fromLatin1(router.hdr))
        return "header text";
    if (tool.smart_function != router.smart)
        return "smart function";
    return nullptr;
}

} // namespace

void Agreement::connectionBegun()
{
    m_isDownloading = true;
    m_isMixed = false;
    m_isJudging = false;
}

void Agreement::edited()
{
    if (m_isDownloading)
        m_isMixed = true;
}

void Agreement::downloaded(const RouterModel &model, const RouterState &router)
{
    const bool isWhole = router.downloads != m_downloads;
    m_downloads = router.downloads;
    m_isJudging = false;
    if (!m_isDownloading)
        return; // an end mark of nothing
    m_isDownloading = false;
    if (!isWhole || m_isMixed)
        return;
    m_isHostile = false;
    m_names = namesOf(model);
    if (isPlain(router.working))
        beginJudging(router.downloadLosses);
}

void Agreement::uploadQueued(const RouterModel &model, const RouterState &router)
{
    m_names = namesOf(model);
    m_lossesAtQueue = router.losses;
    m_isUploadMixed = m_isDownloading;
}

void Agreement::fileLoaded(bool isGood)
{
    if (m_isDownloading)
        m_isMixed = true;
    m_isHostile = !isGood;
    m_isJudging = m_isJudging && isGood;
}

// From a moment on at which \a losses had been counted; there may be more by now.
void Agreement::beginJudging(quint64 losses)
{
    m_isJudging = true;
    m_losses = losses;
    m_differentSince = 0;
}

QString Agreement::check(const RouterModel &model, const RouterState &router)
{
    const bool isUploaded = router.uploads != m_uploads;
    m_uploads = router.uploads;
    m_isJudging = m_isJudging && router.losses == m_losses;
    const bool isFit = !m_isDownloading && !m_isUploadMixed && !m_isHostile;
    if (isUploaded && !m_isJudging && isFit && router.isConnected)
        beginJudging(m_lossesAtQueue);
    m_isJudging = m_isJudging && router.losses == m_losses;
    if (!m_isJudging) {
        m_abstentions += router.isConnected ? 1 : 0;
        return QString();
    }
    m_difference = difference(model, m_names, router.working);
    if (m_difference.isEmpty()) {
        m_differentSince = 0;
        ++m_agreements;
        return QString();
    }
    if (m_differentSince == 0)
        m_differentSince = router.now;
    // The checks are counted as well: behind a stall of the machine much time has passed, and
    // nobody has had a turn.
    const bool isQuiet = router.lastHeard == m_lastHeard;
    m_lastHeard = router.lastHeard;
    m_quietChecks = isQuiet ? m_quietChecks + 1 : 0;
    const qint64 quiet = router.now - std::max(m_differentSince, router.lastHeard);
    return quiet > quietTime && m_quietChecks > quietChecks ? m_difference : QString();
}

bool Agreement::needsQuiet(const RouterState &router) const
{
    constexpr qint64 patience = 120000; // microseconds
    return m_isJudging && m_differentSince != 0 && router.now - m_differentSince > patience;
}

QString Agreement::difference(const RouterModel &model, const Names &names,
                              const RouterConfig &config)
{
    for (size_t output = 0; output < portCount; ++output) {
        for (size_t channel = 0; channel < channelCount; ++channel) {
            const char *what = channelDifference(model.output_ports[output].channels[channel],
                                                 config.outputs[output].channels[channel]);
            if (what)
                return place(int(output), int(channel), what);
        }
        if (model.output_ports[output].speed != config.speeds[output])
            return QStringLiteral("speed of port %1").arg(output);
        if (names[output] != QString::fromLatin1(config.outputNames[output]))
            return QStringLiteral("name of output %1").arg(output);
        if (names[portCount + output] != QString::fromLatin1(config.inputNames[output]))
            return QStringLiteral("name of input %1").arg(output);
    }
    for (int slot = 0; slot < filterSlotCount; ++slot) {
        const bool isTaken = model.filter_list_mask >> slot & 1;
        const QString name = isTaken ? model.filter_list[size_t(slot)] : QString();
        if (name != QString::fromLatin1(config.filterList[size_t(slot)]))
            return QStringLiteral("sentence name %1").arg(slot);
    }
    return QString();
}

Agreement::Names Agreement::namesOf(const RouterModel &model)
{
    Names names;
    for (size_t port = 0; port < portCount; ++port) {
        names[port] = model.output_ports[port].output_name;
        names[portCount + port] = model.input_ports[port].input_name;
    }
    return names;
}

// A file can bring texts into the router that come back as other characters.
bool Agreement::isPlain(const RouterConfig &config)
{
    const auto isAscii = [](const QByteArray &text) {
        return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    };
    bool isAll = std::all_of(config.inputNames.begin(), config.inputNames.end(), isAscii)
        && std::all_of(config.outputNames.begin(), config.outputNames.end(), isAscii)
        && std::all_of(config.filterList.begin(), config.filterList.end(), isAscii);
    for (const Output &output : config.outputs) {
        for (const Channel &channel : output.channels)
            isAll = isAll && isAscii(channel.hdr);
    }
    return isAll;
}

#include "linkjournal.h"

namespace {

QString asText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString asText(quint8 value)
{
    return QString::number(value);
}

QString asText(int value)
{
    return QString::number(value);
}

QString asText(quint32 value)
{
    return QString::number(value);
}

QString asText(const QString &value)
{
    return LinkJournal::quoted(value);
}

QString asText(const QByteArray *value)
{
    return QString::fromLatin1(value->toHex());
}

} // namespace

template <typename... Args>
void LinkJournal::watch(NmeaSerialPort *link, const char *name,
                        void (NmeaSerialPort::*signal)(Args...))
{
    connect(link, signal, this, [this, name](Args... args) {
        const QStringList values{asText(args)...};
        note(QLatin1String(name) + QLatin1Char('(') + values.join(QLatin1String(", "))
             + QLatin1Char(')'));
    });
}

LinkJournal::LinkJournal(NmeaSerialPort *link, RawLines rawLines)
{
    m_clock.start();
    using Link = NmeaSerialPort;
    if (rawLines == WithRawLines)
        watch(link, "VRNMEA_receive", &Link::signalVRNMEA_receive);
    watch(link, "ErrorOpenPort", &Link::signalErrorOpenPort);
    watch(link, "ErrorWritePort", &Link::signalErrorWritePort);
    watch(link, "NMEA_receive", &Link::signalNMEA_receive);
    watch(link, "VRConnect", &Link::signalVRConnect);
    watch(link, "VRTimeOutConnect", &Link::signalVRTimeOutConnect);
    watch(link, "VRBusy", &Link::signalVRBusy);
    watch(link, "VRTimeOutConfirm", &Link::signalVRTimeOutConfirm);
    watch(link, "VRNewRule", &Link::signalVRNewRule);
    watch(link, "VRNewFilterMask", &Link::signalVRNewFilterMask);
    watch(link, "VRNewHdr", &Link::signalVRNewHdr);
    watch(link, "VRNewFilterStr", &Link::signalVRNewFilterStr);
    watch(link, "VRNewPortSpeed", &Link::signalVRNewPortSpeed);
    watch(link, "VRUpdateVRData", &Link::signalVRUpdateVRData);
    watch(link, "VRConnectionProgress", &Link::signalVRConnectionProgress);
    watch(link, "VRCloseProgress", &Link::signalVRCloseProgress);
    watch(link, "VRPortView", &Link::signalVRPortView);
    watch(link, "VRNewPortName", &Link::signalVRNewPortName);
    watch(link, "VRSaveEepromOk", &Link::signalVRSaveEepromOk);
    watch(link, "VRSaveEepromError", &Link::signalVRSaveEepromError);
    watch(link, "VRSendDisconnect", &Link::signalVRSendDisconnect);
    watch(link, "VRVersion", &Link::signalVRVersion);
    watch(link, "VRErrorsCode", &Link::signalVRErrorsCode);
    watch(link, "VRMode", &Link::signalVRMode);
    watch(link, "VRFwPacket", &Link::signalVRFwPacket);
    watch(link, "VRReadyFirmwareUpdate", &Link::signalVRReadyFirmwareUpdate);
    watch(link, "VRFwError", &Link::signalVRFwError);
    watch(link, "VRFwOk", &Link::signalVRFwOk);
    watch(link, "VRStatusErrors", &Link::signalVRStatusErrors);
    watch(link, "VRSerial", &Link::signalVRSerial);
    watch(link, "VRSetPasswordAnswer", &Link::signalVRSetPasswordAnswer);
    watch(link, "VRLockStatus", &Link::signalVRLockStatus);
    watch(link, "VRSendPassword", &Link::signalVRSendPassword);
    watch(link, "CommandCRSError", &Link::signalCommandCRSError);
    watch(link, "VRUsedFlashBank", &Link::signalVRUsedFlashBank);
    watch(link, "VRAISMessage", &Link::signalVRAISMessage);
    watch(link, "VRAISPosition", &Link::signalVRAISPosition);
}

void LinkJournal::note(const QString &text)
{
    m_entries.append({text, m_clock.elapsed()});
    emit noted(text);
}

QStringList LinkJournal::texts() const
{
    QStringList all;
    for (const Entry &entry : m_entries)
        all += entry.text;
    return all;
}

int LinkJournal::count(const QString &text) const
{
    int found = 0;
    for (const Entry &entry : m_entries)
        found += entry.text == text ? 1 : 0;
    return found;
}

qint64 LinkJournal::timeOf(const QString &text) const
{
    for (const Entry &entry : m_entries) {
        if (entry.text == text)
            return entry.ms;
    }
    return -1;
}

QString LinkJournal::quoted(const QString &text)
{
    QString shown = text;
    shown.replace(QLatin1Char('\r'), QLatin1String("\\r"));
    shown.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

#include "screencheck.h"

#include "editors/letters.h"

#include <QComboBox>

namespace {

QString expectedRow(const ChannelRecord &channel)
{
    if (isEmpty(channel))
        return QStringLiteral("-------\"\"");
    return QStringLiteral("F%1C%2H%3S\"%4\"%5")
        .arg(channel.filter_enabled ? QStringLiteral("+s") : QStringLiteral("-"),
             channel.crs_enabled ? QStringLiteral("+") : QString(),
             channel.hdr_enabled ? QStringLiteral("+ts") : QStringLiteral("--"),
             channel.hdr_enabled ? channel.hdr : QString(),
             channel.smart_function == 0 ? QString() : QStringLiteral("!"));
}

// The code of the frame in which the label of input port \a port lies; -1 if two could have it.
int expectedPlace(int port, const OutputPortRecord &output)
{
    constexpr int mainCell = 16;
    constexpr int reserveCell = 32;
    constexpr int home = 48;
    int place = home + port;
    int count = 0;
    for (int c = 0; c < ChannelCount; ++c) {
        const ChannelRecord &channel = output.channels[size_t(c)];
        if (channel.main_input == port) {
            place = mainCell + c;
            ++count;
        }
        if (channel.reserve_input == port) {
            place = reserveCell + c;
            ++count;
        }
    }
    return count > 1 ? -1 : place;
}

} // namespace

ScreenCheck::ScreenCheck(const MainWindow &window) : m_window(window), m_matrix(window) { }

const OutputPortRecord &ScreenCheck::shown() const
{
    return m_window.routerModel().output_ports[size_t(m_output)];
}

void ScreenCheck::drawnAnew()
{
    m_isStale = false;
    m_hasLooseLabels = false;
}

// "< OUTPUT PORT 3 >": the heading tells which output port is shown. Another one is drawn anew.
void ScreenCheck::readOutput()
{
    const auto *heading = m_window.findChild<QLabel *>(QStringLiteral("label_cur_ch_out"));
    const QString number = heading->text().section(QLatin1Char(' '), -2, -2);
    const int output = number.toInt();
    if (output != m_output)
        m_hasLooseLabels = false;
    m_output = output;
}

QString ScreenCheck::check()
{
    readOutput();
    QString problem = checkButtons();
    if (m_isStale)
        return problem;
    ++m_comparisons;
    if (problem.isEmpty())
        problem = checkRows();
    if (problem.isEmpty())
        problem = checkLabels();
    if (problem.isEmpty())
        problem = checkPorts();
    return problem;
}

QString ScreenCheck::checkButtons() const
{
    struct Row
    {
        const char *name;
        bool isEnabled;
    };
    const bool isConnected = m_window.isConnected();
    const Row rows[] = {
        {"comboBox_connect_port", !isConnected}, {"pushButton_rescan_ports", !isConnected},
        {"pushButton_SaveEEPROM", isConnected},  {"pushButton_SaveFile", true},
        {"pushButton_LoadFile", true},           {"pushButton_return_input", true},
    };
    for (const Row &row : rows) {
        const auto *widget = m_window.findChild<QWidget *>(QString::fromLatin1(row.name));
        if (!widget || widget->isEnabled() != row.isEnabled) {
            return QStringLiteral("%1 is %2 while %3")
                .arg(QLatin1String(row.name),
                     row.isEnabled ? QStringLiteral("disabled") : QStringLiteral("enabled"),
                     isConnected ? QStringLiteral("connected") : QStringLiteral("not connected"));
        }
    }
    const auto *connectButton =
        m_window.findChild<QPushButton *>(QStringLiteral("pushButton_connect"));
    const QString text = isConnected ? QStringLiteral("Disconnect") : QStringLiteral("Connect");
    if (connectButton->text() != text)
        return QStringLiteral("the button says \"%1\" in place of \"%2\"")
            .arg(connectButton->text(), text);
    return QString();
}

QString ScreenCheck::checkRows() const
{
    for (int channel = 0; channel < ChannelCount; ++channel) {
        // The first header field takes letters only, and shows them as capitals.
        const QString header = shown().channels[size_t(channel)].hdr;
        if (channel == 0 && !isLatinCapitals(header, HeaderLength))
            continue;
        const QString expected = expectedRow(shown().channels[size_t(channel)]);
        const QString found = m_matrix.row(channel);
        if (found != expected)
            return QStringLiteral("row %1 of output %2 is %3 in place of %4")
                .arg(channel)
                .arg(m_output)
                .arg(found, expected);
    }
    return QString();
}

// A label that could lie in two places may stay in either until the channels are drawn anew.
QString ScreenCheck::checkLabels()
{
    for (int port = 0; port < InputPortCount; ++port)
        m_hasLooseLabels = m_hasLooseLabels || expectedPlace(port, shown()) < 0;
    for (int port = 0; port < InputPortCount && !m_hasLooseLabels; ++port) {
        const int expected = expectedPlace(port, shown());
        const int found = m_matrix.placeOf(port);
        if (found != expected)
            return QStringLiteral("the label of input %1 lies in %2 in place of %3")
                .arg(port)
                .arg(found)
                .arg(expected);
    }
    return QString();
}

QString ScreenCheck::checkPorts() const
{
    for (int port = 0; port < OutputPortCount; ++port) {
        const OutputPortRecord &output = m_window.routerModel().output_ports[size_t(port)];
        const QString speed = QString::number(output.speed);
        const auto *box = m_matrix.widget<QComboBox>("comboBox_output_port_%1", port);
        if (box->currentText() != speed || m_matrix.speedLabel(port)->text() != speed)
            return QStringLiteral("the speed of port %1 is shown as %2 and %3 in place of %4")
                .arg(port)
                .arg(box->currentText(), m_matrix.speedLabel(port)->text(), speed);
        const QString name = output.output_name;
        const QString shownText = visibleText(m_matrix.outputButton(port));
        const QString expected = QStringLiteral("%1. %2").arg(port).arg(name);
        if (!name.isEmpty() && shownText != expected)
            return QStringLiteral("output %1 is called \"%2\" in place of \"%3\"")
                .arg(port)
                .arg(shownText, expected);
    }
    return QString();
}

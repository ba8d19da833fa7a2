#include "linkcheck.h"

#include "mainwindow/mainwindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

#include <algorithm>

namespace {

bool isEnabled(const MainWindow &window, const char *name)
{
    return window.findChild<QWidget *>(QString::fromLatin1(name))->isEnabled();
}

int searchDialogs(const MainWindow &window)
{
    int count = 0;
    for (const auto *dialog : window.findChildren<QProgressDialog *>())
        count += dialog->windowFlags().testFlag(Qt::Popup) && dialog->isVisible() ? 1 : 0;
    return count;
}

// The box that tells the end of a connection: some of its traces go only behind it.
bool isTellingTheEnd()
{
    const auto windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
        const auto *box = qobject_cast<const QMessageBox *>(window);
        return box && box->isVisible() && box->windowTitle() == QLatin1String("COM Port");
    });
}

} // namespace

// A row of the table: how the top bar is in this state.
struct LinkCheck::State
{
    const char *name;
    bool hasLink;
    bool hasDialog;
    bool canConnect;
    bool canChoose;
    bool canSave;
    const char *text;
};

LinkCheck::LinkCheck(const MainWindow &window) : m_window(window), m_foreignPorts(openPorts()) { }

// The router's side of the line is a master, which has no place among these.
int LinkCheck::openPorts()
{
    int count = 0;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    const auto links = folder.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &link : links) {
        const QString target = QFile::symLinkTarget(folder.filePath(link));
        count += target.startsWith(QLatin1String("/dev/pts/")) ? 1 : 0;
    }
    return count;
}

QString LinkCheck::check() const
{
    static constexpr State idle = {"idle", false, false, true, true, false, "Connect"};
    static constexpr State searching = {"searching", true, true, false, true, false, "Connect"};
    static constexpr State connected = {"connected", true, false, true, false, true, "Disconnect"};

    const bool hasLink = m_window.currentLink() != nullptr;
    const int ports = openPorts() - m_foreignPorts;
    if (ports < 0 || ports > (hasLink ? 1 : 0)) {
        return QStringLiteral("%1 ports are open %2 a link")
            .arg(ports)
            .arg(hasLink ? QStringLiteral("with") : QStringLiteral("without"));
    }
    if (isTellingTheEnd())
        return QString();
    const State &state = m_window.isConnected() ? connected : hasLink ? searching : idle;
    const auto *button = m_window.findChild<QPushButton *>(QStringLiteral("pushButton_connect"));
    const bool isListed =
        m_window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"))->count() != 0;
    const bool isAsTold = hasLink == state.hasLink
        && searchDialogs(m_window) == (state.hasDialog ? 1 : 0)
        && button->isEnabled() == (state.canConnect && (hasLink || isListed))
        && button->text() == QLatin1String(state.text)
        && isEnabled(m_window, "comboBox_connect_port") == state.canChoose
        && isEnabled(m_window, "pushButton_rescan_ports") == state.canChoose
        && isEnabled(m_window, "pushButton_SaveEEPROM") == state.canSave;
    if (isAsTold)
        return QString();
    return QStringLiteral("the top bar is not as it is when %1: link %2, dialogs %3, \"%4\" %5")
        .arg(QLatin1String(state.name))
        .arg(hasLink)
        .arg(searchDialogs(m_window))
        .arg(button->text(),
             button->isEnabled() ? QStringLiteral("enabled") : QStringLiteral("disabled"));
}

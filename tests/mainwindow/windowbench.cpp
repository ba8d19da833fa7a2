#include "windowbench.h"

#include <QComboBox>
#include <QPushButton>

WindowBench::WindowBench()
{
    router.setTrafficRate(0);
    if (!router.open())
        qFatal("no pseudo-terminal: %s", qPrintable(router.errorString()));
    window.show();
    selectRouterPort();
}

void WindowBench::selectRouterPort()
{
    auto *ports = find<QComboBox>(QStringLiteral("comboBox_connect_port"));
    const QString device = router.deviceName();
    if (ports->findText(device) < 0)
        ports->addItem(device);
    ports->setCurrentText(device);
    find<QPushButton>(QStringLiteral("pushButton_connect"))->setEnabled(true);
}

bool WindowBench::connectToRouter()
{
    constexpr int longestDownload = 10000; // ms
    const int before = boxes.answered();
    boxes.expect(downloadBox());
    find<QPushButton>(QStringLiteral("pushButton_connect"))->click();
    const bool done = QTest::qWaitFor([&] { return boxes.answered() > before; }, longestDownload);
    return done && window.isConnected();
}

BoxAnswer::Box WindowBench::downloadBox()
{
    return {QStringLiteral("TK-7 Router"),
            QStringLiteral("NMEA Router TK-7 connected\n   Download rules complete"),
            QMessageBox::Information};
}

BoxAnswer::Box WindowBench::linkBox(const QString &text)
{
    return {QStringLiteral("COM Port"), text, QMessageBox::Warning};
}

QList<QByteArray> WindowBench::heard() const
{
    QList<QByteArray> lines;
    for (const tk7sim::ReceivedLine &received : router.transcript()) {
        if (received.line != "$VRCNC\r\n")
            lines += received.line;
    }
    return lines;
}

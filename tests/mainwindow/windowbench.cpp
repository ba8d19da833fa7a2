#include "windowbench.h"

#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QProgressDialog>

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

BoxAnswer::Box WindowBench::timeoutBox()
{
    return linkBox(QStringLiteral("Connection timeout"));
}

BoxAnswer::Box WindowBench::busyBox()
{
    return linkBox(QStringLiteral("TK-7 Router Busy another Control programm"));
}

bool WindowBench::isSameIcon(const QPushButton *button, const QString &path)
{
    const QSize size(24, 24);
    return button->icon().pixmap(size).toImage() == QIcon(path).pixmap(size).toImage();
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

void WindowBench::verifyIdle() const
{
    QVERIFY(!window.currentLink());
    QVERIFY(!window.isConnected());
    QTRY_VERIFY(!window.findChild<QProgressDialog *>());
    const auto *button = find<QPushButton>("pushButton_connect");
    QCOMPARE(button->text(), QStringLiteral("Connect"));
    QVERIFY(button->isEnabled());
    QVERIFY(find<QComboBox>("comboBox_connect_port")->isEnabled());
    QVERIFY(find<QPushButton>("pushButton_rescan_ports")->isEnabled());
    QVERIFY(!find<QPushButton>("pushButton_SaveEEPROM")->isEnabled());
    for (const char *name :
         {"label_3", "label_vr48_status", "label_vr48_port", "label_firmware_version",
          "label_firmware_mode", "label_vr48_errors", "label_vr48_flash_page"}) {
        QVERIFY2(find<QLabel>(name)->text().isEmpty(), name);
    }
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

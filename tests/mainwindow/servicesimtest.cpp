#include "servicesimtest.h"

#include "platform/keyboard.h"
#include "service/servicedlg.h"

#include <QLabel>
#include <QTableWidget>

void ServiceSimTest::init()
{
    m_bench = std::make_unique<WindowBench>();
    m_files = std::make_unique<FileDialogAnswer>();
    m_bench->router.setVersion(4, 0);
    platform::setLeftControlSource([] { return true; });
}

void ServiceSimTest::cleanup()
{
    platform::setLeftControlSource({});
    m_files.reset();
    m_bench.reset();
}

bool ServiceSimTest::connectToRouter()
{
    const auto *label = m_bench->find<QLabel>("label_firmware_version");
    return m_bench->connectToRouter()
        && QTest::qWaitFor([label] { return !label->text().isEmpty(); });
}

bool ServiceSimTest::startUpdate(const QByteArray &image)
{
    const QString path = m_folder.filePath(QStringLiteral("new.efw"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(image) != image.size())
        return false;
    file.close();
    m_files->expect(FirmwareBench::chooser(path));
    m_bench->boxes.expect(FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::Yes));
    bool isClosed = false;
    const bool hasCome = inService([&](servicedlg &dialog) {
        button(dialog, "pushButton_Fw_Update")->click();
        isClosed = !dialog.isVisible();
    });
    return hasCome && isClosed;
}

void ServiceSimTest::verifyUpdateWorks(const QByteArray &image)
{
    QSignalSpy received(&m_bench->router, &tk7sim::RouterSimulator::firmwareReceived);
    // A whole poll: behind it the router has said its last word to an update before this one.
    QVERIFY(inService([](servicedlg &dialog) {
        QTRY_VERIFY(!dialog.findChild<QTableWidget *>()->item(11, 4)->text().isEmpty());
    }));
    QVERIFY(startUpdate(image));
    // Closed when the router has heard that it may use the firmware.
    BoxAnswer::Box success = FirmwareBench::successBox();
    success.click = QMessageBox::NoButton;
    success.whileOpen = [this](QMessageBox &open) {
        QTRY_VERIFY(m_bench->heard().endsWith("$VRFWW\r\n"));
        open.accept();
    };
    m_bench->boxes.expect(success);
    // Waits by an event loop of its own, and so at the pace of the line.
    QVERIFY(received.wait(60000));
    QTRY_VERIFY(!m_bench->window.isConnected());
    QVERIFY2(m_bench->boxes.isDone(), qPrintable(m_bench->boxes.report()));
    QCOMPARE(m_bench->router.firmwareImage(), image);
}

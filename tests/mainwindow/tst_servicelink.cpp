#include "firmwarebench.h"
#include "windowbench.h"

#include "link/nmeaserialport.h"
#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "support/aistestuser.h"
#include "support/checkedline.h"
#include "widgets/qclicklabel.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

/*!
 * The link ends while something of the service is open: all of it closes before the message comes,
 * nothing is used any more, and the next connection is as good as any.
 */
class tst_servicelink : public QObject
{
    Q_OBJECT

private slots:
    void endsWhileOpen_data();
    void endsWhileOpen();
    void cableIsPulledUnderTheService();
    void cableIsPulledInAnUpdate();
    void disconnectOvertakenByTheService();
};

namespace {

// A press that opens something, of the window, or of the dialog that is open by then. The last one
// is followed by the end of the link.
struct Step
{
    const char *opened; // the class of what is modal by then
    std::function<void(FirmwareBench &, QWidget &)> use;
};

struct Course
{
    int level; // of the lock; -1: no password
    QList<Step> steps;
    QList<BoxAnswer::Box> boxes;    // that are left open, or answered on the way
    QByteArray said = QByteArray(); // the last sentence of an update that is under way
};

} // namespace

Q_DECLARE_METATYPE(Course)

namespace {

void press(const QWidget &window, const char *name)
{
    window.findChild<QPushButton *>(QString::fromLatin1(name))->click();
}

std::function<void(FirmwareBench &, QWidget &)> pressing(const char *name)
{
    return [name](FirmwareBench &, QWidget &window) { press(window, name); };
}

void pressLabel(FirmwareBench &bench, QWidget &)
{
    QTest::mousePress(bench.find<QClickLabel>("label_lock"), Qt::LeftButton);
}

BoxAnswer::Box open(const QString &title, const QString &text, QMessageBox::Icon icon,
                    QMessageBox::StandardButtons buttons = QMessageBox::Ok)
{
    return {title, text, icon, buttons, QMessageBox::NoButton};
}

BoxAnswer::Box badPassword()
{
    return open(QStringLiteral("Password error"),
                QStringLiteral("The password can only contain numbers and Latin characters"),
                QMessageBox::Warning);
}

BoxAnswer::Box wrongPassword()
{
    return open(QStringLiteral("Unlock TK-7"), QStringLiteral("Wrong Unlock Password"),
                QMessageBox::Warning);
}

BoxAnswer::Box deleteQuestion()
{
    return open(QStringLiteral("Delete password"),
                QStringLiteral("Are you sure want to delete the password?"), QMessageBox::Warning,
                QMessageBox::Ok | QMessageBox::Cancel);
}

BoxAnswer::Box passwordSet()
{
    return open(QStringLiteral("Set lock password"),
                QStringLiteral("Lock password set successfully"), QMessageBox::Information);
}

// Plays a course: looks what is modal, and uses it when it is what the next step waits for.
class Player
{
public:
    Player(FirmwareBench &bench, const Course &course) : m_bench(bench), m_course(course) { }

    void start()
    {
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start(0);
    }

    bool isDone() const { return m_next > m_course.steps.size(); }

private:
    void look()
    {
        constexpr int interval = 5; // ms
        // Again first: what is used here runs an event loop.
        m_timer.start(interval);
        QWidget *modal = QApplication::activeModalWidget();
        if (isDone())
            return;
        if (m_next == m_course.steps.size()) {
            finish(modal);
            return;
        }
        if (modal && modal == m_used)
            return;
        const Step &step = m_course.steps.at(m_next);
        QWidget *used = *step.opened ? modal : &m_bench.window;
        if (!used || (*step.opened && (!used->inherits(step.opened) || !used->isVisible())))
            return;
        m_used = modal;
        ++m_next;
        step.use(m_bench, *used);
    }

    // Everything is open that is to be open.
    void finish(const QWidget *modal)
    {
        const bool isOpen = m_course.said.isEmpty()
            ? modal && modal != m_used && modal->isVisible()
            : m_bench.isUpdating() && m_bench.heard().contains(m_course.said);
        if (!isOpen || m_bench.boxes.answered() < 1 + m_course.boxes.size())
            return;
        ++m_next;
        m_bench.endLink();
    }

    FirmwareBench &m_bench;
    const Course &m_course;
    QTimer m_timer;
    QPointer<QWidget> m_used;
    int m_next = 0;
};

BoxAnswer::Box connectionTimeout()
{
    return WindowBench::timeoutBox();
}

void verifyAllIsClosed(const FirmwareBench &bench)
{
    QVERIFY(!bench.window.isConnected());
    QVERIFY(!bench.window.currentLink());
    QVERIFY(!QApplication::activeModalWidget());
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *widget : windows)
        QVERIFY2(!widget->isVisible() || widget == &bench.window,
                 widget->metaObject()->className());
    QCOMPARE(bench.window.findChildren<servicedlg *>().size(), 0);
    QCOMPARE(bench.window.findChildren<EnterPasswordDlg *>().size(), 0);
    QCOMPARE(bench.window.findChildren<QMessageBox *>().size(), 0);
    QTRY_VERIFY(!bench.progress());
}

void verifyWorksAgain(FirmwareBench &bench)
{
    bench.keepSilent();
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware();
    const QByteArray image = firmwareImage(70, 3);
    QVERIFY(bench.startUpdate(image));
    bench.boxes.expect(bench.success());
    QTRY_VERIFY(!bench.window.isConnected());
    QCOMPARE(bench.taken, image);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

} // namespace

void tst_servicelink::endsWhileOpen_data()
{
    QTest::addColumn<Course>("course");

    const Step service = {"", pressing("pushButton_Service")};
    const Step lock = {"servicedlg", pressing("pushButton_Lock")};
    const Step changePassword = {"servicedlg", pressing("pushButton_Change_Password")};
    const Step changeMode = {"servicedlg", pressing("pushButton_Change_Mode")};
    const Step loadFirmware = {"servicedlg", pressing("pushButton_Fw_Update")};
    const auto hear = [](const char *opened, const QByteArray &body) {
        return Step{opened, [body](FirmwareBench &bench, QWidget &) { bench.say(body); }};
    };
    const auto ok = [](const char *opened) { return Step{opened, pressing("pushButton_Ok")}; };
    const auto unequal = Step{"passwordDlg", [](FirmwareBench &, QWidget &dialog) {
                                  dialog.findChild<QLineEdit *>()->setText(QStringLiteral("x"));
                                  press(dialog, "pushButton_Ok");
                              }};

    QTest::newRow("service dialog") << Course{-1, {service}, {}};
    QTest::newRow("password dialog") << Course{-1, {service, lock}, {}};
    QTest::newRow("box of the password dialog")
        << Course{-1, {service, lock, ok("passwordDlg")}, {badPassword()}};
    QTest::newRow("box about unequal passwords")
        << Course{-1,
                  {service, lock, unequal},
                  {open(QStringLiteral("Password error"),
                        QStringLiteral("Confirm password does not match lock password"),
                        QMessageBox::Warning)}};
    QTest::newRow("changing the password") << Course{2, {service, changePassword}, {}};
    QTest::newRow("unlock dialog") << Course{0, {service, lock}, {}};
    QTest::newRow("box of the unlock dialog")
        << Course{0, {service, lock, ok("EnterPasswordDlg")}, {badPassword()}};
    QTest::newRow("question about deleting") << Course{2, {service, lock}, {deleteQuestion()}};
    QTest::newRow("box over the question about deleting") << Course{
        2, {service, lock, hear("QMessageBox", "$VRPWS,OK")}, {deleteQuestion(), passwordSet()}};
    QTest::newRow("wrong password in the service dialog")
        << Course{0, {service, hear("servicedlg", "$VRLCK,1,0")}, {wrongPassword()}};
    QTest::newRow("answer to setting a password")
        << Course{-1, {service, hear("servicedlg", "$VRPWS,OK")}, {passwordSet()}};
    QTest::newRow("password under view") << Course{
        5,
        {service, hear("servicedlg", "$VRPWV,Harbour7")},
        {open(QStringLiteral("Lock password"), QStringLiteral("Current Lock Password: Harbour7"),
              QMessageBox::Information)}};
    QTest::newRow("box over the unlock dialog")
        << Course{0, {service, lock, hear("EnterPasswordDlg", "$VRLCK,1,0")}, {wrongPassword()}};
    QTest::newRow("mode dialog") << Course{4, {service, changeMode}, {}};
    QTest::newRow("box of the mode dialog")
        << Course{4,
                  {service, changeMode, ok("modeDlg")},
                  {open(QStringLiteral("Mode error"),
                        QStringLiteral("The mode can only contain numbers and Latin characters"),
                        QMessageBox::Warning)}};
    QTest::newRow("file dialog") << Course{-1, {service, loadFirmware}, {}};

    const auto choose = [](const QByteArray &content) {
        return Step{
            "QFileDialog", [content](FirmwareBench &bench, QWidget &dialog) {
                const QString path = bench.writeFile(content);
                dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path);
                static_cast<QDialog &>(dialog).accept();
            }};
    };
    BoxAnswer::Box question = FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::NoButton);
    QTest::newRow("question about the firmware")
        << Course{-1, {service, loadFirmware, choose(firmwareImage(70))}, {question}};
    question.click = QMessageBox::Yes;
    Course update = {
        -1, {service, loadFirmware, choose(firmwareImage(70))}, {question}, "$VRFWS\r\n"};
    QTest::newRow("update, waiting") << update;
    const auto sayReady = [](FirmwareBench &bench, QWidget &) { bench.sayBare("$VRFWR"); };
    update.steps += Step{"QProgressDialog", sayReady};
    update.said = packetSentence(firmwareImage(70), 1);
    QTest::newRow("update, sending") << update;

    const auto sayError = [](FirmwareBench &bench, QWidget &) { bench.say("$VRFWE,3"); };
    const auto failed = FirmwareBench::failure(QStringLiteral("Error firmware update. code: 3"));
    update.said.clear();
    update.steps.last() = Step{"QProgressDialog", sayError};
    update.boxes += open(failed.title, failed.text, failed.icon);
    QTest::newRow("box of a failed update") << update;

    QTest::newRow("dialog of the lock label") << Course{0, {{"", pressLabel}}, {}};
    QTest::newRow("box over the dialog of the lock label")
        << Course{0, {{"", pressLabel}, ok("EnterPasswordDlg")}, {badPassword()}};
    QTest::newRow("status over the dialog of the lock label")
        << Course{0, {{"", pressLabel}, hear("EnterPasswordDlg", "$VRLCK,1,0")}, {wrongPassword()}};
    QTest::newRow("wrong password in the window")
        << Course{0, {hear("", "$VRLCK,1,0")}, {wrongPassword()}};
    QTest::newRow("wrong password twice")
        << Course{0,
                  {hear("", "$VRLCK,1,0"), hear("QMessageBox", "$VRLCK,1,0")},
                  {wrongPassword(), wrongPassword()}};
}

void tst_servicelink::endsWhileOpen()
{
    QFETCH(Course, course);
    FirmwareBench bench("4.0");
    bench.files.reset();
    QVERIFY(bench.connectToRouter());
    if (course.level >= 0) {
        bench.say("$VRLCK,1," + QByteArray::number(course.level));
        bench.waitUntilHeard();
    }
    for (const BoxAnswer::Box &box : qAsConst(course.boxes))
        bench.boxes.expect(box);
    bench.boxes.expect(connectionTimeout());
    {
        Player player(bench, course);
        player.start();
        QTRY_VERIFY2(player.isDone() && bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QTRY_VERIFY(!bench.window.currentLink());
    }
    verifyAllIsClosed(bench);
    bench.files = std::make_unique<FileDialogAnswer>();
    verifyWorksAgain(bench);
}

void tst_servicelink::cableIsPulledUnderTheService()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(connectionTimeout());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        const QPointer<servicedlg> guard(&dialog);
        bench.line.hangUp();
        QTRY_VERIFY_WITH_TIMEOUT(!guard, 8000);
    }));
    verifyAllIsClosed(bench);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// The watch is quicker than the watchdog of the update.
void tst_servicelink::cableIsPulledInAnUpdate()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware(5);
    QVERIFY(bench.startUpdate(firmwareImage(1000)));
    QTRY_COMPARE(bench.taken.size(), 5 * 32);
    bench.boxes.expect(connectionTimeout());
    bench.line.hangUp();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.isDone(), 8000);
    QTRY_VERIFY(!bench.window.currentLink());
    verifyAllIsClosed(bench);
    // No watchdog comes later.
    QTest::qWait(3000);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// A user who is quick enough opens the service dialog between the answer and the farewell.
void tst_servicelink::disconnectOvertakenByTheService()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(
        {QStringLiteral("TK-7 Router"),
         QStringLiteral("Are you sure want disconnected from the TK-7 Router? If you will "
                        "disconnect, router load all rules from the internal memory."),
         QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel});
    bench.find<QPushButton>("pushButton_connect")->click();
    const AisTestUser tester; // the window opens without a link, and brings nothing
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QTRY_VERIFY(!bench.window.currentLink());
        QVERIFY(dialog.isVisible());
        for (const char *name : {"pushButton_Clear", "pushButton_ChipID"})
            press(dialog, name);
        QTest::qWait(2100); // a poll
        press(dialog, "pushButton_AisTest");
    }));
    QVERIFY(tester.hasCome());
    verifyAllIsClosed(bench);
    verifyWorksAgain(bench);
}

QTEST_MAIN(tst_servicelink)
#include "tst_servicelink.moc"

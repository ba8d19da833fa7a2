#include "editorlines.h"
#include "filteruser.h"

#include "editors/hdreditdlg.h"
#include "editors/smartdlg.h"

using tk7sim::Fault;

/*!
 * The link ends while an editor is open: its box comes over the editor, which can still be used and
 * closed, and nothing is sent any more.
 */
class tst_editorlink : public QObject
{
    Q_OBJECT

private slots:
    void ends_data();
    void ends();
};

namespace {

constexpr int longestWatch = 8000; // ms

void pressOk(const QDialog &dialog)
{
    dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
}

/*! Channel 2 of output port 5 in a connected window, and the end of its link. */
class EndingLink
{
public:
    explicit EndingLink(const QString &how) : m_how(how)
    {
        bench.router.setWorking(tk7sim::RouterConfig());
        m_isConnected = bench.connectToRouter();
        MainWindow &window = bench.window;
        window.slotVRNewRule(5, 2, 0xf2, 0x0a); // filter and header override are on
        window.slotVRNewFilterMask(5, 2, 1);
        window.slotVRNewHdr(5, 2, QStringLiteral("GP"));
        window.slotVRNewRule(5, 3, 0xf3, 0);
        for (quint8 slot = 0; slot < 32; ++slot)
            window.slotVRNewFilterStr(
                slot, slot < 2 ? QString("AA%1").arg(QChar('A' + slot)) : QString());
        bench.find<QPushButton>(QStringLiteral("pushButton_output_port_5"))->click();
    }

    bool isConnected() const { return m_isConnected; }

    QAbstractButton *button(const char *name)
    {
        return bench.find<QAbstractButton>(QString::fromLatin1(name));
    }

    const ChannelRecord &record(int channel) const
    {
        return bench.window.routerModel().output_ports[5].channels[size_t(channel)];
    }

    // Waits for the end of the link and for its box, which must come while \a editor is open.
    bool end(const QDialog &editor)
    {
        const int before = bench.boxes.answered();
        bench.boxes.expect(m_how == QLatin1String("busy") ? WindowBench::busyBox()
                                                          : WindowBench::timeoutBox());
        if (m_how == QLatin1String("cable"))
            bench.router.unplug();
        else if (m_how == QLatin1String("busy"))
            bench.router.sendLine("$VRCNB\r\n");
        else
            bench.router.setFault(Fault::Silent);
        const bool ended = QTest::qWaitFor(
            [&] { return bench.boxes.answered() > before && !bench.window.isConnected(); },
            longestWatch);
        bench.router.clearTranscript();
        return ended && editor.isVisible()
            && QApplication::activeModalWidget() == static_cast<const QWidget *>(&editor);
    }

    WindowBench bench;

private:
    QString m_how;
    bool m_isConnected = false;
};

void endUnderFilter(EndingLink &ending)
{
    QVERIFY(inDialog<FilterDlg>(ending.button("pushButton_channel_2_filter_set"),
                                [&](FilterDlg &dialog) {
                                    FilterUser user(dialog, {});
                                    QVERIFY(user.add(QStringLiteral("WPL")));
                                    QVERIFY(ending.end(dialog));
                                    QVERIFY(user.toggle(QStringLiteral("WPL")));
                                    user.ok();
                                }));
    QCOMPARE(ending.record(2).filter_mask, 0x5U);
    QCOMPARE(ending.bench.window.routerModel().filter_list_mask, 0x7U);
}

void endUnderCancelledFilter(EndingLink &ending)
{
    QVERIFY(inDialog<FilterDlg>(ending.button("pushButton_channel_2_filter_set"),
                                [&](FilterDlg &dialog) {
                                    FilterUser user(dialog, {});
                                    QVERIFY(user.add(QStringLiteral("WPL")));
                                    QVERIFY(ending.end(dialog));
                                    user.cancel();
                                }));
    QCOMPARE(ending.record(2).filter_mask, 0x1U);
    QCOMPARE(ending.bench.window.routerModel().filter_list_mask, 0x3U);
}

void endUnderEntry(EndingLink &ending)
{
    QVERIFY(inDialog<FilterDlg>(
        ending.button("pushButton_channel_2_filter_set"), [&](FilterDlg &dialog) {
            FilterUser user(dialog, {});
            QVERIFY(inDialog<SntDlg>(user.button("pushButton_add"), [&](SntDlg &entry) {
                QVERIFY(ending.end(entry));
                entry.findChild<QLineEdit *>()->setText(QStringLiteral("WPL"));
                pressOk(entry);
            }));
            QCOMPARE(user.rows(), QStringList({"AAA+", "AAB", "WPL"}));
            user.ok();
        }));
    QCOMPARE(ending.bench.window.routerModel().filter_list_mask, 0x7U);
}

void endUnderUsedQuestion(EndingLink &ending)
{
    QVERIFY(inDialog<FilterDlg>(ending.button("pushButton_channel_2_filter_set"),
                                [&](FilterDlg &dialog) {
                                    FilterUser user(dialog, {});
                                    QVERIFY(user.go(QStringLiteral("AAA")));
                                    QVERIFY(inDialog<DelSentenceDlg>(
                                        user.button("pushButton_del"), [&](DelSentenceDlg &asking) {
                                            QVERIFY(ending.end(asking));
                                            pressOk(asking);
                                        }));
                                    user.ok();
                                }));
    QCOMPARE(ending.record(2).filter_mask, 0U);
    QCOMPARE(ending.bench.window.routerModel().filter_list_mask, 0x2U);
}

// The question is a message box of the editor's own: the end of the link leaves it open.
void endUnderUnusedQuestion(EndingLink &ending)
{
    QVERIFY(inDialog<FilterDlg>(
        ending.button("pushButton_channel_2_filter_set"), [&](FilterDlg &dialog) {
            FilterUser user(dialog, {});
            QVERIFY(user.go(QStringLiteral("AAB")));
            BoxAnswer::Box question = FilterUser::deleteQuestion(QStringLiteral("AAB"), true);
            question.click = QMessageBox::NoButton;
            ending.bench.boxes.expect(question);
            QVERIFY(inDialog<QMessageBox>(user.button("pushButton_del"), [&](QMessageBox &box) {
                QTRY_COMPARE(ending.bench.boxes.answered(), 2);
                QVERIFY(ending.end(box));
                box.button(QMessageBox::Ok)->click();
            }));
            user.ok();
        }));
    QCOMPARE(ending.bench.window.routerModel().filter_list_mask, 0x1U);
}

void endUnderHeader(EndingLink &ending)
{
    QVERIFY(inDialog<HdrEditDlg>(ending.button("pushButton_channel_2_hdr_set"),
                                 [&](HdrEditDlg &dialog) {
                                     QVERIFY(ending.end(dialog));
                                     dialog.findChild<QLineEdit *>()->setText(QStringLiteral("II"));
                                     pressOk(dialog);
                                 }));
    QCOMPARE(ending.record(2).hdr, QStringLiteral("II"));
}

void endUnderCheckedHeader(EndingLink &ending)
{
    QVERIFY(inDialog<HdrEditDlg>(ending.button("checkBox_channel_3_hdr"), [&](HdrEditDlg &dialog) {
        QVERIFY(ending.end(dialog));
        dialog.reject();
    }));
    QVERIFY(!ending.record(3).hdr_enabled);
    QVERIFY(!ending.button("checkBox_channel_3_hdr")->isChecked());
}

void endUnderSmart(EndingLink &ending)
{
    QVERIFY(inDialog<SmartDlg>(ending.button("pushButton_channel_2_smart"), [&](SmartDlg &dialog) {
        QVERIFY(ending.end(dialog));
        dialog.findChild<QRadioButton *>(QStringLiteral("radioButton_gps"))->click();
        pressOk(dialog);
    }));
    QCOMPARE(int(ending.record(2).smart_function), 1);
}

using Course = void (*)(EndingLink &);

} // namespace

Q_DECLARE_METATYPE(Course)

void tst_editorlink::ends_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<Course>("course");

    QTest::newRow("silence, filter accepted") << "silence" << &endUnderFilter;
    QTest::newRow("cable, filter accepted") << "cable" << &endUnderFilter;
    QTest::newRow("busy, filter accepted") << "busy" << &endUnderFilter;
    QTest::newRow("silence, filter cancelled after a change")
        << "silence" << &endUnderCancelledFilter;
    QTest::newRow("cable, entry of a name") << "cable" << &endUnderEntry;
    QTest::newRow("cable, question for a used name") << "cable" << &endUnderUsedQuestion;
    QTest::newRow("silence, question for an unused name") << "silence" << &endUnderUnusedQuestion;
    QTest::newRow("cable, header") << "cable" << &endUnderHeader;
    QTest::newRow("silence, header that the check box opened")
        << "silence" << &endUnderCheckedHeader;
    QTest::newRow("cable, smart function") << "cable" << &endUnderSmart;
    QTest::newRow("busy, smart function") << "busy" << &endUnderSmart;
}

void tst_editorlink::ends()
{
    QFETCH(QString, how);
    QFETCH(Course, course);
    EndingLink ending(how);
    QVERIFY(ending.isConnected());
    course(ending);
    QVERIFY2(ending.bench.boxes.isDone(), qPrintable(ending.bench.boxes.report()));
    QVERIFY(!ending.bench.window.isConnected());
    QVERIFY(!ending.bench.window.currentLink());
    QVERIFY(!QApplication::activeModalWidget());
    QCOMPARE(ending.bench.heard(), QList<QByteArray>());
}

QTEST_MAIN(tst_editorlink)
#include "tst_editorlink.moc"

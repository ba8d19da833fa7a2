#include "editorlines.h"

#include "editors/hdreditdlg.h"
#include "support/indialog.h"

#include <QDialogButtonBox>

#include <memory>

/*! The header override of a channel: check box, Set button, and what the router hears. */
class tst_header : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void checked_data();
    void checked();
    void setAgain_data();
    void setAgain();
    void unchecked();
    void cancelled_data();
    void cancelled();
    void refusals_data();
    void refusals();
    void uncheckingForgets();
    void otherChannelsGoAlong();
    void routerSpeaksMeanwhile();
    void unconnected();
    void unknownSender();

private:
    MainWindow &window() { return m_connected->window(); }
    const ChannelRecord &record(int port, int channel)
    {
        return window().routerModel().output_ports[size_t(port)].channels[size_t(channel)];
    }
    QCheckBox *box(int channel) const
    {
        return m_connected->matrix.widget<QCheckBox>("checkBox_channel_%1_hdr", channel);
    }
    QPushButton *set(int channel) const
    {
        return m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_hdr_set", channel);
    }
    QString row(int channel) const { return m_connected->matrix.row(channel); }
    void load(int port, int channel, const char *hdr);

    std::unique_ptr<ConnectedMatrix> m_connected;
};

namespace {

constexpr quint8 hdrFlag = 8;

// Rows as MatrixView::row() tells them.
const QString plainRow = QStringLiteral("F-CH--S\"\"");

QString headerRow(const char *hdr)
{
    return QStringLiteral("F-CH+tsS\"%1\"").arg(QString::fromLatin1(hdr));
}

// A channel's word in $VRRUL: its own number as Main input.
QByteArray word(int channel, const char *flags)
{
    return 'F' + QByteArray::number(channel, 16).toUpper() + flags;
}

QLineEdit *field(const HdrEditDlg &dialog)
{
    return dialog.findChild<QLineEdit *>(QStringLiteral("lineEdit"));
}

void press(const HdrEditDlg &dialog, QDialogButtonBox::StandardButton button)
{
    dialog.findChild<QDialogButtonBox *>()->button(button)->click();
}

// Opens the editor by \a button, which shows \a shown, and enters \a text.
bool enter(QAbstractButton *button, const QString &shown, const QString &text)
{
    bool isRight = false;
    const bool closed = inDialog<HdrEditDlg>(button, [&](HdrEditDlg &dialog) {
        isRight = field(dialog)->text() == shown;
        field(dialog)->setText(text);
        press(dialog, QDialogButtonBox::Ok);
    });
    return closed && isRight;
}

void addChannels()
{
    QTest::addColumn<int>("channel");

    for (int channel = 0; channel < MatrixView::size; ++channel)
        QTest::addRow("channel %d", channel) << channel;
}

} // namespace

void tst_header::initTestCase()
{
    m_connected = std::make_unique<ConnectedMatrix>();
}

void tst_header::init()
{
    m_connected->reset();
}

void tst_header::cleanup()
{
    QVERIFY2(m_connected->bench.boxes.isDone(), qPrintable(m_connected->bench.boxes.report()));
}

// A channel with its own number as Main input; a null header switches the override off.
void tst_header::load(int port, int channel, const char *hdr)
{
    window().slotVRNewRule(quint8(port), channel, quint8(0xf0 | channel), hdr ? hdrFlag : 0);
    window().slotVRNewHdr(quint8(port), channel, QString::fromLatin1(hdr));
}

void tst_header::checked_data()
{
    addChannels();
}

void tst_header::checked()
{
    QFETCH(int, channel);
    load(6, channel, nullptr);
    m_connected->start(6);
    QCOMPARE(row(channel), plainRow);
    QVERIFY(inDialog<HdrEditDlg>(box(channel), [&](HdrEditDlg &dialog) {
        QVERIFY(record(6, channel).hdr_enabled); // before there is a header
        QCOMPARE(field(dialog)->text(), QString());
        field(dialog)->setText(QStringLiteral("gp"));
        press(dialog, QDialogButtonBox::Ok);
    }));
    QVERIFY(record(6, channel).hdr_enabled);
    QCOMPARE(record(6, channel).hdr, QStringLiteral("GP"));
    QCOMPARE(row(channel), headerRow("GP"));
    QCOMPARE(m_connected->sent(),
             QList<QByteArray>({EditorLines::headers(6, {{channel, "GP"}}),
                                ruleSentence(6, {{channel, word(channel, "08")}})}));
}

void tst_header::setAgain_data()
{
    addChannels();
}

void tst_header::setAgain()
{
    QFETCH(int, channel);
    load(6, channel, "GP");
    m_connected->start(6);
    QVERIFY(enter(set(channel), QStringLiteral("GP"), QStringLiteral("ii")));
    QVERIFY(record(6, channel).hdr_enabled);
    QCOMPARE(record(6, channel).hdr, QStringLiteral("II"));
    QCOMPARE(row(channel), headerRow("II"));
    QCOMPARE(m_connected->sent(),
             QList<QByteArray>({EditorLines::headers(6, {{channel, "II"}}),
                                ruleSentence(6, {{channel, word(channel, "08")}})}));
}

void tst_header::unchecked()
{
    load(6, 4, "GP");
    m_connected->start(6);
    QCOMPARE(row(4), headerRow("GP"));
    box(4)->click();
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!record(6, 4).hdr_enabled);
    QCOMPARE(record(6, 4).hdr, QString());
    QCOMPARE(row(4), plainRow);
    QCOMPARE(
        m_connected->sent(),
        QList<QByteArray>({EditorLines::headers(6, {}), ruleSentence(6, {{4, word(4, "00")}})}));
}

void tst_header::cancelled_data()
{
    QTest::addColumn<bool>("bySet");
    QTest::addColumn<bool>("typed");

    QTest::newRow("opened by the check box") << false << false;
    QTest::newRow("opened by the check box, after typing") << false << true;
    QTest::newRow("opened by the Set button") << true << false;
    QTest::newRow("opened by the Set button, after typing") << true << true;
}

void tst_header::cancelled()
{
    QFETCH(bool, bySet);
    QFETCH(bool, typed);
    load(6, 4, bySet ? "GP" : nullptr);
    m_connected->start(6);
    const RouterModel before = window().routerModel();
    const QString rowBefore = row(4);
    QAbstractButton *button = bySet ? static_cast<QAbstractButton *>(set(4)) : box(4);
    QVERIFY(inDialog<HdrEditDlg>(button, [&](HdrEditDlg &dialog) {
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(&window()));
        QVERIFY(dialog.isModal());
        QVERIFY(record(6, 4).hdr_enabled);
        if (typed)
            field(dialog)->setText(QStringLiteral("II"));
        press(dialog, QDialogButtonBox::Cancel);
    }));
    QVERIFY(window().routerModel() == before);
    QCOMPARE(row(4), rowBefore);
    QCOMPARE(box(4)->isChecked(), bySet);
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

void tst_header::refusals_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("message");

    const QString tooShort = QStringLiteral("The NMEA header consist of 2 characters.");
    const QString notLatin = QStringLiteral("The NMEA header can consist only Latin characters.");
    const QString reserved = QStringLiteral("The NMEA header VR reserved for TK-7.");
    QTest::newRow("a single letter") << "G" << tooShort;
    QTest::newRow("a digit") << "G1" << notLatin;
    QTest::newRow("the router's own") << "VR" << reserved;
    QTest::newRow("the router's own in small letters") << "vr" << reserved;
}

void tst_header::refusals()
{
    QFETCH(QString, text);
    QFETCH(QString, message);
    load(6, 4, nullptr);
    m_connected->start(6);
    m_connected->bench.boxes.expect(
        {QStringLiteral("NMEA Header"), message, QMessageBox::Information});
    QVERIFY(inDialog<HdrEditDlg>(box(4), [&](HdrEditDlg &dialog) {
        field(dialog)->setText(text);
        press(dialog, QDialogButtonBox::Ok);
        QVERIFY(dialog.isVisible());
        QCOMPARE(field(dialog)->text(), text);
        field(dialog)->setText(QStringLiteral("SD"));
        press(dialog, QDialogButtonBox::Ok);
    }));
    QCOMPARE(row(4), headerRow("SD"));
    QCOMPARE(m_connected->sent().size(), 2);
}

void tst_header::uncheckingForgets()
{
    load(6, 4, "GP");
    m_connected->start(6);
    box(4)->click();
    QVERIFY(enter(box(4), QString(), QStringLiteral("SD")));
    QVERIFY(enter(set(4), QStringLiteral("SD"), QStringLiteral("SD")));
    QCOMPARE(m_connected->sent().size(), 6);
}

// An override that is off has an empty field, whatever the router once sent with it.
void tst_header::otherChannelsGoAlong()
{
    load(6, 0, "HE");
    load(6, 11, "WI");
    load(6, 4, nullptr);
    load(6, 5, nullptr);
    window().slotVRNewHdr(6, 5, QStringLiteral("XX"));
    load(7, 4, "ZZ");
    m_connected->start(6);
    QVERIFY(enter(box(4), QString(), QStringLiteral("AI")));
    QCOMPARE(m_connected->sent(),
             QList<QByteArray>({EditorLines::headers(6, {{0, "HE"}, {4, "AI"}, {11, "WI"}}),
                                ruleSentence(6,
                                             {{0, word(0, "08")},
                                              {4, word(4, "08")},
                                              {5, word(5, "00")},
                                              {11, word(11, "08")}})}));
}

void tst_header::routerSpeaksMeanwhile()
{
    load(6, 4, "GP");
    load(6, 5, nullptr);
    m_connected->start(6);
    const QByteArray spoken = checkedSentence("$VRHDC,6,B,,,,,WI,SD,,,,,,");
    for (const bool ok : {false, true}) {
        window().slotVRNewHdr(6, 4, QStringLiteral("GP"));
        QVERIFY(inDialog<HdrEditDlg>(set(4), [&](HdrEditDlg &dialog) {
            m_connected->bench.router.sendLine(spoken);
            QTRY_COMPARE(record(6, 4).hdr, QStringLiteral("WI"));
            QCOMPARE(field(dialog)->text(), QStringLiteral("GP"));
            press(dialog, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
        }));
        QCOMPARE(record(6, 4).hdr, ok ? QStringLiteral("GP") : QStringLiteral("WI"));
        QCOMPARE(record(6, 5).hdr, QStringLiteral("SD"));
        m_connected->sent();
    }
}

void tst_header::unconnected()
{
    MainWindow alone;
    alone.slotVRNewRule(0, 4, 0xf4, 0);
    alone.findChild<QPushButton *>(QStringLiteral("pushButton_output_port_0"))->click();
    auto *check = alone.findChild<QCheckBox *>(QStringLiteral("checkBox_channel_4_hdr"));
    const ChannelRecord &channel = alone.routerModel().output_ports[0].channels[4];
    QVERIFY(enter(check, QString(), QStringLiteral("gp")));
    QVERIFY(channel.hdr_enabled && check->isChecked());
    QCOMPARE(channel.hdr, QStringLiteral("GP"));
    check->click();
    QVERIFY(!channel.hdr_enabled && !check->isChecked());
    QCOMPARE(channel.hdr, QString());
}

void tst_header::unknownSender()
{
    load(6, 4, "GP");
    m_connected->start(6);
    const RouterModel before = window().routerModel();
    window().slotHdrCheckChanged(true);
    window().slotHdrCheckChanged(false);
    window().slotHdrSetClicked();
    QVERIFY(window().routerModel() == before);
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

QTEST_MAIN(tst_header)
#include "tst_header.moc"

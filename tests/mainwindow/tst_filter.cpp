#include "editorlines.h"
#include "filteruser.h"

#include <memory>

/*! The filter of a channel: its check box, its editor, and what the router hears of both. */
class tst_filter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void opensForItsChannel_data();
    void opensForItsChannel();
    void dialogOfTheWindow();
    void wire_data();
    void wire();
    void unconnected_data();
    void unconnected();
    void usedList_data();
    void usedList();
    void usedListWithoutADialog();
    void refusals();
    void fullList();
    void reusesTheLowestSlot();

    void routerSpeaksMeanwhile_data();
    void routerSpeaksMeanwhile();

    void checkBox_data();
    void checkBox();
    void checkBoxUnconnected();
    void checkBoxLosesMaskAndType();
    void unknownSender();

private:
    MainWindow &window() { return m_connected->window(); }
    const RouterModel &model() { return window().routerModel(); }
    FilterUser::Answer answer();
    bool runScript(FilterUser &user, const QString &script);
    bool runStep(FilterUser &user, const QString &step);
    bool edit(int port, int channel, const QString &script);

    std::unique_ptr<ConnectedMatrix> m_connected;
};

namespace {

const QString baseNames = QStringLiteral("RMC GGA GLL ZDA");

struct Setup
{
    int port = 0;
    int channel = 0;
    quint32 mask = 0;
    bool black = false;
    bool off = false;
};

// Channels as a text: port, channel, mask, 'b' for a black list, '-' for a filter that is off.
QList<Setup> setups(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d+)\\.(\\d+)=([0-9a-f]+?)(B?)(-?)$"));
    QList<Setup> channels;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = form.match(word);
        if (!match.hasMatch())
            qFatal("no setup: %s", qPrintable(word));
        channels += {match.captured(1).toInt(), match.captured(2).toInt(),
                     match.captured(3).toUInt(nullptr, 16), !match.captured(4).isEmpty(),
                     !match.captured(5).isEmpty()};
    }
    return channels;
}

// Every channel of a setup has its own number as its Main input.
void load(MainWindow &window, const QString &names, const QString &channels)
{
    const QMap<int, QString> list = EditorLines::slotNames(names);
    for (quint8 slot = 0; slot < 32; ++slot)
        window.slotVRNewFilterStr(slot, list.value(slot));
    for (const Setup &setup : setups(channels)) {
        const int flags = (setup.off ? 0 : 2) | (setup.black ? 4 : 0);
        window.slotVRNewRule(quint8(setup.port), setup.channel, quint8(0xf0 | setup.channel),
                             quint8(flags));
        window.slotVRNewFilterMask(quint8(setup.port), setup.channel, setup.mask);
    }
}

QString namesOf(const RouterModel &model)
{
    QStringList names;
    for (int slot = 0; slot < 32; ++slot) {
        const QString &name = model.filter_list[size_t(slot)];
        const bool isTaken = model.filter_list_mask & 1U << slot;
        names += isTaken ? name : name.isEmpty() ? QStringLiteral("-") : QStringLiteral("left");
    }
    while (!names.isEmpty() && names.last() == QLatin1String("-"))
        names.removeLast();
    return names.join(QLatin1Char(' '));
}

QString channelsOf(const RouterModel &model)
{
    QStringList words;
    for (int port = 0; port < 12; ++port) {
        for (int channel = 0; channel < 12; ++channel) {
            const ChannelRecord &record =
                model.output_ports[size_t(port)].channels[size_t(channel)];
            if (record.main_input == 15)
                continue;
            words += QStringLiteral("%1.%2=%3%4%5")
                         .arg(port)
                         .arg(channel)
                         .arg(record.filter_mask, 0, 16)
                         .arg(record.filter_type ? QStringLiteral("B") : QString(),
                              record.filter_enabled ? QString() : QStringLiteral("-"));
        }
    }
    return words.join(QLatin1Char(' '));
}

QList<QByteArray> listLines(const char *names)
{
    return EditorLines::list(EditorLines::slotNames(QString::fromLatin1(names)));
}

} // namespace

void tst_filter::initTestCase()
{
    m_connected = std::make_unique<ConnectedMatrix>();
}

void tst_filter::init()
{
    m_connected->reset();
    load(window(), baseNames, QString());
}

void tst_filter::cleanup()
{
    QVERIFY2(m_connected->bench.boxes.isDone(), qPrintable(m_connected->bench.boxes.report()));
}

FilterUser::Answer tst_filter::answer()
{
    return [this](QAbstractButton *button, const BoxAnswer::Box &box) {
        BoxAnswer &boxes = m_connected->bench.boxes;
        const int before = boxes.answered();
        boxes.expect(box);
        button->click();
        return boxes.answered() == before + 1;
    };
}

// Steps as a text: "+GGA" and "-GGA" turn a box, "black" and "white" choose, "add XYZ" adds,
// "delete XYZ" and "keep XYZ" answer the question for an unused name, "delete XYZ: one; two" for
// one that is used there, "ok" and "cancel" close.
bool tst_filter::runStep(FilterUser &user, const QString &step)
{
    const QString word = step.section(QLatin1Char(' '), 0, 0);
    const QString rest = step.section(QLatin1Char(' '), 1);
    if (word == QLatin1String("ok") || word == QLatin1String("cancel")) {
        word == QLatin1String("ok") ? user.ok() : user.cancel();
        return true;
    }
    if (word == QLatin1String("black") || word == QLatin1String("white")) {
        user.chooseType(word == QLatin1String("black"));
        return true;
    }
    if (word == QLatin1String("add"))
        return user.add(rest);
    if (word == QLatin1String("delete") || word == QLatin1String("keep")) {
        const bool yes = word == QLatin1String("delete");
        const QString name = rest.section(QStringLiteral(": "), 0, 0);
        const QString used = rest.section(QStringLiteral(": "), 1);
        return used.isEmpty() ? user.remove(name, yes)
                              : user.removeUsed(name, used.split(QStringLiteral("; ")), yes);
    }
    const QString name = word.mid(1);
    const bool isOn = user.rows().contains(name + QLatin1Char('+'));
    return isOn == word.startsWith(QLatin1Char('-')) && user.toggle(name);
}

bool tst_filter::runScript(FilterUser &user, const QString &script)
{
    for (const QString &step : script.split(QStringLiteral(", "))) {
        if (!runStep(user, step)) {
            qWarning("failed: %s", qPrintable(step));
            return false;
        }
    }
    return true;
}

// Presses a channel's Set button and does what the script tells.
bool tst_filter::edit(int port, int channel, const QString &script)
{
    m_connected->start(port);
    bool done = false;
    auto *button =
        m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", channel);
    const bool closed = inDialog<FilterDlg>(button, [&](FilterDlg &dialog) {
        FilterUser user(dialog, answer());
        done = runScript(user, script);
    });
    return done && closed;
}

void tst_filter::opensForItsChannel_data()
{
    QTest::addColumn<int>("channel");

    for (int channel = 0; channel < 12; ++channel)
        QTest::addRow("channel %d", channel) << channel;
}

// A mask and a type of its own in every channel of three ports.
void tst_filter::opensForItsChannel()
{
    QFETCH(int, channel);
    QStringList words;
    for (int port : {2, 3, 4}) {
        for (int i = 0; i < 12; ++i) {
            const int mask = port == 3 ? i : 15 - i;
            words += QStringLiteral("%1.%2=%3%4")
                         .arg(port)
                         .arg(i)
                         .arg(mask, 0, 16)
                         .arg(i % 2 && port == 3 ? QStringLiteral("B") : QString());
        }
    }
    load(window(), baseNames, words.join(QLatin1Char(' ')));
    const QString before = channelsOf(model());
    m_connected->start(3);
    auto *button =
        m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", channel);
    QVERIFY(inDialog<FilterDlg>(button, [channel](FilterDlg &dialog) {
        const QStringList slotsInOrder = baseNames.split(QLatin1Char(' '));
        QStringList expected;
        for (const char *name : {"GGA", "GLL", "RMC", "ZDA"}) {
            const int slot = int(slotsInOrder.indexOf(QString::fromLatin1(name)));
            expected +=
                QString::fromLatin1(name) + (channel & 1 << slot ? QStringLiteral("+") : QString());
        }
        FilterUser user(dialog, {});
        QCOMPARE(user.rows(), expected);
        const auto *black =
            dialog.findChild<QRadioButton *>(QStringLiteral("radioButton_blacklist"));
        QCOMPARE(black->isChecked(), channel % 2 == 1);
        user.cancel();
    }));
    QCOMPARE(channelsOf(model()), before);
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

void tst_filter::dialogOfTheWindow()
{
    load(window(), baseNames, QStringLiteral("0.0=1"));
    m_connected->start(0);
    auto *button = m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", 0);
    QVERIFY(inDialog<FilterDlg>(button, [this](FilterDlg &dialog) {
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(&window()));
        QVERIFY(dialog.isModal());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("NMEA Filter"));
        dialog.reject();
    }));
    QVERIFY(!window().findChild<FilterDlg *>());
}

void tst_filter::wire_data()
{
    QTest::addColumn<QString>("channels");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("channel");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("namesAfter");
    QTest::addColumn<QString>("channelsAfter");
    QTest::addColumn<QList<QByteArray>>("lines");

    const auto row = [](const char *title, const char *channels, int port, int channel,
                        const char *script, const char *namesAfter, const char *channelsAfter,
                        const QList<QByteArray> &lines) {
        QTest::newRow(title) << channels << port << channel << script << namesAfter << channelsAfter
                             << lines;
    };
    using EditorLines::filter;
    const QList<QByteArray> nothing;
    const char *base = "RMC GGA GLL ZDA";

    row("ok without a change, first half", "5.2=5", 5, 2, "ok", base, "5.2=5",
        {ruleSentence(5, {{2, "F202"}}), filter(5, 0, {{2, 0x5}})});
    row("ok without a change, second half", "5.8=5", 5, 8, "ok", base, "5.8=5",
        {ruleSentence(5, {{8, "F802"}}), filter(5, 6, {{8, 0x5}})});
    row("the last of the first half", "0.5=1", 0, 5, "ok", base, "0.5=1",
        {ruleSentence(0, {{5, "F502"}}), filter(0, 0, {{5, 0x1}})});
    row("the first of the second half", "11.6=1", 11, 6, "ok", base, "11.6=1",
        {ruleSentence(11, {{6, "F602"}}), filter(11, 6, {{6, 0x1}})});
    row("another mask and another type", "5.2=5", 5, 2, "+GGA, -RMC, black, ok", base, "5.2=6B",
        {ruleSentence(5, {{2, "F206"}}), filter(5, 0, {{2, 0x6}})});
    row("back to a white list", "5.2=5B", 5, 2, "white, ok", base, "5.2=5",
        {ruleSentence(5, {{2, "F202"}}), filter(5, 0, {{2, 0x5}})});
    row("the other channels of the half go along", "5.2=5 5.3=2B 5.7=8", 5, 2, "+GGA, ok", base,
        "5.2=7 5.3=2B 5.7=8",
        {ruleSentence(5, {{2, "F202"}, {3, "F306"}, {7, "F702"}}),
         filter(5, 0, {{2, 0x7}, {3, 0x2}})});

    row("a new name, unchecked: the list between rule and filter", "5.2=5", 5, 2, "add WPL, ok",
        "RMC GGA GLL ZDA WPL", "5.2=5",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC GGA GLL ZDA WPL")
            << filter(5, 0, {{2, 0x5}}));
    row("a new name, checked", "5.8=5", 5, 8, "add wpl, +WPL, ok", "RMC GGA GLL ZDA WPL", "5.8=15",
        QList<QByteArray>{ruleSentence(5, {{8, "F802"}})} + listLines("RMC GGA GLL ZDA WPL")
            << filter(5, 6, {{8, 0x15}}));
    row("an unused name deleted", "5.2=5", 5, 2, "delete ZDA, ok", "RMC GGA GLL", "5.2=5",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC GGA GLL")
            << filter(5, 0, {{2, 0x5}}));
    row("added and deleted again: the list has changed all the same", "5.2=5", 5, 2,
        "add WPL, delete WPL, ok", base, "5.2=5",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines(base)
            << filter(5, 0, {{2, 0x5}}));
    row("a checked row that was deleted leaves no bit", "5.2=0", 5, 2, "+GGA, +ZDA, delete GGA, ok",
        "RMC - GLL ZDA", "5.2=8",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC - GLL ZDA")
            << filter(5, 0, {{2, 0x8}}));
    row("its own channel counts as a user by its stored mask, whatever is checked", "5.2=2", 5, 2,
        "-GGA, delete GGA: Output Port 5 -> input channel 2, ok", "RMC - GLL ZDA", "5.2=0",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC - GLL ZDA")
            << filter(5, 0, {{2, 0x0}}));

    row("used in the second half of another port: only that half", "5.2=5 7.9=6", 5, 2,
        "delete GGA: Output Port 7 -> input channel 9, ok", "RMC - GLL ZDA", "5.2=5 7.9=4",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC - GLL ZDA")
            << filter(5, 0, {{2, 0x5}}) << filter(7, 6, {{9, 0x4}}));
    row("used in a lower port: by rising port", "5.2=5 0.0=2", 5, 2,
        "delete GGA: Output Port 0 -> input channel 0, ok", "RMC - GLL ZDA", "0.0=0 5.2=5",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC - GLL ZDA")
            << filter(0, 0, {{0, 0x0}}) << filter(5, 0, {{2, 0x5}}));
    row("used in the other half of the same port: first before second", "5.2=2 5.8=1", 5, 8,
        "delete GGA: Output Port 5 -> input channel 2, ok", "RMC - GLL ZDA", "5.2=0 5.8=1",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}, {8, "F802"}})} + listLines("RMC - GLL ZDA")
            << filter(5, 0, {{2, 0x0}}) << filter(5, 6, {{8, 0x1}}));
    row("used everywhere: every half once", "1.0=3 1.11=2 4.5=f 4.6=a 5.2=5 11.3=2B", 5, 2,
        "delete GGA: Output Port 1 -> input channel 0; Output Port 1 -> input channel 11; "
        "Output Port 4 -> input channel 5; Output Port 4 -> input channel 6; "
        "Output Port 11 -> input channel 3, ok",
        "RMC - GLL ZDA", "1.0=1 1.11=0 4.5=d 4.6=8 5.2=5 11.3=0B",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC - GLL ZDA")
            << filter(1, 0, {{0, 0x1}}) << filter(1, 6, {{11, 0x0}}) << filter(4, 0, {{5, 0xd}})
            << filter(4, 6, {{6, 0x8}}) << filter(5, 0, {{2, 0x5}}) << filter(11, 0, {{3, 0x0}}));
    row("a filter that is off is no user and keeps its bit", "5.2=5 7.9=6-", 5, 2, "delete GGA, ok",
        "RMC - GLL ZDA", "5.2=5 7.9=6-",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC - GLL ZDA")
            << filter(5, 0, {{2, 0x5}}));
    row("bits of free slots go, though nothing was deleted", "2.1=80000001 5.2=5 9.11=f0", 5, 2,
        "ok", base, "2.1=1 5.2=5 9.11=0",
        {ruleSentence(5, {{2, "F202"}}), filter(2, 0, {{1, 0x1}}), filter(5, 0, {{2, 0x5}}),
         filter(9, 6, {{11, 0x0}})});
    row("bits of free slots stay in a filter that is off", "2.1=80000001- 5.2=5", 5, 2, "ok", base,
        "2.1=80000001- 5.2=5", {ruleSentence(5, {{2, "F202"}}), filter(5, 0, {{2, 0x5}})});
    row("a slot that is taken again keeps its users' bits", "5.2=5 7.9=2", 5, 2,
        "delete GGA: Output Port 7 -> input channel 9, add WPL, ok", "RMC WPL GLL ZDA",
        "5.2=5 7.9=2",
        QList<QByteArray>{ruleSentence(5, {{2, "F202"}})} + listLines("RMC WPL GLL ZDA")
            << filter(5, 0, {{2, 0x5}}));

    row("cancel: nothing", "5.2=5", 5, 2, "+GGA, black, cancel", base, "5.2=5", nothing);
    row("cancel leaves bits of free slots", "2.1=80000001 5.2=5", 5, 2, "cancel", base,
        "2.1=80000001 5.2=5", nothing);
    row("the question for an unused name answered by cancel", "5.2=5", 5, 2, "keep ZDA, cancel",
        base, "5.2=5", nothing);
    row("the question for a used name answered by cancel", "5.2=5 7.9=6", 5, 2,
        "keep GGA: Output Port 7 -> input channel 9, cancel", base, "5.2=5 7.9=6", nothing);
    row("both questions answered by cancel, then ok", "5.2=5 7.9=6", 5, 2,
        "keep ZDA, keep GGA: Output Port 7 -> input channel 9, ok", base, "5.2=5 7.9=6",
        {ruleSentence(5, {{2, "F202"}}), filter(5, 0, {{2, 0x5}})});
    row("cancel after a deletion: the list as it was", "5.2=5", 5, 2, "delete ZDA, cancel", base,
        "5.2=5", listLines(base));
    row("cancel after deleting a used name", "5.2=5 7.9=6", 5, 2,
        "delete GGA: Output Port 7 -> input channel 9, black, cancel", base, "5.2=5 7.9=6",
        listLines(base));
    row("cancel after an addition", "5.2=5", 5, 2, "add WPL, +WPL, cancel", base, "5.2=5",
        listLines(base));
}

void tst_filter::wire()
{
    QFETCH(QString, channels);
    QFETCH(int, port);
    QFETCH(int, channel);
    QFETCH(QString, script);
    load(window(), baseNames, channels);
    QVERIFY(edit(port, channel, script));
    QTEST(m_connected->sent(), "lines");
    QTEST(namesOf(model()), "namesAfter");
    QTEST(channelsOf(model()), "channelsAfter");
    QVERIFY(m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", channel)
                ->isEnabled());
}

void tst_filter::unconnected_data()
{
    wire_data();
}

// The same without a router: the model takes the same way, the stale bits, too.
void tst_filter::unconnected()
{
    QFETCH(QString, channels);
    QFETCH(int, port);
    QFETCH(int, channel);
    QFETCH(QString, script);
    MainWindow alone;
    alone.show();
    load(alone, baseNames, channels);
    alone.findChild<QPushButton *>(QStringLiteral("pushButton_output_port_%1").arg(port))->click();
    bool done = false;
    auto *button = alone.findChild<QPushButton *>(
        QStringLiteral("pushButton_channel_%1_filter_set").arg(channel));
    QVERIFY(inDialog<FilterDlg>(button, [&](FilterDlg &dialog) {
        FilterUser user(dialog, answer());
        done = runScript(user, script);
    }));
    QVERIFY(done);
    QTEST(namesOf(alone.routerModel()), "namesAfter");
    QTEST(channelsOf(alone.routerModel()), "channelsAfter");
}

void tst_filter::usedList_data()
{
    QTest::addColumn<QString>("channels");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("counted from 0") << "0.0=1 3.0=0"
                                    << "RMC" << QStringList("Output Port 0 -> input channel 0");
    QTest::newRow("the last") << "11.11=1 3.0=0"
                              << "RMC" << QStringList("Output Port 11 -> input channel 11");
    QTest::newRow("by port, then by channel")
        << "9.4=f 9.3=f 3.0=0 10.0=8 2.11=8"
        << "ZDA"
        << QStringList({"Output Port 2 -> input channel 11", "Output Port 9 -> input channel 3",
                        "Output Port 9 -> input channel 4", "Output Port 10 -> input channel 0"});
    QTest::newRow("not one that is off, nor one of another name")
        << "1.1=2- 1.2=d 1.3=2 3.0=0"
        << "GGA" << QStringList("Output Port 1 -> input channel 3");
    QTest::newRow("black lists, too") << "1.1=2B 3.0=0"
                                      << "GGA" << QStringList("Output Port 1 -> input channel 1");
    QTest::newRow("the channel that is edited")
        << "3.0=2"
        << "GGA" << QStringList("Output Port 3 -> input channel 0");
}

void tst_filter::usedList()
{
    QFETCH(QString, channels);
    QFETCH(QString, name);
    QFETCH(QStringList, lines);
    load(window(), baseNames, channels);
    const QString used = lines.join(QStringLiteral("; "));
    QVERIFY(edit(3, 0, QStringLiteral("keep %1: %2, cancel").arg(name, used)));
}

// Before the first dialog and behind it there is nobody to be told.
void tst_filter::usedListWithoutADialog()
{
    load(window(), baseNames, QStringLiteral("3.0=1"));
    const RouterModel before = model();
    window().slotRequestFilterList(1);
    QVERIFY(edit(3, 0, QStringLiteral("keep ZDA, cancel")));
    window().slotRequestFilterList(1);
    QVERIFY(model() == before);
}

// Every complaint of the entry and of the list, through the window; nothing of it reaches the wire.
void tst_filter::refusals()
{
    load(window(), baseNames, QStringLiteral("5.2=5"));
    m_connected->start(5);
    auto *button = m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", 2);
    QVERIFY(inDialog<FilterDlg>(button, [this](FilterDlg &dialog) {
        FilterUser user(dialog, answer());
        BoxAnswer &boxes = m_connected->bench.boxes;
        boxes
            .expect(FilterUser::information(
                QStringLiteral("The NMEA sentence consist of 3 characters.")))
            .expect(FilterUser::information(
                QStringLiteral("The NMEA sentence can consist only Latin characters.")))
            .expect(
                FilterUser::information(QStringLiteral("The NMEA sentence GGA already exist.")));
        QVERIFY(inDialog<SntDlg>(user.button("pushButton_add"), [](SntDlg &entry) {
            for (const char *text : {"GG", "G1A", "gga"}) {
                entry.findChild<QLineEdit *>()->setText(QString::fromLatin1(text));
                FilterUser::press(entry, QDialogButtonBox::Ok);
            }
        }));
        QCOMPARE(user.rows(), QStringList({"GGA", "GLL+", "RMC+", "ZDA"}));
        user.cancel();
    }));
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

void tst_filter::fullList()
{
    QStringList names;
    for (int slot = 0; slot < 32; ++slot)
        names += QStringLiteral("N%1%2").arg(QChar('A' + slot / 8)).arg(QChar('A' + slot % 8));
    load(window(), names.join(QLatin1Char(' ')), QStringLiteral("5.2=5"));
    m_connected->start(5);
    auto *button = m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", 2);
    QVERIFY(inDialog<FilterDlg>(button, [this](FilterDlg &dialog) {
        FilterUser user(dialog, answer());
        QCOMPARE(user.table()->rowCount(), 32);
        QVERIFY(answer()(
            user.button("pushButton_add"),
            FilterUser::information(QStringLiteral("Not enough space for the new NMEA sentence"),
                                    QStringLiteral("Add new sentence"))));
        QVERIFY(!QApplication::activeModalWidget()->inherits("SntDlg"));
        user.ok();
    }));
    QCOMPARE(
        m_connected->sent(),
        QList<QByteArray>({ruleSentence(5, {{2, "F202"}}), EditorLines::filter(5, 0, {{2, 0x5}})}));
}

// What is added last stands first in the list, if the slot is the lowest that is free.
void tst_filter::reusesTheLowestSlot()
{
    load(window(), baseNames, QStringLiteral("5.2=0"));
    QVERIFY(edit(5, 2, QStringLiteral("delete ZDA, delete RMC, add AAA, add WWW, +AAA, ok")));
    QCOMPARE(namesOf(model()), QStringLiteral("AAA GGA GLL WWW"));
    QCOMPARE(channelsOf(model()), QStringLiteral("5.2=1"));
}

void tst_filter::routerSpeaksMeanwhile_data()
{
    QTest::addColumn<QList<QByteArray>>("spoken");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("namesMeanwhile");
    QTest::addColumn<QString>("namesAfter");
    QTest::addColumn<QString>("channelsAfter");

    const QByteArray names = checkedSentence("$VRFLS,0,XXX,,GLL,ZDA,NEW,,,");
    const QByteArray masks = checkedSentence("$VRFLT,5,B,0,0000000100000000"
                                             "0000000800000000"
                                             "0000000000000000");
    QTest::newRow("names, then ok: the dialog's whole list is put over them")
        << QList<QByteArray>{names} << "+GGA, ok"
        << "XXX - GLL ZDA NEW" << baseNames << "5.2=7";
    QTest::newRow("names, then cancel: they stay") << QList<QByteArray>{names} << "+GGA, cancel"
                                                   << "XXX - GLL ZDA NEW"
                                                   << "XXX - GLL ZDA NEW"
                                                   << "5.2=5";
    QTest::newRow("names, then an added one and ok") << QList<QByteArray>{names} << "add WPL, ok"
                                                     << "XXX - GLL ZDA NEW"
                                                     << "RMC GGA GLL ZDA WPL"
                                                     << "5.2=5";
    QTest::newRow("masks, then ok: the dialog's mask")
        << QList<QByteArray>{masks} << "+GGA, ok" << baseNames << baseNames << "5.2=7";
    QTest::newRow("masks, then cancel: they stay")
        << QList<QByteArray>{masks} << "+GGA, cancel" << baseNames << baseNames << "5.2=8";
}

void tst_filter::routerSpeaksMeanwhile()
{
    QFETCH(QList<QByteArray>, spoken);
    QFETCH(QString, script);
    QFETCH(QString, namesMeanwhile);
    load(window(), baseNames, QStringLiteral("5.2=5"));
    m_connected->start(5);
    auto *button = m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", 2);
    QVERIFY(inDialog<FilterDlg>(button, [&](FilterDlg &dialog) {
        FilterUser user(dialog, answer());
        const QString before = channelsOf(model());
        for (const QByteArray &line : qAsConst(spoken))
            m_connected->bench.router.sendLine(line);
        QTRY_VERIFY(namesOf(model()) + channelsOf(model()) != baseNames + before);
        QCOMPARE(namesOf(model()), namesMeanwhile);
        QCOMPARE(user.rows(), QStringList({"GGA", "GLL+", "RMC+", "ZDA"}));
        QVERIFY(runScript(user, script));
    }));
    QTEST(namesOf(model()), "namesAfter");
    QTEST(channelsOf(model()), "channelsAfter");
    m_connected->sent();
}

void tst_filter::checkBox_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<int>("first");

    for (int channel = 0; channel < 12; ++channel)
        QTest::addRow("channel %d", channel) << channel << (channel < 6 ? 0 : 6);
}

void tst_filter::checkBox()
{
    QFETCH(int, channel);
    QFETCH(int, first);
    // Off, with a mask that the box has to clear; the other five of its half are beside it.
    const int neighbour = channel % 6 == 5 ? channel - 1 : channel + 1;
    load(
        window(), baseNames,
        QStringLiteral("4.%1=7- 4.%2=9").arg(QString::number(channel), QString::number(neighbour)));
    m_connected->start(4);
    auto *box = m_connected->matrix.widget<QCheckBox>("checkBox_channel_%1_filter", channel);
    const auto *set =
        m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_filter_set", channel);
    QVERIFY(!set->isEnabled());
    const ChannelRecord &record = model().output_ports[4].channels[size_t(channel)];

    const auto lines = [&](const QByteArray &flags) {
        const auto word = [](int number, const QByteArray &options) -> QByteArray {
            return 'F' + QByteArray::number(number, 16).toUpper() + options;
        };
        const QMap<int, QByteArray> words = {{channel, word(channel, flags)},
                                             {neighbour, word(neighbour, "02")}};
        const QMap<int, quint32> masks = {{neighbour, 0x9}};
        return QList<QByteArray>{ruleSentence(4, words), EditorLines::filter(4, first, masks)};
    };
    box->click();
    QVERIFY(box->isChecked() && set->isEnabled());
    QVERIFY(record.filter_enabled);
    QCOMPARE(int(record.filter_type), 1);
    QCOMPARE(record.filter_mask, 0U);
    QCOMPARE(m_connected->sent(), lines("06"));

    window().slotVRNewFilterMask(4, channel, 0x5);
    box->click();
    QVERIFY(!box->isChecked() && !set->isEnabled());
    QVERIFY(!record.filter_enabled);
    QCOMPARE(int(record.filter_type), 1);
    QCOMPARE(record.filter_mask, 0U);
    QCOMPARE(m_connected->sent(), lines("04"));
}

void tst_filter::checkBoxUnconnected()
{
    MainWindow alone;
    load(alone, baseNames, QStringLiteral("0.3=7-"));
    alone.findChild<QPushButton *>(QStringLiteral("pushButton_output_port_0"))->click();
    alone.findChild<QCheckBox *>(QStringLiteral("checkBox_channel_3_filter"))->click();
    QCOMPARE(channelsOf(alone.routerModel()), QStringLiteral("0.3=0B"));
    QVERIFY(alone.findChild<QPushButton *>(QStringLiteral("pushButton_channel_3_filter_set"))
                ->isEnabled());
}

void tst_filter::checkBoxLosesMaskAndType()
{
    load(window(), baseNames, QStringLiteral("4.7=5"));
    m_connected->start(4);
    auto *box = m_connected->matrix.widget<QCheckBox>("checkBox_channel_%1_filter", 7);
    box->click();
    box->click();
    QCOMPARE(channelsOf(model()), QStringLiteral("4.7=0B"));
    m_connected->sent();
    QVERIFY(edit(4, 7, QStringLiteral("+GGA, white, ok")));
    QCOMPARE(channelsOf(model()), QStringLiteral("4.7=2"));
    QCOMPARE(
        m_connected->sent(),
        QList<QByteArray>({ruleSentence(4, {{7, "F702"}}), EditorLines::filter(4, 6, {{7, 0x2}})}));
}

void tst_filter::unknownSender()
{
    load(window(), baseNames, QStringLiteral("4.7=5 4.0=1"));
    m_connected->start(4);
    window().slotFilterSetClicked();
    window().slotFilterCheckChanged(false);
    QCOMPARE(channelsOf(model()), QStringLiteral("4.0=1 4.7=5"));
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

QTEST_MAIN(tst_filter)
#include "tst_filter.moc"

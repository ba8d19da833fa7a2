#include "editorlines.h"
#include "filteruser.h"

#include "link/nmeaserialport.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <array>
#include <set>

/*!
 * Random sessions with the filter editor against a small model of its rules: after
 * each of them the lists, all masks and types, and what the router has heard must be equal.
 *
 * The course of a session is drawn; a tenth of its deeds is the router's, which speaks meanwhile.
 *
 * The wire is the real one. Only the tick of the queue is not waited for: its slot is called until
 * all is out, as the timer would in 25 ms a line.
 *
 * TK7_SEED and TK7_SESSIONS in the environment choose another course; CTest runs four.
 */
class tst_filter_random : public QObject
{
    Q_OBJECT

private slots:
    void sessions();
};

namespace {

constexpr int ports = 12;
constexpr int channels = 12;
constexpr int slotCount = 32;
constexpr quint32 defaultSeed = 20240611;
constexpr int defaultSessions = 2500;
constexpr int leastOfADeed = 25;

using Names = QMap<int, QString>; // by slot

/*! The rules of the filter editor, told in names and sets. */
class Rules
{
public:
    struct Filter
    {
        bool inUse = false;
        bool on = false;
        bool black = false;
        std::set<int> picked; // slots, also of names that are gone
    };

    Names names;
    std::array<std::array<Filter, channels>, ports> filters;

    // What the open editor shows. The names keep the alphabet's order in a map.
    Names draft;
    QMap<QString, bool> boxes;
    bool draftIsBlack = false;
    bool listChanged = false;

    void open(int port, int channel)
    {
        const Filter &filter = filters[size_t(port)][size_t(channel)];
        draft = names;
        boxes.clear();
        for (auto name = names.begin(); name != names.end(); ++name)
            boxes[name.value()] = filter.picked.count(name.key()) > 0;
        draftIsBlack = filter.black;
        listChanged = false;
    }

    // The slot for another name, or -1.
    int freeSlot() const
    {
        int slot = 0;
        while (draft.contains(slot))
            ++slot;
        return slot < slotCount ? slot : -1;
    }

    void add(const QString &name)
    {
        draft[freeSlot()] = name;
        boxes[name] = false;
        listChanged = true;
    }

    QStringList users(const QString &name) const
    {
        const int slot = draft.key(name);
        QStringList lines;
        for (int port = 0; port < ports; ++port) {
            for (int channel = 0; channel < channels; ++channel) {
                const Filter &filter = filters[size_t(port)][size_t(channel)];
                if (filter.on && filter.picked.count(slot))
                    lines += QString("Output Port %1 -> input channel %2").arg(port).arg(channel);
            }
        }
        return lines;
    }

    void remove(const QString &name)
    {
        draft.remove(draft.key(name));
        boxes.remove(name);
        listChanged = true;
    }

    QList<QByteArray> accept(int port, int channel)
    {
        names = draft;
        Filter &edited = filters[size_t(port)][size_t(channel)];
        edited.black = draftIsBlack;
        edited.picked.clear();
        for (auto name = names.begin(); name != names.end(); ++name) {
            if (boxes.value(name.value()))
                edited.picked.insert(name.key());
        }
        const QByteArray rule = ruleLine(port);
        std::set<std::pair<int, int>> halves = {{port, channel / 6}};
        for (int p = 0; p < ports; ++p) {
            for (int c = 0; c < channels; ++c) {
                if (sweep(filters[size_t(p)][size_t(c)]))
                    halves.insert({p, c / 6});
            }
        }
        QList<QByteArray> lines = {rule};
        if (listChanged)
            lines += EditorLines::list(names);
        for (const auto &half : halves)
            lines += filterLine(half.first, half.second);
        return lines;
    }

    QList<QByteArray> cancel() const
    {
        return listChanged ? EditorLines::list(names) : QList<QByteArray>();
    }

    QList<QByteArray> toggle(int port, int channel)
    {
        Filter &filter = filters[size_t(port)][size_t(channel)];
        filter.on = !filter.on;
        filter.black = true;
        filter.picked.clear();
        return {ruleLine(port), filterLine(port, channel / 6)};
    }

    static quint32 mask(const Filter &filter)
    {
        quint32 bits = 0;
        for (int slot : filter.picked)
            bits |= 1U << slot;
        return bits;
    }

private:
    // A filter that is on loses the slots that have no name any more.
    bool sweep(Filter &filter) const
    {
        const size_t before = filter.picked.size();
        for (auto slot = filter.picked.begin(); filter.on && slot != filter.picked.end();)
            slot = names.contains(*slot) ? std::next(slot) : filter.picked.erase(slot);
        return filter.picked.size() != before;
    }

    QByteArray ruleLine(int port) const
    {
        QMap<int, QByteArray> words;
        for (int channel = 0; channel < channels; ++channel) {
            const Filter &filter = filters[size_t(port)][size_t(channel)];
            const char *inputs = filter.inUse ? "F0" : "FF";
            const int flags = (filter.on ? 2 : 0) + (filter.black ? 4 : 0);
            words[channel] = inputs + QByteArray::number(flags).rightJustified(2, '0');
        }
        return ruleSentence(port, words);
    }

    QByteArray filterLine(int port, int half) const
    {
        QMap<int, quint32> masks;
        for (int channel = 0; channel < channels; ++channel)
            masks[channel] = mask(filters[size_t(port)][size_t(channel)]);
        return EditorLines::filter(port, half * 6, masks);
    }
};

// What the model of the tool and the rules make of the same past, or an empty text.
QString difference(const RouterModel &model, const Rules &rules)
{
    for (int slot = 0; slot < slotCount; ++slot) {
        const bool isTaken = model.filter_list_mask & 1U << slot;
        if (isTaken != rules.names.contains(slot)
            || model.filter_list[size_t(slot)] != rules.names.value(slot))
            return QStringLiteral("slot %1").arg(slot);
    }
    for (int port = 0; port < ports; ++port) {
        for (int channel = 0; channel < channels; ++channel) {
            const ChannelRecord &record =
                model.output_ports[size_t(port)].channels[size_t(channel)];
            const Rules::Filter &filter = rules.filters[size_t(port)][size_t(channel)];
            if (record.filter_enabled != filter.on || record.filter_type != quint8(filter.black)
                || record.filter_mask != Rules::mask(filter))
                return QStringLiteral("output %1, channel %2").arg(port).arg(channel);
        }
    }
    return QString();
}

/*! A connected window whose queue runs at once. */
class FastBench : public WindowBench
{
public:
    FastBench()
    {
        router.setWorking(tk7sim::RouterConfig());
        if (!connectToRouter())
            qFatal("no connection: %s", qPrintable(boxes.report()));
        boxes.setLookInterval(0);
        flush(0);
    }

    template <typename Widget> Widget *row(const char *pattern, int number) const
    {
        return find<Widget>(QString::fromLatin1(pattern).arg(number));
    }

    // What has been sent since the last call while \a port was shown. The sentence of a channel's
    // button goes out behind it as a mark.
    QList<QByteArray> flush(int port)
    {
        constexpr int patience = 5000; // ms
        const QByteArray mark = "$VRVVW," + QByteArray::number(16 * port + 11) + "\r\n";
        row<QPushButton>("pushButton_channel_%1", 11)->click();
        QElapsedTimer clock;
        clock.start();
        while (router.transcript().isEmpty() || router.transcript().last().line != mark) {
            if (!window.currentLink() || clock.hasExpired(patience))
                return {"(mark not heard)"};
            window.currentLink()->slot_send_timer();
            QCoreApplication::processEvents();
        }
        QList<QByteArray> lines = heard();
        lines.removeLast();
        router.clearTranscript();
        return lines;
    }
};

/*! One course of random sessions. */
class Course
{
public:
    explicit Course(quint32 seed) : m_random(seed) { }

    // One session; false, and a problem, if something was not as told.
    bool run();

    QString problem() const { return m_problem; }

    // How often each kind of deed came about.
    const QMap<QString, int> &tally() const { return m_counts; }

private:
    bool chance(int percent) { return m_random.bounded(100) < percent; }
    void count(const QString &what) { ++m_counts[what]; }
    bool check(bool condition, const char *what)
    {
        if (!condition && m_problem.isEmpty())
            m_problem = QString::fromLatin1(what) + QLatin1Char(' ') + m_bench.boxes.report();
        return condition;
    }
    bool answered() { return check(m_bench.boxes.isDone(), "box"); }

    void shuffle();
    QString letters(int length);
    QString anyName(const QStringList &names);
    void hearName(int slot, const QString &name);
    void prepareChannel(int port, int channel);
    void act(FilterUser &user);
    void actAdd(FilterUser &user);
    void enter(SntDlg &entry, const QStringList &refused, const QString &last);
    void actDelete(FilterUser &user);
    void actRouter();
    void close(FilterUser &user, int port, int channel);

    QRandomGenerator m_random;
    FastBench m_bench;
    Rules m_rules;
    QList<QByteArray> m_expected;
    QMap<QString, int> m_counts;
    QString m_problem;
};

QString Course::letters(int length)
{
    QString text;
    for (int i = 0; i < length; ++i)
        text += QChar('A' + m_random.bounded(26));
    return text;
}

QString Course::anyName(const QStringList &names)
{
    return names.isEmpty() ? QString() : names.at(m_random.bounded(names.size()));
}

// The router names a slot, as a download does.
void Course::hearName(int slot, const QString &name)
{
    m_bench.window.slotVRNewFilterStr(quint8(slot), name);
    m_rules.names.remove(slot);
    if (!name.isEmpty())
        m_rules.names[slot] = name;
}

// Another router: a list of any length, some filters, bits of free slots among theirs.
void Course::shuffle()
{
    const int fill = m_random.bounded(5) * 25; // per cent of the slots
    for (int slot = 0; slot < slotCount; ++slot)
        hearName(slot, QString());
    for (int slot = 0; slot < slotCount; ++slot) {
        // A name comes once; one in ten has a small letter, which no editor makes.
        QString name = letters(3);
        if (chance(10))
            name[0] = name.at(0).toLower();
        if (chance(fill) && !m_rules.names.values().contains(name))
            hearName(slot, name);
    }
    for (int port = 0; port < ports; ++port) {
        for (int channel = 0; channel < channels; ++channel) {
            Rules::Filter &filter = m_rules.filters[size_t(port)][size_t(channel)];
            filter = Rules::Filter();
            filter.inUse = chance(20);
            filter.on = filter.inUse && chance(70);
            filter.black = filter.inUse && chance(50);
            for (int slot = 0; filter.inUse && slot < slotCount; ++slot) {
                if (chance(5) && (m_rules.names.contains(slot) || chance(20)))
                    filter.picked.insert(slot);
            }
            const int flags = (filter.on ? 2 : 0) + (filter.black ? 4 : 0);
            m_bench.window.slotVRNewRule(quint8(port), channel, filter.inUse ? 0xf0 : 0xff,
                                         quint8(flags));
            m_bench.window.slotVRNewFilterMask(quint8(port), channel, Rules::mask(filter));
        }
    }
}

// Shows the port, and switches the channel's filter on if it isn't.
void Course::prepareChannel(int port, int channel)
{
    Rules::Filter &filter = m_rules.filters[size_t(port)][size_t(channel)];
    if (!filter.inUse) {
        filter = Rules::Filter();
        filter.inUse = true;
        m_bench.window.slotVRNewRule(quint8(port), channel, 0xf0, 0);
        m_bench.window.slotVRNewFilterMask(quint8(port), channel, 0);
    }
    m_bench.row<QPushButton>("pushButton_output_port_%1", port)->click();
    m_expected += "$VRVVW," + QByteArray::number(16 * port + 15) + "\r\n";
    auto *box = m_bench.row<QCheckBox>("checkBox_channel_%1_filter", channel);
    while (!filter.on || chance(5)) {
        box->click();
        m_expected += m_rules.toggle(port, channel);
        count(QStringLiteral("check box"));
    }
}

void Course::actAdd(FilterUser &user)
{
    QPushButton *button = user.button("pushButton_add");
    if (m_rules.freeSlot() < 0) {
        count(QStringLiteral("full list"));
        m_bench.boxes.expect(
            FilterUser::information(QStringLiteral("Not enough space for the new NMEA sentence"),
                                    QStringLiteral("Add new sentence")));
        button->click();
        answered();
        return;
    }
    QStringList refused;
    while (chance(20))
        refused += chance(50) ? letters(m_random.bounded(3)) : QString(letters(2) + QChar('7'));
    QString name = chance(15) ? anyName(m_rules.draft.values()) : QString();
    if (name.isEmpty())
        name = letters(3);
    const QString last = chance(15) ? QString() : chance(50) ? name.toLower() : name;
    const bool closed =
        inDialog<SntDlg>(button, [&](SntDlg &entry) { enter(entry, refused, last); });
    check(closed, "entry");
    answered();
}

// Types what is refused, and \a last in the end; cancels if that is empty.
void Course::enter(SntDlg &entry, const QStringList &refused, const QString &last)
{
    auto *field = entry.findChild<QLineEdit *>();
    for (const QString &text : refused) {
        count(QStringLiteral("refused entry"));
        m_bench.boxes.expect(FilterUser::information(
            text.size() == 3
                ? QStringLiteral("The NMEA sentence can consist only Latin characters.")
                : QStringLiteral("The NMEA sentence consist of 3 characters.")));
        field->setText(text);
        FilterUser::press(entry, QDialogButtonBox::Ok);
        check(entry.isVisible(), "refused entry stays open");
    }
    if (last.isEmpty()) {
        count(QStringLiteral("cancelled entry"));
        FilterUser::press(entry, QDialogButtonBox::Cancel);
        return;
    }
    const QString name = last.toUpper();
    if (m_rules.draft.values().contains(name)) {
        count(QStringLiteral("known name"));
        m_bench.boxes.expect(FilterUser::information(
            QStringLiteral("The NMEA sentence %1 already exist.").arg(name)));
    } else {
        count(QStringLiteral("added name"));
        m_rules.add(name);
    }
    field->setText(last);
    FilterUser::press(entry, QDialogButtonBox::Ok);
}

void Course::actDelete(FilterUser &user)
{
    const QString name = anyName(m_rules.draft.values());
    if (name.isEmpty()) {
        count(QStringLiteral("nothing to delete"));
        user.button("pushButton_del")->click();
        return;
    }
    const bool yes = chance(70);
    const QStringList used = m_rules.users(name);
    count((yes ? QStringLiteral("deleted ") : QStringLiteral("kept "))
          + (used.isEmpty() ? QStringLiteral("unused name") : QStringLiteral("used name")));
    check(used.isEmpty() ? user.remove(name, yes) : user.removeUsed(name, used, yes), "delete");
    if (yes)
        m_rules.remove(name);
}

// What arrives while the editor is open goes past it.
void Course::actRouter()
{
    count(QStringLiteral("sentence from the router"));
    if (chance(50)) {
        const QString name = chance(50) ? QString() : letters(3);
        if (!m_rules.names.values().contains(name))
            hearName(m_random.bounded(slotCount), name);
        return;
    }
    const int port = m_random.bounded(ports);
    const int channel = m_random.bounded(channels);
    Rules::Filter &filter = m_rules.filters[size_t(port)][size_t(channel)];
    filter.picked = {m_random.bounded(slotCount), m_random.bounded(slotCount)};
    m_bench.window.slotVRNewFilterMask(quint8(port), channel, Rules::mask(filter));
}

void Course::act(FilterUser &user)
{
    const int deed = m_random.bounded(100);
    const QString name = anyName(m_rules.draft.values());
    if (deed < 30) {
        actAdd(user);
    } else if (deed < 50) {
        actDelete(user);
    } else if (deed < 80 && !name.isEmpty()) {
        count(QStringLiteral("checked row"));
        m_rules.boxes[name] = !m_rules.boxes.value(name);
        check(user.toggle(name), "row");
    } else if (deed < 92) {
        count(QStringLiteral("type"));
        m_rules.draftIsBlack = chance(50);
        user.chooseType(m_rules.draftIsBlack);
    } else {
        actRouter();
    }
}

void Course::close(FilterUser &user, int port, int channel)
{
    QStringList rows;
    for (auto box = m_rules.boxes.begin(); box != m_rules.boxes.end(); ++box)
        rows += box.value() ? QString(box.key() + QLatin1Char('+')) : box.key();
    check(user.rows() == rows, "rows");
    if (chance(70)) {
        count(QStringLiteral("ok"));
        m_expected += m_rules.accept(port, channel);
        user.ok();
    } else {
        count(QStringLiteral("cancel"));
        m_expected += m_rules.cancel();
        user.cancel();
    }
}

bool Course::run()
{
    if (chance(20) || m_rules.names.isEmpty())
        shuffle();
    m_expected.clear();
    const int port = m_random.bounded(ports);
    const int channel = m_random.bounded(channels);
    prepareChannel(port, channel);

    const FilterUser::Answer answer = [this](QAbstractButton *button, const BoxAnswer::Box &box) {
        m_bench.boxes.expect(box);
        button->click();
        return answered();
    };
    auto *button = m_bench.row<QPushButton>("pushButton_channel_%1_filter_set", channel);
    const bool closed = inDialog<FilterDlg>(button, [&](FilterDlg &dialog) {
        m_rules.open(port, channel);
        FilterUser user(dialog, answer);
        while (chance(83))
            act(user);
        close(user, port, channel);
    });
    check(closed, "editor");
    const QString wrong = difference(m_bench.window.routerModel(), m_rules);
    check(wrong.isEmpty(), qPrintable(wrong));

    const QList<QByteArray> heard = m_bench.flush(port);
    if (heard != m_expected && m_problem.isEmpty())
        m_problem = "wanted\n" + m_expected.join() + "heard\n" + heard.join();
    return m_problem.isEmpty();
}

} // namespace

void tst_filter_random::sessions()
{
    bool isSet = false;
    quint32 seed = qEnvironmentVariable("TK7_SEED").toUInt(&isSet);
    seed = isSet ? seed : defaultSeed;
    int count = qEnvironmentVariableIntValue("TK7_SESSIONS", &isSet);
    count = isSet ? count : defaultSessions;
    qInfo("seed %u, %d sessions", seed, count);

    Course course(seed);
    for (int session = 0; session < count; ++session) {
        if (!course.run())
            QFAIL(qPrintable(QStringLiteral("seed %1, session %2: %3")
                                 .arg(seed)
                                 .arg(session)
                                 .arg(course.problem())));
    }

    // A course that leaves something out would prove less than it says.
    const QMap<QString, int> &tally = course.tally();
    for (auto deed = tally.begin(); deed != tally.end(); ++deed)
        qInfo("%6d %s", deed.value(), qPrintable(deed.key()));
    if (count < defaultSessions)
        return;
    for (const char *deed :
         {"added name", "cancel", "cancelled entry", "check box", "checked row",
          "deleted unused name", "deleted used name", "full list", "kept unused name",
          "kept used name", "known name", "nothing to delete", "ok", "refused entry",
          "sentence from the router", "type"})
        QVERIFY2(tally.value(QString::fromLatin1(deed)) >= leastOfADeed, deed);
}

QTEST_MAIN(tst_filter_random)
#include "tst_filter_random.moc"

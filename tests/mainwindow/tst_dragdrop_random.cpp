#include "dragtest.h"
#include "matrixview.h"

#include <QRandomGenerator>

#include <functional>

using MatrixRows::emptyRow;

/*! Drags, selections and ">>" in any order, beside a small model of its own. */
class TestRandomDrags : public DragTest
{
    Q_OBJECT

private slots:
    void randomDrags();
    void randomDragsOnTheWire();
};

namespace {

using Words = QMap<int, QByteArray>;

/*! What the matrix is to do, with numbers only: no record, no widget. */
class PaperMatrix
{
public:
    struct Channel
    {
        int input[2] = {15, 15}; // main and reserve
        int flags = 0;
        bool isDressed = false; // has a header and a mask

        bool isEmpty() const { return input[0] == 15 && input[1] == 15; }
    };

    PaperMatrix() { select(0); }

    int output = 0;
    std::array<std::array<Channel, 12>, 12> channels;
    std::array<int, 12> places; // of the labels

    void select(int port)
    {
        output = port;
        for (int p = 0; p < 12; ++p) {
            places[size_t(p)] = 48 + p;
            for (int c = 0; c < 12; ++c) {
                const Channel &channel = at(c);
                if (channel.input[1] == p)
                    places[size_t(p)] = 32 + c;
                if (channel.input[0] == p)
                    places[size_t(p)] = 16 + c;
            }
        }
    }

    bool accepts(int from, int to) const
    {
        if (to >= 48)
            return from < 48;
        return channels[size_t(output)][size_t(to % 16)].input[to / 16 - 1] == 15;
    }

    void move(int port, int to)
    {
        const int from = places[size_t(port)];
        if (from < 48)
            at(from % 16).input[from / 16 - 1] = 15;
        if (to < 48)
            at(to % 16).input[to / 16 - 1] = port;
        if (from < 48 && at(from % 16).isEmpty())
            at(from % 16) = Channel();
        places[size_t(port)] = to < 48 ? to : 48 + port;
    }

    void returnAll()
    {
        channels[size_t(output)] = {};
        select(output);
    }

    Channel &at(int channel) { return channels[size_t(output)][size_t(channel)]; }

    QString row(int channel)
    {
        const Channel &record = at(channel);
        if (record.isEmpty())
            return emptyRow;
        const bool hdr = record.flags & 8;
        QString text = record.flags & 2 ? QStringLiteral("F+s") : QStringLiteral("F-");
        text += record.flags & 1 ? QStringLiteral("C+") : QStringLiteral("C");
        text += hdr ? QStringLiteral("H+tsS\"GP\"") : QStringLiteral("H--S\"\"");
        if (record.flags & 0x70)
            text += QLatin1Char('!');
        return text;
    }

    Words words(int port) const
    {
        Words list;
        for (int c = 0; c < 12; ++c) {
            const Channel &record = channels[size_t(port)][size_t(c)];
            const auto word = QStringLiteral("%1%2%3")
                                  .arg(record.input[1], 0, 16)
                                  .arg(record.input[0], 0, 16)
                                  .arg(record.flags, 2, 16, QLatin1Char('0'));
            list[c] = word.toUpper().toLatin1();
        }
        return list;
    }
};

/*! Chance that can be repeated. */
class Dice
{
public:
    Dice()
    {
        const QByteArray wanted = qgetenv("TK7_TEST_SEED");
        const quint32 seed = wanted.isEmpty() ? 20240607 : wanted.toUInt();
        qInfo("seed %u; TK7_TEST_SEED sets another", seed);
        m_generator.seed(seed);
    }

    int below(int sides) { return m_generator.bounded(sides); }

private:
    QRandomGenerator m_generator;
};

/*! A window and its paper, kept in step by the same random hand. */
class RandomHand
{
public:
    using Drag = std::function<bool(QWidget *from, QWidget *to)>; // whether it was accepted

    RandomHand(MainWindow &shown, const MatrixView &view, const Drag &mouse)
        : window(shown), matrix(view), drag(mouse)
    {
        for (int o = 0; o < 12; ++o) {
            for (int c = 0; c < 12; ++c)
                fill(o, c);
        }
        paper.select(0);
        matrix.outputButton(0)->click();
    }

    /*! What goes over the wire by the next step; empty if nothing does. What fails is told. */
    QByteArray step()
    {
        const int what = dice.below(100);
        if (what < 6)
            return select();
        if (what < 8)
            return returnAll();
        if (what < 16)
            return toggleCheck();
        return move();
    }

    QString difference()
    {
        for (int i = 0; i < 12; ++i) {
            if (matrix.placeOf(i) != paper.places[size_t(i)])
                return QStringLiteral("label %1 lies in %2 instead of %3")
                    .arg(i)
                    .arg(matrix.placeOf(i))
                    .arg(paper.places[size_t(i)]);
            if (matrix.labels[size_t(i)]->geometry() != QRect(4, 4, 88, 24))
                return QStringLiteral("label %1 is out of place").arg(i);
            if (matrix.row(i) != paper.row(i))
                return QStringLiteral("row %1 is %2 instead of %3")
                    .arg(QString::number(i), matrix.row(i), paper.row(i));
        }
        return modelDifference();
    }

    QString modelDifference()
    {
        for (int o = 0; o < 12; ++o) {
            for (int c = 0; c < 12; ++c) {
                const ChannelRecord &record =
                    window.routerModel().output_ports[size_t(o)].channels[size_t(c)];
                const auto &sheet = paper.channels[size_t(o)][size_t(c)];
                const quint32 mask = sheet.isDressed ? 0x00010001 : 0;
                if (record.main_input != sheet.input[0] || record.reserve_input != sheet.input[1]
                    || flagsByte(record) != sheet.flags || record.filter_mask != mask
                    || record.hdr.isEmpty() == sheet.isDressed)
                    return QStringLiteral("channel %1 of output port %2 differs").arg(c).arg(o);
            }
        }
        return QString();
    }

    PaperMatrix paper;
    int drags = 0;
    int refused = 0;
    QString fault; // the first surprise of a step

private:
    // About a third of the cells.
    void fill(int output, int channel)
    {
        auto &sheet = paper.channels[size_t(output)][size_t(channel)];
        for (int &input : sheet.input)
            input = dice.below(3) == 0 ? dice.below(12) : 15;
        sheet.isDressed = !sheet.isEmpty();
        sheet.flags = sheet.isEmpty() ? 0 : 8 + dice.below(8) + 16 * dice.below(8);
        window.slotVRNewRule(quint8(output), channel, quint8(16 * sheet.input[1] + sheet.input[0]),
                             quint8(sheet.flags));
        const bool inUse = sheet.isDressed;
        window.slotVRNewHdr(quint8(output), channel, inUse ? QStringLiteral("GP") : QString());
        window.slotVRNewFilterMask(quint8(output), channel, inUse ? 0x00010001 : 0);
    }

    QByteArray rule() const { return ruleSentence(paper.output, paper.words(paper.output)); }

    QByteArray select()
    {
        paper.select(dice.below(12));
        matrix.outputButton(paper.output)->click();
        return QStringLiteral("$VRVVW,%1\r\n").arg(16 * paper.output + 15).toLatin1();
    }

    QByteArray returnAll()
    {
        paper.returnAll();
        window.findChild<QPushButton *>(QStringLiteral("pushButton_return_input"))->click();
        return rule();
    }

    QByteArray toggleCheck()
    {
        const int channel = dice.below(12);
        matrix.crsBox(channel)->click();
        if (paper.at(channel).isEmpty())
            return QByteArray();
        paper.at(channel).flags ^= 1;
        return rule();
    }

    QByteArray move()
    {
        const int port = dice.below(12);
        const int to = 16 + 16 * dice.below(3) + dice.below(12);
        const bool accepts = paper.accepts(paper.places[size_t(port)], to);
        const bool accepted = drag(matrix.labels[size_t(port)], matrix.frame(to));
        ++drags;
        refused += !accepts;
        if (accepted != accepts && fault.isEmpty())
            fault = QStringLiteral("port %1 to %2: %3").arg(port).arg(to).arg(accepted);
        if (!accepts)
            return QByteArray();
        paper.move(port, to);
        return rule();
    }

    MainWindow &window;
    const MatrixView &matrix;
    Drag drag;
    Dice dice;
};

} // namespace

void TestRandomDrags::randomDrags()
{
    constexpr int steps = 2000;
    MainWindow window;
    window.resize(853, 1000);
    window.show();
    const MatrixView matrix(window);
    RandomHand hand(window, matrix,
                    [](QWidget *from, QWidget *to) { return drag(from, to).accepted; });
    for (int i = 0; i < steps; ++i) {
        hand.step();
        const QString wrong = hand.fault + hand.difference();
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("step %1: ").arg(i) + wrong));
    }
    // The hand has had something to do.
    QVERIFY(hand.drags - hand.refused > steps / 4);
    QVERIFY(hand.refused > steps / 10);
}

void TestRandomDrags::randomDragsOnTheWire()
{
    constexpr int steps = 60; // 25 ms a line
    ConnectedMatrix connected;
    connected.window().resize(853, 1000); // the screen is too low for the whole matrix
    connected.reset();
    RandomHand hand(connected.window(), connected.matrix,
                    [](QWidget *from, QWidget *to) { return drag(from, to).accepted; });
    connected.sent();
    QList<QByteArray> expected;
    for (int i = 0; i < steps; ++i) {
        const QByteArray line = hand.step();
        if (!line.isEmpty())
            expected += line;
    }
    QCOMPARE(hand.fault + hand.difference(), QString());
    QVERIFY(expected.size() > steps / 3);
    QCOMPARE(connected.sent(), expected);
}

QTEST_MAIN(TestRandomDrags)
#include "tst_dragdrop_random.moc"

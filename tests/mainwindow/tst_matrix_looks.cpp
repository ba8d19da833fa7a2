#include "matrixlooks.h"
#include "matrixtest.h"

#include <QComboBox>
#include <QFrame>

using namespace MatrixLooks;
using MatrixRows::emptyRow;
using MatrixRows::plainRow;

namespace {

// "3:16 5:32" as a list of pairs.
QList<QPair<int, int>> pairs(const QString &text)
{
    QList<QPair<int, int>> list;
    const auto words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : words) {
        list += {word.section(QLatin1Char(':'), 0, 0).toInt(nullptr, 0),
                 word.section(QLatin1Char(':'), 1, 1).toInt(nullptr, 0)};
    }
    return list;
}

} // namespace

/*! What the matrix shows at the start, and of a model: a row, its options, the labels' places. */
class TestMatrixLooks : public MatrixTest
{
    Q_OBJECT

private slots:
    void heads_data();
    void heads();
    void rowWidgets_data();
    void rowWidgets();
    void headerFields();
    void channelButtonsAreARowApart();
    void outputRows_data();
    void outputRows();
    void cells_data();
    void cells();
    void homes_data();
    void homes();
    void sheetsAtStart();
    void selectionAtStart();
    void painted_data();
    void painted();

    void channelRow_data();
    void channelRow();
    void rowFollowsItsRecord();
    void headerMask_data();
    void headerMask();
    void smartButton_data();
    void smartButton();
    void smartButtonOfNoChannel();

    void labelPlaces_data();
    void labelPlaces();

private:
    // Brings the fresh window's model to the screen as the end of a download does.
    void refresh();
};

void TestMatrixLooks::refresh()
{
    connected()->bench.boxes.expect(WindowBench::downloadBox());
    fresh()->slotVRUpdateVRData();
}

// The first state, at 96 dots per inch

void TestMatrixLooks::heads_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("place"); // null where none is required
    QTest::addColumn<QString>("sheet");

    const QString orange = QStringLiteral("QLabel { color : rgb(255,95,0); }");
    const QString blue = QStringLiteral("QLabel { color : rgb(5,0,180); }");
    const auto row = [](const char *type, const char *name, const QString &text,
                        const QRect &place = QRect(), const QString &sheet = QString()) {
        QTest::newRow(name) << QString::fromLatin1(type) << QString::fromLatin1(name) << text
                            << place << sheet;
    };
    row("QFrame", "frame_input_channels_all", {}, {252, 58, 453, 43});
    row("QLabel", "label_input_channels", "INPUT CHANNELS", {}, orange);
    row("QLabel", "label_cur_ch_out", "< OUTPUT PORT 0 >", {}, blue);
    row("QLabel", "label_channel_main", "Main");
    row("QLabel", "label_channel_reserve", "Reserve");
    row("QLabel", "label_rules", "Rules");
    row("QFrame", "frame_color_left", {});
    row("QFrame", "frame_color_up", {});
    row("QFrame", "frame_color_down", {});
    row("QFrame", "frame_color_right", {});
    row("QPushButton", "pushButton_return_input", ">>", {720, 49, 12, 547});
    row("QLabel", "label_input_ports", "   INPUT\n   PORTS", {735, 51, 115, 35}, orange);
    row("QLabel", "label_4", "   drag & drop\n   INPUT PORTS", {735, 567, 99, 31});
    row("QScrollArea", "scrollAreaInputPorts", {}, {735, 90, 115, 477});
    row("QScrollArea", "scrollAreaInputChannels", {}, {252, 102, 465, 483});
    row("QFrame", "frame_input_channels_tabl", {}, {0, 0, 467, 481});
    row("QFrame", "frame_label_output_ports", {}, {4, 49, 232, 26});
    row("QLabel", "label_output_ports", "OUTPUT PORTS", {}, blue);
    row("QScrollArea", "scrollAreaOutputPorts", {}, {4, 78, 235, 461});
    row("QFrame", "frame_output_ports", {}, {0, 0, 235, 461});
}

void TestMatrixLooks::heads()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    const auto *widget = fresh()->findChild<QWidget *>(name);
    QVERIFY(widget);
    QTEST(QString::fromLatin1(widget->metaObject()->className()), "type");
    if (!text.isEmpty())
        QCOMPARE(widget->property("text").toString(), text);
    if (!place.isNull())
        QCOMPARE(widget->geometry(), place);
    QTEST(widget->styleSheet(), "sheet");
    QVERIFY(widget->isVisible());
}

void TestMatrixLooks::rowWidgets_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QPoint>("place");

    struct Kind
    {
        const char *name;
        const char *type;
        const char *text;
        int x;
        int y;
    };
    const Kind kinds[] = {
        {"checkBox_channel_%1_filter", "QCheckBox", "Filter", 254, 0},
        {"pushButton_channel_%1_filter_set", "QPushButton", "Set", 256, 20},
        {"checkBox_channel_%1_crs", "QCheckBox", "CRS", 312, 0},
        {"pushButton_channel_%1_smart", "QPushButton", "Smart", 313, 20},
        {"checkBox_channel_%1_hdr", "QCheckBox", "HDR", 372, 0},
        {"lineEdit_channel_%1_hdr", "QLineEdit", "", 374, 20},
        {"pushButton_channel_%1_hdr_set", "QPushButton", "Set", 404, 20},
    };
    for (const Kind &kind : kinds) {
        for (int n = 0; n < MatrixView::size; ++n) {
            const QString name = QString::fromLatin1(kind.name).arg(n);
            QString type = QString::fromLatin1(kind.type);
            if (n == 0 && type == QLatin1String("QCheckBox"))
                type = QStringLiteral("QMCheckBox");
            QTest::newRow(qPrintable(name)) << type << name << QString::fromLatin1(kind.text)
                                            << QPoint(kind.x, 40 * n + kind.y);
        }
    }
}

void TestMatrixLooks::rowWidgets()
{
    QFETCH(QString, name);
    const auto *widget = fresh()->findChild<QWidget *>(name);
    QVERIFY(widget);
    QTEST(QString::fromLatin1(widget->metaObject()->className()), "type");
    QTEST(widget->property("text").toString(), "text");
    QTEST(widget->pos(), "place");
    QCOMPARE(widget->parent()->objectName(), QStringLiteral("frame_input_channels_tabl"));
    QVERIFY(!widget->isEnabled());
    QVERIFY(!widget->property("checked").toBool());
    QCOMPARE(widget->focusPolicy(), Qt::NoFocus);
}

void TestMatrixLooks::headerFields()
{
    const MatrixView matrix(*fresh());
    for (int n = 0; n < MatrixView::size; ++n) {
        const auto *field = matrix.widget<QLineEdit>("lineEdit_channel_%1_hdr", n);
        QVERIFY(field->isReadOnly());
        QCOMPARE(field->maxLength(), 2);
        QCOMPARE(field->inputMask(), n == 0 ? QStringLiteral(">AA") : QString());
    }
}

void TestMatrixLooks::channelButtonsAreARowApart()
{
    const MatrixView matrix(*fresh());
    const int top = matrix.channelButton(0)->y();
    QVERIFY(top >= 0 && top + 27 <= 40);
    for (int n = 0; n < MatrixView::size; ++n) {
        const QPushButton *button = matrix.channelButton(n);
        QCOMPARE(button->metaObject()->className(), "QPushButton");
        QCOMPARE(button->geometry(), QRect(8, top + 40 * n, 27, 27));
        QCOMPARE(button->text(), QString::number(n));
        QCOMPARE(button->focusPolicy(), Qt::StrongFocus);
        QVERIFY(button->isEnabled());
    }
}

void TestMatrixLooks::outputRows_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("text");

    for (int port = 0; port < MatrixView::size; ++port) {
        const QString blanks(port > 9 ? 2 : 3, QLatin1Char(' '));
        QTest::addRow("port %d", port) << port << "PORT" + blanks + QString::number(port);
    }
}

void TestMatrixLooks::outputRows()
{
    QFETCH(int, port);
    const MatrixView matrix(*fresh());
    const auto *frame = matrix.widget<QFrame>("frame_output_ports_%1", port);
    const auto *first = matrix.widget<QFrame>("frame_output_ports_%1", 0);
    QCOMPARE(frame->parent()->objectName(), QStringLiteral("frame_output_ports"));
    QCOMPARE(frame->geometry(), QRect(first->x(), first->y() + 38 * port, 231, 33));

    const QPushButton *button = matrix.outputButton(port);
    QCOMPARE(button->metaObject()->className(), "QMPushButton");
    QCOMPARE(button->parent(), frame);
    QCOMPARE(button->geometry(), QRect(7, 4, 93, 25));
    QCOMPARE(button->font().pointSize(), 8);
    QTEST(button->text(), "text");

    const auto *speed = matrix.widget<QComboBox>("comboBox_output_port_%1", port);
    QCOMPARE(speed->metaObject()->className(), "QMComboBox");
    QCOMPARE(speed->parent(), frame);
    QCOMPARE(speed->geometry(), QRect(125, 4, 87, 25));
}

void TestMatrixLooks::cells_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QPoint>("place");

    for (int c = 0; c < MatrixView::size; ++c) {
        QTest::addRow("main of channel %d", c) << 16 + c << QPoint(45, 5 + 40 * c);
        QTest::addRow("reserve of channel %d", c) << 32 + c << QPoint(151, 5 + 40 * c);
        QTest::addRow("home of port %d", c) << 48 + c << QPoint(2, 2 + 40 * c);
    }
}

void TestMatrixLooks::cells()
{
    QFETCH(int, code);
    QFETCH(QPoint, place);
    const MatrixView matrix(*fresh());
    const DragFrame *frame = matrix.frame(code);
    const char *area = code < 48 ? "scrollAreaInputChannels" : "scrollAreaInputPorts";
    const auto *column = fresh()->findChild<QScrollArea *>(QString::fromLatin1(area))->widget();
    QCOMPARE(frame->parentWidget(), column);
    QCOMPARE(column->metaObject()->className(), "QFrame");
    QCOMPARE(frame->geometry(), QRect(place, QSize(95, 31)));
    QCOMPARE(frame->frameStyle(), 33);
    QVERIFY(frame->acceptDrops());
    QVERIFY(frame->isVisible());
    QVERIFY(frame->isEnabled());
}

void TestMatrixLooks::homes_data()
{
    QTest::addColumn<int>("port");

    for (int port = 0; port < MatrixView::size; ++port)
        QTest::addRow("port %d", port) << port;
}

void TestMatrixLooks::homes()
{
    QFETCH(int, port);
    const MatrixView matrix(*fresh());
    const auto index = MatrixView::at(port);

    const QLabel *placeholder = matrix.placeholders[index];
    QCOMPARE(placeholder->geometry(), QRect(4, 4, 88, 24));
    QCOMPARE(placeholder->text(), QStringLiteral(" PORT %1").arg(port));
    QCOMPARE(placeholder->font().pointSize(), 8);
    QVERIFY(!placeholder->isEnabled());

    const QLabel *label = matrix.labels[index];
    QCOMPARE(label->parent(), matrix.homes[index]);
    QCOMPARE(label->geometry(), QRect(4, 4, 88, 24));
    QCOMPARE(label->text(), QStringLiteral("PORT %1").arg(port));
    QCOMPARE(label->frameStyle(), 35);
    QCOMPARE(label->lineWidth(), 1);
    QCOMPARE(label->midLineWidth(), 1);
    QCOMPARE(label->font().pointSize(), 8);
    QVERIFY(label->isVisible());
    // The label lies over its placeholder.
    QCOMPARE(matrix.homes[index]->childAt(20, 10), label);

    const QLabel *speed = matrix.speedLabel(port);
    QVERIFY(speed);
    QCOMPARE(speed->geometry(), QRect(98, 2 + 40 * port, 47, 31));
    QCOMPARE(speed->text(), QStringLiteral("4800"));
    QCOMPARE(speed->frameStyle(), 33);
    QCOMPARE(speed->midLineWidth(), 1);
    QCOMPARE(speed->font().pointSize(), 8);
    QCOMPARE(speed->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QVERIFY(!speed->isEnabled());
    QVERIFY(speed->isHidden());
}

void TestMatrixLooks::sheetsAtStart()
{
    const MatrixView matrix(*fresh());
    for (int i = 0; i < MatrixView::size; ++i) {
        QCOMPARE(matrix.outputButton(i)->styleSheet(), i < 8 ? rs422Output : rs232Output);
        QCOMPARE(matrix.channelButton(i)->styleSheet(), restingChannel);
        QCOMPARE(matrix.labels[MatrixView::at(i)]->styleSheet(), i < 10 ? rs422Input : rs232Input);
        QCOMPARE(matrix.widget<QPushButton>("pushButton_channel_%1_smart", i)->styleSheet(),
                 smartOff);
    }
}

void TestMatrixLooks::selectionAtStart()
{
    const MatrixView matrix(*fresh());
    const QColor plain = fresh()->palette().color(QPalette::Window);
    QStringList names;
    for (int port = 0; port < MatrixView::size; ++port)
        names += QStringLiteral("frame_output_ports_%1").arg(port);
    names << "frame_color_left"
          << "frame_color_up"
          << "frame_color_down"
          << "frame_color_right";
    for (const QString &name : qAsConst(names)) {
        const auto *frame = fresh()->findChild<QFrame *>(name);
        const bool isViolet =
            !name.startsWith(QLatin1String("frame_output")) || name.endsWith("_0");
        for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            QCOMPARE(frame->palette().color(group, frame->backgroundRole()),
                     isViolet ? violet : plain);
        QCOMPARE(frame->styleSheet(), QString());
    }
}

void TestMatrixLooks::painted_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QColor>("color");

    QTest::newRow("left bar") << "frame_color_left" << QPoint(1, 200) << violet;
    QTest::newRow("upper bar") << "frame_color_up" << QPoint(200, 1) << violet;
    QTest::newRow("lower bar") << "frame_color_down" << QPoint(200, 1) << violet;
    QTest::newRow("right bar") << "frame_color_right" << QPoint(1, 200) << violet;
    QTest::newRow("selected output port") << "frame_output_ports_0" << QPoint(112, 16) << violet;
    QTest::newRow("RS-422 output")
        << "pushButton_output_port_7" << QPoint(4, 12) << QColor(5, 0, 180);
    QTest::newRow("RS-232 output")
        << "pushButton_output_port_8" << QPoint(4, 12) << QColor(29, 177, 0);
    QTest::newRow("channel") << "pushButton_channel_5" << QPoint(4, 12) << QColor(Qt::white);
}

void TestMatrixLooks::painted()
{
    QFETCH(QString, name);
    QFETCH(QPoint, point);
    auto *widget = fresh()->findChild<QWidget *>(name);
    const QImage picture = fresh()->grab().toImage();
    QTEST(picture.pixelColor(widget->mapTo(fresh(), point)), "color");
}

// A channel's row

void TestMatrixLooks::channelRow_data()
{
    QTest::addColumn<int>("rules");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QString>("hdr");
    QTest::addColumn<QString>("row");

    QTest::newRow("empty") << 0xff << 0 << "" << emptyRow;
    QTest::newRow("empty, with all options") << 0xff << 0x7f << "GP" << emptyRow;
    QTest::newRow("main only") << 0xf3 << 0 << "" << plainRow;
    QTest::newRow("reserve only") << 0x5f << 0 << "" << plainRow;
    QTest::newRow("both, the same port") << 0x33 << 0 << "" << plainRow;
    QTest::newRow("port 0 as main") << 0xf0 << 0 << "" << plainRow;
    QTest::newRow("port 11 as reserve") << 0xbf << 0 << "" << plainRow;
    QTest::newRow("checksum check") << 0xf3 << 0x01 << ""
                                    << "F-C+H--S\"\"";
    QTest::newRow("filter") << 0xf3 << 0x02 << ""
                            << "F+sCH--S\"\"";
    QTest::newRow("black list, filter off") << 0xf3 << 0x04 << "" << plainRow;
    QTest::newRow("header") << 0xf3 << 0x08 << "GP"
                            << "F-CH+tsS\"GP\"";
    QTest::newRow("header, none stored") << 0xf3 << 0x08 << ""
                                         << "F-CH+tsS\"\"";
    QTest::newRow("header stored, but off") << 0xf3 << 0 << "GP" << plainRow;
    QTest::newRow("smart function 1") << 0xf3 << 0x10 << ""
                                      << "F-CH--S\"\"!";
    QTest::newRow("smart function 7") << 0xf3 << 0x70 << ""
                                      << "F-CH--S\"\"!";
    QTest::newRow("bit 7 is no smart function") << 0xf3 << 0x80 << "" << plainRow;
    QTest::newRow("everything") << 0x5f << 0x7f << "AI"
                                << "F+sC+H+tsS\"AI\"!";
}

void TestMatrixLooks::channelRow()
{
    QFETCH(int, rules);
    QFETCH(int, flags);
    QFETCH(QString, hdr);
    QFETCH(QString, row);
    const MatrixView matrix(*fresh());
    const QList<int> changed = {0, 5, 11};
    for (int channel : changed) {
        fresh()->slotVRNewRule(0, channel, quint8(rules), quint8(flags));
        fresh()->slotVRNewHdr(0, channel, hdr);
        QCOMPARE(matrix.row(channel), emptyRow); // the screen follows at the end
    }
    refresh();
    for (int channel = 0; channel < MatrixView::size; ++channel)
        QCOMPARE(matrix.row(channel), changed.contains(channel) ? row : emptyRow);
}

void TestMatrixLooks::rowFollowsItsRecord()
{
    const MatrixView matrix(*fresh());
    const auto show = [&](quint8 rules, quint8 flags) {
        fresh()->slotVRNewRule(0, 4, rules, flags);
        fresh()->slotVRNewHdr(0, 4, QStringLiteral("GP"));
        matrix.outputButton(0)->click();
        return matrix.row(4);
    };
    const QString full = QStringLiteral("F+sC+H+tsS\"GP\"!");
    QCOMPARE(show(0x53, 0x3b), full);
    QCOMPARE(show(0x53, 0x00), plainRow);
    QCOMPARE(show(0x53, 0x3b), full);
    QCOMPARE(show(0xff, 0x3b), emptyRow);
    QCOMPARE(show(0x5f, 0x3b), full);
}

void TestMatrixLooks::headerMask_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<QString>("hdr");
    QTest::addColumn<QString>("shown");

    QTest::newRow("channel 0") << 0 << "GP"
                               << "GP";
    QTest::newRow("channel 0 raises the case") << 0 << "gp"
                                               << "GP";
    QTest::newRow("channel 0 takes letters only") << 0 << "P1"
                                                  << "P";
    QTest::newRow("another channel leaves the case") << 1 << "gp"
                                                     << "gp";
    QTest::newRow("another channel takes digits") << 11 << "P1"
                                                  << "P1";
}

void TestMatrixLooks::headerMask()
{
    QFETCH(int, channel);
    QFETCH(QString, hdr);
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, channel, 0xf3, 0x08);
    fresh()->slotVRNewHdr(0, channel, hdr);
    matrix.outputButton(0)->click();
    QTEST(matrix.widget<QLineEdit>("lineEdit_channel_%1_hdr", channel)->text(), "shown");
    QCOMPARE(fresh()->routerModel().output_ports[0].channels[size_t(channel)].hdr, hdr);
}

void TestMatrixLooks::smartButton_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("enable");
    QTest::addColumn<QString>("sheet");

    QTest::newRow("function, enabled") << 0x20 << true << smartSet;
    QTest::newRow("function, not enabled") << 0x20 << false << smartOff;
    QTest::newRow("no function, enabled") << 0x0f << true << smartOff;
    QTest::newRow("no function, not enabled") << 0x0f << false << smartOff;
}

void TestMatrixLooks::smartButton()
{
    QFETCH(int, flags);
    QFETCH(bool, enable);
    QFETCH(QString, sheet);
    const MatrixView matrix(*fresh());
    for (quint8 channel : {quint8(0), quint8(11)}) {
        auto *button = matrix.widget<QPushButton>("pushButton_channel_%1_smart", channel);
        fresh()->slotVRNewRule(0, channel, 0xf3, quint8(flags));
        fresh()->SetSmartButtonColor(channel, !enable);
        fresh()->SetSmartButtonColor(channel, enable);
        QCOMPARE(button->styleSheet(), sheet);
        QVERIFY(!button->isEnabled());
    }
}

void TestMatrixLooks::smartButtonOfNoChannel()
{
    const MatrixView matrix(*fresh());
    for (int channel : {12, 15, 255})
        fresh()->SetSmartButtonColor(quint8(channel), true);
    for (int channel = 0; channel < MatrixView::size; ++channel)
        QCOMPARE(matrix.row(channel), emptyRow);
}

// Where the labels lie

void TestMatrixLooks::labelPlaces_data()
{
    QTest::addColumn<QString>("rules");  // channel:rules
    QTest::addColumn<QString>("places"); // port:code of those away from home

    QTest::newRow("nowhere") << ""
                             << "";
    QTest::newRow("main") << "3:0xf7"
                          << "7:19";
    QTest::newRow("reserve") << "3:0x7f"
                             << "7:35";
    QTest::newRow("first and last cells") << "0:0xf0 11:0xbf"
                                          << "0:16 11:43";
    QTest::newRow("two ports in one channel") << "6:0x21"
                                              << "1:22 2:38";
    QTest::newRow("main over reserve of the same channel") << "6:0x44"
                                                           << "4:22";
    QTest::newRow("main in channels 2 and 5: the last") << "2:0xf4 5:0xf4"
                                                        << "4:21";
    QTest::newRow("reserve in channels 2 and 5: the last") << "2:0x4f 5:0x4f"
                                                           << "4:37";
    QTest::newRow("a later reserve over an earlier main") << "2:0xf4 5:0x4f"
                                                          << "4:37";
    QTest::newRow("a later main over an earlier reserve") << "2:0x4f 5:0xf4"
                                                          << "4:21";
    QTest::newRow("an earlier channel with both") << "2:0x44 9:0x4f"
                                                  << "4:41";
    QTest::newRow("a port in all channels")
        << "0:0xf4 1:0xf4 2:0xf4 3:0xf4 4:0xf4 5:0xf4 6:0xf4 7:0xf4 8:0xf4 9:0xf4 10:0xf4 11:0x44"
        << "4:27";
}

void TestMatrixLooks::labelPlaces()
{
    QFETCH(QString, rules);
    QFETCH(QString, places);
    const MatrixView matrix(*fresh());
    const auto channels = pairs(rules);
    for (const auto &[channel, byte] : channels)
        fresh()->slotVRNewRule(9, channel, quint8(byte), 0);
    matrix.outputButton(9)->click();

    QMap<int, int> away;
    const auto moved = pairs(places);
    for (const auto &[port, code] : moved)
        away[port] = code;
    for (int port = 0; port < MatrixView::size; ++port) {
        const QLabel *label = matrix.labels[MatrixView::at(port)];
        QCOMPARE(matrix.placeOf(port), away.value(port, 48 + port));
        QCOMPARE(label->geometry(), QRect(4, 4, 88, 24));
        QVERIFY(label->isVisible());
        QVERIFY(label->isEnabled());
        QCOMPARE(label->text(), QStringLiteral("PORT %1").arg(port));
    }
    // A row is in use by its record, though its cell may look empty.
    for (const auto &[channel, byte] : channels)
        QCOMPARE(matrix.row(channel), plainRow);

    matrix.outputButton(1)->click();
    for (int port = 0; port < MatrixView::size; ++port)
        QCOMPARE(matrix.placeOf(port), 48 + port);
}

QTEST_MAIN(TestMatrixLooks)
#include "tst_matrix_looks.moc"

#include "matrixwindows.h"

#include <QComboBox>
#include <QFrame>
#include <QSignalSpy>

#include <functional>

namespace {

const QString viewedButton = QStringLiteral(
    "QPushButton{background-color: rgb(255,95,0); color: white; font-size: 8pt; border-style: "
    "inset;  border-width: 1px;}QPushButton:pressed{background-color: rgb(255,95,0); color: white; "
    "font-size: 8pt; border-style: outset; border-width: 1px;}");
const QString restingChannel = QStringLiteral(
    "QPushButton{background-color: white; border-style: inset; font-size: 8pt; border-width: 1px;}"
    "QPushButton:pressed{background-color: white; border-style: outset; font-size: 8pt; "
    "border-width: 1px;}");
const QString rs422Output = QStringLiteral(
    "QPushButton{background-color: rgb(5,0,180); color: white; font-size: 8pt; border-style: "
    "inset;  border-width: 1px;}QPushButton:pressed{background-color: rgb(5,0,180); color: white; "
    "font-size: 8pt; border-style: outset; border-width: 1px;}");
const QString rs232Output = QStringLiteral(
    "QPushButton{background-color: rgb(29,177,0); color: white; font-size: 8pt; border-style: "
    "inset;  border-width: 1px;}QPushButton:pressed{background-color: rgb(29,177,0); color: white; "
    "font-size: 8pt; border-style: outset; border-width: 1px;}");
const QString viewedInput = QStringLiteral(
    "QLabel{background-color: rgb(255,95,0); font-size: 8pt; border-style: inset;  border-width: "
    "1px;}QLabel:pressed{background-color: rgb(255,95,0); font-size: 8pt; border-style: outset; "
    "border-width: 1px;}");
const QString rs422Input = QStringLiteral(
    "QLabel{background-color: rgb(5,0,180); color: white; font-size: 8pt; border-style: inset;  "
    "border-width: 1px;}QLabel:pressed{background-color: rgb(5,0,180); color: white; font-size: "
    "8pt; border-style: outset; border-width: 1px;}QLabel:pressed{background-color: rgb(29,177,0); "
    "color: white; font-size: 8pt; border-style: outset; border-width: 1px;}");
const QString rs232Input = QStringLiteral(
    "QLabel{background-color: rgb(29,177,0); color: white; font-size: 8pt; border-style: inset;  "
    "border-width: 1px;}");
const QString smartSet = QStringLiteral("QPushButton{background-color: rgb(255,199,1); }"
                                        "QPushButton:pressed{background-color: rgb(255,199,1); }");
const QString smartOff = QStringLiteral("QPushButton{}QPushButton:pressed{}");

const QColor violet(85, 40, 245);

// Rows as MatrixView::row() tells them.
const QString emptyRow = QStringLiteral("-------\"\"");
const QString plainRow = QStringLiteral("F-CH--S\"\"");

constexpr int inputPort(int view)
{
    return view >= 0xf0 && view < 0xfc ? view - 0xf0 : -1;
}
constexpr int outputPort(int view)
{
    return view % 16 == 15 && view / 16 < 12 ? view / 16 : -1;
}
constexpr int channel(int view)
{
    return view % 16 < 12 && view / 16 < 15 ? view % 16 : -1; // whatever port it names
}

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

// The style sheets of all that shows a view, row by row: output port, channel, input port.
QStringList viewSheets(const MatrixView &matrix)
{
    QStringList sheets;
    for (int i = 0; i < MatrixView::size; ++i) {
        sheets << matrix.outputButton(i)->styleSheet() << matrix.channelButton(i)->styleSheet()
               << matrix.labels[MatrixView::at(i)]->styleSheet();
    }
    return sheets;
}

// And as they are to be under this view.
QStringList viewSheets(int view)
{
    QStringList sheets;
    for (int i = 0; i < MatrixView::size; ++i) {
        const QString &outputAtRest = i < 8 ? rs422Output : rs232Output;
        const QString &inputAtRest = i < 10 ? rs422Input : rs232Input;
        sheets << (outputPort(view) == i ? viewedButton : outputAtRest)
               << (channel(view) == i ? viewedButton : restingChannel)
               << (inputPort(view) == i ? viewedInput : inputAtRest);
    }
    return sheets;
}

} // namespace

class TestMatrix : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_FONT_DPI", "96"); }

private slots:
    void cleanup();
    void cleanupTestCase();

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

    void viewColors();
    void viewIsIgnoredWhileNotConnected();

    void selectOutputPort_data();
    void selectOutputPort();
    void selectionOffline();
    void selectionKeepsTheModel();
    void channelButton_data();
    void channelButton();
    void viewFollowsTheRouter();

    void clickOnFrame_data();
    void clickOnFrame();
    void clickRepaintsThePresentView();
    void clickOnPlaceholder();

    void crsBox_data();
    void crsBox();
    void crsBoxOfAnEmptyChannel();
    void crsBoxOffline();

    void returnAll();
    void returnAllOffline();

    void unknownSenders_data();
    void unknownSenders();
    void nothingIsSentBeforeTheConnectionStands();

private:
    MainWindow *fresh() { return m_windows.fresh(); }
    ConnectedMatrix *connected() { return m_windows.connected(); }
    MainWindow &window() { return connected()->window(); }
    const ChannelRecord &record(int port, int channel)
    {
        return window().routerModel().output_ports[size_t(port)].channels[size_t(channel)];
    }
    // Brings the fresh window's model to the screen as the end of a download does.
    void refresh();

    MatrixWindows m_windows;
};

void TestMatrix::cleanup()
{
    m_windows.endTest();
    const QString problem = m_windows.problem();
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
}

void TestMatrix::cleanupTestCase()
{
    m_windows.disconnect();
}

void TestMatrix::refresh()
{
    connected()->bench.boxes.expect(WindowBench::downloadBox());
    fresh()->slotVRUpdateVRData();
}

// The first state, at 96 dots per inch

void TestMatrix::heads_data()
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

void TestMatrix::heads()
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

void TestMatrix::rowWidgets_data()
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

void TestMatrix::rowWidgets()
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

void TestMatrix::headerFields()
{
    const MatrixView matrix(*fresh());
    for (int n = 0; n < MatrixView::size; ++n) {
        const auto *field = matrix.widget<QLineEdit>("lineEdit_channel_%1_hdr", n);
        QVERIFY(field->isReadOnly());
        QCOMPARE(field->maxLength(), 2);
        QCOMPARE(field->inputMask(), n == 0 ? QStringLiteral(">AA") : QString());
    }
}

void TestMatrix::channelButtonsAreARowApart()
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

void TestMatrix::outputRows_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("text");

    for (int port = 0; port < MatrixView::size; ++port) {
        const QString blanks(port > 9 ? 2 : 3, QLatin1Char(' '));
        QTest::addRow("port %d", port) << port << "PORT" + blanks + QString::number(port);
    }
}

void TestMatrix::outputRows()
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

void TestMatrix::cells_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QPoint>("place");

    for (int c = 0; c < MatrixView::size; ++c) {
        QTest::addRow("main of channel %d", c) << 16 + c << QPoint(45, 5 + 40 * c);
        QTest::addRow("reserve of channel %d", c) << 32 + c << QPoint(151, 5 + 40 * c);
        QTest::addRow("home of port %d", c) << 48 + c << QPoint(2, 2 + 40 * c);
    }
}

void TestMatrix::cells()
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

void TestMatrix::homes_data()
{
    QTest::addColumn<int>("port");

    for (int port = 0; port < MatrixView::size; ++port)
        QTest::addRow("port %d", port) << port;
}

void TestMatrix::homes()
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

void TestMatrix::sheetsAtStart()
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

void TestMatrix::selectionAtStart()
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

void TestMatrix::painted_data()
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

void TestMatrix::painted()
{
    QFETCH(QString, name);
    QFETCH(QPoint, point);
    auto *widget = fresh()->findChild<QWidget *>(name);
    const QImage picture = fresh()->grab().toImage();
    QTEST(picture.pixelColor(widget->mapTo(fresh(), point)), "color");
}

// A channel's row

void TestMatrix::channelRow_data()
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

void TestMatrix::channelRow()
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

void TestMatrix::rowFollowsItsRecord()
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

void TestMatrix::headerMask_data()
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

void TestMatrix::headerMask()
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

void TestMatrix::smartButton_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("enable");
    QTest::addColumn<QString>("sheet");

    QTest::newRow("function, enabled") << 0x20 << true << smartSet;
    QTest::newRow("function, not enabled") << 0x20 << false << smartOff;
    QTest::newRow("no function, enabled") << 0x0f << true << smartOff;
    QTest::newRow("no function, not enabled") << 0x0f << false << smartOff;
}

void TestMatrix::smartButton()
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

void TestMatrix::smartButtonOfNoChannel()
{
    const MatrixView matrix(*fresh());
    for (int channel : {12, 15, 255})
        fresh()->SetSmartButtonColor(quint8(channel), true);
    for (int channel = 0; channel < MatrixView::size; ++channel)
        QCOMPARE(matrix.row(channel), emptyRow);
}

// Where the labels lie

void TestMatrix::labelPlaces_data()
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

void TestMatrix::labelPlaces()
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

// Colours of the view

void TestMatrix::viewColors()
{
    for (int step = 0; step <= 256; ++step) {
        const int code = step % 256; // all of them, and from nothing back to the first
        window().slotVRPortView(quint8(code));
        const QString message = QStringLiteral("code %1").arg(code);
        QVERIFY2(viewSheets(connected()->matrix) == viewSheets(code), qPrintable(message));
    }
}

void TestMatrix::viewIsIgnoredWhileNotConnected()
{
    const MatrixView matrix(*fresh());
    const QStringList atRest = viewSheets(matrix);
    for (int code : {0x0f, 0x00, 0xf3})
        fresh()->slotVRPortView(quint8(code));
    QCOMPARE(viewSheets(matrix), atRest);
}

// Buttons

void TestMatrix::selectOutputPort_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("port 0") << 0 << QByteArray("$VRVVW,15\r\n");
    QTest::newRow("port 1") << 1 << QByteArray("$VRVVW,31\r\n");
    QTest::newRow("port 3") << 3 << QByteArray("$VRVVW,63\r\n");
    QTest::newRow("port 7") << 7 << QByteArray("$VRVVW,127\r\n");
    QTest::newRow("port 8") << 8 << QByteArray("$VRVVW,143\r\n");
    QTest::newRow("port 10") << 10 << QByteArray("$VRVVW,175\r\n");
    QTest::newRow("port 11") << 11 << QByteArray("$VRVVW,191\r\n");
}

void TestMatrix::selectOutputPort()
{
    QFETCH(int, port);
    QFETCH(QByteArray, line);
    MatrixView &matrix = connected()->matrix;
    connected()->start(port == 5 ? 6 : 5);
    // Each output port takes its own input port, as main of its own channel.
    for (int o = 0; o < MatrixView::size; ++o)
        window().slotVRNewRule(quint8(o), o, quint8(0xf0 + o), 0x11);
    const QColor plain = window().palette().color(QPalette::Window);

    QTest::mouseClick(matrix.outputButton(port), Qt::LeftButton);

    for (int i = 0; i < MatrixView::size; ++i) {
        const auto *frame = matrix.widget<QFrame>("frame_output_ports_%1", i);
        for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            QCOMPARE(frame->palette().color(group, frame->backgroundRole()),
                     i == port ? violet : plain);
        QCOMPARE(matrix.row(i), i == port ? QStringLiteral("F-C+H--S\"\"!") : emptyRow);
        QCOMPARE(matrix.placeOf(i), i == port ? 16 + i : 48 + i);
    }
    QCOMPARE(connected()->bench.find<QLabel>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT %1 >").arg(port));
    QCOMPARE(connected()->sent(), QList<QByteArray>{line});

    QTest::mouseClick(matrix.outputButton(port), Qt::LeftButton);
    QCOMPARE(connected()->sent(), QList<QByteArray>{line}); // also when it is the present one
}

void TestMatrix::selectionOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(11, 2, 0xf3, 0);
    QTest::mouseClick(matrix.outputButton(11), Qt::LeftButton);
    QCOMPARE(matrix.placeOf(3), 18);
    QCOMPARE(matrix.row(2), plainRow);
    QCOMPARE(fresh()->findChild<QLabel *>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT 11 >"));
    QTest::mouseClick(matrix.outputButton(0), Qt::LeftButton);
    QCOMPARE(matrix.placeOf(3), 51);
    QCOMPARE(matrix.row(2), emptyRow);
}

void TestMatrix::selectionKeepsTheModel()
{
    for (int o = 0; o < MatrixView::size; ++o)
        window().slotVRNewRule(quint8(o), o, quint8(0x10 * o + 3), 0x7f);
    const RouterModel before = window().routerModel();
    for (int port = 0; port < MatrixView::size; ++port)
        connected()->select(port);
    QVERIFY(window().routerModel() == before);
}

void TestMatrix::channelButton_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("channel");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("channel 0 of port 0") << 0 << 0 << QByteArray("$VRVVW,0\r\n");
    QTest::newRow("channel 7 of port 3") << 3 << 7 << QByteArray("$VRVVW,55\r\n");
    QTest::newRow("channel 3 of port 7") << 7 << 3 << QByteArray("$VRVVW,115\r\n");
    QTest::newRow("channel 11 of port 11") << 11 << 11 << QByteArray("$VRVVW,187\r\n");
}

void TestMatrix::channelButton()
{
    QFETCH(int, port);
    QFETCH(int, channel);
    QFETCH(QByteArray, line);
    constexpr int mark = 10;
    connected()->start(port);
    const RouterModel before = window().routerModel();
    QTest::mouseClick(connected()->matrix.channelButton(channel), Qt::LeftButton);
    QCOMPARE(connected()->sent(mark), QList<QByteArray>{line});
    QVERIFY(window().routerModel() == before);
}

void TestMatrix::viewFollowsTheRouter()
{
    connected()->start(0);
    MatrixView &matrix = connected()->matrix;
    const auto *heading = connected()->bench.find<QLabel>("label_receive_port");
    QTest::mouseClick(matrix.outputButton(3), Qt::LeftButton);
    QVERIFY(matrix.outputButton(3)->styleSheet() != viewedButton); // not before the router says so
    QTRY_COMPARE(heading->text(), QStringLiteral("OUTPUT PORT 3"));
    QCOMPARE(matrix.outputButton(3)->styleSheet(), viewedButton);

    QTest::mouseClick(matrix.channelButton(4), Qt::LeftButton);
    QCOMPARE(matrix.channelButton(4)->styleSheet(), restingChannel);
    QTRY_COMPARE(heading->text(), QStringLiteral("OUTPUT PORT 3 - CHANNEL 4"));
    QCOMPARE(matrix.channelButton(4)->styleSheet(), viewedButton);
    QCOMPARE(matrix.outputButton(3)->styleSheet(), rs422Output);

    QTest::mouseClick(matrix.labels[10], Qt::LeftButton);
    QCOMPARE(matrix.labels[10]->styleSheet(), rs232Input);
    QTRY_COMPARE(heading->text(), QStringLiteral("INPUT PORT 10"));
    QCOMPARE(matrix.labels[10]->styleSheet(), viewedInput);
    QCOMPARE(matrix.channelButton(4)->styleSheet(), restingChannel);
}

// Clicks on frames

void TestMatrix::clickOnFrame_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("button");
    QTest::addColumn<QByteArray>("line"); // empty if nothing is sent

    const int left = Qt::LeftButton;
    const QByteArray nothing;
    QTest::newRow("main cell") << 16 + 2 << left << QByteArray("$VRVVW,243\r\n");
    QTest::newRow("reserve cell") << 32 + 2 << left << QByteArray("$VRVVW,245\r\n");
    QTest::newRow("main cell of channel 11") << 16 + 11 << left << QByteArray("$VRVVW,240\r\n");
    QTest::newRow("empty main cell") << 16 + 4 << left << nothing;
    QTest::newRow("empty reserve cell") << 32 + 4 << left << nothing;
    QTest::newRow("main cell whose label shows in a later channel")
        << 16 + 1 << left << QByteArray("$VRVVW,244\r\n");
    QTest::newRow("home of a port in no channel") << 48 + 7 << left << QByteArray("$VRVVW,247\r\n");
    QTest::newRow("home of port 11") << 48 + 11 << left << QByteArray("$VRVVW,251\r\n");
    QTest::newRow("home of a main input") << 48 + 3 << left << nothing;
    QTest::newRow("home of a reserve input") << 48 + 5 << left << nothing;
    QTest::newRow("home of an input in two channels") << 48 + 4 << left << nothing;
    QTest::newRow("home of an input of another output port")
        << 48 + 8 << left << QByteArray("$VRVVW,248\r\n");
    QTest::newRow("middle button on a main cell") << 16 + 2 << int(Qt::MiddleButton) << nothing;
}

void TestMatrix::clickOnFrame()
{
    QFETCH(int, frame);
    QFETCH(int, button);
    QFETCH(QByteArray, line);
    constexpr int mark = 10;
    window().slotVRNewRule(0, 2, 0x53, 0);
    window().slotVRNewRule(0, 1, 0xf4, 0);
    window().slotVRNewRule(0, 6, 0xf4, 0);
    window().slotVRNewRule(0, 11, 0xf0, 0);
    window().slotVRNewRule(1, 3, 0x88, 0);
    connected()->start(0);
    const RouterModel before = window().routerModel();

    DragFrame *clicked = connected()->matrix.frame(frame);
    QTest::mouseClick(clicked, Qt::MouseButton(button), Qt::NoModifier, QPoint(20, 15));

    QCOMPARE(connected()->sent(mark),
             line.isEmpty() ? QList<QByteArray>{} : QList<QByteArray>{line});
    QVERIFY(window().routerModel() == before);
    QCOMPARE(clicked->frameStyle(), 33);
}

void TestMatrix::clickRepaintsThePresentView()
{
    connected()->start(0);
    MatrixView &matrix = connected()->matrix;
    window().slotVRPortView(0xf7);
    matrix.labels[7]->setStyleSheet(QString());
    matrix.labels[2]->setStyleSheet(QString());
    QTest::mouseClick(matrix.labels[2], Qt::LeftButton);
    QCOMPARE(matrix.labels[7]->styleSheet(), viewedInput);
    QCOMPARE(matrix.labels[2]->styleSheet(), rs422Input);
    QTRY_COMPARE(matrix.labels[2]->styleSheet(), viewedInput);
}

void TestMatrix::clickOnPlaceholder()
{
    MatrixView &matrix = connected()->matrix;
    window().slotVRNewRule(0, 2, 0xf3, 0);
    connected()->start(0);
    QLabel *placeholder = matrix.placeholders[3];
    QCOMPARE(matrix.homes[3]->childAt(placeholder->geometry().center()), placeholder);
    QSignalSpy presses(matrix.homes[3], &DragFrame::signalPressEvent);
    QSignalSpy releases(matrix.homes[3], &DragFrame::signalReleaseEvent);
    QTest::mouseClick(placeholder, Qt::LeftButton);
    QCOMPARE(presses.count(), 0);
    QCOMPARE(releases.count(), 1);
    QCOMPARE(connected()->sent(), QList<QByteArray>{});
}

// The CRS box

void TestMatrix::crsBox_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QString>("row");

    QTest::newRow("set in channel 0") << 0 << 0x00 << QByteArray("5301") << "F-C+H--S\"\"";
    QTest::newRow("set in channel 5") << 5 << 0x00 << QByteArray("5301") << "F-C+H--S\"\"";
    QTest::newRow("set in channel 11") << 11 << 0x00 << QByteArray("5301") << "F-C+H--S\"\"";
    QTest::newRow("cleared in channel 5") << 5 << 0x01 << QByteArray("5300") << plainRow;
    QTest::newRow("set beside the other options")
        << 5 << 0x3e << QByteArray("533F") << "F+sC+H+tsS\"GP\"!";
    QTest::newRow("cleared beside the other options")
        << 0 << 0x3f << QByteArray("533E") << "F+sCH+tsS\"GP\"!";
}

void TestMatrix::crsBox()
{
    QFETCH(int, channel);
    QFETCH(int, flags);
    QFETCH(QByteArray, word);
    window().slotVRNewRule(2, channel, 0x53, quint8(flags));
    window().slotVRNewHdr(2, channel, QStringLiteral("GP"));
    window().slotVRNewFilterMask(2, channel, 0x80000001);
    connected()->start(2);
    RouterModel expected = window().routerModel();
    auto &changed = expected.output_ports[2].channels[size_t(channel)];
    changed.crs_enabled = !changed.crs_enabled;

    QTest::mouseClick(connected()->matrix.crsBox(channel), Qt::LeftButton, Qt::NoModifier,
                      QPoint(8, 10));

    QVERIFY(window().routerModel() == expected);
    QTEST(connected()->matrix.row(channel), "row");
    QCOMPARE(connected()->sent(), QList<QByteArray>{ruleSentence(2, {{channel, word}})});
}

void TestMatrix::crsBoxOfAnEmptyChannel()
{
    connected()->start(0);
    QTest::mouseClick(connected()->matrix.crsBox(5), Qt::LeftButton, Qt::NoModifier, QPoint(8, 10));
    QVERIFY(!record(0, 5).crs_enabled);
    QCOMPARE(connected()->sent(), QList<QByteArray>{});
}

void TestMatrix::crsBoxOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 5, 0xf3, 0);
    matrix.outputButton(0)->click();
    QTest::mouseClick(matrix.crsBox(5), Qt::LeftButton, Qt::NoModifier, QPoint(8, 10));
    QVERIFY(fresh()->routerModel().output_ports[0].channels[5].crs_enabled);
    QCOMPARE(matrix.row(5), QStringLiteral("F-C+H--S\"\""));
}

// ">>"

void TestMatrix::returnAll()
{
    for (int port = 0; port < MatrixView::size; ++port) {
        for (int c = 0; c < MatrixView::size; ++c) {
            window().slotVRNewRule(quint8(port), c, quint8(0x10 * c + 11 - c), 0x3f);
            window().slotVRNewFilterMask(quint8(port), c, 0xffffffff);
            window().slotVRNewHdr(quint8(port), c, QStringLiteral("GP"));
        }
    }
    connected()->start(4);
    RouterModel expected = window().routerModel();
    expected.output_ports[4].channels = {};

    QTest::mouseClick(connected()->bench.find<QPushButton>("pushButton_return_input"),
                      Qt::LeftButton);

    QVERIFY(window().routerModel() == expected);
    for (int i = 0; i < MatrixView::size; ++i) {
        QCOMPARE(connected()->matrix.placeOf(i), 48 + i);
        QCOMPARE(connected()->matrix.row(i), emptyRow);
    }
    const QByteArray line = "$VRRUL,4,W,FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*00\r\n";
    QCOMPARE(connected()->sent(), QList<QByteArray>{line});
}

void TestMatrix::returnAllOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 5, 0xf3, 0x13);
    fresh()->slotVRNewRule(1, 5, 0xf3, 0x13);
    matrix.outputButton(0)->click();
    QCOMPARE(matrix.placeOf(3), 21);
    RouterModel expected = fresh()->routerModel();
    expected.output_ports[0].channels = {};
    QTest::mouseClick(fresh()->findChild<QPushButton *>("pushButton_return_input"), Qt::LeftButton);
    QVERIFY(fresh()->routerModel() == expected);
    QCOMPARE(matrix.placeOf(3), 51);
    QCOMPARE(matrix.row(5), emptyRow);
}

// What comes from nowhere

using Act = std::function<void(MainWindow &, DragFrame *)>;
Q_DECLARE_METATYPE(Act)

void TestMatrix::unknownSenders_data()
{
    QTest::addColumn<Act>("act");

    const auto row = [](const char *name, const Act &act) { QTest::newRow(name) << act; };
    row("output port button", [](auto &w, auto) { w.slotOutputPortButttonClicked(); });
    row("output port button, right", [](auto &w, auto) { w.slotOutputPortButtonRightClicked(); });
    row("channel button", [](auto &w, auto) { w.slotChannelButtonClicked(); });
    row("CRS box", [](auto &w, auto) { w.slotCrsCheckChanged(true); });
    row("speed", [](auto &w, auto) { w.slotPortSpeedChanged(QStringLiteral("9600")); });
    row("input name", [](auto &w, auto) { w.slotEditPortNameOk(); });
    row("output name", [](auto &w, auto) { w.slotEditOutputPortNameOk(); });
    row("end of a name", [](auto &w, auto) { w.slotEditPortNameFinish(); });
    row("release of a foreign frame", [](auto &w, auto frame) { w.slotReleaseEvent(frame); });
    row("name in a foreign frame", [](auto &w, auto frame) { w.slotInputPortEditName(frame); });
    row("drop from a foreign frame", [](auto &w, auto frame) {
        w.slotPressEvent(frame);
        w.slotDropEvent(frame);
    });
    row("a check box of another column", [](auto &w, auto) {
        QCheckBox other;
        QObject::connect(&other, &QCheckBox::clicked, &w, &MainWindow::slotCrsCheckChanged);
        other.click();
    });
    row("a button of another row", [](auto &w, auto) {
        QPushButton other;
        QObject::connect(&other, &QPushButton::clicked, &w, &MainWindow::slotChannelButtonClicked);
        QObject::connect(&other, &QPushButton::clicked, &w,
                         &MainWindow::slotOutputPortButttonClicked);
        other.click();
    });
}

void TestMatrix::unknownSenders()
{
    QFETCH(Act, act);
    MatrixView &matrix = connected()->matrix;
    window().slotVRNewRule(0, 2, 0xf3, 0);
    connected()->start(0);
    const RouterModel before = window().routerModel();
    QStringList rows;
    for (int i = 0; i < MatrixView::size; ++i)
        rows += matrix.row(i);

    DragFrame foreign(&window());
    act(window(), &foreign);

    QVERIFY(window().routerModel() == before);
    for (int i = 0; i < MatrixView::size; ++i) {
        QCOMPARE(matrix.row(i), rows.at(i));
        QCOMPARE(matrix.placeOf(i), i == 3 ? 18 : 48 + i);
    }
    QCOMPARE(connected()->bench.find<QLabel>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT 0 >"));
    QVERIFY(foreign.findChildren<QWidget *>().isEmpty());
    QCOMPARE(connected()->sent(), QList<QByteArray>{});
    window().slotPressEvent(matrix.homes[0]); // forget the foreign frame
}

// The link is open while it looks for the router, so a line queued too early would go out later.
void TestMatrix::nothingIsSentBeforeTheConnectionStands()
{
    m_windows.disconnect(); // two benches would answer each other's boxes
    WindowBench bench;
    tk7sim::RouterConfig config;
    config.speeds[6] = 38400; // the speed that is chosen below, so the download changes none
    bench.router.setWorking(config);
    bench.router.setStartSpeed(9600); // the second one of the search
    const MatrixView matrix(bench.window);
    bench.window.slotVRNewRule(0, 2, 0xf3, 0);
    bench.find<QPushButton>("pushButton_connect")->click();
    QVERIFY(!bench.window.isConnected());

    matrix.outputButton(0)->click();
    matrix.channelButton(3)->click();
    matrix.crsBox(2)->click();
    bench.window.slotReleaseEvent(matrix.main[2]);
    bench.window.slotReleaseEvent(matrix.homes[7]);
    bench.window.slotPressEvent(matrix.homes[7]);
    bench.window.slotDropEvent(matrix.main[3]);
    matrix.widget<QComboBox>("comboBox_output_port_%1", 6)->setCurrentIndex(4);
    bench.find<QPushButton>("pushButton_return_input")->click();
    QVERIFY(!bench.window.isConnected());

    bench.boxes.expect(WindowBench::downloadBox());
    QTRY_VERIFY2(bench.boxes.answered() == 1, qPrintable(bench.boxes.report()));
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    QList<QByteArray> heard = bench.heard();
    heard.removeAll("$VRCNT\r\n");
    QCOMPARE(heard, (QList<QByteArray>{"$VRRLD\r\n", "$VRVER\r\n"}));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

QTEST_MAIN(TestMatrix)
#include "tst_matrix.moc"

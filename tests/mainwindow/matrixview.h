#pragma once

#include "windowbench.h"

#include "widgets/dragframe.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>
#include <array>

/*! The text of \a button as a user reads it. */
inline QString visibleText(const QAbstractButton *button)
{
    return button->text().replace(QLatin1String("&&"), QLatin1String("&"));
}

/*!
 * The routing matrix as a user sees it: its frames, the twelve labels of the input ports, and what
 * stands in a channel's row.
 *
 * Frames and labels have no object names. Frames are told by their places; each label by the home
 * in which it lies at start, so a view is made of a window whose matrix is still empty.
 */
class MatrixView
{
public:
    static constexpr int size = 12;
    static constexpr int noPort = 15;

    explicit MatrixView(const MainWindow &shown) : window(shown)
    {
        auto cells = framesOf("scrollAreaInputChannels");
        std::stable_sort(cells.begin(), cells.end(),
                         [](const auto *a, const auto *b) { return a->x() < b->x(); });
        const auto home = framesOf("scrollAreaInputPorts");
        if (cells.size() != 2 * size || home.size() != size)
            qFatal("the matrix has %d cells and %d homes", int(cells.size()), int(home.size()));
        for (int i = 0; i < size; ++i) {
            main[at(i)] = cells.at(i);
            reserve[at(i)] = cells.at(size + i);
            homes[at(i)] = home.at(i);
            findLabels(i);
        }
    }

    /*! What holds the label of input port \a port: 16 + c main, 32 + c reserve, 48 + p home. */
    int placeOf(int port) const { return codeOf(labels[at(port)]->parentWidget()); }

    /*! The code of \a frame, 0 if it is none of the matrix. */
    int codeOf(const QWidget *frame) const
    {
        for (int i = 0; i < size; ++i) {
            if (main[at(i)] == frame)
                return 16 + i;
            if (reserve[at(i)] == frame)
                return 32 + i;
            if (homes[at(i)] == frame)
                return 48 + i;
        }
        return 0;
    }

    /*! The frame with this code; null for 0. */
    DragFrame *frame(int code) const
    {
        const auto &frames = code < 32 ? main : code < 48 ? reserve : homes;
        return code == 0 ? nullptr : frames[at(code % 16)];
    }

    QPushButton *outputButton(int port) const
    {
        return widget<QPushButton>("pushButton_output_port_%1", port);
    }
    QPushButton *channelButton(int channel) const
    {
        return widget<QPushButton>("pushButton_channel_%1", channel);
    }
    QCheckBox *crsBox(int channel) const
    {
        return widget<QCheckBox>("checkBox_channel_%1_crs", channel);
    }

    /*! The label beside the home of input port \a port. */
    QLabel *speedLabel(int port) const
    {
        const DragFrame *home = homes[at(port)];
        const auto found =
            home->parentWidget()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
        for (QLabel *label : found) {
            if (label->y() == home->y())
                return label;
        }
        return nullptr;
    }

    /*!
     * A channel's row in a line of text. A letter stands for an enabled widget, '-' for a disabled
     * one; '+' follows a checked box; then the header in quotes, and '!' if the Smart button is
     * yellow.
     */
    QString row(int channel) const
    {
        const auto *filter = widget<QCheckBox>("checkBox_channel_%1_filter", channel);
        const auto *filterSet = widget<QPushButton>("pushButton_channel_%1_filter_set", channel);
        const auto *hdr = widget<QCheckBox>("checkBox_channel_%1_hdr", channel);
        const auto *hdrText = widget<QLineEdit>("lineEdit_channel_%1_hdr", channel);
        const auto *hdrSet = widget<QPushButton>("pushButton_channel_%1_hdr_set", channel);
        const auto *smart = widget<QPushButton>("pushButton_channel_%1_smart", channel);
        QString text = box(filter, 'F') + enabled(filterSet, 's') + box(crsBox(channel), 'C')
            + box(hdr, 'H') + enabled(hdrText, 't') + enabled(hdrSet, 's') + enabled(smart, 'S');
        text += QStringLiteral("\"%1\"").arg(hdrText->text());
        if (smart->styleSheet().contains(QStringLiteral("rgb(255,199,1)")))
            text += QLatin1Char('!');
        return text;
    }

    template <typename Widget> Widget *widget(const char *pattern, int number) const
    {
        const QString name = QString::fromLatin1(pattern).arg(number);
        auto *found = window.findChild<Widget *>(name);
        if (!found)
            qFatal("no widget %s", qPrintable(name));
        return found;
    }

    static std::size_t at(int index) { return std::size_t(index); }

    std::array<DragFrame *, size> main;
    std::array<DragFrame *, size> reserve;
    std::array<DragFrame *, size> homes;
    std::array<QLabel *, size> labels;
    std::array<QLabel *, size> placeholders;

private:
    // The drag frames of a column, from top to bottom.
    QList<DragFrame *> framesOf(const char *area) const
    {
        const auto *found = window.findChild<QScrollArea *>(QString::fromLatin1(area));
        auto frames = found->widget()->findChildren<DragFrame *>();
        std::sort(frames.begin(), frames.end(),
                  [](const auto *a, const auto *b) { return a->y() < b->y(); });
        return frames;
    }

    void findLabels(int port)
    {
        labels[at(port)] = nullptr;
        placeholders[at(port)] = nullptr;
        const auto found = homes[at(port)]->findChildren<QLabel *>();
        for (QLabel *label : found)
            (label->isEnabled() ? labels : placeholders)[at(port)] = label;
        if (found.size() != 2 || !labels[at(port)] || !placeholders[at(port)])
            qFatal("home %d does not hold a label and its placeholder", port);
    }

    static QString enabled(const QWidget *widget, char letter)
    {
        return QString(QLatin1Char(widget->isEnabled() ? letter : '-'));
    }

    static QString box(const QCheckBox *box, char letter)
    {
        return enabled(box, letter) + QString(box->isChecked() ? QStringLiteral("+") : QString());
    }

    const MainWindow &window;
};

/*! Rows as MatrixView::row() tells them. */
namespace MatrixRows {

inline const QString emptyRow = QStringLiteral("-------\"\"");
inline const QString plainRow = QStringLiteral("F-CH--S\"\"");
inline const QString fullRow = QStringLiteral("F+sC+H+tsS\"GP\"!");

} // namespace MatrixRows

/*! \a body, a star, its checksum computed here, CR LF. */
inline QByteArray checkedSentence(const QByteArray &body)
{
    int sum = 0;
    for (int i = 1; i < body.size(); ++i)
        sum ^= uchar(body.at(i));
    return body + QStringLiteral("*%1\r\n").arg(sum, 2, 16, QLatin1Char('0')).toUpper().toLatin1();
}

/*! A $VRRUL of its own: twelve empty channels but for the given words, as "F301" of channel 5. */
inline QByteArray ruleSentence(int port, const QMap<int, QByteArray> &words = {})
{
    QByteArray body = "$VRRUL," + QByteArray::number(port) + ",W,";
    for (int channel = 0; channel < MatrixView::size; ++channel)
        body += words.value(channel, "FF00");
    return checkedSentence(body);
}

/*!
 * A window that is connected for the length of a test program, and what it sends.
 *
 * The router starts with an empty configuration.
 */
class ConnectedMatrix
{
public:
    ConnectedMatrix()
    {
        bench.router.setWorking(tk7sim::RouterConfig());
        // A wrong download shows as a failure of every test, told by the report of the boxes.
        if (!bench.connectToRouter())
            qFatal("no connection: %s", qPrintable(bench.boxes.report()));
    }

    MainWindow &window() { return bench.window; }

    /*! Empties the model's channels and names and sets its speeds to 4800 baud, not on the screen.
     */
    void reset()
    {
        for (quint8 port = 0; port < MatrixView::size; ++port) {
            for (int channel = 0; channel < MatrixView::size; ++channel) {
                window().slotVRNewRule(port, channel, 0xff, 0);
                window().slotVRNewFilterMask(port, channel, 0);
                window().slotVRNewHdr(port, channel, QString());
            }
            window().slotVRNewPortName(true, port, QString());
            window().slotVRNewPortName(false, port, QString());
            window().slotVRNewPortSpeed(port, 4800);
        }
    }

    /*! Shows the channels of output port \a port, as a press on its button does. */
    void select(int port) { matrix.outputButton(port)->click(); }

    /*! Shows the channels of output port \a port and forgets what was sent so far. */
    void start(int port)
    {
        select(port);
        sent();
    }

    /*!
     * The lines that have been sent since the last call, in their order.
     *
     * The sentence of a channel's button goes out behind them as a mark, so that what is missing is
     * not just late. The lines themselves must ask for no view that ends in \a markChannel.
     */
    QList<QByteArray> sent(int markChannel = 11)
    {
        constexpr int longestWait = 1000; // ms between two lines
        const auto isMark = [markChannel](const QByteArray &line) {
            return line.startsWith("$VRVVW,") && line.mid(7).trimmed().toInt() % 16 == markChannel;
        };
        QSignalSpy line(&bench.router, &tk7sim::RouterSimulator::lineReceived);
        matrix.channelButton(markChannel)->click();
        bool heard = true;
        while (heard && (bench.heard().isEmpty() || !isMark(bench.heard().last())))
            heard = line.wait(longestWait);
        QList<QByteArray> lines = bench.heard();
        if (!heard || bench.boxes.report().size() > 0)
            lines += "(mark not heard, or a box) " + bench.boxes.report().toLatin1();
        else
            lines.removeLast();
        bench.router.clearTranscript();
        return lines;
    }

    WindowBench bench;
    MatrixView matrix{bench.window};
};

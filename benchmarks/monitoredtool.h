#pragma once

#include "monitorstream.h"

#include <QObject>
#include <QTimer>

class MainWindow;

QT_BEGIN_NAMESPACE
class QListWidget;
QT_END_NAMESPACE

/*!
 * The measured process: the tool's window, connected to a router, with a port under view.
 *
 * It takes orders, a line each, from its standard input, answers by a line on its standard output,
 * and ends with its input.
 */
class MonitoredTool : public QObject
{
public:
    /*! Runs the window on the terminal \a device and returns the exit code of the process. */
    static int run(int argc, char *argv[], const QString &device);

    /*!
     * Asks what has come: "<bytes> <paints> <rows>": of lines and of the list since the start, and
     * in the list now.
     */
    static constexpr const char *countOrder = "count";

    /*!
     * "flood <parts> <seconds>": gives the window the traffic of so many seconds of a saturated
     * line, and so many times, as fast as it takes it. Answers each part as countOrder does.
     */
    static constexpr const char *floodOrder = "flood";

    static constexpr int lineBytesPerSecond = 11520; //!< 115200 baud, ten bits a byte

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit MonitoredTool(MainWindow *window);

    bool connectTo(const QString &device);
    void watchPort();
    void obey(const QByteArray &order);
    void tellCount();
    void floodOneTick();

    MainWindow *m_window;
    QListWidget *m_list;
    qint64 m_bytes = 0;
    qint64 m_paints = 0;
    MonitorStream m_stream;
    QTimer m_flood;
    qint64 m_floodBytes = 0; // of a part
    qint64 m_floodLeft = 0;  // bytes of the part in hand
    int m_partsLeft = 0;
};

#pragma once

#include "matrixview.h"

#include <memory>

/*!
 * A test program of the matrix, with two windows: one that is not connected, made anew for each
 * test that asks for it, and one that stays connected, emptied for each test that asks for it.
 */
class MatrixTest : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_FONT_DPI", "96"); }

private slots:
    void cleanup()
    {
        m_fresh.reset();
        m_isReset = false;
        QVERIFY(!QWidget::mouseGrabber());
        if (!m_connected)
            return;
        const BoxAnswer &boxes = m_connected->bench.boxes;
        QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
        QVERIFY(m_connected->window().isConnected());
    }
    void cleanupTestCase() { m_connected.reset(); }

protected:
    MainWindow *fresh()
    {
        if (m_fresh)
            return m_fresh.get();
        m_fresh = std::make_unique<MainWindow>();
        m_fresh->resize(853, 1000); // the screen may be too low for the whole matrix
        m_fresh->show();
        return m_fresh.get();
    }

    /*! Its matrix is emptied, and what was sent until then is forgotten. */
    ConnectedMatrix *connected()
    {
        if (!m_connected)
            m_connected = std::make_unique<ConnectedMatrix>();
        if (!m_isReset) {
            m_connected->reset();
            m_connected->sent();
        }
        m_isReset = true;
        return m_connected.get();
    }

    void closeFresh() { m_fresh.reset(); }
    /*! For a bench of a test's own: two of them would answer each other's boxes. */
    void disconnectWindow() { m_connected.reset(); }

private:
    std::unique_ptr<ConnectedMatrix> m_connected;
    std::unique_ptr<MainWindow> m_fresh;
    bool m_isReset = false;
};

#pragma once

#include "matrixview.h"

#include <memory>

/*!
 * The two windows of a test program of the matrix: one that is not connected, made anew for each
 * test that asks for it, and one that stays connected, emptied for each test that asks for it.
 */
class MatrixWindows
{
public:
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
    void disconnect() { m_connected.reset(); }

    /*! Closes the first window and has the second emptied when it is next asked for. */
    void endTest()
    {
        m_fresh.reset();
        m_isReset = false;
    }

    /*! What is wrong with the connected window after a test; empty if nothing is. */
    QString problem() const
    {
        if (!m_connected)
            return QString();
        if (!m_connected->bench.boxes.isDone())
            return m_connected->bench.boxes.report();
        return m_connected->window().isConnected() ? QString() : QStringLiteral("not connected");
    }

private:
    std::unique_ptr<ConnectedMatrix> m_connected;
    std::unique_ptr<MainWindow> m_fresh;
    bool m_isReset = false;
};

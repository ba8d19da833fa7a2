#pragma once

#include "aisdialogs/aistestdlg.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <utility>

/*!
 * Uses the window of the AIS test: waits for it to open, runs a function in its event loop, and
 * closes it as a user would, unless that has happened by then.
 */
class AisTestUser
{
public:
    explicit AisTestUser(std::function<void(aistestdlg &)> use = nullptr) : m_use(std::move(use))
    {
        m_timer.setInterval(0);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start();
    }

    /*! Whether the window has opened. */
    bool hasCome() const { return m_hasCome; }

private:
    void look()
    {
        const QPointer<aistestdlg> dialog =
            qobject_cast<aistestdlg *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        m_timer.stop();
        m_hasCome = true;
        if (m_use)
            m_use(*dialog);
        if (dialog)
            dialog->close();
    }

    std::function<void(aistestdlg &)> m_use;
    QTimer m_timer;
    bool m_hasCome = false;
};

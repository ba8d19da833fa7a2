#pragma once

#include <QString>

class MainWindow;

/*!
 * Judges whether links, open files and the top bar agree: idle, searching and connected are three
 * states of one and the same thing, whatever the user does meanwhile.
 */
class LinkCheck
{
public:
    /*! \a window is new, without a link, and outlives this object. */
    explicit LinkCheck(const MainWindow &window);

    /*! What is wrong, also while a dialog is open; empty if nothing is. */
    QString check() const;

private:
    struct State;

    static int openPorts();

    const MainWindow &m_window;
    int m_foreignPorts; // the terminal that the campaign itself runs in
};

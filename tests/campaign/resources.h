#pragma once

#include <QtGlobal>

#include <QStringList>

class MainWindow;

/*! What the process holds at one moment. A plain value. */
struct Resources
{
    qint64 memory = 0;     //!< bytes of the resident set
    qint64 heap = 0;       //!< bytes in use of those that the allocator has given out
    int files = 0;         //!< open file descriptors
    QStringList openFiles; //!< what they lead to
    int threads = 0;
    QStringList widgetClasses; //!< of all that live
    int widgets = 0;
    int objects = 0; //!< that belong to the window

    /*! Measures now. */
    static Resources measure(const MainWindow &window);

    /*! The first count that differs, in words; empty if both hold as many of everything. */
    static QString difference(const Resources &before, const Resources &after);

    /*! For a summary. */
    QString text() const;
};

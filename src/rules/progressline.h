#pragma once

#include <QString>

/*!
 * What the program says beside its product: messages on the standard error, and a line that tells
 * how far long work has come. The line is there on a terminal only.
 */
class ProgressLine
{
public:
    ProgressLine();
    ~ProgressLine();

    void show(const QString &step, int percent);

    /*! Takes the line away; what comes next stands in its place. */
    void clear();

    /*! Prints \a text, a whole line without its end, in the place of the line. */
    void say(const QString &text);

    /*! Prints \a text without an end of line: the answer comes behind it. */
    void ask(const QString &text);

private:
    bool m_isVisible;
    QString m_shown;
};

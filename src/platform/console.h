#pragma once

#include <QObject>
#include <QString>

#include <memory>

/*! What a program for the command line owes to the operating system. */
namespace platform {

enum class StandardStream { Input, Output, Error };

/*! Whether somebody sits at \a stream, and not a file or another program. */
bool isTerminal(StandardStream stream);

/*!
 * Makes the standard output take bytes as they are, and a closed pipe an error of the write
 * instead of the end of the program.
 */
void prepareStandardStreams();

/*!
 * Turns what ends a program (Ctrl-C, a closed terminal, a request of the system) into a signal.
 * Only the first: a second Ctrl-C ends the program at once. Make one.
 */
class StopSignal : public QObject
{
    Q_OBJECT

public:
    explicit StopSignal(QObject *parent = nullptr);
    ~StopSignal() override;

signals:
    void stopped();

private:
    class Private;
    std::unique_ptr<Private> d;
};

/*! Awaits one line of the standard input while the event loop runs. */
class LineReader : public QObject
{
    Q_OBJECT

public:
    explicit LineReader(QObject *parent = nullptr);
    ~LineReader() override;

signals:
    /*! \a line without its end; empty as well when there is no more to read. Raised once. */
    void lineRead(const QString &line);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace platform

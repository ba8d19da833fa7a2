#include "platform/console.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>
#include <QThread>

#include <atomic>
#include <cstdio>
#include <iostream>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace platform {

namespace {

// The system calls the handler in a thread of its own.
std::atomic<StopSignal *> listener{nullptr};

BOOL WINAPI handler(DWORD /*event*/)
{
    StopSignal *stop = listener.exchange(nullptr);
    if (!stop)
        return FALSE; // the second one ends the program
    QMetaObject::invokeMethod(stop, &StopSignal::stopped, Qt::QueuedConnection);
    return TRUE;
}

std::FILE *file(StandardStream stream)
{
    switch (stream) {
    case StandardStream::Input:
        return stdin;
    case StandardStream::Output:
        return stdout;
    case StandardStream::Error:
        break;
    }
    return stderr;
}

} // namespace

bool isTerminal(StandardStream stream)
{
    return _isatty(_fileno(file(stream))) != 0;
}

void prepareStandardStreams()
{
    _setmode(_fileno(stdout), _O_BINARY);
}

class StopSignal::Private
{
};

StopSignal::StopSignal(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    listener = this;
    SetConsoleCtrlHandler(handler, TRUE);
}

StopSignal::~StopSignal()
{
    SetConsoleCtrlHandler(handler, FALSE);
    listener = nullptr;
}

class LineReader::Private
{
};

namespace {

/*! Reads one line and ends. A console can't be waited for together with a serial port. */
class InputThread : public QThread
{
public:
    explicit InputThread(LineReader *reader) : m_reader(reader) { }

protected:
    void run() override
    {
        std::string line;
        std::getline(std::cin, line);
        const QString text = QString::fromLocal8Bit(line.c_str());
        const auto hand = [reader = m_reader, text] {
            if (reader)
                emit reader->lineRead(text);
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), hand, Qt::QueuedConnection);
    }

private:
    QPointer<LineReader> m_reader;
};

} // namespace

LineReader::LineReader(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    // Never deleted: it may still wait for its line when the program ends, and ends with it.
    (new InputThread(this))->start();
}

LineReader::~LineReader() = default;

} // namespace platform

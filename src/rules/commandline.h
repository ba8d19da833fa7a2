#pragma once

#include "model/viewcode.h"

#include <QString>
#include <QStringList>

QT_BEGIN_NAMESPACE
class QCommandLineParser;
QT_END_NAMESPACE

/*! The command line of tk7-rules. */
class CommandLine
{
public:
    enum class Command {
        Help,
        Version,
        Show,
        Diff,
        Check,
        Ports,
        Backup,
        Restore,
        Compare,
        Record
    };

    /*! The formats of Command::Show. */
    static const QStringList &formats();

    /*! Reads \a arguments, the program's name first. False, and error(), if they make no sense. */
    bool parse(const QStringList &arguments);

    QString error() const { return m_error; }
    QString helpText() const { return m_help; }

    Command command() const { return m_command; }

    /*! What stands behind the command: files and ports, as many as it wants. */
    QString operand(int index) const { return m_operands.value(index); }

    QString format() const { return m_format; }
    bool isForced() const { return m_isForced; }
    bool isYes() const { return m_isYes; }
    bool isSave() const { return m_isSave; }
    bool isTimed() const { return m_isTimed; }
    ViewCode view() const { return m_view; }
    int milliseconds() const { return m_milliseconds; } //!< 0: without end

private:
    bool fail(const QString &error);
    bool readCommand(const QCommandLineParser &parser);
    bool readOptions(const QCommandLineParser &parser);
    bool readView(const QCommandLineParser &parser);

    QString m_error;
    QString m_help;
    Command m_command = Command::Help;
    QStringList m_operands;
    QString m_format;
    bool m_isForced = false;
    bool m_isYes = false;
    bool m_isSave = false;
    bool m_isTimed = false;
    ViewCode m_view;
    int m_milliseconds = 0;
};

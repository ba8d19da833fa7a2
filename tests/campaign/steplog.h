#pragma once

#include <QElapsedTimer>
#include <QMap>
#include <QString>
#include <QStringList>

/*!
 * What was done in a campaign: the steps in their order and their numbers by kind.
 *
 * It takes the messages of Qt, too, and on a crash or a hang it still tells the seed and the last
 * steps. There is one in a process.
 */
class StepLog
{
public:
    /*! \a prints each step at once. */
    StepLog(quint32 seed, bool prints);
    ~StepLog();

    /*! Notes a step of \a who, of kind \a kind, told as \a text. */
    void note(const QString &who, const QString &kind, const QString &text);
    /*! Counts \a kind in the group \a who without a line in the list. */
    void count(const QString &who, const QString &kind);
    int total(const QString &who) const;
    /*! The first message of Qt since the last call that is a warning or worse; empty if none. */
    QString takeProblem();

    /*! "kind 12, kind 3": the kinds of the group \a who with their numbers. */
    QString summary(const QString &who) const;

    /*! Prints the last steps to the standard error. Safe from a signal handler. */
    static void printTail();

private:
    Q_DISABLE_COPY(StepLog)

    static void takeMessage(QtMsgType type, const QMessageLogContext &context, const QString &text);

    bool m_prints;
    QElapsedTimer m_clock;
    int m_number = 0;
    QMap<QString, QMap<QString, int>> m_counts;
};

#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QAis;

/*! Writes down every signal of a QAis, in the order in which they come. */
class AisJournal : public QObject
{
    Q_OBJECT

public:
    explicit AisJournal(QAis &ais);

    /*! What came since the last call: "add 3 240827000", "lost 3" and the like. */
    QStringList take();

    /*! Runs inside each signal, with its line. */
    std::function<void(const QString &)> onSignal;

private:
    void write(const QString &line);

    QStringList m_lines;
};

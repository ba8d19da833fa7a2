#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>

/*! The chance in a campaign: the same throws for the same seed and step. */
class Dice
{
public:
    /*!
     * Every step has throws of its own, so that one step that went another way, by a matter of
     * milliseconds, doesn't change the throws of all that follow.
     */
    void startStep(quint32 seed, quint32 step)
    {
        const quint32 both[] = {seed, step};
        m_random = QRandomGenerator(both);
    }

    /*! A number from 0 to \a end - 1. */
    int below(int end) { return m_random.bounded(end); }
    /*! A number from \a first to \a last, both included. */
    int between(int first, int last) { return first + m_random.bounded(last - first + 1); }
    /*! True in \a percent of a hundred cases. */
    bool chance(int percent) { return m_random.bounded(100) < percent; }
    quint32 number() { return m_random.generate(); }

    /*! One of the values of \a choice. */
    template <typename Container> auto pick(const Container &choice)
    {
        return *(std::begin(choice) + below(int(std::size(choice))));
    }

    /*! \a count of the characters of \a alphabet. */
    QString text(int count, const QString &alphabet)
    {
        QString result;
        for (int i = 0; i < count; ++i)
            result += alphabet.at(below(int(alphabet.size())));
        return result;
    }
    QString capitals(int count)
    {
        return text(count, QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ"));
    }
    QByteArray bytes(int count)
    {
        QByteArray result;
        for (int i = 0; i < count; ++i)
            result += char(below(256));
        return result;
    }

private:
    QRandomGenerator m_random;
};

#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QVector>

/*!
 * Makes inputs for the link out of a seed: pure noise, and sentences of the router with parts
 * changed, doubled, cut out or exchanged. Most of the changed sentences get a checksum that fits,
 * so that they come past the test of it.
 */
class FuzzMutator
{
public:
    explicit FuzzMutator(quint32 seed) : m_random(seed) { }

    /*! Adds \a sentences to those that inputs are made from. */
    void addSentences(const QByteArray &sentences);

    QByteArray nextInput();

private:
    QByteArray noise(int size);
    QByteArray mutatedSentence();
    void mutate(QByteArray &body);
    int position(const QByteArray &text);

    QRandomGenerator m_random;
    QVector<QByteArray> m_sentences;
};

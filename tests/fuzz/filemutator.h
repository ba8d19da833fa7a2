#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QVector>

/*!
 * Makes inputs for a reader of binary files out of a seed: known files with bytes changed, cut out,
 * doubled or exchanged between two of them, and now and then pure noise.
 */
class FileMutator
{
public:
    explicit FileMutator(quint32 seed) : m_random(seed) { }

    /*! Adds \a file to those that inputs are made from. */
    void addFile(const QByteArray &file) { m_files.append(file); }

    QByteArray nextInput();

private:
    void mutate(QByteArray &bytes);
    int position(const QByteArray &bytes);
    QByteArray noise(int size);

    QRandomGenerator m_random;
    QVector<QByteArray> m_files;
};

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

/*!
 * For tables of sentences: what a LinkJournal holds when one has been dispatched. Those that raise
 * many signals have a function each that lists them, and good fields with their values.
 */
namespace Reports {

/*! All signals that a new link raises when \a line is dispatched. */
QStringList of(const QString &line);

QString call(const char *name, const QStringList &arguments);
QString number(quint32 value);

struct Word
{
    int rules;
    int flags;
};

/*! Twelve rules; words that are missing are 0. */
QStringList rules(int port, const QVector<Word> &words);
/*! Six masks; those that are missing are 0. */
QStringList masks(int port, int first, const QVector<quint32> &values);
QStringList names(const char *type, int first, const QStringList &texts);
QStringList headers(int port, const QStringList &texts);
QStringList formatters(quint32 first, const QStringList &texts);

inline const QString sumError = QStringLiteral("CommandCRSError()");
inline const QByteArray twelveWords =
    QByteArrayLiteral("123404F0FFFFF0F000000001A5C30F0F8000008000FFFF00");
inline const QByteArray sixMasks =
    QByteArrayLiteral("000000000000000180000000FFFFFFFF12345678A5A5C3C3");
inline const QByteArray chipDigits = QByteArrayLiteral("00112233445566778899AABBCCDDEEFF");

inline const QVector<Word> twelveWordValues{{0x12, 0x34}, {0x04, 0xf0}, {0xff, 0xff}, {0xf0, 0xf0},
                                            {0x00, 0x00}, {0x00, 0x01}, {0xa5, 0xc3}, {0x0f, 0x0f},
                                            {0x80, 0x00}, {0x00, 0x80}, {0x00, 0xff}, {0xff, 0x00}};
inline const QVector<quint32> sixMaskValues{0, 1, 0x80000000, 0xffffffff, 0x12345678, 0xa5a5c3c3};

} // namespace Reports

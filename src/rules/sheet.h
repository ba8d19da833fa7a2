#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class RouterModel;

/*!
 * A configuration as an installer writes it down: texts that can be shown, not yet escaped for the
 * format in which they are.
 */
struct Sheet
{
    /*! A channel that has an input, or an option. */
    struct Channel
    {
        int number = 0;
        QString main;
        QString reserve;
        QString filter;
        QString checksum; //!< "checked" or "none"
        QString header;
        QString smart;
    };

    struct Output
    {
        int number = 0;
        QString name;
        QString kind;
        QString speed; //!< in baud
        QVector<Channel> channels;
    };

    struct Input
    {
        int number = 0;
        QString name;
        QString kind;
        QString speed;    //!< in baud
        QStringList uses; //!< "output 3 ECDIS 1, channel 2" and "..., as reserve"
    };

    QVector<Output> outputs;
    QVector<Input> inputs;
    QStringList sentences; //!< the taken slots of the list: "0 RMC"
};

Sheet makeSheet(const RouterModel &model);

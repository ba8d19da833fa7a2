#pragma once

#include "model/routermodel.h"

#include <QStringList>

#include <bitset>

/*!
 * The configuration of a router as it comes over the line, and what of it hasn't come yet.
 *
 * No sentence is acknowledged: one with a wrong checksum is lost without a word, and the end mark
 * comes all the same. So a download is whole when each number, mask, header and name has come at
 * least once, not when its end mark has. A number that is out of range counts as not come.
 */
class Download
{
public:
    /*! How many values make a configuration. */
    static constexpr int Total =
        3 * OutputPortCount * ChannelCount + FilterSlotCount + 2 * OutputPortCount + InputPortCount;

    /*! What has come, over the defaults of a new model. */
    const RouterModel &model() const { return m_model; }

    int received() const { return int(m_received.count()); }
    bool isComplete() const { return m_received.all(); }

    /*! The sentences that haven't come, or not whole: "the rules of output 3" and the like. */
    QStringList missing() const;

    // As the functions of RouterModel, and the signals of the link.
    void setRule(quint8 port, int channel, quint8 rules, quint8 flags);
    void setFilterMask(quint8 port, int channel, quint32 filter_mask);
    void setHdr(quint8 port, int channel, const QString &hdr);
    void setFilterString(quint8 index, const QString &flt);
    void setPortSpeed(quint8 port, quint32 speed);
    void setPortName(bool output, quint8 port, const QString &name);

private:
    void mark(int place);
    bool isMissing(int first, int count) const;

    RouterModel m_model;
    std::bitset<Total> m_received;
};

#pragma once

#include "simulator/instruments/aisreport.h"

#include <QByteArray>

#include <memory>

namespace tk7sim {

/*! What has become of a line on its way to an input port. */
enum class LineFlaw {
    None,
    WrongChecksum, //!< the text is whole, its checksum doesn't match
    Unprintable,   //!< a control character stands in it
    Broken,        //!< it breaks off, without a line end
    Oversize       //!< it is longer than a sentence may be
};

/*! A line on an input port, without its CR LF. */
struct TrafficLine
{
    qint64 time;     //!< milliseconds since the start of the simulation
    QByteArray text; //!< with its checksum
    LineFlaw flaw = LineFlaw::None;
    std::shared_ptr<const AisReport> report = nullptr; //!< of which it is a part; null: of none
    int part = 0;                                      //!< of its report, from 0 on
};

} // namespace tk7sim

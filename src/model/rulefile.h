#pragma once

#include <QtGlobal>

#include <functional>

QT_BEGIN_NAMESPACE
class QIODevice;
QT_END_NAMESPACE

class RouterModel;

/*!
 * Rule files, suffix ".vrr": the whole of a RouterModel in 1375 to 1663 bytes, without version,
 * length or checksum. docs/rule-file.md tells the format byte by byte.
 *
 * Both functions work on any open device, from its present position on, and leave it open.
 */
namespace RuleFile {

/*! Takes a \a speed in baud that was read for port \a port, 0 to 11. It can be any number. */
using SpeedSetter = std::function<void(quint8 port, quint32 speed)>;

/*!
 * Writes \a model to \a device. Returns false at the first write that takes less than was asked
 * for, at a header override that is on and not two characters long, and at a sentence name in use
 * that is not three bytes long. What was written until then stands in the device.
 *
 * A device with a buffer may find out only when it is flushed or closed that it is full.
 */
bool write(QIODevice &device, const RouterModel &model);

/*!
 * Reads \a device into \a model, field by field and in place. Returns false at the first read that
 * gives too little, except in a port's name, and at a sentence name that is not three characters
 * long. There is deliberately no way back: what was read until then stands in \a model.
 *
 * Each speed is handed to \a setSpeed, which stores it. Inputs are kept as they come, also numbers
 * that no port has: isInputPort() tells.
 */
bool read(QIODevice &device, RouterModel &model, const SpeedSetter &setSpeed);

/*! As above, with RouterModel::setPortSpeed(): a speed that no port can have is skipped. */
bool read(QIODevice &device, RouterModel &model);

} // namespace RuleFile

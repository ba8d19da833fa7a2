#pragma once

#include <QString>

#include <array>

/*!
 * The sentence names that the filters of all channels share, as the filter editor works on them.
 *
 * A name keeps its slot for as long as it is in the list: the channels know it by the slot's bit.
 */
struct SentenceList
{
    static constexpr int size = 32;

    std::array<QString, size> names; //!< by slot; empty where the slot is free
    quint32 mask = 0;                //!< bit i: slot i holds a name

    /*! The mask of a single \a slot, 0 to 31. */
    static constexpr quint32 bit(int slot) { return quint32(1) << slot; }

    bool isTaken(int slot) const { return mask & bit(slot); }

    /*! The lowest free slot, or -1 if all are taken. */
    int freeSlot() const;

    /*! The lowest slot that holds exactly \a name, or -1. */
    int slotOf(const QString &name) const;

    void put(int slot, const QString &name);
    void clear(int slot);
};

#include "editors/sentencelist.h"

int SentenceList::freeSlot() const
{
    for (int slot = 0; slot < size; ++slot) {
        if (!isTaken(slot))
            return slot;
    }
    return -1;
}

int SentenceList::slotOf(const QString &name) const
{
    for (int slot = 0; slot < size; ++slot) {
        if (isTaken(slot) && names[std::size_t(slot)] == name)
            return slot;
    }
    return -1;
}

void SentenceList::put(int slot, const QString &name)
{
    names[std::size_t(slot)] = name;
    mask |= bit(slot);
}

void SentenceList::clear(int slot)
{
    names[std::size_t(slot)].clear();
    mask &= ~bit(slot);
}

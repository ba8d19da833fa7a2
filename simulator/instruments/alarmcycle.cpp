#include "simulator/instruments/alarmcycle.h"

namespace tk7sim {

std::optional<AisAlarmState> AlarmCycle::at(qint64 time, const QDateTime &start) const
{
    if (time < first) {
        return std::nullopt;
    }
    const qint64 phase = (time - first) % period;
    const qint64 raised = time - phase;
    AisAlarmState state;
    state.id = id;
    state.text = text;
    state.isActive = phase < length;
    state.isAcknowledged = phase >= response;
    const QTime changed = start.addMSecs(state.isActive ? raised : raised + length).toUTC().time();
    state.hour = changed.hour();
    state.minute = changed.minute();
    state.second = changed.second();
    return state;
}

} // namespace tk7sim

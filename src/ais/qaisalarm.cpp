#include "ais/qaisalarm.h"

namespace {

template <typename T> bool store(T &field, const T &value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}

} // namespace

QAisAlarm::QAisAlarm(QObject *parent) : QObject(parent) { }

bool QAisAlarm::update(quint8 id, quint8 hour, quint8 minute, quint8 second, bool condition,
                       bool acknowledged, const QString &text)
{
    bool changed = store(m_id, id);
    changed |= store(m_condition, condition);
    changed |= store(m_acknowledged, acknowledged);
    changed |= store(m_text, text);
    changed |= store(m_hour, hour);
    changed |= store(m_minute, minute);
    changed |= store(m_second, second);
    changed |= store(m_valid, true);
    return changed;
}

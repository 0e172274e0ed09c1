// SPDX-License-Identifier: MIT
#ifndef LXDOC_PROCESSLIMITS_H
#define LXDOC_PROCESSLIMITS_H

#include <QMutex>

// A set of limits shared by the whole process: set by a host at any time,
// read by whichever thread loads a lesson.
template <typename Limits>
class ProcessLimits {
public:
    explicit ProcessLimits(const Limits &initial) : m_limits(initial) {}

    Limits get() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_limits;
    }

    void set(const Limits &limits)
    {
        const QMutexLocker lock(&m_mutex);
        m_limits = limits;
    }

    // A host passes 0 (or less) for a field it leaves as it is by default.
    template <typename Value>
    static Value chosen(Value wanted, Value fallback)
    {
        return wanted >= 1 ? wanted : fallback;
    }

private:
    mutable QMutex m_mutex;
    Limits m_limits;
};

#endif

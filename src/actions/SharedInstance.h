#pragma once

#include <QtGlobal>

/// Publishes the object it is a member of: the latest one made is the shared one of its type, until it goes.
/// Main thread only.
template <typename T>
class SharedInstance
{
public:
    explicit SharedInstance(T *instance) : m_instance(instance) { s_latest = instance; }
    ~SharedInstance()
    {
        if (s_latest == m_instance)
            s_latest = nullptr;
    }
    Q_DISABLE_COPY_MOVE(SharedInstance)

    /// @return the latest one made, or null.
    static T *latest() { return s_latest; }

private:
    static inline T *s_latest = nullptr;
    T *m_instance;
};

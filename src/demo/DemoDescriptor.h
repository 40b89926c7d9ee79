#pragma once

#include <unistd.h>

#include <utility>

/// Owns a file descriptor.
class DemoDescriptor
{
public:
    DemoDescriptor() = default;
    explicit DemoDescriptor(int descriptor) : m_descriptor(descriptor) {}
    DemoDescriptor(DemoDescriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    DemoDescriptor &operator=(DemoDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    DemoDescriptor(const DemoDescriptor &) = delete;
    DemoDescriptor &operator=(const DemoDescriptor &) = delete;
    ~DemoDescriptor() { reset(); }

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    void reset()
    {
        if (m_descriptor >= 0)
            ::close(std::exchange(m_descriptor, -1));
    }

private:
    int m_descriptor = -1;
};

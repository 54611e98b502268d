#pragma once

#include <utility>

#include <unistd.h>

namespace launcher {

/// An open file descriptor, closed with its owner.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { reset(); }

    void reset()
    {
        if (m_number >= 0)
            close(std::exchange(m_number, -1));
    }
    int number() const { return m_number; }
    explicit operator bool() const { return m_number >= 0; }

private:
    int m_number = -1;
};

} // namespace launcher

#pragma once

#include <stdexcept>
#include <string>

/// Why the program cannot start: a short text, and the details that stand below it.
class StartUpFailure : public std::runtime_error {
public:
    StartUpFailure(const std::string& text, std::string details)
        : std::runtime_error(text)
        , m_details(std::move(details))
    {
    }

    const std::string& details() const { return m_details; }

private:
    std::string m_details;
};

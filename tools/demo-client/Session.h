#pragma once

#include "Message.h"
#include "Output.h"

#include <cstdint>
#include <string_view>

namespace demo {

/// Composes the records of one client, stamps them with its current frame and sends them at its pace.
class Session {
public:
    /// The output must live longer.
    Session(Output& output, Clock::duration pace);

    Output& output() { return m_output; }

    /// The frame of the records that follow.
    void setFrame(std::uint32_t frame) { m_frame = frame; }
    void advance(std::uint32_t frames) { m_frame += frames; }

    /// Tells the window who the client is: its process id and its name.
    void introduce(std::string_view name);
    void setName(std::string_view name);

    void information(std::string_view text);
    void lineBreak();
    void identified(std::uint32_t id, std::string_view text);
    void debug(std::uint32_t source, std::uint32_t type, std::uint32_t id, std::uint32_t severity,
        std::string_view text);
    void warning(std::string_view text);
    void error(std::string_view text);
    void glError(std::uint32_t code, std::string_view function, std::string_view description);

    /// A record of the current frame; its payload is all zeros.
    ui::messages::Message record(ui::messages::Type type) const;
    ui::messages::Message record(ui::messages::Type type, std::string_view text) const;
    ui::messages::Message glErrorRecord(
        std::uint32_t code, std::string_view function, std::string_view description) const;

    /// Sends a record and pauses.
    void send(const ui::messages::Message& message);

    /// Ends the session cleanly. Anything behind the good-bye is nothing that a client should send.
    void sayGoodbye(std::string_view behindIt = {});

private:
    Output& m_output;
    Clock::duration m_pace;
    std::uint32_t m_frame = 0;
};

/// All the bytes of a record.
std::string_view bytesOf(const ui::messages::Message& message);

} // namespace demo

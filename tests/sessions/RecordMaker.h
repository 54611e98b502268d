#pragma once

#include "Message.h"
#include "Record.h"

#include <cstdint>
#include <string>
#include <string_view>

/// A payload of a record with what tests need in it.
struct RecordMaker {
    ui::messages::Type type;
    std::uint32_t frame;
    ui::messages::Message message{};

    static RecordMaker glError(std::uint32_t code, std::string_view function, std::string_view text,
        std::uint32_t frame = ui::messages::noFrame)
    {
        namespace offset = ui::messages::offset;
        RecordMaker made{ui::messages::Type::GlError, frame};
        made.message.setU32(offset::glErrorCode, code);
        made.message.setText(offset::glErrorFunction, function, offset::glErrorDescription);
        made.message.setText(offset::glErrorDescription, text);
        return made;
    }
    static RecordMaker debug(std::uint32_t kind, std::uint32_t severity, std::string_view text)
    {
        namespace offset = ui::messages::offset;
        RecordMaker made{ui::messages::Type::DebugMessage, 1};
        made.message.setU32(offset::debugType, kind);
        made.message.setU32(offset::debugSeverity, severity);
        made.message.setText(offset::debugText, text);
        return made;
    }
    static RecordMaker text(ui::messages::Type type, std::string_view text, std::uint32_t frame = 1)
    {
        RecordMaker made{type, frame};
        made.message.setText(ui::messages::offset::text, text);
        return made;
    }

    std::string_view payload() const
    {
        namespace offset = ui::messages::offset;
        return {message.data() + offset::payload, ui::messages::recordSize - offset::payload};
    }
    sessions::Record record() const { return {static_cast<std::uint32_t>(type), frame, payload()}; }
};

#include "GlValues.h"
#include "Scenarios.h"

#include <array>
#include <string>

using ui::messages::Type;

namespace demo {

namespace {

constexpr std::size_t shortestText = 40;
constexpr std::size_t longestText = 200;
constexpr std::uint32_t recordsPerFrame = 20;

/// The mix: each ten records in a row are of these types.
constexpr std::array<Type, 10> mix{Type::GlError, Type::DebugMessage, Type::GlError, Type::Information,
    Type::GlError, Type::GlError, Type::DebugMessage, Type::GlError, Type::Warning, Type::GlError};

struct Failure {
    std::uint32_t code;
    const char* function;
};

constexpr std::array failures{
    Failure{gl::invalidEnum, "glTexParameteri"},
    Failure{gl::invalidValue, "glVertexAttribPointer"},
    Failure{gl::invalidOperation, "glDrawElements"},
    Failure{gl::outOfMemory, "glTexStorage2D"},
    Failure{gl::invalidFramebufferOperation, "glClear"},
};

constexpr std::array debugTypes{gl::typePerformance, gl::typeOther, gl::typeUndefinedBehavior, gl::typeError};
constexpr std::array severities{
    gl::severityNotification, gl::severityLow, gl::severityMedium, gl::severityHigh};

constexpr std::array<const char*, 16> words{"vertex", "buffer", "texture", "level", "is", "too", "large",
    "for", "the", "bound", "framebuffer", "attachment", "sampler", "program", "stage", "state"};

/// Spreads neighbouring numbers; the same in every run and on every machine.
std::uint32_t scatter(std::uint32_t value)
{
    value ^= value >> 16U;
    value *= 0x45D9F3BU;
    value ^= value >> 15U;
    value *= 0x2C1B3C6DU;
    return value ^ (value >> 14U);
}

/// A text that no other index has, since it begins with the index.
std::string floodText(std::uint32_t index)
{
    const std::size_t length = shortestText + scatter(index) % (longestText - shortestText + 1);
    std::string text = "Call " + std::to_string(index) + ':';
    for (std::uint32_t i = 0; text.size() < length; ++i)
        text.append(1, ' ').append(words[scatter(index + i * 977) % words.size()]);
    text.resize(length);
    text.back() = '.';
    return text;
}

void sendOne(Session& session, std::uint32_t index)
{
    const std::string text = floodText(index);
    const std::uint32_t choice = scatter(index) >> 8U;
    switch (mix[index % mix.size()]) {
    case Type::DebugMessage:
        session.debug(gl::sourceApi, debugTypes[choice % debugTypes.size()], index,
            severities[choice / 4 % severities.size()], text);
        break;
    case Type::Information:
        session.information(text);
        break;
    case Type::Warning:
        session.warning(text);
        break;
    default: {
        const Failure& failure = failures[choice % failures.size()];
        session.glError(failure.code, failure.function, text);
        break;
    }
    }
}

} // namespace

void playFlood(Session& session, std::uint32_t count, std::uint32_t rate, FloodProgress& progress)
{
    progress.start = progress.lastSent = Clock::now();
    for (std::uint32_t index = 0; index < count; ++index) {
        if (rate != 0) {
            const auto due =
                progress.start + std::chrono::nanoseconds(std::uint64_t{index} * 1'000'000'000U / rate);
            if (due > Clock::now())
                session.output().pause(due - Clock::now());
        }
        if (index % recordsPerFrame == 0)
            session.advance(1);
        sendOne(session, index);
        ++progress.sent;
        progress.lastSent = Clock::now();
    }
}

} // namespace demo

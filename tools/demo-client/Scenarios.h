#pragma once

#include "Session.h"

#include <cstdint>

namespace demo {

/// A session of a small game with everything that the window can show. The client has introduced itself.
void playTour(Session& session);

/// The records of a tour that describe its rendering contexts and the system it runs on.
void createFirstContext(Session& session);
void createSecondContext(Session& session);
void reportSystem(Session& session);

/// How far a flood got; kept up to date so that it is known even if the session ends early.
struct FloodProgress {
    Clock::time_point start;
    Clock::time_point lastSent;
    std::uint64_t sent = 0;
};

/// Sends `count` records at `rate` records per second, as fast as possible if the rate is 0. The n-th record
/// is the same in every run.
void playFlood(Session& session, std::uint32_t count, std::uint32_t rate, FloodProgress& progress);

/// Sends some records and the first part of another; then the caller is to die.
void playCrash(Session& session);

/// Sends what a client should not send. The name is set again at the end, since the client changes it.
void playHostile(Session& session, std::string_view name);

/// The record that a hostile client sends behind its good-bye, which nobody may show.
ui::messages::Message recordBehindGoodbye();

} // namespace demo

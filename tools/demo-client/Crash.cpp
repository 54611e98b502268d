#include "GlValues.h"
#include "Scenarios.h"

namespace demo {

namespace {

/// How much of its last record a crashing client gets out.
constexpr std::size_t lastPart = 4096;

} // namespace

void playCrash(Session& session)
{
    session.information("Brass Heron 1.4.2 (build 2217)");
    createFirstContext(session);
    session.information("Loading level 4 \"Under the Pier\" ...");
    session.advance(212);
    session.warning("Level 4 refers to 2 models that are not in the archives.");
    session.advance(1);
    session.glError(gl::outOfMemory, "glTexStorage2D",
        "8192 x 8192 pixels for the texture \"pier\" were refused by the host.");
    session.error("Model \"crab\" has no vertex buffer; drawing it anyway.");
    const ui::messages::Message last = session.glErrorRecord(
        gl::invalidOperation, "glDrawElements", "This record is cut off and never shown.");
    session.output().send(bytesOf(last).substr(0, lastPart));
}

} // namespace demo

#include "Launcher.h"

#include "Descriptors.h"
#include "Notices.h"
#include "ProfileChoice.h"
#include "ProgramFile.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

#include <sys/eventfd.h>

using namespace std::chrono_literals;

namespace launcher {

using ui::messages::Type;

namespace {

constexpr std::size_t queueLimit = 128U << 20U; // bytes
/// Ended processes whose records wait for a window; of more, the oldest go.
constexpr std::size_t endedLimit = 32;

constexpr auto connectInterval = 500ms;
/// How often things are looked at that nothing tells of, while the launcher ends.
constexpr int endingPause = 20; // milliseconds
constexpr int stalledPause = 100; // milliseconds
/// How long other processes may take to end with the program, as after Ctrl+C.
constexpr auto commonEndTime = 100ms;
/// How long the program's end is held up by a window that takes nothing, and by one that is slow.
constexpr auto idleWindowTime = 2s;
constexpr auto slowWindowTime = 30s;

/// What of a profile is left out, in one sentence.
std::string misreadText(const Device& device)
{
    constexpr std::size_t mostNamed = 10;
    const std::size_t count = device.misread.size();
    std::string text = "The profile " + device.table.name + " has "
        + (count == 1 ? "a value" : std::to_string(count) + " values")
        + " that cannot be understood and that the program does not see: ";
    for (std::size_t i = 0; i < std::min(count, mostNamed); ++i)
        text += (i > 0 ? ", " : "") + device.misread[i];
    return text + (count > mostNamed ? ", and so on." : ".");
}

} // namespace

Launcher::Launcher(Options options, RecordSink* sink)
    : m_options(std::move(options))
    , m_limit(m_options.timeLimit, m_options.frameLimit)
    , m_wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_budget{queueLimit}
{
    m_sinks.add(m_log);
    if (!m_options.session.empty())
        m_sinks.add(m_session);
    if (sink)
        m_sinks.add(*sink);
}

int Launcher::fail(int code, const std::string& text) const
{
    std::fprintf(stderr, "corvale-run: %s\n", text.c_str());
    return code;
}

bool Launcher::chooseDevice()
{
    m_naming.chosen = m_options.name;
    const ProfileChoice choice = chooseProfile(m_options.profile);
    std::fputs(choice.refusal.c_str(), stderr);
    if (!choice.warning.empty() && !m_options.quiet)
        fail(0, choice.warning);
    m_isStrict = choice.isStrict;
    if (!choice.profile)
        return choice.refusal.empty();
    m_device = deviceOf(*choice.profile, choice.isStrict);
    m_naming.device = m_device->table.name;
    if (!m_device->misread.empty())
        fail(0, misreadText(*m_device));
    return true;
}

std::variant<Changes, Unwatchable> Launcher::setUp()
{
    if (const auto why = whyUnwatchable(findProgram(m_options.program.front())))
        return Unwatchable{*why};
    m_folder = std::make_unique<PrivateFolder>();
    auto setup = layerSetup(m_options, m_isStrict, m_device ? &*m_device : nullptr, *m_folder);
    if (std::holds_alternative<Changes>(setup) && !m_greeter.listen(m_folder->socketPath()))
        return Unwatchable{"no socket can be made in " + m_folder->path()};
    return setup;
}

bool Launcher::claimFiles()
{
    if (!m_options.log.empty() && !m_log.open(m_options.log)) {
        fail(0, "Cannot write " + m_options.log + ": " + m_log.reason() + ".");
        return false;
    }
    if (!m_options.session.empty() && !m_session.claim(m_options.session)) {
        fail(0, "Cannot write the session " + m_options.session + ": " + m_session.reason() + ".");
        return false;
    }
    return true;
}

void Launcher::noteUnwatched(const std::string& reason)
{
    m_whyUnwatched = "Running " + m_options.program.front() + " without watching it: " + reason + ".";
    if (m_device)
        m_whyUnwatched += " It sees this machine; the profile " + m_naming.device + " has no effect.";
    m_naming.device.clear();
    if (!m_options.quiet || m_options.profile)
        fail(0, m_whyUnwatched);
}

int Launcher::run()
{
    const RunOutcome outcome = runProgram();
    if (!outcome.end)
        return outcome.exitCode;
    Program::endLike(*outcome.end, exitCode(outcome));
}

RunOutcome Launcher::runProgram()
{
    const auto failed = [this](int code, const std::string& text) {
        return RunOutcome{.exitCode = fail(code, text), .failure = text};
    };
    const std::string& name = m_options.program.front();
    if (findProgram(name).empty())
        return failed(exit_code::notFound, "There is no program " + name + ".");
    RunOutcome notStarted{.exitCode = exit_code::wrongArguments, .failure = "It could not be started."};
    if (!chooseDevice())
        return notStarted;
    const auto setup = setUp();
    const auto* changes = std::get_if<Changes>(&setup);
    if (const auto* unwatchable = std::get_if<Unwatchable>(&setup)) {
        m_folder.reset();
        if (m_options.require) {
            RunOutcome outcome =
                failed(exit_code::notRun, "Cannot watch " + name + ": " + unwatchable->reason + ".");
            outcome.isUnwatchable = true;
            return outcome;
        }
        noteUnwatched(unwatchable->reason);
    }
    m_isWatching = changes != nullptr;
    if (!claimFiles())
        return notStarted;
    if (m_options.showOutput)
        m_output.emplace();
    const Program::OutputEnds ends = m_output ? m_output->programEnds() : Program::OutputEnds{-1, -1};
    if (const int error = m_program.start(m_options.program, changes ? *changes : Changes{}, ends))
        return failed(error == ENOENT ? exit_code::notFound : exit_code::notRun,
            "Cannot run " + name + ": " + std::strerror(error) + ".");
    if (m_output)
        m_output->closeProgramEnds();
    // Only now: the program has the limit that it would have alone.
    platform::raiseDescriptorLimit();
    const auto start = Clock::now();
    // Only a program that runs takes the place of what an older one has left.
    m_log.clear();
    m_session.start(m_naming.device);
    m_limit.start();
    RunOutcome outcome;
    outcome.end = watch();
    outcome.time = std::chrono::duration_cast<std::chrono::milliseconds>(m_endTime - start);
    outcome.hasWatched = m_hasWatched;
    outcome.limit = m_limit.reached();
    outcome.isHardEnd = m_limit.isHard();
    outcome.frames = m_frames;
    outcome.device = m_naming.device;
    if (m_watchedNames.size() == 1)
        outcome.program = *m_watchedNames.begin();
    m_log.close();
    m_session.close();
    m_processes.clear();
    m_folder.reset();
    return outcome;
}

int Launcher::exitCode(const RunOutcome& outcome) const
{
    const ProcessEnd& end = *outcome.end;
    if (end.kind != ProcessEnd::Kind::Exited || end.number != 0 || !m_options.require || m_hasWatched)
        return end.number;
    return fail(exit_code::nothingWatched,
        "Nothing was watched: " + m_options.program.front() + " has not used EGL where it can be watched.");
}

ProcessEnd Launcher::watch()
{
    for (;;) {
        m_program.handleSignals();
        const int outputPause = passOutput();
        noteEnds();
        const int ringPause = drain();
        noteFrames();
        const int limitPause = m_end ? -1 : m_limit.enforce(m_program.pid(), m_frames);
        // What the window shows is in the log as well.
        m_log.flush();
        connectClients();
        transfer();
        removeDone();
        if (m_hasLeft && isDelivered())
            return *m_end;
        // As unsigned numbers, since -1 is for ever.
        unsigned int pause = ~0U;
        for (const int wanted : {outputPause, ringPause, limitPause, m_session.flushOld()})
            pause = std::min(pause, static_cast<unsigned int>(wanted));
        wait(static_cast<int>(pause));
    }
}

void Launcher::noteFrames()
{
    for (const auto& process : m_processes) {
        const std::uint32_t frames = process->frames();
        if (frames != ui::messages::noFrame)
            m_frames = std::max(m_frames, frames);
    }
}

void Launcher::finish(WatchedProcess& program)
{
    const RunLimit::Reached limit = m_limit.reached();
    const bool isEnded = limit != RunLimit::Reached::None
        && (m_end->kind == ProcessEnd::Kind::Exited || m_end->number == SIGTERM || m_end->number == SIGKILL);
    if (!isEnded)
        program.finish(*m_end, m_options.showOutput);
    else if (limit == RunLimit::Reached::Time)
        program.finishEnded(notices::timeIsOver);
    else
        program.finishEnded(notices::framesAreDone);
}

void Launcher::welcome(Newcomer newcomer)
{
    // Two are as good as many.
    if (m_watchedNames.size() < 2)
        m_watchedNames.insert(programName(newcomer.arguments));
    for (const auto& process : m_processes) {
        if (process->pid() != newcomer.pid || !process->isAlive())
            continue;
        m_hasWatched = true;
        if (!process->isAttached()) {
            process->attach(std::move(newcomer), m_wakeUp.number());
            return;
        }
        // The same process: it has executed another program, which may have ended by now.
        process->leave();
    }
    m_processes.push_back(std::make_unique<WatchedProcess>(
        std::move(newcomer), m_naming, m_budget, m_sinks, m_wakeUp.number()));
    m_hasWatched = true;
    m_nextConnect = Clock::now();
}

void Launcher::noteEnds()
{
    // A process may have announced itself just before its end, so callers come first.
    if (m_isWatching && !m_hasLeft)
        m_greeter.receive([this](Newcomer newcomer) { welcome(std::move(newcomer)); });
    if (!m_end && m_program.mayHaveEnded()) {
        m_end = m_program.collectEnd();
        m_endTime = m_lastProgress = Clock::now();
        m_nextConnect = m_endTime;
        if (m_end)
            noteFrames();
        if (m_end && m_output)
            m_output->noteEnd();
    }
    // What the program has started may take as long to end, and to write, as the program itself.
    const bool areAllEnded = m_end && m_limit.finish(m_program.isInterrupted());
    const bool isOutputDone = isOutputRead() && (areAllEnded || !m_output);
    if (m_end && m_output && isOutputDone)
        finishOutput();
    bool anyLives = false;
    for (const auto& process : m_processes) {
        if (process->isAlive() && process->pid() == m_program.pid()) {
            if (m_end && isOutputDone)
                finish(*process);
        } else if (process->isDead()) {
            process->finish(ProcessEnd::ofZombie(process->pid()));
        }
        anyLives = anyLives || process->isAlive();
    }
    if (!areAllEnded || m_hasLeft || !isOutputDone || (anyLives && Clock::now() < m_endTime + commonEndTime))
        return;
    for (const auto& process : m_processes) {
        if (process->isAlive())
            process->leave(notices::goesOn);
    }
    m_lastProgress = Clock::now();
    m_hasLeft = true;
}

int Launcher::passOutput()
{
    if (!m_output)
        return -1;
    // A window that takes nothing at all does not stop the program for good.
    const bool isWindowIdle = Clock::now() > m_lastProgress + idleWindowTime;
    const bool mayRead = hasRoom() || isWindowIdle;
    m_output->transfer(mayRead, [this](std::string_view line) { showLine(line); });
    return mayRead ? -1 : stalledPause;
}

bool Launcher::isOutputRead() const
{
    if (!m_output || m_program.isInterrupted())
        return true;
    return m_output->isClosed() || (m_output->isRead() && Clock::now() > m_endTime + commonEndTime);
}

void Launcher::showLine(std::string_view line)
{
    WatchedProcess& client = programClient();
    if (!hasRoom()) {
        ++m_droppedLines;
        return;
    }
    if (m_droppedLines > 0)
        client.tell(
            Type::Warning, droppedText(m_droppedLines, "the window did not take the program's output."));
    m_droppedLines = 0;
    client.tell(Type::Information, line);
}

void Launcher::finishOutput()
{
    m_output->finish([this](std::string_view line) { showLine(line); });
    WatchedProcess& client = programClient();
    if (m_droppedLines > 0)
        client.tell(
            Type::Warning, droppedText(m_droppedLines, "the window did not take the program's output."));
    m_output.reset();
}

WatchedProcess& Launcher::programClient()
{
    for (const auto& process : m_processes) {
        if (process->isAlive() && process->pid() == m_program.pid())
            return *process;
    }
    m_processes.push_back(
        std::make_unique<WatchedProcess>(m_program.pid(), m_naming, m_options.program, m_budget, m_sinks));
    m_nextConnect = Clock::now();
    WatchedProcess& client = *m_processes.back();
    if (!m_whyUnwatched.empty())
        client.tell(Type::Warning, m_whyUnwatched);
    m_whyUnwatched.clear();
    return client;
}

int Launcher::drain()
{
    std::uint64_t count = 0;
    // Only resets the counter; there is nothing to do where it is zero.
    [[maybe_unused]] const ssize_t size = read(m_wakeUp.number(), &count, sizeof count);
    int pause = m_end ? endingPause : -1;
    for (const auto& process : m_processes) {
        const WatchedProcess::Drained drained = process->drain([this] { return hasRoom(); });
        if (drained == WatchedProcess::Drained::Partly)
            pause = 0;
        else if (drained == WatchedProcess::Drained::Stalled && pause != 0)
            pause = m_end ? endingPause : stalledPause;
    }
    return pause;
}

bool Launcher::hasRoom()
{
    while (m_budget.isSpent()) {
        Client* largest = nullptr;
        for (const auto& process : m_processes) {
            Client& client = process->client();
            if (!client.isConnected() && client.bytesWaiting() > (largest ? largest->bytesWaiting() : 0))
                largest = &client;
        }
        // All that waits is for a window that is slow. The ring can wait as well.
        if (!largest)
            return false;
        largest->dropOldest();
    }
    return true;
}

void Launcher::connectClients()
{
    const auto now = Clock::now();
    if (now < m_nextConnect)
        return;
    m_nextConnect = now + (m_end ? std::chrono::milliseconds(endingPause) : connectInterval);
    const std::optional<WindowSocket::Identity> window = m_window.identity();
    for (const auto& process : m_processes) {
        if (!window || !process->client().wants(*window) || process->client().isDone())
            continue;
        Descriptor connection = m_window.connect();
        if (!connection)
            return;
        process->client().connect(std::move(connection), *window);
    }
}

void Launcher::transfer()
{
    std::uint64_t sent = 0;
    for (const auto& process : m_processes) {
        process->client().transfer();
        process->passWireframe();
        sent += process->client().sent();
    }
    if (sent != m_sentBefore)
        m_lastProgress = Clock::now();
    m_sentBefore = sent;
}

void Launcher::removeDone()
{
    std::erase_if(m_processes, [](const auto& process) { return process->client().isDone(); });
    const auto isWaiting = [](const auto& process) {
        return !process->isAlive() && !process->client().isConnected();
    };
    auto waiting = std::count_if(m_processes.begin(), m_processes.end(), isWaiting);
    for (; waiting > std::ptrdiff_t{endedLimit}; --waiting)
        m_processes.erase(std::find_if(m_processes.begin(), m_processes.end(), isWaiting));
}

bool Launcher::isDelivered()
{
    const auto now = Clock::now();
    if (now > m_lastProgress + idleWindowTime || now > m_endTime + slowWindowTime)
        return true;
    const std::optional<WindowSocket::Identity> window = m_window.identity();
    return std::none_of(m_processes.begin(), m_processes.end(), [&](const auto& process) {
        const Client& client = process->client();
        return client.isConnected() || (window && client.wants(*window) && m_window.isBusy());
    });
}

void Launcher::wait(int atMost)
{
    std::vector<pollfd> waitFor{{m_program.descriptor(), POLLIN, 0}, {m_wakeUp.number(), POLLIN, 0}};
    if (m_isWatching && !m_hasLeft)
        m_greeter.addTo(waitFor);
    if (m_output)
        m_output->addTo(waitFor);
    bool isUnconnected = false;
    for (const auto& process : m_processes) {
        process->addTo(waitFor);
        isUnconnected = isUnconnected || !process->client().isConnected();
    }
    if (isUnconnected && atMost < 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_nextConnect - Clock::now()).count();
        atMost = static_cast<int>(std::max<std::int64_t>(left, 0));
    }
    poll(waitFor.data(), waitFor.size(), atMost);
}

} // namespace launcher

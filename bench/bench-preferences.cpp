// How long the preference store takes with a large file: bench-preferences [keys]. Works in a folder
// of its own.

#include "Numbers.h"
#include "PlistPreferences.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int rounds = 15;

template <typename Work> double milliseconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Measures the work; what is done after each round of it does not count.
template <typename Work, typename After> void report(const char* what, int times, Work work, After after)
{
    std::vector<double> durations(static_cast<std::size_t>(times));
    for (double& duration : durations) {
        duration = milliseconds(work);
        after();
    }
    std::sort(durations.begin(), durations.end());
    std::printf("  %-22s median %8.2f ms, worst %8.2f ms, %d times\n", what, durations[durations.size() / 2],
        durations.back(), times);
}

template <typename Work> void report(const char* what, int times, Work work)
{
    report(what, times, work, [] {});
}

void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

void measure(const char* name, std::int64_t keys, std::int64_t groups)
{
    std::printf(
        "%jd keys in %jd dicts\n", static_cast<std::intmax_t>(keys), static_cast<std::intmax_t>(groups));
    const auto keyOf = [groups](std::int64_t number) {
        return "group" + std::to_string(number % groups) + "/key" + std::to_string(number);
    };
    PlistPreferences store(name, 0);
    std::string error;
    require(store.load(error, true), error.c_str());
    report("set all keys", 1, [&] {
        for (std::int64_t key = 0; key < keys; ++key)
            store.setString(keyOf(key), "value of key " + std::to_string(key));
    });
    report("get all keys", 1, [&] {
        for (std::int64_t key = 0; key < keys; ++key)
            require(
                store.getString(keyOf(key), nullptr, nullptr, false) == ResultCode::Success, "a key is lost");
    });
    report("save", rounds, [&] { require(store.save(true), "cannot save"); });
    report("load", rounds, [&] { require(store.load(error, true), error.c_str()); });
    // The save makes the next setter look for changes of others again.
    report(
        "set one key", rounds, [&] { store.setInteger("single", 1); },
        [&] { require(store.save(false), "cannot save"); });
    report("set one key and save", rounds, [&] {
        store.setInteger("single", 1);
        require(store.save(false), "cannot save");
    });
}

} // namespace

int main(int argc, char** argv)
{
    const std::int64_t keys = argc > 1 ? platform::parseInteger(argv[1]).value_or(0) : 10000;
    require(keys > 0, "usage: bench-preferences [keys]");
    std::string folder = (std::filesystem::temp_directory_path() / "corvale-bench-XXXXXX").native();
    require(mkdtemp(folder.data()), "cannot make a folder");
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    measure("Grouped", keys, 10);
    measure("Flat", keys, 1);
    std::filesystem::remove_all(folder);
    return 0;
}

// How long it takes to write a session of a million records, to open it, to read it whole, and to fold it.
// Usage: bench-sessions [RECORDS]

#include "Findings.h"
#include "SessionReader.h"
#include "SessionWriter.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

using ui::messages::Type;

void measure(const char* what, std::size_t count, const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    std::printf("%-28s %8.1f ms %8.1f ns a record\n", what, time.count() * 1e3,
        time.count() * 1e9 / static_cast<double>(count));
}

/// The payload of a GL error as the layer sends it.
std::string errorPayload(std::size_t number)
{
    std::string payload("\x02\x05\0\0", 4);
    std::string function = "glDrawArrays";
    function.resize(64);
    return payload + function
        + "GL_INVALID_OPERATION in glDrawArrays(no program)\nglDrawArrays(mode = GL_TRIANGLES, first = "
        + std::to_string(number % 97) + ", count = " + std::to_string(number) + ")";
}

} // namespace

int main(int argc, char** argv)
{
    const std::size_t count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1'000'000;
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("bench-" + std::to_string(count) + ".session");
    std::vector<std::string> payloads;
    std::size_t textBytes = 0;
    for (std::size_t i = 0; i < count; ++i)
        payloads.push_back(errorPayload(i));
    for (const std::string& payload : payloads)
        textBytes += payload.size() - 68 + std::string_view("glDrawArrays").size();

    const auto record = [&](std::size_t i) {
        return sessions::Record{
            static_cast<std::uint32_t>(Type::GlError), static_cast<std::uint32_t>(i / 10), payloads[i]};
    };
    sessions::SessionWriter writer;
    if (!writer.open(path)) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), writer.reason().c_str());
        return 1;
    }
    measure("write", count, [&] {
        writer.beginClient(1, "bench", "", writer.now());
        for (std::size_t i = 0; i < count; ++i)
            writer.add(0, record(i), sessions::SessionTime(i));
        writer.close();
    });
    sessions::SessionReader reader;
    measure("open", count, [&] { reader.open(path); });
    measure("first block", count, [&] { reader.read(0, [](const sessions::SessionRecord&) {}); });
    std::size_t seen = 0;
    measure("read all", count, [&] {
        for (std::size_t block = 0; block < reader.blockCount(); ++block)
            reader.read(block, [&](const sessions::SessionRecord&) { ++seen; });
    });
    sessions::Findings findings;
    measure("fold", count, [&] {
        for (std::size_t i = 0; i < count; ++i)
            findings.add(record(i));
    });
    std::printf("%zu records read, %zu kinds, %.1f bytes a record in the file, of texts %.1f\n", seen,
        findings.all().size(), static_cast<double>(writer.size()) / static_cast<double>(count),
        static_cast<double>(textBytes) / static_cast<double>(count));
    std::filesystem::remove(path);
    return seen == count ? 0 : 1;
}

// What the client layer costs a program: bench-layer [rounds]. The same calls with and without it, in turns,
// and the start of a small program. Prints medians; the ratios hold on any machine, the nanoseconds do not.

#include "DeviceTable.h"
#include "LayeredProgram.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>

namespace {

using Layer = LayeredProgram::Layer;

struct Way {
    const char* name;
    Layer layer;
    const char* options; ///< Of the layer.
    bool onDevice = false; ///< Whether the program sees a device in place of the machine.
};

constexpr std::array ways{Way{"bare", Layer::None, ""}, Way{"layer, no check", Layer::Vendor, "no-errors"},
    Way{"layer, driver tells (KHR_debug)", Layer::Vendor, ""},
    Way{"layer, driver tells, a profile on", Layer::Vendor, "", true},
    Way{"layer, glGetError after each call", Layer::Vendor, "get-error"}};

/// Of calls that change nothing, that change state, and that make an error, in nanoseconds; then of start and
/// end in milliseconds.
using Times = std::array<double, 4>;

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// A device of OpenGL ES 3.0 with a few limits, written once.
const std::string& deviceFile()
{
    static const std::string path = [] {
        using Number = layer::device::Number;
        layer::device::Table table;
        table.name = "Bench";
        table.apis.push_back({30, {"GL_KHR_debug"}, {{0x0D33, {Number(std::int64_t{4096})}}}, {}, {}, {}});
        std::string file = (std::filesystem::temp_directory_path() / "bench-layer-device").string();
        std::ofstream(file) << toText(table);
        return file;
    }();
    return path;
}

LayeredProgram start(const Way& way, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), CORVALE_GLES_CALLS);
    return {std::move(arguments), way.layer,
        {{"CORVALE_LAYER_OPTIONS", way.options}, {"CORVALE_LAYER_DEVICE", way.onDevice ? deviceFile() : ""}}};
}

Times measure(const Way& way)
{
    Times times{};
    {
        LayeredProgram program = start(way, {"10000000", "10000"});
        std::istringstream printed(program.finish());
        if (!(printed >> times[0] >> times[1] >> times[2])) {
            std::puts("there is no OpenGL ES here");
            std::exit(77);
        }
    }
    const auto before = std::chrono::steady_clock::now();
    start(way, {"1", "1"}).finish();
    times[3] = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - before).count();
    return times;
}

} // namespace

int main(int argumentCount, char* arguments[])
{
    const int rounds = argumentCount > 1 ? std::atoi(arguments[1]) : 5;
    std::array<std::array<std::vector<double>, 4>, ways.size()> all;
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t way = 0; way < ways.size(); ++way) {
            const Times times = measure(ways[way]);
            for (std::size_t i = 0; i < times.size(); ++i)
                all[way][i].push_back(times[i]);
        }
    }
    std::printf(
        "medians of %d rounds                same call   state call        error   start and end\n", rounds);
    std::printf("                                          ns           ns           ns              ms\n");
    for (std::size_t way = 0; way < ways.size(); ++way)
        std::printf("%-34s %9.2f %12.2f %12.1f %15.1f\n", ways[way].name, median(all[way][0]),
            median(all[way][1]), median(all[way][2]), median(all[way][3]));
    std::filesystem::remove(deviceFile());
    return 0;
}

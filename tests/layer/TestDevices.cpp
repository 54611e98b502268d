#include "BuiltinProfiles.h"
#include "ChildProcess.h"
#include "DeviceOfProfile.h"
#include "ProfileReader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using layer::device::Api;
using layer::device::Number;
using layer::device::Table;

namespace {

/// One that is like no device: large and small values, odd texts, few configs.
constexpr const char* oddProfile = R"(<profile><device>Odd</device><vendor>A "vendor" \ ü</vendor><renderer/>
<es version="2"><extension>GL_OES_depth24</extension><max_texture_size>17</max_texture_size>
<aliased_point_size_range><min>0.5</min><max>7.25</max></aliased_point_size_range><max_varying_vectors>1</max_varying_vectors>
<max_texture_max_anisotropy>2.5</max_texture_max_anisotropy><version>OpenGL ES 2.0 odd</version>
<shading_language_version>OpenGL ES GLSL ES 1.00 odd</shading_language_version>
<precision_format><shader>GL_FRAGMENT_SHADER</shader><type>GL_HIGH_FLOAT</type><min>0</min><max>0</max>
<precision>0</precision></precision_format></es>
<egl><vendor>Odd EGL</vendor><version>1.4 odd</version><extension>EGL_KHR_odd</extension>
<config id="7"><red_size>8</red_size><green_size>8</green_size><blue_size>8</blue_size><alpha_size>8</alpha_size>
<buffer_size>32</buffer_size><depth_size>24</depth_size><stencil_size>8</stencil_size><samples>0</samples>
<renderable_type>EGL_OPENGL_ES2_BIT</renderable_type><surface_type>EGL_PBUFFER_BIT</surface_type>
<max_pbuffer><width>7</width><height>9</height><pixels>63</pixels></max_pbuffer></config></egl></profile>)";

constexpr const char* bareProfile = R"(<profile><device>Bare</device><es version="31">
<max_element_index>4294967295</max_element_index><max_server_wait_timeout>1234567890123</max_server_wait_timeout>
<max_compute_work_group_size><x>1</x><y>2</y><z>3</z></max_compute_work_group_size>
<min_program_texel_offset>-9</min_program_texel_offset>
<internal_format><name>RGBA8</name><samples>0</samples></internal_format></es></profile>)";

/// What a program on a device asks, and what it should hear.
class Script {
public:
    explicit Script(const Table& table)
        : m_table(table)
    {
        addConfigs();
        for (const Api& api : table.apis)
            addApi(api);
        addRefusals();
    }

    std::string questions() const
    {
        std::string text;
        for (const auto& [question, answer] : m_lines)
            text += question + "\n";
        return text;
    }
    void compare(const std::string& heard) const
    {
        std::istringstream stream(heard);
        for (const auto& [question, wanted] : m_lines) {
            std::string line;
            ASSERT_TRUE(std::getline(stream, line)) << "the program has ended at " << question;
            // The rest of what drivers say is theirs.
            if (wanted.ends_with('*'))
                EXPECT_TRUE(line.starts_with(wanted.substr(0, wanted.size() - 1)))
                    << question << ": " << line;
            else
                EXPECT_EQ(line, wanted) << question;
        }
    }

private:
    template <typename... Words> void add(const std::string& answer, const std::string& what, Words... words)
    {
        std::ostringstream question;
        question << what;
        ((question << ' ' << words), ...);
        m_lines.emplace_back(question.str(), answer);
    }

    void addConfigs()
    {
        for (const auto& [name, text] : m_table.eglTexts)
            add(text, "egl", name);
        if (m_table.configs.empty())
            return;
        add(std::to_string(m_table.configs.size()), "configs");
        for (std::size_t i = 0; i < m_table.configs.size(); ++i) {
            for (const auto& [attribute, value] : m_table.configs[i])
                add(std::to_string(value), "attribute", i, attribute);
        }
    }

    void addApi(const Api& api)
    {
        add("made", "context", api.version);
        add(m_table.vendor, "text", 0x1F00);
        add(m_table.renderer, "text", 0x1F01);
        for (const auto& [name, text] : api.texts)
            add(text, "text", name);
        if (!api.texts.contains(0x1F02)) {
            const std::string digits{char('0' + api.version / 10), '.', char('0' + api.version % 10)};
            add((api.version < 20 ? "OpenGL ES-CM " : "OpenGL ES ") + digits + "*", "text", 0x1F02);
        }
        addExtensions(api);
        for (const auto& [name, values] : api.capabilities)
            addCapability(api, name, values);
        for (const auto& [types, values] : api.precisions) {
            add(std::to_string(values[0]) + " " + std::to_string(values[1]) + " " + std::to_string(values[2]),
                "precision", types.first, types.second);
        }
        for (const auto& [format, counts] : api.sampleCounts) {
            std::string answer = std::to_string(counts.size());
            for (const int count : counts)
                answer += " " + std::to_string(count);
            if (api.version >= 30)
                add(answer, "samples", format);
        }
    }

    void addExtensions(const Api& api)
    {
        std::string all;
        for (std::size_t i = 0; i < api.extensions.size(); ++i) {
            all += (i > 0 ? " " : "") + api.extensions[i];
            if (api.version >= 30)
                add(api.extensions[i], "listed", 0x1F03, i);
        }
        add(all, "text", 0x1F03);
        if (api.version >= 30)
            add(std::to_string(api.extensions.size()), "int", 0x821D, 1);
    }

    template <typename Show> static std::string shown(const std::vector<Number>& values, const Show& show)
    {
        std::ostringstream text;
        text.precision(9);
        for (std::size_t i = 0; i < values.size(); ++i)
            text << (i > 0 ? " " : "") << std::visit(show, values[i]);
        return text.str();
    }

    /// As the int that a query gives for a number.
    static std::int32_t narrowed(double value)
    {
        constexpr double least = std::numeric_limits<std::int32_t>::min();
        constexpr double most = std::numeric_limits<std::int32_t>::max();
        return static_cast<std::int32_t>(std::clamp(std::round(value), least, most));
    }

    void addCapability(const Api& api, std::uint32_t name, const std::vector<Number>& values)
    {
        const std::size_t count = values.size();
        const auto narrow = [](auto value) {
            return narrowed(double(value));
        };
        static const std::map<std::uint32_t, std::uint32_t> counts{
            {0x86A3, 0x86A2}, {0x8DF8, 0x8DF9}, {0x87FF, 0x87FE}};
        if (counts.contains(name))
            add(std::to_string(count), "int", counts.at(name), 1);
        if (name == 0x91BE || name == 0x91BF) {
            add(shown(values, narrow), "indexed", name, count);
            return;
        }
        add(shown(values, narrow), "int", name, count);
        // Enumerants are no numbers, so only integers are asked for.
        if (counts.contains(name))
            return;
        add(shown(values, [](auto value) { return float(value); }), "real", name, count);
        add(shown(values, [](auto value) { return value != 0 ? 1 : 0; }), "truth", name, count);
        if (api.version >= 30)
            add(shown(values, [](auto value) { return std::int64_t(std::llround((long double)value)); }),
                "long", name, count);
        if (api.version < 20)
            add(shown(values, [](auto value) { return narrowed(double(value) * 65536); }), "fixed", name,
                count);
    }

    void addRefusals()
    {
        const int version = m_table.apis.back().version;
        static const std::map<int, int> next{{11, 20}, {20, 30}, {30, 31}, {31, 32}, {32, 40}};
        add("refused 1*", "context", next.at(version));
        if (version >= 32)
            return;
        static const std::map<int, std::pair<const char*, int>> lacks{{11, {"glUseProgram", 0x0C11}},
            {20, {"glReadBuffer", 0x8C89}}, {30, {"glMemoryBarrier", 0x8E51}},
            {31, {"glBlendBarrier", 0x9388}}};
        const auto& [function, capability] = lacks.at(version);
        add(" error 502", "call", function, 0);
        if (version < 31)
            add(version == 11 ? "" : " error 500", "call", "glEnable", capability);
        const auto size = m_table.apis.back().capabilities.find(0x0D33);
        if (size != m_table.apis.back().capabilities.end())
            add(" error 501", "call", "glTexImage2D", 2 * std::get<std::int64_t>(size->second.front()));
    }

    const Table& m_table;
    std::vector<std::pair<std::string, std::string>> m_lines;
};

struct Case {
    std::string name;
    std::string xml;
};

/// What the case is called.
void PrintTo(const Case& device, std::ostream* stream)
{
    std::string name = device.name.substr(0, device.name.find('.'));
    std::replace(name.begin(), name.end(), '-', '_');
    *stream << name;
}

std::vector<Case> cases()
{
    std::vector<Case> all{{"odd.xml", oddProfile}, {"bare.xml", bareProfile}};
    for (const builtin_profiles::TextEntry& document : builtin_profiles::documents())
        all.push_back({std::string(document.fileName), std::string(document.xml)});
    return all;
}

/// Runs a command in a shell and returns its exit code.
int run(const std::string& command)
{
    const int status = std::system(command.c_str()); // NOLINT(cert-env33-c): a test's own command
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string quoted(const fs::path& path)
{
    return "'" + path.string() + "'";
}

class Devices : public testing::TestWithParam<Case> {
protected:
    static void SetUpTestSuite()
    {
        // Drivers keep memory to the end, and the layer comes before the sanitizer's library.
        setenv("ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0", 0);
    }

    const fs::path folder = child_process::freshFolder();
};

} // namespace

TEST_P(Devices, areWhatTheirProfilesSay)
{
    const fs::path profile = folder / GetParam().name;
    child_process::fill(profile, GetParam().xml);
    const launcher::Device device = launcher::deviceOf(readProfileFile(profile.string()), false);
    EXPECT_EQ(device.misread, std::vector<std::string>());
    const Script script(device.table);
    child_process::fill(folder / "in", script.questions());
    const int code = run(CORVALE_RUN " --require --profile " + quoted(profile) + " " + CORVALE_DEVICE_PROGRAM
        + " <" + quoted(folder / "in") + " >" + quoted(folder / "out") + " 2>" + quoted(folder / "errors"));
    if (code == 77)
        GTEST_SKIP() << "there is no OpenGL ES here";
    EXPECT_EQ(code, 0) << child_process::contentOf(folder / "errors");
    script.compare(child_process::contentOf(folder / "out"));
}

INSTANTIATE_TEST_SUITE_P(Profiles, Devices, testing::ValuesIn(cases()), testing::PrintToStringParamName());

TEST(MadeProfile, changesNothing)
{
    setenv("ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0", 0);
    const fs::path folder = child_process::freshFolder();
    const fs::path first = folder / "first.xml", second = folder / "second.xml";
    const std::string make = std::string(CORVALE_RUN) + " --make-profile ";
    if (run(make + quoted(first)) != 0)
        GTEST_SKIP() << "there is no OpenGL ES here";
    ASSERT_EQ(run(CORVALE_RUN " --require --profile " + quoted(first) + " " + make + quoted(second)), 0);
    EXPECT_EQ(child_process::contentOf(second), child_process::contentOf(first));
    EXPECT_GT(readProfileFile(first.string()).capabilities().at(2).size(), 30U);
}

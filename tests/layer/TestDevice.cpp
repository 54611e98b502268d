// A program that sees a device in place of the machine: what it is told, and what it is refused.
#include "ConfigChoice.h"
#include "DeviceTable.h"
#include "LayeredProgram.h"
#include "Message.h"

#include <filesystem>
#include <fstream>

#include <EGL/egl.h>
#include <gtest/gtest.h>

namespace {

using layer::device::Api;
using layer::device::Config;
using layer::device::Number;
using layer::device::Table;
using ui::messages::Type;

constexpr std::int64_t much = 4294967295;

Table harbourBoard()
{
    Table table{
        "Harbour Board", "Brindlewood", "BW-210", false, {}, {}, {{EGL_EXTENSIONS, "EGL_BWD_harbour"}}};
    table.apis.push_back({11, {"GL_OES_read_format"},
        {{0x0D31, {Number(std::int64_t{4})}}, {0x0D36, {Number(std::int64_t{2})}}}, {}, {}, {}});
    table.apis.push_back({20, {"GL_OES_rgb8_rgba8", "GL_BWD_shader_binary"}, {}, {}, {}, {}});
    table.apis.push_back({30,
        {"GL_EXT_debug_marker", "GL_EXT_texture_compression_s3tc", "GL_KHR_debug", "GL_QCOM_tiled_rendering"},
        {}, {}, {}, {}});
    for (Api& api : table.apis) {
        const auto limit = [&](std::uint32_t name, auto... values) {
            api.capabilities[name] = {Number(values)...};
        };
        limit(0x0D33, std::int64_t{1024}); // GL_MAX_TEXTURE_SIZE
        limit(0x0D3A, std::int64_t{1024}, std::int64_t{512}); // GL_MAX_VIEWPORT_DIMS
        limit(0x846D, 1.0, 511.5); // GL_ALIASED_POINT_SIZE_RANGE
        limit(0x86A3, std::int64_t{0x8D64}, std::int64_t{0x8C00}); // GL_COMPRESSED_TEXTURE_FORMATS
        if (api.version < 20)
            continue;
        limit(0x8DFA, std::int64_t{1}); // GL_SHADER_COMPILER
        limit(0x846E, 3.0); // GL_ALIASED_LINE_WIDTH_RANGE, of which an end is missing
        limit(0x8872, std::int64_t{8}, std::int64_t{9}); // GL_MAX_TEXTURE_IMAGE_UNITS, said twice
        limit(0x8869, std::int64_t{8}); // GL_MAX_VERTEX_ATTRIBS
        limit(0x8DFB, std::int64_t{128}); // GL_MAX_VERTEX_UNIFORM_VECTORS
        limit(0x8DFC, std::int64_t{8}); // GL_MAX_VARYING_VECTORS
        limit(0x84E8, std::int64_t{2048}); // GL_MAX_RENDERBUFFER_SIZE
        limit(0x8B4D, std::int64_t{40}); // GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS
    }
    Api& last = table.apis.back();
    last.texts[0x8B8C] = "OpenGL ES GLSL ES 3.00 build 7";
    last.capabilities[0x8D6B] = {Number(much)}; // GL_MAX_ELEMENT_INDEX
    last.capabilities[0x8A2F] = {Number(std::int64_t{24})}; // GL_MAX_UNIFORM_BUFFER_BINDINGS
    last.capabilities[0x8073] = {Number(std::int64_t{256})}; // GL_MAX_3D_TEXTURE_SIZE
    last.precisions[{0x8B31, 0x8DF1}] = {14, 15, 10};
    last.sampleCounts = {{0x8058, {4, 2}}, {0x8D7C, {}}};
    const auto config = [&](EGLint id, EGLint alpha, EGLint depth, EGLint renderable) {
        table.configs.push_back(
            {{EGL_CONFIG_ID, id}, {EGL_RED_SIZE, 8}, {EGL_GREEN_SIZE, 8}, {EGL_BLUE_SIZE, 8},
                {EGL_ALPHA_SIZE, alpha}, {EGL_DEPTH_SIZE, depth}, {EGL_RENDERABLE_TYPE, renderable},
                {EGL_SURFACE_TYPE, EGL_WINDOW_BIT | EGL_PBUFFER_BIT}, {EGL_MAX_PBUFFER_WIDTH, 777}});
    };
    constexpr EGLint all = EGL_OPENGL_ES_BIT | EGL_OPENGL_ES2_BIT | EGL_OPENGL_ES3_BIT;
    config(41, 8, 24, all);
    config(-3, 8, 16, all);
    config(42, 0, 24, EGL_OPENGL_ES_BIT | EGL_OPENGL_ES2_BIT);
    return table;
}

std::string writeTable(const Table& table)
{
    std::string file = (std::filesystem::temp_directory_path() / "device-table").string();
    std::ofstream(file) << toText(table);
    return file;
}

/// gles-program, which answers questions on a device.
class DeviceProgram {
public:
    explicit DeviceProgram(const Table& table = harbourBoard(), const std::string& script = "device")
        : m_program({CORVALE_GLES_PROGRAM, script}, LayeredProgram::Layer::Vendor,
            {{"CORVALE_LAYER_DEVICE", writeTable(table)}})
    {
    }
    LayeredProgram* operator->() { return &m_program; }
    std::string ask(const std::string& question) { return m_program.ask(question); }
    std::vector<std::string> told(Type type, std::size_t at) const
    {
        std::vector<std::string> texts;
        for (const SentRecord& record : m_program.recordsOf(static_cast<std::uint32_t>(type)))
            texts.push_back(record.text(at));
        return texts;
    }
    std::string errors() const
    {
        std::string all;
        for (const std::string& text : told(Type::GlError, 68))
            all += text + '\n';
        return all;
    }

private:
    LayeredProgram m_program;
};

class TestDevice : public testing::Test {
protected:
    void SetUp() override
    {
        static const bool hasDriver = [] {
            LayeredProgram bare({CORVALE_GLES_PROGRAM, "device"}, LayeredProgram::Layer::None);
            return std::filesystem::exists("/usr/share/glvnd/egl_vendor.d/50_mesa.json")
                && bare.ask("context 3 2").starts_with("version");
        }();
        if (!hasDriver)
            GTEST_SKIP() << "there is no software driver of OpenGL ES here";
    }
};

using Questions = std::vector<std::pair<std::string, std::string>>;

void expectAnswers(DeviceProgram& program, const Questions& questions)
{
    for (const auto& [question, answer] : questions)
        EXPECT_EQ(program.ask(question), answer) << question;
}

TEST_F(TestDevice, contextsAreOfTheDevicesVersions)
{
    DeviceProgram program;
    expectAnswers(program,
        {{"context 2 0", "version 2 config 0"}, {"string 0x1F00", "Brindlewood"}, {"string 0x1F01", "BW-210"},
            {"string 0x1F02", "OpenGL ES 2.0 Brindlewood"}, {"string 0x8B8C", "OpenGL ES GLSL ES 1.00"},
            {"string 0x1F03", "GL_OES_rgb8_rgba8 GL_BWD_shader_binary"}, {"stringi 0", "null 0x502"},
            {"get glGetIntegerv 0x821B 1", "0"}, {"context 3 0 41", "version 3 config 41"},
            {"string 0x1F02", "OpenGL ES 3.0 Brindlewood"},
            {"string 0x8B8C", "OpenGL ES GLSL ES 3.00 build 7"}, {"stringi 2", "GL_KHR_debug"},
            {"stringi 4", "null 0x501"}, {"get glGetIntegerv 0x821D 1", "4"},
            {"get glGetIntegerv 0x821B 1", "3"}, {"get glGetFloatv 0x821C 1", "0"},
            {"context 1 0", "version 1 config 0"}, {"string 0x1F02", "OpenGL ES-CM 1.1 Brindlewood"},
            {"string 0x8B8C", "null 0x500"}, {"context 3 1", "egl 0x3009"}, {"context 2 1", "egl 0x3009"},
            {"context 3 0 42", "egl 0x3005"}, {"bind 0x30A2", "egl 0x300c"},
            {"eglString 0x308D", "OpenGL_ES"}, {"eglString 0x3055", "EGL_BWD_harbour"}, {"end", "1"},
            {"context 3 1", "egl 0x3001"}});
    program->finish();
    EXPECT_EQ(program.told(Type::Information, 0).front(),
        "The program sees the profile Harbour Board (OpenGL ES 1.1, 2.0 and 3.0) in place of this machine.");
    EXPECT_EQ(
        program.told(Type::ReportOtherKeyedText, 4).front(), program.told(Type::Information, 0).front());
    const std::vector<std::string> refused = program.told(Type::Error, 0);
    ASSERT_FALSE(refused.empty());
    EXPECT_TRUE(
        refused.front().starts_with("EGL_BAD_MATCH: OpenGL ES 3.1 is not available on Harbour Board, which "
                                    "has OpenGL ES 1.1, 2.0 and 3.0\nin eglCreateContext("))
        << refused.front();
    const auto contexts = program->recordsOf(static_cast<std::uint32_t>(Type::ContextInformation));
    ASSERT_EQ(contexts.size(), 3U);
    EXPECT_EQ(contexts.front().number(ui::messages::offset::contextEsVersion - 8), 2U);
    EXPECT_NE(contexts.front().number(ui::messages::offset::contextExtensionsNotOnHost - 8), 0U);
}

TEST_F(TestDevice, limitsAreToldByAllQueries)
{
    DeviceProgram program;
    expectAnswers(program,
        {{"context 3 0", "version 3 config 0"}, {"get glGetIntegerv 0xD33 1", "1024"},
            {"get glGetFloatv 0xD33 1", "1024"}, {"get glGetBooleanv 0xD33 1", "1"},
            {"get glGetInteger64v 0xD33 1", "1024"}, {"get glGetInteger64v 0x8D6B 1", "4294967295"},
            {"get glGetIntegerv 0x8D6B 1", "2147483647"}, {"get glGetIntegerv 0xD3A 2", "1024 512"},
            {"get glGetFloatv 0x846D 2", "1 511.5"}, {"get glGetIntegerv 0x846D 2", "1 512"},
            {"get glGetIntegerv 0x86A2 1", "2"}, {"get glGetIntegerv 0x86A3 3", "36196 35840 0"},
            {"get glGetBooleanv 0x8DFA 1", "1"}, {"get glGetIntegerv 0x846E 3", "1 255 0"},
            {"get glGetIntegerv 0x8872 2", "32 0"}, {"context 1 0", "version 1 config 0"},
            {"get glGetFixedv 0xD31 1", "262144"}, {"get glGetFixedv 0x846D 2", "65536 33521664"},
            {"get glGetIntegerv 0xD36 1", "2"}});
    program->finish();
    EXPECT_EQ(program.errors(), "");
}

TEST_F(TestDevice, configsAreTheDevices)
{
    DeviceProgram program;
    expectAnswers(program,
        {{"choose", "42 -3 41 "}, {"choose 0x3021 1", "-3 41 "}, {"choose 0x3040 0x40", "-3 41 "},
            {"choose 0x3028 42 0x3025 99", "42 "}, {"choose 0x3025 25", ""}, {"choose 0x3025 25", ""},
            {"choose 0x3025 24 0x3021 9", ""}, {"choose 0x9999 1", "egl 0x3004"},
            {"attribute 41 0x302C", "777"}, {"attribute -3 0x3020", "32"},
            {"attribute 41 0x9999", "egl 0x3004"}, {"surface -3 8", "-3 8"}, {"surface 41 777", "41 777"},
            {"surface 41 778", "egl 0x3003"}, {"surface 41 778 1", "41 777"}, {"surface 41 64 1", "41 64"},
            {"again", "1"}, {"surface -3 8", "-3 8"}});
    program->finish();
    std::string told;
    for (const std::string& text : program.told(Type::Information, 0))
        told += text + "\n";
    EXPECT_NE(told.find(": none has EGL_ALPHA_SIZE 9."), std::string::npos) << told;
}

TEST_F(TestDevice, whyNoConfigFitsIsToldOfTheRightAttribute)
{
    Table table = harbourBoard();
    for (Config& config : table.configs)
        config[EGL_RENDERABLE_TYPE] = EGL_OPENGL_ES2_BIT;
    DeviceProgram program(table);
    expectAnswers(program,
        {{"choose 0x3020 0 0x3040 4", "42 -3 41 "}, {"choose 0x3020 0 0x3040 0x40", ""},
            {"choose 0x3020 0", ""}});
    program->finish();
    std::string told;
    for (const std::string& text : program.told(Type::Information, 0))
        told += text + "\n";
    EXPECT_NE(told.find(": none has EGL_RENDERABLE_TYPE EGL_OPENGL_ES3_BIT."), std::string::npos) << told;
    EXPECT_NE(told.find(": none has EGL_RENDERABLE_TYPE EGL_OPENGL_ES_BIT."), std::string::npos) << told;
}

TEST_F(TestDevice, functionsAndEnumerantsThatItLacksAreRefused)
{
    DeviceProgram program;
    expectAnswers(program,
        {{"context 2 0", "version 2 config 0"}, {"call glBindVertexArrayOES 0", "0x502"},
            {"call glBindVertexArray 0", "0x502"}, {"call glEnable 0x8C89", "0x500"},
            {"call glTexImage2D 0xDE1 0 0x8C3A 4 4 0 0x1907 0x8C3B 0", "0x501"},
            {"call glDrawArrays 10 0 3", "0x500"}, {"call glBindTexture 0x806F 0", "0x500"},
            {"call glPolygonMode 0x408 0x1B01", "0x502"}, {"call glEnable 0xB71", "0"},
            {"context 3 0", "version 3 config 0"}, {"call glBindVertexArray 0", "0"},
            {"call glBindTexture 0x806F 0", "0"}, {"call glTexParameteri 0xDE1 0x2802 0x812D", "0x500"},
            {"call glTexParameteri 0xDE1 0x813D 0x812D", "0"}, {"call glEnable 0x92E0", "0"},
            {"call glBindTexture 0x8C2A 0", "0x500"}, {"get glGetIntegerv 0x9145 1", "1"}});
    program.ask("context 2 0");
    program->setWireframe(true);
    EXPECT_EQ(program.ask("call glDrawElementsBaseVertex 4 3 0x1403 0 0"), "0x502");
    program->finish();
    const char* const expected[] = {
        "GL_INVALID_OPERATION in glBindVertexArrayOES: not available on Harbour Board: needs "
        "GL_OES_vertex_array_object",
        "GL_INVALID_OPERATION in glBindVertexArray: not available on Harbour Board: needs OpenGL ES 3.0",
        "GL_INVALID_ENUM in glEnable: GL_RASTERIZER_DISCARD is not available on Harbour Board: needs OpenGL "
        "ES 3.0",
        "GL_INVALID_VALUE in glTexImage2D: GL_R11F_G11F_B10F is not available on Harbour Board: needs OpenGL "
        "ES 3.0",
        "GL_INVALID_ENUM in glDrawArrays: GL_LINES_ADJACENCY is not available on Harbour Board: needs OpenGL "
        "ES 3.2",
        "GL_INVALID_ENUM in glBindTexture: GL_TEXTURE_3D is not available on Harbour Board: needs OpenGL ES "
        "3.0",
        "GL_INVALID_OPERATION in glPolygonMode: not available on Harbour Board: needs OpenGL rather than "
        "OpenGL ES",
        "GL_INVALID_ENUM in glTexParameteri: GL_CLAMP_TO_BORDER is not available on Harbour Board: needs "
        "OpenGL ES "
        "3.2",
        "GL_INVALID_ENUM in glBindTexture: GL_TEXTURE_BUFFER is not available on Harbour Board: needs OpenGL "
        "ES 3.2",
        "GL_INVALID_OPERATION in glDrawElementsBaseVertex: not available on Harbour Board: needs OpenGL ES "
        "3.2"};
    const std::vector<std::string> errors = program.told(Type::GlError, 68);
    ASSERT_EQ(errors.size(), std::size(expected)) << program.errors();
    for (std::size_t i = 0; i < errors.size(); ++i)
        EXPECT_TRUE(errors[i].starts_with(expected[i])) << errors[i];
    EXPECT_TRUE(errors[6].ends_with("\nglPolygonMode(face = GL_FRONT_AND_BACK, mode = GL_LINE_NV)"))
        << errors[6];
}

/// Other functions of the device take the same enumerants.
TEST_F(TestDevice, whatOneFunctionOfOldVersionsDoesNotTakeIsRefused)
{
    DeviceProgram program;
    const Questions calls{{"call glTexImage2D 0xDE1 0 0x1908 4 4 0 0x1908 0x1406 0", "0x500"},
        {"call glTexImage2D 0xDE1 0 0x1902 4 4 0 0x1902 0x1403 0", "0x500"},
        {"call glVertexAttribPointer 0 4 0x1404 0 0 0", "0x500"},
        {"call glDrawElements 4 3 0x1405 0", "0x500"}, {"set glTexParameterf 0xDE1 0x2802 0x812D", "0x500"},
        {"set glTexParameteriv 0xDE1 0x2802 0x812D", "0x500"},
        {"set glTexParameterfv 0xDE1 0x2802 0x812D", "0x500"}};
    // A framebuffer and indices for what is drawn.
    expectAnswers(program,
        {{"context 2 0", "version 2 config 0"}, {"call glBindFramebuffer 0x8D40 1", "0"},
            {"call glBindRenderbuffer 0x8D41 1", "0"}, {"call glRenderbufferStorage 0x8D41 0x8056 4 4", "0"},
            {"call glFramebufferRenderbuffer 0x8D40 0x8CE0 0x8D41 1", "0"},
            {"call glBindBuffer 0x8893 1", "0"}, {"call glBufferData 0x8893 12 0 0x88E4", "0"}});
    expectAnswers(program, calls);
    expectAnswers(program,
        {{"call glDrawElements 4 3 0x1403 0", "0"}, {"call glVertexAttribPointer 0 4 0x1406 0 0 0", "0"},
            {"set glTexParameterf 0xDE1 0x2802 0x2901", "0"},
            {"set glTexParameterfv 0xDE1 0x2802 0x2901", "0"}});
    program->setWireframe(true);
    expectAnswers(program,
        {{"call glDrawElements 4 3 0x1405 0", "0x500"}, {"context 3 0", "version 3 config 0"},
            {"call glTexImage2D 0xDE1 0 0x8814 4 4 0 0x1908 0x1406 0", "0"}});
    program->finish();
    EXPECT_EQ(program.told(Type::GlError, 68).size(), calls.size() + 1) << program.errors();
    EXPECT_TRUE(program.errors().starts_with("GL_INVALID_ENUM in glTexImage2D: GL_FLOAT is not available "
                                             "here on Harbour Board: needs OpenGL ES 3.0 "
                                             "or GL_OES_texture_float\n"))
        << program.errors();
}

TEST_F(TestDevice, limitsOfArgumentsHold)
{
    DeviceProgram program;
    expectAnswers(program,
        {{"context 3 0", "version 3 config 0"},
            {"call glTexImage2D 0xDE1 0 0x1908 1024 1 0 0x1908 0x1401 0", "0"},
            {"call glTexImage2D 0xDE1 0 0x1908 1025 1 0 0x1908 0x1401 0", "0x501"},
            {"call glTexImage2D 0xDE1 1 0x1908 513 1 0 0x1908 0x1401 0", "0x501"},
            {"call glTexStorage3D 0x806F 1 0x8058 4 4 257", "0x501"},
            {"call glRenderbufferStorage 0x8D41 0x8058 2049 1", "0x501"},
            {"call glEnableVertexAttribArray 7", "0"}, {"call glEnableVertexAttribArray 8", "0x501"},
            {"call glActiveTexture 0x84E1", "0"}, {"call glActiveTexture 0x84E8", "0x500"},
            {"call glBindBufferBase 0x8A11 23 0", "0"}, {"call glBindBufferBase 0x8A11 24 0", "0x501"},
            {"call glRenderbufferStorageMultisample 0x8D41 5 0x8058 4 4", "0x502"},
            {"call glRenderbufferStorageMultisample 0x8D41 1 0x8D7C 4 4", "0x502"},
            {"call glCompressedTexImage2D 0xDE1 0 0x83F0 4 4 0 8 0", "0x500"},
            {"call glCompressedTexImage2D 0xDE1 0 0x8C00 8 8 0 32 0", "0x500"},
            {"call glViewport 0 0 2000 2000", "0"}, {"get glGetIntegerv 0xBA2 4", "0 0 1024 512"},
            {"call glEndTilingQCOM 0", "0x502"}, {"call glPopGroupMarkerEXT", "0"},
            {"context 1 0", "version 1 config 0"}, {"call glPushMatrix", "0"},
            {"call glPushMatrix", "0x503"}});
    program->finish();
    const std::string errors = program.errors();
    for (const char* text : {"1025 is too much for Harbour Board, where GL_MAX_TEXTURE_SIZE is 1024",
             "GL_RGBA8 has 4 samples at most on Harbour Board", "GL_RGBA8UI has no samples on Harbour Board",
             "is none of the compressed formats of Harbour Board", "this machine cannot decode it",
             "Harbour Board has this function, but this machine has not: it needs GL_QCOM_tiled_rendering"})
        EXPECT_NE(errors.find(text), std::string::npos) << text << " in\n" << errors;
}

TEST_F(TestDevice, shadersAndProgramsKeepWithinTheDevice)
{
    DeviceProgram program;
    const std::string fragment = " @ precision mediump float; void main() { gl_FragColor = vec4(1); }";
    const auto uniforms = [&](int count) {
        return "link uniform vec4 u[" + std::to_string(count)
            + "]; attribute float i; void main() { gl_Position = u[int(i)]; }" + fragment;
    };
    const auto varyings = [](int count) {
        return "link attribute vec4 a; varying vec4 v[" + std::to_string(count)
            + "]; void main() { for (int i = 0; i < " + std::to_string(count)
            + "; ++i) v[i] = a; gl_Position = a; } @ precision mediump float; varying vec4 v["
            + std::to_string(count) + "]; void main() { gl_FragColor = v[0] + v[" + std::to_string(count - 1)
            + "]; }";
    };
    program.ask("context 2 0");
    EXPECT_EQ(program.ask("compile void main() { gl_Position = vec4(0); }"), "1 ");
    EXPECT_EQ(
        program.ask("compile #ifdef GL_OES_standard_derivatives|#extension GL_OES_standard_derivatives : "
                    "require|#endif|void main() { gl_Position = vec4(0); }"),
        "1 ");
    for (const std::string refused :
        {"#version 300 es|void main() {}", "/*|*/ # version 310 es|void main() {}",
            "#extension GL_OES_standard_derivatives : require|void main() {}"}) {
        const std::string answer = program.ask("compile " + refused);
        EXPECT_TRUE(answer.starts_with("0 ")) << answer;
        EXPECT_NE(answer.find("is not available on Harbour Board"), std::string::npos) << answer;
    }
    EXPECT_EQ(program.ask(uniforms(128)), "1  2 0");
    EXPECT_EQ(program.ask(uniforms(129)),
        "0 the vertex shader uses 129 vectors of uniforms; GL_MAX_VERTEX_UNIFORM_VECTORS of Harbour Board is "
        "128 2 "
        "0x502");
    EXPECT_EQ(program.ask(varyings(8)), "1  2 0");
    EXPECT_TRUE(program.ask(varyings(9)).starts_with("0 the fragment shader uses 9 vectors of varyings"));
    program.ask("context 3 0");
    EXPECT_TRUE(
        program.ask("compile #version 300 es|void main() { gl_Position = vec4(0); }").starts_with("1 "));
    program->finish();
}

TEST_F(TestDevice, whatTheMachineCannotIsToldOnceAndStrictlyRefused)
{
    Table table = harbourBoard();
    table.apis.back().capabilities[0x0D33] = {Number(std::int64_t{1} << 20)};
    {
        DeviceProgram program(table);
        program.ask("context 3 0");
        program.ask("context 3 0");
        program->finish();
        const std::vector<std::string> told = program.told(Type::Information, 0);
        ASSERT_EQ(told.size(), 2U);
        EXPECT_NE(
            told[1].find("of this profile (OpenGL ES 3.0) are beyond this machine:\nGL_MAX_TEXTURE_SIZE is "
                         "1048576 ("),
            std::string::npos)
            << told[1];
        EXPECT_NE(told[1].find("\nthe format GL_COMPRESSED_"), std::string::npos) << told[1];
    }
    table.strict = true;
    DeviceProgram program(table);
    expectAnswers(program, {{"context 3 0", "egl 0x3003"}, {"context 1 0", "egl 0x3003"}});
    program->finish();
}

TEST_F(TestDevice, aTableThatIsBrokenLeavesTheMachine)
{
    Table table = harbourBoard();
    table.configs.front().erase(EGL_CONFIG_ID);
    DeviceProgram program(table);
    EXPECT_EQ(program.ask("context 3 2"), "version 3 config 0");
    program->finish();
    ASSERT_FALSE(program.told(Type::Error, 0).empty());
    EXPECT_NE(program.told(Type::Error, 0).front().find("a config without an id"), std::string::npos);
}

/// A device that has what the machine has changes nothing.
TEST_F(TestDevice, scriptsRunOnADeviceThatSuffices)
{
    Table table{"Machine", "Vendor", "Renderer", false, {{32, {}, {}, {}, {}, {}}}, {}, {}};
    LayeredProgram bare({CORVALE_GLES_PROGRAM, "device"}, LayeredProgram::Layer::None);
    bare.ask("context 3 2");
    for (std::string name; !(name = bare.ask("stringi " + std::to_string(table.apis[0].extensions.size())))
                                .starts_with("null");)
        table.apis[0].extensions.push_back(name);
    for (const std::string script : {"errors", "debug", "threads", "frames"}) {
        LayeredProgram alone({CORVALE_GLES_PROGRAM, script}, LayeredProgram::Layer::None);
        DeviceProgram program(table, script);
        EXPECT_EQ(program->finish(), alone.finish()) << script;
    }
}

TEST(TestConfigChoice, sortsAsEglSays)
{
    const auto config = [](EGLint id, Config more) {
        more.insert({{EGL_CONFIG_ID, id}, {EGL_SURFACE_TYPE, EGL_WINDOW_BIT},
            {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES_BIT}, {EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER},
            {EGL_TRANSPARENT_TYPE, EGL_NONE}, {EGL_CONFIG_CAVEAT, EGL_NONE}});
        return more;
    };
    const std::vector<Config> configs{config(1, {{EGL_CONFIG_CAVEAT, EGL_SLOW_CONFIG}, {EGL_RED_SIZE, 8}}),
        config(2, {{EGL_RED_SIZE, 5}, {EGL_BUFFER_SIZE, 16}}),
        config(3, {{EGL_RED_SIZE, 8}, {EGL_BUFFER_SIZE, 24}}),
        config(4, {{EGL_RED_SIZE, 8}, {EGL_BUFFER_SIZE, 24}, {EGL_SAMPLES, 4}}),
        config(5, {{EGL_RED_SIZE, 8}, {EGL_BUFFER_SIZE, 24}, {EGL_DEPTH_SIZE, 24}}),
        config(6, {{EGL_LEVEL, 1}}), config(7, {{EGL_SURFACE_TYPE, EGL_PBUFFER_BIT}})};
    const auto choose = [&](std::vector<EGLint> wanted) {
        wanted.push_back(EGL_NONE);
        std::string ids;
        const std::vector<std::size_t> chosen = layer::chooseConfigs(configs, wanted.data()).value();
        for (const std::size_t place : chosen)
            ids += std::to_string(configs[place].at(EGL_CONFIG_ID));
        return ids;
    };
    EXPECT_EQ(choose({}), "23541") << "no color is asked for: the smallest buffer first, caveats last";
    EXPECT_EQ(choose({EGL_RED_SIZE, 1}), "35421") << "the largest color first";
    EXPECT_EQ(choose({EGL_RED_SIZE, EGL_DONT_CARE, EGL_DEPTH_SIZE, 1}), "5");
    EXPECT_EQ(choose({EGL_LEVEL, 1}), "6");
    EXPECT_EQ(choose({EGL_SURFACE_TYPE, EGL_PBUFFER_BIT}), "7");
    EXPECT_EQ(choose({EGL_SURFACE_TYPE, EGL_DONT_CARE, EGL_CONFIG_CAVEAT, EGL_SLOW_CONFIG}), "1");
}

} // namespace

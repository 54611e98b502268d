#include "LayeredProgram.h"
#include "Message.h"
#include "Wireframe.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/wait.h>

layer::Host::Resolver layer::firstResolver()
{
    return nullptr;
}

namespace {

using Layer = LayeredProgram::Layer;
using ui::messages::Type;

constexpr int noGles = 77;

/// What gles-program prints for a script, without the layer; nothing where there is no OpenGL ES.
std::string bareOutput(const std::string& script)
{
    LayeredProgram bare({CORVALE_GLES_PROGRAM, script}, Layer::None);
    const std::string printed = bare.finish();
    return bare.exitStatus() == noGles << 8 ? "" : printed;
}

std::vector<SentRecord> errorsOf(const LayeredProgram& program)
{
    return program.recordsOf(static_cast<std::uint32_t>(Type::GlError));
}

/// A sanitizer's runtime wants to be the first library of a program, and so does what is preloaded.
bool canPreload()
{
#ifdef __SANITIZE_ADDRESS__
    return false;
#else
    return true;
#endif
}

class TestLayer : public testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists("/usr/share/glvnd/egl_vendor.d/50_mesa.json")
            || bareOutput("errors").empty())
            GTEST_SKIP() << "there is no software driver of OpenGL ES here";
    }
};

struct Script {
    const char* name;
    const char* options; ///< Of the layer.
    Layer layer = Layer::Vendor;
};

class TestLayerScripts : public TestLayer, public testing::WithParamInterface<Script> { };

TEST_P(TestLayerScripts, programSeesWhatItWouldSeeAlone)
{
    const auto [script, options, layer] = GetParam();
    if (layer == Layer::Preload && !canPreload())
        GTEST_SKIP();
    const std::string bare = bareOutput(script);
    LayeredProgram layered({CORVALE_GLES_PROGRAM, script}, layer, {{"CORVALE_LAYER_OPTIONS", options}});
    EXPECT_EQ(layered.finish(), bare);
    EXPECT_FALSE(bare.empty());
    EXPECT_EQ(layered.exitStatus(), 0);
    EXPECT_EQ(layered.processes(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Scripts, TestLayerScripts,
    testing::Values(Script{"errors", ""}, Script{"errors", "get-error"}, Script{"errors", "no-errors"},
        Script{"debug", ""}, Script{"debug", "get-error"}, Script{"debug-context", ""}, Script{"threads", ""},
        Script{"terminate", ""}, Script{"destroy", ""}, Script{"errors", "", Layer::Preload},
        Script{"debug", "", Layer::Preload}));

class TestErrorRows : public TestLayer, public testing::WithParamInterface<Layer> { };
INSTANTIATE_TEST_SUITE_P(Ways, TestErrorRows, testing::Values(Layer::Vendor, Layer::Preload));

TEST_P(TestErrorRows, errorListRowByRow)
{
    if (GetParam() == Layer::Preload && !canPreload())
        GTEST_SKIP();
    LayeredProgram program({CORVALE_GLES_PROGRAM, "errors"}, GetParam());
    program.finish();
    const std::vector<std::pair<std::uint32_t, std::string>> expected{
        {0x500, "glEnable: glEnable(cap = 0x1234)"},
        {0x500, "glTexParameteri: glTexParameteri(target = GL_TEXTURE_2D, pname = 0xffff, param = 3)"},
        {0x501, "glViewport: glViewport(x = 0, y = 0, width = -1, height = 1)"},
        {0x500, "glDrawArrays: glDrawArrays(mode = 0x63, first = 0, count = 3)"},
        {0x501, "glUseProgram: glUseProgram(program = 777)"},
        {0x502, "glBindVertexArrayOES: glBindVertexArrayOES(array = 3553)"},
        {0x502,
            "glBufferData: glBufferData(target = GL_ARRAY_BUFFER, size = 4, data = null, usage = "
            "GL_STATIC_DRAW)"},
    };
    std::vector<std::pair<std::uint32_t, std::string>> shown;
    for (const SentRecord& error : errorsOf(program)) {
        const std::string description = error.text(68);
        EXPECT_NE(description.find("GL_INVALID"), std::string::npos) << "the driver's own words come first";
        shown.emplace_back(
            error.number(0), error.text(4) + ": " + description.substr(description.rfind('\n') + 1));
    }
    EXPECT_EQ(shown, expected);

    const auto egl = program.recordsOf(static_cast<std::uint32_t>(Type::Error));
    ASSERT_EQ(egl.size(), 1U);
    EXPECT_TRUE(egl.front().text(0).starts_with("EGL_BAD_MATCH in eglCreateContext(dpy = 0x"))
        << egl.front().text(0);
    EXPECT_EQ(program.recordsOf(static_cast<std::uint32_t>(Type::ContextInformation)).size(), 1U);
    EXPECT_EQ(program.recordsOf(static_cast<std::uint32_t>(Type::ReportComplete)).size(), 1U);
}

class TestReloading : public TestLayer, public testing::WithParamInterface<Layer> { };
INSTANTIATE_TEST_SUITE_P(Ways, TestReloading, testing::Values(Layer::Vendor, Layer::Preload));

TEST_P(TestReloading, programsMayUnloadEglAndLoadItAgain)
{
    if (GetParam() == Layer::Preload && !canPreload())
        GTEST_SKIP();
    LayeredProgram bare({CORVALE_RELOADING_PROGRAM}, Layer::None);
    LayeredProgram program({CORVALE_RELOADING_PROGRAM}, GetParam());
    EXPECT_EQ(program.finish(), bare.finish());
    EXPECT_EQ(program.exitStatus(), 0);
    EXPECT_EQ(errorsOf(program).size(), 6U);
    EXPECT_EQ(program.processes(), 1U);
}

TEST_F(TestLayer, debugGroupsAndMarkersOfTheProgram)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "debug"}, Layer::Vendor);
    program.finish();
    std::string shown;
    for (const SentRecord& record : program.records()) {
        if (record.type == static_cast<std::uint32_t>(Type::IdentifiedMessage))
            shown += "(" + std::to_string(record.number(4)) + " " + record.text(8);
        else if (record.type == static_cast<std::uint32_t>(Type::LineBreak))
            shown += ")";
        else if (record.type == static_cast<std::uint32_t>(Type::DebugMessage))
            shown += std::to_string(record.number(8)) + " ";
    }
    EXPECT_EQ(shown, "1 2 3 (7 a group9 10 )9 (5 marker)11 ");
}

TEST_F(TestLayer, errorsOfContextsThatPromisedNone)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "no-error"}, Layer::Vendor);
    program.finish();
    EXPECT_EQ(errorsOf(program).size(), 1U);
}

TEST_F(TestLayer, errorsAreFoundAsTheOptionsSay)
{
    LayeredProgram without(
        {CORVALE_GLES_PROGRAM, "errors"}, Layer::Vendor, {{"CORVALE_LAYER_OPTIONS", "no-errors"}});
    without.finish();
    EXPECT_TRUE(errorsOf(without).empty());
    EXPECT_EQ(without.recordsOf(static_cast<std::uint32_t>(Type::ContextInformation)).size(), 1U);
    LayeredProgram asking(
        {CORVALE_GLES_PROGRAM, "errors"}, Layer::Vendor, {{"CORVALE_LAYER_OPTIONS", "get-error"}});
    asking.finish();
    ASSERT_EQ(errorsOf(asking).size(), 7U);
    EXPECT_EQ(errorsOf(asking).front().text(68), "glEnable(cap = 0x1234)");
}

TEST_F(TestLayer, tellsOfEachContextOnce)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "destroy"}, Layer::Vendor);
    program.finish();
    EXPECT_EQ(program.recordsOf(static_cast<std::uint32_t>(Type::ContextInformation)).size(), 61U);
}

TEST_F(TestLayer, threadsReportEachErrorOnce)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "threads"}, Layer::Vendor);
    program.finish();
    std::map<std::string, int> counts;
    for (const SentRecord& error : errorsOf(program)) {
        const std::string call = error.text(68);
        ++counts[call.substr(call.find("x = "), 5)];
    }
    EXPECT_EQ(
        counts, (std::map<std::string, int>{{"x = 0", 500}, {"x = 1", 500}, {"x = 2", 500}, {"x = 3", 500}}));
}

/// The ways to come by a function that a program tried, and those of them that the layer has caught.
std::pair<std::string, std::string> waysTriedAndCaught(Layer layer)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "ways"}, layer);
    std::pair<std::string, std::string> ways;
    ways.first = program.finish();
    for (const SentRecord& error : errorsOf(program)) {
        const std::string call = error.text(68);
        ways.second += call.substr(call.rfind(')') - 1, 1) + ' ';
    }
    return ways;
}

TEST_F(TestLayer, allWaysToComeByAFunctionAreCaught)
{
    const auto [tried, caught] = waysTriedAndCaught(Layer::Vendor);
    EXPECT_EQ(caught, tried);
    EXPECT_GE(tried.size(), 12U) << "six ways at least need nothing but what the test needs anyway";
    if (!canPreload())
        return;
    const auto [triedAgain, preloaded] = waysTriedAndCaught(Layer::Preload);
    EXPECT_EQ(triedAgain, tried);
    EXPECT_EQ(preloaded + "9 ", tried) << "all but the loader's own dlsym(), which nothing can replace";
}

/// The loader looks for the next one behind whoever asks.
TEST_F(TestLayer, whoAsksForTheNextFunctionIsNotMistakenForAnother)
{
    if (!canPreload())
        GTEST_SKIP();
    LayeredProgram program({CORVALE_GLES_PROGRAM, "next"}, Layer::Preload);
    program.finish();
    ASSERT_EQ(errorsOf(program).size(), 1U);
    EXPECT_EQ(errorsOf(program).front().text(4), "glEnable");
}

TEST_F(TestLayer, recordsCarryTheFrameThatTheyBelongTo)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "frames"}, Layer::Vendor);
    program.finish();
    std::string frames;
    for (const SentRecord& error : errorsOf(program))
        frames += std::to_string(error.frame) + ' ';
    EXPECT_EQ(frames, "0 1 2 ");
    EXPECT_EQ(program.frames(), 3U);
}

TEST_F(TestLayer, forkedChildrenHaveRingsOfTheirOwn)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "fork"}, Layer::Vendor);
    program.finish();
    EXPECT_EQ(program.processes(), 2U);
    EXPECT_EQ(errorsOf(program).size(), 2U);
    EXPECT_EQ(program.recordsOf(static_cast<std::uint32_t>(Type::ReportComplete)).size(), 2U);
}

TEST_F(TestLayer, wireframesShowEdgesAndNothingElseChanges)
{
    LayeredProgram bare({CORVALE_GLES_PROGRAM, "draw"}, Layer::None);
    LayeredProgram layered({CORVALE_GLES_PROGRAM, "draw"}, Layer::Vendor);
    const std::string square = bare.ask("arrays");
    const std::string hashAndError = square.substr(square.find(' '));
    const auto lit = [](const std::string& answer) {
        return std::stoi(answer.substr(answer.find(' ')));
    };
    for (const std::string draw : {"arrays", "instanced", "fan", "memory", "buffer", "range", "base",
             "restart", "indirect", "elements-indirect"}) {
        SCOPED_TRACE(draw);
        EXPECT_EQ(layered.ask(draw), draw + hashAndError) << "never on, or off again";
        layered.setWireframe(true);
        const std::string lines = layered.ask(draw);
        EXPECT_LT(lit(lines), 300) << "four sides and a diagonal";
        EXPECT_GT(lit(lines), 200);
        EXPECT_TRUE(lines.ends_with(" 0")) << "no error: " << lines;
        layered.setWireframe(false);
    }
    layered.setWireframe(true);
    EXPECT_EQ(layered.ask("lines"), bare.ask("lines"));
    EXPECT_TRUE(layered.recordsOf(static_cast<std::uint32_t>(Type::Information)).empty());
    // A geometry shader wants its triangles: they are drawn as ever, and that is said once.
    EXPECT_EQ(layered.ask("geometry"), "geometry" + hashAndError);
    EXPECT_EQ(layered.ask("geometry"), "geometry" + hashAndError);
    layered.finish();
    EXPECT_TRUE(errorsOf(layered).empty());
    EXPECT_TRUE(layered.recordsOf(static_cast<std::uint32_t>(Type::DebugMessage)).empty());
    EXPECT_EQ(layered.recordsOf(static_cast<std::uint32_t>(Type::Information)).size(), 1U);
}

TEST_F(TestLayer, patchesAreDrawnAsEverAndThatIsSaidOnce)
{
    LayeredProgram program({CORVALE_GLES_PROGRAM, "draw"}, Layer::Vendor);
    const std::string patches = program.ask("patches");
    const std::string indirect = program.ask("indirect-patches");
    const std::string square = program.ask("arrays");
    EXPECT_EQ(patches.substr(patches.find(' ')), square.substr(square.find(' ')));
    program.setWireframe(true);
    EXPECT_EQ(program.ask("indirect-patches"), indirect);
    EXPECT_EQ(program.recordsOf(static_cast<std::uint32_t>(Type::Information)).size(), 1U);
    EXPECT_EQ(program.ask("patches"), patches);
    program.finish();
    EXPECT_EQ(program.recordsOf(static_cast<std::uint32_t>(Type::Information)).size(), 1U);
    EXPECT_TRUE(errorsOf(program).empty());
}

TEST(TestWireframe, edges)
{
    using Vertices = std::vector<std::uint32_t>;
    using layer::edgesOf;
    namespace gl = layer::gl;
    constexpr std::uint32_t restart = layer::restartIndex;
    EXPECT_EQ(edgesOf(gl::triangles, {1, 2, 3, 4, 5}, false), (Vertices{1, 2, 2, 3, 3, 1}));
    EXPECT_EQ(edgesOf(gl::triangleStrip, {1, 2, 3, 4}, false), (Vertices{1, 2, 2, 3, 3, 1, 3, 4, 4, 2}));
    EXPECT_EQ(edgesOf(gl::triangleFan, {1, 2, 3, 4}, false), (Vertices{1, 2, 2, 3, 3, 1, 3, 4, 4, 1}));
    EXPECT_EQ(edgesOf(gl::triangles, {1, 2, restart, 4, 5, 6}, true), (Vertices{4, 5, 5, 6, 6, 4}));
    EXPECT_EQ(edgesOf(gl::triangleFan, {1, 2, 3, restart, 4, 5, 6}, true),
        (Vertices{1, 2, 2, 3, 3, 1, 4, 5, 5, 6, 6, 4}));
}

} // namespace

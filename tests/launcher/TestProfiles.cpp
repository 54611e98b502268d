#include "ChildAnswer.h"
#include "ChildProcess.h"
#include "DeviceOfProfile.h"
#include "EglStrings.h"
#include "Preferences.h"
#include "ProfileChoice.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

using namespace launcher;
namespace fs = std::filesystem;
using Integers = std::vector<layer::device::Number>;

namespace {

constexpr const char* odd = R"(<profile>
<device>Odd
 &#27;[1m Board</device><renderer> R </renderer><vendor>V</vendor>
<es version="2"><max_texture_size> 0x800 </max_texture_size><max_texture_size>4096</max_texture_size>
 <max_varying_vectors>many</max_varying_vectors><aliased_point_size_range><max>7.5</max><min>1</min>
 </aliased_point_size_range><max_viewport_dims><width>5</width></max_viewport_dims>
 <compressed_texture_format>GL_ETC1_RGB8_OES</compressed_texture_format>
 <compressed_texture_format>33776</compressed_texture_format><unheard_of>1</unheard_of>
 <version>OpenGL ES 2.0 odd</version><shader_compiler>GL_TRUE</shader_compiler>
 <max_element_index>4294967295</max_element_index><extension>GL_B</extension><extension>GL_A
 GL_B</extension>
 <precision_format><shader>GL_VERTEX_SHADER</shader><type>36338</type><min>127</min><max>126</max>
  <precision>23</precision></precision_format><precision_format><shader>1</shader></precision_format></es>
<es version="31"><max_compute_work_group_size><z>3</z><x>1</x><y>2</y></max_compute_work_group_size>
 <max_server_wait_timeout>9223372036854775807</max_server_wait_timeout>
 <internal_format><name>RGBA8</name><samples>2</samples><samples>0</samples><samples>8</samples></internal_format>
 <internal_format><name>R8I</name><samples>0</samples></internal_format>
 <internal_format><name>NONE8</name></internal_format></es>
<es version="32"/><es version="7"/><es version="1"/>
<egl><vendor>EV</vendor><extension>EGL_X</extension><extension>EGL_Y</extension>
 <config id="-3"><red_size>5</red_size><surface_type>EGL_WINDOW_BIT</surface_type><surface_type>1</surface_type>
  <renderable_type>EGL_OPENGL_ES2_BIT</renderable_type><conformant>EGL_TRUE</conformant>
  <max_pbuffer><width>8</width><depth>9</depth></max_pbuffer><alpha_mask_size>8</alpha_mask_size>
  <config_caveat>none</config_caveat></config></egl></profile>)";

} // namespace

TEST(DeviceOfProfile, hasAllThatCanBeUnderstood)
{
    const ProfileData profile = readProfile(odd);
    const Device device = deviceOf(profile, true);
    const layer::device::Table& table = device.table;
    EXPECT_EQ(table.name, "Odd   [1m Board");
    EXPECT_EQ(table.renderer, "R");
    EXPECT_TRUE(table.strict);
    ASSERT_EQ(table.apis.size(), 4U);
    EXPECT_EQ(table.apis[0].version, 11);
    EXPECT_EQ(table.apis[3].version, 32);
    const layer::device::Api& es20 = table.apis[1];
    EXPECT_EQ(es20.capabilities,
        (std::map<std::uint32_t, Integers>{{0x0D33, {2048}}, {0x846D, {1, 7.5}}, {0x86A3, {0x8D64, 33776}},
            {0x8DFA, {1}}, {0x8D6B, {4294967295}}}));
    EXPECT_EQ(es20.texts.at(0x1F02), "OpenGL ES 2.0 odd");
    EXPECT_EQ(es20.extensions, (std::vector<std::string>{"GL_A", "GL_B"}));
    EXPECT_EQ(es20.precisions.at({0x8B31, 36338}), (std::array{127, 126, 23}));
    const layer::device::Api& es31 = table.apis[2];
    EXPECT_EQ(es31.capabilities,
        (std::map<std::uint32_t, Integers>{{0x91BF, {1, 2, 3}}, {0x9111, {9223372036854775807}}}));
    EXPECT_EQ(es31.sampleCounts,
        (std::map<std::uint32_t, std::vector<std::int32_t>>{{0x8058, {8, 2}}, {0x8231, {}}}));
    ASSERT_EQ(table.configs.size(), 1U);
    EXPECT_EQ(table.configs[0],
        (layer::device::Config{
            {0x3028, -3}, {0x3024, 5}, {0x3033, 5}, {0x3040, 4}, {0x3042, 4}, {0x302C, 8}, {0x303E, 8}}));
    EXPECT_EQ(table.eglTexts, (std::map<std::int32_t, std::string>{{0x3053, "EV"}, {0x3055, "EGL_X EGL_Y"}}));
    EXPECT_EQ(device.misread,
        (std::vector<std::string>{"a second max_texture_size in OpenGL ES 2.0",
            "max_varying_vectors 'many' in OpenGL ES 2.0", "max_viewport_dims in OpenGL ES 2.0",
            "unheard_of in OpenGL ES 2.0", "precision_format in OpenGL ES 2.0", "version 7 of OpenGL ES",
            "internal_format 'NONE8' in OpenGL ES 3.1", "depth '9' in config -3",
            "config_caveat 'none' in config -3"}));
    std::string why;
    EXPECT_EQ(layer::device::fromText(toText(table), &why), table) << why;
}

TEST(ChildAnswer, survivesWhatADriverDoes)
{
    using host_query::askChild;
    const auto ask = [](const std::function<std::string()>& function) {
        const host_query::ChildAnswer answer = askChild(function, std::chrono::milliseconds(500), 1U << 20U);
        return (answer.isGiven ? "+" : "-") + answer.text;
    };
    const std::string large(900'000, 'x');
    EXPECT_EQ(ask([&] { return large; }), "+" + large) << "more than a pipe holds";
    EXPECT_EQ(ask([&] { return large + large; }), "-the driver says too much");
    EXPECT_EQ(ask([]() -> std::string { throw std::runtime_error("nothing there"); }), "-nothing there");
    EXPECT_EQ(
        ask([] { return std::string(raise(SIGKILL) == 0 ? "" : "x"); }), "-the driver has crashed: Killed");
    EXPECT_EQ(ask([] { return std::string(pause() == 0 ? "" : "x"); }), "-the driver takes too long");
    EXPECT_EQ(ask([] { return std::string(write(STDOUT_FILENO, "!", 1) == 1 ? "quiet" : ""); }), "+quiet");
}

TEST(EglStrings, goThroughTheFile)
{
    const EglStrings strings{"a <vendor>", "1.5 x", {"EGL_B", "EGL_A"}};
    ProfileData profile;
    profile.setDevice("Made");
    setEglStrings(profile, strings);
    profile.configs()[1] = {{"red_size", "8", {}}};
    const ProfileData read = readProfile(writeProfile(profile));
    EXPECT_EQ(eglStrings(read), strings);
    EXPECT_EQ(read, profile);
    EXPECT_EQ(eglStrings(readProfile("<profile/>")), EglStrings());
}

TEST(ProfileChoice, isByNameFileOrTheWindow)
{
    const fs::path folder = child_process::freshFolder();
    const auto add = [&](const char* name, const std::string& device) {
        child_process::fill(folder / name, "<profile><device>" + device + "</device></profile>");
    };
    add("one.xml", "Twin");
    add("Two.xml", "Twin");
    add("Hadlow Tarn 10", "Copy");
    add("cut.xml", "<");
    setenv("CORVALE_PROFILE_PATH", folder.c_str(), 1);
    const auto chosen = [](const std::optional<std::string>& name) {
        const ProfileChoice choice = chooseProfile(name);
        EXPECT_TRUE(choice.profile.has_value() + choice.refusal.empty() != 1) << choice.refusal;
        return choice.profile ? choice.profile->fileName() + ":" + choice.profile->device() : choice.refusal;
    };
    EXPECT_EQ(chosen("Hadlow Tarn 10"), ":Hadlow Tarn 10");
    EXPECT_EQ(chosen("hadlow tarn 10"),
        "corvale-run: Several profiles are called hadlow tarn 10:\n"
        "  Hadlow Tarn 10\n  Copy (Hadlow Tarn 10)\nGive the name of the file.\n");
    EXPECT_EQ(chosen("ostrell WREN"), ":Ostrell Wren");
    EXPECT_EQ(chosen("Two.xml"), "Two.xml:Twin");
    EXPECT_EQ(chosen("TWO"), "Two.xml:Twin");
    EXPECT_TRUE(chosen("twin").starts_with("corvale-run: Several"));
    EXPECT_EQ(chosen("Copy"), "Hadlow Tarn 10:Copy");
    EXPECT_EQ(chosen((folder / "one.xml").string()), "one.xml:Twin");
    EXPECT_TRUE(chosen((folder / "none.xml").string()).starts_with("corvale-run: Failed to load"));
    EXPECT_TRUE(chosen("cut").starts_with("corvale-run: cut.xml cannot be loaded: "));
    EXPECT_TRUE(chosen("Hadlow\x1b Tern 12")
                    .starts_with("corvale-run: There is no profile Hadlow  Tern 12. "
                                 "Did you mean Hadlow Tarn 12? There are:\n  Host\n"));
    EXPECT_EQ(profileList().substr(0, 23), "Host\nFenlow FX-1 Board\n");
}

TEST(ProfileChoice, withoutANameIsThatOfTheWindowWhosePreferencesStay)
{
    const auto choice = [](const std::optional<std::string>& name = {}) {
        return chooseProfile(name);
    };
    std::string error;
    Preferences former;
    ASSERT_TRUE(former.load(error)) << error;
    const fs::path file = former.path();
    fs::remove(file);
    EXPECT_FALSE(choice().profile);
    EXPECT_FALSE(fs::exists(file)) << "looking makes no file";
    {
        Preferences preferences;
        ASSERT_TRUE(preferences.load(error)) << error;
        preferences.set(settings::currentProfile, "Ostrell Wren");
        preferences.set(settings::strictContextMode, true);
        EXPECT_EQ(choice().profile->device(), "Ostrell Wren");
        EXPECT_TRUE(choice().isStrict);
        EXPECT_FALSE(choice("host").profile);
        EXPECT_EQ(choice("Hadlow Tarn 7").profile->device(), "Hadlow Tarn 7");
        preferences.set(settings::currentProfile, "gone");
        EXPECT_TRUE(choice().refusal.empty());
        EXPECT_NE(choice().warning.find("not there any more: gone."), std::string::npos);
    }
    child_process::fill(file, "no preferences");
    EXPECT_NE(choice().warning.find("holds no preferences"), std::string::npos) << choice().warning;
    EXPECT_EQ(child_process::contentOf(file), "no preferences");
    fs::remove(file);
}

#include "ContextStart.h"

#include "BeyondHost.h"
#include "DebugState.h"
#include "DeviceConfigs.h"
#include "DeviceGate.h"
#include "ExtensionCatalogue.h"
#include "Message.h"
#include "Probe.h"
#include "Process.h"
#include "Records.h"
#include "TextBuffer.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>

namespace layer {

namespace {

namespace offset = ui::messages::offset;

std::string_view stringOf(Context& context, GLenum name)
{
    const auto* text = context.host->function<const GLubyte* (*)(GLenum)>(Fn::glGetString)(name);
    return text ? reinterpret_cast<const char*>(text) : "";
}

/// From now on the driver tells of each error while the call that makes it runs.
bool takeDebugOutput(Context& context, std::string_view extensions)
{
    const bool isCore = context.esVersion >= 32;
    if (!options().debugOutput || (!isCore && !hasWord(extensions, "GL_KHR_debug")))
        return false;
    const Fn callback = isCore ? Fn::glDebugMessageCallback : Fn::glDebugMessageCallbackKHR;
    const Fn control = isCore ? Fn::glDebugMessageControl : Fn::glDebugMessageControlKHR;
    if (!context.host->has(callback) || !context.host->has(control))
        return false;
    const auto enable = context.host->function<void (*)(GLenum)>(Fn::glEnable);
    enable(gl::debugOutput);
    enable(gl::debugOutputSynchronous);
    context.host->function<decltype(&generated::glDebugMessageControl)>(control)(
        gl::dontCare, gl::dontCare, gl::dontCare, 0, nullptr, 1);
    context.host->function<decltype(&generated::glDebugMessageCallback)>(callback)(&hostMessage, &context);
    return context.host->function<GLboolean (*)(GLenum)>(Fn::glIsEnabled)(gl::debugOutput) != 0;
}

/// Writes the codes of extensions into a list of a context record.
void putCodes(std::string& payload, std::size_t listOffset, const std::vector<std::uint32_t>& codes)
{
    const std::size_t count = std::min(codes.size(), ui::messages::extensionListCapacity);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t byte = 0; byte < 4; ++byte)
            payload[listOffset - offset::payload + 4 * i + byte] =
                static_cast<char>((codes[i] >> (8 * byte)) & 0xFFU);
    }
}

std::vector<std::uint32_t> codesOf(std::string_view extensions)
{
    std::vector<std::uint32_t> codes;
    for (std::uint32_t code = 1; code <= catalogue::esExtensionCount; ++code) {
        if (hasWord(extensions, catalogue::esExtensionName(code, catalogue::Prefix::With)))
            codes.push_back(code);
    }
    return codes;
}

/// The code of a version of OpenGL ES or of its shading language, both as 20 for 2.0; 0 for another.
std::uint32_t esCode(int version)
{
    static const std::map<int, std::uint32_t> codes{{10, 1}, {11, 1}, {20, 2}, {30, 3}, {31, 4}, {32, 5}};
    const auto found = codes.find(version);
    return found == codes.end() ? 0 : found->second;
}

std::uint32_t glslCode(int esVersion)
{
    return esVersion < 20 ? 0 : esCode(esVersion) - 1;
}

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += word + ' ';
    return text;
}

/// The lists of extensions of a page: those that a program finds and can use, those of its device that the
/// host lacks, and those of the host that its device lacks.
void putExtensions(std::string& payload, const Context& context, std::string_view hostExtensions)
{
    const std::vector<std::uint32_t> host = codesOf(hostExtensions);
    if (!context.api) {
        putCodes(payload, offset::contextExtensions, host);
        return;
    }
    const std::vector<std::uint32_t> device = codesOf(joined(context.api->extensions));
    std::vector<std::uint32_t> both, notOnHost, notOnDevice;
    std::ranges::set_intersection(device, host, std::back_inserter(both));
    std::ranges::set_difference(device, host, std::back_inserter(notOnHost));
    std::ranges::set_difference(host, device, std::back_inserter(notOnDevice));
    putCodes(payload, offset::contextExtensions, both);
    putCodes(payload, offset::contextExtensionsNotOnHost, notOnHost);
    putCodes(payload, offset::contextExtensionsNotEmulated, notOnDevice);
}

void sendRecord(const Context& context, std::string_view extensions)
{
    const HostFacts& host = hostFacts(*context.host, context.display);
    const int version = context.api ? offeredVersion(*context.api) : context.esVersion;
    std::string payload(ui::messages::recordSize - offset::payload, '\0');
    const auto put = [&](std::size_t at, std::uint32_t value) {
        putCodes(payload, at, {value});
    };
    put(offset::contextNumber, static_cast<std::uint32_t>(context.number));
    put(offset::contextStrict, options().strict ? 1 : 0);
    put(offset::contextEsVersion, esCode(version));
    put(offset::contextGlslEsVersion, glslCode(version));
    putExtensions(payload, context, extensions);
    put(offset::contextGlVersion, host.glVersion);
    put(offset::contextGlslVersion, host.glslVersion);
    putCodes(payload, offset::contextHostExtensions, host.glExtensions);
    records::context(payload);
}

/// The configs of the device whose stand-ins have less; empty without one.
std::string configsBeyond(EGLDisplay display)
{
    const DeviceConfigs* configs = deviceConfigs(display);
    std::string ids;
    for (const EGLint id : configs ? configs->lessIds() : std::vector<EGLint>())
        ids += (ids.empty() ? "" : ", ") + std::to_string(id);
    return ids.empty() ? ids : "the EGL configs " + ids + ", which have more than what stands in for them";
}

/// Tells what the device has beyond the host, once for each of its versions.
void tellBeyondHost(const Context& context, std::string_view hostExtensions)
{
    if (!context.gate->isFirstToTell() || !writer())
        return;
    const BeyondHost beyond = beyondHost(*context.host, context.esVersion, hostExtensions, *context.api);
    std::vector<std::string> lines = beyond.limits;
    lines.insert(lines.end(), beyond.others.begin(), beyond.others.end());
    const std::string configs = configsBeyond(context.display);
    if (!configs.empty())
        lines.push_back(configs);
    if (lines.empty())
        return;
    constexpr std::size_t linesShown = 100;
    TextBuffer<8000> text;
    text << lines.size() << (lines.size() == 1 ? " value" : " values") << " of this profile ("
         << apiName(context.api->version) << (lines.size() == 1 ? ") is" : ") are")
         << " beyond this machine:";
    for (std::size_t i = 0; i < std::min(lines.size(), linesShown); ++i)
        text << '\n' << lines[i];
    if (lines.size() > linesShown)
        text << "\nand " << lines.size() - linesShown << " more";
    records::information(text.text());
}

void startDevice(Context& context, std::string_view hostExtensions)
{
    DeviceGate& gate = gateOf(
        *context.host, {context.esVersion, std::string(hostExtensions)}, *emulatedDevice(), *context.api);
    context.gate = &gate;
    context.functions = gate.functions();
    tellBeyondHost(context, hostExtensions);
}

void tellDesktop(const Context& context)
{
    TextBuffer<256> text;
    text << "Context " << context.number
         << " is one of OpenGL rather than OpenGL ES: its errors are not watched.";
    records::information(text.text());
}

} // namespace

void startContext(Context& context)
{
    context.seenCurrent = true;
    if (!writer() && !context.api)
        return;
    if (!context.isEs) {
        tellDesktop(context);
        return;
    }
    const Unseen unseen(context);
    context.esVersion = versionIn(stringOf(context, gl::version));
    const std::string_view extensions = stringOf(context, gl::extensions);
    if (context.api)
        startDevice(context, extensions);
    if (!writer())
        return;
    sendRecord(context, extensions);
    if (!options().errors)
        return;
    context.watched = true;
    context.debug->output = context.isDebug;
    context.usesDebugOutput = takeDebugOutput(context, extensions);
    context.mustCheck = !context.usesDebugOutput;
}

void tellUnused(Context& context)
{
    if (context.seenCurrent || !context.isEs || !writer())
        return;
    context.esVersion = context.requestedVersion;
    sendRecord(context, "");
}

} // namespace layer

#include "ContextStart.h"

#include "DebugState.h"
#include "ExtensionCatalogue.h"
#include "Message.h"
#include "Probe.h"
#include "Process.h"
#include "Records.h"
#include "TextBuffer.h"

#include <algorithm>
#include <map>
#include <string>

namespace layer {

namespace {

namespace offset = ui::messages::offset;

std::string_view stringOf(Context& context, GLenum name)
{
    const auto* text = context.function<const GLubyte* (*)(GLenum)>(Fn::glGetString)(name);
    return text ? reinterpret_cast<const char*>(text) : "";
}

/// The first number of the form "3.2" in a text, as 32; 0 without one.
int versionIn(std::string_view text)
{
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        const auto isDigit = [&](std::size_t at) {
            return text[at] >= '0' && text[at] <= '9';
        };
        if (text[i] == '.' && isDigit(i - 1) && isDigit(i + 1))
            return (text[i - 1] - '0') * 10 + (text[i + 1] - '0');
    }
    return 0;
}

bool hasWord(std::string_view words, std::string_view wanted)
{
    for (std::size_t at = words.find(wanted); at != std::string_view::npos; at = words.find(wanted, at + 1)) {
        const std::size_t end = at + wanted.size();
        if ((at == 0 || words[at - 1] == ' ') && (end == words.size() || words[end] == ' '))
            return true;
    }
    return false;
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
    const auto enable = context.function<void (*)(GLenum)>(Fn::glEnable);
    enable(gl::debugOutput);
    enable(gl::debugOutputSynchronous);
    context.function<decltype(&generated::glDebugMessageControl)>(control)(
        gl::dontCare, gl::dontCare, gl::dontCare, 0, nullptr, 1);
    context.function<decltype(&generated::glDebugMessageCallback)>(callback)(&hostMessage, &context);
    return context.function<GLboolean (*)(GLenum)>(Fn::glIsEnabled)(gl::debugOutput) != 0;
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

void sendRecord(const Context& context, std::string_view extensions)
{
    const HostFacts& host = hostFacts(*context.host, context.display);
    std::string payload(ui::messages::recordSize - offset::payload, '\0');
    const auto put = [&](std::size_t at, std::uint32_t value) {
        putCodes(payload, at, {value});
    };
    put(offset::contextNumber, static_cast<std::uint32_t>(context.number));
    put(offset::contextStrict, options().strict ? 1 : 0);
    put(offset::contextEsVersion, esCode(context.esVersion));
    put(offset::contextGlslEsVersion, glslCode(context.esVersion));
    putCodes(payload, offset::contextExtensions, codesOf(extensions));
    put(offset::contextGlVersion, host.glVersion);
    put(offset::contextGlslVersion, host.glslVersion);
    putCodes(payload, offset::contextHostExtensions, host.glExtensions);
    records::context(payload);
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
    if (!writer())
        return;
    if (!context.isEs) {
        tellDesktop(context);
        return;
    }
    const Unseen unseen(context);
    context.esVersion = versionIn(stringOf(context, gl::version));
    const std::string_view extensions = stringOf(context, gl::extensions);
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

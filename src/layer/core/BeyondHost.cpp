#include "BeyondHost.h"

#include "GlEnumerants.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace layer {

namespace {

/// How a host keeps what a device promises.
enum class Promise { AtLeast, AtMost, Range, List, Nothing };

Promise promiseOf(std::string_view name)
{
    // Drivers recommend these and take more.
    if (name.starts_with("GL_MAX_ELEMENTS_"))
        return Promise::Nothing;
    if (name.starts_with("GL_MAX_"))
        return Promise::AtLeast;
    if (name.starts_with("GL_MIN_") || name.ends_with("_ALIGNMENT"))
        return Promise::AtMost;
    if (name.ends_with("_RANGE"))
        return Promise::Range;
    return name == "GL_COMPRESSED_TEXTURE_FORMATS" ? Promise::List : Promise::Nothing;
}

std::string textOf(double number)
{
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

class Comparison {
public:
    Comparison(Host& host, int hostVersion)
        : m_host(host)
        , m_hostVersion(hostVersion)
    {
    }

    void compare(GLenum name, const std::vector<device::Number>& promised)
    {
        const std::string text = ::gl::enumerantName(static_cast<std::int32_t>(name));
        const Promise promise = promiseOf(text);
        if (promise == Promise::List)
            compareFormats(promised);
        if (promise == Promise::List || promise == Promise::Nothing)
            return;
        const std::vector<double> here = values(name, promised.size());
        for (std::size_t i = 0; i < promised.size(); ++i) {
            const auto value = convert<double>(promised[i]);
            const bool isLowerEnd = promise == Promise::Range && i == 0;
            const bool mayBeLess = promise == Promise::AtMost || isLowerEnd;
            if (!here.empty() && (mayBeLess ? here[i] <= value : here[i] >= value))
                continue;
            beyond.limits.push_back(text + " is " + textOf(value) + " ("
                + (here.empty() ? "there is none" : textOf(here[i])) + " here)");
            break;
        }
    }

    void compareSamples(GLenum format, const std::vector<std::int32_t>& counts)
    {
        const std::int32_t most = counts.empty() ? 0 : *std::ranges::max_element(counts);
        if (most == 0 || m_hostVersion < 30)
            return;
        GLint here = 0;
        m_host.function<void (*)(GLenum, GLenum, GLenum, GLsizei, GLint*)>(Fn::glGetInternalformativ)(
            gl::renderbuffer, format, gl::samples, 1, &here);
        clearError();
        if (here < most)
            beyond.limits.push_back(std::string(::gl::enumerantName(static_cast<std::int32_t>(format)))
                + " has " + std::to_string(most) + " samples (" + std::to_string(here) + " here)");
    }

    BeyondHost beyond;

private:
    bool clearError() const { return m_host.function<GLenum (*)()>(Fn::glGetError)() != gl::none; }

    /// Nothing for a state that the host does not know.
    std::vector<double> values(GLenum name, std::size_t count) const
    {
        // Drivers write as many values as they have: lists are not asked for here.
        std::array<GLfloat, 16> values{};
        if (name == gl::maxComputeWorkGroupCount || name == gl::maxComputeWorkGroupSize) {
            for (GLuint i = 0; i < 3 && m_hostVersion >= 31; ++i) {
                GLint value = 0;
                m_host.function<void (*)(GLenum, GLuint, GLint*)>(Fn::glGetIntegeri_v)(name, i, &value);
                values[i] = static_cast<GLfloat>(value);
            }
        } else {
            m_host.function<void (*)(GLenum, GLfloat*)>(Fn::glGetFloatv)(name, values.data());
        }
        if (clearError() || count > values.size())
            return {};
        return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count)};
    }

    void compareFormats(const std::vector<device::Number>& promised)
    {
        const auto get = m_host.function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv);
        GLint count = 0;
        get(gl::numCompressedTextureFormats, &count);
        std::vector<GLint> here(static_cast<std::size_t>(std::clamp(count, 0, 4096)));
        if (!here.empty())
            get(gl::compressedTextureFormats, here.data());
        for (const device::Number& number : promised) {
            const auto format = convert<GLint>(number);
            const char* name = ::gl::enumerantName(format);
            if (std::ranges::find(here, format) == here.end())
                beyond.others.push_back("the format " + (*name ? std::string(name) : std::to_string(format)));
        }
    }

    Host& m_host;
    int m_hostVersion;
};

} // namespace

BeyondHost beyondHost(Host& host, int hostVersion, std::string_view hostExtensions, const device::Api& api)
{
    Comparison comparison(host, hostVersion);
    if (hostVersion < api.version)
        comparison.beyond.limits.push_back(
            "the version is " + apiName(api.version) + " (" + apiName(hostVersion) + " here)");
    for (const auto& [name, values] : api.capabilities)
        comparison.compare(name, values);
    for (const auto& [format, counts] : api.sampleCounts)
        comparison.compareSamples(format, counts);
    for (const std::string& extension : api.extensions) {
        if (!hasWord(hostExtensions, extension))
            comparison.beyond.others.push_back("the extension " + extension);
    }
    return comparison.beyond;
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

} // namespace layer

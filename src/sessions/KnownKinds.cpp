#include "KnownKinds.h"

#include "FileReplacement.h"
#include "GuardedFile.h"
#include "Limits.h"
#include "Utf8.h"

#include <array>
#include <cstdio>
#include <optional>
#include <tuple>
#include <utility>

namespace sessions {

namespace {

constexpr std::string_view firstLine = "corvale-findings 1";
constexpr std::string_view firstWord = "corvale-findings ";
constexpr const char* explanation = "# severity, function, code and text of each kind, with tabs between. "
                                    "\"#\" in a text stands for any number.\n";
constexpr std::string_view noText = "-"; ///< Stands for an empty field.

bool mustEscape(std::string_view text, std::size_t at, bool isUtf8)
{
    const auto c = static_cast<unsigned char>(text[at]);
    return c < ' ' || c == 0x7F || c == '\\' || (c >= 0x80 && !isUtf8);
}

std::string escaped(std::string_view text)
{
    if (text == noText)
        return "\\x2D";
    const bool isUtf8 = platform::isUtf8(text);
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (!mustEscape(text, at, isUtf8)) {
            result += c;
        } else if (c == '\n' || c == '\t' || c == '\\') {
            result += '\\';
            result += c == '\n' ? 'n' : c == '\t' ? 't' : '\\';
        } else {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\x%02X", static_cast<unsigned char>(c));
            result += code.data();
        }
    }
    return result.empty() ? std::string(noText) : result;
}

int digit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::optional<std::string> unescaped(std::string_view text)
{
    if (text == noText)
        return std::string();
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            result += text[at];
            continue;
        }
        const char kind = ++at < text.size() ? text[at] : '\0';
        if (kind == 'n' || kind == 't' || kind == '\\') {
            result += kind == 'n' ? '\n' : kind == 't' ? '\t' : '\\';
        } else if (kind == 'x' && at + 2 < text.size() && digit(text[at + 1]) >= 0
            && digit(text[at + 2]) >= 0) {
            result += static_cast<char>(digit(text[at + 1]) * 16 + digit(text[at + 2]));
            at += 2;
        } else {
            return std::nullopt;
        }
    }
    return result;
}

/// A signature, or why the line has none.
struct Line {
    Signature signature;
    std::string fault;
};

Line parseLine(std::string_view line)
{
    std::array<std::string, 4> fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const bool isLast = i + 1 == fields.size();
        const std::size_t end = isLast ? line.size() : line.find('\t');
        if (end == std::string_view::npos)
            return {{}, "it needs severity, function, code and text, with tabs between them"};
        const std::optional<std::string> field = unescaped(line.substr(0, end));
        if (!field)
            return {{}, "there is a \\ that no n, t, \\ or x and two digits follow"};
        fields.at(i) = *field;
        line.remove_prefix(isLast ? end : end + 1);
    }
    const std::optional<Severity> severity = severityOfName(fields[0]);
    if (!severity)
        return {{}, "the severity must be error, warning or message"};
    // Also texts that somebody has copied from a program's output match.
    return {signatureOf(*severity, fields[1], fields[2], fields[3]), {}};
}

bool isBlank(std::string_view line)
{
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

/// The next line, without its end; the text loses it.
std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace

bool KnownKinds::Less::operator()(const SignatureView& a, const SignatureView& b) const
{
    return std::tie(a.severity, a.function, a.code, a.text)
        < std::tie(b.severity, b.function, b.code, b.text);
}

bool KnownKinds::read(const std::filesystem::path& path, bool mayBeAbsent)
{
    const platform::FileBytes file = platform::readFile(path, platform::limits::fileSize);
    if (file.ok)
        return parse(file.bytes);
    m_reason = file.reason;
    if (!file.absent || !mayBeAbsent)
        return false;
    *this = {};
    return true;
}

bool KnownKinds::parse(std::string_view text)
{
    KnownKinds read;
    std::string comments;
    bool hasFirstLine = false;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        const auto fail = [&](const std::string& fault) {
            m_reason = "line " + std::to_string(number) + ": " + fault;
            return false;
        };
        if (line.starts_with('#')) {
            comments.append(line) += '\n';
        } else if (isBlank(line)) {
            // What stands by itself belongs to no kind.
            read.m_head += std::exchange(comments, {});
        } else if (line.starts_with(firstWord)) {
            if (line != firstLine)
                return fail("this is of a later version, and not understood");
            hasFirstLine = true;
        } else if (!hasFirstLine) {
            return fail("a list of findings begins with \"" + std::string(firstLine) + "\"");
        } else {
            const Line parsed = parseLine(line);
            if (!parsed.fault.empty())
                return fail(parsed.fault);
            if (read.size() >= countLimit)
                return fail("there are more than " + std::to_string(countLimit) + " kinds");
            read.m_kinds[parsed.signature] += std::exchange(comments, {});
        }
    }
    if (!hasFirstLine) {
        m_reason = "it is no list of findings: \"" + std::string(firstLine) + "\" is missing";
        return false;
    }
    read.m_tail = std::move(comments);
    *this = std::move(read);
    return true;
}

std::string KnownKinds::toText() const
{
    std::string text(firstLine);
    text += '\n';
    text += m_head.empty() ? std::string(explanation) : m_head;
    text += '\n';
    for (const auto& [signature, comments] : m_kinds) {
        text += comments;
        text.append(severityName(signature.severity)) += '\t';
        text.append(escaped(signature.function)) += '\t';
        text.append(escaped(signature.code)) += '\t';
        text.append(escaped(signature.text)) += '\n';
    }
    return text + m_tail;
}

bool KnownKinds::write(const std::filesystem::path& path)
{
    const std::string text = toText();
    if (text.size() > platform::limits::fileSize) {
        m_reason = "the list would be larger than what can be read again";
        return false;
    }
    const platform::FileResult result = platform::replaceFile(path, text);
    m_reason = result.reason;
    return static_cast<bool>(result);
}

bool KnownKinds::contains(const SignatureView& signature) const
{
    return m_kinds.find(signature) != m_kinds.end();
}

bool KnownKinds::add(const SignatureView& signature)
{
    if (size() >= countLimit)
        return false;
    return m_kinds.emplace(signature.copy(), std::string()).second;
}

bool KnownKinds::remove(const SignatureView& signature)
{
    const auto kind = m_kinds.find(signature);
    if (kind == m_kinds.end())
        return false;
    m_kinds.erase(kind);
    return true;
}

std::vector<Signature> KnownKinds::all() const
{
    std::vector<Signature> kinds;
    for (const auto& entry : m_kinds)
        kinds.push_back(entry.first);
    return kinds;
}

} // namespace sessions

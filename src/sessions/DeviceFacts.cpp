#include "DeviceFacts.h"

#include "ExtensionCatalogue.h"
#include "Numbers.h"
#include "Signature.h"

#include <algorithm>
#include <utility>

namespace sessions {

using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

constexpr std::size_t contextLimit = 500;
constexpr std::size_t partLimit = 20;
constexpr std::size_t valueCountLimit = 5000;
constexpr std::size_t valueLimit = 24'000; // bytes; some hundred extensions
constexpr std::size_t nameLimit = 600; // bytes
constexpr std::size_t bytesLimit = std::size_t{32} << 20U;

constexpr std::string_view contextStart = "context ";
constexpr std::string_view partStart = ": ";
constexpr std::string_view countName = "contexts";

const char* yesOrNo(std::uint32_t value)
{
    return (value & 0xFFU) != 0 ? "yes" : "no";
}

std::string extensions(const Record& record, std::size_t at, bool isHost)
{
    std::string names;
    for (std::size_t i = 0; i < ui::messages::extensionListCapacity; ++i) {
        const std::uint32_t code = record.u32(at + 4 * i);
        if (code == 0)
            break;
        const std::string_view name = isHost ? catalogue::hostExtensionName(code)
                                             : catalogue::esExtensionName(code, catalogue::Prefix::With);
        names += names.empty() ? "" : " ";
        // Those without a name are called so, with a blank between.
        names += name.find(' ') == std::string_view::npos ? name : "<unknown>";
    }
    return names;
}

} // namespace

bool DeviceFacts::add(const Record& record)
{
    const auto name = [&record] {
        return record.text(offset::reportText, offset::reportTextEnd);
    };
    switch (static_cast<Type>(record.type)) {
    case Type::ContextInformation:
        addContext(record);
        return true;
    case Type::ReportFlag:
        addValue(catalogue::hostExtensionName(record.u32(offset::reportKey)),
            yesOrNo(record.u32(offset::reportFlag)));
        return true;
    case Type::ReportText:
        addValue(name(), yesOrNo(record.u32(offset::reportTextEnd)));
        return true;
    case Type::ReportDetail:
        addValue(name(), std::to_string(record.u32(offset::reportTextEnd)));
        return true;
    case Type::ReportKeyedText:
    case Type::ReportOtherKeyedText:
        addValue(
            (record.type == static_cast<std::uint32_t>(Type::ReportKeyedText) ? "detail " : "further detail ")
                + std::to_string(record.u32(offset::reportKey)),
            record.text(offset::reportKeyedText));
        return true;
    default:
        return false;
    }
}

void DeviceFacts::addContext(const Record& record)
{
    ++m_contextCount;
    const auto number = static_cast<std::int32_t>(record.u32(offset::contextNumber));
    ContextFacts* context = newContext(std::string(contextStart) + std::to_string(number));
    if (!context)
        return;
    const auto setPart = [this, context](std::string_view part, std::string_view value) {
        set(context->parts, partLimit, part, value);
    };
    setPart(context_part::mode, record.u32(offset::contextStrict) != 0 ? "strict" : "loose");
    setPart(context_part::es, catalogue::esVersionName(record.u32(offset::contextEsVersion)));
    const std::uint32_t glslEs = record.u32(offset::contextGlslEsVersion);
    setPart(context_part::glslEs, glslEs == 0 ? "none" : catalogue::glslEsVersionName(glslEs));
    setPart(context_part::gl, catalogue::glVersionName(record.u32(offset::contextGlVersion)));
    setPart(context_part::glsl,
        catalogue::glslVersionName(record.u32(offset::contextGlslVersion), catalogue::GlslForm::Long));
    setPart(context_part::extensions, extensions(record, offset::contextExtensions, false));
    setPart(context_part::notOnHost, extensions(record, offset::contextExtensionsNotOnHost, false));
    setPart(context_part::notOffered, extensions(record, offset::contextExtensionsNotEmulated, false));
    setPart(context_part::hostExtensions, extensions(record, offset::contextHostExtensions, true));
}

ContextFacts* DeviceFacts::newContext(std::string name)
{
    if (m_contexts.size() >= contextLimit)
        return nullptr;
    const unsigned int number = ++m_contextsOfNumber[name];
    if (number > 1)
        name += " (" + std::to_string(number) + ")";
    m_contexts.push_back({std::move(name), {}});
    return &m_contexts.back();
}

ContextFacts* DeviceFacts::contextNamed(std::string_view name)
{
    // Mostly the last one: what belongs to a context comes together.
    const auto found = std::find_if(m_contexts.rbegin(), m_contexts.rend(),
        [name](const ContextFacts& context) { return context.name == name; });
    if (found != m_contexts.rend())
        return &*found;
    ContextFacts* context = newContext(std::string(name));
    m_contextCount = std::max<std::uint64_t>(m_contextCount, m_contexts.size());
    return context;
}

void DeviceFacts::add(const std::string& name, const std::string& value)
{
    const std::size_t end = name.find(partStart);
    if (name == countName) {
        const std::int64_t count = platform::parseInteger(value).value_or(0);
        m_contextCount =
            std::max(m_contextCount, static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0)));
    } else if (!name.starts_with(contextStart) || end == std::string::npos) {
        addValue(name, value);
    } else if (ContextFacts* context =
                   contextNamed(std::string_view(name).substr(0, std::min(end, nameLimit)))) {
        set(context->parts, partLimit, std::string_view(name).substr(end + partStart.size()), value);
    }
}

void DeviceFacts::addValue(std::string_view name, std::string_view value)
{
    set(m_values, valueCountLimit, name, value);
}

void DeviceFacts::set(std::map<std::string, std::string>& facts, std::size_t limit, std::string_view name,
    std::string_view value)
{
    const std::string key(cutText(name, nameLimit));
    const std::string_view kept = cutText(value, valueLimit);
    const auto place = facts.find(key);
    const std::size_t freed = place == facts.end() ? 0 : key.size() + place->second.size();
    if (m_bytes - freed + key.size() + kept.size() > bytesLimit
        || (place == facts.end() && facts.size() >= limit))
        return;
    m_bytes += key.size() + kept.size() - freed;
    facts.insert_or_assign(key, std::string(kept));
}

std::map<std::string, std::string> DeviceFacts::all() const
{
    std::map<std::string, std::string> facts = m_values;
    if (m_contextCount > 0)
        facts[std::string(countName)] = std::to_string(m_contextCount);
    for (const ContextFacts& context : m_contexts) {
        for (const auto& [part, value] : context.parts)
            facts[context.name + std::string(partStart) + part] = value;
    }
    return facts;
}

} // namespace sessions

#include "RunFacts.h"

#include "ExtensionCatalogue.h"
#include "Signature.h"

namespace checks {

using sessions::cutText;
using sessions::Record;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

constexpr std::size_t countLimit = 4000;
constexpr std::size_t valueLimit = 24'000; // bytes; some hundred extensions
constexpr std::size_t nameLimit = 600; // bytes

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
        names += names.empty() ? "" : " ";
        names += isHost ? catalogue::hostExtensionName(code)
                        : catalogue::esExtensionName(code, catalogue::Prefix::With);
    }
    return names;
}

} // namespace

bool RunFacts::add(const Record& record)
{
    switch (static_cast<Type>(record.type)) {
    case Type::ContextInformation:
        addContext(record);
        return true;
    case Type::ReportFlag:
        add(catalogue::hostExtensionName(record.u32(offset::reportKey)),
            yesOrNo(record.u32(offset::reportFlag)));
        return true;
    case Type::ReportText:
        add(std::string(record.text(offset::reportText, offset::reportTextEnd)),
            yesOrNo(record.u32(offset::reportTextEnd)));
        return true;
    case Type::ReportDetail:
        add(std::string(record.text(offset::reportText, offset::reportTextEnd)),
            std::to_string(record.u32(offset::reportTextEnd)));
        return true;
    case Type::ReportKeyedText:
    case Type::ReportOtherKeyedText:
        add((record.type == static_cast<std::uint32_t>(Type::ReportKeyedText) ? "detail " : "further detail ")
                + std::to_string(record.u32(offset::reportKey)),
            std::string(record.text(offset::reportKeyedText)));
        return true;
    default:
        return false;
    }
}

void RunFacts::addContext(const Record& record)
{
    const std::string context = "context " + std::to_string(record.u32(offset::contextNumber)) + ": ";
    add(context + "mode", record.u32(offset::contextStrict) != 0 ? "strict" : "loose");
    add(context + "OpenGL ES", catalogue::esVersionName(record.u32(offset::contextEsVersion)));
    add(context + "GLSL ES", catalogue::glslEsVersionName(record.u32(offset::contextGlslEsVersion)));
    add(context + "OpenGL of the host", catalogue::glVersionName(record.u32(offset::contextGlVersion)));
    add(context + "extensions", extensions(record, offset::contextExtensions, false));
    add(context + "extensions that the host lacks",
        extensions(record, offset::contextExtensionsNotOnHost, false));
    add(context + "extensions that are not offered",
        extensions(record, offset::contextExtensionsNotEmulated, false));
    add(context + "extensions of the host", extensions(record, offset::contextHostExtensions, true));
}

void RunFacts::add(const std::string& name, const std::string& value)
{
    const std::string key(cutText(name, nameLimit));
    if (m_facts.size() >= countLimit && m_facts.find(key) == m_facts.end())
        ++m_others;
    else
        m_facts[key] = cutText(value, valueLimit);
}

} // namespace checks

#include "SessionSummary.h"

#include "ExtensionCatalogue.h"

#include <algorithm>

namespace sessions {

using ui::messages::Type;
namespace offset = ui::messages::offset;

std::string_view supportName(Support support)
{
    switch (support) {
    case Support::Yes:
        return "supported";
    case Support::NotOnHost:
        return "not supported by the host system";
    case Support::NotEmulated:
        return "not supported by Corvale";
    }
    return {};
}

void SessionSummary::add(const Record& record)
{
    ++m_recordCount;
    if (record.type == static_cast<std::uint32_t>(Type::ContextInformation))
        addContext(record);
    else
        m_findings.add(record);
}

void SessionSummary::addContext(const Record& record)
{
    ++m_contextCount;
    addExtensions(record, offset::contextExtensions, Support::Yes);
    addExtensions(record, offset::contextExtensionsNotOnHost, Support::NotOnHost);
    addExtensions(record, offset::contextExtensionsNotEmulated, Support::NotEmulated);
    if (m_contexts.size() >= contextLimit)
        return;
    ContextFacts facts;
    facts.number = static_cast<std::int32_t>(record.u32(offset::contextNumber));
    facts.isStrict = record.u32(offset::contextStrict) != 0;
    facts.esVersion = catalogue::esVersionName(record.u32(offset::contextEsVersion));
    const std::uint32_t glslEs = record.u32(offset::contextGlslEsVersion);
    facts.glslEsVersion = glslEs == 0 ? "none" : catalogue::glslEsVersionName(glslEs);
    facts.glVersion = catalogue::glVersionName(record.u32(offset::contextGlVersion));
    facts.glslVersion =
        catalogue::glslVersionName(record.u32(offset::contextGlslVersion), catalogue::GlslForm::Long);
    m_contexts.push_back(std::move(facts));
}

void SessionSummary::addExtensions(const Record& record, std::size_t list, Support support)
{
    for (std::size_t i = 0; i < ui::messages::extensionListCapacity; ++i) {
        const std::uint32_t code = record.u32(list + i * sizeof code);
        if (code == 0)
            return;
        const auto place =
            m_extensions.try_emplace(catalogue::esExtensionName(code, catalogue::Prefix::With), support)
                .first;
        place->second = std::min(place->second, support);
    }
}

} // namespace sessions

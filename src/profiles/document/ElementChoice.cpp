#include "ElementChoice.h"

#include "ProfileElements.h"
#include "XmlText.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include <tinyxml2.h>

using profile_elements::ElementNumbers;
using profile_elements::readNode;
using tinyxml2::XMLElement;

namespace {

constexpr char extension[] = "extension";

template <typename Visit> void visitChildren(XMLElement& parent, Visit visit)
{
    for (XMLElement* child = parent.FirstChildElement(); child; child = child->NextSiblingElement())
        visit(*child);
}

/// Tells nodes apart by everything that is in them.
std::string fingerprint(const ProfileNode& node)
{
    constexpr char end = '\0';
    std::string text = node.name + end + node.value + end;
    for (const ProfileNode& child : node.children)
        text += fingerprint(child);
    return text + end;
}

/// Elements that wait for a node, by what the node must have in common with them.
using Waiting = std::map<std::string, std::deque<XMLElement*>>;

class NodeElements {
public:
    NodeElements(XMLElement& parent, const std::vector<ProfileNode>& nodes)
        : m_parent(parent)
        , m_nodes(nodes)
        , m_chosen(nodes.size())
    {
    }

    void takeOrigins();
    void takeAlike(const std::function<std::string(const XMLElement&)>& ofElement,
        const std::function<std::string(const ProfileNode&)>& ofNode);
    const XmlElements& chosen() const { return m_chosen; }

private:
    void take(std::size_t node, XMLElement* element)
    {
        m_chosen[node] = element;
        m_taken.insert(element);
    }

    XMLElement& m_parent;
    const std::vector<ProfileNode>& m_nodes;
    XmlElements m_chosen;
    std::set<const XMLElement*> m_taken;
};

/// A compound node that a tree has put together comes from where its parts come from.
void NodeElements::takeOrigins()
{
    std::map<int, XMLElement*> elements;
    const auto add = [&elements](const XMLElement& numbered, XMLElement& element) {
        if (const std::optional<int> number = ElementNumbers::of(numbered))
            elements.emplace(*number, &element);
    };
    visitChildren(m_parent, [&add](XMLElement& child) {
        add(child, child);
        visitChildren(child, [&](const XMLElement& part) { add(part, child); });
    });
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        const auto tryNode = [&](const ProfileNode& from) {
            const auto found = from.origin ? elements.find(*from.origin) : elements.end();
            if (!m_chosen[i] && found != elements.end() && found->second->Name() == m_nodes[i].name
                && !m_taken.contains(found->second))
                take(i, found->second);
        };
        tryNode(m_nodes[i]);
        std::for_each(m_nodes[i].children.begin(), m_nodes[i].children.end(), tryNode);
    }
}

void NodeElements::takeAlike(const std::function<std::string(const XMLElement&)>& ofElement,
    const std::function<std::string(const ProfileNode&)>& ofNode)
{
    Waiting waiting;
    visitChildren(m_parent, [&](XMLElement& child) {
        if (!m_taken.contains(&child))
            waiting[ofElement(child)].push_back(&child);
    });
    for (std::size_t i = 0; i < m_nodes.size() && !waiting.empty(); ++i) {
        const auto found = m_chosen[i] ? waiting.end() : waiting.find(ofNode(m_nodes[i]));
        if (found == waiting.end() || found->second.empty())
            continue;
        take(i, found->second.front());
        found->second.pop_front();
    }
}

/// How many of the nodes were read from each section. Extensions do not know it, so those that the section of
/// their own number has count for that.
std::map<int, int> countOrigins(const element_choice::Sections& sections, const std::map<int, int>& sectionOf,
    int number, const std::vector<ProfileNode>& nodes)
{
    std::set<std::string> own;
    if (const auto section = sections.find(number); section != sections.end()) {
        visitChildren(*section->second, [&own](const XMLElement& child) {
            if (child.Name() == std::string_view(extension))
                own.insert(platform::textOf(child));
        });
    }
    std::map<int, int> counts;
    const auto count = [&](const ProfileNode& node) {
        const auto found = node.origin ? sectionOf.find(*node.origin) : sectionOf.end();
        if (found != sectionOf.end())
            ++counts[found->second];
        else if (node.name == extension && own.contains(node.value))
            ++counts[number];
    };
    for (const ProfileNode& node : nodes) {
        count(node);
        std::for_each(node.children.begin(), node.children.end(), count);
    }
    return counts;
}

} // namespace

namespace element_choice {

XmlElements forNodes(XMLElement& parent, const std::vector<ProfileNode>& nodes, bool isApi)
{
    NodeElements elements(parent, nodes);
    elements.takeOrigins();
    elements.takeAlike(
        [isApi](const XMLElement& child) {
            const bool isText = isApi && child.Name() == std::string_view(extension);
            return fingerprint(
                isText ? ProfileNode{extension, platform::textOf(child), {}} : readNode(child));
        },
        fingerprint);
    elements.takeAlike([](const XMLElement& child) { return std::string(child.Name()); },
        [](const ProfileNode& node) { return node.name; });
    return elements.chosen();
}

Sections forSections(const Sections& sections, const std::map<int, std::vector<ProfileNode>>& nodes)
{
    std::map<int, int> sectionOf;
    for (const auto& [number, section] : sections) {
        const auto add = [&sectionOf, of = number](XMLElement& element) {
            if (const std::optional<int> origin = ElementNumbers::of(element))
                sectionOf.emplace(*origin, of);
        };
        visitChildren(*section, [&add](XMLElement& child) {
            add(child);
            visitChildren(child, add);
        });
    }
    std::map<int, std::map<int, int>> counts;
    for (const auto& [number, below] : nodes)
        counts[number] = countOrigins(sections, sectionOf, number, below);
    Sections chosen;
    std::set<int> taken;
    const auto take = [&](int number, int from) {
        const auto section = sections.find(from);
        if (!chosen[number] && section != sections.end() && taken.insert(from).second)
            chosen[number] = section->second;
    };
    // What still has something of its own is not given away.
    for (const auto& [number, origins] : counts) {
        if (origins.contains(number))
            take(number, number);
    }
    for (const auto& [number, origins] : counts) {
        const auto most = std::max_element(origins.begin(), origins.end(),
            [](const auto& one, const auto& other) { return one.second < other.second; });
        if (most != origins.end())
            take(number, most->first);
    }
    for (const auto& [number, origins] : counts)
        take(number, number);
    return chosen;
}

} // namespace element_choice

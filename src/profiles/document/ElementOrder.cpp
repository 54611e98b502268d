#include "ElementOrder.h"

#include <map>
#include <set>
#include <utility>

#include <tinyxml2.h>

using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

void orderElements(XMLElement& parent, const XmlElements& order)
{
    const std::set<const XMLNode*> wanted(order.begin(), order.end());
    // What stands before each element; before none, what stands at the end.
    std::map<const XMLElement*, std::vector<XMLNode*>> before;
    std::vector<XMLNode*> passed;
    std::vector<XMLNode*> deleted;
    for (XMLNode* node = parent.FirstChild(); node; node = node->NextSibling()) {
        // Texts stay where they are, before everything else.
        if (node->ToText())
            continue;
        if (!node->ToElement())
            passed.push_back(node);
        else if (!wanted.contains(node))
            deleted.push_back(node);
        else
            before[node->ToElement()] = std::exchange(passed, {});
    }
    for (XMLNode* node : deleted)
        parent.DeleteChild(node);
    // A node that is inserted leaves its old place.
    for (XMLElement* element : order) {
        for (XMLNode* node : before[element])
            parent.InsertEndChild(node);
        parent.InsertEndChild(element);
    }
    for (XMLNode* node : passed)
        parent.InsertEndChild(node);
}

// Loads a document, sets one value, saves and loads again: what was set must be what is read, and everything
// else must be as it was.

#include "MemoryLayer.h"
#include "PlistPreferences.h"
#include "XmlText.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>
#include <tinyxml2.h>

using property_list::KeyPath;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace {

void demand(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

bool sameTree(const XMLNode* before, const XMLNode* after)
{
    if (!before->ToDocument() && !before->ShallowEqual(after))
        return false;
    const XMLNode* left = before->FirstChild();
    const XMLNode* right = after->FirstChild();
    for (; left && right; left = left->NextSibling(), right = right->NextSibling()) {
        if (!sameTree(left, right))
            return false;
    }
    return !left && !right;
}

XMLElement* keyIn(XMLElement* container, const std::string& text)
{
    XMLElement* key = container->FirstChildElement();
    while (key && key->NextSiblingElement() && platform::textOf(*key) != text)
        key = key->NextSiblingElement()->NextSiblingElement();
    return key && key->NextSiblingElement() ? key : nullptr;
}

/// Takes out of both documents what setting a value had to change. False when the value is not there.
bool takeOut(XMLDocument& before, XMLDocument& after, const KeyPath& path)
{
    XMLElement* left = before.RootElement()->FirstChildElement();
    XMLElement* right = after.RootElement()->FirstChildElement();
    for (std::size_t depth = 0; right; ++depth) {
        XMLElement* oldKey = keyIn(left, path[depth]);
        XMLElement* newKey = keyIn(right, path[depth]);
        if (!newKey)
            return false;
        XMLElement* oldValue = oldKey ? oldKey->NextSiblingElement() : nullptr;
        XMLElement* newValue = newKey->NextSiblingElement();
        if (oldValue && depth + 1 < path.size() && std::strcmp(oldValue->Name(), "dict") == 0) {
            left = oldValue;
            right = newValue;
            continue;
        }
        right->DeleteChild(newValue);
        if (oldValue)
            left->DeleteChild(oldValue);
        else
            right->DeleteChild(newKey);
        return true;
    }
    return false;
}

void collectPaths(const XMLElement* key, const std::string& prefix, std::vector<std::string>& paths)
{
    for (; key && key->NextSiblingElement(); key = key->NextSiblingElement()->NextSiblingElement()) {
        const std::string path = prefix + '/' + platform::textOf(*key);
        paths.push_back(path);
        collectPaths(key->NextSiblingElement()->FirstChildElement(), path, paths);
    }
}

std::string somePath(FuzzedDataProvider& input, const XMLDocument& document)
{
    std::vector<std::string> paths{""};
    collectPaths(document.RootElement()->FirstChildElement()->FirstChildElement(), "", paths);
    const std::string known = paths[input.ConsumeIntegralInRange<std::size_t>(0, paths.size() - 1)];
    return known + input.ConsumeRandomLengthString(40);
}

property_list::Value someValue(FuzzedDataProvider& input)
{
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0:
        return input.ConsumeBool();
    case 1:
        return input.ConsumeRandomLengthString(60);
    case 2:
        return property_list::List{input.ConsumeRandomLengthString(20), input.ConsumeRandomLengthString(20)};
    case 3:
        return input.ConsumeIntegral<std::int64_t>();
    case 4:
        return input.ConsumeFloatingPoint<double>();
    default: {
        const std::string bytes = input.ConsumeRandomLengthString(40);
        return property_list::Data(bytes.begin(), bytes.end());
    }
    }
}

/// Sets and gets a value through the members for its type.
struct Setter {
    PlistPreferences& store;
    const std::string& path;
    ResultCode operator()(bool value) const { return store.setBoolean(path, value); }
    ResultCode operator()(const std::string& value) const { return store.setString(path, value); }
    ResultCode operator()(const property_list::List& value) const { return store.setList(path, value); }
    ResultCode operator()(std::int64_t value) const { return store.setInteger(path, value); }
    ResultCode operator()(double value) const { return store.setReal(path, value); }
    ResultCode operator()(const property_list::Data& value) const { return store.setData(path, value); }
};

struct IsStored {
    const PlistPreferences& store;
    const std::string& path;

    template <typename T, typename Getter> bool equals(const T& value, Getter getter) const
    {
        T stored{};
        return (store.*getter)(path, &stored, nullptr, false) == ResultCode::Success && stored == value;
    }
    bool operator()(bool value) const { return equals(value, &PlistPreferences::getBoolean); }
    bool operator()(const std::string& value) const { return equals(value, &PlistPreferences::getString); }
    bool operator()(const property_list::List& value) const
    {
        return equals(value, &PlistPreferences::getList);
    }
    bool operator()(std::int64_t value) const { return equals(value, &PlistPreferences::getInteger); }
    bool operator()(double value) const { return equals(value, &PlistPreferences::getReal); }
    bool operator()(const property_list::Data& value) const
    {
        return equals(value, &PlistPreferences::getData);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider input(bytes, size);
    const std::string document = input.ConsumeRandomLengthString(4096);
    MemoryDisk disk;
    disk.content = document;
    std::string error;
    PlistPreferences store("Store", 0, std::make_unique<MemoryLayer>(disk));
    const bool loaded = store.load(error, true);
    demand(loaded == error.empty(), "a failure has a text, and success has none");

    XMLDocument before;
    XMLDocument after;
    // A document that cannot be parsed would be kept aside on the real disk.
    if (!property_list::parse(before, document, error) || !property_list::repair(before, error)) {
        demand(
            store.getString("a", nullptr, nullptr, false) != ResultCode::Success, "nothing was found in it");
        return 0;
    }
    demand(loaded, "a sound document is loaded");
    const std::string path = somePath(input, before);
    const property_list::Value value = someValue(input);
    if (std::visit(Setter{store, path}, value) != ResultCode::Success)
        return 0;
    demand(std::visit(IsStored{store, path}, value), "the value is in memory");
    demand(store.save(false), "it can be saved");
    demand(property_list::parse(after, disk.content, error), "what was saved can be parsed");
    demand(takeOut(before, after, property_list::splitKeyPath(path)), "the value is where it belongs");
    demand(sameTree(&before, &after), "all else is as it was");

    PlistPreferences again("Store", 0, std::make_unique<MemoryLayer>(disk));
    demand(again.load(error, true), "what was saved can be loaded");
    demand(std::visit(IsStored{again, path}, value), "the value is on disk");
    return 0;
}

#pragma once

#include "ProfileData.h"

#include <map>
#include <string>

#include <tinyxml2.h>

/// Builds and prints the document of a profile. To be used once.
class ProfileWriter {
public:
    explicit ProfileWriter(const ProfileData& profile)
        : m_profile(profile)
    {
    }

    std::string write();

private:
    tinyxml2::XMLElement* append(tinyxml2::XMLNode* parent, const char* name);
    void appendText(tinyxml2::XMLNode* parent, const char* name, const std::string& text);
    void appendNode(tinyxml2::XMLNode* parent, const ProfileNode& node);
    void appendForeign(tinyxml2::XMLNode* parent, const std::string& elements);
    void appendApis(tinyxml2::XMLNode* root);
    void appendEgl(tinyxml2::XMLNode* root);
    tinyxml2::XMLElement* api(tinyxml2::XMLNode* root, int version);

    const ProfileData& m_profile;
    tinyxml2::XMLDocument m_document{true, tinyxml2::PRESERVE_WHITESPACE};
    std::map<int, tinyxml2::XMLElement*> m_apis;
};

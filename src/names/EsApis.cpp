#include "KeyTables.h"

namespace esapi {

namespace {

/// A bare 3 means 3.0, so 3.1 has a long form only.
const std::vector<API>& apis()
{
    static const std::vector<API> table{
        {"OpenGL ES 1.1", {1, 11}},
        {"OpenGL ES 2.0", {2, 20}},
        {"OpenGL ES 3.0", {3, 30}},
        {"OpenGL ES 3.1", {31}},
    };
    return table;
}

} // namespace

bool operator<(const API& left, const API& right)
{
    return left.versions < right.versions;
}

bool findAPI(int version, API* api)
{
    for (const API& row : apis()) {
        if (row.versions.contains(version)) {
            *api = row;
            return true;
        }
    }
    return false;
}

std::optional<gl::EsVersion> versionOf(int version)
{
    API api;
    if (findAPI(version, &api))
        return api.esVersion();
    return version == static_cast<int>(gl::EsVersion::Es32) ? std::optional(gl::EsVersion::Es32)
                                                            : std::nullopt;
}

void visitAPIs(const std::function<void(const API&)>& visit)
{
    for (const API& row : apis())
        visit(row);
}

} // namespace esapi

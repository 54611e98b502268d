#include "Settings.h"

#include <cstdlib>

namespace settings {

std::string ofThisVersion(std::string_view keyText)
{
    static const std::string product = "Corvale " CORVALE_VERSION;
    return product + std::string(keyText);
}

bool alwaysTrue()
{
    return true;
}

std::string everyNotification()
{
    return "errors";
}

std::string systemTheme()
{
    return "system";
}

std::string profilesDirectoryOfEnvironment()
{
    const char* variable = std::getenv("CORVALE_PROFILE_PATH");
    return variable ? variable : "";
}

Setting<std::string> documentPath(const std::string& document)
{
    return {"OpenDocs/" + document};
}

} // namespace settings

#include "SystemFacts.h"

#include <QGuiApplication>
#include <QSysInfo>

#include <tinyxml2.h>

QString libraryVersions()
{
    return QStringLiteral("Qt %1, TinyXML-2 %2.%3.%4")
        .arg(QLatin1String(qVersion()))
        .arg(TINYXML2_MAJOR_VERSION)
        .arg(TINYXML2_MINOR_VERSION)
        .arg(TINYXML2_PATCH_VERSION);
}

QString systemFacts(const QString& profile)
{
    return QStringLiteral("Libraries:  %1\n"
                          "System:     %2\n"
                          "Kernel:     %3 %4, %5\n"
                          "Display:    %6\n"
                          "Profile:    %7\n")
        .arg(libraryVersions(), QSysInfo::prettyProductName(), QSysInfo::kernelType(),
            QSysInfo::kernelVersion(), QSysInfo::currentCpuArchitecture(), QGuiApplication::platformName(),
            profile);
}

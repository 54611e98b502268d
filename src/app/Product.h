#pragma once

#include <QString>

/// Name and version of the product.
namespace product {

inline QString name()
{
    return QStringLiteral("Corvale");
}

inline QString version()
{
    return QStringLiteral(CORVALE_VERSION);
}

inline QString nameAndVersion()
{
    return name() + QLatin1Char(' ') + version();
}

} // namespace product

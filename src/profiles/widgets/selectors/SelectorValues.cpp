#include "ValueNames.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"
#include "KeyTables.h"

#include <limits>

namespace widgets {

QString eglValueName(const QString& value)
{
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    if (!isNumber)
        return value;
    const QString name = QString::fromLatin1(egl::symbolicName(number));
    return name.isEmpty() ? QString::number(number) : name;
}

QString eglAttribName(const QString& attrib)
{
    bool isNumber = false;
    const int number = attrib.toInt(&isNumber);
    EGLAttribKey key;
    return isNumber && findEGLAttribKey(number, &key) ? QString::fromStdString(key.displayName.text) : attrib;
}

QString apiName(const QString& version)
{
    bool isNumber = false;
    const int number = version.toInt(&isNumber);
    esapi::API api;
    return isNumber && esapi::findAPI(number, &api) ? QString::fromStdString(api.displayName) : version;
}

QString capabilityName(const QString& xmlName)
{
    ESCapabilityKeyNode node;
    const bool isKnown = findKeyNode(ESCapabilityKey::XMLName{xmlName.toStdString()}, &node);
    return isKnown ? QString::fromStdString(node.key.displayName.text) : xmlName;
}

QString glValueName(const QString& value)
{
    bool isNumber = false;
    const qlonglong number = value.toLongLong(&isNumber);
    if (!isNumber || number < std::numeric_limits<std::int32_t>::min()
        || number > std::numeric_limits<std::uint32_t>::max())
        return value;
    const QString name = QString::fromLatin1(gl::enumerantName(static_cast<std::int32_t>(number)));
    return name.isEmpty() ? value : name;
}

QString glTruthName(const QString& value)
{
    if (value == QLatin1String("1"))
        return QStringLiteral("GL_TRUE");
    return value == QLatin1String("0") ? QStringLiteral("GL_FALSE") : value;
}

QStringList decimals(const QList<std::int32_t>& numbers)
{
    QStringList texts;
    for (const std::int32_t number : numbers)
        texts += QString::number(number);
    return texts;
}

QList<std::int32_t> eglNumbers(std::initializer_list<const char*> names)
{
    QList<std::int32_t> numbers;
    for (const char* name : names) {
        if (const std::optional<std::int32_t> number = egl::enumerantValue(name))
            numbers += *number;
    }
    return numbers;
}

QStringList glDecimals(const QList<const char*>& names)
{
    QStringList texts;
    for (const char* name : names) {
        if (const std::optional<std::int32_t> number = gl::enumerantValue(name))
            texts += QString::number(static_cast<std::uint32_t>(*number));
    }
    texts.removeDuplicates();
    return texts;
}

} // namespace widgets

#include "EGLConfigIDSelector.h"

#include "Numbers.h"

#include <QRegularExpression>
#include <QWheelEvent>

#include <limits>

namespace widgets {

EGLConfigIDSelector::EGLConfigIDSelector(QWidget* parent, int current)
    : QSpinBox(parent)
    , m_first(current)
{
    setLocale(QLocale::c());
    setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    setPrefix(tr("Config "));
    setValue(current);
}

QString EGLConfigIDSelector::textFromValue(int value) const
{
    return QString::number(value);
}

int EGLConfigIDSelector::valueFromText(const QString& text) const
{
    const QString entry = text.startsWith(prefix()) ? text.mid(prefix().size()) : text;
    return parsedId(entry).value_or(value());
}

QValidator::State EGLConfigIDSelector::validate(QString& input, int& /*position*/) const
{
    static const QRegularExpression beginning(QStringLiteral("^[+-]?[0-9]*$|^0[xX][0-9a-fA-F]*$"));
    const QString entry = (input.startsWith(prefix()) ? input.mid(prefix().size()) : input).trimmed();
    if (parsedId(entry))
        return QValidator::Acceptable;
    return beginning.match(entry).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
}

std::optional<int> EGLConfigIDSelector::parsedId(const QString& entry)
{
    const std::string text = entry.toStdString();
    const std::optional<std::uint32_t> hexadecimal = platform::parseHexadecimal(text);
    if (hexadecimal && *hexadecimal <= std::uint32_t(std::numeric_limits<int>::max()))
        return static_cast<int>(*hexadecimal);
    return platform::parseInt32(text);
}

void EGLConfigIDSelector::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace widgets

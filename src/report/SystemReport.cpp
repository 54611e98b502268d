#include "SystemReport.h"

#include <QTextStream>

QString SystemReport::toText() const
{
    QString result;
    QTextStream out(&result);
    out << "System report " << leadingNumber << '\n';
    if (!flags.empty())
        out << '\n';
    for (const auto& [key, flag] : flags)
        out << key << ": " << (flag != 0 ? "yes" : "no") << '\n';
    if (!texts.empty())
        out << '\n';
    for (const Text& entry : texts)
        out << entry.text << ": " << entry.value << '\n';
    if (!details.empty())
        out << '\n';
    for (const Detail& entry : details)
        out << entry.text << ": " << entry.value << '\n';
    for (const std::vector<KeyedText>* entries : {&keyedTexts, &otherKeyedTexts}) {
        if (!entries->empty())
            out << '\n';
        for (const KeyedText& entry : *entries)
            out << entry.key << ": " << entry.text << '\n';
    }
    return result;
}

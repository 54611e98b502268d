#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

#include <map>
#include <optional>
#include <vector>

/// What the emulation libraries report about the system after their first eglInitialize(): one leading
/// number, flags by key, and four lists of entries in the order of their arrival.
struct SystemReport {
    struct Text {
        QString text;
        quint8 value = 0;
    };
    struct Detail {
        QString text;
        quint32 value = 0;
    };
    struct KeyedText {
        quint32 key = 0;
        QString text;
    };

    /// Nothing where it was not sent.
    std::optional<quint32> leadingNumber;
    std::map<quint32, quint8> flags;
    std::vector<Text> texts;
    std::vector<Detail> details;
    std::vector<KeyedText> keyedTexts;
    std::vector<KeyedText> otherKeyedTexts;
    /// How many entries came when there was no room for more.
    quint64 dropped = 0;
};

Q_DECLARE_METATYPE(SystemReport)

#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

#include <map>
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

    quint32 leadingNumber = 0;
    std::map<quint32, quint8> flags;
    std::vector<Text> texts;
    std::vector<Detail> details;
    std::vector<KeyedText> keyedTexts;
    std::vector<KeyedText> otherKeyedTexts;

    /// The report as lines of plain text.
    QString toText() const;
};

Q_DECLARE_METATYPE(SystemReport)

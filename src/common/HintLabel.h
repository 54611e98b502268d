#pragma once

#include <QLabel>

/// A label whose words wrap in the space that it is given. A wrapping QLabel has the layouts above it ask for
/// a height for each width, so that a stack of many pages would shape the words of all of them, several times
/// over, whenever one page changes.
class HintLabel : public QLabel {
public:
    explicit HintLabel(QWidget* parent = nullptr)
        : QLabel(parent)
    {
        setWordWrap(true);
        setAlignment(Qt::AlignCenter);
    }

    bool hasHeightForWidth() const override { return false; }
};

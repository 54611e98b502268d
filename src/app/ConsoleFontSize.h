#pragma once

#include <QObject>

class Preferences;
class QFontComboBox;

/// The size of the font of all consoles: that of the application's font, larger or smaller by as many points
/// as the user has chosen. Ctrl+plus, Ctrl+minus and Ctrl+0 change it in the whole window.
class ConsoleFontSize : public QObject {
    Q_OBJECT

public:
    /// Gives the font of the box, which those follow who show it, the size that is remembered.
    ConsoleFontSize(Preferences& preferences, QFontComboBox* box);

    /// Makes the font larger or smaller by some points.
    void change(int points);
    void reset();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void choose(int points);
    void apply();

    Preferences& m_preferences;
    QFontComboBox* m_box;
    int m_points = 0; ///< More than the application's font has.
};

#pragma once

#include <QDialog>
#include <QPointer>

class Preferences;
class QCheckBox;
class QLabel;

/// Shows the splash image, the product's name and version, and those of the libraries. It comes by itself
/// when the program starts, unless the user does not want that, or when it is asked for. Any click or key
/// that does nothing else in it closes it.
class AboutBox : public QDialog {
    Q_OBJECT

public:
    /// The store must live longer.
    AboutBox(const QString& splashImage, const QString& productText, Preferences& preferences,
        QWidget* parent = nullptr);

    /// Shows the box, if the user wants it at start, beside what goes on: it takes no focus, and goes as soon
    /// as a key or a mouse button is pressed anywhere in the program. Whatever that was meant for gets it.
    void showAtStart();
    /// Has the box that comes at the start leave this widget's text in sight, where the desktop lets it.
    void keepClearOf(QLabel* text) { m_textInSight = text; }
    /// Shows the box in front of its parent until it is closed.
    void showForced();
    /// Takes a box away that has come by itself.
    void endStart();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void forgetStart();
    void showBesideText();
    const QWindow* windowBehind() const;
    void readChoice();

    Preferences& m_preferences;
    QCheckBox* m_atStart;
    QPointer<QLabel> m_textInSight;
    bool m_starting = false;
};

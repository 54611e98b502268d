#pragma once

#include <QDialog>

#include <memory>

class Preferences;
class QLabel;

namespace Ui {
class FeedbackClass;
}

/// Tells where to send feedback, shows what to paste into it, and asks whether usage may be collected. It
/// sends nothing itself.
class FeedbackDialog : public QDialog {
    Q_OBJECT

public:
    /// Shows the first text, with the build behind it, above the second one. The store must live longer.
    FeedbackDialog(
        QWidget* parent, const QString& firstText, const QString& secondText, Preferences& preferences);
    /// Leaves the user's choice in the store's memory; whoever saves the store next takes it to the disk.
    ~FeedbackDialog() override;

    /// The font of the text to paste, which is aligned for one of fixed width.
    void setTextFont(const QFont& font);

private:
    void setUpTexts();
    void setUpLink(QLabel& label, const QString& name, const QString& target, const QString& shown);
    void openLink(QLabel& label, const QString& target);
    void copyRequiredText();

    std::unique_ptr<Ui::FeedbackClass> m_ui;
    Preferences& m_preferences;
};

#pragma once

#include "SessionComparer.h"

#include <QDialog>
#include <QStringList>

#include <vector>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

/// Lets the user choose two sessions and shows how the second differs from the first: findings, contexts,
/// extensions, and what is known of the device. It compares as soon as both are chosen.
class CompareSessionsDialog : public QDialog {
    Q_OBJECT

public:
    /// Offers what is kept of the open pages, and session files.
    CompareSessionsDialog(
        const std::vector<SessionSource>& opened, const QStringList& files, QWidget* parent);

    /// Offers one more file, and chooses it as the first or the second session.
    void chooseFile(bool isAfter, const QString& path);

private:
    void addChooser(QFormLayout& layout, const QString& label, bool isAfter);
    void setUpPages();
    QTreeWidget* addPage(const QString& objectName, const QStringList& columns);
    QWidget* setUpButtons();
    void browse(bool isAfter);
    void compare();
    void showResult();
    void showFindings();
    void showFacts(QTreeWidget& tree, const std::vector<sessions::FactPair>& facts, const QString& title);
    QString summary() const;
    void copy();
    void exportText();
    std::string text() const;

    std::vector<SessionSource> m_sources;
    SessionComparer m_comparer;
    QComboBox* m_before = nullptr;
    QComboBox* m_after = nullptr;
    QCheckBox* m_showSame = nullptr;
    QLabel* m_state = nullptr;
    QTabWidget* m_pages = nullptr;
    QTreeWidget* m_findings = nullptr;
    QTreeWidget* m_contexts = nullptr;
    QTreeWidget* m_extensions = nullptr;
    QTreeWidget* m_device = nullptr;
    QPushButton* m_export = nullptr;
    QPushButton* m_copy = nullptr;
    bool m_hasResult = false;
};

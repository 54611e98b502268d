#pragma once

#include "EGLConfigTree.h"
#include "ESCapabilityTree.h"
#include "ESExtensionTree.h"

#include <QObject>

#include <array>
#include <string>

class ProfileDataWrapper;

namespace models {

/// The three sections of one profile as trees, which hold copies: the document changes only by writeTo().
class Profile : public QObject {
    Q_OBJECT

public:
    explicit Profile(const ProfileDataWrapper& profile, QObject* parent = nullptr);

    ESCapabilityTree& capabilities() { return m_capabilities; }
    ESExtensionTree& extensions() { return m_extensions; }
    EGLConfigTree& configs() { return m_configs; }

    void setEditable(bool editable);

    /// Rows that were removed from the trees, as ProfileTree has it.
    int removedRowCount() const;
    QString restoreRemovedRows();
    void forgetRemovedRows();
    /// Shows a document anew, such as the one that was just saved, whose order may be another. Views keep the
    /// place of their reader.
    void refresh(const ProfileData& document);

    /// Replaces the three sections of a document by what the trees hold. What nobody changed is written as it
    /// was. Returns why nothing was written: a row at the top holds no number; else "".
    std::string writeTo(ProfileData& document) const;

private:
    std::array<ProfileTree*, 3> trees() { return {&m_capabilities, &m_extensions, &m_configs}; }

    ESCapabilityTree m_capabilities;
    ESExtensionTree m_extensions;
    EGLConfigTree m_configs;
};

} // namespace models

#pragma once

#include "ProfileData.h"
#include "ProfileTree.h"

#include <deque>

namespace models {

/// A config, one of its attributes, or a part of an attribute that the key table does not know.
///
/// The key of a config is its id. The key of an attribute is its enumerant, or the path of its element names,
/// joined by "/", where no enumerant is known for it. Keys further down are element names. Values are numbers
/// where they can be, else texts.
class EGLConfigTreeItem : public ProfileTreeItem {
public:
    EGLConfigTreeItem();

    /// A config with its attributes; those in compound elements have rows of their own.
    EGLConfigTreeItem(int id, const std::vector<ProfileNode>& attributes);

    void copyCells(const ProfileTreeItem& other) override;

    /// The id of a config; nothing when what it holds is no number.
    std::optional<int> id() const;

    /// The elements of a config. Rows that come from one compound element make one again, and a new row joins
    /// the first element of its kind.
    std::vector<ProfileNode> attributes() const;

private:
    /// A compound element: its name and which one it is. They are counted from 0 in each config; -1 is none
    /// of the document's.
    using Element = std::pair<std::string, int>;

    explicit EGLConfigTreeItem(const ProfileNode& node);

    void appendAttribute(
        const std::deque<std::string>& path, const ProfileNode& node, const Element& element);
    std::deque<std::string> path() const;
    ProfileNode node(const std::string& name) const;
    void appendElements(const ProfileNode& node, std::vector<ProfileNode>* nodes) const;

    /// Where the row comes from.
    Element m_element{{}, -1};
};

/// The EGL configs with their attributes, in two columns.
class EGLConfigTree : public ProfileTree {
    Q_OBJECT

public:
    explicit EGLConfigTree(const ProfileData::Configs& configs, QObject* parent = nullptr);

    /// Shows these instead, by a reset of the model.
    void refresh(const ProfileData::Configs& configs);

    /// The rows as a document holds them. Rows at the top that hold no number are left out.
    ProfileData::Configs configs() const;

    /// The lowest id from 0 that no config has.
    int freeId() const;

protected:
    std::unique_ptr<ProfileTreeItem> makeItem() const override;
    QString displayText(const ProfileTreeItem& item, int column) const override;
    QString readableText(const ProfileTreeItem& item, int column) const override;
    QVariant storedValue(const ProfileTreeItem& item, int column, const QVariant& value) const override;

private:
    void fill(const ProfileData::Configs& configs);
};

} // namespace models

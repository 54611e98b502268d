#include "models/Profile.h"

#include "ProfileColumns.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"

namespace models {

namespace {

std::string whyNotWritable(const ProfileTree& tree, const char* what)
{
    for (int row = 0; row < tree.items().count(); ++row) {
        const ProfileTreeItem& item = *tree.items().at(row);
        if (!storedNumber(item.data(KeyColumn)))
            return QStringLiteral("'%1' is no %2")
                .arg(item.data(KeyColumn).toString(), QString::fromLatin1(what))
                .toStdString();
    }
    return {};
}

} // namespace

Profile::Profile(const ProfileDataWrapper& profile, QObject* parent)
    : QObject(parent)
    , m_capabilities(profile.data().capabilities())
    , m_extensions(profile.data().extensions())
    , m_configs(profile.data().configs())
{
}

void Profile::setEditable(bool editable)
{
    for (ProfileTree* tree : trees())
        tree->setWritable(editable);
}

int Profile::removedRowCount() const
{
    return m_capabilities.removedRowCount() + m_extensions.removedRowCount() + m_configs.removedRowCount();
}

QString Profile::restoreRemovedRows()
{
    QString taken;
    for (ProfileTree* tree : trees()) {
        const QString found = tree->restoreRemovedRows();
        taken = taken.isEmpty() ? found : taken;
    }
    return taken;
}

void Profile::forgetRemovedRows()
{
    for (ProfileTree* tree : trees())
        tree->forgetRemovedRows();
}

void Profile::refresh(const ProfileData& document)
{
    m_capabilities.refresh(document.capabilities());
    m_extensions.refresh(document.extensions());
    m_configs.refresh(document.configs());
}

std::string Profile::writeTo(ProfileData& document) const
{
    std::string reason = whyNotWritable(m_capabilities, "version of an API");
    if (reason.empty())
        reason = whyNotWritable(m_extensions, "version of an API");
    if (reason.empty())
        reason = whyNotWritable(m_configs, "number of a config");
    if (!reason.empty())
        return reason;
    document.extensions() = m_extensions.extensions();
    document.capabilities() = m_capabilities.capabilities();
    document.configs() = m_configs.configs();
    // Every version of the document has a list of extensions, if only an empty one.
    for (int row = 0; row < m_capabilities.items().count(); ++row)
        document.extensions()[m_capabilities.items().at(row)->data(KeyColumn).toInt()];
    return {};
}

} // namespace models

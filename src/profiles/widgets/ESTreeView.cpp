#include "ESTreeView.h"

#include "UnusedKeys.h"

namespace widgets {

std::set<esapi::API> ESTreeView::unusedAPIs(const QAbstractItemModel* model)
{
    return model ? widgets::unusedAPIs(model) : std::set<esapi::API>();
}

QVariant ESTreeView::freeKey() const
{
    const std::set<esapi::API> apis = unusedAPIs(model());
    return apis.empty() ? QVariant() : apis.begin()->shortVersion();
}

void ESTreeView::addAPITriggered()
{
    const std::set<esapi::API> apis = unusedAPIs(model());
    QStringList names;
    for (const esapi::API& api : apis)
        names << QString::fromStdString(api.displayName);
    const std::string chosen = ask(tr("Add API"), tr("Select an API"), names).toStdString();
    for (const esapi::API& api : apis) {
        if (api.displayName == chosen)
            addRow({}, api.shortVersion());
    }
}

} // namespace widgets

#include "ESTreeView.h"

#include "models/ProfileColumns.h"

namespace widgets {

std::set<esapi::API> ESTreeView::unusedAPIs(const QAbstractItemModel* model)
{
    std::set<esapi::API> unused;
    esapi::visitAPIs([&unused](const esapi::API& api) { unused.insert(api); });
    for (int row = 0; model && row < model->rowCount(); ++row) {
        esapi::API used;
        if (esapi::findAPI(model->index(row, models::KeyColumn).data(Qt::EditRole).toInt(), &used))
            unused.erase(used);
    }
    return unused;
}

void ESTreeView::addAPITriggered()
{
    const std::set<esapi::API> apis = unusedAPIs(model());
    QStringList names;
    for (const esapi::API& api : apis)
        names << QString::fromStdString(api.displayName);
    const std::string chosen =
        ask(QStringLiteral("Add API"), QStringLiteral("Select an API"), names).toStdString();
    for (const esapi::API& api : apis) {
        // The shortest number is the one that profiles use.
        if (api.displayName == chosen)
            addRow({}, *api.versions.begin());
    }
}

} // namespace widgets

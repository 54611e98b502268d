#include "ContextInterface.h"

#include "ExtensionCatalogue.h"
#include "ExtensionModel.h"
#include "TableActions.h"
#include "TableExport.h"
#include "ui_ContextInterface.h"

#include <QAction>
#include <QHeaderView>

#include <algorithm>
#include <array>
#include <vector>

using ui::messages::Message;
namespace offset = ui::messages::offset;

namespace {

/// The identifiers of an extension list, up to its 0 entry or the end of its field.
std::vector<std::uint32_t> readExtensions(const Message& record, std::size_t listOffset)
{
    std::vector<std::uint32_t> codes;
    for (std::size_t i = 0; i < ui::messages::extensionListCapacity; ++i) {
        const std::uint32_t code = record.u32(listOffset + i * sizeof code);
        if (code == 0)
            break;
        codes.push_back(code);
    }
    return codes;
}

struct SupportState {
    std::size_t listOffset;
    const char* text;
};

constexpr std::array supportStates{
    SupportState{offset::contextExtensions, QT_TRANSLATE_NOOP("ExtensionModel", "Yes")},
    SupportState{offset::contextExtensionsNotOnHost,
        QT_TRANSLATE_NOOP("ExtensionModel", "Not supported by the host system")},
    SupportState{offset::contextExtensionsNotEmulated,
        QT_TRANSLATE_NOOP("ExtensionModel", "Not currently supported by Corvale")},
};

} // namespace

ContextInterface::ContextInterface(const Message& record, QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ContextInterface>())
{
    m_ui->setupUi(this);
    showVersions(record);
    showEsExtensions(record);
    showHostExtensions(record);
    if (record.u32(offset::contextStrict) == 0)
        m_ui->grp_context_info_es->setTitle(tr("OpenGL ES (Emulated) (Loose mode)"));
    m_ui->table_context_info_es_extensions->resizeColumnsToContents();
    addTableActions(*m_ui->table_context_info_es_extensions, QStringLiteral("es-extensions"));
    addTableActions(*m_ui->list_context_info_gl_extensions, QStringLiteral("gl-extensions"));
}

ContextInterface::~ContextInterface() = default;

/// Copying and exporting, in a context menu.
void ContextInterface::addTableActions(QAbstractItemView& view, const QString& fileName)
{
    const auto table = [&view] {
        return TextTable::of(*view.model());
    };
    auto* copying = new TableActions(view, table);
    connect(copying, &TableActions::statusMessage, this, &ContextInterface::statusMessage);
    auto* exporting = new TableExport(&view);
    connect(exporting, &TableExport::ended, this,
        [this](bool, const QString& text) { Q_EMIT statusMessage(text); });
    auto* action = new QAction(tr("&Export..."), &view);
    connect(action, &QAction::triggered, exporting,
        [exporting, table, fileName] { exporting->ask(tr("Export extensions"), fileName, table); });
    view.addAction(action);
    view.setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ContextInterface::showVersions(const Message& record)
{
    m_esVersion = QString::fromLatin1(catalogue::esVersionName(record.u32(offset::contextEsVersion)));
    m_ui->lbl_context_info_es_version_val->setText(m_esVersion);
    m_ui->lbl_context_info_gl_version_val->setText(
        QString::fromLatin1(catalogue::glVersionName(record.u32(offset::contextGlVersion))));
    m_ui->lbl_context_info_glsl_version_val->setText(QString::fromLatin1(
        catalogue::glslVersionName(record.u32(offset::contextGlslVersion), catalogue::GlslForm::Long)));
    const std::uint32_t glslEs = record.u32(offset::contextGlslEsVersion);
    m_ui->lbl_context_info_glsl_es_version_val->setText(
        glslEs == 0 ? tr("None") : QString::fromLatin1(catalogue::glslEsVersionName(glslEs)));

    // A name in angle brackets would be taken for markup.
    for (QLabel* label : {m_ui->lbl_context_info_es_version_val, m_ui->lbl_context_info_gl_version_val,
             m_ui->lbl_context_info_glsl_version_val, m_ui->lbl_context_info_glsl_es_version_val})
        label->setTextFormat(Qt::PlainText);
}

void ContextInterface::showEsExtensions(const Message& record)
{
    auto* model = new ExtensionModel(2, this);
    for (const SupportState& state : supportStates) {
        for (const std::uint32_t code : readExtensions(record, state.listOffset))
            model->append(catalogue::esExtensionName(code, catalogue::Prefix::With), state.text);
    }
    for (const std::uint32_t code : readExtensions(record, offset::contextExtensions))
        m_esExtensions.append(QString::fromLatin1(catalogue::esExtensionName(code, catalogue::Prefix::With)));
    QTableView& table = *m_ui->table_context_info_es_extensions;
    const int height = table.fontMetrics().height() + 6;
    table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table.verticalHeader()->setMinimumSectionSize(
        std::min(height, table.verticalHeader()->minimumSectionSize()));
    table.verticalHeader()->setDefaultSectionSize(height);
    table.horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table.setModel(model);
    m_ui->lbl_context_info_es_extensions_val->setText(QString::number(model->rowCount()));
}

void ContextInterface::showHostExtensions(const Message& record)
{
    auto* model = new ExtensionModel(1, this);
    for (const std::uint32_t code : readExtensions(record, offset::contextHostExtensions))
        model->append(catalogue::hostExtensionName(code));
    m_ui->list_context_info_gl_extensions->setModel(model);
    m_ui->lbl_context_info_gl_extensions_val->setText(QString::number(model->rowCount()));
}

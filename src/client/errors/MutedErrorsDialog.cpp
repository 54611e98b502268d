#include "MutedErrorsDialog.h"

#include "ElidedLabel.h"
#include "ErrorKinds.h"
#include "MutedErrors.h"
#include "PlainToolTip.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

enum Column { SeverityColumn, FunctionColumn, CodeColumn, TextColumn };

constexpr qsizetype shownLetters = 2000;

} // namespace

MutedErrorsDialog::MutedErrorsDialog(MutedErrors& muted, QWidget* parent)
    : QDialog(parent)
    , m_muted(muted)
    , m_list(new QTreeWidget(this))
    , m_hint(new QLabel(this))
    , m_file(new ElidedLabel(this))
{
    setWindowTitle(tr("Muted Kinds"));
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setWordWrap(true);
    m_list->setObjectName(QStringLiteral("listMutedErrors"));
    m_list->setAccessibleName(tr("Muted kinds"));
    m_list->setHeaderLabels({tr("Severity"), tr("Function"), tr("Code"), tr("Text")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_show = buttons->addButton(tr("&Show Again"), QDialogButtonBox::ActionRole);
    m_show->setToolTip(tr("Show rows of the selected kinds again (Delete)"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_hint);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_file);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_show, &QPushButton::clicked, this, &MutedErrorsDialog::showChosen);
    auto* key = new QShortcut(QKeySequence::Delete, m_list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(key, &QShortcut::activated, this, &MutedErrorsDialog::showChosen);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &MutedErrorsDialog::updateButton);
    connect(&m_muted, &MutedErrors::changed, this, &MutedErrorsDialog::fill);
    connect(&m_muted, &MutedErrors::failed, m_hint, &QLabel::setText);
    fill();
    const int letter = fontMetrics().averageCharWidth();
    setMinimumWidth(50 * letter);
    resize(100 * letter, 45 * letter);
    m_list->setFocus();
}

void MutedErrorsDialog::fill()
{
    const int former = m_list->indexOfTopLevelItem(m_list->currentItem());
    m_list->clear();
    for (const sessions::Signature& kind : m_muted.kinds().all()) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(SeverityColumn, severityText(kind.severity));
        item->setText(FunctionColumn, QString::fromStdString(kind.function));
        item->setText(CodeColumn, QString::fromStdString(kind.code));
        item->setText(TextColumn, QString::fromStdString(kind.text).left(shownLetters).simplified());
        item->setData(SeverityColumn, Qt::UserRole, QVariant::fromValue(kind));
    }
    // So that keys have something to act on.
    m_list->setCurrentItem(
        m_list->topLevelItem(std::clamp(former, 0, std::max(0, m_list->topLevelItemCount() - 1))));
    for (const int column : {SeverityColumn, FunctionColumn, CodeColumn})
        m_list->resizeColumnToContents(column);
    const QString file = QDir::toNativeSeparators(QFile::decodeName(m_muted.file().c_str()));
    if (!m_muted.problem().isEmpty())
        m_hint->setText(tr("The muted kinds cannot be read: %1").arg(m_muted.problem()));
    else if (m_muted.kinds().empty())
        m_hint->setText(
            tr("Nothing is muted. \"Mute This Kind\" in the context menu of a row hides all rows like it."));
    else
        m_hint->setText(
            tr("Rows of these kinds are hidden in all lists. \"#\" stands for any number in a text."));
    m_file->setText(tr("Kept in \"%1\"").arg(file));
    m_file->setToolTip(plainToolTip(file));
    m_file->setHidden(file.isEmpty());
    updateButton();
}

void MutedErrorsDialog::updateButton()
{
    m_show->setEnabled(!m_list->selectedItems().isEmpty());
}

void MutedErrorsDialog::showChosen()
{
    std::vector<sessions::Signature> kinds;
    for (const QTreeWidgetItem* item : m_list->selectedItems())
        kinds.push_back(item->data(SeverityColumn, Qt::UserRole).value<sessions::Signature>());
    if (!kinds.empty())
        m_muted.show(kinds);
}

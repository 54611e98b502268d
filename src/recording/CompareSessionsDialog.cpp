#include "CompareSessionsDialog.h"

#include "ErrorKinds.h"
#include "FileReplacement.h"
#include "HintLabel.h"
#include "RecordText.h"
#include "SessionFiles.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

using sessions::Change;

namespace {

QString fromText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString changeText(std::optional<Change> change)
{
    if (!change)
        return CompareSessionsDialog::tr("Same");
    switch (*change) {
    case Change::New:
        return CompareSessionsDialog::tr("New");
    case Change::Gone:
        return CompareSessionsDialog::tr("Gone");
    case Change::Changed:
        return CompareSessionsDialog::tr("Changed");
    }
    return {};
}

/// The text as it came the first time, and in which frames.
QString findingToolTip(const sessions::Finding& finding)
{
    QString text = record_text::multiLine(finding.example)
                       .toHtmlEscaped()
                       .replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    if (finding.firstFrame != ui::messages::noFrame)
        text += QStringLiteral("<br><br>")
            + (finding.firstFrame == finding.lastFrame
                    ? CompareSessionsDialog::tr("Frame %1").arg(finding.firstFrame)
                    : CompareSessionsDialog::tr("Frames %1 to %2")
                          .arg(finding.firstFrame)
                          .arg(finding.lastFrame));
    return QStringLiteral("<p>%1</p>").arg(text);
}

/// All but the last column, which fills the rest, and is what rows are read for.
void fitColumns(QTreeWidget& tree, int mostLetters)
{
    const int widest = tree.fontMetrics().averageCharWidth() * mostLetters;
    for (int column = 0; column < tree.columnCount() - 1; ++column) {
        tree.resizeColumnToContents(column);
        tree.setColumnWidth(column, std::min(widest, tree.columnWidth(column)));
    }
}

/// A row whose cells can be read in full in their tool tips.
QTreeWidgetItem* addRow(QTreeWidget& tree, const QStringList& cells)
{
    auto* row = new QTreeWidgetItem(&tree, cells);
    for (int i = 0; i < cells.size(); ++i)
        row->setToolTip(i, QStringLiteral("<p>%1</p>").arg(cells.at(i).toHtmlEscaped()));
    return row;
}

} // namespace

CompareSessionsDialog::CompareSessionsDialog(
    const std::vector<SessionSource>& opened, const QStringList& files, QWidget* parent)
    : QDialog(parent)
    , m_sources(opened)
    , m_comparer(nullptr)
{
    setWindowTitle(tr("Compare Sessions"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    for (const QString& file : files)
        m_sources.push_back(sessionFileSource(file));
    auto* layout = new QVBoxLayout(this);
    auto* choosers = new QFormLayout;
    choosers->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    addChooser(*choosers, tr("&Before:"), false);
    addChooser(*choosers, tr("&After:"), true);
    layout->addLayout(choosers);
    m_state = new HintLabel(this);
    m_state->setObjectName(QStringLiteral("lblComparison"));
    m_state->setTextFormat(Qt::PlainText);
    m_state->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    layout->addWidget(m_state);
    setUpPages();
    layout->addWidget(m_pages, 1);
    layout->addWidget(setUpButtons());
    connect(&m_comparer, &SessionComparer::progressed, this,
        [this](int percent) { m_state->setText(tr("Reading the sessions: %1 %").arg(percent)); });
    connect(&m_comparer, &SessionComparer::done, this, [this] {
        m_hasResult = true;
        showResult();
    });
    const QFontMetrics metrics = fontMetrics();
    resize(metrics.averageCharWidth() * 150, metrics.height() * 34);
    if (m_sources.size() >= 2) {
        // The latest pages stand last.
        m_before->setCurrentIndex(0);
        m_after->setCurrentIndex(1);
    }
    compare();
}

void CompareSessionsDialog::addChooser(QFormLayout& layout, const QString& label, bool isAfter)
{
    auto* box = new QComboBox(this);
    box->setObjectName(isAfter ? QStringLiteral("cmbAfter") : QStringLiteral("cmbBefore"));
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setPlaceholderText(tr("Choose a session"));
    for (const SessionSource& source : m_sources)
        box->addItem(source.title);
    box->setCurrentIndex(-1);
    connect(box, &QComboBox::currentIndexChanged, this, &CompareSessionsDialog::compare);
    auto* browse = new QPushButton(isAfter ? tr("F&ile...") : tr("&File..."), this);
    browse->setObjectName(isAfter ? QStringLiteral("btnFileAfter") : QStringLiteral("btnFileBefore"));
    browse->setToolTip(tr("Choose a session file"));
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, [this, isAfter] { this->browse(isAfter); });
    auto* row = new QHBoxLayout;
    row->addWidget(box, 1);
    row->addWidget(browse);
    auto* name = new QLabel(label, this);
    name->setBuddy(box);
    layout.addRow(name, row);
    (isAfter ? m_after : m_before) = box;
}

void CompareSessionsDialog::setUpPages()
{
    m_pages = new QTabWidget(this);
    m_findings = addPage(QStringLiteral("treeFindings"),
        {tr("Change"), tr("Before"), tr("After"), tr("Severity"), tr("Function"), tr("Code"), tr("Text")});
    m_contexts =
        addPage(QStringLiteral("treeContexts"), {tr("Change"), tr("What"), tr("Before"), tr("After")});
    m_extensions =
        addPage(QStringLiteral("treeExtensions"), {tr("Change"), tr("Extension"), tr("Before"), tr("After")});
    m_device = addPage(QStringLiteral("treeDevice"), {tr("Change"), tr("What"), tr("Before"), tr("After")});
    auto* copy = new QShortcut(QKeySequence::Copy, m_pages);
    copy->setContext(Qt::WidgetWithChildrenShortcut);
    connect(copy, &QShortcut::activated, this, &CompareSessionsDialog::copy);
}

QTreeWidget* CompareSessionsDialog::addPage(const QString& objectName, const QStringList& columns)
{
    auto* tree = new QTreeWidget(m_pages);
    tree->setObjectName(objectName);
    tree->setHeaderLabels(columns);
    tree->setRootIsDecorated(false);
    tree->setUniformRowHeights(true);
    tree->setAlternatingRowColors(true);
    tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pages->addTab(tree, QString());
    return tree;
}

QWidget* CompareSessionsDialog::setUpButtons()
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_showSame = new QCheckBox(tr("&Show what is the same"), this);
    m_showSame->setObjectName(QStringLiteral("chkShowSame"));
    m_showSame->setToolTip(tr("Show contexts, extensions and the device also where they do not differ"));
    connect(m_showSame, &QCheckBox::toggled, this, &CompareSessionsDialog::showResult);
    m_copy = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    m_copy->setObjectName(QStringLiteral("btnCopyComparison"));
    m_copy->setToolTip(tr("Copy the selected rows, or all differences as text where none is selected"));
    connect(m_copy, &QPushButton::clicked, this, &CompareSessionsDialog::copy);
    m_export = buttons->addButton(tr("&Export..."), QDialogButtonBox::ActionRole);
    m_export->setObjectName(QStringLiteral("btnExportComparison"));
    m_export->setToolTip(tr("Save all differences as text"));
    connect(m_export, &QPushButton::clicked, this, &CompareSessionsDialog::exportText);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (QAbstractButton* button : buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(false);
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(m_showSame);
    layout->addWidget(buttons, 1);
    return row;
}

void CompareSessionsDialog::browse(bool isAfter)
{
    auto* dialog = new QFileDialog(this, tr("Choose a session"), session_files::usualFolder({}));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(session_files::nameFilters());
    connect(dialog, &QFileDialog::fileSelected, this,
        [this, isAfter](const QString& path) { chooseFile(isAfter, path); });
    dialog->open();
}

void CompareSessionsDialog::chooseFile(bool isAfter, const QString& path)
{
    m_sources.push_back(sessionFileSource(path));
    for (QComboBox* box : {m_before, m_after})
        box->addItem(m_sources.back().title);
    QComboBox& box = *(isAfter ? m_after : m_before);
    box.setCurrentIndex(box.count() - 1);
}

void CompareSessionsDialog::compare()
{
    m_hasResult = false;
    showResult();
    const int before = m_before->currentIndex();
    const int after = m_after->currentIndex();
    if (before < 0 || after < 0) {
        m_state->setText(tr("Choose two sessions: open ones, or files."));
        return;
    }
    QString reason;
    if (!m_comparer.start(m_sources.at(static_cast<std::size_t>(before)),
            m_sources.at(static_cast<std::size_t>(after)), reason))
        m_state->setText(reason);
}

void CompareSessionsDialog::showResult()
{
    for (QTreeWidget* tree : {m_findings, m_contexts, m_extensions, m_device})
        tree->clear();
    if (m_export) {
        m_export->setEnabled(m_hasResult);
        m_copy->setEnabled(m_hasResult);
    }
    const sessions::SessionComparison nothing;
    const sessions::SessionComparison& result = m_hasResult ? m_comparer.result() : nothing;
    showFindings();
    showFacts(*m_contexts, result.contexts(), tr("Con&texts"));
    showFacts(*m_extensions, result.extensions(), tr("E&xtensions"));
    std::vector<sessions::FactPair> device = result.values();
    device.insert(device.begin(), result.device());
    showFacts(*m_device, device, tr("&Device"));
    if (m_hasResult)
        m_state->setText(summary());
}

void CompareSessionsDialog::showFindings()
{
    if (m_hasResult) {
        for (const sessions::FindingChange& change : m_comparer.result().findings()) {
            const sessions::Signature& signature = change.finding.signature;
            QTreeWidgetItem* row = addRow(*m_findings,
                {changeText(change.change), QString::number(change.before), QString::number(change.after),
                    severityText(signature.severity), fromText(signature.function), fromText(signature.code),
                    fromText(signature.text).simplified()});
            row->setToolTip(row->columnCount() - 1, findingToolTip(change.finding));
        }
    }
    fitColumns(*m_findings, 26);
    m_pages->setTabText(0, tr("Fi&ndings (%1)").arg(m_findings->topLevelItemCount()));
}

void CompareSessionsDialog::showFacts(
    QTreeWidget& tree, const std::vector<sessions::FactPair>& facts, const QString& title)
{
    int changes = 0;
    for (const sessions::FactPair& fact : facts) {
        changes += fact.change ? 1 : 0;
        if (fact.change || m_showSame->isChecked())
            addRow(tree,
                {changeText(fact.change), fromText(fact.what), fromText(fact.before), fromText(fact.after)});
    }
    fitColumns(tree, 44);
    m_pages->setTabText(m_pages->indexOf(&tree), QStringLiteral("%1 (%2)").arg(title).arg(changes));
}

QString CompareSessionsDialog::summary() const
{
    const sessions::SessionComparison& result = m_comparer.result();
    QString text = result.isEqual()
        ? tr("Nothing differs.")
        : tr("Findings: %1 new, %2 gone, %3 came another number of times, %4 the same.")
              .arg(result.count(Change::New))
              .arg(result.count(Change::Gone))
              .arg(result.count(Change::Changed))
              .arg(result.sameFindings());
    const QString damage = m_comparer.damage();
    return damage.isEmpty() ? text : text + QLatin1Char(' ') + damage;
}

std::string CompareSessionsDialog::text() const
{
    return m_comparer.result().toText(
        m_before->currentText().toStdString(), m_after->currentText().toStdString());
}

void CompareSessionsDialog::copy()
{
    if (!m_hasResult)
        return;
    const auto* tree = static_cast<const QTreeWidget*>(m_pages->currentWidget());
    QStringList lines;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* row = tree->topLevelItem(i);
        if (!row->isSelected())
            continue;
        QStringList cells;
        for (int column = 0; column < tree->columnCount(); ++column)
            cells.append(row->text(column));
        lines.append(cells.join(QLatin1Char('\t')));
    }
    QGuiApplication::clipboard()->setText(
        lines.isEmpty() ? QString::fromStdString(text()) : lines.join(QLatin1Char('\n')));
}

void CompareSessionsDialog::exportText()
{
    auto* dialog = new QFileDialog(this, tr("Export the comparison"), session_files::usualFolder({}));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(tr("Plain text (*.txt)"));
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    dialog->selectFile(QStringLiteral("comparison.txt"));
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        const platform::FileResult result =
            platform::replaceFile(QFile::encodeName(path).toStdString(), text());
        m_state->setText(result
                ? tr("The comparison was saved to \"%1\".").arg(QDir::toNativeSeparators(path))
                : tr("The comparison was not saved: %1").arg(QString::fromStdString(result.reason)));
    });
    dialog->open();
}

#include "ErrorFilterBar.h"

#include "ErrorFilterCompleter.h"
#include "KeptFilters.h"
#include "PlainToolTip.h"
#include "Theme.h"

#include <QApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTextCharFormat>

namespace {

/// A text as an entry of a menu shows it.
QString entryText(const QFontMetrics& metrics, const QString& text)
{
    constexpr int shownLetters = 50;
    return metrics.elidedText(text, Qt::ElideRight, shownLetters * metrics.averageCharWidth())
        .replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace

ErrorFilterBar::ErrorFilterBar(QWidget* parent)
    : QWidget(parent)
    , m_edit(new QLineEdit(this))
    , m_keptButton(new QPushButton(this))
    , m_menu(new QMenu(m_keptButton))
    // A label that asks for a height for its width makes layouts slow, but it is there with a fault only.
    , m_fault(new QLabel(this))
    , m_completer(new ErrorFilterCompleter(m_edit))
{
    setUpEdit();
    setUpMenu();
    m_fault->setObjectName(QStringLiteral("lblErrorFilterFault"));
    m_fault->setTextFormat(Qt::PlainText);
    m_fault->setWordWrap(true);
    m_fault->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_fault->hide();
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_edit, 0, 0);
    layout->addWidget(m_keptButton, 0, 1);
    layout->addWidget(m_fault, 1, 0, 1, 2);
}

void ErrorFilterBar::setUpEdit()
{
    setFocusProxy(m_edit);
    m_edit->setObjectName(QStringLiteral("editErrorFilter"));
    m_edit->setAccessibleName(tr("Filter of the error list"));
    m_edit->setPlaceholderText(tr("Filter, such as  texture -slow fn:glTex* frame:10..90"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setMaxLength(ErrorFilterParser::longestText);
    m_edit->setToolTip(
        tr("<p>Shows the rows in which all of these are:</p><table cellspacing='2'>"
           "<tr><td><b>texture</b></td><td>this word, in a function, code or description</td></tr>"
           "<tr><td><b>\"too large\"</b></td><td>this phrase</td></tr>"
           "<tr><td><b>-slow</b></td><td>not this</td></tr>"
           "<tr><td><b>fn:glTex*</b></td><td>a function, with * and ?</td></tr>"
           "<tr><td><b>code:GL_INVALID_*</b></td><td>a code, with * and ?</td></tr>"
           "<tr><td><b>frame:10..90</b></td><td>frames; also frame:10, frame:10.., frame:none</td></tr>"
           "<tr><td><b>sev:error</b></td><td>errors alone, or sev:warning</td></tr>"
           "<tr><td><b>/level \\d+/</b></td><td>a regular expression; /.../i for either case</td></tr>"
           "<tr><td><b>a b | c</b></td><td>a and b, or c</td></tr></table>"
           "<p>Ctrl+Space completes, Esc clears.</p>"));
    m_edit->installEventFilter(this);
    connect(m_edit, &QLineEdit::textChanged, this, &ErrorFilterBar::read);
}

void ErrorFilterBar::setUpMenu()
{
    m_keptButton->setObjectName(QStringLiteral("btnErrorFilters"));
    m_keptButton->setText(tr("Filters"));
    m_keptButton->setToolTip(tr("Keep the filter with a name, and use those that are kept"));
    m_keptButton->setMenu(m_menu);
    m_menu->setToolTipsVisible(true);
    connect(m_menu, &QMenu::aboutToShow, this, &ErrorFilterBar::fillMenu);
    m_keptButton->hide();
}

void ErrorFilterBar::setErrors(const ErrorListModel* errors)
{
    m_completer->setErrors(errors);
}

void ErrorFilterBar::setKeptFilters(KeptFilters* filters)
{
    m_kept = filters;
    m_keptButton->setVisible(filters != nullptr);
}

QString ErrorFilterBar::text() const
{
    return m_edit->text();
}

void ErrorFilterBar::read(const QString& text)
{
    ErrorFilterParser parser(text);
    const std::optional<ErrorFilter> filter = parser.parse();
    if (!filter) {
        showFault(parser.fault());
        return;
    }
    clearFault();
    // Spaces at the end change nothing.
    if (text.trimmed() == m_readText)
        return;
    m_readText = text.trimmed();
    Q_EMIT filterChanged(*filter);
}

void ErrorFilterBar::showFault(const ErrorFilterFault& fault)
{
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, theme::faultColor(colours));
    m_fault->setPalette(colours);
    m_fault->setText(tr("Character %1: %2").arg(fault.position + 1).arg(fault.message));
    m_fault->show();
    underline(fault.position, fault.length);
}

void ErrorFilterBar::clearFault()
{
    if (m_fault->isHidden())
        return;
    m_fault->hide();
    m_fault->clear();
    underline(0, 0);
}

/// A line edit takes the format of a part of its text from an input method alone.
void ErrorFilterBar::underline(qsizetype position, qsizetype length)
{
    QList<QInputMethodEvent::Attribute> attributes;
    if (length > 0) {
        QTextCharFormat format;
        format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        format.setUnderlineColor(theme::faultColor(palette()));
        format.setForeground(theme::faultColor(palette()));
        attributes.append({QInputMethodEvent::TextFormat,
            static_cast<int>(position) - m_edit->cursorPosition(), static_cast<int>(length), format});
    }
    QInputMethodEvent event(QString(), attributes);
    QCoreApplication::sendEvent(m_edit, &event);
}

bool ErrorFilterBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_edit && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<const QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape && key->modifiers() == Qt::NoModifier && !m_edit->text().isEmpty()) {
            m_edit->clear();
            return true;
        }
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::ControlModifier) {
            m_completer->offer();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ErrorFilterBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // In the fault color of the new palette.
    if (event->type() == QEvent::PaletteChange && !m_fault->isHidden())
        read(m_edit->text());
}

void ErrorFilterBar::fillMenu()
{
    m_menu->clear();
    for (const KeptFilters::Filter& filter : m_kept->filters()) {
        QAction* use = m_menu->addAction(entryText(fontMetrics(), filter.name));
        use->setToolTip(plainToolTip(filter.text));
        connect(use, &QAction::triggered, this, [this, text = filter.text] {
            m_edit->setText(text);
            m_edit->setFocus();
        });
    }
    m_menu->addSeparator();
    QAction* keep = m_menu->addAction(tr("&Keep This Filter..."), this, &ErrorFilterBar::keepFilter);
    keep->setEnabled(!m_readText.isEmpty() && m_fault->isHidden());
    QMenu* forget = m_menu->addMenu(tr("&Forget"));
    forget->setEnabled(!m_kept->filters().empty());
    for (const KeptFilters::Filter& filter : m_kept->filters())
        forget->addAction(entryText(fontMetrics(), filter.name), this,
            [this, name = filter.name] { m_kept->forget(name); });
}

void ErrorFilterBar::keepFilter()
{
    auto* dialog = new QInputDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Keep Filter"));
    dialog->setLabelText(tr("Name of the filter; one of the same name is replaced:"));
    dialog->setTextValue(m_readText);
    connect(
        dialog, &QInputDialog::textValueSelected, this, [this, text = m_edit->text()](const QString& name) {
            if (!name.trimmed().isEmpty())
                m_kept->keep({name.trimmed(), text});
        });
    dialog->open();
}

#include "ClientInterface.h"

#include "CellContentsDialog.h"
#include "Client.h"
#include "ContextInterface.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "GlEnumerants.h"
#include "RecordText.h"
#include "ui_ClientInterface.h"

#include <QPushButton>
#include <QScrollBar>
#include <QTextDocument>

#include <cstdlib>
#include <utility>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

QString enumerantName(const Message& message, std::size_t at)
{
    return QString::fromLatin1(gl::enumerantName(message.i32(at)));
}

QString idText(const Message& message, std::size_t at)
{
    return QStringLiteral(" (ID: ") + QString::number(message.u32(at)) + QLatin1Char(')');
}

} // namespace

ClientInterface::ClientInterface(Client* client, int index, const QFont& font, QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ClientInterface>())
    , m_client(client)
    , m_index(index)
    , m_document(new QTextDocument(this))
    , m_console(m_document)
    , m_errorListModel(new ErrorListModel(QIcon(QStringLiteral(":/CorvaleResources/Info")),
          QIcon(QStringLiteral(":/CorvaleResources/Warning")),
          QIcon(QStringLiteral(":/CorvaleResources/Error")), this))
    , m_errorListFilter(new ErrorListFilterProxyModel(this))
{
    m_ui->setupUi(this);
    setUpConsole(font);
    setUpErrorList();
    setUpContexts();
    makeConnections();
}

ClientInterface::~ClientInterface() = default;

void ClientInterface::setUpConsole(const QFont& font)
{
    m_document->setUndoRedoEnabled(false);
    m_ui->txtConsole->setDocument(m_document);
    fontChanged(font);
}

void ClientInterface::setUpErrorList()
{
    m_errorListFilter->setSourceModel(m_errorListModel);
    m_ui->tblErrorList->setModel(m_errorListFilter);
}

void ClientInterface::setUpContexts()
{
    // A tab widget without pages shows nothing at all, so words stand in for it.
    m_ui->lblNoContexts->setText(m_client
            ? tr("No rendering context yet. Each context that the application creates gets a page here.")
            : tr("No application is connected. Start a program that loads the Corvale libraries, and it "
                 "appears "
                 "here by itself."));
    // It is to be read on the disabled page too.
    QPalette palette = m_ui->lblNoContexts->palette();
    palette.setColor(
        QPalette::Disabled, QPalette::WindowText, palette.color(QPalette::Active, QPalette::WindowText));
    m_ui->lblNoContexts->setPalette(palette);
    m_ui->tabWidget_contexts->hide();
}

void ClientInterface::makeConnections()
{
    connect(m_ui->btnClear, &QPushButton::clicked, m_document, &QTextDocument::clear);
    connect(m_ui->chkWireframe, SIGNAL(stateChanged(int)), SLOT(wireframeStateChanged(int)));
    connect(
        m_ui->txtConsole->verticalScrollBar(), SIGNAL(sliderMoved(int)), SLOT(uncheckConsoleAutoScroll()));
    connect(m_ui->tblErrorList->verticalScrollBar(), SIGNAL(sliderMoved(int)),
        SLOT(uncheckErrorListAutoScroll()));
    connect(m_ui->tblErrorList, SIGNAL(contextMenuOpened()), SLOT(uncheckErrorListAutoScroll()));
    connect(m_ui->tblErrorList, SIGNAL(itemContentsRequested(int, int, QPoint)),
        SLOT(showErrorListItemContents(int, int, QPoint)));
    connect(m_ui->chkWarnings, SIGNAL(stateChanged(int)), SLOT(errorListWarningsStateChanged(int)));
    connect(m_ui->chkErrors, SIGNAL(stateChanged(int)), SLOT(errorListErrorsStateChanged(int)));
}

void ClientInterface::setLive()
{
    m_state = State::Live;
}

QString ClientInterface::title() const
{
    QString title;
    if (!m_name.isEmpty())
        title = QLatin1Char('"') + m_name + QStringLiteral("\" ");
    return title + QStringLiteral("PID: ") + QString::number(m_pid);
}

void ClientInterface::receive(const Message& message)
{
    {
        const ConsoleWriter::Edit edit(m_console);
        showRecord(message);
    }
    scrollConsole();
}

void ClientInterface::showRecord(const Message& message)
{
    switch (message.type()) {
    case Type::IdentifiedMessage:
        receiveIdentified(message);
        break;
    case Type::LineBreak:
        writeLineBreak();
        break;
    case Type::DebugMessage:
        receiveDebug(message);
        break;
    case Type::Information:
        writePlainText(recordText::multiLine(message.text(offset::text)));
        break;
    case Type::Warning:
        receiveWarning(message);
        break;
    case Type::Error:
        receiveError(message);
        break;
    case Type::GlError:
        receiveGlError(message);
        break;
    case Type::ContextInformation:
        receiveContext(message);
        break;
    default:
        break;
    }
}

void ClientInterface::receiveIdentified(const Message& message)
{
    writeHeading(
        recordText::singleLine(message.text(offset::identifiedText)) + idText(message, offset::identifiedId),
        identifiedStyle());
}

void ClientInterface::receiveDebug(const Message& message)
{
    const QString heading = enumerantName(message, offset::debugType) + idText(message, offset::debugId)
        + QStringLiteral("\nSeverity: ") + enumerantName(message, offset::debugSeverity);
    writeFramed(heading, recordText::multiLine(message.text(offset::debugText)), debugStyle());
}

void ClientInterface::receiveWarning(const Message& message)
{
    const QString text = recordText::multiLine(message.text(offset::text));
    writeFramed(QStringLiteral("Warning"), text, warningStyle());
    addErrorListRow(errorList::SeverityWarning, message, QString(), text, QString());
}

void ClientInterface::receiveError(const Message& message)
{
    const QString text = recordText::multiLine(message.text(offset::text));
    writeFramed(QStringLiteral("Error"), text, errorStyle());
    addErrorListRow(errorList::SeverityError, message, QString(), text, QString());
}

void ClientInterface::receiveGlError(const Message& message)
{
    const QString name = QString::fromLatin1(gl::errorName(message.u32(offset::glErrorCode)));
    const QString function =
        recordText::singleLine(message.text(offset::glErrorFunction, offset::glErrorDescription));
    const QString description = recordText::multiLine(message.text(offset::glErrorDescription));
    writeFramed(
        QStringLiteral("Error - ") + name + QStringLiteral(" in ") + function, description, errorStyle());
    addErrorListRow(errorList::SeverityError, message, name, description, function);
}

void ClientInterface::receiveContext(const Message& message)
{
    auto* page = new ContextInterface(message, m_ui->tabWidget_contexts);
    m_ui->tabWidget_contexts->addTab(
        page, QStringLiteral("Context ") + QString::number(message.i32(offset::contextNumber)));
    m_ui->lblNoContexts->hide();
    m_ui->tabWidget_contexts->show();
}

ClientInterface::HeadingStyle ClientInterface::headingStyle(const QColor& headingText,
    const QColor& headingBackground, const QColor& bodyBackground, QTextFrameFormat::BorderStyle border) const
{
    QPalette palette = m_ui->txtConsole->palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::Text));
    palette.setColor(QPalette::Window, bodyBackground);
    palette.setColor(QPalette::Text, headingText);
    palette.setColor(QPalette::Base, headingBackground);
    return {palette, border};
}

ClientInterface::HeadingStyle ClientInterface::errorStyle() const
{
    const QColor base = m_ui->txtConsole->palette().color(QPalette::Base);
    return headingStyle(QColor(255, 255, 255), QColor(255, 0, 0), base, QTextFrameFormat::BorderStyle_Solid);
}

ClientInterface::HeadingStyle ClientInterface::warningStyle() const
{
    const QColor base = m_ui->txtConsole->palette().color(QPalette::Base);
    return headingStyle(QColor(0, 0, 0), QColor(255, 255, 0), base, QTextFrameFormat::BorderStyle_Solid);
}

ClientInterface::HeadingStyle ClientInterface::debugStyle() const
{
    const QPalette palette = m_ui->txtConsole->palette();
    const QColor base = palette.color(QPalette::Base);
    return headingStyle(base, palette.color(QPalette::Text), base, QTextFrameFormat::BorderStyle_Solid);
}

ClientInterface::HeadingStyle ClientInterface::identifiedStyle() const
{
    const QPalette palette = m_ui->txtConsole->palette();
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const QColor difference(std::abs(base.red() - text.red()), std::abs(base.green() - text.green()),
        std::abs(base.blue() - text.blue()));
    return headingStyle(base, text, difference, QTextFrameFormat::BorderStyle_Dotted);
}

void ClientInterface::writeHeading(const QString& text, const HeadingStyle& style)
{
    m_console.heading(text, style.palette, style.border);
    m_scrollPending = true;
}

void ClientInterface::writeFramed(const QString& heading, const QString& body, const HeadingStyle& style)
{
    m_console.heading(heading, style.palette, style.border);
    m_console.body(body);
    writeLineBreak();
}

void ClientInterface::writePlainText(const QString& text)
{
    m_console.plainText(text);
    m_scrollPending = true;
}

void ClientInterface::writeLineBreak()
{
    m_console.lineBreak();
    m_scrollPending = true;
}

void ClientInterface::scrollConsole()
{
    // Only a finished edit has been laid out and can be scrolled to.
    if (!std::exchange(m_scrollPending, false) || !m_ui->chkConsoleAutoScroll->isChecked())
        return;
    m_ui->txtConsole->setTextCursor(m_console.cursor());
    m_ui->txtConsole->ensureCursorVisible();
}

void ClientInterface::addErrorListRow(qint32 severity, const Message& message, const QString& code,
    const QString& description, const QString& function)
{
    m_errorListModel->append(severity, message.i32(offset::frame), code, description, function);
    if (m_ui->chkErrorListAutoScroll->isChecked())
        m_ui->tblErrorList->scrollToBottom();
}

void ClientInterface::fontChanged(const QFont& font)
{
    m_ui->txtConsole->setFont(font);
    m_document->setDefaultFont(font);
}

void ClientInterface::finish(const QString& text)
{
    m_console.closingLine(text);
    m_scrollPending = true;
    scrollConsole();
    m_state = State::Finished;
    m_ui->grpRendering->setEnabled(false);
    m_ui->grpRendering->setToolTip(tr("The application is no longer connected"));
}

void ClientInterface::wireframeStateChanged(int state)
{
    if (!m_client)
        return;
    if (state == Qt::Unchecked)
        m_client->wireframeOff();
    else if (state == Qt::Checked)
        m_client->wireframeOn();
}

void ClientInterface::uncheckConsoleAutoScroll()
{
    m_ui->chkConsoleAutoScroll->setChecked(false);
}

void ClientInterface::uncheckErrorListAutoScroll()
{
    m_ui->chkErrorListAutoScroll->setChecked(false);
}

void ClientInterface::errorListWarningsStateChanged(int state)
{
    m_errorListFilter->setShowWarnings(state == Qt::Checked);
}

void ClientInterface::errorListErrorsStateChanged(int state)
{
    m_errorListFilter->setShowErrors(state == Qt::Checked);
}

void ClientInterface::showErrorListItemContents(int row, int column, QPoint position)
{
    const QString text = m_errorListFilter->index(row, column).data(Qt::DisplayRole).toString();
    // The dialog owns itself: rows go on arriving while it is open, and the tab may be closed below it.
    auto* dialog = new CellContentsDialog(text, this);
    dialog->showAt(position);
}

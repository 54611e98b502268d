#include "FeedbackDialog.h"

#include "FeedbackTexts.h"
#include "PlainToolTip.h"
#include "Preferences.h"
#include "ui_FeedbackDialog.h"

#include <QDesktopServices>
#include <QIcon>
#include <QPushButton>
#include <QToolTip>
#include <QUrl>

using feedback_texts::Text;

namespace {

constexpr int imageSize = 96;
const auto buildTag = QStringLiteral("(SDK build 25.2@f388ec4a5182)");
const auto forum = QStringLiteral("forum.tessaric.example/corvale");
const auto support = QStringLiteral("corvale-support@tessaric.example");

QString dialogText(Text index)
{
    return feedback_texts::text(feedback_texts::BritishEnglish, index);
}

constexpr bool hasCommandKey()
{
#ifdef Q_OS_MACOS
    return true;
#else
    return false;
#endif
}

} // namespace

FeedbackDialog::FeedbackDialog(
    QWidget* parent, const QString& firstText, const QString& secondText, Preferences& preferences)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::FeedbackClass>())
    , m_preferences(preferences)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setUpTexts();
    setUpLink(*m_ui->ForumURL, tr("Forum"), QStringLiteral("https://") + forum, forum);
    setUpLink(*m_ui->SupportURL, tr("Support e-mail"), QStringLiteral("mailto:") + support, support);

    m_ui->RequiredText->clear();
    m_ui->RequiredText->appendPlainText(firstText + QLatin1Char(' ') + buildTag);
    m_ui->RequiredText->appendPlainText(secondText);
    m_ui->RequiredText->moveCursor(QTextCursor::Start);

    m_ui->usageStats_checkBox->setChecked(m_preferences.get(settings::collectUsage));

    connect(m_ui->SelectAndCopyLabel, &ClickableLabel::clicked, this, &FeedbackDialog::copyRequiredText);
    connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

FeedbackDialog::~FeedbackDialog()
{
    m_preferences.setUnsaved(settings::collectUsage, m_ui->usageStats_checkBox->isChecked());
}

void FeedbackDialog::setTextFont(const QFont& font)
{
    m_ui->RequiredText->setFont(font);
}

void FeedbackDialog::setUpTexts()
{
    setWindowTitle(dialogText(feedback_texts::Title));
    m_ui->imageLabel->setPixmap(QIcon(QStringLiteral(":/CommonGUIElements/Feedback.svg"))
                                    .pixmap(QSize(imageSize, imageSize), devicePixelRatioF()));
    m_ui->ForumLabel->setText(dialogText(feedback_texts::PostInForum));
    m_ui->SupportEmailLabel->setText(dialogText(feedback_texts::SendToSupport));
    m_ui->RequiredTextLabel->setText(dialogText(feedback_texts::IncludeText));
    m_ui->SelectAndCopyLabel->setText(
        dialogText(hasCommandKey() ? feedback_texts::CopyWithCmd : feedback_texts::CopyWithCtrl));
    QPushButton* close = m_ui->buttonBox->button(QDialogButtonBox::Close);
    close->setText(dialogText(feedback_texts::Ok));
    close->setIcon(QIcon());
    close->setDefault(true);
    close->setFocus();
}

void FeedbackDialog::setUpLink(
    QLabel& label, const QString& name, const QString& target, const QString& shown)
{
    label.setAccessibleName(name);
    label.setToolTip(target);
    label.setText(QStringLiteral("<a href=\"%1\">%2</a>").arg(target.toHtmlEscaped(), shown.toHtmlEscaped()));
    connect(
        &label, &QLabel::linkActivated, this, [this, &label](const QString& link) { openLink(label, link); });
}

void FeedbackDialog::openLink(QLabel& label, const QString& target)
{
    if (QDesktopServices::openUrl(QUrl(target)))
        return;
    QToolTip::showText(label.mapToGlobal(label.rect().bottomLeft()),
        plainToolTip(tr("No program here opens %1.\nSelect the address and copy it instead.").arg(target)),
        &label);
}

void FeedbackDialog::copyRequiredText()
{
    m_ui->RequiredText->selectAll();
    m_ui->RequiredText->copy();
    const QLabel& label = *m_ui->SelectAndCopyLabel;
    QToolTip::showText(label.mapToGlobal(label.rect().bottomLeft()), tr("The text has been copied."));
}

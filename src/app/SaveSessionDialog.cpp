#include "SaveSessionDialog.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

SaveSessionDialog::SaveSessionDialog(const QString& client, std::size_t count, QWidget* parent)
    : QDialog(parent)
    , m_all(new QRadioButton(tr("&All %1 applications with a tab").arg(count)))
{
    setWindowTitle(tr("Save Session"));
    // An ampersand in a button's text would mark a key.
    auto* one = new QRadioButton(
        tr("&This application: %1").arg(QString(client).replace(QLatin1Char('&'), QLatin1String("&&"))));
    one->setObjectName(QStringLiteral("radThisClient"));
    m_all->setObjectName(QStringLiteral("radAllClients"));
    one->setEnabled(!client.isEmpty());
    (client.isEmpty() ? m_all : one)->setChecked(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Save)->setText(tr("&Save..."));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(one);
    layout->addWidget(m_all);
    layout->addStretch();
    layout->addWidget(buttons);
}

bool SaveSessionDialog::isForAll() const
{
    return m_all->isChecked();
}

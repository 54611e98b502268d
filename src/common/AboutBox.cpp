#include "AboutBox.h"

#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

AboutBox::AboutBox(const QString& splashImage, const QString& productText, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About Corvale"));
    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    auto* splash = new QLabel(this);
    splash->setObjectName(QStringLiteral("lblSplash"));
    splash->setAccessibleName(tr("Corvale"));
    splash->setPixmap(QIcon(splashImage).pixmap(QSize(480, 240), devicePixelRatioF()));
    splash->setAlignment(Qt::AlignCenter);
    layout->addWidget(splash);

    auto* product = new QLabel(productText, this);
    product->setObjectName(QStringLiteral("lblProduct"));
    QFont font = product->font();
    font.setBold(true);
    product->setFont(font);
    layout->addWidget(product);

    auto* versions = new QLabel(tr("Desktop companion of the Corvale OpenGL ES and EGL emulation.\nQt %1")
                                    .arg(QString::fromLatin1(qVersion())),
        this);
    versions->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout->addWidget(versions);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

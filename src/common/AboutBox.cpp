#include "AboutBox.h"

#include "Preferences.h"
#include "SystemFacts.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

namespace {

const QSize splashSize(480, 240);

QLabel* makeSplash(const QString& image, QWidget* parent)
{
    auto* splash = new QLabel(parent);
    splash->setObjectName(QStringLiteral("lblSplash"));
    splash->setAccessibleName(AboutBox::tr("Corvale"));
    splash->setPixmap(QIcon(image).pixmap(splashSize, parent->devicePixelRatioF()));
    splash->setAlignment(Qt::AlignCenter);
    return splash;
}

QLabel* makeProduct(const QString& text, QWidget* parent)
{
    auto* product = new QLabel(text, parent);
    product->setObjectName(QStringLiteral("lblProduct"));
    QFont font = product->font();
    font.setBold(true);
    product->setFont(font);
    return product;
}

QLabel* makeVersions(QWidget* parent)
{
    auto* versions =
        new QLabel(AboutBox::tr("Desktop companion of the Corvale OpenGL ES and EGL emulation.\n%1")
                       .arg(libraryVersions()),
            parent);
    versions->setObjectName(QStringLiteral("lblVersions"));
    versions->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return versions;
}

} // namespace

AboutBox::AboutBox(
    const QString& splashImage, const QString& productText, Preferences& preferences, QWidget* parent)
    : QDialog(parent)
    , m_preferences(preferences)
    , m_atStart(new QCheckBox(tr("&Show this when the program starts"), this))
{
    setWindowTitle(tr("About Corvale"));
    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(makeSplash(splashImage, this));
    layout->addWidget(makeProduct(productText, this));
    layout->addWidget(makeVersions(this));

    auto* lastRow = new QHBoxLayout;
    m_atStart->setObjectName(QStringLiteral("chkShowAtStart"));
    lastRow->addWidget(m_atStart, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setFocus();
    lastRow->addWidget(buttons);
    layout->addLayout(lastRow);

    connect(m_atStart, &QCheckBox::clicked, this,
        [this](bool show) { m_preferences.set(settings::showSplash, show); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void AboutBox::showAtStart()
{
    readChoice();
    if (!m_atStart->isChecked() || isVisible())
        return;
    m_starting = true;
    setAttribute(Qt::WA_ShowWithoutActivating);
    qApp->installEventFilter(this);
    // Before it is on the screen, the window does not know where it is, and nothing can be centred on it.
    const QWindow* behind = windowBehind();
    if (!behind || behind->isExposed())
        showBesideText();
}

/// Shows the box below the text that is to be seen, else above it; by itself it would be in the middle.
void AboutBox::showBesideText()
{
    if (m_textInSight && m_textInSight->isVisible() && !isVisible()) {
        constexpr int distance = 12;
        const QRect room = m_textInSight->contentsRect();
        QRect text = m_textInSight->fontMetrics().boundingRect(
            room, Qt::AlignCenter | Qt::TextWordWrap, m_textInSight->text());
        text.moveTo(m_textInSight->mapToGlobal(text.topLeft()));
        const QRect screen = m_textInSight->screen()->availableGeometry();
        QRect place(QPoint(), sizeHint());
        place.moveCenter(text.center());
        place.moveTop(text.bottom() + distance);
        if (place.bottom() > screen.bottom())
            place.moveBottom(text.top() - distance);
        if (screen.contains(place))
            move(place.topLeft());
    }
    show();
}

void AboutBox::showForced()
{
    endStart();
    readChoice();
    open();
}

void AboutBox::endStart()
{
    if (!m_starting)
        return;
    forgetStart();
    hide();
}

void AboutBox::forgetStart()
{
    m_starting = false;
    qApp->removeEventFilter(this);
    setAttribute(Qt::WA_ShowWithoutActivating, false);
}

const QWindow* AboutBox::windowBehind() const
{
    return parentWidget() ? parentWidget()->window()->windowHandle() : nullptr;
}

bool AboutBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Expose && watched == windowBehind() && windowBehind()->isExposed())
        showBesideText();
    // A shortcut takes its key away before it counts as pressed.
    const bool pressed = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride
        || event->type() == QEvent::MouseButtonPress;
    const auto* widget = pressed ? qobject_cast<QWidget*>(watched) : nullptr;
    if (widget && widget->window() != this)
        endStart();
    return QDialog::eventFilter(watched, event);
}

void AboutBox::keyPressEvent(QKeyEvent* event)
{
    // Keys without a text move the focus, hold a modifier or work on the volume.
    const bool shortcut =
        (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    if (!shortcut && !event->text().isEmpty())
        close();
    else
        QDialog::keyPressEvent(event);
}

void AboutBox::mouseReleaseEvent(QMouseEvent* event)
{
    Q_UNUSED(event)
    close();
}

void AboutBox::hideEvent(QHideEvent* event)
{
    // Also when it is only iconified: it has been seen.
    forgetStart();
    QDialog::hideEvent(event);
}

void AboutBox::readChoice()
{
    m_atStart->setChecked(m_preferences.get(settings::showSplash));
}

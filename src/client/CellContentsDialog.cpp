#include "CellContentsDialog.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

CellContentsDialog::CellContentsDialog(const QString& text, QWidget* parent)
    : QDialog(parent, Qt::Popup)
    , m_text(text)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(true);
    auto* contents = new QPlainTextEdit(text, this);
    contents->setObjectName(QStringLiteral("txtContents"));
    contents->setAccessibleName(tr("Contents of the cell"));
    contents->setReadOnly(true);
    contents->setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(contents);
    setFocusProxy(contents);
}

QSize CellContentsDialog::sizeFor(const QString& text, const QSize& available) const
{
    constexpr int padding = 32;
    const QFontMetrics metrics(font());
    const int widest = std::clamp(available.width() / 2, 200, 700);
    const QRect bounds = metrics.boundingRect(
        QRect(0, 0, widest - padding, 100000), Qt::TextWrapAnywhere | Qt::TextExpandTabs, text.left(4000));
    return {std::clamp(bounds.width() + padding, 160, widest),
        std::clamp(
            bounds.height() + padding, metrics.height() + padding, std::max(120, available.height() / 2))};
}

void CellContentsDialog::showAt(const QPoint& position)
{
    const QScreen* screen = QGuiApplication::screenAt(position);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    constexpr int distance = 4;
    const QRect available = screen->availableGeometry().adjusted(distance, distance, -distance, -distance);
    resize(sizeFor(m_text, available.size()));
    move(std::clamp(position.x(), available.left(), std::max(available.left(), available.right() - width())),
        std::clamp(position.y(), available.top(), std::max(available.top(), available.bottom() - height())));
    show();
    setFocus();
}

#include "FileListWidget.h"

#include "PlainToolTip.h"

#include <QKeyEvent>
#include <QPainter>

FileListWidget::FileListWidget(QWidget* parent)
    : QListWidget(parent)
{
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setTextElideMode(Qt::ElideMiddle);
    setToolTip(tr("The files to import, in this order; Delete takes the selected ones out of the list"));
}

void FileListWidget::addFiles(const QStringList& files)
{
    for (const QString& file : files) {
        auto* item = new QListWidgetItem(file, this);
        item->setToolTip(plainToolTip(file));
    }
    Q_EMIT itemsChanged();
}

void FileListWidget::clearFiles()
{
    clear();
    Q_EMIT itemsChanged();
}

QStringList FileListWidget::files() const
{
    QStringList files;
    for (int row = 0; row < count(); ++row)
        files.append(item(row)->text());
    return files;
}

void FileListWidget::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    const QList<QListWidgetItem*> selected = selectedItems();
    if (event->key() != Qt::Key_Delete || selected.isEmpty())
        return;
    qDeleteAll(selected);
    Q_EMIT itemsChanged();
}

void FileListWidget::paintEvent(QPaintEvent* event)
{
    QListWidget::paintEvent(event);
    if (count() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
        tr("Add the files of one profile with \"Browse...\". Several are merged into one."));
}

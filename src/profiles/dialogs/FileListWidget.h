#pragma once

#include <QListWidget>

/// A list of files that is only worked on with the mouse and the Delete key, which takes the selected files
/// out. Every other key is swallowed; Tab leaves the list, since it never gets here.
class FileListWidget : public QListWidget {
    Q_OBJECT

public:
    explicit FileListWidget(QWidget* parent = nullptr);

    void addFiles(const QStringList& files);
    void clearFiles();
    /// In the order of the list.
    QStringList files() const;

Q_SIGNALS:
    void itemsChanged();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    /// An empty list says how files get in.
    void paintEvent(QPaintEvent* event) override;
};

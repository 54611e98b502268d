#pragma once

#include "Message.h"

#include <QWidget>

#include <memory>

class QAbstractItemView;

namespace Ui {
class ContextInterface;
}

/// The page of one rendering context: the emulated OpenGL ES and the host OpenGL below it, with their
/// versions and extensions. Filled once from a ContextInformation record.
class ContextInterface : public QWidget {
    Q_OBJECT

public:
    explicit ContextInterface(const ui::messages::Message& record, QWidget* parent = nullptr);
    ~ContextInterface() override;

    /// The version of OpenGL ES such as "3.1"; another text if it is not known.
    const QString& esVersion() const { return m_esVersion; }
    /// The extensions that the context offers, with "GL_".
    const QStringList& esExtensions() const { return m_esExtensions; }

Q_SIGNALS:
    /// A text that the status bar is to show.
    void statusMessage(const QString& text);

private:
    void addTableActions(QAbstractItemView& view, const QString& fileName);
    void showVersions(const ui::messages::Message& record);
    void showEsExtensions(const ui::messages::Message& record);
    void showHostExtensions(const ui::messages::Message& record);

    std::unique_ptr<Ui::ContextInterface> m_ui;
    QString m_esVersion;
    QStringList m_esExtensions;
};

#pragma once

#include <QInputDialog>

#include <functional>

namespace widgets {

/// Asks for one name: out of a list, or typed, which completes to names of the list that contain what was
/// typed. Stays open on a name that cannot be taken and says why.
class NameChooser : public QInputDialog {
    Q_OBJECT

public:
    /// Why a name cannot be taken; empty for one that can.
    using RefusalFor = std::function<QString(const QString&)>;

    NameChooser(const QString& label, const QStringList& names, RefusalFor refusalFor, QWidget* parent);

    void done(int result) override;

private:
    RefusalFor m_refusalFor;
};

} // namespace widgets

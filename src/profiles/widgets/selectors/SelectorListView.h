#pragma once

#include <QElapsedTimer>
#include <QListView>

namespace widgets {

/// The list of a selector. Typing finds items by the names that are shown, also while the list is closed.
class SelectorListView : public QListView {
    Q_OBJECT

public:
    using QListView::QListView;

    /// The prefix "GL_" or "EGL_" of a name may be left out.
    void keyboardSearch(const QString& search) override;

private:
    bool matches(int row) const;

    QString m_typed;
    QElapsedTimer m_sinceKey;
};

} // namespace widgets

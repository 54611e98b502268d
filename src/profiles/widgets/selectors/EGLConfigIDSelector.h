#pragma once

#include <QSpinBox>

#include <optional>

namespace widgets {

/// The id of a config: any integer, negative ones too, in decimal or as "0x10". Takes digits beyond its range
/// as well: a number that is cut off would look like one that was entered.
class EGLConfigIDSelector : public QSpinBox {
    Q_OBJECT

public:
    EGLConfigIDSelector(QWidget* parent, int current);

    /// Whether the id is another than at first.
    bool isChanged() const { return parsedId(cleanText()) != m_first; }

    /// The id that was entered; nothing for what is none.
    static std::optional<int> parsedId(const QString& entry);

protected:
    /// As the tree shows it, without separators in any locale.
    QString textFromValue(int value) const override;
    int valueFromText(const QString& text) const override;
    QValidator::State validate(QString& input, int& position) const override;
    /// Leaves the event to the view, which scrolls.
    void wheelEvent(QWheelEvent* event) override;

private:
    int m_first;
};

} // namespace widgets

#pragma once

#include "Message.h"
#include "SystemReport.h"

#include <QObject>

/// Puts report records together until one completes the report. A complete report stays: later records are
/// ignored until it is cleared.
class SystemReportGUIReceiver : public QObject {
    Q_OBJECT

public:
    explicit SystemReportGUIReceiver(QObject* parent = nullptr);

Q_SIGNALS:
    void ready(const SystemReport&);

public Q_SLOTS:
    /// Takes a record of types 14 to 20; ignores any other.
    void receive(const ui::messages::Message&);
    /// Forgets what has come, and takes the next report.
    void clear();

private:
    template <typename Entry> void append(std::vector<Entry>& entries, Entry entry);
    void setFlag(quint32 key, quint8 flag);

    SystemReport m_report;
    qsizetype m_textSize = 0;
    bool m_complete = false;
};

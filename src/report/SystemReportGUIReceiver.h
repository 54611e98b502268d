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

    /// Takes a record that is read from a session, which may be any object that lives as long as it is read.
    /// A report that came out of another session gives way to it; one of a connected application does not.
    void receiveRecorded(const QObject* session, const ui::messages::Message& message);

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
    const QObject* m_session = nullptr; ///< That the complete report came out of. Only compared.
};

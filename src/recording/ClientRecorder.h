#pragma once

#include "MetaTypes.h"
#include "SessionSource.h"
#include "SessionWriter.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>

class Client;

/// Keeps what a connected client sends as a session: in a file without a name, or in a file of the user's.
class ClientRecorder : public QObject {
    Q_OBJECT

public:
    /// With an empty path, or where the file cannot be made, the session has no name.
    ClientRecorder(const Client& client, const QString& path, QObject* parent);
    ~ClientRecorder() override;

    /// What has been kept until now; it stays readable when the recorder has gone.
    SessionSource source(const QString& title);
    /// The file, empty without one.
    const QString& path() const { return m_path; }

    /// Asked now and then whether the file may grow on.
    using MayGrow = std::function<bool()>;
    void setLimit(const MayGrow& mayGrow) { m_mayGrow = mayGrow; }

    /// Writes out what is known of the client's end, and closes the file. The recorder still has it open for
    /// source() afterwards, so its room on the disk is taken as long as there is the recorder.
    void end(bool isClean);
    bool hasEnded() const { return m_hasEnded; }
    /// How the process ended, where its last record has told that; empty else.
    QString endText() const;

Q_SIGNALS:
    /// The client has told which device it sees in place of the machine.
    void deviceKnown(const QString& device);
    /// The file is complete.
    void closed();
    /// From now on nothing is kept any more; the reason is a readable text.
    void failed(const QString& reason);

private:
    void open(const QString& path);
    void setPid(PID_TYPE pid);
    void setName(const QString& name);
    void take(const ui::messages::Message& message);
    void begin();
    void noteDevice(const ui::messages::Message& message);
    void noteEnd(const ui::messages::Message& message);
    void add(ui::messages::Type type, const std::string& payload);
    void flush();
    void checkFailure();

    const Client& m_client; ///< Alive as long as its signals come.
    sessions::SessionWriter m_writer;
    QString m_path;
    platform::FileStream m_whole; ///< The file once the writer is closed.
    std::optional<PID_TYPE> m_pid;
    std::string m_name;
    std::string m_device; ///< Empty until it is known.
    std::string m_endText; ///< Of the last record, if it tells the end.
    bool m_hasBegun = false; ///< The file knows the client.
    bool m_hasEnded = false;
    bool m_isFailureTold = false;
    QTimer m_flush;
    MayGrow m_mayGrow;
};

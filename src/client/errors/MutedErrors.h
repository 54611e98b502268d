#pragma once

#ifndef Q_MOC_RUN // which cannot read <compare>
#include "KnownKinds.h"
#endif

#include <QObject>
#include <QString>

#include <filesystem>
#include <vector>

/// The kinds of errors and warnings that the user does not want to see, for all lists. They are kept in a
/// file, which is read again before it is changed, since other windows and people write it too.
class MutedErrors : public QObject {
    Q_OBJECT

public:
    /// With an empty path they are forgotten at the end.
    explicit MutedErrors(std::filesystem::path file, QObject* parent = nullptr);

    const sessions::KnownKinds& kinds() const { return m_kinds; }
    /// Why the file could not be read; empty where it could.
    const QString& problem() const { return m_problem; }
    const std::filesystem::path& file() const { return m_file; }

    /// False where the file cannot be read or written; then nothing changes, and failed() tells why.
    bool mute(const std::vector<sessions::Signature>& kinds);
    bool show(const std::vector<sessions::Signature>& kinds);

Q_SIGNALS:
    void changed();
    void failed(const QString& reason);

private:
    bool read();
    bool store();

    std::filesystem::path m_file;
    sessions::KnownKinds m_kinds;
    QString m_problem;
};

#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

/// The folder in which the window keeps the sessions that it records by itself. Only the newest ones stay,
/// and not more than so many bytes in all. Files of others in it are never touched.
class SessionFolder {
public:
    struct Limits {
        int files = 20;
        std::int64_t bytes = std::int64_t{1} << 30U;
    };

    /// Below the user's folder for data.
    static QString usualPath();

    explicit SessionFolder(const QString& path = usualPath());
    SessionFolder(const QString& path, const Limits& limits);

    const QString& path() const { return m_path; }

    /// The path of a new session, which counts as being written from now on. Empty where the folder cannot be
    /// made. Makes room for it.
    QString addFile();
    /// Tells that a session is complete.
    void closeFile(const QString& path);
    /// Removes the oldest complete sessions while there are too many, or too large ones. False if those that
    /// are being written alone are too large.
    bool makeRoom();

private:
    bool prune(int files);

    QString m_path;
    Limits m_limits;
    QStringList m_written;
};

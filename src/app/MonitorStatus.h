#pragma once

#include "ProfileCatalogue.h"

#include <QObject>
#include <QTimer>

#include <vector>

class QAbstractItemModel;
class QLabel;
class QStatusBar;

/// The window's state at a glance, in its status bar: whether it listens, how many clients are connected, and
/// how many errors and warnings they have reported since the start. Counts that change in a flood are shown a
/// few times a second.
class MonitorStatus : public QObject {
    Q_OBJECT

public:
    explicit MonitorStatus(QStatusBar* bar);

    /// An empty problem means that the server listens, on the socket at the path.
    void setListening(const QString& path, const QString& problem);
    /// Why a second instance could not see this one; empty when it could.
    void setInstanceProblem(const QString& problem);
    void setClientCount(std::size_t count);
    /// Names the profile files that could not be loaded, with their reasons.
    void setSkippedProfiles(const std::vector<ProfileCatalogue::BrokenFile>& files);
    void addErrors(int count);
    void addWarnings(int count);

private:
    QLabel* addPart(const QString& objectName, const QString& icon);
    void showCountsSoon();
    void showCounts();

    QStatusBar* m_bar;
    QLabel* m_listeningIcon = nullptr;
    QLabel* m_listening;
    QLabel* m_instance;
    QLabel* m_skipped;
    QLabel* m_clients;
    QLabel* m_errors;
    QLabel* m_warnings;
    std::size_t m_clientCount = 0;
    quint64 m_errorCount = 0;
    quint64 m_warningCount = 0;
    QTimer m_update;
};

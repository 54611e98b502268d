#pragma once

#include "Settings.h"

#include <QMenu>
#include <QStringList>

class Preferences;

/// A menu of the files that were used last, the most recent first. The list is kept in the preferences.
class RecentFilesMenu : public QMenu {
    Q_OBJECT

public:
    static constexpr qsizetype mostFiles = 10;

    /// The store and the setting must live longer.
    RecentFilesMenu(Preferences& preferences, const QString& title, QWidget* parent,
        const Setting<property_list::List>& setting = settings::recentFiles);

    /// Absolute paths.
    QStringList files() const;
    /// Puts a file in front.
    void addFile(const QString& path);

Q_SIGNALS:
    void fileChosen(const QString& path);
    /// A file was chosen that is not there any more; it has been taken out of the list.
    void fileMissing(const QString& path);

private:
    void fill();
    void addEntry(const QString& path, int number);
    void choose(const QString& path);
    void store(const QStringList& files);

    Preferences& m_preferences;
    const Setting<property_list::List>& m_setting;
};

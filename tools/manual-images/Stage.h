#pragma once

#include <QDir>
#include <QProcess>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

class MainWindow;

/// A picture that could not be taken, with the reason.
class StageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The running program with its demo clients, and a camera before its screen.
class Stage {
public:
    /// The folder is the one for the pictures; it must exist. The window must live longer.
    Stage(MainWindow& window, const QString& demoClient, const QString& folder);
    /// Ends the clients.
    ~Stage();

    MainWindow& window() const { return m_window; }

    /// The widget or object of the window, or below `root`, with that object name.
    template <typename T> T& find(const char* name, const QObject* root = nullptr) const
    {
        auto* found = (root ? root : windowObject())->findChild<T*>(QString::fromLatin1(name));
        if (!found)
            throw StageError(std::string("there is no ") + name);
        return *found;
    }

    void startClient(const QStringList& arguments);
    /// Runs the event loop until the condition holds; throws StageError when it does not come true.
    void waitFor(const char* what, const std::function<bool()>& condition) const;
    /// Lets everything be laid out and painted.
    void settle() const;
    /// Does what opens a modal dialog or a menu, and what is to be done with it; the latter must close it.
    void withOpened(const std::function<void()>& open, const std::function<void(QWidget&)>& use) const;

    /// Writes what is on the screen within the widget, with menus and tool tips that lie over it.
    void take(const char* name, const QWidget& shown) const;
    void take(const char* name) const;

private:
    const QObject* windowObject() const;

    MainWindow& m_window;
    QString m_demoClient;
    QDir m_folder;
    std::vector<std::unique_ptr<QProcess>> m_clients;
};

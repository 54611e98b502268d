#pragma once

#include "Client.h"
#include "ClientTabWidget.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "RawClient.h"

#include <QCheckBox>
#include <QLabel>
#include <QTest>
#include <QTextEdit>

#include <memory>
#include <vector>

/// A window and the applications that are connected to it, through its real socket.
class Session {
public:
    Session()
        : window(nullptr, loaded(preferences))
    {
        window.resize(900, 600);
    }
    static Preferences& loaded(Preferences& store)
    {
        std::string error;
        store.load(error);
        return store;
    }

    /// Connects one more application and waits for its tab.
    RawClient& connectApplication()
    {
        const int before = clientCount();
        applications.push_back(std::make_unique<RawClient>(QStringLiteral("Corvale")));
        [this, before] {
            QTRY_COMPARE(clientCount(), before + 1);
        }();
        return *applications.back();
    }
    int clientCount() const { return static_cast<int>(window.findChildren<Client*>().size()); }
    ClientTabWidget& tabs() const
    {
        return *window.findChild<ClientTabWidget*>(QStringLiteral("clienttabs"));
    }
    QStringList titles() const
    {
        QStringList titles;
        for (int i = 0; i < tabs().count(); ++i)
            titles.append(tabs().tabText(i));
        return titles;
    }
    QString console(int index) const
    {
        return tabs().widget(index)->findChild<QTextEdit*>(QStringLiteral("txtConsole"))->toPlainText();
    }
    QString status(const char* label) const
    {
        return window.findChild<QLabel*>(QString::fromLatin1(label))->text();
    }
    QCheckBox& autoClose() const { return *window.findChild<QCheckBox*>(QStringLiteral("chkAutoClose")); }
    QWidget* closeButton(int index) const
    {
        for (const auto side : {QTabBar::LeftSide, QTabBar::RightSide}) {
            if (QWidget* button = tabs().tabBar()->tabButton(index, side))
                return button;
        }
        return nullptr;
    }

    Preferences preferences;
    MainWindow window;
    std::vector<std::unique_ptr<RawClient>> applications;
};

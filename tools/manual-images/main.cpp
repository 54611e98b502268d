#include "Controller.h"
#include "MainWindow.h"
#include "Pictures.h"
#include "Stage.h"

#include <QCursor>
#include <QTimer>

#include <cstdlib>
#include <iostream>

namespace {

/// Where the window stands, and its size: small enough for a page of the manual.
constexpr QRect place(20, 20, 900, 600);

MainWindow& mainWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<MainWindow*>(widget))
            return *window;
    }
    throw StageError("there is no main window");
}

void takeAll(const QString& demoClient, const QString& folder)
{
    MainWindow& window = mainWindow();
    window.setGeometry(place);
    window.activateWindow();
    QCursor::setPos(0, 0);
    Stage stage(window, demoClient, folder);
    pictures::takeStart(stage);
    pictures::takeApplications(stage);
    pictures::takeReport(stage);
    pictures::takeProfiles(stage);
    pictures::takeDialogs(stage);
    pictures::takeDark(stage);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr
            << "usage: manual-images DEMO-CLIENT FOLDER\n"
               "Runs Corvale GUI with demo clients and writes pictures of it. See scripts/manual-images.\n";
        return EXIT_FAILURE;
    }
    const QString demoClient = QString::fromLocal8Bit(argv[1]);
    const QString folder = QString::fromLocal8Bit(argv[2]);
    int result = EXIT_SUCCESS;
    try {
        Controller controller(argc, argv);
        // A blinking cursor would make every run differ.
        QApplication::setCursorFlashTime(0);
        QTimer::singleShot(0, &controller, [&] {
            try {
                takeAll(demoClient, folder);
            } catch (const StageError& error) {
                std::cerr << "manual-images: " << error.what() << '\n';
                result = EXIT_FAILURE;
            }
            QApplication::quit();
        });
        controller.run();
    } catch (const std::runtime_error& error) {
        std::cerr << "manual-images: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return result;
}

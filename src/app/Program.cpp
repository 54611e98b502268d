#include "Program.h"

#include "CommandLine.h"
#include "Controller.h"
#include "PlainMessageBox.h"
#include "StartUpFailure.h"

#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// The exit code for arguments that are not understood, as with most programs.
constexpr int exitCodeForArguments = 2;

/// The arguments once more, since an application object takes its own out of those it is given.
class Arguments {
public:
    Arguments(int argc, char** argv)
        : m_count(argc)
        , m_values(argv, argv + argc)
    {
        m_values.push_back(nullptr);
    }

    int& count() { return m_count; }
    char** values() { return m_values.data(); }

private:
    int m_count;
    std::vector<char*> m_values;
};

void showStartUpFailure(Arguments arguments, const std::string& text, const std::string& details = {})
{
    // The Controller, and with it the application object, is gone by now.
    const QApplication application(arguments.count(), arguments.values());
    PlainMessageBox(QMessageBox::Critical, QStringLiteral("Corvale GUI"), QString::fromStdString(text),
        QString::fromStdString(details), nullptr)
        .exec();
}

} // namespace

int runProgram(int argc, char** argv)
{
    // Before anything that needs a display or looks for another instance.
    const CommandLine commandLine = readCommandLine(argc, argv);
    if (commandLine.request != CommandLine::Request::Start) {
        const bool isRefused = commandLine.request == CommandLine::Request::Refuse;
        std::fputs(commandLine.text.c_str(), isRefused ? stderr : stdout);
        return isRefused ? exitCodeForArguments : 0;
    }
    const Arguments original(argc, argv);
    try {
        Arguments arguments(original);
        Controller controller(arguments.count(), arguments.values());
        return controller.run(commandLine.files);
    } catch (const StartUpFailure& failure) {
        showStartUpFailure(original, failure.what(), failure.details());
        return 0;
    } catch (const std::runtime_error& failure) {
        showStartUpFailure(original, failure.what());
        return 0;
    }
}

#pragma once

#include "ChildProcess.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

/// A running corvale-run with its standard streams on pipes, in an environment where a program can be
/// watched.
class LauncherRun {
public:
    using Arguments = std::vector<std::string>;

    /// With an output, a path, that one is its standard output.
    explicit LauncherRun(const Arguments& arguments, const char* output = nullptr)
    {
        std::array<std::array<int, 2>, 3> pipes{};
        for (auto& ends : pipes)
            EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        m_pid = fork();
        if (m_pid == 0) {
            setpgid(0, 0);
            dup2(pipes[0][0], 0);
            dup2(output ? open(output, O_WRONLY) : pipes[1][1], 1);
            dup2(pipes[2][1], 2);
            std::vector<char*> pointers{const_cast<char*>(CORVALE_RUN)};
            for (const std::string& argument : arguments)
                pointers.push_back(const_cast<char*>(argument.c_str()));
            pointers.push_back(nullptr);
            execv(CORVALE_RUN, pointers.data());
            _exit(99);
        }
        m_input = pipes[0][1];
        m_output = pipes[1][0];
        m_errors = pipes[2][0];
        for (const int end : {pipes[0][0], pipes[1][1], pipes[2][1]})
            close(end);
    }
    ~LauncherRun()
    {
        if (!m_isOver)
            kill(-m_pid, SIGKILL);
        finish();
        for (const int end : {m_input, m_output, m_errors})
            close(end);
    }
    LauncherRun(const LauncherRun&) = delete;
    LauncherRun& operator=(const LauncherRun&) = delete;

    pid_t pid() const { return m_pid; }
    int output() const { return m_output; }
    /// Lets the program go on behind a step "read".
    void goOn() { EXPECT_EQ(write(m_input, "x", 1), 1); }
    /// The next line on standard output, without its end.
    std::string line() { return lineOf(m_output); }
    /// All that is on standard error until everybody has closed it.
    std::string errors()
    {
        std::string all;
        for (std::string next = lineOf(m_errors); !next.empty(); next = lineOf(m_errors))
            all += next + "\n";
        return all;
    }
    void closeInput() { close(std::exchange(m_input, -1)); }
    void closeOutput() { close(std::exchange(m_output, -1)); }
    void closeErrors() { close(std::exchange(m_errors, -1)); }
    /// Its exit code, or minus the number of the signal that ended it.
    int finish()
    {
        if (!m_isOver)
            m_code = child_process::finish(m_pid);
        m_isOver = true;
        return m_code;
    }

    /// To be called before the first one. Its folders are those of the test binary.
    static void prepare()
    {
        const std::filesystem::path folder = child_process::freshFolder();
        for (const char* name : {"libEGL_corvale.so", "libcorvale_preload.so", "libEGL_host.so"})
            child_process::fill(folder / name, name);
        const std::string json = R"({"file_format_version": "1.0.0", "ICD": {"library_path": ")"
            + (folder / "libEGL_host.so").string() + "\"}}";
        child_process::fill(folder / "host.json", json);
        setenv("CORVALE_LAYER_DIR", folder.c_str(), 1);
        setenv("__EGL_VENDOR_LIBRARY_FILENAMES", (folder / "host.json").c_str(), 1);
    }

private:
    static std::string lineOf(int file)
    {
        std::string line;
        char byte = 0;
        while (read(file, &byte, 1) == 1 && byte != '\n')
            line += byte;
        return line;
    }

    pid_t m_pid = 0;
    int m_input = -1;
    int m_output = -1;
    int m_errors = -1;
    int m_code = 0;
    bool m_isOver = false;
};

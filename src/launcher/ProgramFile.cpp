#include "ProgramFile.h"

#include "Descriptor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace launcher {

namespace {

/// Scripts whose interpreter is a script again; the system follows as many.
constexpr int scriptLimit = 5;
constexpr std::size_t programHeaderLimit = 512;

/// Reads a structure at an offset, whole or not at all.
template <typename T> bool readAt(const Descriptor& file, std::uint64_t offset, T& into)
{
    return pread(file.number(), &into, sizeof into, static_cast<off_t>(offset)) == ssize_t{sizeof into};
}

Descriptor openFile(const std::string& path)
{
    return Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

std::uint16_t machineOfLauncher()
{
    Elf64_Ehdr header{};
    readAt(openFile("/proc/self/exe"), 0, header);
    return header.e_machine;
}

/// The interpreter in the first line of a script; empty if the file is none.
std::string interpreterOf(const Descriptor& file)
{
    std::array<char, 256> start{};
    const ssize_t size = pread(file.number(), start.data(), start.size(), 0);
    std::string_view line(start.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    if (!line.starts_with("#!"))
        return {};
    line = line.substr(2, line.find('\n') - 2);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return std::string(line.substr(0, line.find_first_of(" \t")));
}

/// Whether the system gives the program rights that its user does not have, and therefore ignores what is
/// asked of it in the environment.
bool gainsRights(const std::string& path, const struct stat& status)
{
    if ((status.st_mode & S_ISUID) != 0 && status.st_uid != getuid())
        return true;
    constexpr mode_t group = S_ISGID | S_IXGRP;
    if ((status.st_mode & group) == group && status.st_gid != getgid())
        return true;
    return getuid() != 0 && getxattr(path.c_str(), "security.capability", nullptr, 0) > 0;
}

std::optional<std::string> whyElfUnwatchable(const Descriptor& file)
{
    Elf64_Ehdr header{};
    if (!readAt(file, 0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return std::nullopt; // Not ours to judge: the system refuses it or has an interpreter for it.
    if (header.e_ident[EI_CLASS] != ELFCLASS64)
        return "it is a 32-bit program";
    const int order = std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;
    if (header.e_ident[EI_DATA] != order || header.e_machine != machineOfLauncher())
        return "it is a program for another kind of machine";
    for (std::uint64_t i = 0; i < header.e_phnum && i < programHeaderLimit; ++i) {
        Elf64_Phdr part{};
        if (readAt(file, header.e_phoff + i * sizeof part, part) && part.p_type == PT_INTERP)
            return std::nullopt;
    }
    return "it is linked statically";
}

} // namespace

std::string findProgram(const std::string& name)
{
    if (name.empty() || name.find('/') != std::string::npos)
        return name;
    const char* variable = std::getenv("PATH");
    std::string_view folders = variable ? variable : "/bin:/usr/bin";
    for (;;) {
        const std::size_t end = folders.find(':');
        std::string path(folders.substr(0, end));
        path += path.empty() ? "./" + name : "/" + name;
        struct stat status { };
        if (access(path.c_str(), X_OK) == 0 && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
            return path;
        if (end == std::string_view::npos)
            return {};
        folders.remove_prefix(end + 1);
    }
}

std::optional<std::string> whyUnwatchable(const std::string& path)
{
    std::string current = path;
    for (int depth = 0; depth < scriptLimit; ++depth) {
        const Descriptor file = openFile(current);
        struct stat status { };
        if (!file || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
            return std::nullopt;
        const std::string interpreter = interpreterOf(file);
        if (interpreter.empty()) {
            if (gainsRights(current, status))
                return "it gets the rights of another user when it starts";
            return whyElfUnwatchable(file);
        }
        current = interpreter;
    }
    return std::nullopt;
}

} // namespace launcher

#pragma once

#include "PropertyList.h"
#include "TSRPreferencesImpl.h"

#include <cstdlib>
#include <memory>
#include <string>

/// What a MemoryLayer stores, counts and is told to refuse.
struct MemoryDisk {
    std::string content{property_list::emptyFile};
    std::uint32_t stamp = 1;
    bool readable = true;
    bool writable = true;
    bool taken = false; ///< Nobody but the other process can write.
    bool waits = false; ///< What the last opening was told.
    int reads = 0;
    int commits = 0;
    std::string commitFailure;
};

/// A file layer without files.
class MemoryLayer : public TSRPreferencesImpl {
public:
    explicit MemoryLayer(MemoryDisk& disk)
        : m_disk(disk)
    {
    }

    bool folderPath(std::string&, int) override { return false; }

    std::unique_ptr<TSRPreferencesFile> open(
        const std::string&, Mode mode, int, bool, std::string& error) override
    {
        auto file = std::make_unique<MemoryFile>();
        error = "no stream";
        file->path = std::filesystem::temp_directory_path() / "Store.plist";
        if (mode == Mode::Write)
            openForWriting(*file);
        else if (++m_disk.reads; m_disk.readable)
            file->stream = m_disk.content.empty()
                ? std::fopen("/dev/null", "rb")
                : fmemopen(m_disk.content.data(), m_disk.content.size(), "rb");
        return file;
    }

    void close(std::unique_ptr<TSRPreferencesFile> file, bool commit) override
    {
        m_commitFailure = commit ? m_disk.commitFailure : "";
        if (!commit || !file->stream || !m_commitFailure.empty())
            return;
        std::fflush(file->stream);
        const auto& written = static_cast<const MemoryFile&>(*file);
        m_disk.content.assign(written.buffer, written.size);
        ++m_disk.commits;
    }

    bool modificationStamp(const std::string&, int, std::uint32_t& stamp) override
    {
        stamp = m_disk.stamp;
        return true;
    }

private:
    struct MemoryFile : TSRPreferencesFile {
        MemoryFile() = default;
        MemoryFile(const MemoryFile&) = delete;
        MemoryFile& operator=(const MemoryFile&) = delete;
        ~MemoryFile() override
        {
            if (stream)
                std::fclose(stream);
            stream = nullptr;
            std::free(buffer);
        }

        char* buffer = nullptr;
        std::size_t size = 0;
    };

    void openForWriting(MemoryFile& file)
    {
        m_disk.waits = m_waits;
        m_isTaken = m_disk.taken;
        if (m_disk.writable && !m_disk.taken)
            file.stream = open_memstream(&file.buffer, &file.size);
        m_openFailureReason = file.stream ? "" : "the folder is read-only";
    }

    MemoryDisk& m_disk;
};

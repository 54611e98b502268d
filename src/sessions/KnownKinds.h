#pragma once

#include "Signature.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sessions {

/// Kinds of findings that are known: the baseline of a check, or what the user of the window has muted. It is
/// a text file, one kind a line, sorted, made for people and their diffs; docs/session-format.md describes
/// it. Comments stay with the line below them.
class KnownKinds {
public:
    /// Replaces what there is by the content of a file. False with a reason() if it cannot be read; then
    /// nothing has changed. A file that is not there is an error unless `mayBeAbsent`: then there are none.
    bool read(const std::filesystem::path& path, bool mayBeAbsent = false);
    /// The same from text. The reason names the line.
    bool parse(std::string_view text);
    const std::string& reason() const { return m_reason; }

    std::string toText() const;
    /// Replaces the file, or leaves it as it is. False with a reason().
    bool write(const std::filesystem::path& path);

    bool contains(const SignatureView& signature) const;
    /// False if it was there already, or the list is full.
    bool add(const SignatureView& signature);
    bool remove(const SignatureView& signature);
    std::size_t size() const { return m_kinds.size(); }
    bool empty() const { return m_kinds.empty(); }
    /// Sorted.
    std::vector<Signature> all() const;

    static constexpr std::size_t countLimit = 20'000;

private:
    struct Less {
        using is_transparent = void;
        bool operator()(const SignatureView& a, const SignatureView& b) const;
    };
    using Kinds = std::map<Signature, std::string, Less>;

    Kinds m_kinds; ///< With the whole lines of comments above each.
    std::string m_head; ///< Comments above the first empty line.
    std::string m_tail; ///< Comments below the last kind.
    std::string m_reason;
};

} // namespace sessions

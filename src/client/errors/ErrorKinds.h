#pragma once

#ifndef Q_MOC_RUN // which cannot read <compare>
#include "Signature.h"
#endif

#include <QString>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

class ErrorListModel;

namespace sessions {
class KnownKinds;
}

/// A severity as it is shown to the user.
QString severityText(sessions::Severity severity);

/// The kinds of the rows of an error list: rows of a kind have severity, function and code in common, and
/// texts that differ in their numbers at most. Worked out row by row, when it is first asked for.
class ErrorKinds {
public:
    /// Counts from 0, in the order in which the kinds come first.
    using Kind = std::uint32_t;

    /// Forgets everything and takes another list, or none.
    void restart(const ErrorListModel* errors);
    /// The kind of a row. Takes time for all rows up to it that nobody has asked about.
    Kind kindOf(int row);
    const sessions::Signature& signature(Kind kind) const { return *m_kinds[kind].signature; }

    /// The kinds that are muted, if any. They must live longer, or until others are set.
    void setMuted(const sessions::KnownKinds* muted);
    bool hasMuted() const;
    bool isMuted(Kind kind) const { return m_kinds[kind].isMuted; }

private:
    struct Entry {
        const sessions::Signature* signature;
        bool isMuted;
    };

    Kind find(int row);

    const ErrorListModel* m_errors = nullptr;
    const sessions::KnownKinds* m_muted = nullptr;
    std::unordered_map<sessions::Signature, Kind, sessions::SignatureHash, sessions::SignatureEqual>
        m_numbers;
    std::vector<Entry> m_kinds;
    std::vector<Kind> m_rows;
    std::string m_buffer;
};

#pragma once

#include "ErrorListGroups.h"
#include "StepwiseSort.h"

#include <QDeadlineTimer>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class ErrorListModel;

/// Works out which rows of an error list are shown, and in which order, in steps: there may be millions.
/// What a step has found is shown when the caller says so, since it has to tell the view before. In a folded
/// list, the rows of a kind are a group, below which they are shown where it is open.
class ErrorListArrangement {
public:
    using Row = std::uint32_t;
    using Kind = ErrorKinds::Kind;
    /// What is shown: a row of the model, or a group.
    using Entry = std::uint32_t;
    using Entries = std::vector<Entry>;
    static constexpr Entry noEntry = 0xFFFFFFFF;

    enum class Verdict { Hidden, Muted, Shown };
    using Judge = std::function<Verdict(int row)>;

    /// A column, or -1 for the order of arrival. Groups arrive with their first rows.
    struct Order {
        int column = -1;
        bool isDescending = false;

        bool operator==(const Order& other) const = default;
    };

    /// The kinds of the model's rows must live longer.
    ErrorListArrangement(ErrorKinds& kinds, Judge judge)
        : m_kinds(kinds)
        , m_judge(std::move(judge))
    {
    }

    /// Begins anew, with nothing shown. Open groups are so again.
    void restart(const ErrorListModel* model, Order order, bool isFolded);
    void closeGroups() { m_groups.closeAll(); }
    /// Works on until everything is found or the time is over.
    void work(const QDeadlineTimer& deadline);
    /// Whether all rows of the model are found and shown.
    bool isSettled() const;
    /// Whether the rows are shown in the order of the model, so that those that arrive come behind the
    /// others.
    bool isByArrival() const { return m_order.column < 0 && !m_isFolded; }
    /// Rows that are not shown for their kind alone.
    int mutedCount() const { return m_mutedCount; }

    const Entries& shown() const { return m_shown; }
    static bool isGroup(Entry entry) { return (entry & groupBit) != 0; }
    static Kind kindOf(Entry group) { return group & ~groupBit; }
    /// The row of an entry; of a group its first one.
    Row rowOf(Entry entry) const { return isGroup(entry) ? group(entry).firstRow : entry; }
    const ErrorListGroups::Group& group(Entry entry) const { return m_groups.group(kindOf(entry)); }
    bool isOpen(Entry group) const { return m_groups.isOpen(kindOf(group)); }
    /// Opens or closes a group. Afterwards there is a replacement, at the latest when all is found.
    void toggle(Entry group);

    /// Entries that come behind those that are shown.
    std::size_t newCount() const { return m_new.size(); }
    void showNew();
    /// Whether other entries are to be shown instead of all that are.
    bool hasReplacement() const { return m_replacement.has_value(); }
    void showReplacement();
    /// Whether groups that are shown have other counts or frames than at the last call.
    bool takeGroupChange() { return std::exchange(m_hasGroupChange, false); }

    /// The place at which an entry is shown: a row in its closed group, a group of a list that is not folded
    /// with its first row. -1 where there is none.
    int placeOf(Entry entry) const;

private:
    static constexpr Entry groupBit = 0x80000000;

    void scan(const QDeadlineTimer& deadline);
    void accept(Row row);
    void sortRows(const QDeadlineTimer& deadline);
    void merge(const QDeadlineTimer& deadline);
    void arrangeGroups(const QDeadlineTimer& deadline);
    void replaceGroups();
    void beginSort(const std::vector<std::uint32_t>& items);
    bool needsGroupOrder() const { return m_isFolded && (m_order.column >= 0 || m_groups.hasOpen()); }
    int find(Entry entry) const;
    StepwiseSort::Key key(std::uint32_t item, std::uint32_t depth) const;
    std::uint64_t identity(std::uint32_t item) const;
    std::uint64_t number(std::uint32_t item) const;

    ErrorKinds& m_kinds;
    Judge m_judge;
    const ErrorListModel* m_model = nullptr;
    Order m_order;
    bool m_isFolded = false;
    int m_scanned = 0; ///< Rows of the model that have been looked at.
    int m_mutedCount = 0;
    Entries m_shown;
    Entries m_new;
    std::vector<Row> m_accepted; ///< Found, and not yet being sorted.
    ErrorListGroups m_groups; ///< Of the last time that the list was folded.
    std::vector<Kind> m_groupOrder; ///< As they are shown.
    bool m_areGroupsStale = false; ///< Rows have come since the groups were put in order.
    bool m_hasGroupChange = false;
    std::optional<StepwiseSort> m_sort;
    bool m_isFirstSort = true;
    std::size_t m_sortTaken = 0; ///< Items that have been taken from the sort.
    // While rows that are sorted are merged into those that are shown:
    Entries m_merged;
    std::size_t m_mergedShown = 0;
    std::optional<Entries> m_replacement;
};

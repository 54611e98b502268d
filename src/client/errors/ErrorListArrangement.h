#pragma once

#include "ErrorFilter.h"
#include "StepwiseSort.h"

#include <QDeadlineTimer>

#include <cstdint>
#include <optional>
#include <vector>

class ErrorListModel;

/// Works out which rows of an error list are shown, and in which order, in steps: there may be millions.
/// What a step has found is shown when the caller says so, since it has to tell the view before.
class ErrorListArrangement {
public:
    using Row = std::uint32_t;
    using Rows = std::vector<Row>;
    using Predicate = std::function<bool(int row)>;

    /// A column, or -1 for the order of arrival.
    struct Order {
        int column = -1;
        bool isDescending = false;

        bool operator==(const Order& other) const = default;
    };

    /// Chooses rows by a predicate.
    explicit ErrorListArrangement(Predicate accepts)
        : m_accepts(std::move(accepts))
    {
    }

    /// Begins anew, with nothing shown.
    void restart(const ErrorListModel* model, Order order);
    /// Works on until everything is found or the time is over.
    void work(const QDeadlineTimer& deadline);
    /// Whether all rows of the model are found and shown.
    bool isSettled() const;
    /// Whether rows that arrive are shown behind the others, without a further step.
    bool isByArrival() const { return m_order.column < 0; }

    const Rows& shown() const { return m_shown; }
    /// Rows that come behind those that are shown.
    std::size_t newCount() const { return m_new.size(); }
    void showNew();
    /// Whether other rows are to be shown instead of all that are.
    bool hasReplacement() const { return m_replacement.has_value(); }
    void showReplacement();

    /// The place of a row of the model among those that are shown, -1 where it is not.
    int placeOf(Row row) const;

private:
    void scan(const QDeadlineTimer& deadline);
    void beginSort();
    void sort(const QDeadlineTimer& deadline);
    void merge(const QDeadlineTimer& deadline);
    StepwiseSort::Key key(Row row, std::uint32_t depth) const;
    std::uint64_t identity(Row row) const;

    Predicate m_accepts;
    const ErrorListModel* m_model = nullptr;
    Order m_order;
    int m_scanned = 0; ///< Rows of the model that have been looked at.
    Rows m_shown;
    Rows m_new;
    Rows m_accepted; ///< Found, and not yet being sorted.
    std::optional<StepwiseSort> m_sort;
    bool m_isFirstSort = true;
    std::size_t m_sortTaken = 0; ///< Items that have been taken from the sort.
    // While rows that are sorted are merged into those that are shown:
    Rows m_merged;
    std::size_t m_mergedShown = 0;
    std::optional<Rows> m_replacement;
};

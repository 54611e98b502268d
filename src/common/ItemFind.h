#pragma once

#include "LinearFind.h"

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <QPointer>

#include <map>
#include <utility>
#include <vector>

class ItemFindMarks;
class ScrollBarMarks;

/// Finds text in the cells of views, one view after the other. Each cell with it is a match.
class ItemFind : public LinearFind {
    Q_OBJECT

public:
    explicit ItemFind(QObject* parent);

    /// Looks in these views from now on. They may go before this does.
    void setViews(const QList<QAbstractItemView*>& views);

    QString selectedText() const override;
    QWidget* view() const override;

Q_SIGNALS:
    /// The view will show another cell.
    void going(QAbstractItemView* view);

protected:
    void begin() override;
    bool search() override;
    std::size_t matchCount() const override { return m_matches.size(); }
    std::optional<std::size_t> firstAtReader() const override;
    bool followReader(Direction direction) override;
    double searchedPart() const override;
    void show(std::size_t match) override;
    void mark() override;

private:
    /// Rows below the same one.
    struct Siblings {
        QPointer<QAbstractItemView> view;
        QPersistentModelIndex parent;
    };
    struct Match {
        std::uint32_t siblings; ///< Number in m_siblings.
        int row;
        int column;
    };
    /// A place in the walk through the rows.
    struct Level {
        std::uint32_t siblings;
        int row = 0;
    };
    /// A row in the walk: the number of its view, and the rows that lead to it from the outermost one.
    using Path = std::pair<qsizetype, std::vector<int>>;
    struct Marks {
        ItemFindMarks* cells;
        ScrollBarMarks* bar;
    };

    void follow(QAbstractItemModel* model);
    Path pathOf(QAbstractItemView* view, const QModelIndex& parent, int row) const;
    Path pathOf(const Match& match) const;
    void rememberRows();
    void rowsInserted(const QAbstractItemModel* model, const QModelIndex& parent, int first);
    bool enterNextView();
    void enter(QAbstractItemView* view, const QModelIndex& parent);
    bool searchRow();
    void markScrollBars();
    double placeOf(const Match& match) const;

    QList<QPointer<QAbstractItemView>> m_views;
    std::vector<QMetaObject::Connection> m_connections;
    std::map<QAbstractItemView*, Marks> m_marks;
    std::vector<Siblings> m_siblings;
    std::vector<Level> m_levels; ///< From the outermost to the innermost row that is searched.
    qsizetype m_viewsEntered = 0;
    std::vector<Match> m_matches;
    std::size_t m_marked = 0; ///< Number of matches that the scroll bars have.
    QPointer<QAbstractItemView> m_readerView;
    QPersistentModelIndex m_readerRow;
    std::optional<std::size_t> m_firstAtReader;
    /// The row to which the reader has moved, and whether matches in it are before the reader.
    std::optional<Path> m_movedTo;
    bool m_isBehindMovedTo = false;
    std::map<QAbstractItemView*, QPersistentModelIndex>
        m_seenRows; ///< The current ones, when the reader's place was last taken.
};

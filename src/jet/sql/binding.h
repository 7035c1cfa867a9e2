#pragma once
// What a statement reads (one table or several joined) and its expressions
// compiled against those columns. Internal to the SQL layer.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jet/sql/ast.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/text_rules.h"

namespace sql::detail {

using Eval = std::function<Value(const Row&)>;

// One table of a FROM clause, with the names it may be qualified by.
struct Part {
    std::shared_ptr<Storage> storage;
    std::shared_ptr<Table> table;
    std::vector<ColumnDef> columns;
    std::string name, alias;
    std::size_t offset = 0;  // of its first column in the joined row

    bool named(const std::string& q) const {
        return textEquals(q, name) || (!alias.empty() && textEquals(q, alias));
    }
};

// What a statement reads: one table, or several joined left to right. Rows
// are the tables' columns side by side.
struct Source {
    std::shared_ptr<Storage> storage;  // of the first table
    std::shared_ptr<Table> table;
    std::vector<ColumnDef> columns;  // of all tables, side by side
    std::string name, alias;
    std::vector<Part> parts;
    std::vector<const JoinClause*> joins;  // parts[i + 1] joins with joins[i]

    bool joined() const { return parts.size() > 1; }

    // -1 when unknown; Jet's error when an unqualified name fits two tables.
    int find(const std::string& qualifier, const std::string& column,
             std::size_t partLimit = SIZE_MAX) const {
        int found = -1;
        for (std::size_t p = 0; p < parts.size() && p < partLimit; ++p) {
            const Part& part = parts[p];
            if (!qualifier.empty() && !part.named(qualifier)) continue;
            for (std::size_t i = 0; i < part.columns.size(); ++i) {
                if (!textEquals(part.columns[i].name, column)) continue;
                if (found >= 0) throw errors::ambiguousField(column);
                found = static_cast<int>(part.offset + i);
            }
        }
        return found;
    }
};

Part openPart(const std::shared_ptr<Storage>& db, const TableRef& ref);
void addPart(Source& s, Part p);
Source openSource(const std::shared_ptr<Storage>& db, const TableRef& ref);
Source openSelectSource(const std::shared_ptr<Storage>& db, const SelectStmt& st);

inline Value truth(bool b) { return Value::boolean(b); }
inline bool isTrue(const Value& v) { return !v.isNull() && v.asDouble() != 0; }
// Jet's comparison of two non-null values: numbers by value, text
// case-insensitively in General order; text against a number is a mismatch.
int compareValues(const Value& a, const Value& b, bool equalityOnly);
// Ordering for ORDER BY: Null first, then numbers, then text in General order.
int orderCompare(const Value& a, const Value& b);

// What a grouped SELECT's items, HAVING and ORDER BY may read: a group row
// holds the GROUP BY values (keys, in order), then the aggregates' results.
struct GroupScope {
    std::vector<const Expr*> keys;
    std::vector<const Expr*> aggregates;
};

bool containsAggregate(const Expr& e);
// The aggregates of an expression, outermost only.
void collectAggregates(const Expr& e, std::vector<const Expr*>& out);
// A statement that reads groups rather than rows: GROUP BY, HAVING or an aggregate.
bool isGrouped(const SelectStmt& s);

// Compiles expressions against a source; names it resolves are marked in
// used, so a scan may leave other columns unconverted. With a group scope
// the expressions read group rows, and a column outside the group keys is
// Jet's error.
class Binder {
  public:
    Binder(std::shared_ptr<Storage> db, const Source* source, std::vector<bool>* used = nullptr,
           const GroupScope* group = nullptr)
        : db_(std::move(db)), source_(source), used_(used), group_(group) {}
    Eval compile(const Expr& e) const;

  private:
    std::shared_ptr<Storage> db_;
    const Source* source_;
    std::vector<bool>* used_;
    const GroupScope* group_;
};

// The rows of a source that satisfy a WHERE, through an index when the
// WHERE pins an indexed column to a constant.
void forEachMatch(const std::shared_ptr<Storage>& db, const Source& src, const Expr* where,
                  const std::function<void(RowId, const Row&)>& visit,
                  std::vector<bool>* needed = nullptr);

struct Selected {
    Source source;
    std::vector<RowId> ids;
    std::vector<Row> rows;  // full base rows
};
Selected selectRows(const std::shared_ptr<Storage>& db, const TableRef& from, const Expr* where);

ResultSet runSelect(const std::shared_ptr<Storage>& db, const SelectStmt& s);
ResultSet runGroupedSelect(const std::shared_ptr<Storage>& db, const SelectStmt& s);

// One result row before ORDER BY, DISTINCT and TOP.
struct Match {
    Row out;
    std::vector<Value> order;
    Row key;
    RowId id = -1;
};
// Sorts the matches by their ORDER BY values, drops repeats under DISTINCT,
// cuts at TOP, and moves them into rs.
void finishRows(ResultSet& rs, std::vector<Match>& matches, const SelectStmt& s, bool writable);

}  // namespace sql::detail

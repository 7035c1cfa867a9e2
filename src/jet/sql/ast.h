#pragma once
// Parsed statements of the Jet SQL dialect.
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "jet/sql/storage.h"
#include "jet/sql/value.h"

namespace sql {

struct SelectStmt;

struct Expr {
    enum class Kind {
        Literal,
        Column,
        Not,
        Negate,
        Binary,
        IsNull,
        InSelect,
        InList,
        Between,
        Like,
        Logical,   // AND or OR over all operands of a chain, in list
        Aggregate  // COUNT SUM AVG MIN MAX in name, over left (null for COUNT(*))
    };
    Kind kind = Kind::Literal;
    Value literal;
    std::string qualifier, name;  // Column; Aggregate: the function, upper case
    std::string op;               // Binary: = <> < <= > >= + - * / &; Logical: AND OR
    std::unique_ptr<Expr> left, right, third;
    std::vector<std::unique_ptr<Expr>> list;
    std::shared_ptr<SelectStmt> select;
    bool negated = false;  // IS NOT NULL, NOT IN, NOT LIKE, NOT BETWEEN
    int height = 1;        // of the tree below, which bounds every walk over it

    // The source text, for messages. Every node shares the statement's one
    // copy, so a long statement costs its length once, not once per node.
    std::shared_ptr<const std::string> source;
    std::size_t textPos = 0, textLen = 0;
    std::string text() const { return source ? source->substr(textPos, textLen) : std::string(); }
};
using ExprPtr = std::unique_ptr<Expr>;

struct TableRef {
    std::string name;
    std::string alias;
    std::optional<std::string> externalPath;  // IN '<file>'
};

struct SelectItem {
    ExprPtr expr;  // null for * and t.*
    std::string starQualifier;
    std::string alias;
};

struct OrderItem {
    ExprPtr expr;
    bool descending = false;
};

struct JoinClause {
    enum class Kind { Inner, Left } kind = Kind::Inner;
    TableRef table;
    std::shared_ptr<Expr> on;
};

struct SelectStmt {
    bool distinct = false;
    std::optional<long> top;
    std::vector<SelectItem> items;
    std::optional<TableRef> into;
    std::optional<TableRef> from;
    std::vector<JoinClause> joins;  // FROM a INNER JOIN b ON … LEFT JOIN c ON …, left to right
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    ExprPtr having;
    std::vector<OrderItem> orderBy;
};

struct InsertStmt {
    TableRef target;
    std::vector<std::string> columns;
    std::vector<ExprPtr> values;
    std::shared_ptr<SelectStmt> select;
};

struct UpdateStmt {
    TableRef table;
    std::vector<std::pair<std::string, ExprPtr>> assignments;
    ExprPtr where;
};

struct DeleteStmt {
    TableRef table;
    ExprPtr where;
};

struct AlterAddColumnStmt {
    std::string table;
    ColumnDef column;
};

struct CreateIndexStmt {
    std::string table;
    IndexDef index;
};

using Statement = std::variant<SelectStmt, InsertStmt, UpdateStmt, DeleteStmt, AlterAddColumnStmt,
                               CreateIndexStmt>;

// Throws sql::Error in Jet's words for a statement it cannot parse, and
// sql::Unsupported for Jet SQL this engine does not run.
Statement parseStatement(std::string_view sql);

// The column type named by a Jet SQL type word ("TEXT", "SHORT", "LONG" …).
std::optional<ColumnType> columnTypeFromWord(std::string_view word, bool& autoIncrement);

}  // namespace sql

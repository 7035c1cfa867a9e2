#pragma once
// A SELECT's FROM and WHERE rendered for PostgreSQL. The server narrows the
// rows; the SQL layer tests each row it sends on the WHERE again with Jet's
// own rules, so a condition rendered here only has to let through every row
// Jet would take: what cannot be rendered faithfully is left out of an AND
// rather than guessed.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "jet/sql/binding.h"

namespace db::pg {

// A name in double quotes and a text in single quotes, each quote inside
// doubled, as the server reads them.
std::string ident(const std::string& name);
std::string literal(const std::string& text);

// No ORDER BY: the driver puts the rows in the order of their ids itself.
struct RenderedMatch {
    std::string sql;           // one row id per table of the source, then the columns
    std::vector<int> columns;  // the source's column of each fetched value
};

// nullopt when the joins cannot be carried (an ON other than number column
// equal to number column, a table of another database).
std::optional<RenderedMatch> renderMatch(
    const sql::detail::Source& source, const sql::Expr* where, const std::vector<bool>& fetch,
    const std::function<std::string(const std::string& table)>& idColumn);

}  // namespace db::pg

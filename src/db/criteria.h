#pragma once
// The criteria of ADO's Find and Filter: "Block Like '0010017'",
// "OrdnerName Like 'Arm*'", "Nr = 5", joined by AND and OR in a Filter.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/sql/executor.h"

namespace db {

class Criteria {
  public:
    // Throws ADO's errors: unknown field, malformed criteria.
    Criteria(const std::string& text, const std::vector<sql::ResultColumn>& columns,
             bool allowJoins);
    bool matches(const sql::Row& row) const;

    // A criterion that holds exactly for the rows whose value in one column
    // equals one text under Jet's case-insensitive comparison: a LIKE without
    // wildcards ("Block Like '0010017'"), or = with a text on a Text column.
    // Find looks such a text up instead of testing row after row.
    struct TextEquality {
        int column = -1;
        std::string folded;  // foldText() of the text asked for
        // "=": a row holding a number compares as a number, which no
        // lookup by text answers.
        bool numbersCompareAsNumbers = false;
    };
    std::optional<TextEquality> textEquality() const;
    // The form in which such criteria compare a non-null value (into out,
    // reusing its room): two values give the same text exactly when the
    // comparison finds them equal.
    static void foldText(const sql::Value& v, std::string& out);

    struct Node;

  private:
    std::shared_ptr<Node> root_;
    sql::ColumnType columnType_ = sql::ColumnType::Text;  // of a single comparison's column
};

}  // namespace db

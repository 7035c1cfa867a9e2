#pragma once
// The criteria of ADO's Find and Filter: "Block Like '0010017'",
// "OrdnerName Like 'Arm*'", "Nr = 5", joined by AND and OR in a Filter.
#include <memory>
#include <string>
#include <vector>

#include "jet/sql/executor.h"

namespace db {

class Criteria {
public:
    // Throws ADO's errors: unknown field, malformed criteria.
    Criteria(const std::string& text, const std::vector<sql::ResultColumn>& columns, bool allowJoins);
    bool matches(const sql::Row& row) const;

    struct Node;

private:
    std::shared_ptr<Node> root_;
};

}  // namespace db

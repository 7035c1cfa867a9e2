#pragma once
// One value of a result as the subcommands print CSV: the shape mdb-export
// prints, so that the two can be compared line by line.
#include <string>

#include "jet/sql/executor.h"

namespace cli {

std::string csvValue(const sql::Value& v, const sql::ResultColumn& column);

}  // namespace cli

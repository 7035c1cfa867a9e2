#pragma once
// Writable copies of the Access-made test files and reading them back.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/support/tx_support.h"
#include "jet/write/writer.h"

namespace rowstest {

using Scratch = txtest::TempDir;  // copies of test files, removed at the end
using txtest::fileBytes;

std::shared_ptr<jet::Database> openWritable(const std::string& path);
using jettest::exportRows;
// Every live row of the table in storage order.
std::vector<jet::Row> allRows(jet::Database& db, const std::string& table);
// checkDatabase() joined into one string (empty when the file is sound).
std::string faults(jet::Database& db);

}  // namespace rowstest

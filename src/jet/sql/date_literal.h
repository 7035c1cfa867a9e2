#pragma once
// Jet's #…# date literals.
#include <optional>
#include <string_view>

namespace sql {

// The OLE date (days since 30 December 1899, the time as the fraction) a
// literal names, or nothing when Jet would not read it as a date.
std::optional<double> parseDateLiteral(std::string_view text);

}  // namespace sql

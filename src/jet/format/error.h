#pragma once
// The one exception type of the Jet engine. number() carries Jet's own error
// number where the condition has one (e.g. 3049 "cannot open database, it is
// not a database or is corrupt"), otherwise 0.
#include <cstdint>
#include <stdexcept>
#include <string>

namespace jet {

class Error : public std::runtime_error {
  public:
    explicit Error(const std::string& message, long number = 0)
        : std::runtime_error(message), number_(number) {}
    long number() const { return number_; }

  private:
    long number_;
};

// Jet's numbers for the conditions the reader meets.
namespace errnum {
constexpr long kNotDatabase = 3343;  // "Unrecognized database format"
constexpr long kCorrupt = 3049;      // "Cannot open database ... may be corrupt"
constexpr long kFileNotFound = 3024;
constexpr long kNoSuchTable = 3078;
constexpr long kNoSuchColumn = 3265;
constexpr long kReadOnly = 3027;  // "Cannot update. Database or object is read-only."
constexpr long kLocked = 3218;    // "Could not update; currently locked."
}  // namespace errnum

// "corrupt page N: what"
[[noreturn]] void throwCorrupt(std::uint32_t page, const std::string& what);

}  // namespace jet

#pragma once
// Turning a row of values into the bytes Jet 4 stores: the inverse of
// RowDecoder. Layout: u16 column count, the fixed columns at their offsets,
// the variable data, end-of-data, the variable offsets in reverse order, the
// variable count and the null mask (Boolean values live only in the mask).
#include <cstdint>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"

namespace jet {

// Jet's numbers for the refusals of row writes.
namespace rowerr {
constexpr long kFieldTooSmall = 3163;  // text longer than its column
constexpr long kConversion = 3421;     // "Data type conversion error."
constexpr long kRequired = 3314;       // Null in a required column
constexpr long kRecordTooLarge = 3047;
constexpr long kDuplicate = 3022;
constexpr long kNullKey = 3058;  // "Index or primary key cannot contain a Null value."
constexpr long kRecordDeleted = 3167;
// Jet's own words for kDuplicate and kNullKey (two spaces between
// sentences, as Jet writes them).
inline constexpr const char* kDuplicateMessage =
    "The changes you requested to the table were not successful because they would create "
    "duplicate values in the index, primary key, or relationship.  Change the data in the field "
    "or fields that contain duplicate data, remove the index, or redefine the index to permit "
    "duplicate entries and try again.";
inline constexpr const char* kNullKeyMessage = "Index or primary key cannot contain a Null value.";
}  // namespace rowerr

class RowEncoder {
  public:
    explicit RowEncoder(const TableDef& def);

    // Throws jet::Error (with Jet's number) for a row that does not fit the
    // table: wrong number of values, a value of another type, text longer
    // than its column, Null in a required column. Autonumbers must have been
    // filled in before.
    void check(const Row& row) const;
    // The bytes a Memo or OLE value keeps in its long value (Memo text in
    // Jet's text form, compressed where the column allows it).
    Binary longValueData(const Column& c, const Value& v) const;
    // fields, when given, holds for each Memo/OLE column (by position in
    // TableDef::columns) its 12-byte long value field with any inline data
    // following; an empty entry stores the value inline.
    Binary encode(const Row& row, const std::vector<Binary>* fields = nullptr) const;
    // Bytes of a row whose columns are all Null.
    std::size_t minimumSize() const;

  private:
    Binary scalarBytes(const Column& c, const Value& v, std::size_t n) const;
    // A number, date or GUID into size zeroed bytes at p; false for other types.
    bool putScalar(const Column& c, const Value& v, std::uint8_t* p, std::size_t size) const;
    const TableDef& def_;
    std::uint16_t numCols_ = 0;
    std::uint16_t varLen_ = 0;
    std::size_t fixedLen_ = 0;
};

// The 12-byte field of a long value stored inside the row, data following.
Binary inlineLongValue(const Binary& data);

}  // namespace jet

#pragma once
// Owners (MSysObjects.Owner) and access entries (MSysACEs) for the objects
// the engine creates, as Jet writes them for the default user "Admin".
//
// Jet stores every security identifier masked with a stream it derives
// from the creation date in the file header; the same identifier reads
// differently in files made at different moments. The derivation is not
// public, so a new database carries the header creation date of an
// Access 2000-made file together with that file's masked identifiers (the
// files of shared/testdata made on 2004-06-05 13:07 hold exactly these).
// In an existing file the mask is learnt from the file itself: the Tables
// container belongs to the engine's own identifier.
#include <cstdint>
#include <vector>

#include "jet/format/value.h"

namespace jet {

class Database;

namespace security {

// The header creation date (as its 8 stored bytes) under which the
// identifiers below are masked.
constexpr std::uint64_t kCreationDateBits = 0x40E29FF17D1F72BCull;

struct AccessEntry {
    Binary sid;
    std::int32_t rights = 0;
    bool inheritable = false;  // handed on to objects created in a container
    bool operator==(const AccessEntry&) const = default;
};

struct ObjectAccess {
    Binary owner;  // empty: no owner known
    std::vector<AccessEntry> entries;
};

// The owner and entries Jet gives the objects of a new database: the
// Tables, Databases and Relationships containers, MSysDb and the four
// system tables (by their MSysObjects ids). Other ids get none.
ObjectAccess forNewDatabase(std::int32_t objectId);

// What a table the default user creates in db gets: Admin as owner, and
// the Tables container's inheritable entries, Creator standing for Admin.
// Nothing when the container carries no owner to learn the mask from
// (files Jet did not write).
ObjectAccess forNewTable(Database& db);

// The MSysACEs rows that record entries for objectId, for the writer to
// insert; none when entries is empty or MSysACEs lacks one of their columns.
std::vector<Row> entryRows(Database& db, std::int32_t objectId,
                           const std::vector<AccessEntry>& entries);

}  // namespace security
}  // namespace jet

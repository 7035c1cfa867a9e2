// The identifiers and rights below are those Access 2000 wrote into the
// files of shared/testdata (compared object by object in tests/jet/write).
// Unmasked, as Jet 3 files store them, the built-in identifiers are two
// bytes: the engine 02 03 (owner of Jet's own objects), the default user
// Admin 03 01, the Users group 02 01 and Creator 02 04, a stand-in for
// whoever creates an object in a container. The Admins group's identifier
// comes from the workgroup file of the machine that made the file; a new
// database carries the one of the Access-made files, and every user gets
// in through Admin and Users, which are the same in all workgroups.
#include "jet/write/security_writer.h"

#include <algorithm>

#include "jet/read/database.h"
#include "jet/read/table.h"

namespace jet::security {

namespace {

const Binary kEngine{0x02, 0x03};
const Binary kAdmin{0x03, 0x01};
const Binary kUsers{0x02, 0x01};
const Binary kCreator{0x02, 0x04};

// The start of the mask stream for kCreationDateBits.
const Binary kMask{0xA5, 0x32};

// The Admins group of the Access-made files, masked for kCreationDateBits.
const Binary kAdmins{0xA4, 0xF7, 0x46, 0x67, 0xE1, 0x71, 0x67, 0xEE, 0xD7, 0xB1, 0x0F, 0x8F, 0xFE,
                     0xEF, 0x76, 0xFF, 0xAA, 0xE3, 0x66, 0x51, 0x05, 0xBD, 0xD2, 0x9D, 0x4D, 0x4B,
                     0x39, 0x52, 0xD9, 0xFB, 0x9A, 0x07, 0x66, 0x0C, 0x5B, 0xD2, 0xD8, 0x7D, 0xDD,
                     0xB3, 0x1E, 0x65, 0x90, 0x19, 0x00, 0x94, 0x89, 0xC2, 0x3C, 0x25, 0x6A, 0xCF,
                     0xDB, 0x34, 0x9A, 0x57, 0xAF, 0x50, 0xC5, 0x14, 0x9A, 0x98, 0x30, 0xE6, 0x2C,
                     0x35, 0x55, 0x3F, 0x0E, 0x95, 0xCF, 0xB6, 0xEC, 0xB5, 0x70, 0xB2, 0xF0, 0xA9,
                     0x9B, 0x1C, 0xDB, 0xCE, 0x60, 0x74, 0x7B, 0x7B, 0x13, 0xCF, 0x1D, 0xAF, 0xC3,
                     0xD6, 0x18, 0x5F, 0x9C, 0x5B, 0xE4, 0xE8, 0x7E, 0x37, 0xED, 0xB3};

Binary masked(const Binary& sid, const Binary& mask) {
    Binary out = sid;
    for (std::size_t i = 0; i < out.size() && i < mask.size(); ++i) out[i] ^= mask[i];
    return out;
}

// Rights as DAO names their bits.
constexpr std::int32_t kFullAccess = 0xFFFFF;
constexpr std::int32_t kAllButReserved = 0xFFEFF;      // what Access grants on tables
constexpr std::int32_t kCreatorOfContainer = 0xF00FE;  // all but Create and the reserved bit
constexpr std::int32_t kSecurity = 0x60000;            // read and change permissions
constexpr std::int32_t kSecurityAndOwner = 0xE0000;    // ... and take ownership
constexpr std::int32_t kReadData = 0x14;               // read design and data
constexpr std::int32_t kReplaceData = 0x40;
constexpr std::int32_t kCreate = 0x01;
constexpr std::int32_t kOpenExclusiveAdminister = 0x0E;  // on the database

// MSysObjects ids of the objects a new database holds.
constexpr std::int32_t kTablesContainer = 0x0F000001;
constexpr std::int32_t kDatabasesContainer = 0x0F000002;
constexpr std::int32_t kRelationshipsContainer = 0x0F000003;
constexpr std::int32_t kMSysDb = 0x10000000;
constexpr std::int32_t kMSysObjects = 2, kMSysACEs = 3, kMSysQueries = 4, kMSysRelationships = 5;

}  // namespace

ObjectAccess forNewDatabase(std::int32_t id) {
    const Binary engine = masked(kEngine, kMask), admin = masked(kAdmin, kMask),
                 users = masked(kUsers, kMask), creator = masked(kCreator, kMask);
    const Binary& admins = kAdmins;
    auto entry = [](const Binary& sid, std::int32_t rights, bool inheritable = false) {
        return AccessEntry{sid, rights, inheritable};
    };
    switch (id) {
        case kTablesContainer:
            return {engine,
                    {entry(creator, kCreatorOfContainer, true), entry(admin, kAllButReserved, true),
                     entry(admins, kAllButReserved, true), entry(users, kAllButReserved, true)}};
        case kDatabasesContainer:
            return {engine, {entry(admin, kSecurity)}};
        case kRelationshipsContainer:
            return {engine,
                    {entry(creator, kCreatorOfContainer, true), entry(admin, kSecurity | kCreate),
                     entry(admins, kFullAccess, true), entry(users, kFullAccess, true)}};
        case kMSysDb:
            return {admin,
                    {entry(admin, kSecurity | kOpenExclusiveAdminister),
                     entry(users, kOpenExclusiveAdminister),
                     entry(admins, kSecurity | kOpenExclusiveAdminister)}};
        case kMSysObjects:
            return {engine,
                    {entry(admin, kSecurity), entry(admins, kSecurity | kReadData | kReplaceData),
                     entry(users, kReadData)}};
        case kMSysACEs:
            return {engine,
                    {entry(admin, kSecurity), entry(admins, kSecurity | kReadData | kReplaceData)}};
        case kMSysQueries:
            return {engine,
                    {entry(admin, kSecurity), entry(admins, kSecurity | kReadData),
                     entry(users, kReadData)}};
        case kMSysRelationships:
            return {engine,
                    {entry(admin, kSecurityAndOwner), entry(admins, kSecurity | kReadData),
                     entry(users, kReadData)}};
        default:
            return {};
    }
}

ObjectAccess forNewTable(Database& db) {
    const CatalogEntry* tables = db.findObject("Tables", objtype::kContainer);
    if (!tables) return {};
    Table objects = db.table("MSysObjects");
    auto row = objects.read(tables->row);
    const int ownerAt = objects.columnPosition("Owner");
    if (!row || ownerAt < 0) return {};
    const Binary* owner = std::get_if<Binary>(&(*row)[std::size_t(ownerAt)]);
    if (!owner || owner->size() != kEngine.size()) return {};
    const Binary mask = masked(*owner, kEngine);
    ObjectAccess out;
    out.owner = masked(kAdmin, mask);
    const Binary creator = masked(kCreator, mask);
    if (!db.hasTable("MSysACEs")) return out;
    Table aces = db.table("MSysACEs");
    const int objectAt = aces.columnPosition("ObjectId"), sidAt = aces.columnPosition("SID"),
              rightsAt = aces.columnPosition("ACM"),
              inheritAt = aces.columnPosition("FInheritable");
    if (objectAt < 0 || sidAt < 0 || rightsAt < 0 || inheritAt < 0) return out;
    aces.scan([&](RowId, const Row& r) {
        const auto* object = std::get_if<std::int32_t>(&r[std::size_t(objectAt)]);
        const auto* sid = std::get_if<Binary>(&r[std::size_t(sidAt)]);
        const auto* rights = std::get_if<std::int32_t>(&r[std::size_t(rightsAt)]);
        const auto* inherit = std::get_if<bool>(&r[std::size_t(inheritAt)]);
        if (!object || *object != tables->id || !sid || !rights || !inherit || !*inherit)
            return true;
        const Binary& who = *sid == creator ? out.owner : *sid;
        auto same = std::find_if(out.entries.begin(), out.entries.end(),
                                 [&](const AccessEntry& e) { return e.sid == who; });
        if (same != out.entries.end())
            same->rights |= *rights;
        else
            out.entries.push_back({who, *rights, false});
        return true;
    });
    return out;
}

std::vector<Row> entryRows(Database& db, std::int32_t objectId,
                           const std::vector<AccessEntry>& entries) {
    std::vector<Row> rows;
    if (entries.empty()) return rows;
    auto def = db.tableDef("MSysACEs");
    const int objectAt = def->columnPosition("ObjectId"), sidAt = def->columnPosition("SID"),
              rightsAt = def->columnPosition("ACM"),
              inheritAt = def->columnPosition("FInheritable");
    if (objectAt < 0 || sidAt < 0 || rightsAt < 0 || inheritAt < 0) return rows;
    for (const AccessEntry& e : entries) {
        Row row(def->columns.size());
        row[std::size_t(objectAt)] = objectId;
        row[std::size_t(sidAt)] = e.sid;
        row[std::size_t(rightsAt)] = e.rights;
        row[std::size_t(inheritAt)] = e.inheritable;
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace jet::security

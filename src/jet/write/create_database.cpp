// A new, empty Jet 4 database laid out the way Jet lays out a fresh file:
// the header on page 0, the global usage map on page 1, the definitions of
// the four system tables on pages 2 to 5, their usage maps on page 6, their
// (empty) index roots on pages 7 to 13 and the catalogue rows after that.
// The catalogue rows go in through the ordinary writer, so the indexes of
// MSysObjects are built by the same code that keeps them later. As in a
// file Access 2000 makes, the objects carry owners and access entries and
// MSysDb the database properties naming the Access version.
#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "jet/format/error.h"
#include "jet/format/format.h"
#include "jet/read/database.h"
#include "jet/read/header.h"
#include "jet/write/data_writer.h"
#include "jet/write/index_page_writer.h"
#include "jet/write/security_writer.h"
#include "jet/write/tdef_writer.h"
#include "jet/write/writer.h"

namespace jet {

namespace {

// Jet 4.0 SP8 (4.0.8618), the build that writes its number into new headers.
constexpr std::uint16_t kJetBuild = 8618;
constexpr std::uint16_t kCodePage1252 = 1252;
constexpr std::uint16_t kGeneralSort = 0x409;
// The column-descriptor and header word Access writes into every definition.
constexpr std::uint32_t kDescriptorTag = 0x659;
// The real-index word that precedes each index's count block.
constexpr std::uint32_t kRealIndexTag = 0x783;

constexpr std::uint32_t kHeaderPage = 0;
constexpr std::uint32_t kMapsPage = 6;
constexpr std::uint32_t kFirstIndexRoot = 7;

// MSysObjects ids of the objects Jet itself creates.
constexpr std::int32_t kRootContainer = 0x0F000000;
constexpr std::int32_t kTablesContainer = 0x0F000001;
constexpr std::int32_t kDatabasesContainer = 0x0F000002;
constexpr std::int32_t kRelationshipsContainer = 0x0F000003;
constexpr std::int32_t kMSysDb = 0x10000000;
constexpr std::int32_t kJetObject = std::int32_t(0x80000000u);

double nowAsDate() { return double(std::time(nullptr)) / 86400.0 + 25569.0; }

// The header keeps the creation date the masked security identifiers
// belong to (see security_writer.h); the catalogue rows carry the real one.
double headerCreationDate() {
    double d;
    std::memcpy(&d, &security::kCreationDateBits, sizeof d);
    return d;
}

void putText16(Binary& b, std::u16string_view s) {
    for (char16_t c : s) {
        b.push_back(std::uint8_t(c & 0xFF));
        b.push_back(std::uint8_t(c >> 8));
    }
}
void put16le(Binary& b, std::uint32_t v) {
    b.push_back(std::uint8_t(v));
    b.push_back(std::uint8_t(v >> 8));
}
void put32le(Binary& b, std::uint32_t v) {
    put16le(b, v & 0xFFFF);
    put16le(b, v >> 16);
}

// The database properties Access 2000 gives a new file (MSysDb's LvProp):
// "MR2\0", a chunk naming the properties and an unnamed chunk of values,
// AccessVersion "08.50" and Build 6620. Readers tell an Access 2000 file
// from a bare Jet 4 one by AccessVersion.
Binary accessProperties() {
    struct Property {
        std::u16string_view name;
        std::uint8_t type;
        Binary value;
    };
    Binary version;
    putText16(version, u"08.50");
    Binary build;
    put32le(build, 6620);
    const Property props[] = {{u"AccessVersion", std::uint8_t(ColumnType::Text), version},
                              {u"Build", std::uint8_t(ColumnType::Long), build}};
    Binary names, values;
    for (const Property& p : props) {
        put16le(names, std::uint32_t(p.name.size() * 2));
        putText16(names, p.name);
    }
    put32le(values, 6);  // the chunk's name block: its length and an empty name
    put16le(values, 0);
    for (std::size_t i = 0; i < std::size(props); ++i) {
        put16le(values, std::uint32_t(8 + props[i].value.size()));
        values.push_back(0);  // not a DDL property
        values.push_back(props[i].type);
        put16le(values, std::uint32_t(i));
        put16le(values, std::uint32_t(props[i].value.size()));
        values.insert(values.end(), props[i].value.begin(), props[i].value.end());
    }
    Binary out{'M', 'R', '2', 0};
    auto chunk = [&](std::uint16_t type, const Binary& body) {
        put32le(out, std::uint32_t(6 + body.size()));
        put16le(out, type);
        out.insert(out.end(), body.begin(), body.end());
    };
    chunk(0x0080, names);
    chunk(0x0000, values);
    return out;
}

PageBytes headerPage(double created) {
    PageBytes p(kPageSize, 0);
    std::uint8_t* b = p.data();
    b[1] = 0x01;
    std::memcpy(b + header::kFormatId, "Standard Jet DB", 16);
    put32(b + header::kVersion, 1);
    // The masked region as Jet fills it for a new file (plain text here,
    // masked below): a run of small counters, code page, no database key,
    // the empty password masked by the creation date, Jet's build number,
    // the sort order and the creation date itself.
    static const std::uint8_t counters[24] = {0, 1, 0, 0, 1, 1, 0, 0, 2, 0, 0, 0,
                                              3, 0, 0, 0, 4, 0, 0, 0, 5, 0, 0, 0};
    std::memcpy(b + header::kMaskStart, counters, sizeof counters);
    put16(b + header::kCodePage, kCodePage1252);
    put32(b + header::kDatabaseKey, 0);
    const std::uint32_t dateMask = std::uint32_t(std::int32_t(std::floor(created)));
    for (std::size_t i = 0; i < 40; i += 4) put32(b + header::kPassword + i, dateMask);
    put16(b + header::kSortOrder - 4, kJetBuild);
    put16(b + header::kSortOrder, kGeneralSort);
    std::memcpy(b + header::kCreationDate, &created, sizeof created);
    maskHeader(b);
    // Outside the mask: the engine version text and the table of page
    // counters Jet keeps at the end of the header page.
    put16(b + 0x98, 0x0654);
    std::memcpy(b + 0x9C, "4.0", 3);
    for (std::size_t i = 0xE00; i < kPageSize; i += 2) b[i + 1] = 0x01;
    b[0xE00] = 0x01;
    return p;
}

// An inline usage map row: type 0, first page 0, 64 bytes of page bits.
Binary inlineMap(const std::vector<std::uint32_t>& pages) {
    Binary row(69, 0);
    for (std::uint32_t n : pages) row[5 + n / 8] |= std::uint8_t(1u << (n % 8));
    return row;
}

struct SysColumn {
    const char* name;
    ColumnType type;
    std::uint16_t length;  // bytes; 0 for long values
};

// A system table definition with Jet's column layout: fixed columns packed
// in order, variable ones numbered in order, every column "nullable".
TableDef systemTable(std::uint32_t page, const char* name, const std::vector<SysColumn>& cols) {
    TableDef d;
    d.page = page;
    d.pages = {page};
    d.name = name;
    d.tableType = 0x53;
    d.autoNumberFlag = 1;
    std::uint16_t fixedAt = 0, varSlot = 0;
    for (const SysColumn& sc : cols) {
        Column c;
        c.name = sc.name;
        c.type = sc.type;
        c.tableId = kDescriptorTag;
        c.number = std::uint16_t(d.columns.size());
        c.sortOrder = kGeneralSort;
        const bool variable = sc.type == ColumnType::Text || sc.type == ColumnType::Binary ||
                              sc.type == ColumnType::Memo || sc.type == ColumnType::OLE;
        c.varIndex = varSlot;
        c.length = sc.length;
        if (variable) {
            c.flags = colflag::kNullable | colflag::kReplication;
            ++varSlot;
        } else {
            c.flags = colflag::kFixed | colflag::kNullable | colflag::kReplication;
            if (sc.type != ColumnType::Boolean) {
                c.fixedOffset = fixedAt;
                fixedAt = std::uint16_t(fixedAt + sc.length);
            }
        }
        d.columns.push_back(c);
    }
    d.maxColumns = d.columnCount = std::uint16_t(d.columns.size());
    d.varColumnCount = varSlot;
    return d;
}

// flags: the byte Access writes for each system index (idxflag::).
void addIndex(TableDef& d, const char* name, std::vector<std::uint16_t> columns, bool primary,
              std::uint8_t flags) {
    RealIndex ri;
    ri.unknownA = kRealIndexTag;
    for (std::uint16_t c : columns) ri.columns.push_back({c, true});
    ri.flags = flags;
    Index li;
    li.name = name;
    li.number = std::uint32_t(d.indexes.size());
    li.realIndex = std::uint32_t(d.realIndexes.size());
    li.type = primary ? 1 : 0;
    d.realIndexes.push_back(ri);
    d.indexes.push_back(li);
}

std::vector<TableDef> systemTables() {
    using T = ColumnType;
    std::vector<TableDef> out;
    TableDef objects = systemTable(2, "MSysObjects",
                                   {{"Id", T::Long, 4},
                                    {"ParentId", T::Long, 4},
                                    {"Name", T::Text, 510},
                                    {"Type", T::Integer, 2},
                                    {"DateCreate", T::DateTime, 8},
                                    {"DateUpdate", T::DateTime, 8},
                                    {"Owner", T::Binary, 510},
                                    {"Flags", T::Long, 4},
                                    {"Database", T::Memo, 0},
                                    {"Connect", T::Memo, 0},
                                    {"ForeignName", T::Text, 510},
                                    {"RmtInfoShort", T::Binary, 510},
                                    {"RmtInfoLong", T::OLE, 0},
                                    {"Lv", T::OLE, 0},
                                    {"LvProp", T::OLE, 0},
                                    {"LvModule", T::OLE, 0},
                                    {"LvExtra", T::OLE, 0}});
    addIndex(objects, "ParentIdName", {1, 2}, false, 0x81);
    addIndex(objects, "Id", {0}, true, 0x81);
    out.push_back(std::move(objects));

    TableDef aces = systemTable(3, "MSysACEs",
                                {{"ObjectId", T::Long, 4},
                                 {"SID", T::Binary, 510},
                                 {"ACM", T::Long, 4},
                                 {"FInheritable", T::Boolean, 1}});
    aces.columns[3].flags = colflag::kFixed | colflag::kNullable | colflag::kReplication;
    addIndex(aces, "ObjectId", {0}, false, 0x88);
    out.push_back(std::move(aces));

    TableDef queries = systemTable(4, "MSysQueries",
                                   {{"ObjectId", T::Long, 4},
                                    {"Attribute", T::Byte, 1},
                                    {"Order", T::Binary, 510},
                                    {"Name1", T::Text, 510},
                                    {"Name2", T::Text, 510},
                                    {"Expression", T::Memo, 0},
                                    {"Flag", T::Integer, 2},
                                    {"LvExtra", T::Long, 4}});
    addIndex(queries, "ObjectIdAttribute", {0, 1, 2}, true, 0x81);
    out.push_back(std::move(queries));

    TableDef rels = systemTable(5, "MSysRelationships",
                                {{"szRelationship", T::Text, 510},
                                 {"grbit", T::Long, 4},
                                 {"ccolumn", T::Long, 4},
                                 {"icolumn", T::Long, 4},
                                 {"szObject", T::Text, 510},
                                 {"szColumn", T::Text, 510},
                                 {"szReferencedObject", T::Text, 510},
                                 {"szReferencedColumn", T::Text, 510}});
    addIndex(rels, "szRelationship", {0}, false, 0x82);
    addIndex(rels, "szObject", {4}, false, 0x82);
    addIndex(rels, "szReferencedObject", {6}, false, 0x82);
    out.push_back(std::move(rels));
    return out;
}

// Pages 0 to 13: everything but the catalogue rows.
std::vector<std::uint8_t> skeleton(double created) {
    std::vector<TableDef> tables = systemTables();
    DataPage maps(kMapsPage, 0);
    auto newMap = [&](const std::vector<std::uint32_t>& pages) {
        return RowId{kMapsPage, maps.add(inlineMap(pages))}.pointer();
    };
    std::uint32_t root = kFirstIndexRoot;
    std::vector<idxpage::Page> roots;
    for (TableDef& d : tables) {
        d.usedPages = newMap({});
        d.freePages = newMap({});
        for (const Column& c : d.columns)
            if (c.type == ColumnType::Memo || c.type == ColumnType::OLE) {
                VarColumnMaps v;
                v.columnNumber = c.number;
                v.usedPages = newMap({});
                v.freePages = newMap({});
                d.varColumnMaps.push_back(v);
            }
        for (RealIndex& ri : d.realIndexes) {
            ri.usedPages = newMap({root});
            ri.rootPage = root;
            idxpage::Page leaf;
            leaf.number = root;
            leaf.leaf = true;
            leaf.tdefPage = d.page;
            roots.push_back(leaf);
            ++root;
        }
    }
    std::vector<std::uint8_t> image(std::size_t(root) * kPageSize, 0);
    auto put = [&](std::uint32_t n, const PageBytes& page) {
        std::memcpy(image.data() + std::size_t(n) * kPageSize, page.data(), kPageSize);
    };
    put(kHeaderPage, headerPage(created));
    DataPage global(kGlobalUsageMapPage, 1);
    global.add(inlineMap({}));
    global.add(Binary(69, 0));
    put(kGlobalUsageMapPage, global.encode());
    for (const TableDef& d : tables) put(d.page, tableDefPages(d, {d.page}).front());
    put(kMapsPage, maps.encode());
    for (const idxpage::Page& leaf : roots) put(leaf.number, idxpage::encode(leaf));
    return image;
}

// Jet's global map marks the pages it may hand out again; every page past
// the end of the file counts as such.
void markPagesPastEnd(std::vector<std::uint8_t>& image) {
    const std::uint32_t count = std::uint32_t(image.size() / kPageSize);
    PageBytes page(image.begin() + kPageSize, image.begin() + 2 * kPageSize);
    const std::size_t at = u16(page.data() + datapage::kRowTable) & datapage::kOffsetMask;
    for (std::uint32_t n = count; n < 64 * 8; ++n)
        page[at + 5 + n / 8] |= std::uint8_t(1u << (n % 8));
    std::memcpy(image.data() + kPageSize, page.data(), kPageSize);
}

}  // namespace

std::vector<std::uint8_t> emptyDatabaseImage() {
    const double created = nowAsDate();
    auto store = std::make_unique<MemoryPageStore>(skeleton(headerCreationDate()), true);
    MemoryPageStore* raw = store.get();
    auto db = Database::fromStore(std::move(store));
    Writer w(db);
    auto sys = db->tableDefAt(kCatalogueTdefPage, "MSysObjects");
    auto add = [&](std::int32_t id, std::int32_t parent, const char* name, std::int16_t type) {
        Row row(sys->columns.size());
        row[0] = id;
        row[1] = parent;
        row[2] = std::string(name);
        row[3] = type;
        row[4] = DateTime{created};
        row[5] = DateTime{created};
        row[7] = kJetObject;
        const security::ObjectAccess access = security::forNewDatabase(id);
        if (!access.owner.empty()) row[6] = access.owner;
        if (id == kMSysDb) row[14] = accessProperties();
        w.insert("MSysObjects", row);
    };
    const std::int32_t ids[] = {
        kTablesContainer, kDatabasesContainer, kRelationshipsContainer, kMSysDb, 2, 3, 4, 5};
    db->begin();
    add(ids[0], kRootContainer, "Tables", objtype::kContainer);
    add(ids[1], kRootContainer, "Databases", objtype::kContainer);
    add(ids[2], kRootContainer, "Relationships", objtype::kContainer);
    add(ids[3], kDatabasesContainer, "MSysDb", objtype::kDatabase);
    add(ids[4], kTablesContainer, "MSysObjects", objtype::kTable);
    add(ids[5], kTablesContainer, "MSysACEs", objtype::kTable);
    add(ids[6], kTablesContainer, "MSysQueries", objtype::kTable);
    add(ids[7], kTablesContainer, "MSysRelationships", objtype::kTable);
    // MSysACEs is known by name once its catalogue row is there.
    db->reload();
    for (std::int32_t id : ids)
        for (Row& ace : security::entryRows(*db, id, security::forNewDatabase(id).entries))
            w.insert("MSysACEs", ace);
    db->commit();
    std::vector<std::uint8_t> image = raw->bytes();
    markPagesPastEnd(image);
    return image;
}

void createDatabase(const std::string& path) {
    std::error_code ec;
    // Never overwrite a library that is already there.
    if (std::filesystem::exists(std::filesystem::u8path(path), ec))
        throw Error("Database '" + path + "' already exists.", 3204);
    const std::vector<std::uint8_t> image = emptyDatabaseImage();
    {
        std::ofstream out(std::filesystem::u8path(path), std::ios::binary | std::ios::trunc);
        if (out)
            out.write(reinterpret_cast<const char*>(image.data()), std::streamsize(image.size()));
        if (out) out.flush();
        if (out) return;
    }
    std::filesystem::remove(std::filesystem::u8path(path), ec);
    throw Error("cannot write " + path + ": " + std::strerror(errno));
}

}  // namespace jet

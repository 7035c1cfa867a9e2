#pragma once
// A Jet 4 database file: header, catalogue (MSysObjects), table definitions
// and relationships. Opening reads only the header and the catalogue; the
// rest is read on demand through the page cache.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jet/format/error.h"
#include "jet/format/value.h"
#include "jet/read/header.h"
#include "jet/read/table_def.h"
#include "jet/store/page_file.h"

namespace jet {

class Table;

// MSysObjects "Type" values.
namespace objtype {
constexpr std::int16_t kTable = 1;
constexpr std::int16_t kDatabase = 2;
constexpr std::int16_t kContainer = 3;
constexpr std::int16_t kLinkedOdbc = 4;
constexpr std::int16_t kQuery = 5;
constexpr std::int16_t kLinkedTable = 6;
constexpr std::int16_t kRelationship = 8;
}  // namespace objtype
// MSysObjects "Flags" bits that mark system tables.
constexpr std::uint32_t kSystemObjectFlags = 0x80000002u;

struct CatalogEntry {
    std::int32_t id = 0;  // for tables: the TDEF page in the low 24 bits
    std::int32_t parentId = 0;
    std::string name;
    std::int16_t type = 0;
    std::uint32_t flags = 0;
    RowId row;  // where the MSysObjects row lies
    std::uint32_t tdefPage() const { return std::uint32_t(id) & 0x00FFFFFF; }
    bool isSystem() const { return (flags & kSystemObjectFlags) != 0; }
};

struct Relationship {
    std::string name;
    std::string table;  // the referring (foreign key) table: szObject
    std::vector<std::string> columns;
    std::string relatedTable;  // the referenced table: szReferencedObject
    std::vector<std::string> relatedColumns;
    std::int32_t flags = 0;  // grbit
};

struct OpenOptions {
    bool writable = false;
    std::size_t cachePages = 1024;  // 4 MB
    // How long a lock held by another process is waited for before the
    // operation fails with "Could not update; currently locked.", and whom
    // to tell while it lasts.
    filelock::Wait lockWait = {};
};

class Database : public std::enable_shared_from_this<Database> {
  public:
    // Throws jet::Error: file missing, "not a Jet database", "unsupported Jet version N",
    // "corrupt page N: ...".
    static std::shared_ptr<Database> open(const std::string& path, OpenOptions options = {});
    static std::shared_ptr<Database> fromMemory(std::vector<std::uint8_t> bytes);
    static std::shared_ptr<Database> fromStore(std::unique_ptr<PageStore> store,
                                               OpenOptions options = {});

    const DatabaseHeader& header() const { return header_; }
    // Bytes past the last whole page when the file was opened: Jet writes
    // whole pages only, so any are the remains of a cut or a torn write.
    std::size_t partialPageBytes() const { return partialPageBytes_; }
    PageCache& pages() { return *pages_; }

    // Every row of MSysObjects (read once; reload() reads again, and so
    // does the first call after another writer's commit was seen, so the
    // entries stay valid only while no other call of this Database looks
    // at the file: inside a run of reads or a unit, or until the next call).
    const std::vector<CatalogEntry>& catalogue();
    const CatalogEntry* findObject(const std::string& name, std::int16_t type = objtype::kTable);
    // Local tables, in catalogue order. System tables (MSys*) only on request.
    std::vector<std::string> tableNames(bool includeSystem = false);
    // Case-insensitive. Throws "no such table: NAME" (errnum::kNoSuchTable).
    std::shared_ptr<const TableDef> tableDef(const std::string& name);
    std::shared_ptr<const TableDef> tableDefAt(std::uint32_t tdefPage,
                                               const std::string& name = {});
    // Defined beside Table (table.cpp): Database reads through RowReader.
    Table table(const std::string& name);
    bool hasTable(const std::string& name);
    // Throws "corrupt page N: ..." unless the table can be read whole: its
    // definition parses and every page its usage map names lies in the file
    // and is a data page of the table. A scan passes over such a page, so a
    // caller listing or exporting tables asks this first rather than show a
    // table with rows missing.
    void verifyTable(const std::string& name);
    // Rows of MSysRelationships grouped by relationship name, columns in icolumn order.
    std::vector<Relationship> relationships();
    // Drops the cached catalogue and definitions (after the file was written).
    void reload();
    // Drops the cached definition read from tdefPage (after its TDEF was written).
    void forgetTableDef(std::uint32_t tdefPage) { defs_.erase(tdefPage); }
    // The row count and next autonumber a row write just put on the first
    // TDEF page: the cached definition takes them over instead of being
    // parsed again (in place when nobody else holds it, else as a copy, so
    // one handed out stays as it was).
    void setTableCounts(std::uint32_t tdefPage, std::uint32_t rows, std::uint32_t autoNumber);

    // Writing (a database opened writable). A unit of work: the pages
    // written between begin() and commit() reach the file all or nothing,
    // through a rollback journal beside the file ("<file>-journal") that the
    // next open rolls back when the process died in between. begin() takes
    // an exclusive operating-system lock on the file (waiting for another
    // writer) and drops what it cached when another writer committed since;
    // commit() writes the unit with the file's change counter raised, and
    // commit() and rollback() release the lock. Nested begin() calls count; only
    // the outermost commit() ends the unit; a rollback() at any depth ends
    // it. Until commit() the unit's pages live in memory, seen by this
    // Database only. Page reads from the file wait while another process's
    // commit writes, so no page is seen half written; cached pages, the
    // catalogue and the definitions are kept across statements and units
    // while the file's change counter shows no other writer's commit (rules
    // in store/page_file.h), and dropped when it does. Those waits end after
    // OpenOptions::lockWait with jet::Error errnum::kLocked, the file and
    // this Database as before the call.
    void begin();
    void commit();
    void rollback();
    bool inTransaction() const { return txDepth_ > 0; }
    bool writable() const;
    // A new zeroed page of the given type at the end of the file; its
    // number. Only inside a unit of work.
    std::uint32_t allocatePage(PageType type);

  private:
    Database() = default;
    void init(std::unique_ptr<PageStore> store, const OpenOptions& options);
    void verifyDataPages(const TableDef& def, const std::string& name);
    // Drops the catalogue, definitions and pages when the store has seen
    // another writer's commit since they were read.
    void forgetIfChanged();
    DatabaseHeader header_;
    std::size_t partialPageBytes_ = 0;
    std::unique_ptr<PageCache> pages_;
    bool catalogueRead_ = false;
    std::vector<CatalogEntry> catalogue_;
    std::map<std::uint32_t, std::shared_ptr<TableDef>> defs_;
    std::uint64_t seenChanges_ = 0;
    int txDepth_ = 0;
    std::string path_;          // empty for memory images
    std::shared_ptr<void> tx_;  // the journal and lock of the open unit (database_tx.cpp)
};

}  // namespace jet

#include "jet/read/database.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "jet/format/text.h"
#include "jet/read/row_reader.h"
#include "jet/store/journal.h"

namespace jet {

namespace {
// A run of reads around a call that may find the file changed (one look at
// its change counter, then one snapshot); none inside a run or a unit, where
// the store already trusts what it read and a lock would only cost a call.
class Looking {
  public:
    explicit Looking(PageStore& store) : store_(store.verified() ? nullptr : &store) {
        if (store_) store_->beginReads();
    }
    ~Looking() {
        if (store_) store_->endReads();
    }
    Looking(const Looking&) = delete;
    Looking& operator=(const Looking&) = delete;

  private:
    PageStore* store_;
};
}  // namespace

std::shared_ptr<Database> Database::open(const std::string& path, OpenOptions options) {
    // A writer that died inside its commit left the file half written.
    recoverHotJournal(path, options.lockWait);
    auto store = std::make_unique<FilePageStore>(path, options.writable);
    store->setLockWait(options.lockWait);
    auto db = fromStore(std::move(store), options);
    db->path_ = path;
    std::error_code ec;
    // UTF-8 as the rest of the engine: a narrow path means the ANSI code page on Windows.
    const auto bytes = std::filesystem::file_size(
        std::filesystem::path(std::u8string(path.begin(), path.end())), ec);
    if (!ec) db->partialPageBytes_ = std::size_t(bytes % kPageSize);
    return db;
}

std::shared_ptr<Database> Database::fromMemory(std::vector<std::uint8_t> bytes) {
    const std::size_t partial = bytes.size() % kPageSize;
    auto db = fromStore(std::make_unique<MemoryPageStore>(std::move(bytes)), {});
    db->partialPageBytes_ = partial;
    return db;
}

std::shared_ptr<Database> Database::fromStore(std::unique_ptr<PageStore> store,
                                              OpenOptions options) {
    std::shared_ptr<Database> db(new Database());
    db->init(std::move(store), options);
    return db;
}

void Database::init(std::unique_ptr<PageStore> store, const OpenOptions& options) {
    if (store->pageCount() < 1) throw Error("not a Jet database", errnum::kNotDatabase);
    pages_ = std::make_unique<PageCache>(std::move(store), options.cachePages);
    Looking reading(pages_->store());
    header_ = parseHeader(*pages_->page(0));
    if (pages_->pageCount() <= kCatalogueTdefPage)
        throwCorrupt(kCatalogueTdefPage, "beyond the end of the file");
    pages_->setDatabaseKey(header_.databaseKey);
    catalogue();  // a file whose catalogue cannot be read is refused at once
}

void Database::forgetIfChanged() {
    const std::uint64_t changes = pages_->store().changes();
    if (changes == seenChanges_) return;
    seenChanges_ = changes;
    catalogueRead_ = false;
    catalogue_.clear();
    defs_.clear();
    pages_->forgetIfChanged();
}

const std::vector<CatalogEntry>& Database::catalogue() {
    Looking look(pages_->store());
    forgetIfChanged();
    if (catalogueRead_) return catalogue_;
    auto def = tableDefAt(kCatalogueTdefPage, "MSysObjects");
    int cId = def->columnPosition("Id"), cParent = def->columnPosition("ParentId"),
        cName = def->columnPosition("Name"), cType = def->columnPosition("Type"),
        cFlags = def->columnPosition("Flags");
    if (cId < 0 || cName < 0 || cType < 0)
        throwCorrupt(kCatalogueTdefPage, "MSysObjects lacks its key columns");
    // A lost catalogue page would make its tables vanish without a word.
    // The pages checked are the pages then scanned, in the look's run of reads.
    verifyDataPages(*def, "MSysObjects");
    std::vector<CatalogEntry> out;
    auto asInt = [](const Value& v) -> std::int64_t {
        if (auto p = std::get_if<std::int32_t>(&v)) return *p;
        if (auto p = std::get_if<std::int16_t>(&v)) return *p;
        if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
        return 0;
    };
    RowReader(*pages_, *def).scan([&](RowId id, const Row& r) {
        CatalogEntry e;
        e.row = id;
        e.id = std::int32_t(asInt(r[std::size_t(cId)]));
        if (cParent >= 0) e.parentId = std::int32_t(asInt(r[std::size_t(cParent)]));
        if (auto s = std::get_if<std::string>(&r[std::size_t(cName)])) e.name = *s;
        e.type = std::int16_t(asInt(r[std::size_t(cType)]));
        if (cFlags >= 0) e.flags = std::uint32_t(asInt(r[std::size_t(cFlags)]));
        out.push_back(std::move(e));
        return true;
    });
    catalogue_ = std::move(out);
    catalogueRead_ = true;
    return catalogue_;
}

const CatalogEntry* Database::findObject(const std::string& name, std::int16_t type) {
    for (const CatalogEntry& e : catalogue())
        if (e.type == type && equalsNoCase(e.name, name)) return &e;
    return nullptr;
}

std::vector<std::string> Database::tableNames(bool includeSystem) {
    std::vector<std::string> out;
    for (const CatalogEntry& e : catalogue()) {
        if (e.type != objtype::kTable) continue;
        bool system = e.isSystem() || e.name.rfind("MSys", 0) == 0;
        if (system && !includeSystem) continue;
        out.push_back(e.name);
    }
    return out;
}

bool Database::hasTable(const std::string& name) { return findObject(name) != nullptr; }

void Database::verifyDataPages(const TableDef& def, const std::string& name) {
    const std::string what = "the usage map of table " + name + " names it as a data page, but it";
    ReadSection reading(pages_->store());
    UsageMap m = readUsageMap(*pages_, def.usedPages);
    if (m.outside > 0) {
        // Another process may have made the file longer since its length was read.
        pages_->store().refresh();
        m = readUsageMap(*pages_, def.usedPages);
    }
    if (m.outside > 0) throwCorrupt(m.firstOutside, what + " lies beyond the end of the file");
    for (std::uint32_t p : m.pages) {
        if (p == 0) continue;
        PageRef pg = pages_->page(p);
        if ((*pg)[0] != std::uint8_t(PageType::Data))
            throwCorrupt(p, what + " is a page of type " + std::to_string((*pg)[0]));
        if (u32(pg->data() + datapage::kTdefPage) != def.page)
            throwCorrupt(p, what + " belongs to another table");
    }
}

void Database::verifyTable(const std::string& name) {
    Looking reading(pages_->store());
    auto def = tableDef(name);
    verifyDataPages(*def, def->name);
}

std::shared_ptr<const TableDef> Database::tableDefAt(std::uint32_t page, const std::string& name) {
    Looking look(pages_->store());
    forgetIfChanged();
    auto it = defs_.find(page);
    if (it != defs_.end()) return it->second;
    auto def = readTableDef(*pages_, page);
    def->name = name;
    defs_[page] = def;
    return def;
}

std::shared_ptr<const TableDef> Database::tableDef(const std::string& name) {
    // One run of reads: the entry found stays in the catalogue while it is used.
    Looking reading(pages_->store());
    const CatalogEntry* e = findObject(name);
    // MSysObjects lies on page 2 even before it holds its own row (a new file).
    if (!e && equalsNoCase(name, "MSysObjects"))
        return tableDefAt(kCatalogueTdefPage, "MSysObjects");
    if (!e) throw Error("no such table: " + name, errnum::kNoSuchTable);
    if (e->tdefPage() == 0 || e->tdefPage() >= pages_->pageCount())
        throwCorrupt(e->tdefPage(), "table " + name + " has no definition page");
    return tableDefAt(e->tdefPage(), e->name);
}

std::vector<Relationship> Database::relationships() {
    Looking reading(pages_->store());
    std::vector<Relationship> out;
    if (!hasTable("MSysRelationships")) return out;
    auto def = tableDef("MSysRelationships");
    const TableDef& d = *def;
    int cCol = d.columnPosition("szColumn"), cObj = d.columnPosition("szObject"),
        cRefCol = d.columnPosition("szReferencedColumn"),
        cRefObj = d.columnPosition("szReferencedObject"),
        cName = d.columnPosition("szRelationship"), cIdx = d.columnPosition("icolumn"),
        cFlags = d.columnPosition("grbit");
    if (cCol < 0 || cObj < 0 || cRefCol < 0 || cRefObj < 0 || cName < 0) return out;
    struct Part {
        std::int32_t index;
        std::string col, refCol;
    };
    std::vector<std::pair<Relationship, std::vector<Part>>> rels;
    auto text = [](const Value& v) { return toText(v); };
    RowReader(*pages_, d).scan([&](RowId, const Row& r) {
        std::string name = text(r[std::size_t(cName)]);
        auto it = std::find_if(rels.begin(), rels.end(),
                               [&](const auto& x) { return x.first.name == name; });
        if (it == rels.end()) {
            Relationship rel;
            rel.name = name;
            rel.table = text(r[std::size_t(cObj)]);
            rel.relatedTable = text(r[std::size_t(cRefObj)]);
            if (cFlags >= 0)
                if (auto p = std::get_if<std::int32_t>(&r[std::size_t(cFlags)])) rel.flags = *p;
            rels.push_back({rel, {}});
            it = rels.end() - 1;
        }
        std::int32_t idx = 0;
        if (cIdx >= 0)
            if (auto p = std::get_if<std::int32_t>(&r[std::size_t(cIdx)])) idx = *p;
        it->second.push_back({idx, text(r[std::size_t(cCol)]), text(r[std::size_t(cRefCol)])});
        return true;
    });
    for (auto& [rel, parts] : rels) {
        std::stable_sort(parts.begin(), parts.end(),
                         [](const Part& a, const Part& b) { return a.index < b.index; });
        for (const Part& p : parts) {
            rel.columns.push_back(p.col);
            rel.relatedColumns.push_back(p.refCol);
        }
        out.push_back(std::move(rel));
    }
    return out;
}

void Database::reload() {
    catalogueRead_ = false;
    catalogue_.clear();
    defs_.clear();
    pages_->clear();
    pages_->store().refresh();
}

}  // namespace jet

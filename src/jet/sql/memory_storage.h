#pragma once
// A database held in memory: the storage the SQL layer's tests run on, and
// the stand-in for files named in IN '<file>' clauses between such stores.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jet/sql/storage.h"

namespace sql {

class MemoryStorage;

// A set of in-memory "files", so that IN '<file>' finds another store by path.
class MemoryFiles : public std::enable_shared_from_this<MemoryFiles> {
  public:
    std::shared_ptr<MemoryStorage> create(const std::string& path);      // replaces an existing one
    std::shared_ptr<MemoryStorage> find(const std::string& path) const;  // nullptr when absent

  private:
    std::map<std::string, std::shared_ptr<MemoryStorage>> files_;
};

struct AccessCounters {
    long scans = 0;
    long seeks = 0;
    // Scans that name the columns they need get the others as Null, as a
    // store is free to do, so a column the SQL layer forgot to ask for shows.
    bool blankUnneeded = true;
};

class MemoryTable;

class MemoryStorage : public Storage {
  public:
    explicit MemoryStorage(std::weak_ptr<MemoryFiles> files = {}) : files_(std::move(files)) {}
    std::vector<std::string> tableNames() override;
    std::shared_ptr<Table> table(const std::string& name) override;
    std::shared_ptr<Table> createTable(const std::string& name,
                                       const std::vector<ColumnDef>& columns,
                                       const std::vector<IndexDef>& indexes) override;
    void addColumn(const std::string& table, const ColumnDef& column) override;
    void createIndex(const std::string& table, const IndexDef& index) override;
    void createRelation(const RelationDef& relation) override;
    std::vector<RelationDef> relations() override;
    std::shared_ptr<Storage> openOther(const std::string& path) override;

    AccessCounters& counters() { return counters_; }

  private:
    std::shared_ptr<MemoryTable> find(const std::string& name);
    std::weak_ptr<MemoryFiles> files_;
    std::vector<std::shared_ptr<MemoryTable>> tables_;
    std::vector<RelationDef> relations_;
    AccessCounters counters_;
};

}  // namespace sql

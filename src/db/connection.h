#pragma once
// An ADO-style connection to one catalogue database.
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "db/ado_types.h"
#include "jet/sql/executor.h"
#include "jet/sql/storage.h"

namespace db {

// Opens (or, with create, makes) the database file at a path. The Jet engine
// adapter supplies one for .mdb files; tests use in-memory stores.
using StorageOpener =
    std::function<std::shared_ptr<sql::Storage>(const std::string& path, bool create)>;

// "Key=Value;Key=Value" as in ADO connection strings; keys case-insensitive.
std::map<std::string, std::string> parseConnectionString(const std::string& text);

class Connection {
  public:
    explicit Connection(StorageOpener opener) : opener_(std::move(opener)) {}

    // Properties as ADO sets them before Open.
    std::string provider;
    CursorLocation cursorLocation = adUseServer;
    void setProperty(const std::string& name, const std::string& value);
    std::string property(const std::string& name) const;

    // Open with a connection string, or with the properties set before.
    void open(const std::string& connectionString = {});
    // Open on a store that is already at hand (the catalogue just created).
    void openStorage(std::shared_ptr<sql::Storage> storage, const std::string& path);
    void close();
    ObjectState state() const { return storage_ ? adStateOpen : adStateClosed; }

    // Runs a statement that returns no rows; answers the number of rows affected.
    long execute(const std::string& sql);

    std::shared_ptr<sql::Storage> storage() const;
    const std::string& path() const { return path_; }
    const StorageOpener& opener() const { return opener_; }

  private:
    StorageOpener opener_;
    std::map<std::string, std::string> properties_;
    std::shared_ptr<sql::Storage> storage_;
    std::string path_;
};

}  // namespace db

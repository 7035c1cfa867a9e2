#include "db/catalog.h"

#include "db/ado_types.h"
#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"

namespace db {

sql::ColumnType columnTypeOf(DataType t) {
    switch (t) {
        case adSmallInt:
            return sql::ColumnType::Integer;
        case adInteger:
            return sql::ColumnType::Long;
        case adSingle:
            return sql::ColumnType::Single;
        case adDouble:
            return sql::ColumnType::Double;
        case adCurrency:
            return sql::ColumnType::Currency;
        case adDate:
            return sql::ColumnType::DateTime;
        case adBoolean:
            return sql::ColumnType::Boolean;
        case adUnsignedTinyInt:
            return sql::ColumnType::Byte;
        case adGUID:
            return sql::ColumnType::Guid;
        case adNumeric:
            return sql::ColumnType::Numeric;
        case adWChar:
        case adVarWChar:
            return sql::ColumnType::Text;
        case adLongVarWChar:
            return sql::ColumnType::Memo;
        case adVarBinary:
            return sql::ColumnType::Binary;
        case adLongVarBinary:
            return sql::ColumnType::OLE;
    }
    throw adoerrors::badArguments();
}

DataType dataTypeOf(sql::ColumnType t) {
    switch (t) {
        case sql::ColumnType::Boolean:
            return adBoolean;
        case sql::ColumnType::Byte:
            return adUnsignedTinyInt;
        case sql::ColumnType::Integer:
            return adSmallInt;
        case sql::ColumnType::Long:
            return adInteger;
        case sql::ColumnType::Currency:
            return adCurrency;
        case sql::ColumnType::Single:
            return adSingle;
        case sql::ColumnType::Double:
            return adDouble;
        case sql::ColumnType::DateTime:
            return adDate;
        case sql::ColumnType::Binary:
            return adVarBinary;
        case sql::ColumnType::Text:
            return adVarWChar;
        case sql::ColumnType::OLE:
            return adLongVarBinary;
        case sql::ColumnType::Memo:
            return adLongVarWChar;
        case sql::ColumnType::Guid:
            return adGUID;
        case sql::ColumnType::Numeric:
            return adNumeric;
    }
    return adVarWChar;
}

CatalogColumn& CatalogTable::appendColumn(const std::string& columnName, DataType type,
                                          int definedSize) {
    for (const auto& c : columns)
        if (sql::textEquals(c.name, columnName)) throw adoerrors::badArguments();
    columns.push_back(CatalogColumn{columnName, type, definedSize, false, false});
    return columns.back();
}

void Catalog::create(const std::string& connectionString, const StorageOpener& opener) {
    auto props = parseConnectionString(connectionString);
    std::string path = props["data source"];
    if (path.empty()) throw adoerrors::badArguments();
    storage_ = opener(path, true);
}

void Catalog::setActiveConnection(const Connection& connection) { storage_ = connection.storage(); }

std::shared_ptr<sql::Storage> Catalog::storage() const {
    if (!storage_) throw adoerrors::objectClosed();
    return storage_;
}

std::vector<std::string> Catalog::tables() { return storage()->tableNames(); }

void Catalog::appendTable(const CatalogTable& t) {
    auto s = storage();
    std::vector<sql::ColumnDef> cols;
    for (const auto& c : t.columns) {
        sql::ColumnDef d;
        d.name = c.name;
        d.type = columnTypeOf(c.type);
        d.size = d.type == sql::ColumnType::Text ? (c.definedSize > 0 ? c.definedSize : 255) : 0;
        if (c.autoIncrement && d.type != sql::ColumnType::Long) throw adoerrors::badArguments();
        d.autoIncrement = c.autoIncrement;
        d.nullable = c.nullable;
        cols.push_back(d);
    }
    std::vector<sql::IndexDef> indexes;
    for (const auto& k : t.keys) {
        if (k.type == adKeyForeign) continue;
        sql::IndexDef ix;
        ix.name = k.name;
        ix.primary = k.type == adKeyPrimary;
        ix.unique = true;
        for (const auto& c : k.columns) ix.columns.push_back({c, false});
        indexes.push_back(ix);
    }
    for (const auto& i : t.indexes)
        indexes.push_back({i.name, i.columns, i.primaryKey, i.unique || i.primaryKey});
    s->createTable(t.name, cols, indexes);
    for (const auto& k : t.keys)
        if (k.type == adKeyForeign) appendKey(t.name, k);
}

void Catalog::appendKey(const std::string& table, const CatalogKey& key) {
    auto s = storage();
    if (!s->table(table)) throw sql::errors::tableNotFound(table);
    if (key.type == adKeyForeign) {
        sql::RelationDef r;
        r.name = key.name;
        r.table = table;
        r.columns = key.columns;
        r.relatedTable = key.relatedTable;
        r.relatedColumns = key.relatedColumns;
        if (r.relatedColumns.empty()) r.relatedColumns.push_back("Nr");
        if (key.updateRule == adRISetNull || key.updateRule == adRISetDefault ||
            key.deleteRule == adRISetDefault)
            throw adoerrors::badArguments();
        r.enforce = key.enforce;
        r.cascadeUpdates = key.updateRule == adRICascade;
        r.cascadeDeletes = key.deleteRule == adRICascade;
        r.cascadeNull = key.deleteRule == adRISetNull;
        s->createRelation(r);
        return;
    }
    sql::IndexDef ix;
    ix.name = key.name;
    ix.primary = key.type == adKeyPrimary;
    ix.unique = true;
    for (const auto& c : key.columns) ix.columns.push_back({c, false});
    s->createIndex(table, ix);
}

void Catalog::appendIndex(const std::string& table, const CatalogIndex& index) {
    storage()->createIndex(
        table, {index.name, index.columns, index.primaryKey, index.unique || index.primaryKey});
}

CatalogTable Catalog::table(const std::string& name) {
    auto s = storage();
    auto t = s->table(name);
    if (!t) throw adoerrors::itemNotFound();
    CatalogTable out;
    out.name = t->name();
    for (const auto& c : t->columns())
        out.columns.push_back(CatalogColumn{c.name, dataTypeOf(c.type),
                                            c.type == sql::ColumnType::Text ? c.size : 0,
                                            c.autoIncrement, c.nullable});
    for (const auto& ix : t->indexes()) {
        out.indexes.push_back({ix.name, ix.columns, ix.unique, ix.primary});
        if (ix.primary) {
            CatalogKey k;
            k.name = ix.name;
            k.type = adKeyPrimary;
            for (const auto& c : ix.columns) k.columns.push_back(c.name);
            out.keys.push_back(k);
        }
    }
    for (const auto& r : s->relations()) {
        if (!sql::textEquals(r.table, out.name)) continue;
        CatalogKey k{r.name, adKeyForeign, r.columns, r.relatedTable, r.relatedColumns};
        k.enforce = r.enforce;
        k.updateRule = r.cascadeUpdates ? adRICascade : adRINone;
        k.deleteRule = r.cascadeDeletes ? adRICascade : r.cascadeNull ? adRISetNull : adRINone;
        out.keys.push_back(k);
    }
    return out;
}

}  // namespace db

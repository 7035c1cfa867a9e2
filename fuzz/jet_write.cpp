// Any bytes as a Jet database opened for writing (in memory): in every user
// table a row inserted, one updated and one deleted through the engine, and
// the result read and checked. Each write either happens or is refused with
// jet::Error; anything else (a crash, another exception, a hang) is a bug.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/store/page_file.h"
#include "jet/write/writer.h"

namespace {

// A row unlike row in its keys: numbers moved by delta, text extended,
// autonumbers left to the engine.
jet::Row changed(const jet::TableDef& def, jet::Row row, std::int32_t delta) {
    for (std::size_t i = 0; i < row.size() && i < def.columns.size(); ++i) {
        jet::Value& v = row[i];
        if (def.columns[i].isAutoNumber()) {
            v = jet::Value{};
        } else if (auto* n = std::get_if<std::int32_t>(&v)) {
            *n += delta;
        } else if (auto* s = std::get_if<std::int16_t>(&v)) {
            *s = std::int16_t(*s + delta);
        } else if (auto* d = std::get_if<double>(&v)) {
            *d += delta;
        } else if (auto* t = std::get_if<std::string>(&v)) {
            *t += char('a' + delta % 26);
        }
    }
    return row;
}

void writeTable(jet::Database& db, jet::Writer& w, const std::string& name, std::int32_t delta) {
    std::vector<jet::RowId> ids = db.table(name).rowIds();
    if (ids.empty()) return;
    auto def = db.tableDef(name);
    std::optional<jet::Row> first = db.table(name).read(ids.front());
    if (!first) return;
    try {
        jet::Row r = changed(*def, *first, delta);
        w.insert(name, r);
    } catch (const jet::Error&) {
    }
    try {
        w.update(name, ids.front(), changed(*def, *first, -delta));
    } catch (const jet::Error&) {
    }
    try {
        w.remove(name, ids.back());
    } catch (const jet::Error&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        auto db = jet::Database::fromStore(std::make_unique<jet::MemoryPageStore>(
            std::vector<std::uint8_t>(data, data + size), true));
        jet::Writer w(db);
        const std::int32_t delta = size > 0 ? 1 + data[size / 2] % 7 : 1;
        std::vector<std::string> names = db->tableNames(false);
        if (names.size() > 8) names.resize(8);
        for (const std::string& name : names) {
            try {
                writeTable(*db, w, name, delta);
            } catch (const jet::Error&) {
            }
            if (db->inTransaction()) __builtin_trap();  // a unit left open
        }
        jet::readEverything(*db);
        jet::checkDatabase(*db);
    } catch (const jet::Error&) {
    }
    return 0;
}

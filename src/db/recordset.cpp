#include "db/recordset.h"

#include <algorithm>
#include <cctype>

#include "db/criteria.h"
#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"

namespace db {

namespace {
bool looksLikeStatement(const std::string& s) {
    std::size_t b = s.find_first_not_of(" \t\r\n(");
    if (b == std::string::npos) return false;
    std::string w;
    for (std::size_t i = b; i < s.size() && std::isalpha(static_cast<unsigned char>(s[i])); ++i)
        w.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(s[i]))));
    return w == "SELECT" || w == "INSERT" || w == "UPDATE" || w == "DELETE" || w == "ALTER" ||
           w == "CREATE" || w == "DROP" || w == "TRANSFORM" || w == "PARAMETERS";
}

sql::Error keyChanged() {
    return sql::Error(
        "Key value for this row was changed or deleted at the data store.  The local row is now "
        "deleted.",
        -2147217864L, 0);
}
}  // namespace

void Recordset::open(const std::string& source, Connection& connection, CursorType cursor,
                     LockType lock) {
    if (open_) throw adoerrors::objectOpen();
    if (connection.state() != adStateOpen) throw adoerrors::objectClosed();
    connection_ = &connection;
    if (looksLikeStatement(source))
        source_ = source;
    else if (!source.empty() && source.front() == '[')
        source_ = "SELECT * FROM " + source;
    else
        source_ = "SELECT * FROM [" + source + "]";
    cursor_ = cursor;
    lock_ = lock;
    filter_.clear();
    load();
    open_ = true;
}

void Recordset::load() {
    sql::Executor ex(connection_->storage());
    result_ = ex.query(source_);
    records_.clear();
    records_.reserve(result_.rows.size());
    for (std::size_t i = 0; i < result_.rows.size(); ++i) {
        Record r;
        r.values = std::move(result_.rows[i]);
        if (i < result_.keys.size()) r.key = result_.keys[i];
        if (i < result_.rowIds.size()) r.id = result_.rowIds[i];
        records_.push_back(std::move(r));
    }
    result_.rows.clear();
    edit_ = Edit::None;
    pending_.clear();
    rebuildView();
}

void Recordset::rebuildView() {
    forgetTextPositions();
    std::optional<Criteria> crit;
    if (!filter_.empty()) crit.emplace(filter_, result_.columns, true);
    view_.clear();
    for (std::size_t i = 0; i < records_.size(); ++i)
        if (!records_[i].deleted && (!crit || crit->matches(records_[i].values)))
            view_.push_back(i);
    pos_ = 0;
    currentDeleted_ = false;
}

void Recordset::close() {
    requireOpen();
    open_ = false;
    records_.clear();
    view_.clear();
    forgetTextPositions();
    result_ = {};
    edit_ = Edit::None;
    filter_.clear();
}

void Recordset::requireOpen() const {
    if (!open_) throw adoerrors::objectClosed();
}

void Recordset::requireCurrent() const {
    requireOpen();
    if (edit_ == Edit::Adding) return;
    if (currentDeleted_) throw adoerrors::deletedRow();
    if (pos_ < 0 || pos_ >= static_cast<long>(view_.size())) throw adoerrors::noCurrentRecord();
}

void Recordset::requireUpdatable() const {
    requireOpen();
    if (lock_ == adLockReadOnly || result_.baseTable.empty()) throw adoerrors::notUpdatable();
}

bool Recordset::eof() const {
    requireOpen();
    if (edit_ == Edit::Adding || currentDeleted_) return false;
    return view_.empty() || pos_ >= static_cast<long>(view_.size());
}

bool Recordset::bof() const {
    requireOpen();
    if (edit_ == Edit::Adding || currentDeleted_) return false;
    return view_.empty() || pos_ < 0;
}

long Recordset::recordCount() const {
    requireOpen();
    return static_cast<long>(view_.size());
}

long Recordset::absolutePosition() const {
    requireOpen();
    if (view_.empty()) return adPosUnknown;
    if (pos_ < 0) return adPosBOF;
    if (pos_ >= static_cast<long>(view_.size())) return adPosEOF;
    return pos_ + 1;
}

void Recordset::setAbsolutePosition(long position) {
    requireOpen();
    if (position < 1 || position > static_cast<long>(view_.size())) throw adoerrors::badArguments();
    commitPending();
    currentDeleted_ = false;
    pos_ = position - 1;
}

void Recordset::commitPending() {
    if (edit_ != Edit::None) update();
}

void Recordset::moveFirst() {
    requireOpen();
    commitPending();
    currentDeleted_ = false;
    pos_ = 0;
}

void Recordset::moveLast() {
    requireOpen();
    commitPending();
    currentDeleted_ = false;
    pos_ = view_.empty() ? 0 : static_cast<long>(view_.size()) - 1;
}

void Recordset::moveNext() {
    requireOpen();
    commitPending();
    if (currentDeleted_) {
        // The rows after a deleted one moved up into its place.
        currentDeleted_ = false;
        return;
    }
    if (eof()) throw adoerrors::noCurrentRecord();
    ++pos_;
}

void Recordset::movePrevious() {
    requireOpen();
    commitPending();
    if (currentDeleted_) {
        currentDeleted_ = false;
        --pos_;
        return;
    }
    if (bof()) throw adoerrors::noCurrentRecord();
    --pos_;
}

bool Recordset::find(const std::string& criteria, long skipRows, SearchDirection direction) {
    requireOpen();
    commitPending();
    if (currentDeleted_ || view_.empty() || pos_ < 0 || pos_ >= static_cast<long>(view_.size()))
        throw adoerrors::noCurrentRecord();
    Criteria crit(criteria, result_.columns, false);
    const long step = direction == adSearchBackward ? -1 : 1;
    const long size = static_cast<long>(view_.size());
    const long start = pos_ + step * skipRows;
    long found = -1;
    std::optional<Criteria::TextEquality> eq = crit.textEquality();
    const TextPositions* index = eq ? &textPositions(eq->column) : nullptr;
    auto matches = [&](long i) { return crit.matches(records_[view_[i]].values); };
    if (index && !(eq->numbersCompareAsNumbers && index->hasNumbers)) {
        if (start >= 0 && start < size) {
            long p = index->chain(std::hash<std::string>{}(eq->folded));
            if (step > 0) {
                for (; p >= 0 && found < 0; p = index->next[p])
                    if (p >= start && matches(p)) found = p;
            } else {
                for (; p >= 0 && p <= start; p = index->next[p])
                    if (matches(p)) found = p;
            }
        }
    } else {
        for (long i = start; i >= 0 && i < size; i += step)
            if (matches(i)) {
                found = i;
                break;
            }
    }
    if (found >= 0) {
        pos_ = found;
        return true;
    }
    pos_ = direction == adSearchBackward ? -1 : size;
    return false;
}

long Recordset::TextPositions::chain(std::size_t hash) const {
    const std::size_t mask = slotHash.size() - 1;
    for (std::size_t s = hash & mask;; s = (s + 1) & mask) {
        if (slotFirst[s] < 0) return -1;
        if (slotHash[s] == hash) return slotFirst[s];
    }
}

const Recordset::TextPositions& Recordset::textPositions(int column) {
    auto it = textPositions_.find(column);
    if (it != textPositions_.end()) return it->second;
    TextPositions& t = textPositions_[column];
    std::size_t slots = 16;
    while (slots < 2 * view_.size()) slots *= 2;
    t.slotHash.assign(slots, 0);
    t.slotFirst.assign(slots, -1);
    t.slotLast.assign(slots, -1);
    t.next.assign(view_.size(), -1);
    std::string folded;
    for (std::size_t i = 0; i < view_.size(); ++i) {
        const sql::Value& v = records_[view_[i]].values[column];
        if (v.isNull()) continue;
        t.hasNumbers |= v.isNumber();
        Criteria::foldText(v, folded);
        const std::size_t hash = std::hash<std::string>{}(folded);
        std::size_t s = hash & (slots - 1);
        while (t.slotFirst[s] >= 0 && t.slotHash[s] != hash) s = (s + 1) & (slots - 1);
        const long pos = static_cast<long>(i);
        if (t.slotFirst[s] < 0) {
            t.slotHash[s] = hash;
            t.slotFirst[s] = pos;
        } else {
            t.next[t.slotLast[s]] = pos;
        }
        t.slotLast[s] = pos;
    }
    return t;
}

void Recordset::setFilter(const std::string& criteria) {
    requireOpen();
    commitPending();
    std::string old = filter_;
    filter_ = criteria;
    try {
        rebuildView();
    } catch (...) {
        filter_ = old;
        rebuildView();
        throw;
    }
}

int Recordset::fieldCount() const {
    requireOpen();
    return static_cast<int>(result_.columns.size());
}

const sql::ResultColumn& Recordset::fieldInfo(int index) const {
    requireOpen();
    if (index < 0 || index >= static_cast<int>(result_.columns.size()))
        throw adoerrors::itemNotFound();
    return result_.columns[index];
}

const std::vector<sql::ResultColumn>& Recordset::fieldInfos() const {
    requireOpen();
    return result_.columns;
}

int Recordset::fieldIndex(const std::string& name) const {
    requireOpen();
    int i = result_.columnIndex(name);
    if (i < 0) throw adoerrors::itemNotFound();
    return i;
}

const sql::Row& Recordset::currentValues() const {
    requireCurrent();
    if (edit_ != Edit::None) return pending_;
    return records_[view_[pos_]].values;
}

sql::Value Recordset::value(const std::string& field) const {
    return currentValues()[fieldIndex(field)];
}

sql::Value Recordset::value(int index) const {
    const sql::Row& r = currentValues();
    if (index < 0 || index >= static_cast<int>(r.size())) throw adoerrors::itemNotFound();
    return r[index];
}

void Recordset::setValue(const std::string& field, sql::Value v) {
    int i = fieldIndex(field);
    requireUpdatable();
    requireCurrent();
    const auto& col = result_.columns[i];
    if (col.baseColumn < 0) throw adoerrors::notUpdatable();
    if (edit_ == Edit::None) {
        pending_ = records_[view_[pos_]].values;
        edit_ = Edit::Editing;
    }
    // Jet checks type and size when the value is assigned.
    pending_[i] = sql::coerceToColumn(v, col.type, col.size, col.name);
}

void Recordset::addNew() {
    requireUpdatable();
    commitPending();
    currentDeleted_ = false;
    pending_.assign(result_.columns.size(), sql::Value());
    edit_ = Edit::Adding;
}

void Recordset::cancelUpdate() {
    requireOpen();
    edit_ = Edit::None;
    pending_.clear();
}

void Recordset::update() {
    requireOpen();
    if (edit_ == Edit::None) return;
    requireUpdatable();
    auto table = result_.baseStorage->table(result_.baseTable);
    if (!table) throw sql::errors::tableNotFound(result_.baseTable);
    auto baseCols = table->columns();
    Edit mode = edit_;
    sql::Row row;
    sql::RowId id = -1;
    if (mode == Edit::Adding) {
        row.assign(baseCols.size(), sql::Value());
    } else {
        Record& rec = records_[view_[pos_]];
        std::optional<sql::RowId> found = result_.keyColumns.empty()
                                              ? std::optional<sql::RowId>(rec.id)
                                              : sql::findByKey(*table, result_.keyColumns, rec.key);
        if (!found) throw keyChanged();
        id = *found;
        row = table->read(id);
    }
    for (std::size_t i = 0; i < result_.columns.size(); ++i) {
        int b = result_.columns[i].baseColumn;
        if (b < 0) continue;
        if (mode == Edit::Adding && pending_[i].isNull()) continue;
        if (mode == Edit::Editing && pending_[i] == records_[view_[pos_]].values[i]) continue;
        row[b] =
            sql::coerceToColumn(pending_[i], baseCols[b].type, baseCols[b].size, baseCols[b].name);
    }
    if (mode == Edit::Adding)
        id = table->insert(row);
    else
        table->update(id, row);

    Record rec;
    rec.id = id;
    rec.values.resize(result_.columns.size());
    for (std::size_t i = 0; i < result_.columns.size(); ++i) {
        int b = result_.columns[i].baseColumn;
        rec.values[i] = b >= 0 ? row[b] : pending_[i];
    }
    for (int k : result_.keyColumns) rec.key.push_back(row[k]);
    if (mode == Edit::Adding) {
        records_.push_back(std::move(rec));
        view_.push_back(records_.size() - 1);
        pos_ = static_cast<long>(view_.size()) - 1;
    } else {
        records_[view_[pos_]] = std::move(rec);
    }
    forgetTextPositions();
    edit_ = Edit::None;
    pending_.clear();
}

void Recordset::deleteCurrent() {
    requireUpdatable();
    if (edit_ == Edit::Adding) {
        cancelUpdate();
        return;
    }
    requireCurrent();
    edit_ = Edit::None;
    auto table = result_.baseStorage->table(result_.baseTable);
    if (!table) throw sql::errors::tableNotFound(result_.baseTable);
    Record& rec = records_[view_[pos_]];
    std::optional<sql::RowId> found = result_.keyColumns.empty()
                                          ? std::optional<sql::RowId>(rec.id)
                                          : sql::findByKey(*table, result_.keyColumns, rec.key);
    if (!found) throw keyChanged();
    table->remove(*found);
    rec.deleted = true;
    view_.erase(view_.begin() + pos_);
    forgetTextPositions();
    currentDeleted_ = true;
}

void Recordset::requery() {
    requireOpen();
    if (connection_->state() != adStateOpen) throw adoerrors::objectClosed();
    edit_ = Edit::None;
    load();
}

}  // namespace db

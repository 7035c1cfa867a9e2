#pragma once
// An ADO record set with a client-side cursor: the rows are read once into
// memory, navigation, Find and Filter work on that copy, and AddNew, Update
// and Delete are written through to the base table by its key.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "db/ado_types.h"
#include "db/connection.h"
#include "jet/sql/executor.h"

namespace db {

class Recordset {
  public:
    // source: a SELECT statement, or a table name.
    void open(const std::string& source, Connection& connection, CursorType cursor = adOpenStatic,
              LockType lock = adLockReadOnly);
    void close();
    ObjectState state() const { return open_ ? adStateOpen : adStateClosed; }

    bool eof() const;
    bool bof() const;
    long recordCount() const;
    long absolutePosition() const;  // 1-based; adPosBOF, adPosEOF or adPosUnknown otherwise
    void setAbsolutePosition(long position);

    void moveFirst();
    void moveLast();
    void moveNext();
    void movePrevious();

    // Searches from the current row (skipping skipRows first); answers true
    // when found. Not found leaves the record set at EOF (forward) or BOF.
    bool find(const std::string& criteria, long skipRows = 0,
              SearchDirection direction = adSearchForward);

    void setFilter(const std::string& criteria);  // "" removes the filter
    void clearFilter() { setFilter(""); }
    const std::string& filter() const { return filter_; }

    // Fields of the current row.
    int fieldCount() const;
    const sql::ResultColumn& fieldInfo(int index) const;
    const std::vector<sql::ResultColumn>& fieldInfos() const;
    sql::Value value(const std::string& field) const;
    sql::Value value(int index) const;
    std::string text(const std::string& field) const { return value(field).toString(); }
    void setValue(const std::string& field, sql::Value v);
    void setValue(const std::string& field, const std::string& text) {
        setValue(field, sql::Value::text(text));
    }
    void setValue(const std::string& field, const char* text) {
        setValue(field, sql::Value::text(text));
    }
    void setValue(const std::string& field, long long number) {
        setValue(field, sql::Value::integer(number));
    }
    void setValue(const std::string& field, int number) {
        setValue(field, sql::Value::integer(number));
    }
    void setValue(const std::string& field, double number) {
        setValue(field, sql::Value::real(number));
    }

    void addNew();
    void update();
    void cancelUpdate();
    void deleteCurrent();  // ADO's Delete of the current record
    void requery();

    bool editing() const { return edit_ != Edit::None; }
    const std::string& source() const { return source_; }

  private:
    struct Record {
        sql::Row values;
        sql::Row key;
        sql::RowId id = -1;
        bool deleted = false;
    };
    enum class Edit { None, Editing, Adding };

    void requireOpen() const;
    void requireCurrent() const;
    void requireUpdatable() const;
    void load();
    void rebuildView();
    int fieldIndex(const std::string& name) const;
    void commitPending();  // an implicit Update when moving off an edited row
    const sql::Row& currentValues() const;

    // The positions in view_ of each folded text of a column, by the text's
    // hash (open addressing; a chain of ascending positions per hash), for
    // Finds of one text. Candidates are confirmed by the criteria
    // themselves, so a collision costs a comparison, never a wrong row.
    // Built when first asked for; dropped whenever view_ or a record's
    // values change.
    struct TextPositions {
        std::vector<std::size_t> slotHash;
        std::vector<long> slotFirst;  // -1: empty slot
        std::vector<long> slotLast;
        std::vector<long> next;  // per position: the next one of its chain, -1 at the end
        bool hasNumbers = false;
        long chain(std::size_t hash) const;  // first position of the hash's chain, -1 if none
    };
    const TextPositions& textPositions(int column);
    void forgetTextPositions() { textPositions_.clear(); }

    bool open_ = false;
    std::string source_;
    Connection* connection_ = nullptr;
    CursorType cursor_ = adOpenStatic;
    LockType lock_ = adLockReadOnly;

    sql::ResultSet result_;  // columns and write-back information
    std::vector<Record> records_;
    std::vector<std::size_t> view_;  // visible records in order (filtered, not deleted)
    long pos_ = 0;                   // index into view_; -1 = BOF, view_.size() = EOF
    bool currentDeleted_ = false;    // the current row was just deleted
    std::string filter_;

    Edit edit_ = Edit::None;
    sql::Row pending_;

    std::map<int, TextPositions> textPositions_;
};

}  // namespace db

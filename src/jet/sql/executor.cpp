#include "jet/sql/executor.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <unordered_map>
#include <unordered_set>

#include "jet/sql/ast.h"
#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"

namespace sql {

int ResultSet::columnIndex(std::string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (textEquals(columns[i].name, name)) return static_cast<int>(i);
    return -1;
}

namespace {

using Eval = std::function<Value(const Row&)>;

// One table of a FROM clause, with the names it may be qualified by.
struct Part {
    std::shared_ptr<Storage> storage;
    std::shared_ptr<Table> table;
    std::vector<ColumnDef> columns;
    std::string name, alias;
    std::size_t offset = 0;  // of its first column in the joined row

    bool named(const std::string& q) const { return textEquals(q, name) || (!alias.empty() && textEquals(q, alias)); }
};

// What a statement reads: one table, or several joined left to right. Rows
// are the tables' columns side by side.
struct Source {
    std::shared_ptr<Storage> storage;  // of the first table
    std::shared_ptr<Table> table;
    std::vector<ColumnDef> columns;    // of all tables, side by side
    std::string name, alias;
    std::vector<Part> parts;
    std::vector<const JoinClause*> joins;  // parts[i + 1] joins with joins[i]

    bool joined() const { return parts.size() > 1; }

    // -1 when unknown; Jet's error when an unqualified name fits two tables.
    int find(const std::string& qualifier, const std::string& column, std::size_t partLimit = SIZE_MAX) const {
        int found = -1;
        for (std::size_t p = 0; p < parts.size() && p < partLimit; ++p) {
            const Part& part = parts[p];
            if (!qualifier.empty() && !part.named(qualifier)) continue;
            for (std::size_t i = 0; i < part.columns.size(); ++i) {
                if (!textEquals(part.columns[i].name, column)) continue;
                if (found >= 0) throw errors::ambiguousField(column);
                found = static_cast<int>(part.offset + i);
            }
        }
        return found;
    }
};

Part openPart(const std::shared_ptr<Storage>& db, const TableRef& ref) {
    Part p;
    p.storage = ref.externalPath ? db->openOther(*ref.externalPath) : db;
    p.table = p.storage->table(ref.name);
    if (!p.table) throw errors::tableNotFound(ref.name);
    p.columns = p.table->columns();
    p.name = p.table->name();
    p.alias = ref.alias;
    return p;
}

void addPart(Source& s, Part p) {
    p.offset = s.columns.size();
    s.columns.insert(s.columns.end(), p.columns.begin(), p.columns.end());
    s.parts.push_back(std::move(p));
}

Source openSource(const std::shared_ptr<Storage>& db, const TableRef& ref) {
    Source s;
    addPart(s, openPart(db, ref));
    s.storage = s.parts[0].storage;
    s.table = s.parts[0].table;
    s.name = s.parts[0].name;
    s.alias = s.parts[0].alias;
    return s;
}

Source openSelectSource(const std::shared_ptr<Storage>& db, const SelectStmt& st) {
    Source s = openSource(db, *st.from);
    for (const auto& j : st.joins) {
        addPart(s, openPart(db, j.table));
        s.joins.push_back(&j);
    }
    return s;
}

Value truth(bool b) { return Value::boolean(b); }

bool isTrue(const Value& v) { return !v.isNull() && v.asDouble() != 0; }

// Jet's comparison of two non-null values: numbers by value, text
// case-insensitively in General order; text against a number is a mismatch.
int compareValues(const Value& a, const Value& b, bool equalityOnly) {
    bool an = a.isNumber(), bn = b.isNumber();
    if (an && bn) {
        double x = a.asDouble(), y = b.asDouble();
        return x < y ? -1 : x > y ? 1 : 0;
    }
    if (an != bn) throw errors::typeMismatch();
    if (equalityOnly) return textEquals(a.textRef(), b.textRef()) ? 0 : 1;
    return compareGeneral(a.textRef(), b.textRef());
}

// Ordering for ORDER BY: Null first, then numbers, then text in General order.
int orderCompare(const Value& a, const Value& b) {
    if (a.isNull() || b.isNull()) return a.isNull() == b.isNull() ? 0 : a.isNull() ? -1 : 1;
    if (a.isNumber() != b.isNumber()) return a.isNumber() ? -1 : 1;
    return compareValues(a, b, false);
}

class Compiler {
public:
    Compiler(const std::shared_ptr<Storage>& db, const Source* source, std::vector<bool>* used = nullptr)
        : db_(db), source_(source), used_(used) {}

    Eval compile(const Expr& e) {
        switch (e.kind) {
            case Expr::Kind::Literal: {
                Value v = e.literal;
                return [v](const Row&) { return v; };
            }
            case Expr::Kind::Column: {
                int idx = source_ ? source_->find(e.qualifier, e.name) : -1;
                if (idx < 0) throw errors::noValueGiven();
                mark(idx);
                return [idx](const Row& r) { return r[idx]; };
            }
            case Expr::Kind::Not: {
                Eval a = compile(*e.left);
                return [a](const Row& r) {
                    Value v = a(r);
                    return v.isNull() ? v : truth(!isTrue(v));
                };
            }
            case Expr::Kind::Negate: {
                Eval a = compile(*e.left);
                return [a](const Row& r) {
                    Value v = a(r);
                    if (v.isNull()) return v;
                    if (v.kind() == Value::Kind::Int || v.kind() == Value::Kind::Bool) return Value::integer(-v.asInt());
                    if (v.kind() == Value::Kind::Text) throw errors::typeMismatch();
                    return Value::real(-v.asDouble());
                };
            }
            case Expr::Kind::IsNull: {
                Eval a = compile(*e.left);
                bool neg = e.negated;
                return [a, neg](const Row& r) { return truth(a(r).isNull() != neg); };
            }
            case Expr::Kind::Like: return compileLike(e);
            case Expr::Kind::Between: {
                Eval a = compile(*e.left), lo = compile(*e.right), hi = compile(*e.third);
                bool neg = e.negated;
                return [a, lo, hi, neg](const Row& r) {
                    Value v = a(r), l = lo(r), h = hi(r);
                    if (v.isNull() || l.isNull() || h.isNull()) return Value();
                    bool in = compareValues(v, l, false) >= 0 && compareValues(v, h, false) <= 0;
                    return truth(in != neg);
                };
            }
            case Expr::Kind::InList: {
                Eval a = compile(*e.left);
                std::vector<Eval> items;
                for (const auto& x : e.list) items.push_back(compile(*x));
                bool neg = e.negated;
                return [a, items, neg](const Row& r) {
                    Value v = a(r);
                    if (v.isNull()) return v;
                    bool sawNull = false;
                    for (const auto& it : items) {
                        Value w = it(r);
                        if (w.isNull()) {
                            sawNull = true;
                            continue;
                        }
                        if (compareValues(v, w, true) == 0) return truth(!neg);
                    }
                    return sawNull ? Value() : truth(neg);
                };
            }
            case Expr::Kind::InSelect: return compileInSelect(e);
            case Expr::Kind::Binary: return compileBinary(e);
        }
        throw errors::noValueGiven();
    }

private:
    Eval compileLike(const Expr& e) {
        Eval a = compile(*e.left);
        bool neg = e.negated;
        if (e.right->kind == Expr::Kind::Literal) {
            const Value& p = e.right->literal;
            if (p.isNull()) return [](const Row&) { return Value(); };
            auto pattern = std::make_shared<LikePattern>(p.toString(), LikePattern::Dialect::Sql);
            if (e.left->kind == Expr::Kind::Column) {
                // The common "column LIKE 'pattern'": read the value in place.
                int idx = source_ ? source_->find(e.left->qualifier, e.left->name) : -1;
                if (idx < 0) throw errors::noValueGiven();
                mark(idx);
                return [idx, pattern, neg](const Row& r) {
                    const Value& v = r[idx];
                    if (v.isNull()) return Value();
                    bool m = v.isText() ? pattern->matches(v.textRef()) : pattern->matches(v.toString());
                    return truth(m != neg);
                };
            }
            return [a, pattern, neg](const Row& r) {
                Value v = a(r);
                if (v.isNull()) return v;
                bool m = v.isText() ? pattern->matches(v.textRef()) : pattern->matches(v.toString());
                return truth(m != neg);
            };
        }
        Eval b = compile(*e.right);
        return [a, b, neg](const Row& r) {
            Value v = a(r), p = b(r);
            if (v.isNull() || p.isNull()) return Value();
            return truth(LikePattern(p.toString(), LikePattern::Dialect::Sql).matches(v.toString()) != neg);
        };
    }

    Eval compileInSelect(const Expr& e);

    Eval compileBinary(const Expr& e) {
        Eval a = compile(*e.left), b = compile(*e.right);
        const std::string& op = e.op;
        if (op == "AND")
            return [a, b](const Row& r) {
                Value x = a(r);
                if (!x.isNull() && !isTrue(x)) return truth(false);
                Value y = b(r);
                if (!y.isNull() && !isTrue(y)) return truth(false);
                if (x.isNull() || y.isNull()) return Value();
                return truth(true);
            };
        if (op == "OR")
            return [a, b](const Row& r) {
                Value x = a(r);
                if (isTrue(x)) return truth(true);
                Value y = b(r);
                if (isTrue(y)) return truth(true);
                if (x.isNull() || y.isNull()) return Value();
                return truth(false);
            };
        if (op == "&")
            return [a, b](const Row& r) {
                Value x = a(r), y = b(r);
                if (x.isNull() && y.isNull()) return Value();
                return Value::text(x.toString() + y.toString());
            };
        if (op == "=" || op == "<>" || op == "<" || op == "<=" || op == ">" || op == ">=") {
            int which = op == "=" ? 0 : op == "<>" ? 1 : op == "<" ? 2 : op == "<=" ? 3 : op == ">" ? 4 : 5;
            return [a, b, which](const Row& r) {
                Value x = a(r), y = b(r);
                if (x.isNull() || y.isNull()) return Value();
                int c = compareValues(x, y, which <= 1);
                switch (which) {
                    case 0: return truth(c == 0);
                    case 1: return truth(c != 0);
                    case 2: return truth(c < 0);
                    case 3: return truth(c <= 0);
                    case 4: return truth(c > 0);
                    default: return truth(c >= 0);
                }
            };
        }
        char opc = op[0];
        return [a, b, opc](const Row& r) {
            Value x = a(r), y = b(r);
            if (x.isNull() || y.isNull()) return Value();
            if (opc == '+' && x.isText() && y.isText()) return Value::text(x.textRef() + y.textRef());
            if (!x.isNumber() || !y.isNumber()) throw errors::typeMismatch();
            bool ints = (x.kind() == Value::Kind::Int || x.kind() == Value::Kind::Bool) &&
                        (y.kind() == Value::Kind::Int || y.kind() == Value::Kind::Bool);
            switch (opc) {
                case '+': return ints ? Value::integer(x.asInt() + y.asInt()) : Value::real(x.asDouble() + y.asDouble());
                case '-': return ints ? Value::integer(x.asInt() - y.asInt()) : Value::real(x.asDouble() - y.asDouble());
                case '*': return ints ? Value::integer(x.asInt() * y.asInt()) : Value::real(x.asDouble() * y.asDouble());
                default:
                    if (y.asDouble() == 0) throw Error("Division by zero", errors::kIntegrity, 11);
                    return Value::real(x.asDouble() / y.asDouble());
            }
        };
    }

    void mark(int idx) {
        if (used_ && idx >= 0 && static_cast<std::size_t>(idx) < used_->size()) (*used_)[idx] = true;
    }

    std::shared_ptr<Storage> db_;
    const Source* source_;
    std::vector<bool>* used_;
};

// ---- SELECT machinery

struct Selected {
    Source source;
    std::vector<RowId> ids;
    std::vector<Row> rows;  // full base rows
};

// Finds "column = constant" among the top-level AND terms of a WHERE, so
// that an index on the column can answer it.
const Expr* indexableTerm(const Expr* e, const Source& s, Value& key, std::string& column) {
    if (!e) return nullptr;
    if (e->kind == Expr::Kind::Binary && e->op == "AND") {
        if (auto* t = indexableTerm(e->left.get(), s, key, column)) return t;
        return indexableTerm(e->right.get(), s, key, column);
    }
    if (e->kind != Expr::Kind::Binary || e->op != "=") return nullptr;
    const Expr* col = e->left.get();
    const Expr* lit = e->right.get();
    if (col->kind != Expr::Kind::Column) std::swap(col, lit);
    if (col->kind != Expr::Kind::Column || lit->kind != Expr::Kind::Literal || lit->literal.isNull()) return nullptr;
    int idx = s.find(col->qualifier, col->name);
    if (idx < 0) return nullptr;
    // A text constant against a number column is Jet's type mismatch, which the scan reports.
    if (isNumericType(s.columns[idx].type) != lit->literal.isNumber()) return nullptr;
    key = lit->literal;
    column = s.columns[idx].name;
    return e;
}

// Visits the rows of a source that satisfy a WHERE, through an index when
// the WHERE pins an indexed column to a constant.
void joinRows(const std::shared_ptr<Storage>& db, const Source& src, const Expr* where,
              const std::function<void(RowId, const Row&)>& visit);

void forEachMatch(const std::shared_ptr<Storage>& db, const Source& src, const Expr* where,
                  const std::function<void(RowId, const Row&)>& visit, std::vector<bool>* needed = nullptr) {
    if (src.joined()) return joinRows(db, src, where, visit);
    Compiler c(db, &src, needed);
    Eval pred;
    if (where) pred = c.compile(*where);
    Value key;
    std::string column;
    std::optional<std::vector<RowId>> hits;
    if (indexableTerm(where, src, key, column)) hits = src.table->seek(column, key);
    auto consider = [&](RowId id, const Row& row) {
        if (!pred || isTrue(pred(row))) visit(id, row);
        return true;
    };
    if (hits) {
        std::sort(hits->begin(), hits->end());
        for (RowId id : *hits) consider(id, src.table->read(id));
    } else if (needed) {
        src.table->scan(consider, *needed);
    } else {
        src.table->scan(consider);
    }
}

// Joins left to right. An ON that equates a column of the new table with a
// column before it is answered through a hash of the new table's rows;
// any other ON is tried row against row.
void joinRows(const std::shared_ptr<Storage>& db, const Source& src, const Expr* where,
              const std::function<void(RowId, const Row&)>& visit) {
    const std::size_t width = src.columns.size();
    std::vector<Row> current;
    src.parts[0].table->scan([&](RowId, const Row& r) {
        Row full(width);
        std::copy(r.begin(), r.end(), full.begin());
        current.push_back(std::move(full));
        return true;
    });
    Compiler c(db, &src);
    for (std::size_t j = 0; j < src.joins.size(); ++j) {
        const Part& part = src.parts[j + 1];
        const JoinClause& jc = *src.joins[j];
        // Names in ON may refer to this table and those before it only.
        Source visible = src;
        visible.parts.resize(j + 2);
        Compiler onCompiler(db, &visible);
        Eval on = onCompiler.compile(*jc.on);
        std::vector<Row> right;
        part.table->scan([&](RowId, const Row& r) {
            right.push_back(r);
            return true;
        });
        int newCol = -1, oldCol = -1;
        if (jc.on->kind == Expr::Kind::Binary && jc.on->op == "=" && jc.on->left->kind == Expr::Kind::Column &&
            jc.on->right->kind == Expr::Kind::Column) {
            int a = visible.find(jc.on->left->qualifier, jc.on->left->name);
            int b = visible.find(jc.on->right->qualifier, jc.on->right->name);
            auto inNew = [&](int x) { return x >= static_cast<int>(part.offset); };
            if (inNew(a) != inNew(b)) {
                newCol = inNew(a) ? a : b;
                oldCol = inNew(a) ? b : a;
            }
        }
        std::unordered_map<std::string, std::vector<std::size_t>> hash;
        if (newCol >= 0)
            for (std::size_t i = 0; i < right.size(); ++i) {
                const Value& v = right[i][newCol - part.offset];
                if (!v.isNull()) hash[equalityKey(v)].push_back(i);
            }
        std::vector<Row> next;
        for (auto& left : current) {
            bool matched = false;
            auto tryRow = [&](const Row& r) {
                Row full = left;
                std::copy(r.begin(), r.end(), full.begin() + part.offset);
                if (isTrue(on(full))) {
                    next.push_back(std::move(full));
                    matched = true;
                }
            };
            if (newCol >= 0) {
                const Value& k = left[oldCol];
                if (!k.isNull()) {
                    auto it = hash.find(equalityKey(k));
                    if (it != hash.end())
                        for (std::size_t i : it->second) tryRow(right[i]);
                }
            } else {
                for (const auto& r : right) tryRow(r);
            }
            if (!matched && jc.kind == JoinClause::Kind::Left) next.push_back(left);
        }
        current = std::move(next);
    }
    Eval pred;
    if (where) pred = c.compile(*where);
    for (const auto& row : current)
        if (!pred || isTrue(pred(row))) visit(-1, row);
}

Selected selectRows(const std::shared_ptr<Storage>& db, const TableRef& from, const Expr* where) {
    Selected out;
    out.source = openSource(db, from);
    forEachMatch(db, out.source, where, [&](RowId id, const Row& row) {
        out.ids.push_back(id);
        out.rows.push_back(row);
    });
    return out;
}

ColumnDef inferredColumn(const std::string& name, const std::vector<Row>& rows, std::size_t i) {
    ColumnDef d;
    d.name = name;
    d.type = ColumnType::Text;
    d.size = 255;
    for (const auto& r : rows) {
        const Value& v = r[i];
        if (v.isNull()) continue;
        switch (v.kind()) {
            case Value::Kind::Bool: d.type = ColumnType::Boolean; break;
            case Value::Kind::Int: d.type = ColumnType::Long; break;
            case Value::Kind::Double: d.type = ColumnType::Double; break;
            case Value::Kind::Date: d.type = ColumnType::DateTime; break;
            case Value::Kind::Binary: d.type = ColumnType::OLE; break;
            default: d.type = ColumnType::Text; break;
        }
        break;
    }
    if (d.type != ColumnType::Text) d.size = 0;
    return d;
}

ResultSet runSelect(const std::shared_ptr<Storage>& db, const SelectStmt& s) {
    ResultSet rs;
    Source source;
    bool haveTable = s.from.has_value();
    if (haveTable) source = openSelectSource(db, s);
    const Source* src = haveTable ? &source : nullptr;
    // The columns the statement reads, so a store may leave the others unconverted.
    std::vector<bool> needed(source.columns.size(), false);
    Compiler c(db, src, &needed);

    // Projection.
    std::vector<Eval> evals;
    int exprNo = 1000;
    for (const auto& item : s.items) {
        if (!item.expr) {
            if (!haveTable) throw errors::selectReservedWord();
            bool any = false;
            for (const Part& part : source.parts) {
                if (!item.starQualifier.empty() && !part.named(item.starQualifier)) continue;
                any = true;
                for (std::size_t i = 0; i < part.columns.size(); ++i) {
                    const auto& cd = part.columns[i];
                    int idx = static_cast<int>(part.offset + i);
                    std::string name = cd.name;
                    // A name two joined tables share is qualified, as Jet names such fields.
                    if (source.joined()) {
                        int owners = 0;
                        for (const Part& other : source.parts)
                            for (const auto& oc : other.columns)
                                if (textEquals(oc.name, cd.name)) ++owners;
                        if (owners > 1) name = part.name + "." + cd.name;
                    }
                    rs.columns.push_back({name, cd.type, cd.size, cd.nullable, cd.autoIncrement, idx});
                    needed[idx] = true;
                    evals.push_back([idx](const Row& r) { return r[idx]; });
                }
            }
            if (!any) throw errors::noValueGiven();
            continue;
        }
        ResultColumn rc;
        if (item.expr->kind == Expr::Kind::Column) {
            int idx = src ? src->find(item.expr->qualifier, item.expr->name) : -1;
            if (idx < 0) throw errors::noValueGiven();
            const auto& cd = source.columns[idx];
            rc = {cd.name, cd.type, cd.size, cd.nullable, cd.autoIncrement, idx};
            needed[idx] = true;
        } else {
            rc.name = "Expr" + std::to_string(exprNo++);
        }
        if (!item.alias.empty()) rc.name = item.alias;
        rs.columns.push_back(rc);
        evals.push_back(c.compile(*item.expr));
    }
    // ORDER BY may name any column of the table, selected or not.
    std::vector<Eval> orderEvals;
    std::vector<bool> desc;
    for (const auto& o : s.orderBy) {
        orderEvals.push_back(c.compile(*o.expr));
        desc.push_back(o.descending);
    }
    std::vector<int> keyColumns;
    if (haveTable && !s.distinct && !source.joined())
        for (const auto& ix : source.table->indexes())
            if (ix.primary)
                for (const auto& kc : ix.columns) keyColumns.push_back(source.find("", kc.name));
    for (int k : keyColumns)
        if (k >= 0) needed[k] = true;

    // One pass over the rows: each match is projected at once, so only the
    // selected values are copied.
    struct Match {
        Row out;
        std::vector<Value> order;
        Row key;
        RowId id;
    };
    std::vector<Match> matches;
    auto take = [&](RowId id, const Row& row) {
        Match m;
        m.id = id;
        m.out.reserve(evals.size());
        for (const auto& ev : evals) m.out.push_back(ev(row));
        for (const auto& ev : orderEvals) m.order.push_back(ev(row));
        for (int k : keyColumns) m.key.push_back(row[k]);
        matches.push_back(std::move(m));
    };
    if (haveTable) forEachMatch(db, source, s.where.get(), take, &needed);
    else take(-1, Row{});

    std::vector<std::size_t> order(matches.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    if (!orderEvals.empty()) {
        std::vector<std::vector<SortKey>> text(matches.size());
        for (std::size_t i = 0; i < matches.size(); ++i)
            for (const auto& v : matches[i].order) text[i].push_back(v.isText() ? generalSortKey(v.textRef()) : SortKey{});
        std::stable_sort(order.begin(), order.end(), [&](std::size_t x, std::size_t y) {
            for (std::size_t k = 0; k < orderEvals.size(); ++k) {
                const Value& a = matches[x].order[k];
                const Value& b = matches[y].order[k];
                int cmp = (a.isText() && b.isText()) ? compareSortKeys(text[x][k], text[y][k]) : orderCompare(a, b);
                if (cmp != 0) return desc[k] ? cmp > 0 : cmp < 0;
            }
            return false;
        });
    }

    std::unordered_set<std::string> seen;
    bool writable = haveTable && !s.distinct && !source.joined();
    rs.rows.reserve(order.size());
    for (std::size_t oi : order) {
        Match& m = matches[oi];
        if (s.distinct) {
            std::string k;
            for (const auto& v : m.out) k += (v.isNull() ? std::string("\x01") : equalityKey(v)) + '\x1f';
            if (!seen.insert(k).second) continue;
        }
        rs.rows.push_back(std::move(m.out));
        rs.rowIds.push_back(m.id);
        if (writable) rs.keys.push_back(std::move(m.key));
        if (s.top && static_cast<long>(rs.rows.size()) >= *s.top) break;
    }
    if (writable) {
        rs.baseStorage = source.storage;
        rs.baseTable = source.name;
        rs.keyColumns = keyColumns;
    }
    return rs;
}

// ---- writing statements

std::vector<Row> coerceRows(const std::vector<ColumnDef>& cols, std::vector<Row> rows) {
    for (auto& r : rows) {
        r.resize(cols.size());
        for (std::size_t i = 0; i < cols.size(); ++i) r[i] = coerceToColumn(r[i], cols[i].type, cols[i].size, cols[i].name);
    }
    return rows;
}

long runSelectInto(const std::shared_ptr<Storage>& db, const SelectStmt& s) {
    ResultSet rs = runSelect(db, s);
    const TableRef& into = *s.into;
    std::shared_ptr<Storage> target = into.externalPath ? db->openOther(*into.externalPath) : db;
    if (target->table(into.name)) throw errors::tableExists(into.name);
    std::vector<ColumnDef> cols;
    for (std::size_t i = 0; i < rs.columns.size(); ++i) {
        const auto& rc = rs.columns[i];
        ColumnDef d;
        if (rc.baseColumn >= 0) {
            // A make-table query copies values, not the numbering: the new column is a plain Long.
            d = ColumnDef{rc.name, rc.type, rc.size, false, true};
        } else {
            d = inferredColumn(rc.name, rs.rows, i);
        }
        cols.push_back(d);
    }
    std::vector<Row> rows = coerceRows(cols, std::move(rs.rows));
    auto t = target->createTable(into.name, cols, {});
    for (auto& r : rows) t->insert(r);
    return static_cast<long>(rows.size());
}

Source openTarget(const std::shared_ptr<Storage>& db, const TableRef& ref) { return openSource(db, ref); }

long runInsert(const std::shared_ptr<Storage>& db, const InsertStmt& s) {
    Source target = openTarget(db, s.target);
    std::vector<int> dest;
    for (const auto& name : s.columns) {
        int idx = target.find("", name);
        if (idx < 0) throw errors::unknownInsertField(name);
        dest.push_back(idx);
    }
    std::vector<Row> incoming;
    if (s.select) {
        ResultSet rs = runSelect(db, *s.select);
        if (s.columns.empty()) {
            // Without a column list Jet appends by field name.
            for (const auto& rc : rs.columns) {
                int idx = target.find("", rc.name);
                if (idx < 0) throw errors::unknownInsertField(rc.name);
                dest.push_back(idx);
            }
        } else if (dest.size() != rs.columns.size()) {
            throw errors::valueCountMismatch();
        }
        incoming = std::move(rs.rows);
    } else {
        if (s.columns.empty())
            for (std::size_t i = 0; i < target.columns.size(); ++i) dest.push_back(static_cast<int>(i));
        if (dest.size() != s.values.size()) throw errors::valueCountMismatch();
        Compiler c(db, nullptr);
        Row r;
        for (const auto& e : s.values) r.push_back(c.compile(*e)(Row{}));
        incoming.push_back(std::move(r));
    }
    std::vector<Row> rows;
    rows.reserve(incoming.size());
    for (const auto& in : incoming) {
        Row r(target.columns.size());
        for (std::size_t i = 0; i < dest.size(); ++i) {
            const auto& cd = target.columns[dest[i]];
            r[dest[i]] = coerceToColumn(in[i], cd.type, cd.size, cd.name);
        }
        rows.push_back(std::move(r));
    }
    for (auto& r : rows) target.table->insert(r);
    return static_cast<long>(rows.size());
}

long runUpdate(const std::shared_ptr<Storage>& db, const UpdateStmt& s) {
    Selected sel = selectRows(db, s.table, s.where.get());
    Compiler c(db, &sel.source);
    std::vector<std::pair<int, Eval>> sets;
    for (const auto& [name, expr] : s.assignments) {
        int idx = sel.source.find("", name);
        if (idx < 0) throw errors::noValueGiven();
        if (sel.source.columns[idx].autoIncrement)
            throw Error("Cannot update '" + sel.source.columns[idx].name + "'; field not updateable.",
                        errors::kIntegrity, 3113);
        sets.emplace_back(idx, c.compile(*expr));
    }
    std::vector<Row> updated;
    updated.reserve(sel.rows.size());
    for (const auto& old : sel.rows) {
        Row r = old;
        for (const auto& [idx, ev] : sets) {
            const auto& cd = sel.source.columns[idx];
            r[idx] = coerceToColumn(ev(old), cd.type, cd.size, cd.name);
        }
        updated.push_back(std::move(r));
    }
    for (std::size_t i = 0; i < updated.size(); ++i) sel.source.table->update(sel.ids[i], updated[i]);
    return static_cast<long>(updated.size());
}

long runDelete(const std::shared_ptr<Storage>& db, const DeleteStmt& s) {
    Selected sel = selectRows(db, s.table, s.where.get());
    for (RowId id : sel.ids) sel.source.table->remove(id);
    return static_cast<long>(sel.ids.size());
}

}  // namespace

Eval Compiler::compileInSelect(const Expr& e) {
    Eval a = compile(*e.left);
    std::shared_ptr<Storage> db = db_;
    std::shared_ptr<SelectStmt> sub = e.select;
    bool neg = e.negated;
    // The subquery reads the statement's own database and does not refer to
    // the outer row, so it runs once, on first use.
    auto set = std::make_shared<std::optional<std::unordered_set<std::string>>>();
    auto sawNull = std::make_shared<bool>(false);
    // Resolve its names now, so that an unknown name fails even when no row is read.
    if (sub->from) {
        Source src = openSelectSource(db, *sub);
        Compiler check(db, &src);
        for (const auto& item : sub->items)
            if (item.expr) check.compile(*item.expr);
        if (sub->where) check.compile(*sub->where);
    }
    return [a, db, sub, neg, set, sawNull](const Row& r) {
        if (!*set) {
            ResultSet rs = runSelect(db, *sub);
            if (rs.columns.size() != 1) throw errors::subqueryFields();
            std::unordered_set<std::string> keys;
            for (const auto& row : rs.rows) {
                if (row[0].isNull()) *sawNull = true;
                else keys.insert(equalityKey(row[0]));
            }
            *set = std::move(keys);
        }
        Value v = a(r);
        if (v.isNull()) return v;
        bool in = (*set)->count(equalityKey(v)) > 0;
        if (!in && *sawNull) return Value();
        return truth(in != neg);
    };
}

std::optional<RowId> findByKey(Table& table, const std::vector<int>& keyColumns, const Row& key) {
    if (keyColumns.empty()) return std::nullopt;
    auto cols = table.columns();
    if (auto hits = table.seek(cols[keyColumns[0]].name, key[0])) {
        for (RowId id : *hits) {
            Row r = table.read(id);
            bool all = true;
            for (std::size_t k = 0; k < keyColumns.size(); ++k)
                if (equalityKey(r[keyColumns[k]]) != equalityKey(key[k])) all = false;
            if (all) return id;
        }
        return std::nullopt;
    }
    std::optional<RowId> found;
    table.scan([&](RowId id, const Row& r) {
        for (std::size_t k = 0; k < keyColumns.size(); ++k)
            if (equalityKey(r[keyColumns[k]]) != equalityKey(key[k])) return true;
        found = id;
        return false;
    });
    return found;
}

namespace {
// Runs a writing statement as one unit on the store it writes to.
template <class F>
long asUnit(Storage& target, F&& work) {
    target.begin();
    try {
        long n = work();
        target.commit();
        return n;
    } catch (...) {
        target.rollback();
        throw;
    }
}

std::shared_ptr<Storage> targetOf(const std::shared_ptr<Storage>& db, const TableRef& ref) {
    return ref.externalPath ? db->openOther(*ref.externalPath) : db;
}
}  // namespace

ExecResult Executor::execute(std::string_view text) {
    Statement st = parseStatement(text);
    ExecResult r;
    if (auto* s = std::get_if<SelectStmt>(&st)) {
        if (s->into) {
            r.rowsAffected = asUnit(*targetOf(db_, *s->into), [&] { return runSelectInto(db_, *s); });
        } else {
            r.isQuery = true;
            r.rows = runSelect(db_, *s);
            r.rowsAffected = -1;
        }
    } else if (auto* ins = std::get_if<InsertStmt>(&st)) {
        r.rowsAffected = asUnit(*targetOf(db_, ins->target), [&] { return runInsert(db_, *ins); });
    } else if (auto* upd = std::get_if<UpdateStmt>(&st)) {
        r.rowsAffected = asUnit(*targetOf(db_, upd->table), [&] { return runUpdate(db_, *upd); });
    } else if (auto* del = std::get_if<DeleteStmt>(&st)) {
        r.rowsAffected = asUnit(*targetOf(db_, del->table), [&] { return runDelete(db_, *del); });
    } else if (auto* alt = std::get_if<AlterAddColumnStmt>(&st)) {
        if (!db_->table(alt->table)) throw errors::tableNotFound(alt->table);
        db_->addColumn(alt->table, alt->column);
        r.rowsAffected = 0;
    } else if (auto* cix = std::get_if<CreateIndexStmt>(&st)) {
        auto t = db_->table(cix->table);
        if (!t) throw errors::tableNotFound(cix->table);
        auto cols = t->columns();
        for (const auto& ic : cix->index.columns) {
            bool ok = std::any_of(cols.begin(), cols.end(), [&](const ColumnDef& c) { return textEquals(c.name, ic.name); });
            if (!ok) throw errors::invalidIndexField(ic.name);
        }
        db_->createIndex(cix->table, cix->index);
        r.rowsAffected = 0;
    }
    return r;
}

ResultSet Executor::query(std::string_view text) {
    Statement st = parseStatement(text);
    auto* s = std::get_if<SelectStmt>(&st);
    if (!s || s->into) throw Error("The statement returns no rows.", errors::kErrorsInCommand, 0);
    return runSelect(db_, *s);
}

}  // namespace sql

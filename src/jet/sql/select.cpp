// SELECT: reading rows through an index or a scan, joins, projection,
// ORDER BY in Jet's General order, DISTINCT and TOP.
#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "jet/sql/binding.h"

namespace sql::detail {

namespace {

// Whether the term is "column = constant" of a kind an index can answer.
bool seekableTerm(const Expr* e, const Source& s, Value& key, std::string& column) {
    if (e->kind != Expr::Kind::Binary || e->op != "=") return false;
    const Expr* col = e->left.get();
    const Expr* lit = e->right.get();
    if (col->kind != Expr::Kind::Column) std::swap(col, lit);
    if (col->kind != Expr::Kind::Column || lit->kind != Expr::Kind::Literal ||
        lit->literal.isNull())
        return false;
    int idx = s.find(col->qualifier, col->name);
    if (idx < 0) return false;
    // A text constant against a number column is Jet's type mismatch, which the scan reports.
    if (isNumericType(s.columns[idx].type) != lit->literal.isNumber()) return false;
    key = lit->literal;
    column = s.columns[idx].name;
    return true;
}

// The rows an index answers for one such term among the top-level AND terms
// of a WHERE: the first term whose column has an index wins; nullopt when
// none has.
std::optional<std::vector<RowId>> indexHits(const Expr* e, const Source& s) {
    if (!e) return std::nullopt;
    if (e->kind == Expr::Kind::Logical && e->op == "AND") {
        for (const auto& term : e->list)
            if (auto hits = indexHits(term.get(), s)) return hits;
        return std::nullopt;
    }
    Value key;
    std::string column;
    if (!seekableTerm(e, s, key, column)) return std::nullopt;
    return s.table->seek(column, key);
}

void joinRows(const std::shared_ptr<Storage>& db, const Source& src, const Expr* where,
              const std::function<void(RowId, const Row&)>& visit);

void andTerms(const Expr& e, std::vector<const Expr*>& out) {
    if (e.kind == Expr::Kind::Logical && e.op == "AND") {
        for (const auto& term : e.list) andTerms(*term, out);
    } else {
        out.push_back(&e);
    }
}

// A scan that tests the WHERE's AND terms one after the other, each on its
// own columns, so that a row failing the first term costs the reading of
// that term's columns only. The terms run as AND runs them: left to right,
// the rest skipped after one that is false, a Null one ruling the row out
// only at the end.
void scanInSteps(const Source& src, const Expr& where,
                 const std::function<void(RowId, const Row&)>& visit, std::vector<bool>& needed,
                 const std::shared_ptr<Storage>& db) {
    std::vector<const Expr*> terms;
    andTerms(where, terms);
    auto unknown = std::make_shared<bool>(false);
    std::vector<ScanStep> steps;
    for (std::size_t k = 0; k < terms.size(); ++k) {
        ScanStep step;
        step.columns.assign(src.columns.size(), false);
        Eval term = Binder(db, &src, &step.columns).compile(*terms[k]);
        for (std::size_t i = 0; i < step.columns.size() && i < needed.size(); ++i)
            if (step.columns[i]) needed[i] = true;
        const bool first = k == 0, last = k + 1 == terms.size();
        step.test = [term, first, last, unknown](const Row& row) {
            if (first) *unknown = false;
            const Value v = term(row);
            if (v.isNull())
                *unknown = true;
            else if (!isTrue(v))
                return false;
            return !(last && *unknown);
        };
        steps.push_back(std::move(step));
    }
    src.table->scan(
        [&](RowId id, const Row& row) {
            visit(id, row);
            return true;
        },
        needed, steps);
}

}  // namespace

void forEachMatch(const std::shared_ptr<Storage>& db, const Source& src, const Expr* where,
                  const std::function<void(RowId, const Row&)>& visit, std::vector<bool>* needed) {
    if (needed && src.storage && src.storage->matchRows(src, where, *needed, visit)) return;
    if (src.joined()) return joinRows(db, src, where, visit);
    std::optional<std::vector<RowId>> hits = indexHits(where, src);
    if (!hits && needed && where) return scanInSteps(src, *where, visit, *needed, db);
    if (hits && needed && where) {
        // The index's rows tested on the WHERE's own columns first, the rest
        // converted for the rows that pass: a Folder's 10 000 rows narrowed
        // to one Page's by a second condition cost the reading of that
        // condition's columns only.
        std::vector<bool> own(src.columns.size(), false);
        Eval test = Binder(db, &src, &own).compile(*where);
        for (std::size_t i = 0; i < own.size() && i < needed->size(); ++i)
            if (own[i]) (*needed)[i] = true;
        std::sort(hits->begin(), hits->end());
        std::vector<RowId> passed;
        src.table->read(*hits, &own, [&](RowId id, const Row& row) {
            if (isTrue(test(row))) passed.push_back(id);
        });
        src.table->read(passed, needed, visit);
        return;
    }
    Binder c(db, &src, needed);
    Eval pred;
    if (where) pred = c.compile(*where);
    auto consider = [&](RowId id, const Row& row) {
        if (!pred || isTrue(pred(row))) visit(id, row);
        return true;
    };
    if (hits) {
        std::sort(hits->begin(), hits->end());
        src.table->read(*hits, needed, [&](RowId id, const Row& row) { consider(id, row); });
    } else if (needed) {
        src.table->scan(consider, *needed);
    } else {
        src.table->scan(consider);
    }
}

namespace {

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
    Binder c(db, &src);
    for (std::size_t j = 0; j < src.joins.size(); ++j) {
        const Part& part = src.parts[j + 1];
        const JoinClause& jc = *src.joins[j];
        // Names in ON may refer to this table and those before it only.
        Source visible = src;
        visible.parts.resize(j + 2);
        Binder onCompiler(db, &visible);
        Eval on = onCompiler.compile(*jc.on);
        std::vector<Row> right;
        part.table->scan([&](RowId, const Row& r) {
            right.push_back(r);
            return true;
        });
        int newCol = -1, oldCol = -1;
        if (jc.on->kind == Expr::Kind::Binary && jc.on->op == "=" &&
            jc.on->left->kind == Expr::Kind::Column && jc.on->right->kind == Expr::Kind::Column) {
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

}  // namespace

Selected selectRows(const std::shared_ptr<Storage>& db, const TableRef& from, const Expr* where) {
    Selected out;
    out.source = openSource(db, from);
    forEachMatch(db, out.source, where, [&](RowId id, const Row& row) {
        out.ids.push_back(id);
        out.rows.push_back(row);
    });
    return out;
}

void finishRows(ResultSet& rs, std::vector<Match>& matches, const SelectStmt& s, bool writable) {
    const std::size_t keys = s.orderBy.size();
    std::vector<std::size_t> order(matches.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::vector<std::vector<SortKey>> text(matches.size());
    auto compare = [&](std::size_t x, std::size_t y) {
        for (std::size_t k = 0; k < keys; ++k) {
            const Value& a = matches[x].order[k];
            const Value& b = matches[y].order[k];
            int cmp = (a.isText() && b.isText()) ? compareSortKeys(text[x][k], text[y][k])
                                                 : orderCompare(a, b);
            if (cmp != 0) return s.orderBy[k].descending ? -cmp : cmp;
        }
        return 0;
    };
    if (keys > 0) {
        for (std::size_t i = 0; i < matches.size(); ++i)
            for (const auto& v : matches[i].order)
                text[i].push_back(v.isText() ? generalSortKey(v.textRef()) : SortKey{});
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t x, std::size_t y) { return compare(x, y) < 0; });
    }

    std::unordered_set<std::string> seen;
    rs.rows.reserve(order.size());
    std::size_t last = 0;
    for (std::size_t oi : order) {
        Match& m = matches[oi];
        // Jet's TOP n does not choose between rows that tie with the n-th on
        // ORDER BY: all of them come back. Without ORDER BY it is the first n.
        if (s.top && static_cast<long>(rs.rows.size()) >= *s.top &&
            (keys == 0 || rs.rows.empty() || compare(last, oi) != 0))
            break;
        if (s.distinct) {
            std::string k;
            for (const auto& v : m.out)
                k += (v.isNull() ? std::string("\x01") : equalityKey(v)) + '\x1f';
            if (!seen.insert(k).second) continue;
        }
        rs.rows.push_back(std::move(m.out));
        rs.rowIds.push_back(m.id);
        if (writable) rs.keys.push_back(std::move(m.key));
        last = oi;
    }
}

ResultSet runSelect(const std::shared_ptr<Storage>& db, const SelectStmt& s) {
    if (s.where && containsAggregate(*s.where)) throw errors::aggregateInWhere(s.where->text());
    if (isGrouped(s)) return runGroupedSelect(db, s);
    ResultSet rs;
    Source source;
    bool haveTable = s.from.has_value();
    if (haveTable) source = openSelectSource(db, s);
    const Source* src = haveTable ? &source : nullptr;
    // The columns the statement reads, so a store may leave the others unconverted.
    std::vector<bool> needed(source.columns.size(), false);
    Binder c(db, src, &needed);

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
                    rs.columns.push_back(
                        {name, cd.type, cd.size, cd.nullable, cd.autoIncrement, idx});
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
    for (const auto& o : s.orderBy) {
        orderEvals.push_back(c.compile(*o.expr));
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
    if (haveTable)
        forEachMatch(db, source, s.where.get(), take, &needed);
    else
        take(-1, Row{});

    bool writable = haveTable && !s.distinct && !source.joined();
    finishRows(rs, matches, s, writable);
    if (writable) {
        rs.baseStorage = source.storage;
        rs.baseTable = source.name;
        rs.keyColumns = keyColumns;
    }
    return rs;
}

}  // namespace sql::detail

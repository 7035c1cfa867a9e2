// SELECT over groups: GROUP BY, HAVING and the aggregates COUNT, SUM, AVG,
// MIN and MAX. Rows are read once; each group keeps running totals, so
// memory grows with the number of groups, not of rows.
#include <unordered_map>

#include "jet/sql/binding.h"

namespace sql::detail {

namespace {

// The running state of one aggregate over one group. Nulls are skipped as
// SQL skips them; COUNT(*) counts rows.
struct Total {
    std::int64_t count = 0;
    bool integral = true;
    std::int64_t intSum = 0;
    double sum = 0;
    Value best;

    void add(const std::string& function, const Value& v) {
        if (v.isNull()) return;
        ++count;
        if (function == "SUM" || function == "AVG") {
            if (!v.isNumber()) throw errors::typeMismatch();
            integral = integral && (v.kind() == Value::Kind::Int || v.kind() == Value::Kind::Bool);
            intSum += integral ? v.asInt() : 0;
            sum += v.asDouble();
        } else if (function == "MIN" || function == "MAX") {
            if (best.isNull()) {
                best = v;
                return;
            }
            // Text in Jet's General order, case ignored, as ORDER BY sorts it.
            int c = v.isText() && best.isText() ? compareGeneral(v.textRef(), best.textRef())
                                                : orderCompare(v, best);
            if (function == "MIN" ? c < 0 : c > 0) best = v;
        }
    }
    Value result(const std::string& function) const {
        if (function == "COUNT") return Value::integer(count);
        if (count == 0) return Value();
        if (function == "SUM") return integral ? Value::integer(intSum) : Value::real(sum);
        if (function == "AVG") return Value::real(sum / static_cast<double>(count));
        return best;
    }
};

struct Group {
    Row keys;
    std::vector<Total> totals;
};

ColumnType aggregateType(const Expr& a, const Source* src) {
    if (a.name == "COUNT") return ColumnType::Long;
    if (a.name == "AVG") return ColumnType::Double;
    if (src && a.left && a.left->kind == Expr::Kind::Column) {
        int idx = src->find(a.left->qualifier, a.left->name);
        if (idx >= 0) {
            ColumnType t = src->columns[idx].type;
            if (a.name == "SUM" && (t == ColumnType::Byte || t == ColumnType::Integer))
                return ColumnType::Long;
            return t;
        }
    }
    return ColumnType::Double;
}

}  // namespace

ResultSet runGroupedSelect(const std::shared_ptr<Storage>& db, const SelectStmt& s) {
    ResultSet rs;
    Source source;
    const bool haveTable = s.from.has_value();
    if (haveTable) source = openSelectSource(db, s);
    const Source* src = haveTable ? &source : nullptr;
    std::vector<bool> needed(source.columns.size(), false);
    Binder rows(db, src, &needed);

    for (const auto& item : s.items)
        if (!item.expr) throw errors::groupOnStar();
    GroupScope scope;
    std::vector<Eval> keyEvals;
    for (const auto& g : s.groupBy) {
        if (containsAggregate(*g)) throw errors::aggregateInGroupBy(g->text());
        scope.keys.push_back(g.get());
        keyEvals.push_back(rows.compile(*g));
    }
    for (const auto& item : s.items) collectAggregates(*item.expr, scope.aggregates);
    if (s.having) collectAggregates(*s.having, scope.aggregates);
    for (const auto& o : s.orderBy) collectAggregates(*o.expr, scope.aggregates);
    std::vector<Eval> argEvals;
    for (const Expr* a : scope.aggregates) {
        if (a->left && containsAggregate(*a->left)) throw errors::aggregateInExpression(a->text());
        argEvals.push_back(a->left ? rows.compile(*a->left) : Eval());
    }

    // Items, HAVING and ORDER BY read group rows.
    Binder groups(db, src, nullptr, &scope);
    std::vector<Eval> itemEvals, orderEvals;
    int exprNo = 1000;
    for (const auto& item : s.items) {
        ResultColumn rc;
        const Expr& e = *item.expr;
        itemEvals.push_back(groups.compile(e));
        if (e.kind == Expr::Kind::Column && src) {
            const auto& cd = source.columns[source.find(e.qualifier, e.name)];
            rc = {cd.name, cd.type, cd.size, true, false, -1};
        } else {
            rc.name = "Expr" + std::to_string(exprNo++);
            if (e.kind == Expr::Kind::Aggregate) rc.type = aggregateType(e, src);
        }
        if (!item.alias.empty()) rc.name = item.alias;
        rs.columns.push_back(rc);
    }
    Eval having = s.having ? groups.compile(*s.having) : Eval();
    for (const auto& o : s.orderBy) orderEvals.push_back(groups.compile(*o.expr));

    // Groups in the order their first rows are read; Jet's "=" decides
    // which keys fall together (text without regard to case).
    std::vector<Group> found;
    std::unordered_map<std::string, std::size_t> index;
    auto visit = [&](RowId, const Row& row) {
        Row keys;
        std::string k;
        for (const auto& ev : keyEvals) {
            keys.push_back(ev(row));
            k += (keys.back().isNull() ? std::string("\x01") : equalityKey(keys.back())) + '\x1f';
        }
        auto [it, fresh] = index.emplace(std::move(k), found.size());
        if (fresh) found.push_back({std::move(keys), std::vector<Total>(scope.aggregates.size())});
        Group& g = found[it->second];
        for (std::size_t i = 0; i < scope.aggregates.size(); ++i)
            g.totals[i].add(scope.aggregates[i]->name,
                            argEvals[i] ? argEvals[i](row) : Value::integer(1));
    };
    if (haveTable)
        forEachMatch(db, source, s.where.get(), visit, &needed);
    else
        visit(-1, Row{});
    // Without GROUP BY the whole table is one group, even when it is empty.
    if (found.empty() && s.groupBy.empty())
        found.push_back({Row{}, std::vector<Total>(scope.aggregates.size())});

    std::vector<Match> matches;
    for (const Group& g : found) {
        Row row = g.keys;
        for (std::size_t i = 0; i < scope.aggregates.size(); ++i)
            row.push_back(g.totals[i].result(scope.aggregates[i]->name));
        if (having && !isTrue(having(row))) continue;
        Match m;
        for (const auto& ev : itemEvals) m.out.push_back(ev(row));
        for (const auto& ev : orderEvals) m.order.push_back(ev(row));
        matches.push_back(std::move(m));
    }
    finishRows(rs, matches, s, false);
    return rs;
}

}  // namespace sql::detail

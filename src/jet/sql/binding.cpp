#include "jet/sql/binding.h"

#include <optional>
#include <unordered_set>

namespace sql::detail {

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

int orderCompare(const Value& a, const Value& b) {
    if (a.isNull() || b.isNull()) return a.isNull() == b.isNull() ? 0 : a.isNull() ? -1 : 1;
    if (a.isNumber() != b.isNumber()) return a.isNumber() ? -1 : 1;
    return compareValues(a, b, false);
}

bool containsAggregate(const Expr& e) {
    if (e.kind == Expr::Kind::Aggregate) return true;
    for (const Expr* c : {e.left.get(), e.right.get(), e.third.get()})
        if (c && containsAggregate(*c)) return true;
    for (const auto& c : e.list)
        if (containsAggregate(*c)) return true;
    return false;
}

void collectAggregates(const Expr& e, std::vector<const Expr*>& out) {
    if (e.kind == Expr::Kind::Aggregate) {
        out.push_back(&e);
        return;
    }
    for (const Expr* c : {e.left.get(), e.right.get(), e.third.get()})
        if (c) collectAggregates(*c, out);
    for (const auto& c : e.list) collectAggregates(*c, out);
}

bool isGrouped(const SelectStmt& s) {
    if (!s.groupBy.empty() || s.having) return true;
    for (const auto& item : s.items)
        if (item.expr && containsAggregate(*item.expr)) return true;
    for (const auto& o : s.orderBy)
        if (containsAggregate(*o.expr)) return true;
    return false;
}

namespace {

class ExprCompiler {
  public:
    ExprCompiler(const std::shared_ptr<Storage>& db, const Source* source,
                 std::vector<bool>* used = nullptr, const GroupScope* group = nullptr)
        : db_(db), source_(source), used_(used), group_(group) {}

    Eval compile(const Expr& e) {
        if (group_) {
            if (int slot = groupSlot(e); slot >= 0) return [slot](const Row& r) { return r[slot]; };
            if (e.kind == Expr::Kind::Column) throw errors::notInAggregate(e.text());
        }
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
                return [a = std::move(a)](const Row& r) {
                    Value v = a(r);
                    return v.isNull() ? v : truth(!isTrue(v));
                };
            }
            case Expr::Kind::Negate: {
                Eval a = compile(*e.left);
                return [a = std::move(a)](const Row& r) {
                    Value v = a(r);
                    if (v.isNull()) return v;
                    if (v.kind() == Value::Kind::Int || v.kind() == Value::Kind::Bool)
                        return Value::integer(-v.asInt());
                    if (v.kind() == Value::Kind::Text) throw errors::typeMismatch();
                    return Value::real(-v.asDouble());
                };
            }
            case Expr::Kind::IsNull: {
                Eval a = compile(*e.left);
                bool neg = e.negated;
                return
                    [a = std::move(a), neg](const Row& r) { return truth(a(r).isNull() != neg); };
            }
            case Expr::Kind::Like:
                return compileLike(e);
            case Expr::Kind::Between: {
                Eval a = compile(*e.left), lo = compile(*e.right), hi = compile(*e.third);
                bool neg = e.negated;
                return [a = std::move(a), lo = std::move(lo), hi = std::move(hi),
                        neg](const Row& r) {
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
                return [a = std::move(a), items = std::move(items), neg](const Row& r) {
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
            case Expr::Kind::InSelect:
                return compileInSelect(e);
            case Expr::Kind::Binary:
                return compileBinary(e);
            case Expr::Kind::Logical:
                return compileLogical(e);
            case Expr::Kind::Aggregate:
                // Grouped statements read aggregates from their group rows;
                // anywhere else one has no rows to run over.
                throw errors::aggregateInExpression(e.text());
        }
        throw errors::noValueGiven();
    }

  private:
    // Where a group row holds e: an aggregate of the statement, or an
    // expression the statement groups by. -1 when it holds neither.
    int groupSlot(const Expr& e) const {
        if (e.kind == Expr::Kind::Aggregate) {
            for (std::size_t i = 0; i < group_->aggregates.size(); ++i)
                if (group_->aggregates[i] == &e) return static_cast<int>(group_->keys.size() + i);
            return -1;
        }
        for (std::size_t i = 0; i < group_->keys.size(); ++i)
            if (sameExpr(e, *group_->keys[i])) return static_cast<int>(i);
        return -1;
    }
    // The same expression written twice, as Jet matches a selected
    // expression with one of GROUP BY: names resolved, case ignored.
    bool sameExpr(const Expr& a, const Expr& b) const {
        if (a.kind != b.kind || a.op != b.op || a.negated != b.negated ||
            a.list.size() != b.list.size())
            return false;
        switch (a.kind) {
            case Expr::Kind::Column: {
                int x = source_ ? source_->find(a.qualifier, a.name) : -1;
                int y = source_ ? source_->find(b.qualifier, b.name) : -1;
                return x >= 0 && x == y;
            }
            case Expr::Kind::Literal:
                return a.literal == b.literal;
            case Expr::Kind::InSelect:
                return false;
            case Expr::Kind::Aggregate:
                if (a.name != b.name) return false;
                break;
            default:
                break;
        }
        auto same = [&](const Expr* x, const Expr* y) {
            return (!x && !y) || (x && y && sameExpr(*x, *y));
        };
        if (!same(a.left.get(), b.left.get()) || !same(a.right.get(), b.right.get()) ||
            !same(a.third.get(), b.third.get()))
            return false;
        for (std::size_t i = 0; i < a.list.size(); ++i)
            if (!sameExpr(*a.list[i], *b.list[i])) return false;
        return true;
    }

    // Null as SQL's three-valued logic has it: a false operand decides AND,
    // a true one decides OR, otherwise any Null makes the answer Null.
    Eval compileLogical(const Expr& e) {
        std::vector<Eval> operands;
        operands.reserve(e.list.size());
        for (const auto& x : e.list) operands.push_back(compile(*x));
        const bool isAnd = e.op == "AND";
        return [operands = std::move(operands), isAnd](const Row& r) {
            bool sawNull = false;
            for (const auto& op : operands) {
                Value v = op(r);
                if (v.isNull())
                    sawNull = true;
                else if (isTrue(v) != isAnd)
                    return truth(!isAnd);
            }
            return sawNull ? Value() : truth(isAnd);
        };
    }
    Eval compileLike(const Expr& e) {
        Eval a = compile(*e.left);
        bool neg = e.negated;
        if (e.right->kind == Expr::Kind::Literal) {
            const Value& p = e.right->literal;
            if (p.isNull()) return [](const Row&) { return Value(); };
            auto pattern = std::make_shared<LikePattern>(p.toString(), LikePattern::Dialect::Sql);
            if (e.left->kind == Expr::Kind::Column && !group_) {
                // The common "column LIKE 'pattern'": read the value in place.
                int idx = source_ ? source_->find(e.left->qualifier, e.left->name) : -1;
                if (idx < 0) throw errors::noValueGiven();
                mark(idx);
                return [idx, pattern, neg](const Row& r) {
                    const Value& v = r[idx];
                    if (v.isNull()) return Value();
                    bool m =
                        v.isText() ? pattern->matches(v.textRef()) : pattern->matches(v.toString());
                    return truth(m != neg);
                };
            }
            return [a = std::move(a), pattern, neg](const Row& r) {
                Value v = a(r);
                if (v.isNull()) return v;
                bool m =
                    v.isText() ? pattern->matches(v.textRef()) : pattern->matches(v.toString());
                return truth(m != neg);
            };
        }
        Eval b = compile(*e.right);
        return [a = std::move(a), b = std::move(b), neg](const Row& r) {
            Value v = a(r), p = b(r);
            if (v.isNull() || p.isNull()) return Value();
            return truth(
                LikePattern(p.toString(), LikePattern::Dialect::Sql).matches(v.toString()) != neg);
        };
    }

    Eval compileInSelect(const Expr& e);

    Eval compileBinary(const Expr& e) {
        Eval a = compile(*e.left), b = compile(*e.right);
        const std::string& op = e.op;
        if (op == "&")
            return [a = std::move(a), b = std::move(b)](const Row& r) {
                Value x = a(r), y = b(r);
                if (x.isNull() && y.isNull()) return Value();
                return Value::text(x.toString() + y.toString());
            };
        if (op == "=" || op == "<>" || op == "<" || op == "<=" || op == ">" || op == ">=") {
            int which = op == "="    ? 0
                        : op == "<>" ? 1
                        : op == "<"  ? 2
                        : op == "<=" ? 3
                        : op == ">"  ? 4
                                     : 5;
            return [a = std::move(a), b = std::move(b), which](const Row& r) {
                Value x = a(r), y = b(r);
                if (x.isNull() || y.isNull()) return Value();
                int c = compareValues(x, y, which <= 1);
                switch (which) {
                    case 0:
                        return truth(c == 0);
                    case 1:
                        return truth(c != 0);
                    case 2:
                        return truth(c < 0);
                    case 3:
                        return truth(c <= 0);
                    case 4:
                        return truth(c > 0);
                    default:
                        return truth(c >= 0);
                }
            };
        }
        char opc = op[0];
        return [a = std::move(a), b = std::move(b), opc](const Row& r) {
            Value x = a(r), y = b(r);
            if (x.isNull() || y.isNull()) return Value();
            if (opc == '+' && x.isText() && y.isText())
                return Value::text(x.textRef() + y.textRef());
            if (!x.isNumber() || !y.isNumber()) throw errors::typeMismatch();
            bool ints = (x.kind() == Value::Kind::Int || x.kind() == Value::Kind::Bool) &&
                        (y.kind() == Value::Kind::Int || y.kind() == Value::Kind::Bool);
            switch (opc) {
                case '+':
                    return ints ? Value::integer(x.asInt() + y.asInt())
                                : Value::real(x.asDouble() + y.asDouble());
                case '-':
                    return ints ? Value::integer(x.asInt() - y.asInt())
                                : Value::real(x.asDouble() - y.asDouble());
                case '*':
                    return ints ? Value::integer(x.asInt() * y.asInt())
                                : Value::real(x.asDouble() * y.asDouble());
                default:
                    if (y.asDouble() == 0) throw Error("Division by zero", errors::kIntegrity, 11);
                    return Value::real(x.asDouble() / y.asDouble());
            }
        };
    }

    void mark(int idx) {
        if (used_ && idx >= 0 && static_cast<std::size_t>(idx) < used_->size())
            (*used_)[idx] = true;
    }

    std::shared_ptr<Storage> db_;
    const Source* source_;
    std::vector<bool>* used_;
    const GroupScope* group_;
};

// "T.key IN (SELECT T.key FROM T WHERE w)" over the statement's own table T,
// key its one-column primary key: a row is in the set exactly when w holds
// for the row itself (the key is unique and never Null). The search window
// composes its block-name term so; asked as w, the table is read once
// instead of twice. Answers the inner source when the shape fits.
std::optional<Source> sameRowSubquery(const std::shared_ptr<Storage>& db, const Source* outer,
                                      const Expr& e) {
    const SelectStmt& sub = *e.select;
    if (!outer || outer->joined() || !sub.from || sub.from->externalPath || !sub.joins.empty() ||
        sub.distinct || sub.top || !sub.where || isGrouped(sub) || sub.items.size() != 1 ||
        !sub.items[0].expr || sub.items[0].expr->kind != Expr::Kind::Column ||
        e.left->kind != Expr::Kind::Column)
        return std::nullopt;
    if (!textEquals(sub.from->name, outer->name)) return std::nullopt;
    Source inner = openSelectSource(db, sub);
    if (inner.storage != outer->storage || inner.table->name() != outer->table->name() ||
        inner.columns.size() != outer->columns.size())
        return std::nullopt;
    const int left = outer->find(e.left->qualifier, e.left->name);
    const int right = inner.find(sub.items[0].expr->qualifier, sub.items[0].expr->name);
    if (left < 0 || left != right) return std::nullopt;
    for (const auto& ix : outer->table->indexes())
        if (ix.primary && ix.columns.size() == 1 &&
            textEquals(ix.columns[0].name, outer->columns[left].name))
            return inner;
    return std::nullopt;
}

Eval ExprCompiler::compileInSelect(const Expr& e) {
    if (auto inner = group_ ? std::nullopt : sameRowSubquery(db_, source_, e)) {
        // Compiled against the subquery's own names; its rows are laid out
        // as the statement's, so w reads the statement's row in place.
        ExprCompiler c(db_, &*inner, used_);
        for (const auto& item : e.select->items) c.compile(*item.expr);
        Eval w = c.compile(*e.select->where);
        const bool neg = e.negated;
        return [w, neg](const Row& r) { return truth(isTrue(w(r)) != neg); };
    }
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
        ExprCompiler check(db, &src);
        if (!isGrouped(*sub))
            for (const auto& item : sub->items)
                if (item.expr) check.compile(*item.expr);
        if (sub->where) check.compile(*sub->where);
    }
    return [a = std::move(a), db, sub, neg, set, sawNull](const Row& r) {
        if (!*set) {
            ResultSet rs = runSelect(db, *sub);
            if (rs.columns.size() != 1) throw errors::subqueryFields();
            std::unordered_set<std::string> keys;
            for (const auto& row : rs.rows) {
                if (row[0].isNull())
                    *sawNull = true;
                else
                    keys.insert(equalityKey(row[0]));
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

}  // namespace

Eval Binder::compile(const Expr& e) const {
    return ExprCompiler(db_, source_, used_, group_).compile(e);
}

}  // namespace sql::detail

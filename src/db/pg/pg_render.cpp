#include "db/pg/pg_render.h"

#include <cstdio>

namespace db::pg {

std::string ident(const std::string& name) {
    std::string q = "\"";
    for (char c : name) q += c == '"' ? std::string("\"\"") : std::string(1, c);
    return q + "\"";
}

std::string literal(const std::string& text) {
    std::string q = "'";
    for (char c : text) q += c == '\'' ? std::string("''") : std::string(1, c);
    return q + "'";
}

namespace {

using sql::Expr;
using sql::Value;
using sql::detail::Source;

std::string folded(const std::string& text) { return sql::utf8Encode(sql::foldCase(text)); }

// The server's folding of a text column: its lower() under a UTF-8 locale
// agrees with Jet's on the letters catalogues hold, ß aside.
std::string foldSql(const std::string& e) { return "replace(lower(" + e + "), 'ß', 'ss')"; }

enum class Kind { Number, Text, Other };

struct Operand {
    std::string sql;
    Kind kind;
};

bool isNumber(sql::ColumnType t) {
    return sql::isNumericType(t) && t != sql::ColumnType::Boolean && t != sql::ColumnType::DateTime;
}

// A Jet LIKE pattern (% _ [..]) over folded text as the server's LIKE, or
// as an anchored regular expression when it holds character classes.
std::string likeSql(const std::string& subject, const std::string& pattern) {
    const std::u32string p = sql::utf8Decode(pattern);
    std::string like, regex = "^";
    bool classes = false;
    auto lit = [&](const std::u32string& chars) {
        const std::string f = folded(sql::utf8Encode(chars));
        for (char c : f) {
            if (c == '\\' || c == '%' || c == '_') like += '\\';
            like += c;
            if (!std::isalnum(static_cast<unsigned char>(c)) &&
                !(static_cast<unsigned char>(c) & 0x80))
                regex += '\\';
            regex += c;
        }
    };
    for (std::size_t i = 0; i < p.size(); ++i) {
        const char32_t c = p[i];
        if (c == '%') {
            like += '%';
            regex += ".*";
        } else if (c == '_') {
            like += '_';
            regex += '.';
        } else if (c == '[') {
            const auto close = p.find(']', i + 1);
            if (close == std::u32string::npos) {
                lit(p.substr(i, 1));
                continue;
            }
            std::u32string body = p.substr(i + 1, close - i - 1);
            i = close;
            if (body.size() == 1 && body[0] != '!') {
                lit(body);
                continue;
            }
            classes = true;
            regex += '[';
            std::size_t k = 0;
            if (!body.empty() && body[0] == '!') {
                regex += '^';
                k = 1;
            }
            for (; k < body.size(); ++k) {
                if (body[k] == '-' && k > 0 && k + 1 < body.size()) {
                    regex += '-';
                    continue;
                }
                const std::string f = folded(sql::utf8Encode(body.substr(k, 1)));
                for (char ch : f) {
                    if (!std::isalnum(static_cast<unsigned char>(ch)) &&
                        !(static_cast<unsigned char>(ch) & 0x80))
                        regex += '\\';
                    regex += ch;
                }
            }
            regex += ']';
        } else {
            lit(p.substr(i, 1));
        }
    }
    if (classes) return foldSql(subject) + " ~ " + literal(regex + "$");
    return foldSql(subject) + " LIKE " + literal(like);
}

class Renderer {
  public:
    Renderer(const Source& s, std::string prefix, int& subqueries)
        : s_(s), prefix_(std::move(prefix)), subqueries_(subqueries) {}

    std::string alias(std::size_t part) const { return prefix_ + std::to_string(part); }

    std::optional<Operand> column(const std::string& qualifier, const std::string& name,
                                  std::size_t partLimit = SIZE_MAX) const {
        int idx;
        try {
            idx = s_.find(qualifier, name, partLimit);
        } catch (const sql::Error&) {
            return std::nullopt;
        }
        if (idx < 0) return std::nullopt;
        std::size_t part = 0;
        while (part + 1 < s_.parts.size() && s_.parts[part + 1].offset <= std::size_t(idx)) ++part;
        const auto& c = s_.columns[static_cast<std::size_t>(idx)];
        const Kind k = sql::isTextType(c.type) ? Kind::Text
                       : isNumber(c.type)      ? Kind::Number
                                               : Kind::Other;
        return Operand{alias(part) + "." + ident(c.name), k};
    }

    std::optional<Operand> operand(const Expr& e) const {
        switch (e.kind) {
            case Expr::Kind::Column:
                return column(e.qualifier, e.name);
            case Expr::Kind::Literal:
                if (e.literal.kind() == Value::Kind::Int)
                    return Operand{std::to_string(e.literal.asInt()), Kind::Number};
                if (e.literal.kind() == Value::Kind::Double) {
                    char buf[40];
                    std::snprintf(buf, sizeof buf, "%.17g", e.literal.asDouble());
                    return Operand{buf, Kind::Number};
                }
                if (e.literal.isText())
                    return Operand{literal(folded(e.literal.textRef())), Kind::Text};
                return std::nullopt;
            case Expr::Kind::Negate: {
                auto a = operand(*e.left);
                if (!a || a->kind != Kind::Number) return std::nullopt;
                return Operand{"(-(" + a->sql + ")::float8)", Kind::Number};
            }
            case Expr::Kind::Binary: {
                auto a = operand(*e.left), b = operand(*e.right);
                if (!a || !b) return std::nullopt;
                if (e.op == "&" && a->kind == Kind::Text && b->kind == Kind::Text)
                    return Operand{"(coalesce(" + a->sql + ", '') || coalesce(" + b->sql + ", ''))",
                                   Kind::Text};
                // As doubles: the server refuses an overflow Jet widens.
                if ((e.op == "+" || e.op == "-" || e.op == "*") && a->kind == Kind::Number &&
                    b->kind == Kind::Number)
                    return Operand{"(" + a->sql + "::float8 " + e.op + " " + b->sql + "::float8)",
                                   Kind::Number};
                return std::nullopt;
            }
            default:
                return std::nullopt;
        }
    }

    // A text operand folded: literals are folded already, by Jet's own rules.
    static std::string side(const Operand& o, const Expr& e) {
        if (o.kind != Kind::Text || e.kind == Expr::Kind::Literal) return o.sql;
        return foldSql(o.sql);
    }

    std::optional<std::string> condition(const Expr& e) const {
        switch (e.kind) {
            case Expr::Kind::Logical: {
                std::vector<std::string> parts;
                for (const auto& t : e.list) {
                    auto c = condition(*t);
                    if (c)
                        parts.push_back(*c);
                    else if (e.op == "OR")
                        return std::nullopt;
                }
                if (parts.empty()) return std::nullopt;
                std::string out;
                for (const auto& p : parts) out += (out.empty() ? "(" : " " + e.op + " ") + p;
                return out + ")";
            }
            case Expr::Kind::IsNull: {
                if (e.left->kind != Expr::Kind::Column) return std::nullopt;
                auto a = column(e.left->qualifier, e.left->name);
                if (!a) return std::nullopt;
                return a->sql + (e.negated ? " IS NOT NULL" : " IS NULL");
            }
            case Expr::Kind::Binary: {
                auto a = operand(*e.left), b = operand(*e.right);
                if (!a || !b || a->kind != b->kind) return std::nullopt;
                if (a->kind == Kind::Number && (e.op == "=" || e.op == "<>" || e.op == "<" ||
                                                e.op == "<=" || e.op == ">" || e.op == ">="))
                    return "(" + a->sql + " " + e.op + " " + b->sql + ")";
                if (a->kind == Kind::Text && e.op == "=")
                    return "(" + side(*a, *e.left) + " = " + side(*b, *e.right) + ")";
                return std::nullopt;
            }
            case Expr::Kind::Like: {
                auto a = operand(*e.left);
                if (e.negated || !a || a->kind != Kind::Text ||
                    e.right->kind != Expr::Kind::Literal || !e.right->literal.isText())
                    return std::nullopt;
                return likeSql(a->sql, e.right->literal.textRef());
            }
            case Expr::Kind::Between: {
                auto a = operand(*e.left), b = operand(*e.right), c = operand(*e.third);
                if (e.negated || !a || !b || !c || a->kind != Kind::Number ||
                    b->kind != Kind::Number || c->kind != Kind::Number)
                    return std::nullopt;
                return "(" + a->sql + " BETWEEN SYMMETRIC " + b->sql + " AND " + c->sql + ")";
            }
            case Expr::Kind::InList: {
                auto a = operand(*e.left);
                if (e.negated || !a || a->kind == Kind::Other) return std::nullopt;
                std::string list;
                for (const auto& item : e.list) {
                    auto v = operand(*item);
                    if (!v || v->kind != a->kind || item->kind != Expr::Kind::Literal)
                        return std::nullopt;
                    list += (list.empty() ? "" : ", ") + v->sql;
                }
                return "(" + side(*a, *e.left) + " IN (" + list + "))";
            }
            case Expr::Kind::InSelect:
                return inSelect(e);
            default:
                return std::nullopt;
        }
    }

  private:
    // The subquery without its TOP, ORDER BY and grouping: a larger set
    // lets through more rows, never fewer.
    std::optional<std::string> inSelect(const Expr& e) const {
        auto a = operand(*e.left);
        const auto& sub = *e.select;
        if (e.negated || !a || a->kind == Kind::Other || !sub.from || sub.from->externalPath ||
            !sub.joins.empty() || sub.items.size() != 1 || !sub.items[0].expr ||
            sub.items[0].expr->kind != Expr::Kind::Column || !s_.storage)
            return std::nullopt;
        Source inner;
        try {
            inner = sql::detail::openSelectSource(s_.storage, sub);
        } catch (const sql::Error&) {
            return std::nullopt;
        }
        Renderer r(inner, "s" + std::to_string(++subqueries_) + "_", subqueries_);
        auto col = r.column(sub.items[0].expr->qualifier, sub.items[0].expr->name);
        if (!col || col->kind != a->kind) return std::nullopt;
        std::string out = side(*a, *e.left) + " IN (SELECT " + side(*col, *sub.items[0].expr) +
                          " FROM " + ident(inner.name) + " " + r.alias(0);
        if (sub.where)
            if (auto w = r.condition(*sub.where)) out += " WHERE " + *w;
        return "(" + out + "))";
    }

    const Source& s_;
    std::string prefix_;
    int& subqueries_;
};

}  // namespace

std::optional<RenderedMatch> renderMatch(
    const Source& source, const Expr* where, const std::vector<bool>& fetch,
    const std::function<std::string(const std::string& table)>& idColumn) {
    int subqueries = 0;
    Renderer r(source, "t", subqueries);
    RenderedMatch out;
    std::string list, from = ident(source.parts[0].table->name()) + " " + r.alias(0);
    for (std::size_t p = 0; p < source.parts.size(); ++p) {
        const std::string id = r.alias(p) + "." + ident(idColumn(source.parts[p].table->name()));
        list += (p ? ", " : "") + id;
        if (p == 0) continue;
        const sql::JoinClause& jc = *source.joins[p - 1];
        const Expr& on = *jc.on;
        if (on.kind != Expr::Kind::Binary || on.op != "=" || on.left->kind != Expr::Kind::Column ||
            on.right->kind != Expr::Kind::Column)
            return std::nullopt;
        auto a = r.column(on.left->qualifier, on.left->name, p + 1);
        auto b = r.column(on.right->qualifier, on.right->name, p + 1);
        if (!a || !b || a->kind != Kind::Number || b->kind != Kind::Number) return std::nullopt;
        from += std::string(jc.kind == sql::JoinClause::Kind::Left ? " LEFT" : " INNER") +
                " JOIN " + ident(source.parts[p].table->name()) + " " + r.alias(p) + " ON " +
                a->sql + " = " + b->sql;
    }
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
        if (i >= fetch.size() || !fetch[i]) continue;
        std::size_t part = 0;
        while (part + 1 < source.parts.size() && source.parts[part + 1].offset <= i) ++part;
        list += ", " + r.alias(part) + "." + ident(source.columns[i].name);
        out.columns.push_back(static_cast<int>(i));
    }
    out.sql = "SELECT " + list + " FROM " + from;
    if (where)
        if (auto w = r.condition(*where)) out.sql += " WHERE " + *w;
    return out;
}

}  // namespace db::pg

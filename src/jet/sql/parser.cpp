// Recursive-descent parser for the statements of Jet's ANSI-92 dialect that
// the program composes. Errors name the clause the way Jet does.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <functional>

#include "jet/sql/ast.h"
#include "jet/sql/date_literal.h"
#include "jet/sql/error.h"
#include "jet/sql/lexer.h"

namespace sql {

namespace {

// A parse failure before it is given its clause's message.
struct Fail {
    enum Why { Incomplete, Extra, BadString, BadDate } why;
};

// Beyond these a statement is refused as Jet refuses what it cannot plan:
// the length keeps token and tree memory bounded, the height of an
// expression tree bounds every recursive walk over it (compiling,
// evaluating, destroying), so no statement can exhaust the stack. AND and
// OR chains are flat and do not count towards the height.
constexpr std::size_t kMaxStatementLength = 1 << 20;
constexpr int kMaxNesting = 200;
constexpr int kMaxHeight = 1000;

bool isAggregateName(std::string_view w) {
    for (const char* a : {"COUNT", "SUM", "AVG", "MIN", "MAX"}) {
        if (w.size() != std::string_view(a).size()) continue;
        bool same = true;
        for (std::size_t i = 0; i < w.size() && same; ++i)
            same = std::toupper(static_cast<unsigned char>(w[i])) == a[i];
        if (same) return true;
    }
    return false;
}

const char* const kReserved[] = {"SELECT", "FROM",   "WHERE", "AND",    "OR",       "NOT",
                                 "LIKE",   "IS",     "NULL",  "IN",     "ORDER",    "BY",
                                 "INTO",   "VALUES", "SET",   "AS",     "ON",       "BETWEEN",
                                 "GROUP",  "HAVING", "UNION", "INSERT", "UPDATE",   "DELETE",
                                 "JOIN",   "INNER",  "LEFT",  "RIGHT",  "DISTINCT", "TOP"};

std::string upper(std::string_view s) {
    std::string u(s);
    for (auto& c : u) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return u;
}

class Parser {
  public:
    explicit Parser(std::string_view sql)
        : source_(std::make_shared<const std::string>(sql)),
          sql_(*source_),
          toks_(tokenize(sql_)) {}

    Statement statement() {
        const Token& t = peek();
        if (t.isWord("SELECT")) return selectStatement();
        if (t.isWord("INSERT")) return insertStatement();
        if (t.isWord("UPDATE")) return updateStatement();
        if (t.isWord("DELETE")) return deleteStatement();
        if (t.isWord("ALTER")) return alterStatement();
        if (t.isWord("CREATE")) return createStatement();
        for (const char* w : {"DROP", "TRANSFORM", "PROCEDURE", "PARAMETERS", "GRANT", "REVOKE"})
            if (t.isWord(w)) throw Unsupported(w);
        throw errors::invalidStatement();
    }

  private:
    // ---- token helpers
    const Token& peek(std::size_t ahead = 0) const {
        return toks_[std::min(pos_ + ahead, toks_.size() - 1)];
    }
    const Token& next() {
        const Token& t = peek();
        if (pos_ < toks_.size() - 1) ++pos_;
        return t;
    }
    bool acceptWord(std::string_view w) {
        if (!peek().isWord(w)) return false;
        next();
        return true;
    }
    bool acceptSymbol(std::string_view s) {
        if (!peek().isSymbol(s)) return false;
        next();
        return true;
    }
    static bool reserved(const Token& t) {
        if (t.kind != Token::Kind::Word) return false;
        for (const char* r : kReserved)
            if (t.isWord(r)) return true;
        return false;
    }
    bool atName() const {
        const Token& t = peek();
        return (t.kind == Token::Kind::Word && !reserved(t)) || t.kind == Token::Kind::Bracketed;
    }
    std::string name() {
        if (!atName()) throw failFor(peek());
        return next().text;
    }
    Fail failFor(const Token& t) const {
        if (t.kind == Token::Kind::BadString) return Fail{Fail::BadString};
        if (t.kind == Token::Kind::BadDate) return Fail{Fail::BadDate};
        return Fail{t.kind == Token::Kind::End ? Fail::Incomplete : Fail::Extra};
    }
    bool atStatementEnd() {
        if (peek().isSymbol(";")) {
            std::size_t save = pos_;
            next();
            if (peek().kind == Token::Kind::End) return true;
            pos_ = save;
            return false;
        }
        return peek().kind == Token::Kind::End;
    }
    // Source text from a token to the end of its clause (the next top-level
    // ORDER BY or the end), as Jet quotes it in messages.
    std::string clauseText(std::size_t fromTok) const {
        std::size_t start = toks_[fromTok].pos;
        int depth = 0;
        std::size_t end = sql_.size();
        for (std::size_t i = fromTok; i < toks_.size(); ++i) {
            const Token& t = toks_[i];
            if (t.isSymbol("(")) ++depth;
            if (t.isSymbol(")")) --depth;
            if (depth == 0 && t.isWord("ORDER") && i > fromTok) {
                end = t.pos;
                break;
            }
            if (t.kind == Token::Kind::End) end = t.pos;
        }
        std::string s(sql_.substr(start, end - start));
        while (!s.empty() &&
               (s.back() == ' ' || s.back() == ';' || s.back() == '\r' || s.back() == '\n'))
            s.pop_back();
        return s;
    }
    // Points a node at its source text, from a token to the current one.
    void span(Expr& e, std::size_t fromTok) const {
        e.source = source_;
        e.textPos = toks_[fromTok].pos;
        std::size_t end = pos_ > fromTok ? toks_[pos_ - 1].pos + toks_[pos_ - 1].len : e.textPos;
        e.textLen = end - e.textPos;
    }
    ExprPtr finish(ExprPtr e, std::size_t fromTok) const {
        span(*e, fromTok);
        int below = 0;
        for (const Expr* c : {e->left.get(), e->right.get(), e->third.get()})
            if (c) below = std::max(below, c->height);
        for (const auto& c : e->list) below = std::max(below, c->height);
        e->height = below + 1;
        if (e->height > kMaxHeight) throw errors::queryTooComplex();
        return e;
    }
    Error expressionError(const Fail& f, std::size_t fromTok) const {
        std::string text = clauseText(fromTok);
        if (f.why == Fail::BadString) return errors::syntaxString(text);
        if (f.why == Fail::BadDate) return errors::syntaxDate(text);
        if (f.why == Fail::Extra) return errors::syntaxMissingOperator(text);
        return errors::syntaxQueryExpression(text);
    }

    // An expression that must end where its clause ends.
    ExprPtr clauseExpression(const std::function<bool()>& atClauseEnd) {
        std::size_t start = pos_;
        try {
            ExprPtr e = expression();
            if (!atClauseEnd()) throw failFor(peek());
            return e;
        } catch (const Fail& f) {
            throw expressionError(f, start);
        }
    }

    // ---- expressions
    // Deep nesting is refused before the parser's own recursion can exhaust the stack.
    struct Depth {
        explicit Depth(Parser& p) : p_(p) {
            if (++p_.depth_ > kMaxNesting) throw errors::queryTooComplex();
        }
        ~Depth() { --p_.depth_; }
        Parser& p_;
    };

    ExprPtr expression() {
        Depth d(*this);
        return orExpr();
    }

    ExprPtr binary(std::string op, ExprPtr l, ExprPtr r, std::size_t start) {
        auto e = std::make_unique<Expr>();
        e->kind = Expr::Kind::Binary;
        e->op = std::move(op);
        e->left = std::move(l);
        e->right = std::move(r);
        return finish(std::move(e), start);
    }
    // a OR b OR c … as one node over all operands, so that a chain of any
    // length is walked in a loop rather than by recursion.
    template <class Operand>
    ExprPtr chain(const char* word, Operand operand) {
        std::size_t start = pos_;
        ExprPtr first = (this->*operand)();
        if (!peek().isWord(word)) return first;
        auto e = std::make_unique<Expr>();
        e->kind = Expr::Kind::Logical;
        e->op = word;
        e->list.push_back(std::move(first));
        while (acceptWord(word)) e->list.push_back((this->*operand)());
        return finish(std::move(e), start);
    }
    ExprPtr orExpr() { return chain("OR", &Parser::andExpr); }
    ExprPtr andExpr() { return chain("AND", &Parser::notExpr); }
    ExprPtr notExpr() {
        std::size_t start = pos_;
        if (acceptWord("NOT")) {
            Depth d(*this);
            auto e = std::make_unique<Expr>();
            e->kind = Expr::Kind::Not;
            e->left = notExpr();
            return finish(std::move(e), start);
        }
        return comparison();
    }
    ExprPtr comparison() {
        std::size_t start = pos_;
        ExprPtr l = concat();
        while (true) {
            const Token& t = peek();
            if (t.kind == Token::Kind::Symbol &&
                (t.text == "=" || t.text == "<>" || t.text == "<" || t.text == "<=" ||
                 t.text == ">" || t.text == ">=")) {
                std::string op = next().text;
                l = binary(op, std::move(l), concat(), start);
                continue;
            }
            bool negated = false;
            std::size_t save = pos_;
            if (t.isWord("NOT")) {
                next();
                negated = true;
                if (!peek().isWord("LIKE") && !peek().isWord("IN") && !peek().isWord("BETWEEN")) {
                    pos_ = save;
                    break;
                }
            }
            if (acceptWord("LIKE")) {
                auto e = std::make_unique<Expr>();
                e->kind = Expr::Kind::Like;
                e->negated = negated;
                e->left = std::move(l);
                e->right = concat();
                l = finish(std::move(e), start);
                continue;
            }
            if (acceptWord("BETWEEN")) {
                auto e = std::make_unique<Expr>();
                e->kind = Expr::Kind::Between;
                e->negated = negated;
                e->left = std::move(l);
                e->right = concat();
                if (!acceptWord("AND")) throw failFor(peek());
                e->third = concat();
                l = finish(std::move(e), start);
                continue;
            }
            if (acceptWord("IN")) {
                if (!acceptSymbol("(")) throw failFor(peek());
                auto e = std::make_unique<Expr>();
                e->negated = negated;
                e->left = std::move(l);
                if (peek().isWord("SELECT")) {
                    e->kind = Expr::Kind::InSelect;
                    next();
                    e->select = std::make_shared<SelectStmt>(selectBody(true));
                } else {
                    e->kind = Expr::Kind::InList;
                    do e->list.push_back(expression());
                    while (acceptSymbol(","));
                }
                if (!acceptSymbol(")")) throw failFor(peek());
                l = finish(std::move(e), start);
                continue;
            }
            if (!negated && acceptWord("IS")) {
                auto e = std::make_unique<Expr>();
                e->kind = Expr::Kind::IsNull;
                e->negated = acceptWord("NOT");
                if (!acceptWord("NULL")) throw failFor(peek());
                e->left = std::move(l);
                l = finish(std::move(e), start);
                continue;
            }
            pos_ = save;
            break;
        }
        return l;
    }
    ExprPtr concat() {
        std::size_t start = pos_;
        ExprPtr l = additive();
        while (peek().isSymbol("&")) {
            next();
            l = binary("&", std::move(l), additive(), start);
        }
        return l;
    }
    ExprPtr additive() {
        std::size_t start = pos_;
        ExprPtr l = multiplicative();
        while (peek().isSymbol("+") || peek().isSymbol("-")) {
            std::string op = next().text;
            l = binary(op, std::move(l), multiplicative(), start);
        }
        return l;
    }
    ExprPtr multiplicative() {
        std::size_t start = pos_;
        ExprPtr l = unary();
        while (peek().isSymbol("*") || peek().isSymbol("/")) {
            std::string op = next().text;
            l = binary(op, std::move(l), unary(), start);
        }
        return l;
    }
    ExprPtr unary() {
        std::size_t start = pos_;
        if (acceptSymbol("-")) {
            Depth d(*this);
            auto e = std::make_unique<Expr>();
            e->kind = Expr::Kind::Negate;
            e->left = unary();
            return finish(std::move(e), start);
        }
        if (acceptSymbol("+")) {
            Depth d(*this);
            return unary();
        }
        return primary();
    }
    ExprPtr primary() {
        std::size_t start = pos_;
        const Token& t = peek();
        auto e = std::make_unique<Expr>();
        switch (t.kind) {
            case Token::Kind::Number: {
                next();
                if (t.text.find_first_of(".eE") == std::string::npos && t.text.size() < 16)
                    e->literal = Value::integer(std::strtoll(t.text.c_str(), nullptr, 10));
                else
                    e->literal = Value::real(std::strtod(t.text.c_str(), nullptr));
                break;
            }
            case Token::Kind::String:
                next();
                e->literal = Value::text(t.text);
                break;
            case Token::Kind::Date: {
                auto days = parseDateLiteral(t.text);
                if (!days) throw Fail{Fail::BadDate};
                next();
                e->literal = Value::date(*days);
                break;
            }
            case Token::Kind::Symbol:
                if (t.text == "(") {
                    next();
                    if (peek().isWord("SELECT")) throw Unsupported("a subquery as a value");
                    ExprPtr inner = expression();
                    if (!acceptSymbol(")")) throw failFor(peek());
                    span(*inner, start);
                    return inner;
                }
                throw failFor(t);
            case Token::Kind::Word:
                if (t.isWord("NULL")) {
                    next();
                    break;
                }
                if (t.isWord("TRUE") || t.isWord("FALSE")) {
                    e->literal = Value::boolean(t.isWord("TRUE"));
                    next();
                    break;
                }
                [[fallthrough]];
            case Token::Kind::Bracketed: {
                if (!atName()) throw failFor(t);
                e->kind = Expr::Kind::Column;
                e->name = next().text;
                if (peek().isSymbol("(")) {
                    if (t.kind == Token::Kind::Word && isAggregateName(e->name))
                        return aggregate(e->name, start);
                    throw Unsupported("function " + e->name);
                }
                if (acceptSymbol(".")) {
                    e->qualifier = std::move(e->name);
                    e->name = name();
                }
                break;
            }
            default:
                throw failFor(t);
        }
        return finish(std::move(e), start);
    }
    ExprPtr aggregate(const std::string& function, std::size_t start) {
        Depth d(*this);
        next();  // (
        auto e = std::make_unique<Expr>();
        e->kind = Expr::Kind::Aggregate;
        e->name = upper(function);
        if (e->name != "COUNT" || !acceptSymbol("*")) e->left = expression();
        if (!acceptSymbol(")")) throw failFor(peek());
        return finish(std::move(e), start);
    }

    // ---- SELECT
    TableRef tableRef(bool allowAlias) {
        TableRef r;
        r.name = name();
        if (peek().isSymbol(".")) throw Unsupported("a qualified table name");
        if (peek().isWord("IN") && peek(1).kind == Token::Kind::String) {
            next();
            r.externalPath = next().text;
        }
        if (allowAlias) {
            if (acceptWord("AS"))
                r.alias = name();
            else if (atName())
                r.alias = next().text;
        }
        return r;
    }

    bool atJoin() const {
        return peek().isWord("INNER") || peek().isWord("LEFT") || peek().isWord("RIGHT") ||
               peek().isWord("JOIN") || peek().isWord("FULL");
    }

    // FROM a [INNER|LEFT [OUTER] JOIN b ON …]…, with Jet's parentheses around
    // the left-hand joins: FROM (a INNER JOIN b ON …) INNER JOIN c ON ….
    void fromChain(SelectStmt& s, bool nested) {
        if (acceptSymbol("(")) {
            if (s.from) throw Unsupported("a JOIN nested on its right-hand side");
            fromChain(s, nested);
            if (!acceptSymbol(")")) throw nestedOr(nested, errors::syntaxFrom());
        } else {
            try {
                s.from = tableRef(true);
            } catch (const Fail&) {
                throw nestedOr(nested, errors::syntaxFrom());
            }
        }
        while (atJoin()) {
            JoinClause j;
            if (acceptWord("LEFT")) {
                j.kind = JoinClause::Kind::Left;
                acceptWord("OUTER");
            } else if (peek().isWord("RIGHT") || peek().isWord("FULL")) {
                throw Unsupported(upper(peek().text) + " JOIN");
            } else {
                acceptWord("INNER");
            }
            if (!acceptWord("JOIN")) throw nestedOr(nested, errors::syntaxJoin());
            if (peek().isSymbol("(")) throw Unsupported("a JOIN nested on its right-hand side");
            try {
                j.table = tableRef(true);
                if (!acceptWord("ON")) throw failFor(peek());
                j.on = std::shared_ptr<Expr>(expression().release());
            } catch (const Fail&) {
                throw nestedOr(nested, errors::syntaxJoin());
            }
            s.joins.push_back(std::move(j));
        }
    }

    bool atSelectEnd(bool nested) {
        if (nested) return peek().isSymbol(")");
        return atStatementEnd();
    }

    SelectStmt selectBody(bool nested) {
        SelectStmt s;
        if (acceptWord("DISTINCT") || acceptWord("DISTINCTROW"))
            s.distinct = true;
        else
            acceptWord("ALL");
        if (acceptWord("TOP")) {
            if (peek().kind != Token::Kind::Number)
                throw nestedOr(nested, errors::selectReservedWord());
            s.top = std::strtol(next().text.c_str(), nullptr, 10);
            if (peek().isWord("PERCENT")) throw Unsupported("TOP … PERCENT");
        }
        // Column list.
        do {
            SelectItem item;
            std::size_t start = pos_;
            if (acceptSymbol("*")) {
            } else if ((peek().kind == Token::Kind::Word ||
                        peek().kind == Token::Kind::Bracketed) &&
                       peek(1).isSymbol(".") && peek(2).isSymbol("*")) {
                item.starQualifier = next().text;
                next();
                next();
            } else {
                try {
                    item.expr = expression();
                } catch (const Fail& f) {
                    if (nested) throw;
                    throw expressionError(f, start);
                }
                if (acceptWord("AS")) {
                    if (!atName()) throw nestedOr(nested, errors::selectReservedWord());
                    item.alias = next().text;
                }
            }
            s.items.push_back(std::move(item));
        } while (acceptSymbol(","));
        if (acceptWord("INTO")) {
            if (nested) throw Fail{Fail::Extra};
            try {
                s.into = tableRef(false);
            } catch (const Fail&) {
                throw errors::selectReservedWord();
            }
        }
        if (acceptWord("FROM")) {
            fromChain(s, nested);
            if (peek().isSymbol(",")) throw Unsupported("more than one table in FROM");
        }
        if (acceptWord("WHERE")) {
            if (!s.from) throw nestedOr(nested, errors::selectReservedWord());
            std::size_t start = pos_;
            try {
                s.where = expression();
            } catch (const Fail& f) {
                if (nested) throw;
                throw expressionError(f, start);
            }
            if (!peek().isWord("ORDER") && !peek().isWord("GROUP") && !peek().isWord("HAVING") &&
                !peek().isWord("UNION") && !atSelectEnd(nested)) {
                if (nested) throw failFor(peek());
                throw expressionError(failFor(peek()), start);
            }
        }
        if (peek().isWord("UNION")) throw Unsupported("UNION");
        if (acceptWord("GROUP")) {
            try {
                if (!acceptWord("BY")) throw failFor(peek());
                do s.groupBy.push_back(expression());
                while (acceptSymbol(","));
            } catch (const Fail&) {
                throw nestedOr(nested, errors::syntaxGroupBy());
            }
            if (!peek().isWord("HAVING") && !peek().isWord("ORDER") && !peek().isWord("UNION") &&
                !atSelectEnd(nested))
                throw nestedOr(nested, errors::syntaxGroupBy());
        }
        if (acceptWord("HAVING")) {
            std::size_t start = pos_;
            try {
                s.having = expression();
            } catch (const Fail& f) {
                if (nested) throw;
                throw expressionError(f, start);
            }
            if (!peek().isWord("ORDER") && !peek().isWord("UNION") && !atSelectEnd(nested)) {
                if (nested) throw failFor(peek());
                throw expressionError(failFor(peek()), start);
            }
        }
        if (peek().isWord("UNION")) throw Unsupported("UNION");
        if (acceptWord("ORDER")) {
            try {
                if (!acceptWord("BY")) throw failFor(peek());
                do {
                    OrderItem o;
                    o.expr = concat();
                    if (acceptWord("DESC"))
                        o.descending = true;
                    else
                        acceptWord("ASC");
                    s.orderBy.push_back(std::move(o));
                } while (acceptSymbol(","));
            } catch (const Fail&) {
                throw nestedOr(nested, errors::syntaxOrderBy());
            }
            if (!atSelectEnd(nested)) throw nestedOr(nested, errors::syntaxOrderBy());
        }
        if (!atSelectEnd(nested)) {
            if (nested) throw failFor(peek());
            if (!s.from) throw errors::selectReservedWord();
            throw errors::syntaxFrom();
        }
        return s;
    }

    // Inside a subquery every failure is reported for the enclosing expression.
    Error nestedOr(bool nested, Error e) {
        if (nested) throw Fail{Fail::Extra};
        return e;
    }

    Statement selectStatement() {
        next();  // SELECT
        return selectBody(false);
    }

    // ---- INSERT
    Statement insertStatement() {
        next();
        InsertStmt s;
        try {
            if (!acceptWord("INTO")) throw failFor(peek());
            s.target = tableRef(false);
            if (acceptSymbol("(")) {
                do s.columns.push_back(name());
                while (acceptSymbol(","));
                if (!acceptSymbol(")")) throw failFor(peek());
            }
        } catch (const Fail&) {
            throw errors::syntaxInsert();
        }
        if (acceptWord("SELECT")) {
            s.select = std::make_shared<SelectStmt>(selectBody(false));
            if (s.select->into) throw errors::syntaxInsert();
            return s;
        }
        if (!acceptWord("VALUES") || !acceptSymbol("(")) throw errors::syntaxInsert();
        std::size_t start = pos_;
        try {
            do s.values.push_back(expression());
            while (acceptSymbol(","));
        } catch (const Fail& f) {
            throw expressionError(f, start);
        }
        if (!acceptSymbol(")") || !atStatementEnd()) throw errors::syntaxInsert();
        return s;
    }

    // ---- UPDATE
    Statement updateStatement() {
        next();
        UpdateStmt s;
        try {
            s.table = tableRef(false);
            if (!acceptWord("SET")) throw failFor(peek());
        } catch (const Fail&) {
            throw errors::syntaxUpdate();
        }
        do {
            std::string col;
            try {
                col = name();
                if (acceptSymbol(".")) col = name();  // table-qualified target
                if (!acceptSymbol("=")) throw failFor(peek());
            } catch (const Fail&) {
                throw errors::syntaxUpdate();
            }
            ExprPtr value = clauseExpression([this] {
                return peek().isSymbol(",") || peek().isWord("WHERE") || atStatementEnd();
            });
            s.assignments.emplace_back(std::move(col), std::move(value));
        } while (acceptSymbol(","));
        if (acceptWord("WHERE")) s.where = clauseExpression([this] { return atStatementEnd(); });
        if (!atStatementEnd()) throw errors::syntaxUpdate();
        return s;
    }

    // ---- DELETE
    Statement deleteStatement() {
        next();
        DeleteStmt s;
        try {
            if (!acceptSymbol("*") && atName() && peek(1).isSymbol(".") && peek(2).isSymbol("*")) {
                next();
                next();
                next();
            }
            if (!acceptWord("FROM")) throw failFor(peek());
            s.table = tableRef(false);
        } catch (const Fail&) {
            throw errors::syntaxFrom();
        }
        if (acceptWord("WHERE")) s.where = clauseExpression([this] { return atStatementEnd(); });
        if (!atStatementEnd()) throw errors::syntaxFrom();
        return s;
    }

    // ---- ALTER TABLE … ADD COLUMN
    Statement alterStatement() {
        next();
        AlterAddColumnStmt s;
        try {
            if (!acceptWord("TABLE")) throw failFor(peek());
            s.table = name();
            if (peek().isWord("DROP") || peek().isWord("ALTER"))
                throw Unsupported("ALTER TABLE … " + upper(peek().text));
            if (!acceptWord("ADD")) throw failFor(peek());
            if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY"))
                throw Unsupported("ALTER TABLE … ADD CONSTRAINT");
            acceptWord("COLUMN");
            s.column.name = name();
        } catch (const Fail&) {
            throw errors::syntaxAlterTable();
        }
        try {
            if (peek().kind != Token::Kind::Word) throw failFor(peek());
            bool autoInc = false;
            auto type = columnTypeFromWord(peek().text, autoInc);
            if (!type) throw failFor(peek());
            next();
            s.column.type = *type;
            s.column.autoIncrement = autoInc;
            if (*type == ColumnType::Text) s.column.size = 255;
            if (acceptSymbol("(")) {
                if (peek().kind != Token::Kind::Number) throw failFor(peek());
                long n = std::strtol(next().text.c_str(), nullptr, 10);
                if (acceptSymbol(",")) {
                    if (peek().kind != Token::Kind::Number) throw failFor(peek());
                    next();
                }
                if (!acceptSymbol(")")) throw failFor(peek());
                if (*type == ColumnType::Text) {
                    if (n < 1 || n > 255) throw errors::syntaxFieldDefinition();
                    s.column.size = static_cast<int>(n);
                }
            }
            if (acceptWord("NOT")) {
                if (!acceptWord("NULL")) throw failFor(peek());
                s.column.nullable = false;
            }
            if (!atStatementEnd()) throw failFor(peek());
        } catch (const Fail&) {
            throw errors::syntaxFieldDefinition();
        }
        return s;
    }

    // ---- CREATE INDEX
    Statement createStatement() {
        next();
        CreateIndexStmt s;
        try {
            if (acceptWord("UNIQUE")) s.index.unique = true;
            if (peek().isWord("TABLE") || peek().isWord("VIEW") || peek().isWord("PROCEDURE"))
                throw Unsupported("CREATE " + upper(peek().text));
            if (!acceptWord("INDEX")) throw errors::syntaxCreateIndex();
            s.index.name = name();
            if (!acceptWord("ON")) throw failFor(peek());
            s.table = name();
            if (!acceptSymbol("(")) throw failFor(peek());
            do {
                IndexColumn c;
                c.name = name();
                if (acceptWord("DESC"))
                    c.descending = true;
                else
                    acceptWord("ASC");
                s.index.columns.push_back(c);
            } while (acceptSymbol(","));
            if (!acceptSymbol(")")) throw failFor(peek());
            if (acceptWord("WITH")) {
                do {
                    if (acceptWord("PRIMARY")) {
                        s.index.primary = true;
                    } else if (acceptWord("DISALLOW")) {
                        if (!acceptWord("NULL")) throw failFor(peek());
                        s.index.required = true;
                    } else if (acceptWord("IGNORE")) {
                        if (!acceptWord("NULL")) throw failFor(peek());
                        s.index.ignoreNulls = true;
                    } else {
                        throw failFor(peek());
                    }
                } while (!atStatementEnd());
            }
            if (!atStatementEnd()) throw failFor(peek());
        } catch (const Fail&) {
            throw errors::syntaxCreateIndex();
        }
        return s;
    }

    std::shared_ptr<const std::string> source_;
    std::string_view sql_;
    std::vector<Token> toks_;
    std::size_t pos_ = 0;
    int depth_ = 0;
};

}  // namespace

std::optional<ColumnType> columnTypeFromWord(std::string_view word, bool& autoIncrement) {
    std::string w = upper(word);
    autoIncrement = false;
    struct M {
        const char* w;
        ColumnType t;
    };
    static const M map[] = {
        {"TEXT", ColumnType::Text},
        {"CHAR", ColumnType::Text},
        {"VARCHAR", ColumnType::Text},
        {"CHARACTER", ColumnType::Text},
        {"STRING", ColumnType::Text},
        {"ALPHANUMERIC", ColumnType::Text},
        {"NCHAR", ColumnType::Text},
        {"NVARCHAR", ColumnType::Text},
        {"MEMO", ColumnType::Memo},
        {"LONGTEXT", ColumnType::Memo},
        {"LONGCHAR", ColumnType::Memo},
        {"NOTE", ColumnType::Memo},
        {"NTEXT", ColumnType::Memo},
        {"SHORT", ColumnType::Integer},
        {"SMALLINT", ColumnType::Integer},
        {"INTEGER2", ColumnType::Integer},
        {"LONG", ColumnType::Long},
        {"INT", ColumnType::Long},
        {"INTEGER", ColumnType::Long},
        {"INTEGER4", ColumnType::Long},
        {"BYTE", ColumnType::Byte},
        {"TINYINT", ColumnType::Byte},
        {"INTEGER1", ColumnType::Byte},
        {"DOUBLE", ColumnType::Double},
        {"FLOAT", ColumnType::Double},
        {"FLOAT8", ColumnType::Double},
        {"NUMBER", ColumnType::Double},
        {"IEEEDOUBLE", ColumnType::Double},
        {"SINGLE", ColumnType::Single},
        {"REAL", ColumnType::Single},
        {"FLOAT4", ColumnType::Single},
        {"IEEESINGLE", ColumnType::Single},
        {"CURRENCY", ColumnType::Currency},
        {"MONEY", ColumnType::Currency},
        {"DATETIME", ColumnType::DateTime},
        {"DATE", ColumnType::DateTime},
        {"TIME", ColumnType::DateTime},
        {"TIMESTAMP", ColumnType::DateTime},
        {"BIT", ColumnType::Boolean},
        {"YESNO", ColumnType::Boolean},
        {"LOGICAL", ColumnType::Boolean},
        {"LOGICAL1", ColumnType::Boolean},
        {"BOOLEAN", ColumnType::Boolean},
        {"GUID", ColumnType::Guid},
        {"UNIQUEIDENTIFIER", ColumnType::Guid},
        {"BINARY", ColumnType::Binary},
        {"VARBINARY", ColumnType::Binary},
        {"LONGBINARY", ColumnType::OLE},
        {"OLEOBJECT", ColumnType::OLE},
        {"GENERAL", ColumnType::OLE},
        {"IMAGE", ColumnType::OLE},
        {"DECIMAL", ColumnType::Numeric},
        {"NUMERIC", ColumnType::Numeric},
        {"DEC", ColumnType::Numeric},
    };
    if (w == "COUNTER" || w == "AUTOINCREMENT" || w == "IDENTITY") {
        autoIncrement = true;
        return ColumnType::Long;
    }
    for (const auto& m : map)
        if (w == m.w) return m.t;
    return std::nullopt;
}

Statement parseStatement(std::string_view sql) {
    if (sql.size() > kMaxStatementLength) throw errors::queryTooComplex();
    return Parser(sql).statement();
}

}  // namespace sql

#include "db/criteria.h"

#include <cctype>
#include <cstdlib>

#include "db/ado_types.h"
#include "jet/sql/lexer.h"
#include "jet/sql/text_rules.h"

namespace db {

struct Criteria::Node {
    enum Kind { And, Or, Compare } kind = Compare;
    std::shared_ptr<Node> left, right;
    int column = -1;
    std::string op;  // = <> < <= > >= LIKE
    sql::Value value;
    std::shared_ptr<sql::LikePattern> pattern;
};

namespace {

using Tok = sql::Token;

// Field names compare as Jet compares text; plain ASCII names without
// folding them first, as every Find names its field anew.
bool sameName(const std::string& a, const std::string& b) {
    bool ascii = true;
    for (char c : a) ascii &= static_cast<unsigned char>(c) < 0x80;
    for (char c : b) ascii &= static_cast<unsigned char>(c) < 0x80;
    if (!ascii) return sql::textEquals(a, b);
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

class CriteriaParser {
  public:
    CriteriaParser(const std::string& text, const std::vector<sql::ResultColumn>& cols)
        : toks_(sql::tokenize(text)), cols_(cols) {}

    std::shared_ptr<Criteria::Node> parse(bool allowJoins) {
        auto n = allowJoins ? orExpr() : compare();
        if (peek().kind != Tok::Kind::End) throw adoerrors::badArguments();
        return n;
    }

  private:
    const Tok& peek() const { return toks_[pos_]; }
    const Tok& next() { return toks_[pos_ < toks_.size() - 1 ? pos_++ : pos_]; }

    std::shared_ptr<Criteria::Node> orExpr() {
        auto l = andExpr();
        while (peek().isWord("OR")) {
            next();
            auto n = std::make_shared<Criteria::Node>();
            n->kind = Criteria::Node::Or;
            n->left = l;
            n->right = andExpr();
            l = n;
        }
        return l;
    }
    std::shared_ptr<Criteria::Node> andExpr() {
        auto l = primary();
        while (peek().isWord("AND")) {
            next();
            auto n = std::make_shared<Criteria::Node>();
            n->kind = Criteria::Node::And;
            n->left = l;
            n->right = primary();
            l = n;
        }
        return l;
    }
    std::shared_ptr<Criteria::Node> primary() {
        if (peek().isSymbol("(")) {
            next();
            auto n = orExpr();
            if (!peek().isSymbol(")")) throw adoerrors::badArguments();
            next();
            return n;
        }
        return compare();
    }
    std::shared_ptr<Criteria::Node> compare() {
        auto n = std::make_shared<Criteria::Node>();
        const Tok& name = next();
        if (name.kind != Tok::Kind::Word && name.kind != Tok::Kind::Bracketed)
            throw adoerrors::badArguments();
        for (std::size_t i = 0; i < cols_.size(); ++i)
            if (sameName(cols_[i].name, name.text)) n->column = static_cast<int>(i);
        if (n->column < 0) throw adoerrors::itemNotFound();
        const Tok& op = next();
        if (op.isWord("LIKE")) {
            n->op = "LIKE";
        } else if (op.kind == Tok::Kind::Symbol &&
                   (op.text == "=" || op.text == "<>" || op.text == "<" || op.text == "<=" ||
                    op.text == ">" || op.text == ">=")) {
            n->op = op.text;
        } else {
            throw adoerrors::badArguments();
        }
        bool negative = false;
        if (peek().isSymbol("-")) {
            next();
            negative = true;
        }
        const Tok& v = next();
        if (v.kind == Tok::Kind::String) {
            n->value = sql::Value::text(v.text);
        } else if (v.kind == Tok::Kind::Number) {
            double d = std::strtod(v.text.c_str(), nullptr);
            if (negative) d = -d;
            n->value = (d == static_cast<double>(static_cast<long long>(d)))
                           ? sql::Value::integer(static_cast<long long>(d))
                           : sql::Value::real(d);
        } else if (v.isWord("NULL")) {
            n->value = sql::Value();
        } else if (v.kind == Tok::Kind::Word && !negative) {
            // ADO takes an unquoted word as text.
            n->value = sql::Value::text(v.text);
        } else {
            throw adoerrors::badArguments();
        }
        if (n->op == "LIKE") {
            if (!n->value.isText()) throw adoerrors::badArguments();
            n->pattern = std::make_shared<sql::LikePattern>(n->value.textRef(),
                                                            sql::LikePattern::Dialect::Criteria);
        }
        return n;
    }

    std::vector<Tok> toks_;
    std::size_t pos_ = 0;
    const std::vector<sql::ResultColumn>& cols_;
};

bool evaluate(const Criteria::Node& n, const sql::Row& row) {
    switch (n.kind) {
        case Criteria::Node::And:
            return evaluate(*n.left, row) && evaluate(*n.right, row);
        case Criteria::Node::Or:
            return evaluate(*n.left, row) || evaluate(*n.right, row);
        case Criteria::Node::Compare:
            break;
    }
    const sql::Value& v = row[n.column];
    if (n.value.isNull()) {
        // "Field = NULL" is how ADO asks for empty fields.
        if (n.op == "=") return v.isNull();
        if (n.op == "<>") return !v.isNull();
        return false;
    }
    if (v.isNull()) return false;
    if (n.op == "LIKE") return n.pattern->matches(v.isText() ? v.textRef() : v.toString());
    int c;
    if (v.isNumber()) {
        double x = v.asDouble();
        double y = n.value.isNumber() ? n.value.asDouble()
                                      : std::strtod(n.value.textRef().c_str(), nullptr);
        if (!n.value.isNumber()) {
            char* end = nullptr;
            std::strtod(n.value.textRef().c_str(), &end);
            if (n.value.textRef().empty() || *end != '\0') throw adoerrors::badArguments();
        }
        c = x < y ? -1 : x > y ? 1 : 0;
    } else {
        std::string a = v.toString(), b = n.value.toString();
        c = (n.op == "=" || n.op == "<>") ? (sql::textEquals(a, b) ? 0 : 1)
                                          : sql::compareGeneral(a, b);
    }
    if (n.op == "=") return c == 0;
    if (n.op == "<>") return c != 0;
    if (n.op == "<") return c < 0;
    if (n.op == "<=") return c <= 0;
    if (n.op == ">") return c > 0;
    return c >= 0;
}

}  // namespace

std::optional<Criteria::TextEquality> Criteria::textEquality() const {
    const Node& n = *root_;
    if (n.kind != Node::Compare || n.value.isNull()) return std::nullopt;
    TextEquality eq;
    eq.column = n.column;
    if (n.op == "LIKE") {
        // The Criteria dialect's wildcards; any other character, '[' too,
        // stands for itself, so the pattern is the folded text.
        if (n.value.textRef().find_first_of("*%?_") != std::string::npos) return std::nullopt;
    } else if (n.op == "=") {
        if (!n.value.isText() || columnType_ != sql::ColumnType::Text) return std::nullopt;
        eq.numbersCompareAsNumbers = true;
    } else {
        return std::nullopt;
    }
    foldText(n.value, eq.folded);
    return eq;
}

void Criteria::foldText(const sql::Value& v, std::string& out) {
    if (v.isText())
        out.assign(v.textRef());
    else
        out = v.toString();
    for (char& c : out) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            out = sql::utf8Encode(sql::foldCase(out));
            return;
        }
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
}

Criteria::Criteria(const std::string& text, const std::vector<sql::ResultColumn>& columns,
                   bool allowJoins) {
    root_ = CriteriaParser(text, columns).parse(allowJoins);
    if (root_->kind == Node::Compare) columnType_ = columns[root_->column].type;
}

bool Criteria::matches(const sql::Row& row) const { return evaluate(*root_, row); }

}  // namespace db

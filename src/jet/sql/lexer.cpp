#include "jet/sql/lexer.h"

#include <cctype>

namespace sql {

bool Token::isWord(std::string_view upper) const {
    if (kind != Kind::Word || text.size() != upper.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(text[i])) != upper[i]) return false;
    return true;
}

namespace {
bool wordChar(unsigned char c) { return std::isalnum(c) || c == '_' || c >= 0x80; }
}  // namespace

std::vector<Token> tokenize(std::string_view s) {
    std::vector<Token> out;
    std::size_t i = 0;
    while (true) {
        while (i < s.size() && (s[i] == ' ' || s[i] == '\t' || s[i] == '\r' || s[i] == '\n')) ++i;
        Token t;
        t.pos = i;
        if (i >= s.size()) {
            t.kind = Token::Kind::End;
            out.push_back(t);
            return out;
        }
        unsigned char c = static_cast<unsigned char>(s[i]);
        if (c == '\'' || c == '"') {
            std::size_t j = i + 1;
            bool closed = false;
            while (j < s.size()) {
                if (static_cast<unsigned char>(s[j]) == c) {
                    if (j + 1 < s.size() && static_cast<unsigned char>(s[j + 1]) == c) {
                        t.text.push_back(static_cast<char>(c));
                        j += 2;
                        continue;
                    }
                    closed = true;
                    ++j;
                    break;
                }
                t.text.push_back(s[j++]);
            }
            t.kind = closed ? Token::Kind::String : Token::Kind::BadString;
            i = j;
        } else if (c == '#') {
            std::size_t close = s.find('#', i + 1);
            if (close == std::string_view::npos) {
                t.kind = Token::Kind::BadDate;
                t.text = std::string(s.substr(i + 1));
                i = s.size();
            } else {
                t.kind = Token::Kind::Date;
                t.text = std::string(s.substr(i + 1, close - i - 1));
                i = close + 1;
            }
        } else if (c == '[') {
            std::size_t close = s.find(']', i + 1);
            if (close == std::string_view::npos) {
                t.kind = Token::Kind::BadBracket;
                t.text = std::string(s.substr(i));
                i = s.size();
            } else {
                t.kind = Token::Kind::Bracketed;
                t.text = std::string(s.substr(i + 1, close - i - 1));
                i = close + 1;
            }
        } else if (std::isdigit(c) || (c == '.' && i + 1 < s.size() &&
                                       std::isdigit(static_cast<unsigned char>(s[i + 1])) &&
                                       (out.empty() || out.back().kind == Token::Kind::Symbol))) {
            std::size_t j = i;
            while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) ++j;
            if (j < s.size() && s[j] == '.') {
                ++j;
                while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) ++j;
            }
            if (j < s.size() && (s[j] == 'e' || s[j] == 'E')) {
                std::size_t k = j + 1;
                if (k < s.size() && (s[k] == '+' || s[k] == '-')) ++k;
                if (k < s.size() && std::isdigit(static_cast<unsigned char>(s[k]))) {
                    while (k < s.size() && std::isdigit(static_cast<unsigned char>(s[k]))) ++k;
                    j = k;
                }
            }
            // "1abc" is a name in Jet, not a number followed by a name.
            if (j < s.size() && wordChar(static_cast<unsigned char>(s[j]))) {
                while (j < s.size() && wordChar(static_cast<unsigned char>(s[j]))) ++j;
                t.kind = Token::Kind::Word;
            } else {
                t.kind = Token::Kind::Number;
            }
            t.text = std::string(s.substr(i, j - i));
            i = j;
        } else if (wordChar(c)) {
            std::size_t j = i;
            while (j < s.size() && wordChar(static_cast<unsigned char>(s[j]))) ++j;
            t.kind = Token::Kind::Word;
            t.text = std::string(s.substr(i, j - i));
            i = j;
        } else {
            t.kind = Token::Kind::Symbol;
            std::string_view two = s.substr(i, 2);
            if (two == "<>" || two == "<=" || two == ">=") {
                t.text = std::string(two);
                i += 2;
            } else if (std::string_view(",.()*=<>+-/&;").find(static_cast<char>(c)) !=
                       std::string_view::npos) {
                t.text = std::string(1, static_cast<char>(c));
                ++i;
            } else {
                t.kind = Token::Kind::BadChar;
                t.text = std::string(1, static_cast<char>(c));
                ++i;
            }
        }
        t.len = i - t.pos;
        out.push_back(std::move(t));
    }
}

}  // namespace sql

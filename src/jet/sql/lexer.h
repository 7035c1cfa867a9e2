#pragma once
// Splits a Jet SQL statement into tokens.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sql {

struct Token {
    enum class Kind {
        Word,       // a name or keyword, plain
        Bracketed,  // [a name]
        String,     // 'text' or "text", quotes removed, doubled quotes folded
        Number,
        Date,        // #…#, the text between the #s
        Symbol,      // , . ( ) * = <> < <= > >= + - / & ;
        BadString,   // a quote without its closing quote
        BadBracket,  // [ without ]
        BadDate,     // # without its closing #
        BadChar,     // a character Jet SQL has no use for
        End,
    };
    Kind kind = Kind::End;
    std::string text;
    std::size_t pos = 0;  // byte offset in the statement
    std::size_t len = 0;

    bool isWord(std::string_view upper) const;  // keyword test, case-insensitive
    bool isSymbol(std::string_view s) const { return kind == Kind::Symbol && text == s; }
};

std::vector<Token> tokenize(std::string_view sql);

}  // namespace sql

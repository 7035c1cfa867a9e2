#pragma once
// The SendKeys brace notation, decoded once for every desktop backend.
// "+", "^" and "%" hold Shift, Ctrl and Alt for the next key or for a
// parenthesised group ("+(ab)"); "~" and a carriage return are Enter;
// "{ESC}", "{ENTER}", "{TAB}", "{F1}"… name keys, "{LEFT 3}" repeats, and
// "{+}", "{^}", "{%}", "{~}", "{(}", "{)}", "{{}", "{}}" type the character.
#include <optional>
#include <string>
#include <vector>

namespace platform {

enum class NamedKey {
    Character,  // the stroke types `character`
    Enter,
    Escape,
    Tab,
    Backspace,
    Delete,
    Insert,
    Home,
    End,
    PageUp,
    PageDown,
    Left,
    Right,
    Up,
    Down,
    F1,  // F1..F16 follow in order
    F16 = F1 + 15,
};

struct KeyStroke {
    NamedKey key = NamedKey::Character;
    char32_t character = 0;
    bool shift = false;
    bool control = false;
    bool alt = false;

    bool operator==(const KeyStroke&) const = default;
};

// The strokes of a SendKeys text; empty optional when the text is malformed
// (an unknown or unclosed brace, an unbalanced parenthesis, a bare "(" or ")"),
// as SendKeys raises an error for those and types nothing.
std::optional<std::vector<KeyStroke>> parseSendKeys(const std::string& keys);

// Printable form for logs and test doubles: characters as themselves, Enter
// as "\r", other named keys in braces, modifiers as their prefix signs.
std::string describeKeyStrokes(const std::vector<KeyStroke>& strokes);

}  // namespace platform

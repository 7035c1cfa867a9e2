#include "platform/send_keys.h"

#include <cstdint>
#include <utility>

#include "jet/format/text.h"
#include "platform/case_fold.h"

namespace platform {
namespace {

// Decodes one UTF-8 sequence; a stray byte stands for itself (Latin-1), so
// text of any bytes still types something rather than failing.
char32_t decodeUtf8(const std::string& s, std::size_t& i) {
    auto b0 = static_cast<unsigned char>(s[i]);
    int len = b0 < 0x80 ? 1 : (b0 >> 5) == 6 ? 2 : (b0 >> 4) == 14 ? 3 : (b0 >> 3) == 30 ? 4 : 0;
    if (len <= 1 || i + len > s.size()) {
        ++i;
        return b0;
    }
    char32_t cp = b0 & (0x7F >> len);
    for (int k = 1; k < len; ++k) {
        auto b = static_cast<unsigned char>(s[i + k]);
        if ((b & 0xC0) != 0x80) {
            ++i;
            return b0;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    i += len;
    return cp;
}

std::optional<NamedKey> namedKey(const std::string& name) {
    static const std::pair<const char*, NamedKey> names[] = {
        {"enter", NamedKey::Enter},
        {"esc", NamedKey::Escape},
        {"escape", NamedKey::Escape},
        {"tab", NamedKey::Tab},
        {"bs", NamedKey::Backspace},
        {"bksp", NamedKey::Backspace},
        {"backspace", NamedKey::Backspace},
        {"del", NamedKey::Delete},
        {"delete", NamedKey::Delete},
        {"ins", NamedKey::Insert},
        {"insert", NamedKey::Insert},
        {"home", NamedKey::Home},
        {"end", NamedKey::End},
        {"pgup", NamedKey::PageUp},
        {"pgdn", NamedKey::PageDown},
        {"left", NamedKey::Left},
        {"right", NamedKey::Right},
        {"up", NamedKey::Up},
        {"down", NamedKey::Down},
    };
    std::string n = foldCase(name);
    for (const auto& [text, key] : names)
        if (n == text) return key;
    if (n.size() >= 2 && n.size() <= 3 && n[0] == 'f') {
        int num = 0;
        for (std::size_t i = 1; i < n.size(); ++i) {
            if (n[i] < '0' || n[i] > '9') return std::nullopt;
            num = num * 10 + (n[i] - '0');
        }
        if (num >= 1 && num <= 16)
            return static_cast<NamedKey>(static_cast<int>(NamedKey::F1) + num - 1);
    }
    return std::nullopt;
}

struct Modifiers {
    bool shift = false, control = false, alt = false;
    bool any() const { return shift || control || alt; }
};

KeyStroke withModifiers(KeyStroke k, Modifiers m) {
    k.shift = k.shift || m.shift;
    k.control = k.control || m.control;
    k.alt = k.alt || m.alt;
    return k;
}

}  // namespace

std::optional<std::vector<KeyStroke>> parseSendKeys(const std::string& keys) {
    std::vector<KeyStroke> out;
    Modifiers pending;  // modifiers waiting for their key or group
    Modifiers group;    // modifiers of the open group
    bool inGroup = false;
    std::size_t i = 0;

    auto emit = [&](KeyStroke k) {
        k = withModifiers(k, pending);
        if (inGroup) k = withModifiers(k, group);
        out.push_back(k);
        pending = {};
    };

    while (i < keys.size()) {
        char c = keys[i];
        switch (c) {
            case '+':
                pending.shift = true;
                ++i;
                continue;
            case '^':
                pending.control = true;
                ++i;
                continue;
            case '%':
                pending.alt = true;
                ++i;
                continue;
            case '~':
            case '\r':
                emit(KeyStroke{NamedKey::Enter});
                ++i;
                continue;
            case '\n':
                // A line feed right after a carriage return belongs to the
                // same line end; alone it ends a line too.
                if (i == 0 || keys[i - 1] != '\r') emit(KeyStroke{NamedKey::Enter});
                ++i;
                continue;
            case '(':
                if (!pending.any() || inGroup) return std::nullopt;
                group = pending;
                pending = {};
                inGroup = true;
                ++i;
                continue;
            case ')':
                if (!inGroup || pending.any()) return std::nullopt;
                inGroup = false;
                group = {};
                ++i;
                continue;
            case '}':
                return std::nullopt;
            case '{': {
                // "{}}" and "{{}" name the brace itself; otherwise the name
                // runs to the next "}".
                std::size_t close = keys.find('}', i + 2);
                if (i + 1 < keys.size() && keys[i + 1] == '}') close = i + 2;
                if (close == std::string::npos || close >= keys.size() || keys[close] != '}')
                    return std::nullopt;
                std::string body = keys.substr(i + 1, close - i - 1);
                i = close + 1;
                int repeat = 1;
                if (auto sp = body.rfind(' '); sp != std::string::npos && sp > 0) {
                    std::string count = body.substr(sp + 1);
                    if (count.empty() || count.size() > 4) return std::nullopt;
                    repeat = 0;
                    for (char d : count) {
                        if (d < '0' || d > '9') return std::nullopt;
                        repeat = repeat * 10 + (d - '0');
                    }
                    body.resize(sp);
                }
                KeyStroke k;
                if (auto named = namedKey(body)) {
                    k.key = *named;
                } else {
                    std::size_t p = 0;
                    if (body.empty()) return std::nullopt;
                    char32_t cp = decodeUtf8(body, p);
                    if (p != body.size()) return std::nullopt;
                    k.character = cp;
                }
                Modifiers held = pending;
                for (int r = 0; r < repeat; ++r) {
                    pending = held;
                    emit(k);
                }
                pending = {};
                continue;
            }
            default: {
                KeyStroke k;
                k.character = decodeUtf8(keys, i);
                emit(k);
                continue;
            }
        }
    }
    if (inGroup || pending.any()) return std::nullopt;
    return out;
}

std::string describeKeyStrokes(const std::vector<KeyStroke>& strokes) {
    static const char* names[] = {"",    "ENTER", "ESC",  "TAB",  "BS",    "DEL", "INS", "HOME",
                                  "END", "PGUP",  "PGDN", "LEFT", "RIGHT", "UP",  "DOWN"};
    std::string out;
    for (const auto& k : strokes) {
        if (k.shift) out += '+';
        if (k.control) out += '^';
        if (k.alt) out += '%';
        if (k.key == NamedKey::Enter) {
            out += '\r';
        } else if (k.key == NamedKey::Character) {
            jet::appendUtf8(out, k.character);
        } else if (k.key >= NamedKey::F1) {
            out += "{F" +
                   std::to_string(static_cast<int>(k.key) - static_cast<int>(NamedKey::F1) + 1) +
                   "}";
        } else {
            out += std::string("{") + names[static_cast<int>(k.key)] + "}";
        }
    }
    return out;
}

}  // namespace platform

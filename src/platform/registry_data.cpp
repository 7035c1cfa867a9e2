#include "platform/registry_data.h"

#include <algorithm>
#include <cstdio>

namespace platform {
namespace {

std::string fullPath(Hive hive, std::string_view key) {
    std::string k = RegistryData::normalizeKey(key);
    return k.empty() ? RegistryData::hiveName(hive) : RegistryData::hiveName(hive) + "\\" + k;
}

std::string quote(std::string_view s) {
    std::string out = "\"";
    for (char c : s) {
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '"':
                out += "\\\"";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\0':
                out += "\\0";
                break;
            default:
                out += c;
        }
    }
    return out + "\"";
}

// Reads a quoted string starting at s[pos] == '"'; advances pos past it.
std::optional<std::string> unquote(std::string_view s, std::size_t& pos) {
    if (pos >= s.size() || s[pos] != '"') return std::nullopt;
    std::string out;
    for (++pos; pos < s.size(); ++pos) {
        char c = s[pos];
        if (c == '"') {
            ++pos;
            return out;
        }
        if (c == '\\') {
            if (++pos >= s.size()) return std::nullopt;
            switch (s[pos]) {
                case '\\':
                    out += '\\';
                    break;
                case '"':
                    out += '"';
                    break;
                case 'n':
                    out += '\n';
                    break;
                case 'r':
                    out += '\r';
                    break;
                case '0':
                    out += '\0';
                    break;
                default:
                    return std::nullopt;
            }
        } else {
            out += c;
        }
    }
    return std::nullopt;
}

std::optional<Hive> hiveOf(std::string_view path, std::string_view& rest) {
    for (Hive h : {Hive::CurrentUser, Hive::LocalMachine}) {
        std::string name = RegistryData::hiveName(h);
        if (path.size() >= name.size() && equalsIgnoreCase(path.substr(0, name.size()), name) &&
            (path.size() == name.size() || path[name.size()] == '\\')) {
            rest = path.substr(std::min(path.size(), name.size() + 1));
            return h;
        }
    }
    return std::nullopt;
}

}  // namespace

std::string RegistryData::hiveName(Hive hive) {
    return hive == Hive::CurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

std::string RegistryData::normalizeKey(std::string_view key) {
    std::string out;
    std::size_t i = 0;
    while (i < key.size()) {
        std::size_t j = key.find('\\', i);
        if (j == std::string_view::npos) j = key.size();
        if (j > i) {
            if (!out.empty()) out += '\\';
            out.append(key.substr(i, j - i));
        }
        i = j + 1;
    }
    return out;
}

RegistryData::Key* RegistryData::findKey(Hive hive, std::string_view key) {
    auto it = keys_.find(fullPath(hive, key));
    return it == keys_.end() ? nullptr : &it->second;
}

const RegistryData::Key* RegistryData::findKey(Hive hive, std::string_view key) const {
    auto it = keys_.find(fullPath(hive, key));
    return it == keys_.end() ? nullptr : &it->second;
}

RegistryData::Key& RegistryData::makeKey(const std::string& full) {
    // Every parent exists too, each keeping the spelling it was created with.
    for (std::size_t pos = full.find('\\'); pos != std::string::npos;
         pos = full.find('\\', pos + 1)) {
        std::string parent = full.substr(0, pos);
        if (keys_.find(parent) == keys_.end()) keys_.emplace(parent, Key{parent, {}});
    }
    auto it = keys_.find(full);
    if (it == keys_.end()) it = keys_.emplace(full, Key{full, {}}).first;
    return it->second;
}

bool RegistryData::keyExists(Hive hive, std::string_view key) const {
    // The hive itself always exists, as RegOpenKeyEx with an empty path says.
    return normalizeKey(key).empty() || findKey(hive, key) != nullptr;
}

bool RegistryData::createKey(Hive hive, std::string_view key) {
    if (normalizeKey(key).empty()) return true;
    makeKey(fullPath(hive, key));
    return true;
}

const RegistryValue* RegistryData::find(Hive hive, std::string_view key,
                                        std::string_view name) const {
    const Key* k = findKey(hive, key);
    if (!k) return nullptr;
    for (const auto& v : k->values)
        if (equalsIgnoreCase(v.name, name)) return &v;
    return nullptr;
}

bool RegistryData::put(Hive hive, std::string_view key, RegistryValue value) {
    if (normalizeKey(key).empty()) return false;
    Key& k = makeKey(fullPath(hive, key));
    for (auto& v : k.values) {
        if (equalsIgnoreCase(v.name, value.name)) {
            value.name = v.name;
            v = std::move(value);
            return true;
        }
    }
    k.values.push_back(std::move(value));
    return true;
}

bool RegistryData::erase(Hive hive, std::string_view key, std::string_view name) {
    Key* k = findKey(hive, key);
    if (!k) return false;
    for (auto it = k->values.begin(); it != k->values.end(); ++it) {
        if (equalsIgnoreCase(it->name, name)) {
            k->values.erase(it);
            return true;
        }
    }
    return false;
}

std::vector<std::string> RegistryData::valueNames(Hive hive, std::string_view key) const {
    std::vector<std::string> names;
    if (const Key* k = findKey(hive, key))
        for (const auto& v : k->values) names.push_back(v.name);
    return names;
}

std::vector<std::string> RegistryData::keyPaths() const {
    std::vector<std::string> paths;
    for (const auto& [_, k] : keys_) paths.push_back(k.path);
    return paths;
}

std::string RegistryData::serialize() const {
    std::string out = "Windows Registry Editor Version 5.00\n; Tessara per-user registry\n";
    for (const auto& [_, k] : keys_) {
        out += "\n[" + k.path + "]\n";
        for (const auto& v : k.values) {
            out += v.name.empty() ? std::string("@") : quote(v.name);
            out += '=';
            if (v.type == RegistryValue::Type::String) {
                out += quote(v.text);
            } else {
                char buf[16];
                std::snprintf(buf, sizeof buf, "dword:%08x", static_cast<unsigned>(v.dword));
                out += buf;
            }
            out += '\n';
        }
    }
    return out;
}

RegistryData RegistryData::parse(std::string_view text) {
    RegistryData data;
    bool inKey = false;
    Hive hive = Hive::CurrentUser;
    std::string key;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(pos, end - pos);
        pos = end + 1;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.empty() || line[0] == ';') continue;
        if (line[0] == '[') {
            inKey = false;
            if (line.back() != ']') continue;
            std::string_view rest;
            std::string_view path = line.substr(1, line.size() - 2);
            if (auto h = hiveOf(path, rest)) {
                hive = *h;
                inKey = true;
                key = normalizeKey(rest);
                if (!key.empty()) data.makeKey(hiveName(*h) + "\\" + key);
            }
            continue;
        }
        if (!inKey || key.empty()) continue;
        RegistryValue v;
        std::size_t p = 0;
        if (line[0] == '@') {
            p = 1;
        } else {
            auto name = unquote(line, p);
            if (!name) continue;
            v.name = *name;
        }
        if (p >= line.size() || line[p] != '=') continue;
        ++p;
        if (p < line.size() && line[p] == '"') {
            auto t = unquote(line, p);
            if (!t || p != line.size()) continue;
            v.text = *t;
        } else if (line.substr(p, 6) == "dword:" && line.size() - p == 14) {
            std::uint32_t n = 0;
            bool ok = true;
            for (char c : line.substr(p + 6)) {
                int d = c >= '0' && c <= '9'   ? c - '0'
                        : c >= 'a' && c <= 'f' ? c - 'a' + 10
                        : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                               : -1;
                if (d < 0) ok = false;
                n = (n << 4) | static_cast<std::uint32_t>(d < 0 ? 0 : d);
            }
            if (!ok) continue;
            v.type = RegistryValue::Type::Dword;
            v.dword = n;
        } else {
            continue;
        }
        data.put(hive, key, std::move(v));
    }
    return data;
}

}  // namespace platform

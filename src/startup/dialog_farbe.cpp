#include "startup/dialog_farbe.h"

#include <charconv>

namespace tessara {

namespace {

std::optional<std::uint64_t> zahl(std::string_view s, int basis) {
    std::uint64_t n = 0;
    if (s.empty() || s.size() > 10) return std::nullopt;
    auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), n, basis);
    if (ec != std::errc() || p != s.data() + s.size()) return std::nullopt;
    return n;
}

std::uint32_t bgrNachRgb(std::uint32_t bgr) {
    return ((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF);
}

}  // namespace

std::optional<std::uint32_t> fctDialogFarbe(const std::string& sBkColor) {
    std::string_view s = sBkColor;
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    if (s.size() == 7 && s.front() == '#') {
        const auto n = zahl(s.substr(1), 16);
        return n ? std::optional<std::uint32_t>(static_cast<std::uint32_t>(*n)) : std::nullopt;
    }
    std::optional<std::uint64_t> n;
    if (s.size() > 2 && (s.substr(0, 2) == "&H" || s.substr(0, 2) == "&h")) {
        s.remove_prefix(2);
        if (!s.empty() && s.back() == '&') s.remove_suffix(1);
        n = zahl(s, 16);
    } else {
        n = zahl(s, 10);
    }
    if (!n || *n > 0xFFFFFF) return std::nullopt;
    return bgrNachRgb(static_cast<std::uint32_t>(*n));
}

}  // namespace tessara

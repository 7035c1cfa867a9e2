#include "startup/ini_datei.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/case_fold.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "startup/zeichensatz.h"

namespace tessara {

namespace fs = std::filesystem;

namespace {

// A Settings file is a few kilobytes; anything this large is not one, and
// reading it whole would only exhaust memory.
constexpr std::uintmax_t kGroessteDatei = 64u * 1024u * 1024u;

// The blanks GetPrivateProfileString trims; Ctrl-Z is the old end-of-file mark.
bool leer(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f' || c == '\x1a'; }

std::string_view trimmen(std::string_view s) {
    while (!s.empty() && leer(s.front())) s.remove_prefix(1);
    while (!s.empty() && leer(s.back())) s.remove_suffix(1);
    return s;
}

bool istKopf(std::string_view zeile, std::string_view* name) {
    const std::string_view t = trimmen(zeile);
    if (t.empty() || t.front() != '[') return false;
    const std::size_t zu = t.rfind(']');
    if (zu == std::string_view::npos || zu == 0) return false;
    if (name) *name = trimmen(t.substr(1, zu - 1));
    return true;
}

bool istEintrag(std::string_view zeile, std::string_view* name, std::string_view* wert) {
    if (istKopf(zeile, nullptr)) return false;
    const std::string_view t = trimmen(zeile);
    const std::size_t gleich = t.find('=');
    if (gleich == std::string_view::npos) return false;
    if (name) *name = trimmen(t.substr(0, gleich));
    if (wert) *wert = trimmen(t.substr(gleich + 1));
    return true;
}

std::string ohneAnfuehrung(std::string_view w) {
    if (w.size() >= 2 && (w.front() == '"' || w.front() == '\'') && w.back() == w.front())
        w = w.substr(1, w.size() - 2);
    return std::string(w);
}

fs::path nativ(const std::string& programmPfad) {
    const std::string n = platform::nativePath(programmPfad);
    return fs::path(std::u8string(n.begin(), n.end()));
}

}  // namespace

// ---------------------------------------------------------------------------
// Text.

IniText IniText::ausBytes(std::string_view b) {
    IniText t;
    std::string text;
    if (b.size() >= 3 && b.substr(0, 3) == "\xEF\xBB\xBF") {
        t.kodierung_ = Kodierung::Utf8Bom;
        text = std::string(b.substr(3));
    } else if (b.size() >= 2 && b.substr(0, 2) == "\xFF\xFE") {
        t.kodierung_ = Kodierung::Utf16Le;
        text = fctUtf16LeNachUtf8(b.substr(2));
    } else if (fctIstUtf8MitUmlauten(b)) {
        t.kodierung_ = Kodierung::Utf8;
        text = std::string(b);
    } else {
        t.kodierung_ = Kodierung::Ansi;
        text = fctAnsiNachUtf8(b);
    }

    std::size_t anfang = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        Zeile z{text.substr(anfang, i - anfang), {}};
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            z.ende = "\r\n";
            ++i;
        } else {
            z.ende = std::string(1, text[i]);
        }
        t.zeilen_.push_back(std::move(z));
        anfang = i + 1;
    }
    if (anfang < text.size()) t.zeilen_.push_back({text.substr(anfang), {}});
    return t;
}

std::string IniText::bytes() const {
    std::string text;
    for (const auto& z : zeilen_) {
        text += z.text;
        text += z.ende;
    }
    switch (kodierung_) {
        case Kodierung::Ansi:
            return fctUtf8NachAnsi(text);
        case Kodierung::Utf8:
            return text;
        case Kodierung::Utf8Bom:
            return "\xEF\xBB\xBF" + text;
        case Kodierung::Utf16Le:
            return "\xFF\xFE" + fctUtf8NachUtf16Le(text);
    }
    return text;
}

std::optional<IniText::Bereich> IniText::finden(std::string_view sektion) const {
    sektion = trimmen(sektion);
    for (std::size_t i = 0; i < zeilen_.size(); ++i) {
        std::string_view name;
        if (!istKopf(zeilen_[i].text, &name) || !platform::equalsIgnoreCase(name, sektion))
            continue;
        std::size_t e = i + 1;
        while (e < zeilen_.size() && !istKopf(zeilen_[e].text, nullptr)) ++e;
        return Bereich{i, e};
    }
    return std::nullopt;
}

std::optional<std::string> IniText::wert(std::string_view sektion,
                                         std::string_view schluessel) const {
    const auto b = finden(sektion);
    if (!b) return std::nullopt;
    schluessel = trimmen(schluessel);
    for (std::size_t i = b->kopf + 1; i < b->ende; ++i) {
        std::string_view name, w;
        if (istEintrag(zeilen_[i].text, &name, &w) && platform::equalsIgnoreCase(name, schluessel))
            return ohneAnfuehrung(w);
    }
    return std::nullopt;
}

bool IniText::setzen(std::string_view sektion, std::string_view schluessel, std::string_view wert) {
    std::string w(wert);
    for (char& c : w)
        if (c == '\r' || c == '\n') c = ' ';
    sektion = trimmen(sektion);
    schluessel = trimmen(schluessel);

    const auto b = finden(sektion);
    if (!b) {
        if (!zeilen_.empty() && zeilen_.back().ende.empty()) zeilen_.back().ende = "\r\n";
        zeilen_.push_back({"[" + std::string(sektion) + "]", "\r\n"});
        zeilen_.push_back({std::string(schluessel) + "=" + w, "\r\n"});
        return true;
    }
    for (std::size_t i = b->kopf + 1; i < b->ende; ++i) {
        std::string_view name;
        if (!istEintrag(zeilen_[i].text, &name, nullptr) ||
            !platform::equalsIgnoreCase(name, schluessel))
            continue;
        std::string neu = std::string(name) + "=" + w;
        if (zeilen_[i].text == neu) return false;
        zeilen_[i].text = std::move(neu);
        return true;
    }
    // After the section's last line that holds anything, so that the blank
    // lines in front of the next section stay in front of it.
    std::size_t nach = b->kopf;
    for (std::size_t i = b->kopf + 1; i < b->ende; ++i)
        if (!trimmen(zeilen_[i].text).empty()) nach = i;
    if (zeilen_[nach].ende.empty()) zeilen_[nach].ende = "\r\n";
    zeilen_.insert(zeilen_.begin() + static_cast<std::ptrdiff_t>(nach + 1),
                   Zeile{std::string(schluessel) + "=" + w, "\r\n"});
    return true;
}

bool IniText::sektionEntfernen(std::string_view sektion) {
    bool geaendert = false;
    while (const auto b = finden(sektion)) {
        zeilen_.erase(zeilen_.begin() + static_cast<std::ptrdiff_t>(b->kopf),
                      zeilen_.begin() + static_cast<std::ptrdiff_t>(b->ende));
        geaendert = true;
    }
    return geaendert;
}

std::vector<std::string> IniText::sektionen() const {
    std::vector<std::string> r;
    for (const auto& z : zeilen_) {
        std::string_view name;
        if (istKopf(z.text, &name)) r.emplace_back(name);
    }
    return r;
}

std::vector<std::string> IniText::schluessel(std::string_view sektion) const {
    std::vector<std::string> r;
    const auto b = finden(sektion);
    if (!b) return r;
    for (std::size_t i = b->kopf + 1; i < b->ende; ++i) {
        std::string_view name;
        if (istEintrag(zeilen_[i].text, &name, nullptr)) r.emplace_back(name);
    }
    return r;
}

std::vector<std::string> IniText::zeilen() const {
    std::vector<std::string> r;
    r.reserve(zeilen_.size());
    for (const auto& z : zeilen_) r.push_back(z.text);
    return r;
}

bool fctIniZeileZerlegen(std::string_view zeile, std::string& name, std::string& wert) {
    std::string_view n, w;
    if (!istEintrag(zeile, &n, &w)) return false;
    name = std::string(n);
    wert = ohneAnfuehrung(w);
    return true;
}

std::string fctZeichenKuerzen(std::string_view utf8, std::size_t n) {
    std::size_t zeichen = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        if ((static_cast<unsigned char>(utf8[i]) & 0xC0) == 0x80) continue;
        if (zeichen == n) return std::string(utf8.substr(0, i));
        ++zeichen;
    }
    return std::string(utf8);
}

// ---------------------------------------------------------------------------
// Files.

IniStatus fctIniLaden(const std::string& strDatei, IniText& text, std::string& strFehler) {
    text = IniText();
    const fs::path p = nativ(strDatei);
    std::error_code ec;
    const auto st = fs::status(p, ec);
    if (!fs::exists(st)) return IniStatus::DateiFehlt;
    if (fs::is_directory(st)) {
        strFehler = "Die Datei " + strDatei + " ist ein Verzeichnis.";
        return IniStatus::Fehler;
    }
    if (fs::is_regular_file(st) && fs::file_size(p, ec) > kGroessteDatei && !ec) {
        strFehler = "Die Datei " + strDatei + " ist zu groß für eine Einstellungsdatei.";
        return IniStatus::Fehler;
    }
    std::ifstream in(p, std::ios::binary);
    if (!in) {
        strFehler = "Die Datei " + strDatei + " kann nicht gelesen werden: " + std::strerror(errno);
        return IniStatus::Fehler;
    }
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        strFehler = "Die Datei " + strDatei + " kann nicht gelesen werden.";
        return IniStatus::Fehler;
    }
    text = IniText::ausBytes(bytes);
    return IniStatus::Ok;
}

bool fctIniSpeichern(const std::string& strDatei, const IniText& text) {
    static std::atomic<unsigned> zaehler{0};
    // No name, no file (the temporary file would land in the working directory).
    if (strDatei.empty()) return false;
    const fs::path ziel = nativ(strDatei);
    fs::path temp = ziel;
    temp += ".tmp" + std::to_string(platform::processId()) + "_" + std::to_string(zaehler++);

    std::error_code ec;
    if (!platform::writeFileDurably(temp, text.bytes())) {
        fs::remove(temp, ec);
        return false;
    }
    const auto st = fs::status(ziel, ec);
    if (fs::is_regular_file(st)) fs::permissions(temp, st.permissions(), ec);
    fs::rename(temp, ziel, ec);
    if (ec) {
        std::error_code ec2;
        fs::remove(temp, ec2);
        return false;
    }
    return true;
}

std::string fctIniWertLesen(const std::string& strDatei, std::string_view sektion,
                            std::string_view schluessel, IniStatus* status,
                            std::string* strFehler) {
    IniText text;
    std::string fehler;
    const IniStatus s = fctIniLaden(strDatei, text, fehler);
    if (status) *status = s;
    if (strFehler) *strFehler = fehler;
    if (s != IniStatus::Ok) return {};
    std::string w = text.wert(sektion, schluessel).value_or(std::string());
    if (const std::size_t nul = w.find('\0'); nul != std::string::npos) w.resize(nul);
    return fctZeichenKuerzen(w, kIniWertLaenge);
}

bool fctIniWertSchreiben(const std::string& strDatei, std::string_view sektion,
                         std::string_view schluessel, std::string_view wert) {
    IniText text;
    std::string fehler;
    const IniStatus s = fctIniLaden(strDatei, text, fehler);
    // A file that is there but unreadable is left alone rather than replaced
    // by one holding only this key.
    if (s == IniStatus::Fehler) return false;
    if (!text.setzen(sektion, schluessel, wert) && s == IniStatus::Ok) return true;
    return fctIniSpeichern(strDatei, text);
}

}  // namespace tessara

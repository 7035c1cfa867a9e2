#include "search/such_kriterien_datei.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "startup/fehler_log.h"
#include "startup/ini_datei.h"
#include "startup/pfade.h"
#include "startup/zeichensatz.h"

namespace tessara {

namespace {

constexpr std::size_t kZeilen = 21;
// More than any field holds; a file beyond this is not a criteria file, and
// reading stops there rather than filling the window with megabytes.
constexpr std::size_t kLeseGrenze = 256 * 1024;
constexpr std::size_t kZeichenJeZeile = 4096;

// A value is one line: breaks typed or pasted into a field become blanks.
std::string einzeilig(std::string s) {
    std::replace(s.begin(), s.end(), '\r', ' ');
    std::replace(s.begin(), s.end(), '\n', ' ');
    return s;
}

std::vector<std::string> zeilenTeilen(std::string_view b) {
    std::vector<std::string> zeilen;
    std::size_t i = 0;
    while (i < b.size() && zeilen.size() < kZeilen) {
        std::size_t e = i;
        while (e < b.size() && b[e] != '\r' && b[e] != '\n') ++e;
        zeilen.emplace_back(b.substr(i, e - i));
        if (e < b.size() && b[e] == '\r' && e + 1 < b.size() && b[e + 1] == '\n') ++e;
        i = e + 1;
    }
    return zeilen;
}

// Control characters (a binary file's NULs) are not text a field can show.
std::string ohneSteuerzeichen(std::string s) {
    s.erase(std::remove_if(s.begin(), s.end(),
                           [](char c) {
                               const auto u = static_cast<unsigned char>(c);
                               return u < 0x20 && u != '\t';
                           }),
            s.end());
    return s;
}

}  // namespace

std::string fctKriterienDateiText(const typSuchKriterien& k, const std::string& strZeit) {
    std::string utf8 = einzeilig(strZeit) + "\r\n";
    for (int i = 0; i < kSuchOperatoren; ++i) {
        utf8 += einzeilig(k.txtBenennung[i]) + "\r\n";
        utf8 += einzeilig(k.comboxSuchkriterienVerknuepfen[i]) + "\r\n";
    }
    return fctUtf8NachAnsi(utf8);
}

void subKriterienAusDateiText(std::string_view bytes, typSuchKriterien& k) {
    if (bytes.size() > kLeseGrenze) bytes = bytes.substr(0, kLeseGrenze);
    bool utf8 = false;
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") {
        bytes.remove_prefix(3);
        utf8 = true;
    }
    const auto zeilen = zeilenTeilen(bytes);
    if (!utf8) {
        std::string alle;
        for (const auto& z : zeilen) alle += z + "\n";
        utf8 = fctIstUtf8MitUmlauten(alle);
    }
    auto zeile = [&](std::size_t n) -> std::string {  // 1-based, as the file is described
        if (n > zeilen.size()) return {};
        const std::string t = utf8 ? zeilen[n - 1] : fctAnsiNachUtf8(zeilen[n - 1]);
        return fctZeichenKuerzen(ohneSteuerzeichen(t), kZeichenJeZeile);
    };
    const auto& ops = fctSuchOperatoren();
    for (int i = 0; i < kSuchOperatoren; ++i) {
        k.txtBenennung[i] = zeile(2 * i + 2);
        const std::string op = zeile(2 * i + 3);
        k.comboxSuchkriterienVerknuepfen[i] =
            std::find(ops.begin(), ops.end(), op) != ops.end() ? op : std::string();
    }
}

std::string fctMitStandardEndung(const std::string& strDatei) {
    const auto schnitt = strDatei.find_last_of("\\/");
    const std::string name = schnitt == std::string::npos ? strDatei : strDatei.substr(schnitt + 1);
    if (name.empty() || name.find('.') != std::string::npos) return strDatei;
    return strDatei + "." + kKriterienEndung;
}

bool fctKriterienSpeichern(ProgrammZustand& z, Benutzer& b, const typSuchKriterien& k) {
    Prozedur p(z, "combutDatei_Click", true);
    return p.geschuetzt(false, [&] {
        p.step("Dateiname abfragen");
        std::string datei =
            b.dateiWaehlen(kKriterienTitelSpeichern, kKriterienDateiname, kKriterienFilter, true);
        if (datei.empty()) return false;
        datei = fctMitStandardEndung(datei);
        p.step("Datei schreiben");
        std::ofstream aus(fctNativerPfad(datei), std::ios::binary | std::ios::trunc);
        const std::string zeit = [] {
            const auto jetzt =
                std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
            char puffer[16] = "00:00:00";
            if (const std::tm* t = std::localtime(&jetzt))
                std::strftime(puffer, sizeof puffer, "%H:%M:%S", t);
            return std::string(puffer);
        }();
        aus << fctKriterienDateiText(k, zeit);
        aus.close();
        if (!aus) throw std::runtime_error("Die Datei kann nicht geschrieben werden: " + datei);
        return true;
    });
}

bool fctKriterienLaden(ProgrammZustand& z, Benutzer& b, typSuchKriterien& k) {
    Prozedur p(z, "cmbLaden_Click", true);
    return p.geschuetzt(false, [&] {
        p.step("Dateiname abfragen");
        const std::string datei =
            b.dateiWaehlen(kKriterienTitelLaden, kKriterienDateiname, kKriterienFilter, false);
        if (datei.empty()) return false;
        p.step("Datei lesen");
        std::ifstream ein(fctNativerPfad(datei), std::ios::binary);
        if (!ein) throw std::runtime_error("Die Datei kann nicht gelesen werden: " + datei);
        std::string bytes(kLeseGrenze, '\0');
        ein.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<std::size_t>(ein.gcount()));
        subKriterienAusDateiText(bytes, k);
        return true;
    });
}

}  // namespace tessara

#include "exchange/baum_kopie.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "startup/pfade.h"

namespace tessara {

namespace fs = std::filesystem;

namespace {

std::string programmForm(const fs::path& rel) {
    std::string s;
    for (const auto& teil : rel) {
        if (!s.empty()) s += '\\';
        const auto u8 = teil.u8string();
        s.append(u8.begin(), u8.end());
    }
    return s;
}

}  // namespace

std::vector<std::string> fctBaumDateien(const std::string& strVerzeichnis) {
    std::vector<std::string> dateien;
    const fs::path wurzel = fctNativerPfad(strVerzeichnis);
    std::error_code ec;
    if (!fs::is_directory(wurzel, ec)) return dateien;
    for (fs::recursive_directory_iterator it(wurzel, ec), ende; !ec && it != ende; it.increment(ec))
        if (it->is_regular_file(ec))
            dateien.push_back(programmForm(it->path().lexically_relative(wurzel)));
    std::sort(dateien.begin(), dateien.end());
    return dateien;
}

bool fctBaumKopieren(const std::string& von, const std::string& nach,
                     const std::vector<std::string>& dateien, const typBaumUmbenennung& umbenennung,
                     const std::function<bool()>& weiter) {
    const std::string quelle = fctBackslashAmEndeAnfuegen(von);
    for (const auto& rel : dateien) {
        const auto schnitt = rel.rfind('\\');
        const std::string dir = schnitt == std::string::npos ? "" : rel.substr(0, schnitt + 1);
        const std::string name = schnitt == std::string::npos ? rel : rel.substr(schnitt + 1);
        const std::string ziel = fctBackslashAmEndeAnfuegen(nach) + dir +
                                 (umbenennung.name ? umbenennung.name(name) : name);
        if (fctPfadExistiert(ziel)) throw std::runtime_error("Datei gibt es schon: " + ziel);
        if (!fctDateiVerzeichnisAnlegen(ziel))
            throw std::runtime_error("Verzeichnis nicht angelegt: " + ziel);
        std::error_code ec;
        if (umbenennung.inhalt) {
            std::ifstream ein(fctNativerPfad(quelle + rel), std::ios::binary);
            std::string bytes((std::istreambuf_iterator<char>(ein)), {});
            if (!ein.good() && !ein.eof()) throw std::runtime_error("nicht gelesen: " + rel);
            umbenennung.inhalt(rel, bytes);
            std::ofstream aus(fctNativerPfad(ziel), std::ios::binary);
            aus.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
            if (!aus.flush()) throw std::runtime_error("nicht geschrieben: " + ziel);
        } else if (!fs::copy_file(fctNativerPfad(quelle + rel), fctNativerPfad(ziel), ec)) {
            throw std::runtime_error("nicht kopiert: " + rel + " (" + ec.message() + ")");
        }
        if (weiter && !weiter()) return false;
    }
    return true;
}

}  // namespace tessara

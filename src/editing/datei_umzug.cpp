#include "editing/datei_umzug.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "authoring/dateien_operationen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

bool datenSchreiben(const std::string& datei, const std::string& bytes) {
    std::ofstream aus(fctNativerPfad(datei), std::ios::binary | std::ios::trunc);
    aus.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    aus.close();
    return static_cast<bool>(aus);
}

}  // namespace

bool fctDateiLesen(const std::string& datei, std::string& bytes) {
    std::ifstream ein(fctNativerPfad(datei), std::ios::binary);
    if (!ein) return false;
    bytes.assign(std::istreambuf_iterator<char>(ein), std::istreambuf_iterator<char>());
    return !ein.bad();
}

bool DateiUmzug::verschieben(const std::string& von, const std::string& nach) {
    const std::string ziel = fctVerzeichnisVon(nach);
    if (!ziel.empty() && !fctFolderExistAnlegen(z_, ziel)) return false;
    if (!MoveAFile(z_, von, nach)) return false;
    zurueck_.push_back([this, von, nach] { return MoveAFile(z_, nach, von); });
    return true;
}

bool DateiUmzug::kopieren(const std::string& von, const std::string& nach) {
    Prozedur p(z_, "DateiKopieren ");
    const std::string ziel = fctVerzeichnisVon(nach);
    if (!ziel.empty() && !fctFolderExistAnlegen(z_, ziel)) return false;
    std::error_code ec;
    if (!std::filesystem::copy_file(fctNativerPfad(von), fctNativerPfad(nach), ec)) {
        p.fehler("Datei nicht kopiert: " + von + " -> " + nach +
                     (ec ? " (" + ec.message() + ")" : std::string()),
                 0, true);
        return false;
    }
    zurueck_.push_back([this, nach] { return DeleteAFile(z_, nach); });
    return true;
}

bool DateiUmzug::schreiben(const std::string& datei, const std::string& bytes) {
    Prozedur p(z_, "DateiSchreiben ");
    std::string alt;
    const bool warDa = fctDateiExistiert(datei);
    if (warDa && !fctDateiLesen(datei, alt)) {
        p.fehler("Datei nicht lesbar: " + datei, 0, true);
        return false;
    }
    if (!datenSchreiben(datei, bytes)) {
        p.fehler("Datei nicht schreibbar: " + datei, 0, true);
        if (warDa) datenSchreiben(datei, alt);
        return false;
    }
    zurueck_.push_back([this, datei, alt, warDa] {
        if (warDa) return datenSchreiben(datei, alt);
        return DeleteAFile(z_, datei);
    });
    return true;
}

bool DateiUmzug::rueckgaengig() {
    bool alle = true;
    while (!zurueck_.empty()) {
        alle = zurueck_.back()() && alle;
        zurueck_.pop_back();
    }
    return alle;
}

}  // namespace tessara

#include "authoring/dateien_operationen.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/files.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {
namespace fs = std::filesystem;
namespace {

// Turns a failed file-system call into the procedure's error record.
bool gescheitert(Prozedur& p, const std::error_code& ec, const std::string& was) {
    p.fehler(was + ": " + ec.message(), ec.value());
    return false;
}

// A rename that also works across file systems, where rename(2) refuses.
void verschieben(const fs::path& von, const fs::path& nach, std::error_code& ec) {
    fs::rename(von, nach, ec);
    if (ec == std::errc::cross_device_link) {
        ec.clear();
        if (fs::is_directory(von, ec)) {
            fs::copy(von, nach, fs::copy_options::recursive, ec);
            if (!ec) fs::remove_all(von, ec);
        } else if (!ec) {
            fs::copy_file(von, nach, ec);
            if (!ec) fs::remove(von, ec);
        }
    }
}

}  // namespace

bool DeleteAFile(ProgrammZustand& z, const std::string& datei) {
    Prozedur p(z, "DeleteAFile ");
    return p.geschuetzt(false, [&] {
        p.step("Datei löschen");
        std::error_code ec;
        fs::path f = fctNativerPfad(datei);
        if (!fs::is_regular_file(f, ec)) {
            p.fehler("Datei nicht gefunden: " + datei, 53);
            return false;
        }
        if (!fs::remove(f, ec) || ec) return gescheitert(p, ec, datei);
        return true;
    });
}

bool DeleteAFile(ProgrammZustand& z, const std::string& verzeichnis, const std::string& dateiName) {
    std::string v = verzeichnis;
    if (!v.empty() && v.back() != '\\') v += '\\';
    return DeleteAFile(z, v + dateiName);
}

bool MoveAFile(ProgrammZustand& z, const std::string& von, const std::string& nach) {
    Prozedur p(z, "MoveAFile ");
    return p.geschuetzt(false, [&] {
        p.step("Datei verschieben");
        std::error_code ec;
        fs::path a = fctNativerPfad(von), b = fctNativerPfad(nach);
        if (!fs::is_regular_file(a, ec)) {
            p.fehler("Datei nicht gefunden: " + von, 53);
            return false;
        }
        if (fs::exists(b, ec)) {
            p.fehler("Datei ist bereits vorhanden: " + nach, 58);
            return false;
        }
        verschieben(a, b, ec);
        if (ec) return gescheitert(p, ec, von + " -> " + nach);
        return true;
    });
}

bool DeleteAFolder(ProgrammZustand& z, const std::string& verzeichnis) {
    Prozedur p(z, "DeleteAFolder ");
    return p.geschuetzt(false, [&] {
        p.step("Verzeichnis löschen");
        std::error_code ec;
        fs::path a = fctNativerPfad(fctOhneBackslash(verzeichnis));
        if (!fs::is_directory(a, ec)) {
            p.fehler("Pfad nicht gefunden: " + verzeichnis, 76);
            return false;
        }
        fs::remove_all(a, ec);
        if (ec) return gescheitert(p, ec, verzeichnis);
        return true;
    });
}

bool MoveAFolder(ProgrammZustand& z, const std::string& von, const std::string& nach) {
    Prozedur p(z, "MoveAFolder ");
    return p.geschuetzt(false, [&] {
        p.step("Verzeichnis verschieben");
        std::error_code ec;
        fs::path a = fctNativerPfad(fctOhneBackslash(von)),
                 b = fctNativerPfad(fctOhneBackslash(nach));
        if (!fs::is_directory(a, ec)) {
            p.fehler("Pfad nicht gefunden: " + von, 76);
            return false;
        }
        if (fs::exists(b, ec)) {
            p.fehler("Datei ist bereits vorhanden: " + nach, 58);
            return false;
        }
        verschieben(a, b, ec);
        if (ec) return gescheitert(p, ec, von + " -> " + nach);
        return true;
    });
}

bool fctFolderExist(ProgrammZustand& z, const std::string& verzeichnis) {
    Prozedur p(z, "fctFolderExist ");
    return p.geschuetzt(false,
                        [&] { return fctVerzeichnisExistiert(fctOhneBackslash(verzeichnis)); });
}

bool fctFolderExistAnlegen(ProgrammZustand& z, const std::string& verzeichnis) {
    Prozedur p(z, "fctFolderExistAnlegen ");
    return p.geschuetzt(false, [&] {
        std::error_code ec;
        fs::path v = fctNativerPfad(fctOhneBackslash(verzeichnis));
        if (fs::is_directory(v, ec)) return true;
        p.step("Verzeichnis anlegen");
        fs::create_directories(v, ec);
        if (ec) return gescheitert(p, ec, verzeichnis);
        return fs::is_directory(v, ec);
    });
}

bool fctReadOnlyMitVerzeichnis(ProgrammZustand& z, const std::string& verzeichnis,
                               std::string* fehlerText) {
    Prozedur p(z, "fctReadOnlyMitVerzeichnis ");
    try {
        std::string test = fctOhneBackslash(verzeichnis) + "\\Test.txt";
        if (!verzeichnis.empty() && verzeichnis.back() == '\\' &&
            fctOhneBackslash(verzeichnis) == verzeichnis)
            test = verzeichnis + "Test.txt";  // a drive root such as "C:\"
        p.step("Testdatei schreiben");
        fs::path f = fctNativerPfad(test);
        {
            std::ofstream out(f, std::ios::binary | std::ios::trunc);
            if (out) out << "TEst\r\n";
            out.close();
            if (!out) {
                std::error_code ec(errno, std::generic_category());
                if (fehlerText)
                    *fehlerText = "Schreiben nicht möglich: " + test + " (" + ec.message() + ")";
                return true;
            }
        }
        p.step("Testdatei löschen");
        std::error_code ec;
        fs::remove(f, ec);
        if (ec) p.fehler("Testdatei nicht gelöscht: " + ec.message(), ec.value(), true);
        return false;
    } catch (const std::exception& e) {
        if (fehlerText) *fehlerText = e.what();
        p.fehler(e, true);
        return true;
    }
}

std::string fctPfadAuf34ZeichenKuerzen(ProgrammZustand& z, const std::string& pfad) {
    Prozedur p(z, "fctPfadAuf34ZeichenKuerzen ");
    return p.geschuetzt(pfad, [&] {
        if (pfad.size() < 35) return pfad;
        std::string ende = pfad.substr(pfad.size() - 32);
        auto bs = ende.find('\\');
        if (bs != std::string::npos) ende = ende.substr(bs);
        std::string kurz = pfad.substr(0, 3) + "..." + ende;
        // From 38 characters on the drive, "..." and at most 32 characters are
        // always shorter. Between 35 and 37 the same form can come out as long
        // as the path itself or longer; a display gains nothing from that, so
        // such a path is shortened only when the result really is shorter.
        if (pfad.size() >= 38 || kurz.size() < pfad.size()) return kurz;
        return pfad;
    });
}

std::string fctBackslashAmEndeAnfuegen(ProgrammZustand& z, const std::string& text) {
    Prozedur p(z, "fctBackslashAmEndeAnfuegen ");
    return fctBackslashAmEndeAnfuegen(text);
}

}  // namespace tessara

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

std::string klein(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

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

bool listeFuellen(Prozedur& p, const std::string& verzeichnis, const std::string* endung,
                  std::vector<std::string>& liste) {
    std::error_code ec;
    std::vector<std::string> namen;
    fs::directory_iterator it(fctNativerPfad(verzeichnis), ec);
    if (ec) return gescheitert(p, ec, verzeichnis);
    for (const auto& e : it) {
        std::error_code ec2;
        if (!e.is_regular_file(ec2)) continue;
        std::string name = platform::utf8String(e.path().filename());
        if (endung) {
            std::string ext = platform::utf8String(e.path().extension());
            if (!ext.empty()) ext.erase(0, 1);
            if (klein(ext) != klein(*endung)) continue;
        }
        namen.push_back(std::move(name));
    }
    std::sort(namen.begin(), namen.end());
    liste = std::move(namen);
    return true;
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

bool CopyAFile(ProgrammZustand& z, const std::string& von, const std::string& nach) {
    Prozedur p(z, "CopyAFile ");
    return p.geschuetzt(false, [&] {
        p.step("Datei kopieren");
        std::error_code ec;
        if (!fctDateiKopieren(von, nach, ec)) return gescheitert(p, ec, von + " -> " + nach);
        return true;
    });
}

bool CopyAFolder(ProgrammZustand& z, const std::string& von, const std::string& nach) {
    Prozedur p(z, "CopyAFolder ");
    return p.geschuetzt(false, [&] {
        p.step("Verzeichnis kopieren");
        std::error_code ec;
        fs::path a = fctNativerPfad(fctOhneBackslash(von)),
                 b = fctNativerPfad(fctOhneBackslash(nach));
        if (!fs::is_directory(a, ec)) {
            p.fehler("Pfad nicht gefunden: " + von, 76);
            return false;
        }
        fs::create_directories(b, ec);
        if (ec) return gescheitert(p, ec, nach);
        fs::copy(a, b, fs::copy_options::recursive | fs::copy_options::overwrite_existing, ec);
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

bool SearchDWGFiles(ProgrammZustand& z, const std::string& verzeichnis) {
    Prozedur p(z, "SearchDWGFiles ");
    return p.geschuetzt(false, [&] {
        p.step("dwg-Dateien suchen");
        std::vector<std::string> namen;
        std::string dwg = "dwg";
        if (!listeFuellen(p, verzeichnis, &dwg, namen)) return false;
        std::string basis = verzeichnis;
        if (!basis.empty() && basis.back() != '\\') basis += '\\';
        std::string text;
        for (const auto& n : namen) text += basis + n + "\r\n";
        p.step("txtDWGFiles schreiben");
        std::ofstream out(fctNativerPfad(z.strCTemp + "txtDWGFiles" + ".txt"),
                          std::ios::binary | std::ios::trunc);
        out << fctNachWindows1252(text);
        out.close();
        if (!out) {
            p.fehler("txtDWGFiles.txt kann nicht geschrieben werden", 75);
            return false;
        }
        return true;
    });
}

bool fctSearchFiles(ProgrammZustand& z, const std::string& verzeichnis,
                    std::vector<std::string>& liste) {
    Prozedur p(z, "fctSearchFiles ");
    return p.geschuetzt(false, [&] { return listeFuellen(p, verzeichnis, nullptr, liste); });
}

bool fctSearchFiles(ProgrammZustand& z, const std::string& verzeichnis, const std::string& endung,
                    std::vector<std::string>& liste) {
    Prozedur p(z, "fctSearchFiles ");
    return p.geschuetzt(false, [&] {
        return listeFuellen(p, verzeichnis, endung.empty() ? nullptr : &endung, liste);
    });
}

std::vector<std::string> fctSearchFilesAry(ProgrammZustand& z, const std::string& verzeichnis,
                                           const std::string& endung) {
    Prozedur p(z, "fctSearchFilesAry ");
    return p.geschuetzt({}, [&] {
        std::vector<std::string> liste;
        listeFuellen(p, verzeichnis, endung.empty() ? nullptr : &endung, liste);
        return liste;
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

std::string fctFolderExistRueckgabe(ProgrammZustand& z, const std::string& dateiPfad) {
    Prozedur p(z, "fctFolderExistRueckgabe ");
    return p.geschuetzt({}, [&]() -> std::string {
        auto pos = dateiPfad.rfind('\\');
        if (pos == std::string::npos) return {};
        std::string verzeichnis = dateiPfad.substr(0, pos + 1);
        std::error_code ec;
        fs::path v = fctNativerPfad(fctOhneBackslash(verzeichnis));
        if (!fs::is_directory(v, ec)) {
            p.step("Verzeichnis anlegen");
            fs::create_directories(v, ec);
            if (ec) {
                gescheitert(p, ec, verzeichnis);
                return {};
            }
        }
        return verzeichnis;
    });
}

bool fctFolderExistMitDatei(ProgrammZustand& z, const std::string& dateiPfad) {
    Prozedur p(z, "fctFolderExistMitDatei ");
    return p.geschuetzt(false, [&] { return !fctFolderExistRueckgabe(z, dateiPfad).empty(); });
}

PfadTeile fctPfadVollAufteilen(ProgrammZustand& z, const std::string& pfad) {
    Prozedur p(z, "fctPfadVollAufteilen ");
    return p.geschuetzt({}, [&] {
        PfadTeile t;
        std::string rest = pfad;
        if (pfad.size() >= 2 && pfad[0] == '\\' && pfad[1] == '\\') {
            // "\\server\share" is the drive of a network path.
            auto server = pfad.find('\\', 2);
            auto share =
                server == std::string::npos ? std::string::npos : pfad.find('\\', server + 1);
            t.laufwerk = pfad.substr(0, share);
            rest = share == std::string::npos ? std::string() : pfad.substr(share);
        } else if (pfad.size() >= 3 && std::isalpha(static_cast<unsigned char>(pfad[0])) &&
                   pfad[1] == ':' && pfad[2] == '\\') {
            t.laufwerk = pfad.substr(0, 2);
            rest = pfad.substr(2);
        }
        auto slash = rest.rfind('\\');
        std::string datei = rest;
        if (slash != std::string::npos) {
            t.verzeichnis = rest.substr(0, slash + 1);
            datei = rest.substr(slash + 1);
        }
        auto punkt = datei.rfind('.');
        if (punkt != std::string::npos && punkt > 0) {
            t.name = datei.substr(0, punkt);
            t.endung = datei.substr(punkt + 1);
        } else {
            t.name = datei;
        }
        return t;
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

std::vector<std::string> fctDateiNameAuslesen(ProgrammZustand& z, const std::string& verzeichnis) {
    Prozedur p(z, "fctDateiNameAuslesen ");
    return p.geschuetzt({}, [&] {
        std::vector<std::string> liste;
        listeFuellen(p, verzeichnis, nullptr, liste);
        return liste;
    });
}

std::string fctDateiEndungUmbenennen(ProgrammZustand& z, const std::string& dateiName,
                                     const std::string& neueEndung) {
    Prozedur p(z, "fctDateiEndungUmbenennen ");
    auto bs = dateiName.rfind('\\');
    auto punkt = dateiName.rfind('.');
    std::string endung = neueEndung;
    if (!endung.empty() && endung.front() == '.') endung.erase(0, 1);
    std::size_t anfang = bs == std::string::npos ? 0 : bs + 1;
    if (punkt == std::string::npos || punkt <= anfang) return dateiName + "." + endung;
    return dateiName.substr(0, punkt + 1) + endung;
}

bool WriteIntorTxtFile(ProgrammZustand& z, const std::string& datei, const std::string& text) {
    Prozedur p(z, "WriteIntorTxtFile ");
    return p.geschuetzt(false, [&] {
        p.step("Textdatei schreiben");
        std::ofstream out(fctNativerPfad(datei), std::ios::binary | std::ios::trunc);
        if (!out) {
            p.fehler("Datei kann nicht geöffnet werden: " + datei, 75);
            return false;
        }
        out << fctNachWindows1252(text);
        out.close();
        if (!out) {
            p.fehler("Datei kann nicht geschrieben werden: " + datei, 75);
            return false;
        }
        return true;
    });
}

std::string fctNachWindows1252(const std::string& utf8) {
    // Code points of 0x80..0x9F in Windows-1252, in byte order; 0 = unused.
    static const char16_t k80[32] = {
        0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        auto c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            out += static_cast<char>(c);
            ++i;
            continue;
        }
        int laenge = (c & 0xE0) == 0xC0 ? 2 : (c & 0xF0) == 0xE0 ? 3 : (c & 0xF8) == 0xF0 ? 4 : 0;
        bool gueltig = laenge > 0 && i + laenge <= utf8.size();
        char32_t cp = laenge == 2 ? c & 0x1F : laenge == 3 ? c & 0x0F : c & 0x07;
        for (int k = 1; gueltig && k < laenge; ++k) {
            auto f = static_cast<unsigned char>(utf8[i + k]);
            if ((f & 0xC0) != 0x80) gueltig = false;
            cp = cp << 6 | (f & 0x3F);
        }
        if (!gueltig) {  // not UTF-8: the byte is taken to be 1252 already
            out += static_cast<char>(c);
            ++i;
            continue;
        }
        i += laenge;
        if (cp >= 0xA0 && cp <= 0xFF) {
            out += static_cast<char>(cp);
            continue;
        }
        char ersatz = '?';
        for (int k = 0; k < 32; ++k)
            if (k80[k] != 0 && k80[k] == cp) ersatz = static_cast<char>(0x80 + k);
        out += ersatz;
    }
    return out;
}

}  // namespace tessara

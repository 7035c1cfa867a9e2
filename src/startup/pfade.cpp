#include "startup/pfade.h"

#include "platform/case_fold.h"
#include "platform/environment.h"

namespace tessara {

namespace fs = std::filesystem;

std::string fctBackslashAmEndeAnfuegen(const std::string& strText) {
    if (!strText.empty() && strText.back() == '\\') return strText;
    return strText + "\\";
}

std::string fctOhneBackslash(std::string s) {
    while (s.size() > 1 && s.back() == '\\' && !(s.size() == 3 && s[1] == ':')) s.pop_back();
    return s;
}

std::string fctVerzeichnisVon(const std::string& strPfad) {
    const std::size_t bs = strPfad.rfind('\\');
    return bs == std::string::npos ? std::string() : strPfad.substr(0, bs);
}

bool fctGleichesVerzeichnis(const std::string& a, const std::string& b) {
    // Every trailing backslash goes here, the drive root's too: the directory
    // of "E:\dbTessara.mdb" is "E:", and the list holds it as "E:\".
    auto ohne = [](std::string s) {
        while (s.size() > 1 && s.back() == '\\') s.pop_back();
        return s;
    };
    return platform::equalsIgnoreCase(ohne(a), ohne(b));
}

std::string fctOhneBlanks(const std::string& strText) {
    const std::size_t e = strText.find_last_not_of(' ');
    return e == std::string::npos ? std::string() : strText.substr(0, e + 1);
}

fs::path fctNativerPfad(const std::string& strProgrammPfad) {
    const std::string n = platform::nativePath(strProgrammPfad);
    return fs::path(std::u8string(n.begin(), n.end()));
}

bool fctPfadExistiert(const std::string& strPfad) {
    std::error_code ec;
    return fs::exists(fctNativerPfad(strPfad), ec);
}

bool fctDateiExistiert(const std::string& strDatei) {
    std::error_code ec;
    return fs::is_regular_file(fctNativerPfad(strDatei), ec);
}

bool fctVerzeichnisExistiert(const std::string& strVerzeichnis) {
    std::error_code ec;
    return fs::is_directory(fctNativerPfad(strVerzeichnis), ec);
}

bool fctVerzeichnisAnlegen(const std::string& strVerzeichnis) {
    if (strVerzeichnis.empty()) return false;
    const fs::path p = fctNativerPfad(strVerzeichnis);
    std::error_code ec;
    fs::create_directories(p, ec);
    return fs::is_directory(p, ec);
}

bool fctDateiVerzeichnisAnlegen(const std::string& strDatei) {
    const fs::path verzeichnis = fctNativerPfad(strDatei).parent_path();
    if (verzeichnis.empty()) return true;  // a bare name: the current directory
    std::error_code ec;
    fs::create_directories(verzeichnis, ec);
    return fs::is_directory(verzeichnis, ec);
}

bool fctDateiKopieren(const std::string& von, const std::string& nach, std::error_code& ec) {
    ec.clear();
    fs::copy_file(fctNativerPfad(von), fctNativerPfad(nach), fs::copy_options::overwrite_existing,
                  ec);
    return !ec;
}

bool fctDateiKopieren(const std::string& von, const std::string& nach) {
    std::error_code ec;
    return fctDateiKopieren(von, nach, ec);
}

}  // namespace tessara

// Any bytes as a Settings file: parsed and read without a crash; written
// back unchanged byte for byte; a written value reads back after the text
// has been parsed again; a deleted section is gone.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/case_fold.h"
#include "startup/ini_datei.h"

using tessara::IniText;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    IniText text = IniText::ausBytes(bytes);

    // UTF-16 files may carry unpaired surrogates, which are repaired on the
    // way through; every other file survives a round trip untouched.
    if (text.kodierung() != IniText::Kodierung::Utf16Le && text.bytes() != bytes) std::abort();

    for (const char* k : {"DbVerzeichnis0", "DbVerzeichnis1", "Sprache", "strDebug", "sCTemp"}) {
        const auto w = text.wert("AllgemeineDaten", k);
        if (w && tessara::fctZeichenKuerzen(*w, tessara::kIniWertLaenge).size() > w->size())
            std::abort();
    }
    int n = 0;
    for (const auto& s : text.sektionen()) {
        if (++n > 64) break;
        for (const auto& k : text.schluessel(s))
            if (!text.wert(s, k)) std::abort();  // a listed key must be found
    }

    IniText geschrieben = text;
    geschrieben.setzen("AllgemeineDaten", "DbVerzeichnis0", "c:\\Blöcke");
    geschrieben.setzen("MsgboxAnzeigen", "AutoCadTitel", "1");
    const IniText wieder = IniText::ausBytes(geschrieben.bytes());
    if (wieder.wert("AllgemeineDaten", "DbVerzeichnis0") !=
        std::optional<std::string>("c:\\Blöcke"))
        std::abort();
    if (wieder.wert("msgboxanzeigen", "AUTOCADTITEL") != std::optional<std::string>("1"))
        std::abort();

    geschrieben.sektionEntfernen("LayerStates");
    for (const auto& s : IniText::ausBytes(geschrieben.bytes()).sektionen())
        if (platform::equalsIgnoreCase(s, "LayerStates")) std::abort();
    return 0;
}

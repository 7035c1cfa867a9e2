#pragma once
// clsTessaraStart, the automation entry class through which the CAD host
// (its AutoLISP or VBA, over COM on Windows) or a later process (over the
// instance channel) starts Tessara or hands it a request. Every operation
// stores its request in the program-wide state and enters Main again, which
// carries it out on the running window.
#include <cstddef>
#include <string>
#include <vector>

#include "entry/start_ablauf.h"
#include "platform/instance_channel.h"

namespace tessara {

// The class as COM knows it (the name Main hands to the go-between too),
// its class identifier, and the operations it offers.
inline constexpr const char* kTessaraStartKlasse = "Tessara_8_5.clsTessaraStart";
inline constexpr const char* kTessaraStartClsid = "{C5A2E435-1490-4148-91BF-05AF634CB7D8}";
inline const std::vector<std::string>& fctTessaraStartOperationen() {
    static const std::vector<std::string> ops = {"StartTessara", "StartTessara2", "StartTessara3",
                                                 "ChangeDb", "LBlockEinfuegen"};
    return ops;
}

// The longest block name a request may carry: the width of the Block column.
inline constexpr std::size_t kBlockNameMax = 144;
// A database path longer than Windows' own limit is not a path.
inline constexpr std::size_t kDbPfadMax = 260;

class clsTessaraStart {
  public:
    clsTessaraStart(ProgrammZustand& z, clsStart& start, Hauptfenster& fenster)
        : z_(z), start_(start), fenster_(fenster) {}

    // Brings the running window forward (or starts it).
    void StartTessara();
    // A block request: the block number and the Variant argument.
    bool StartTessara2(const std::string& strBlock, const std::string& strVariante);
    // A block request in another library: the library is switched first.
    bool StartTessara3(const std::string& strBlock, const std::string& strVariante,
                       const std::string& strDb);
    // Switches the library; every "/" of the path becomes "\".
    bool ChangeDb(const std::string& strDb);
    // Inserts the block handed over last once more.
    void LBlockEinfuegen();

    // One message of the instance channel, by operation name: the entry
    // class's own operations and the go-between's (StartForm2, LBlkEinfuegen,
    // ClassNameUebergeben). A message that names no operation, carries the
    // wrong number of arguments or bytes that are no text is dropped and
    // logged; false then.
    bool anfrage(const platform::InstanceMessage& m);

  private:
    bool blockPruefen(const std::string& strBlock, const std::string& strVariante);
    bool dbPruefen(std::string& strDb);
    void verwerfen(const std::string& strGrund);

    ProgrammZustand& z_;
    clsStart& start_;
    Hauptfenster& fenster_;
};

// Text as a request may carry it: valid UTF-8 without control characters.
bool fctAnfrageTextGueltig(const std::string& s);

}  // namespace tessara

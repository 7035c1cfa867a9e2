#pragma once
// Blocks with all their files in the real library of the Folder tests: a
// Block record on a slot of Folder "000", its slide libraries and drawings
// under the library directory, each file holding its own name so that a
// test sees where every file went.
#include <fstream>
#include <map>

#include "editing/varianten.h"
#include "organisation/bibliothek.h"

namespace tessara::edittest {

namespace fs = std::filesystem;

class Bloecke : public orgtest::Bibliothek {
  public:
    // A statement on the model's connection, which sees what it wrote itself.
    void sql(const std::string& s) { modell->datenbank().con.execute(s); }
    std::string nr(int slot) const { return modell->seitenSlots().at(slot).strBlockNr; }

    void datei(const std::string& relativ) {
        fs::create_directories((wurzel / "lib" / relativ).parent_path());
        std::ofstream(wurzel / "lib" / relativ, std::ios::binary) << relativ;
    }

    // A Block on the slot of Folder "000" with Views 0 .. ansichten-1, each
    // with its slide library and drawing.
    std::string block(int slot, int ansichten = 1) {
        const std::string b = nr(slot);
        std::string spalten = "Block, OrdnerID, SlideLib", werte;
        werte = "'" + b + "', 1, '000\\" + b + "0.slb'";
        for (int v = 0; v < ansichten; ++v) {
            spalten += ", BlkName" + std::to_string(v);
            werte += ", 'Name" + std::to_string(v) + "'";
            datei("000/" + b + std::to_string(v) + ".slb");
            datei("000/Block/" + b + std::to_string(v) + ".dwg");
        }
        sql("INSERT INTO tblBlockInfo (" + spalten + ") VALUES (" + werte + ")");
        modell->subSeiteNeuAnzeigen();
        return b;
    }

    // A Block of five Views on slot 0 with a Variant of two Views and a mark.
    std::string vollerBlock() {
        const std::string b = block(0, 5);
        typEinfuegepunkte p;
        p[0] = {"1", "2", "3"};
        EXPECT_TRUE(subBlockdatenInDatenbankAbspeichernVariante(z, *modell, b, "Flansch", b + "_1",
                                                                {{0, p}, {1, p}}));
        datei("000/Block/Varia/" + b + "_10.dwg");
        datei("000/Block/Varia/" + b + "_11.dwg");
        EXPECT_TRUE(modell->fctMarkierungSetzen(0, true));
        return b;
    }

    // Every file below a library directory but the database, with its content.
    std::map<std::string, std::string> dateien(const std::string& bibliothek = "lib") const {
        std::map<std::string, std::string> d;
        for (const auto& e : fs::recursive_directory_iterator(wurzel / bibliothek)) {
            const std::string rel = fs::relative(e.path(), wurzel / bibliothek).generic_string();
            if (!e.is_regular_file() || rel.starts_with("dbTessara")) continue;
            std::ifstream in(e.path(), std::ios::binary);
            d[rel].assign(std::istreambuf_iterator<char>(in), {});
        }
        return d;
    }
};

}  // namespace tessara::edittest

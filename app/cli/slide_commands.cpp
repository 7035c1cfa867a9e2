// Slides and slide libraries from the command line: building a library as
// the host's slide-library tool does, painting a slide to PNG, describing a
// slide, and writing the pictures the program ships.
#include <QImage>
#include <QString>
#include <filesystem>
#include <fstream>
#include <istream>
#include <map>
#include <ostream>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/demo_bibliothek.h"
#include "authoring/slide_canvas.h"
#include "authoring/slide_library.h"
#include "authoring/slidelib_builder.h"
#include "cli/cli.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"
#include "ui/slide_painter.h"

namespace {

using tessara::slide::SlideError;

int runSlidelib(const cli::Args& args, std::istream& in, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) {
        err << "usage: tessara-cli slidelib LIBRARY < LIST\n";
        return 2;
    }
    std::string library = platform::nativePath(args[0]);
    if (library.size() < 4 || library.substr(library.size() - 4) != ".slb") {
        // The host's tool appends the extension when it is missing.
        auto dot = library.find_last_of("./\\");
        if (dot == std::string::npos || library[dot] != '.') library += ".slb";
    }
    try {
        auto list = tessara::slide::readSlideList(in);
        tessara::slide::buildLibraryFile(library, list);
        out << list.size() << " slides written to " << library << "\n";
        return 0;
    } catch (const SlideError& e) {
        err << "tessara-cli slidelib: " << e.what() << "\n";
        return 1;
    }
}

int runRenderSlide(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    std::string picture, png;
    int w = 400, h = 300;
    auto background = tessara::ui::DiaHintergrund::Dunkel;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--size" && i + 1 < args.size()) {
            const std::string& s = args[++i];
            auto x = s.find_first_of("xX");
            try {
                if (x == std::string::npos) throw std::invalid_argument(s);
                w = std::stoi(s.substr(0, x));
                h = std::stoi(s.substr(x + 1));
            } catch (const std::exception&) {
                err << "tessara-cli render-slide: --size wants WxH, got '" << s << "'\n";
                return 2;
            }
            if (w < 1 || h < 1 || w > 8192 || h > 8192) {
                err << "tessara-cli render-slide: size out of range 1..8192\n";
                return 2;
            }
        } else if (args[i] == "--light") {
            background = tessara::ui::DiaHintergrund::Hell;
        } else if (picture.empty()) {
            picture = args[i];
        } else if (png.empty()) {
            png = args[i];
        } else {
            err << "tessara-cli render-slide: unexpected argument '" << args[i] << "'\n";
            return 2;
        }
    }
    if (picture.empty() || png.empty()) {
        err << "usage: tessara-cli render-slide FILE[(NAME)] OUT.png [--size WxH] [--light]\n";
        return 2;
    }
    try {
        auto slide = tessara::slide::fctDiaLaden(picture);
        QImage image = tessara::ui::fctDiaBild(slide, QSize(w, h), {background, true});
        std::string target = platform::nativePath(png);
        if (!image.save(QString::fromStdString(target), "PNG")) {
            err << "tessara-cli render-slide: cannot write " << target << "\n";
            return 1;
        }
        out << target << " " << w << "x" << h << "\n";
        return 0;
    } catch (const SlideError& e) {
        err << "tessara-cli render-slide: " << e.what() << "\n";
        return 1;
    }
}

int runSlideInfo(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) {
        err << "usage: tessara-cli slide-info FILE[(NAME)]\n";
        return 2;
    }
    try {
        auto parts = tessara::slide::fctBildnameZerlegen(args[0]);
        std::string native = platform::nativePath(parts.datei);
        if (parts.eintrag.empty() && native.size() > 4 &&
            native.substr(native.size() - 4) == ".slb") {
            auto lib = tessara::slide::SlideLibrary::readFile(native);
            for (const auto& e : lib.entries())
                out << e.name << " " << e.address << " " << e.size << "\n";
            return 0;
        }
        auto s = tessara::slide::fctDiaLaden(args[0]);
        const auto& r = s.records;
        out << "level " << s.level << (s.bigEndian ? " big-endian" : " little-endian") << "\n"
            << "area " << s.highX + 1 << "x" << s.highY + 1 << " aspect " << s.aspectRatio << "\n"
            << "records vectors " << r.vectors << " offset " << r.offsetVectors << " common "
            << r.commonEndpoints << " fills " << r.fills << " colours " << r.colours << " eof "
            << r.endOfFile << "\n"
            << "elements " << s.elements.size() << "\n";
        return 0;
    } catch (const SlideError& e) {
        err << "tessara-cli slide-info: " << e.what() << "\n";
        return 1;
    }
}

// The demo catalogue "dbTessara.mdb" in the library directory: the Folders
// with their Pages, a Block record per symbol and the marked blocks, as the
// program would have written them when the blocks were made. The default
// Folder "000" and its Page 1 of a new catalogue become the first demo Folder.
void demoKatalogSchreiben(const std::string& dir, const std::vector<tessara::DemoBlock>& blocks) {
    namespace fs = std::filesystem;
    const std::string datei = (fs::path(dir) / "dbTessara.mdb").string();
    std::error_code ec;
    fs::remove(datei, ec);
    tessara::SkriptBenutzer benutzer;
    tessara::ProgrammZustand z;
    z.benutzer = &benutzer;
    const auto oeffner = db::jetOpener();
    if (!tessara::Mk_Datenbank(z, oeffner, datei))
        throw std::runtime_error(
            "the demo catalogue could not be created" +
            (benutzer.gezeigt.empty() ? std::string() : ": " + benutzer.gezeigt.front().text));
    db::Connection con(oeffner);
    con.open(tessara::fctJetVerbindung(datei));
    db::Recordset ordner, seiten, bloecke, markiert;
    ordner.open("SELECT * FROM tblOrdner", con, db::adOpenKeyset, db::adLockOptimistic);
    seiten.open("SELECT * FROM tblSeiten", con, db::adOpenKeyset, db::adLockOptimistic);
    bloecke.open("SELECT * FROM tblBlockInfo", con, db::adOpenKeyset, db::adLockOptimistic);
    markiert.open("SELECT * FROM tblMarkierteBloecke", con, db::adOpenKeyset, db::adLockOptimistic);
    std::map<std::string, long long> ordnerId;
    for (const auto& o : tessara::fctDemoOrdner()) {
        const bool standard = o.ordnerNr == "000";
        if (standard) {
            ordner.moveFirst();
        } else {
            ordner.addNew();
            ordner.setValue("OrdnerNr", o.ordnerNr);
            ordner.setValue("OrdnerRechte", "Alle");
            ordner.setValue("NrTblDefMenue", 1);
        }
        ordner.setValue("Ordnername", o.ordnerName);
        ordner.update();
        ordnerId[o.ordnerNr] = ordner.value("Nr").asInt();
        for (std::size_t i = 0; i < o.seiten.size(); ++i) {
            if (standard && i == 0) {
                seiten.moveFirst();
            } else {
                seiten.addNew();
                seiten.setValue("SeitenNr", static_cast<int>(i + 1));
                seiten.setValue("NrTblOrdner", ordnerId[o.ordnerNr]);
            }
            seiten.setValue("SeitenName", o.seiten[i]);
            seiten.update();
        }
    }
    for (const auto& b : blocks) {
        bloecke.addNew();
        bloecke.setValue("Block", b.blockNr);
        bloecke.setValue("SlideLib", b.slideLib);
        bloecke.setValue("OrdnerID", ordnerId.at(b.ordnerNr));
        for (int v = 0; v < b.ansichten; ++v) {
            const std::string n = std::to_string(v);
            bloecke.setValue("BlkName" + n, v == 0 ? b.blkName : b.blkName + "-" + n);
            for (const char* achse : {"AX", "AY", "AZ"}) bloecke.setValue(achse + n, 0.0);
        }
        bloecke.setValue("M0", b.m0);
        if (!b.m1.empty()) bloecke.setValue("M1", b.m1);
        if (!b.m2.empty()) bloecke.setValue("M2", b.m2);
        if (!b.m3.empty()) bloecke.setValue("M3", b.m3);
        bloecke.setValue("Layer", b.layer);
        bloecke.setValue("LyLine", "Continuous");
        bloecke.setValue("LyColor", b.layerFarbe);
        bloecke.update();
        if (b.markiert) {
            markiert.addNew();
            markiert.setValue("BlockName", b.blkName);
            markiert.setValue("BlockNr", b.blockNr);
            markiert.setValue("SpeicherOrtSlide", b.slideLib);
            markiert.setValue("SpeicherOrtDWG",
                              tessara::fctZeichnungDatei(b.ordnerNr, b.blockNr, 0));
            markiert.setValue("MarkierteAnsicht", 0);
            markiert.setValue("NummerEinfuegepkt", 1);
            markiert.update();
        }
    }
}

int runMakeDemoLibrary(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.empty() || args.size() > 2 || (args.size() == 2 && args[1] != "--single-slides")) {
        err << "usage: tessara-cli make-demo-library DIR [--single-slides]\n";
        return 2;
    }
    try {
        std::string dir = platform::nativePath(args[0]);
        auto blocks = tessara::fctDemoBibliothekErzeugen(dir, args.size() == 1);
        demoKatalogSchreiben(dir, blocks);
        out << "OrdnerNr;Ordnername;Block;BlkName0;SlideLib;Ansichten\n";
        for (const auto& b : blocks)
            out << b.ordnerNr << ";" << b.ordnerName << ";" << b.blockNr << ";" << b.blkName << ";"
                << b.slideLib << ";" << b.ansichten << "\n";
        return 0;
    } catch (const std::exception& e) {
        err << "tessara-cli make-demo-library: " << e.what() << "\n";
        return 1;
    }
}

int runMakeProgramData(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) {
        err << "usage: tessara-cli make-program-data DIR\n";
        return 2;
    }
    try {
        std::filesystem::path dir(platform::nativePath(args[0]));
        auto frei = tessara::slide::writeSlide(tessara::slide::fctLeerfeldDia());
        tessara::slide::writeFileBytes((dir / "frei2.sld").string(), frei);
        std::string codes = tessara::fctCodeTabelleText();
        tessara::slide::writeFileBytes(
            (dir / "txtPrefix.txt").string(),
            std::span(reinterpret_cast<const std::uint8_t*>(codes.data()), codes.size()));
        out << (dir / "frei2.sld").string() << "\n" << (dir / "txtPrefix.txt").string() << "\n";
        return 0;
    } catch (const std::exception& e) {
        err << "tessara-cli make-program-data: " << e.what() << "\n";
        return 1;
    }
}

cli::Subcommand slidelib{"slidelib", "LIBRARY < LIST",
                         "builds a slide library from slide files listed one a line on stdin",
                         &runSlidelib};
cli::Subcommand renderSlide{"render-slide", "FILE[(NAME)] OUT.png [--size WxH] [--light]",
                            "paints a slide, or a slide of a library, as a PNG", &runRenderSlide};
cli::Subcommand slideInfo{"slide-info", "FILE[(NAME)]",
                          "describes a slide, or lists the entries of a slide library",
                          &runSlideInfo};
cli::Subcommand makeDemo{"make-demo-library", "DIR [--single-slides]",
                         "draws the demo symbols below DIR, writes their catalogue "
                         "DIR/dbTessara.mdb and lists the blocks",
                         &runMakeDemoLibrary};
cli::Subcommand makeData{"make-program-data", "DIR",
                         "writes the empty-slot picture frei2.sld and the code table txtPrefix.txt",
                         &runMakeProgramData};

}  // namespace

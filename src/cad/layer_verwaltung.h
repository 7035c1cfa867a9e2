#pragma once
// The layer manager: named layer configurations kept in the Settings file,
// the layers of the drawing read from the host (the Layers collection of
// full AutoCAD, a listing of -LAYER for the hosts of the script channel) and
// a configuration set on the drawing again (-LAYER commands, sent or run as
// a script). Nothing here throws; failures are told through the result.
#include <optional>
#include <string>
#include <vector>

#include "cad/acad_automation.h"
#include "cad/block_daten.h"
#include "cad/cad_verbindung.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct typLayerKonfiguration {
    std::string strName;
    std::vector<typLayer> layer;
};

// A configuration as read: the layers of the good lines, the broken lines as
// they stand in the file (the caller tells the user), and whether the
// section was there at all.
struct LayerKonfigurationGelesen {
    typLayerKonfiguration konfiguration;
    std::vector<std::string> fehlerhafteZeilen;
    bool booGefunden = false;
};

// One layer as a Settings line and back: "name;colour;linetype;on;frozen;locked".
std::string fctLayerZeile(const typLayer& l);
std::optional<typLayer> fctLayerZeileLesen(const std::string& strWert);

// The configurations of the Settings file, in file order.
std::vector<std::string> fctLayerKonfigurationenListe(ProgrammZustand& z);
LayerKonfigurationGelesen fctLayerKonfigurationLesen(ProgrammZustand& z,
                                                     const std::string& strName);
// Writes the configuration under its name, replacing one of that name.
bool fctLayerKonfigurationSpeichern(ProgrammZustand& z, const typLayerKonfiguration& k);
bool fctLayerKonfigurationUmbenennen(ProgrammZustand& z, const std::string& strAlt,
                                     const std::string& strNeu);
bool fctLayerKonfigurationLoeschen(ProgrammZustand& z, const std::string& strName);
// The number of the message that refuses a new name, 0 when it is fine
// (a name already used is not refused here: the caller asks to replace it).
long fctLayerKonfigurationNamePruefen(const std::string& strName);
bool fctLayerKonfigurationVorhanden(ProgrammZustand& z, const std::string& strName);

// What -LAYER is given to set the configuration: one input a line, the last
// one empty (ends the command). Names with a blank are quoted.
std::vector<std::string> fctLayerBefehle(const typLayerKonfiguration& k);
// The script that makes a host of the script channel list its layers into a
// log file in strVerzeichnis (without trailing "\").
std::vector<std::string> fctSkriptLayerListe(const std::string& strVerzeichnis);
// The layers of a "-LAYER ?" listing as the host prints it: a header line
// naming the columns (English or German), then one line a layer, columns
// under their header. Lines that fit no layer are skipped.
std::vector<typLayer> fctLayerListeLesen(const std::string& strText);

struct LayerVomHost {
    std::vector<typLayer> layer;
    bool booOk = false;
    std::string strFehler;  // why not, for the message
};
// Reads the drawing's layers from the connected host.
LayerVomHost fctLayerVomHostLesen(ProgrammZustand& z, CadVerbindung& v,
                                  const typCadEinstellungen& e);
// Sets the configuration on the drawing of the connected host.
bool fctLayerKonfigurationAnwenden(ProgrammZustand& z, CadVerbindung& v,
                                   const typCadEinstellungen& e, const typLayerKonfiguration& k);

}  // namespace tessara

#pragma once
// Several workstations may share one library file. A Folder or Page change
// reads what is there (the next free code, a taken number or name) and then
// writes; both must happen while no other writer can come in between, or two
// workstations would take the same code. A unit holds the engine's writer
// lock on the file from its start to its end, and what is read inside it is
// the file as it is now: the engine drops what another process may have
// changed when a unit begins. Nothing is written to the file before commit().
//
// A unit never lasts across a question to the user: a box left open would
// hold every other workstation's writes.
#include <memory>

#include "db/connection.h"

namespace tessara {

// On a catalogue server a unit does not keep other workstations out: one may
// take the same key in between (the server's unique key refuses the second),
// or the server gives up one of two crossing units. Jet's numbers for both;
// an action that lost such a race looks again instead of failing.
inline constexpr long kDoppelterSchluessel = 3022;  // a key taken twice
inline constexpr long kGesperrt = 3218;             // "currently locked": a unit given up
inline constexpr int kRennenVersuche = 20;
inline bool fctRennenVerloren(long lngFehlerNr) {
    return lngFehlerNr == kDoppelterSchluessel || lngFehlerNr == kGesperrt;
}

class SchreibEinheit {
  public:
    explicit SchreibEinheit(db::Connection& con) : s_(con.storage()) {
        if (s_) {
            s_->begin();
            offen_ = true;
        }
    }
    ~SchreibEinheit() {
        if (offen_) s_->rollback();
    }
    SchreibEinheit(const SchreibEinheit&) = delete;
    SchreibEinheit& operator=(const SchreibEinheit&) = delete;

    void commit() {
        if (offen_) {
            offen_ = false;
            s_->commit();
        }
    }

  private:
    std::shared_ptr<sql::Storage> s_;
    bool offen_ = false;
};

}  // namespace tessara

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

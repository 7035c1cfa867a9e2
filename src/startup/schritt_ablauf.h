#pragma once
// A sequence of labelled steps, as the main window's load and unload run
// them: in debug mode each label is written to the log before its step, and a
// failing step is logged and skipped, never the end of the sequence.
#include <functional>
#include <string>
#include <vector>

#include "startup/programm_zustand.h"

namespace tessara {

class SchrittAblauf {
  public:
    struct Schritt {
        std::string label;
        std::function<void()> aktion;  // empty until the owning subsystem fills it in
        // For steps that are alternatives of one another (which database is
        // attached): a step whose condition answers false is neither logged
        // nor run.
        std::function<bool()> bedingung;
    };

    SchrittAblauf(std::string name, std::vector<std::string> labels);

    // Gives the step its work; false when no step carries that label.
    bool setzen(const std::string& label, std::function<void()> aktion,
                std::function<bool()> bedingung = {});
    // Whether every step has its work (a sequence with gaps still runs).
    std::vector<std::string> offeneSchritte() const;
    const std::vector<Schritt>& schritte() const { return schritte_; }

    // Runs the steps in order; answers the labels that ran, failed ones included.
    std::vector<std::string> ausfuehren(ProgrammZustand& z) const;

  private:
    std::string name_;
    std::vector<Schritt> schritte_;
};

// The main window's load (Form_Load) and unload (Form_Unload) sequences with
// their labels in order.
SchrittAblauf fctLadeAblauf();
SchrittAblauf fctEntladeAblauf();

}  // namespace tessara

#pragma once
// The picture of a View, taken by the CAD host from the drawing as it stands
// on screen: the command texts full AutoCAD gets, the red point that marks
// the Insertion point on every slide, the list and batch file of the
// slide-library tool, and the library itself.
//
// Slides are written into a working directory `D` first and reach the
// library only when the whole flow has worked (DateienAusTempVerschieben), so
// a flow broken off at any step leaves the library as it was.
//
// The library is built by the program's own builder from "\dialist.txt": the
// host's 16-bit "slidelib.exe" does not run on 64-bit Windows. "\Slidelib.bat"
// is written all the same, and with the Settings value "SlidelibUeberShell"
// set to "1" the host runs the tool through "._shell" for installations
// that have it.
#include <array>
#include <string>
#include <vector>

#include "cad/acad_automation.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct typPunkt3 {
    double x = 0, y = 0, z = 0;
};

// Commas of a number written in a German locale become decimal points.
std::string KommaPunktErsetzen(std::string strText);
// A point as the host answers it ("x,y,z" or "x,y"); false when it is none.
bool fctPunktLesen(const std::string& strText, typPunkt3& p);
// "x,y,z" with decimal points, as the host's command line takes a point.
std::string fctPunktText(const typPunkt3& p);
std::string fctZahlText(double d);

// The corner points of the slide: the extents and the base point together,
// widened by a twentieth on each side so that the red point is not cut.
std::array<typPunkt3, 2> fctDiaEckpunkte(const typPunkt3& extmin, const typPunkt3& extmax,
                                         const typPunkt3& basis);
// The red point's diameter: a fortieth of the corner points' diagonal, so
// that it reads the same on a screw and on a floor plan; 1 when the drawing
// is empty.
double fctDurchmesserRoterPunkt(const std::array<typPunkt3, 2>& ecken);

// --- The texts sent to full AutoCAD ("\r" ends an answer) -------------------
std::string fctBefehlVorbereiten();
std::string fctBefehlZoomFenster(const std::array<typPunkt3, 2>& ecken);
std::string fctBefehlZoomFaktor(double faktor);
std::string fctBefehlRoterPunkt(double durchmesser, const typPunkt3& p);
std::string fctBefehlRoterPunktFarbe();
std::string fctBefehlDiaAufnehmen(const std::string& D, const std::string& N);
std::string fctBefehlVerdeckt();
std::string fctBefehlPan();
std::string fctBefehlUndoMarke();
std::string fctBefehlUndoZurueck();
// Escape twice: cancels a command still waiting in the host.
std::string fctBefehlAbbrechen();
// "._shell " & D & "\slidelib.exe " & library & " < " & D & "\dialist.txt"
std::string fctBefehlSlidelib(const std::string& D, const std::string& strBibliothek);
// The one line of "\Slidelib.bat": the same call, its paths in double quotes.
std::string fctSlidelibBatZeile(const std::string& D, const std::string& strBibliothek);

// "\dialist.txt" in D: D & "\" & code & ".sld", one line a View taken.
bool DialisteSchreiben(ProgrammZustand& z, const std::string& D,
                       const std::vector<std::string>& codes);
// Writes "\Slidelib.bat" and builds the library from "\dialist.txt" with the
// program's own builder (or, with booShell, has the host run the tool and
// waits for the library). The library path is in the program's form.
bool fctSlidelibErstellen(ProgrammZustand& z, AcadDokument* dok, const std::string& D,
                          const std::string& strBibliothek, bool booShell);

// Waits for a file the host is to write, processing window messages: true
// when it is there; false on Escape or after the 40-second bound.
bool fctAufDateiWarten(ProgrammZustand& z, const std::string& strDatei);

// Marks the Insertion point and takes slide N of View N[0] into D: prepare,
// zoom to the corner points, red point, take the slide, wait for it.
bool SlidesErstellen(ProgrammZustand& z, AcadDokument& dok, const std::string& D,
                     const std::string& N, const typPunkt3& basis);
// The slide of the view as it stands, with the red point.
bool fctDiaSchiessenAutoCADVoll(ProgrammZustand& z, AcadDokument& dok, const std::string& D,
                                const std::string& N, const typPunkt3& basis);
// The user picks the slide's window with two corners.
bool SlidesErstellenVonBildausschnittAnpassen(ProgrammZustand& z, AcadDokument& dok,
                                              const std::string& D, const std::string& N,
                                              const typPunkt3& basis);
// The user pans, then the slide is taken again.
bool SlidesErstellenBildausschnitVerschieben(ProgrammZustand& z, AcadDokument& dok,
                                             const std::string& D, const std::string& N,
                                             const typPunkt3& basis);

// The buttons of frmBildausschnittAnpassen.
enum class BildKnopf { ZoomGross, ZoomKlein, Pan, Verdeckt, ElementeAusblenden, Fenster, Nein };
// What one button does to the view, followed by the slide taken again.
bool fctBildausschnittAnpassen(ProgrammZustand& z, AcadDokument& dok, BildKnopf knopf,
                               const std::string& D, const std::string& N, const typPunkt3& basis);

}  // namespace tessara

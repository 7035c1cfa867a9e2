#pragma once
// Numbered messages of the "Msgbox_" file and the family of message boxes
// built from them.
//
// Each member takes one message number per line and one group selector for
// all its lines (1 "Allg", 2 "Gruppe", 3 "Speziell"), looks every line up,
// joins the lines with "\r" and shows them through the Benutzer with a title
// that is itself a message of group 1: 3 for information (information icon,
// OK), 4 for questions (question icon, Yes and No; true exactly on Yes).
//
// The trailing digits of a name count the line breaks between its lines:
// "Zweizeilig2" puts two breaks (an empty line) between line 1 and 2,
// "VierZeilig121" one, two, one. A name without digits breaks once between every line.
//
// Extra lines the caller has at hand (a path, a name) follow the message
// lines, each on a line of its own.
#include <string>
#include <vector>

#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr int kGruppeAllg = 1;
inline constexpr int kGruppeGruppe = 2;
inline constexpr int kGruppeSpeziell = 3;

inline constexpr long kMeldungTitelInfo = 3;
inline constexpr long kMeldungTitelFrage = 4;
inline constexpr long kMeldungNichtMehrAnzeigen = 413;

// The text of message lngNummer of the group. A missing message (or group)
// shows "[Meldung <nummer>]" and is logged once.
std::string fctBeschriftMsgboxZuordnen(ProgrammZustand& z, long lngNummer, int intGruppe);

// One line of a message box: a message number, or a text as it stands.
// umbrueche: line breaks before this line (ignored for the first line).
struct MsgboxZeile {
    MsgboxZeile(long n, int u = 1) : nummer(n), umbrueche(u) {}
    MsgboxZeile(int n, int u = 1) : nummer(n), umbrueche(u) {}
    MsgboxZeile(std::string t, int u = 1) : text(std::move(t)), istText(true), umbrueche(u) {}
    MsgboxZeile(const char* t, int u = 1) : text(t), istText(true), umbrueche(u) {}

    long nummer = 0;
    std::string text;
    bool istText = false;
    int umbrueche = 1;
};

enum class MsgboxArt { Info, Frage };

// The lines looked up and joined.
std::string fctMsgboxText(ProgrammZustand& z, const std::vector<MsgboxZeile>& zeilen,
                          int intGruppe);

// Shows the lines as an information box (true) or a question (true on Yes).
// With a Settings key (strNichtMehrAnzeigen not empty) the box is one the
// user may switch off: when "MsgboxAnzeigen" holds "1" under the key nothing
// is shown, an information answers true and a question answers Yes (true);
// otherwise the box carries a check box captioned by message 413, and a
// ticked box is saved under the key (for a question only together with Yes,
// so that a switched-off question goes on answering what the user chose).
bool fctMsgbox(ProgrammZustand& z, MsgboxArt art, const std::vector<MsgboxZeile>& zeilen,
               int intGruppe = kGruppeAllg, const std::string& strNichtMehrAnzeigen = {});

// Whether the message with this Settings key is still to be shown (the
// user has not switched it off).
bool fctMsgboxNichtMehrAnzeigen(ProgrammZustand& z, const std::string& strSchluessel);

using MsgboxZusatz = std::vector<std::string>;

// --- Information ------------------------------------------------------------
void subMsgboxInfoEinzeilig(ProgrammZustand& z, long n1, int intGruppe = kGruppeAllg,
                            const MsgboxZusatz& zusatz = {});
void subMsgboxInfoZweizeilig(ProgrammZustand& z, long n1, long n2, int intGruppe = kGruppeAllg,
                             const MsgboxZusatz& zusatz = {});
void subMsgboxInfoVierZeilig121(ProgrammZustand& z, long n1, long n2, long n3, long n4,
                                int intGruppe = kGruppeAllg, const MsgboxZusatz& zusatz = {});

// --- Questions (true exactly on Yes) -----------------------------------------
bool fctMsgboxFrageEinzeilig(ProgrammZustand& z, long n1, int intGruppe = kGruppeAllg,
                             const MsgboxZusatz& zusatz = {});
bool fctMsgboxFrageZweizeilig2(ProgrammZustand& z, long n1, long n2, int intGruppe = kGruppeAllg,
                               const MsgboxZusatz& zusatz = {});
bool fctMsgboxFrageDreizeilig12(ProgrammZustand& z, long n1, long n2, long n3,
                                int intGruppe = kGruppeAllg, const MsgboxZusatz& zusatz = {});
// Four lines in a question, one break between each.
bool fctMsgboxFrageVierzeilig(ProgrammZustand& z, long n1, long n2, long n3, long n4,
                              int intGruppe = kGruppeAllg, const MsgboxZusatz& zusatz = {});

}  // namespace tessara

#pragma once
// The numbers of the messages the main window and the library session show,
// each defined once; their texts are in the message files.
namespace tessara {

inline constexpr long kMsgBibliothekNichtOeffnen = 400;  // then the path, then the reason
inline constexpr long kMsgDateiBeschaedigt = 401;
inline constexpr long kMsgDatenbankGesperrt = 402;
inline constexpr long kMsgVerzeichnisFehlt = 404;
inline constexpr long kMsgCodetabelle = 405;
inline constexpr long kMsgEinstellungUngueltig = 406;
inline constexpr long kMsgKeinBlock = 407;
inline constexpr long kMsgTessaraBeenden = 408;
// No CAD host found: three lines.
inline constexpr long kMsgKeinHost1 = 410;
inline constexpr long kMsgKeinHost2 = 411;
inline constexpr long kMsgKeinHost3 = 412;
// Libraries of older versions and the database list.
inline constexpr long kMsgEintraegeAendern = 500;  // then kMsgDauertEtwas
inline constexpr long kMsgDauertEtwas = 501;
inline constexpr long kMsgAlteDatenbank = 502;  // then the path, then the question
inline constexpr long kMsgAlteDatenbankImportieren = 503;
inline constexpr long kMsgImportFehlgeschlagen = 504;  // then the path
inline constexpr long kMsgEinzigeBibliothek = 505;
inline constexpr long kMsgNichtInListe = 506;                  // then the path
inline constexpr long kMsgBibliothekAbhaengen = 507;           // a question, then the path
inline constexpr long kMsgVerzeichnisSchreibgeschuetzt = 508;  // then the path
// The title of the directory question when no library is known yet.
inline constexpr long kMsgErsteBibliothekWaehlen = 560;

}  // namespace tessara

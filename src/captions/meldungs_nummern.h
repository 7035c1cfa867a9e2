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
// The layer manager and the version history.
inline constexpr long kMsgLayerNameLeer = 600;
inline constexpr long kMsgLayerNameZeichen = 601;
inline constexpr long kMsgLayerErsetzen = 602;          // a question
inline constexpr long kMsgLayerLoeschen = 603;          // a question, then the name
inline constexpr long kMsgLayerNichtGelesen = 604;      // then the reason
inline constexpr long kMsgLayerZeilenFehlerhaft = 605;  // then the lines
inline constexpr long kMsgLayerNichtGespeichert = 606;  // then the Settings file
inline constexpr long kMsgLayerNichtAngewandt = 607;
inline constexpr long kMsgLayerOhneLayer = 608;
inline constexpr long kMsgVersionsHistorieFehlt = 609;     // then the path
inline constexpr long kMsgVersionsHistorieCodepage = 610;  // then the path
inline constexpr long kMsgLayerNameVergeben = 611;
// Why a library's catalogue server could not be opened.
inline constexpr long kMsgServerAntwortetNicht = 640;
inline constexpr long kMsgServerStartet = 641;
inline constexpr long kMsgServerAnmeldung = 642;
inline constexpr long kMsgServerOhneDatenbank = 643;
inline constexpr long kMsgServerOhneKatalog = 644;
inline constexpr long kMsgServerOhneTreiber = 645;

}  // namespace tessara

#pragma once
// The numbers of the messages the Block, View and Variant operations show,
// each defined once; their texts are in the message files.
namespace tessara {

// The name rules of the name dialogs.
inline constexpr long kMsgVarianteVergeben = 57;
inline constexpr long kMsgVarianteOhneName = 136;
inline constexpr long kMsgNameHoechstens32 = 304;

inline constexpr long kMsgSchreibgeschuetzt = 403;

// New blocks, Views and Variants taken from the drawing.
inline constexpr long kMsgPlatzBelegt = 450;
inline constexpr long kMsgKeineAnsichtFrei = 451;
inline constexpr long kMsgBlockNichtAngelegt = 452;  // then the reason
inline constexpr long kMsgAuswahlFehler = 453;       // then the host's description
inline constexpr long kMsgZielplatzBelegt = 470;
inline constexpr long kMsgVerschiebenMisslungen = 471;
inline constexpr long kMsgBlockLoeschenFrage = 472;
inline constexpr long kMsgLoeschenMisslungen = 473;
inline constexpr long kMsgNameNichtAenderbar = 474;
inline constexpr long kMsgAnsichtLoeschenFrage = 475;
inline constexpr long kMsgKoordinateUngueltig = 476;
inline constexpr long kMsgVarianteLoeschenFrage = 477;
inline constexpr long kMsgZuWenigFreiePlaetze = 478;
inline constexpr long kMsgKeineMarkierten = 479;
inline constexpr long kMsgVariantenDateiDefekt = 480;
inline constexpr long kMsgEinfuegepunktWaehlen = 481;
inline constexpr long kMsgBasispunkt = 482;
inline constexpr long kMsgAnsichtFehlt = 483;

// The clipboard.
inline constexpr long kMsgAblageLeer = 520;
inline constexpr long kMsgSeiteOhneBloecke = 521;
inline constexpr long kMsgQuelleNichtOffen = 522;  // then the database
inline constexpr long kMsgAblageUeberschneidung = 523;
inline constexpr long kMsgUeberschreibenFrage = 524;  // then the block numbers
inline constexpr long kMsgOrdnerZuKlein = 525;
inline constexpr long kMsgEinfuegenAbgebrochen = 526;  // then the block number
inline constexpr long kMsgQuelleNichtEntfernt = 527;   // then the block number
inline constexpr long kMsgQuelleFehlt = 528;           // then the block numbers
inline constexpr long kMsgAusgeschnittenBeenden = 529;
inline constexpr long kMsgFortschrittEinfuegen = 530;  // the progress line

// A new Block's own program.
inline constexpr long kMsgBlockProgrammFrage = 624;
inline constexpr long kMsgBlockProgrammNichtKopiert = 625;  // then the file

}  // namespace tessara

#pragma once
// What the panels and dialogs of the main window (search, result list, quick
// filter, recent blocks, management windows) are given instead of the
// window: the program state, the library session, the preview cache, and the
// few actions they may ask of the window.
#include <QObject>
#include <QString>
#include <string>
#include <vector>

namespace tessara {

struct ProgrammZustand;
class BibliothekSitzung;
namespace ui {
class DiaVorschauCache;
}

class BlockAktionen : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

    // Makes the Block current in the main window (its Folder, Page and slot)
    // and redraws it; a block number the library has no slot for is
    // reported (message 407 with the number) and answers false.
    virtual bool zumBlockSpringen(const std::string& strBlock) = 0;
    // Jumps to the Block and runs the insert command on it.
    virtual bool blockEinfuegen(const std::string& strBlock) = 0;
    // After a change to Folders, Pages or Blocks: the window reads the model
    // again and redraws.
    virtual void ordnerUndSeitenNeuAnzeigen() = 0;
    // After an operation that answered what it changed (typAenderung flags):
    // the window redraws those parts.
    virtual void neuZeichnen(unsigned was) = 0;
    // The block numbers the last insertion took in, in the order inserted.
    virtual const std::vector<std::string>& zuletztEingefuegt() const = 0;

  signals:
    // A Page has been drawn and all its pictures are in (also after a
    // library was opened or switched).
    void seiteGemalt();
    // An insertion has ended (eingefuegt: how many blocks went in).
    void einfuegungBeendet(int eingefuegt);
};

struct FensterKontext {
    ProgrammZustand& z;
    BibliothekSitzung& sitzung;
    ui::DiaVorschauCache& vorschau;
    BlockAktionen& aktionen;
};

namespace ui {
// The picture of View 0 of a Block of the open library, for the preview
// cache (program form); empty for a Block without slide library.
QString fctVorschauName(const BibliothekSitzung& s, const std::string& strSlideLib);
}  // namespace ui

}  // namespace tessara

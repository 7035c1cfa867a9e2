// The preview picture a drawing carries, written as PNG for scripts.
#include <QImage>
#include <QString>
#include <ostream>

#include "authoring/dwg_preview.h"
#include "cli/cli.h"
#include "platform/environment.h"
#include "ui/dwg_preview_image.h"

namespace {

int runDwgPreview(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 2) {
        err << "usage: tessara-cli dwg-preview FILE.dwg OUT.png\n";
        return 2;
    }
    try {
        const auto vorschau = tessara::dwg::fctVorschauLesenDatei(platform::nativePath(args[0]));
        if (!vorschau) {
            err << args[0] << ": the drawing carries no preview\n";
            return 1;
        }
        const QImage bild = tessara::ui::fctZeichnungVorschauDecodieren(*vorschau);
        if (!bild.save(QString::fromStdString(platform::nativePath(args[1])), "PNG")) {
            err << args[1] << ": cannot be written\n";
            return 1;
        }
        out << vorschau->version << ' '
            << (vorschau->art == tessara::dwg::Vorschau::Art::Png ? "PNG" : "BMP") << ' '
            << bild.width() << 'x' << bild.height() << '\n';
        return 0;
    } catch (const tessara::dwg::DwgError& e) {
        err << e.what() << '\n';
        return 1;
    }
}

cli::Subcommand dwgPreview{"dwg-preview", "FILE.dwg OUT.png",
                           "write the preview picture a drawing carries as PNG", &runDwgPreview};

}  // namespace

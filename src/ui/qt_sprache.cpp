#include "ui/qt_sprache.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace tessara::ui {

namespace {
// The caption files' language names and Qt's locale names.
QString qtSprache(const std::string& strSprache) {
    if (strSprache == "deutsch") return QStringLiteral("de");
    if (strSprache == "englisch") return QStringLiteral("en");
    return {};
}
}  // namespace

void subQtUebersetzungLaden(const ProgrammZustand& z) {
    static bool geladen = false;
    auto* app = QCoreApplication::instance();
    const QString sprache = qtSprache(z.strSprache.empty() ? "deutsch" : z.strSprache);
    if (geladen || !app || sprache.isEmpty() || sprache == QLatin1String("en")) return;
    geladen = true;
    // Qt's own folder, else "translations" beside the program (the Windows setup).
    const QStringList orte = {QLibraryInfo::path(QLibraryInfo::TranslationsPath),
                              QCoreApplication::applicationDirPath() + "/translations"};
    for (const QString& ort : orte) {
        auto* t = new QTranslator(app);
        if (t->load(QStringLiteral("qtbase_") + sprache, ort)) {
            QCoreApplication::installTranslator(t);
            return;
        }
        delete t;
    }
}

}  // namespace tessara::ui

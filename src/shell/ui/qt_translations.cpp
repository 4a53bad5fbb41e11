#include "shell/ui/qt_translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace lumiran {

bool installQtTranslations(QCoreApplication& application) {
    // The program's text is Japanese only, so Qt's is too.
    auto* translator = new QTranslator(&application);
    if (!translator->load("qtbase_ja", QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

} // namespace lumiran

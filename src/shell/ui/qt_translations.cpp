#include "shell/ui/qt_translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace lumiran {

std::unique_ptr<QTranslator> loadQtJapanese() {
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load("qtbase_ja", QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        return nullptr;
    }
    return translator;
}

bool installQtTranslations(QCoreApplication& application) {
    std::unique_ptr<QTranslator> translator = loadQtJapanese();
    if (!translator) return false;
    // Owned by the application from here on.
    translator->setParent(&application);
    return QCoreApplication::installTranslator(translator.release());
}

} // namespace lumiran

#pragma once

#include <memory>

class QCoreApplication;
class QTranslator;

namespace lumiran {

// Qt's own Japanese texts (qtbase_ja), so that the buttons of message boxes,
// "Show Details..." and the file dialogs speak the program's language
// whatever the desktop's locale. Null when Qt's translations are not
// installed; Qt's texts then stay English.
[[nodiscard]] std::unique_ptr<QTranslator> loadQtJapanese();

// The same, installed on the application for as long as it lives. False
// when Qt's translations are not installed.
bool installQtTranslations(QCoreApplication& application);

} // namespace lumiran

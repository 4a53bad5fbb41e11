#pragma once

class QCoreApplication;

namespace lumiran {

// Loads Qt's own Japanese texts (qtbase_ja), so that the buttons of message
// boxes, "Show Details..." and the file dialogs speak the program's language
// whatever the desktop's locale. False when Qt's translations are not
// installed; Qt's texts then stay English.
bool installQtTranslations(QCoreApplication& application);

} // namespace lumiran

#pragma once

#include "shell/string_table.h"
#include "shell/ui/interface_translator.h"

#include <QCoreApplication>
#include <QString>
#include <string>

namespace lumiran {

[[nodiscard]] inline QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// A text of the string table for display, in the interface language. The
// language is the translator the frame installed on the application: Qt's
// per-application lookup, so no caller needs to carry the program state.
// Without it (or where it has no English) the Japanese shows.
[[nodiscard]] inline QString res(int id) {
    const std::string_view japanese = LoadResString(id);
    const std::string source(japanese);
    const QByteArray key = QByteArray::number(id);
    return QCoreApplication::translate(StringTableContext, source.c_str(), key.constData());
}

// A Japanese text from the core (the catalogue's labels and rows, an
// effect's caption or message, a reader's error, a tool's status) in the
// interface language; the Japanese itself where no English is known.
[[nodiscard]] inline QString shown(std::string_view japanese) {
    const std::string source(japanese);
    return QCoreApplication::translate(JapaneseTextContext, source.c_str());
}

// The title of a run-time error's message: the string-table word and the number.
[[nodiscard]] inline QString errorTitleText(int number) {
    return res(1929) + QString::number(number);
}

} // namespace lumiran

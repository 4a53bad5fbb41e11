#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;

namespace lumiran {

// The OK button alone ("OKButton"), wired to accept.
QDialogButtonBox* makeOkButton(QDialog& dialog);

// The OK and Cancel buttons of a dialog ("OKButton", "CancelButton"),
// wired to accept and reject.
QDialogButtonBox* makeOkCancelButtons(QDialog& dialog);

// "ﾊﾞｰｼﾞｮﾝ 0.49": the version of this program as the forms show it.
[[nodiscard]] QString versionText();

// The program's name as the start and version forms show it.
inline constexpr const char* ProgramName = "Lumiran";

} // namespace lumiran

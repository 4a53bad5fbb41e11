#pragma once

#include "engine/surface.h"

#include <QDialog>

class QLineEdit;
class QRadioButton;

namespace lumiran {

// The save dialog's rows: three bitmap depths, then a 24-bit PNG.
enum class SaveDepth { Bits24, Bits8, Bits1, Png };

// What became of a save: written, or refused with a reason for the user.
struct SaveResult {
    bool saved = false;
    QString reason; // empty when saved
    explicit operator bool() const { return saved; }
};

// Writes the picture at the depth. When the writer refuses or the file
// cannot be written, an existing file stays as it was and the result tells why.
SaveResult savePictureFile(const Surface& picture, const QString& path, SaveDepth depth);

// The path with the extension of the depth's kind of file: one that names the
// other kind (".png" for a bitmap, ".bmp" for a PNG) is swapped, a missing
// one added; any other is left as the user typed it.
[[nodiscard]] QString pathForDepth(const QString& path, SaveDepth depth);

// The name the save dialog proposes: the folder and the document's name
// with ".bmp" for its extension, as a 24-bit bitmap is the first choice.
[[nodiscard]] QString proposedSaveName(const QString& folder, const QString& name);

// The save dialog: a path, three bitmap depths and PNG, and the save button
// Command1. The path's extension follows the chosen row.
class frm_PictureSave : public QDialog {
    Q_OBJECT
  public:
    frm_PictureSave(const Surface& picture, const QString& suggestedPath, int fontSize,
                    QWidget* parent = nullptr);

    // The path written by the last successful save; empty when none.
    [[nodiscard]] const QString& savedPath() const { return savedPath_; }

    // Command1: the checks, the question and the save, as the button does.
    void Command1_Click();

  private:
    [[nodiscard]] SaveDepth chosenDepth() const;

    const Surface& picture_;
    QLineEdit* Text1;
    QRadioButton* Option1[4];
    QString savedPath_;
};

} // namespace lumiran

#pragma once

#include "engine/surface.h"

#include <QDialog>

class QLineEdit;
class QRadioButton;

namespace lumiran {

enum class SaveDepth { Bits24, Bits8, Bits1 };

// What became of a save: written, or refused with a reason for the user.
struct SaveResult {
    bool saved = false;
    QString reason; // empty when saved
    explicit operator bool() const { return saved; }
};

// Writes the picture at the depth. When the writer refuses or the file
// cannot be written, an existing file stays as it was and the result tells why.
SaveResult savePictureFile(const Surface& picture, const QString& path, SaveDepth depth);

// The name the save dialog proposes: the folder and the document's name
// with ".bmp" for its extension, since the program writes only bitmaps.
[[nodiscard]] QString proposedSaveName(const QString& folder, const QString& name);

// The save dialog: a path, three depths and the save button Command1.
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
    const Surface& picture_;
    QLineEdit* Text1;
    QRadioButton* Option1[3];
    QString savedPath_;
};

} // namespace lumiran

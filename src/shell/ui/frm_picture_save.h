#pragma once

#include "engine/surface.h"

#include <QDialog>

class QLineEdit;
class QRadioButton;

namespace lumiran {

enum class SaveDepth { Bits24, Bits8, Bits1 };

// Writes the picture at the depth; false when the writer refused or the
// file could not be written (an existing file then stays as it was).
bool savePictureFile(const Surface& picture, const QString& path, SaveDepth depth);

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

#include "shell/ui/frm_picture_save.h"

#include "imagefiles/bitmap_writer.h"
#include "imagefiles/image_file_error.h"
#include "imagefiles/load_dispatch.h"
#include "imagefiles/png_writer.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/dialogs/frm_pictureinfo.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>

namespace lumiran {

SaveResult savePictureFile(const Surface& picture, const QString& path, SaveDepth depth) {
    const std::filesystem::path target = path.toStdString();
    try {
        int code = Save256Success;
        switch (depth) {
        case SaveDepth::Bits24:
            saveBmp24(picture, target);
            break;
        case SaveDepth::Bits8:
            code = Save256(picture, target, true);
            break;
        case SaveDepth::Bits1:
            if (SaveMonoImage(target, picture) != 1) code = Save256EmptyPicture;
            break;
        case SaveDepth::Png:
            savePng24(picture, target);
            break;
        }
        if (code == Save256Success) return {true, {}};
        if (code == Save256TooManyColours) {
            return {
                false,
                res(ids::SaveTooManyColours)
                    .arg(QLocale(QLocale::Japanese)
                             .toString(static_cast<qulonglong>(countDistinctColours(picture))))};
        }
        return {false, res(ids::SaveEmptyPicture)};
    } catch (const ImageFileError& error) {
        if (picture.empty()) return {false, res(ids::SaveEmptyPicture)};
        return {false, res(ids::SaveCannotWrite) + "\n" + path + "\n" + qs(error.what())};
    }
}

QString pathForDepth(const QString& path, SaveDepth depth) {
    const bool png = depth == SaveDepth::Png;
    const QString wanted = png ? "png" : "bmp";
    const QString other = png ? "bmp" : "png";
    const QString extension = QString::fromStdString(FileExtension(path.toStdString()));
    if (extension.isEmpty()) return path.endsWith('.') ? path + wanted : path + '.' + wanted;
    if (extension.compare(other, Qt::CaseInsensitive) != 0) return path;
    return path.left(path.size() - extension.size()) + wanted;
}

QString proposedSaveName(const QString& folder, const QString& name) {
    QString base = name;
    const std::string extension = FileExtension(name.toStdString());
    if (!extension.empty() || base.endsWith('.')) {
        base.chop(static_cast<qsizetype>(QString::fromStdString(extension).size()) + 1);
    }
    if (base.isEmpty()) return folder + name;
    return folder + base + ".bmp";
}

frm_PictureSave::frm_PictureSave(const Surface& picture, const QString& suggestedPath, int fontSize,
                                 QWidget* parent)
    : QDialog(parent), picture_(picture), Text1(new QLineEdit(suggestedPath)) {
    setObjectName("frm_PictureSave");
    setWindowTitle(res(ids::SaveTitle));
    Text1->setObjectName("Text1");
    Text1->setMinimumWidth(360); // room for a whole path
    auto* browse = new QPushButton(res(ids::SaveBrowse));
    auto* save = new QPushButton(res(ids::SaveCommand));
    save->setObjectName("Command1");
    save->setDefault(true);
    auto* cancel = new QPushButton(res(ids::ButtonCancel));
    const int captions[4] = {ids::SaveDepth24, ids::SaveDepth8, ids::SaveDepth1, ids::SavePng};
    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(res(ids::SaveFileName)), 0, 0);
    layout->addWidget(Text1, 0, 1);
    layout->addWidget(browse, 0, 2);
    for (int i = 0; i < 4; ++i) {
        Option1[i] = new QRadioButton(res(captions[i]));
        Option1[i]->setObjectName(QString("Option1_%1").arg(i));
        layout->addWidget(Option1[i], i + 1, 1);
    }
    Option1[0]->setChecked(true);
    // From now on the name shows the kind that will be written.
    for (QRadioButton* option : Option1) {
        connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (on && !Text1->text().trimmed().isEmpty()) {
                Text1->setText(pathForDepth(Text1->text(), chosenDepth()));
            }
        });
    }
    layout->addWidget(save, 5, 1, Qt::AlignRight);
    layout->addWidget(cancel, 5, 2);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString filter = chosenDepth() == SaveDepth::Png ? "*.png" : "*.bmp";
        const QString chosen =
            QFileDialog::getSaveFileName(this, res(ids::SaveTitle), Text1->text(), filter);
        if (!chosen.isEmpty()) Text1->setText(chosen);
    });
    connect(save, &QPushButton::clicked, this, &frm_PictureSave::Command1_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    ApplyFontSize(*this, fontSize);
}

SaveDepth frm_PictureSave::chosenDepth() const {
    if (Option1[1]->isChecked()) return SaveDepth::Bits8;
    if (Option1[2]->isChecked()) return SaveDepth::Bits1;
    if (Option1[3]->isChecked()) return SaveDepth::Png;
    return SaveDepth::Bits24;
}

void frm_PictureSave::Command1_Click() {
    QString path = Text1->text().trimmed();
    if (path.isEmpty()) {
        QMessageBox::warning(this, res(ids::SaveTitle), res(ids::SaveBadPath));
        return;
    }
    const SaveDepth depth = chosenDepth();
    path = pathForDepth(path, depth);
    if (QFileInfo::exists(path)) {
        const auto answer =
            QMessageBox::question(this, res(ids::SaveConfirmTitle), path + res(ids::SaveExists),
                                  QMessageBox::Yes | QMessageBox::No);
        if (answer != QMessageBox::Yes) {
            reject();
            return;
        }
        // The old file is replaced only once the new one is complete.
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const SaveResult result = savePictureFile(picture_, path, depth);
    QApplication::restoreOverrideCursor();
    if (result) {
        savedPath_ = path;
        QMessageBox::information(this, res(ids::SaveTitle), res(ids::SaveDone));
        accept();
        return;
    }
    // The program's message, and why under the details, as a failed load has it.
    QMessageBox box(QMessageBox::Warning, res(ids::SaveTitle), res(ids::SaveFailed),
                    QMessageBox::Ok, this);
    box.setObjectName("SaveFailedBox");
    box.setDetailedText(result.reason);
    box.exec();
}

} // namespace lumiran

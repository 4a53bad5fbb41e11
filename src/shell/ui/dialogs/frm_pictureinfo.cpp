#include "shell/ui/dialogs/frm_pictureinfo.h"

#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <bit>
#include <cstdint>
#include <vector>

namespace lumiran {
namespace {

QString number(qint64 value) {
    return QLocale(QLocale::Japanese, QLocale::Japan).toString(value);
}

QLabel* valueLabel(const char* name, const QString& text) {
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

std::size_t countDistinctColours(const Surface& picture) {
    // One bit for each of the 2^24 colours: 2 MB whatever the picture's size,
    // and one pass over the pixels.
    constexpr std::size_t ColourCount = std::size_t{1} << 24;
    std::vector<std::uint64_t> seen(ColourCount / 64, 0);
    for (const Pixel pixel : picture.pixels()) {
        const std::uint32_t colour = pixel & 0x00FFFFFFu;
        seen[colour >> 6] |= std::uint64_t{1} << (colour & 63u);
    }
    std::size_t count = 0;
    for (const std::uint64_t word : seen)
        count += static_cast<std::size_t>(std::popcount(word));
    return count;
}

frm_PictureInfo::frm_PictureInfo(const PictureInfo& info, const Surface& picture,
                                 const Settings& settings, QWidget* parent)
    : QDialog(parent) {
    setObjectName("frm_PictureInfo");
    setWindowTitle(res(dialog_ids::PictureInfoTitle));

    const bool hasFile = !info.path.isEmpty();
    const QFileInfo file(info.path);
    const QString noFile = res(dialog_ids::NoFile);
    const QString fileSize = info.fileSize < 0 ? res(dialog_ids::Unknown)
                                               : res(dialog_ids::Bytes).arg(number(info.fileSize));

    auto* form = new QFormLayout;
    form->addRow(res(dialog_ids::Path),
                 valueLabel("PathValue", hasFile ? QDir::toNativeSeparators(info.path) : noFile));
    form->addRow(res(dialog_ids::Folder),
                 valueLabel("FolderValue",
                            hasFile ? QDir::toNativeSeparators(file.absolutePath()) : noFile));
    form->addRow(res(ids::SaveFileName),
                 valueLabel("NameValue", hasFile ? file.fileName() : noFile));
    form->addRow(res(dialog_ids::Width), valueLabel("WidthValue", number(info.width)));
    form->addRow(res(dialog_ids::Height), valueLabel("HeightValue", number(info.height)));
    form->addRow(res(dialog_ids::PixelCount),
                 valueLabel("PixelCountValue", number(qint64{info.width} * info.height)));
    form->addRow(res(dialog_ids::FileSize), valueLabel("FileSizeValue", fileSize));
    form->addRow(
        res(dialog_ids::ColorCount),
        valueLabel("ColorCountValue", number(static_cast<qint64>(countDistinctColours(picture)))));

    QDialogButtonBox* buttons = makeOkButton(*this);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    ApplyFontSize(*this, settings.FontSize);
}

void showPictureInfo(const PictureInfo& info, const Surface& picture, const Settings& settings,
                     QWidget* parent) {
    frm_PictureInfo dialog(info, picture, settings, parent);
    dialog.exec();
}

} // namespace lumiran

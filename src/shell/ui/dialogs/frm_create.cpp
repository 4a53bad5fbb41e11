#include "shell/ui/dialogs/frm_create.h"

#include "engine/surface.h"
#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/ui_text.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace lumiran {
namespace {

QSpinBox* sizeBox(const char* name, int value) {
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(1, Surface::MaxDimension);
    box->setValue(value);
    return box;
}

} // namespace

frm_Create::frm_Create(const Settings& settings, QWidget* parent)
    : QDialog(parent), WidthBox(sizeBox("WidthBox", NewImageRequest{}.width)),
      HeightBox(sizeBox("HeightBox", NewImageRequest{}.height)),
      NameBox(new QLineEdit(res(dialog_ids::DefaultImageName))) {
    setObjectName("frm_Create");
    setWindowTitle(res(dialog_ids::CreateTitle));
    NameBox->setObjectName("NameBox");
    auto* form = new QFormLayout;
    form->addRow(res(dialog_ids::Width), WidthBox);
    form->addRow(res(dialog_ids::Height), HeightBox);
    form->addRow(res(dialog_ids::ImageName), NameBox);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(makeOkCancelButtons(*this));
    ApplyFontSize(*this, settings.FontSize);
}

NewImageRequest frm_Create::request() const {
    const QString name = NameBox->text().trimmed();
    return {WidthBox->value(), HeightBox->value(),
            name.isEmpty() ? res(dialog_ids::DefaultImageName) : name};
}

std::optional<NewImageRequest> showCreateDialog(const Settings& settings, QWidget* parent) {
    frm_Create dialog(settings, parent);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.request();
}

} // namespace lumiran

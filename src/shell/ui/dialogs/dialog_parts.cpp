#include "shell/ui/dialogs/dialog_parts.h"

#include "shell/settings.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace lumiran {

QDialogButtonBox* makeOkButton(QDialog& dialog) {
    auto* buttons = new QDialogButtonBox(&dialog);
    QPushButton* ok = buttons->addButton(res(ids::ButtonOk), QDialogButtonBox::AcceptRole);
    ok->setObjectName("OKButton");
    ok->setDefault(true);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    return buttons;
}

QDialogButtonBox* makeOkCancelButtons(QDialog& dialog) {
    QDialogButtonBox* buttons = makeOkButton(dialog);
    QPushButton* cancel = buttons->addButton(res(ids::ButtonCancel), QDialogButtonBox::RejectRole);
    cancel->setObjectName("CancelButton");
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return buttons;
}

QString versionText() {
    return res(dialog_ids::Version).arg(QString::number(Settings::CurrentVersion, 'f', 2));
}

} // namespace lumiran

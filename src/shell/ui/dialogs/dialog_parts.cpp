#include "shell/ui/dialogs/dialog_parts.h"

#include "shell/settings.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace lumiran {

QDialogButtonBox* makeOkCancelButtons(QDialog& dialog) {
    auto* buttons = new QDialogButtonBox(&dialog);
    QPushButton* ok = buttons->addButton(res(ids::ButtonOk), QDialogButtonBox::AcceptRole);
    QPushButton* cancel = buttons->addButton(res(ids::ButtonCancel), QDialogButtonBox::RejectRole);
    ok->setObjectName("OKButton");
    cancel->setObjectName("CancelButton");
    ok->setDefault(true);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return buttons;
}

QString versionText() {
    return res(dialog_ids::Version).arg(QString::number(Settings::CurrentVersion, 'f', 2));
}

} // namespace lumiran

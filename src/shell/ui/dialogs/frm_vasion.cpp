#include "shell/ui/dialogs/frm_vasion.h"

#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumiran {

frm_Vasion::frm_Vasion(const Settings& settings, QWidget* parent) : QDialog(parent) {
    setObjectName("frm_Vasion");
    setWindowTitle(res(dialog_ids::VersionTitle));
    auto* name = new QLabel(QString::fromLatin1(ProgramName));
    name->setObjectName("ProgramName");
    auto* version = new QLabel(versionText());
    version->setObjectName("VersionLabel");
    auto* message = new QLabel(res(dialog_ids::FirstStartOfVersion));
    message->setObjectName("MessageLabel");
    message->setWordWrap(true);

    QDialogButtonBox* buttons = makeOkButton(*this);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(name);
    layout->addWidget(version);
    layout->addWidget(message);
    layout->addWidget(buttons);
    ApplyFontSize(*this, settings.FontSize);
    QFont title = name->font();
    title.setPointSize(title.pointSize() * 3 / 2);
    title.setBold(true);
    name->setFont(title);
}

void showVersionDialog(const Settings& settings, QWidget* parent) {
    frm_Vasion dialog(settings, parent);
    dialog.exec();
}

} // namespace lumiran

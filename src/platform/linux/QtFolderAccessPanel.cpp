#include "platform/linux/QtFolderAccessPanel.h"

#include <QFileDialog>

#include <utility>

void QtFolderAccessPanel::ask(const QString &message, const QString &confirmButton,
                              const QString &startFolder,
                              std::function<void(bool confirmed)> completion)
{
    auto dialog = std::make_unique<QFileDialog>(nullptr, message, startFolder);
    dialog->setObjectName(QStringLiteral("folderAccessPanel"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOptions(QFileDialog::ShowDirsOnly | QFileDialog::ReadOnly);
    dialog->setLabelText(QFileDialog::Accept, confirmButton);
    dialog->setModal(false);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog.get(), &QFileDialog::finished, dialog.get(),
                     [completion = std::move(completion)](int result) {
                         completion(result == QFileDialog::Accepted);
                     });
    dialog.release()->show(); // It deletes itself when it is closed.
}

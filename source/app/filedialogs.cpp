#include "app/filedialogs.h"

#include <QFileDialog>

std::function<std::string(bool, const std::string&, const std::string&)> FileDialogAnswer;

namespace {

std::string RunFileDialog(bool save, const std::string& ext, const std::string& description)
{
    if (FileDialogAnswer)
        return FileDialogAnswer(save, ext, description);
    // No owner window: the main window stays usable, as with the system dialogs.
    QFileDialog dialog(nullptr);
    dialog.setNameFilter(QString::fromStdString(description + " (*." + ext + ")"));
    dialog.setDefaultSuffix(QString::fromStdString(ext));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return "";
    return dialog.selectedFiles().first().toStdString();
}

} // namespace

std::string OpenFileDialog(const std::string& ext, const std::string& description)
{
    return RunFileDialog(false, ext, description);
}

std::string SaveFileDialog(const std::string& ext, const std::string& description)
{
    return RunFileDialog(true, ext, description);
}

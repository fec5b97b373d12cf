// The file dialogs of the editor: one filter entry ("DESCRIPTION (*.EXT)"),
// the default extension appended to a typed name without one, the overwrite
// question when saving, and the current directory left as it is. Each
// answers the chosen full path, or "" when the user cancels.
#pragma once

#include <functional>
#include <string>

std::string OpenFileDialog(const std::string& ext, const std::string& description);
std::string SaveFileDialog(const std::string& ext, const std::string& description);

// Tests answer the dialogs themselves: while set, this runs instead of either
// dialog (save tells which one) and its answer is taken as the user's.
extern std::function<std::string(bool save, const std::string& ext, const std::string& description)>
    FileDialogAnswer;

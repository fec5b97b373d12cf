// The editor's modal dialogs, run by their menu commands. Each reads and
// writes the document's level itself; only the join dialog answers something
// (its shift). The view keeps drawing behind them.
#pragma once

#include <QWidget>

#include <cstdint>
#include <functional>

class ORVEDOCUMENT;
struct CAMERA;

// What a dialog needs from the window that opens it.
struct DIALOGHOST
{
    ORVEDOCUMENT& Document;
    // The view's camera, live: a new light goes where it is when "OK" is pressed.
    const CAMERA& Camera;
    QWidget* Parent = nullptr;
    // Makes the view's OpenGL context current; needed before textures are
    // created or deleted.
    std::function<void()> MakeCurrent;
    // Called after every press that changed the level (each is one step of the
    // undo history, e.g. every "Alkalmaz" of a dialog that stays open).
    std::function<void()> Checkpoint;
};

// The dialog commands: 11859, 11861-11864, 11867, 11868, 11872.
bool IsDialogCommand(int id);
void RunEditorDialog(int id, DIALOGHOST& host);
// The join dialog; answers the shift for the next joining clicks, or
// `previous` when the dialog was closed without "OK".
int32_t RunJoinDialog(DIALOGHOST& host, int32_t previous);

// The colour chooser with the program-wide table of 16 custom colours (all
// black at start). Colours are 0x00BBGGRR; a cancel answers `initial`.
uint32_t PickColor(QWidget* owner, uint32_t initial);

// The main window's behaviour that needs no window: the join and texture-fit
// modes, what a left click does, and the commands that act on the level
// directly. The Qt main window, orvane-cli run and the tests all drive the
// level through this one object; dialogs stay with the caller.
#pragma once

#include "editor/document.h"
#include "orvlevel/blocks.h"
#include "math/camera.h"

#include <cstdint>
#include <functional>
#include <span>

// Command ids of the menu.
enum ORVECOMMAND
{
    CM_NEWLEVEL = 11842,
    CM_OPEN = 11843,
    CM_SAVE = 11844,
    CM_SAVEAS = 11845,
    CM_EXIT = 11846,
    CM_NEWSEGMENT = 11847,
    CM_HELPTOPICS = 11848,
    CM_ABOUT = 11849,
    CM_NEXTPOINT = 11850,
    CM_POINTZPLUS = 11851,
    CM_POINTZMINUS = 11852,
    CM_POINTXPLUS = 11853,
    CM_POINTXMINUS = 11854,
    CM_POINTYPLUS = 11855,
    CM_POINTYMINUS = 11856,
    CM_RESTORETEXTURE = 11857,
    CM_JOINMODE = 11858,
    CM_TEXTURES = 11859,
    CM_APPLYTEXTURE = 11860,
    CM_WALLTYPE = 11861,
    CM_TEXSETTINGS = 11862,
    CM_TEXCALCULATE = 11863,
    CM_POINTSETTINGS = 11864,
    CM_DELETESEGMENT = 11865,
    CM_CLEARSIDETEXTURE = 11866,
    CM_SIDECOLOUR = 11867,
    CM_NEWLIGHT = 11868,
    CM_CALCULATELIGHTING = 11869,
    CM_DELETENEARESTLIGHT = 11870,
    CM_FULLBRIGHTNESS = 11871,
    CM_SEGMENTTYPE = 11872,
    CM_ENEMYSHIP = 11873,
    CM_STARTPOINT = 11874,
    CM_DELETENEARESTSPECPOINT = 11875,
    CM_DELETENEARESTTHING = 11876,
    CM_SHIELDBONUS = 11877,
    CM_ENERGYBONUS = 11878,
    CM_TEMPESTPICKUP = 11879,
    CM_LASERBOOST = 11880,
    CM_SHIPLEVEL = 11881,
    CM_FITMODE = 11882,
    // Beyond the menu of the game's own editor: undo, redo and diagnostics.
    CM_UNDO = 11883,
    CM_REDO = 11884,
    CM_CHECKLEVEL = 11885,
    // The window's side panels.
    CM_OBJECTLIST = 12100,
};

class ORVEDITOR;

// One command of the table: its menu id and what it does.
struct ORVECOMMANDENTRY
{
    int Id;
    void (*Run)(ORVEDITOR& editor);
};

class ORVEDITOR
{
public:
    // The camera is the view's; the level is the document's.
    ORVEDITOR(ORVEDOCUMENT& document, CAMERA& camera);

    ORVEDOCUMENT& Document;
    CAMERA& Camera;
    ORVLEVEL& Level() { return Document.Level(); }

    // Distance of one point-move command.
    const float PointStep = 1.0f;
    // Corner shift as last entered in the join dialog.
    int32_t JoinShift = 0;
    // The two menu check marks; both may be on.
    bool JoinMode = false;
    bool FitMode = false;
    // Client size of the view, for picking.
    int ClientWidth = 640;
    int ClientHeight = 480;

    // What the last block copy or block file load took.
    LEVELBLOCK Clipboard;

    // Runs the join dialog and answers its shift. Unset, the dialog is
    // taken as confirmed with its default entry.
    std::function<int32_t()> JoinDialog;

    // The commands that act on the level directly, in id order. The menu
    // enables an item by whether it is here or a command of the shell's own
    // (dialogs and files).
    static std::span<const ORVECOMMANDENTRY> Commands();
    static bool HasCommand(int id);
    // Runs a command of the table; false (and nothing done) for any other id.
    bool Command(int id);
    // The left button at client point (x, y).
    void LeftClick(int x, int y);

    // The join dialog's conversion of its entry k: shift = 3 - k, with k read
    // as a C long (a text that is no number reads as 0).
    static int32_t ShiftFromEntry(const char* text);

    void JoinModeCommand();
    void FitModeCommand();
    // Object placement at the camera; the level owns the object, or it is
    // destroyed at once when the level's table is full.
    void PlaceEnemyShip();
    template <class ITEM>
    void PlaceItem();
    void PlaceStartPoint();
};

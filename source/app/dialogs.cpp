#include "app/dialogs.h"

#include "editor/controller.h"

bool IsDialogCommand(int id)
{
    switch (id)
    {
    case CM_TEXTURES:
    case CM_WALLTYPE:
    case CM_TEXSETTINGS:
    case CM_TEXCALCULATE:
    case CM_POINTSETTINGS:
    case CM_SIDECOLOUR:
    case CM_NEWLIGHT:
    case CM_SEGMENTTYPE:
        return true;
    default:
        return false;
    }
}

void RunEditorDialog(int, DIALOGHOST&)
{
}

int32_t RunJoinDialog(DIALOGHOST&, int32_t)
{
    return ORVEDITOR::ShiftFromEntry("3");
}

uint32_t PickColor(QWidget*, uint32_t initial)
{
    return initial;
}

#include "app/dialogs.h"

#include "app/dlg_properties.h"
#include "app/dlg_texture.h"
#include "app/dlg_texturemanager.h"
#include "editor/controller.h"

#include <QColorDialog>

#include <array>

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

namespace {

template <class DIALOG>
void RunModal(DIALOGHOST& host)
{
    DIALOG dialog(host);
    dialog.Run();
}

// The chooser's custom colours, shared by every caller for the whole run.
std::array<QRgb, 16> CustomColours = [] {
    std::array<QRgb, 16> colours;
    colours.fill(qRgb(0, 0, 0));
    return colours;
}();

} // namespace

void RunEditorDialog(int id, DIALOGHOST& host)
{
    switch (id)
    {
    case CM_TEXTURES:
        RunModal<ORVETEXTUREDLG>(host);
        break;
    case CM_WALLTYPE:
        RunModal<ORVEWALLTYPESDLG>(host);
        break;
    case CM_TEXSETTINGS:
        RunModal<ORVETEXSETDLG>(host);
        break;
    case CM_TEXCALCULATE:
        RunModal<ORVETEXCALCDLG>(host);
        break;
    case CM_POINTSETTINGS:
        RunModal<ORVEPOINTSETTINGSDLG>(host);
        break;
    case CM_SIDECOLOUR:
        RunModal<ORVESETSIDECOLORDLG>(host);
        break;
    case CM_NEWLIGHT:
        RunModal<ORVENEWLIGHTDLG>(host);
        break;
    case CM_SEGMENTTYPE:
        RunModal<ORVESEGMENTTYPESDLG>(host);
        break;
    }
}

int32_t RunJoinDialog(DIALOGHOST& host, int32_t previous)
{
    ORVESETMERGESHIFTDLG dialog(host, previous);
    dialog.Run();
    return dialog.Shift;
}

uint32_t PickColor(QWidget* owner, uint32_t initial)
{
    // Qt keeps custom colours of its own (and across runs); ours are put in
    // before and taken back after, so the table is this run's alone.
    for (int i = 0; i < 16; ++i)
        QColorDialog::setCustomColor(i, QColor::fromRgb(CustomColours[i]));
    QColorDialog dialog(owner);
    // The platform's own chooser would not show our custom colours.
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    // The chooser does not start from the initial colour.
    dialog.setCurrentColor(Qt::black);
    const bool chosen = dialog.exec() == QDialog::Accepted;
    for (int i = 0; i < 16; ++i)
        CustomColours[i] = QColorDialog::customColor(i).rgb();
    if (!chosen)
        return initial;
    const QColor c = dialog.selectedColor();
    return uint32_t(c.red()) | uint32_t(c.green()) << 8 | uint32_t(c.blue()) << 16;
}

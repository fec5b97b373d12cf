#include "app/dlg_texture.h"

#include "app/dlg_text.h"
#include "editor/document.h"
#include "platform/platform.h"

#include "ui_TexCalculate.h"
#include "ui_TexSettings.h"

#include <cmath>
#include <cstring>

namespace {

void Inform(const char* text)
{
    ShowMessage(text, "[i]", MSGICON_INFORMATION);
}

} // namespace

ORVETEXSETDLG::ORVETEXSETDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::TexSettings ui;
    ui.setupUi(this);
    Prepare(FIXED, false, 18);
}

bool ORVETEXSETDLG::Init()
{
    return Level().GetCurrentSide() != nullptr;
}

void ORVETEXSETDLG::Command(int id)
{
    if (id == 19)
    {
        reject();
        return;
    }
    if (id != 18)
        return;
    const double shiftS = TextToDouble(Text(4));
    const double shiftT = TextToDouble(Text(5));
    const double rotation = TextToDouble(Text(9));
    const double scaleS = TextToDouble(Text(6));
    const double scaleT = TextToDouble(Text(7));
    const int32_t r = TextToLong(Text(102));
    if (scaleS == 0.0 || scaleT == 0.0)
    {
        Inform("A nagyítás szorzója nem lehet nulla!");
        return;
    }
    if (r < 0 || r > 3)
    {
        Inform("A referenciapontnak 0 és 3 közé kell esnie.");
        return;
    }
    SIDE* side = Level().GetCurrentSide();
    if (!side)
        return;

    const TEXPAIR ref = side->TexCoords[r];
    const double phi = rotation * 3.1415926536 / 180.0;
    const double c = std::cos(phi), s = std::sin(phi);
    TEXPAIR pairs[4];
    for (int i = 0; i < 4; ++i)
    {
        const double ds = (side->TexCoords[i].s - ref.s) / scaleS;
        const double dt = (side->TexCoords[i].t - ref.t) / scaleT;
        pairs[i].s = float(ref.s + shiftS + ds * c - dt * s);
        pairs[i].t = float(ref.t + shiftT + ds * s + dt * c);
    }
    if (std::memcmp(pairs, side->TexCoords, sizeof pairs) != 0)
    {
        std::memcpy(side->TexCoords, pairs, sizeof pairs);
        Level().Changed();
    }
}

ORVETEXCALCDLG::ORVETEXCALCDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::TexCalculate ui;
    ui.setupUi(this);
    Prepare(SIZING, true, 115);
}

bool ORVETEXCALCDLG::Init()
{
    const SIDE* side = Level().GetCurrentSide();
    if (!side)
        return false;
    for (int i = 0; i < 4; ++i)
    {
        SetText(101 + i, FormatOneDecimal(side->TexCoords[i].s));
        SetText(111 + i, FormatOneDecimal(side->TexCoords[i].t));
    }
    return true;
}

void ORVETEXCALCDLG::Command(int id)
{
    if (id == 105)
    {
        reject();
        return;
    }
    if (id != 115 && id != 116)
        return;
    TEXPAIR pairs[4];
    bool known[4];
    for (int i = 0; i < 4; ++i)
    {
        const QString s = Text(101 + i), t = Text(111 + i);
        // One empty field of a pair counts as 0; both empty leave it unknown.
        known[i] = !s.isEmpty() || !t.isEmpty();
        pairs[i].s = float(TextToDouble(s));
        pairs[i].t = float(TextToDouble(t));
    }

    if (id == 115)
    {
        SIDE* side = Level().GetCurrentSide();
        if (side && std::memcmp(pairs, side->TexCoords, sizeof pairs) != 0)
            Level().SetCurrentTexCoords(pairs);
        accept();
        return;
    }

    int unknown = -1;
    for (int i = 0; i < 4 && unknown < 0; ++i)
        if (!known[i] && !known[(i + 1) % 4] && known[(i + 2) % 4] && known[(i + 3) % 4])
            unknown = i;
    if (unknown >= 0)
    {
        if (const VECTOR3D* corners = Level().GetCurrentSideCorners())
            ORVLEVEL::CalcTexCoordsFromEdge(pairs, corners, 4, (unknown + 2) % 4, (unknown + 3) % 4);
    }
    else
    {
        Inform("A számítás elvégzéséhez két szomszédos csúcson lévő textúrakoordinátákat kell CSAK megadni");
    }
    for (int i = 0; i < 4; ++i)
    {
        SetText(101 + i, FormatOneDecimal(pairs[i].s));
        SetText(111 + i, FormatOneDecimal(pairs[i].t));
    }
}

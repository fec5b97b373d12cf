#include "app/dlg_properties.h"

#include "app/dlg_text.h"
#include "editor/controller.h"
#include "editor/document.h"

#include "ui_NewLight.h"
#include "ui_PointSettings.h"
#include "ui_SegmentTypes.h"
#include "ui_SetMergeShift.h"
#include "ui_SetSideColor.h"
#include "ui_WallTypes.h"

#include <cstring>

namespace {

// Colour fields show 0-255; the conversion back is this multiplication.
constexpr double FROM_BYTE = 0.00392156862745098;

// Stores value into field, telling whether that changed it (bit for bit, so
// that a NaN typed over a NaN is no change and -0 over 0 is one).
bool Store(float& field, float value)
{
    if (std::memcmp(&field, &value, sizeof value) == 0)
        return false;
    field = value;
    return true;
}

} // namespace

ORVEPOINTSETTINGSDLG::ORVEPOINTSETTINGSDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::PointSettings ui;
    ui.setupUi(this);
    Prepare(SIZING, true, 108);
}

bool ORVEPOINTSETTINGSDLG::Init()
{
    const VECTOR3D* p = Level().GetCurrentPointPtr();
    if (!p)
        return false;
    SetText(105, FormatOneDecimal(p->x));
    SetText(106, FormatOneDecimal(p->y));
    SetText(107, FormatOneDecimal(p->z));
    return true;
}

void ORVEPOINTSETTINGSDLG::Command(int id)
{
    if (id == 108)
    {
        if (VECTOR3D* p = Level().GetCurrentPointPtr())
        {
            bool changed = Store(p->x, float(TextToDouble(Text(105))));
            changed |= Store(p->y, float(TextToDouble(Text(106))));
            changed |= Store(p->z, float(TextToDouble(Text(107))));
            if (changed)
                Level().Changed();
        }
        accept();
    }
    else if (id == 109)
        reject();
}

ORVESEGMENTTYPESDLG::ORVESEGMENTTYPESDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::SegmentTypes ui;
    ui.setupUi(this);
    Prepare(SIZING, true, 105);
}

bool ORVESEGMENTTYPESDLG::Init()
{
    const SEGMENT* s = Level().GetCurrentSegment();
    if (!s)
        return false;
    // A type no button stands for (a damaged file) leaves all unchecked.
    if (s->Type >= 0 && s->Type <= 3)
        SetChecked(101 + s->Type, true);
    return true;
}

void ORVESEGMENTTYPESDLG::Command(int id)
{
    if (id == 105)
    {
        if (SEGMENT* s = Level().GetCurrentSegment())
            for (int b = 101; b <= 104; ++b)
                if (Checked(b) && s->Type != b - 101)
                {
                    s->Type = b - 101;
                    Level().Changed();
                }
        accept();
    }
    else if (id == 106)
        reject();
}

ORVEWALLTYPESDLG::ORVEWALLTYPESDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::WallTypes ui;
    ui.setupUi(this);
    Prepare(SIZING, true, 106);
}

bool ORVEWALLTYPESDLG::Init()
{
    const SIDE* side = Level().GetCurrentSide();
    if (!side)
        return false;
    if (side->WallType >= 0 && side->WallType <= 4)
        SetChecked(101 + side->WallType, true);
    return true;
}

void ORVEWALLTYPESDLG::Command(int id)
{
    if (id == 107)
    {
        reject();
        return;
    }
    if (id != 106)
        return;
    for (int b = 101; b <= 105; ++b)
        if (Checked(b))
        {
            SIDE* side = Level().GetCurrentSide();
            if (side && side->WallType != b - 101)
            {
                side->WallType = b - 101;
                Level().Changed();
            }
            accept();
            return;
        }
    // Nothing checked: the dialog stays open.
}

ORVESETSIDECOLORDLG::ORVESETSIDECOLORDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::SetSideColor ui;
    ui.setupUi(this);
    Prepare(SIZING, false, 140);
}

bool ORVESETSIDECOLORDLG::Init()
{
    const SIDE* side = Level().GetCurrentSide();
    if (!side)
        return false;
    for (int i = 0; i < 4; ++i)
    {
        const VECTOR3D& c = side->Colours[i];
        SetText(101 + 10 * i, FormatOneDecimal(c.x * 255.0));
        SetText(102 + 10 * i, FormatOneDecimal(c.y * 255.0));
        SetText(103 + 10 * i, FormatOneDecimal(c.z * 255.0));
    }
    return true;
}

void ORVESETSIDECOLORDLG::Command(int id)
{
    if (id == 141)
    {
        reject();
        return;
    }
    if (id == 140)
    {
        if (SIDE* side = Level().GetCurrentSide())
        {
            bool changed = false;
            for (int i = 0; i < 4; ++i)
            {
                VECTOR3D& c = side->Colours[i];
                changed |= Store(c.x, float(TextToDouble(Text(101 + 10 * i)) * FROM_BYTE));
                changed |= Store(c.y, float(TextToDouble(Text(102 + 10 * i)) * FROM_BYTE));
                changed |= Store(c.z, float(TextToDouble(Text(103 + 10 * i)) * FROM_BYTE));
            }
            if (changed)
                Level().Changed();
        }
        accept();
        return;
    }
    if (id < 104 || id > 134 || id % 10 != 4)
        return;
    // "Egyéni..." of corner i: the chooser starts from the fields' colour,
    // each channel cut to its low 8 bits (300 becomes 44).
    const int base = id - 3;
    auto channel = [&](int field) { return uint32_t(TruncateToInt(TextToDouble(Text(field)))) & 0xFF; };
    const uint32_t initial = channel(base) | channel(base + 1) << 8 | channel(base + 2) << 16;
    const uint32_t c = PickColor(this, initial);
    SetText(base, FormatInt(int(c & 0xFF)));
    SetText(base + 1, FormatInt(int(c >> 8 & 0xFF)));
    SetText(base + 2, FormatInt(int(c >> 16 & 0xFF)));
}

ORVENEWLIGHTDLG::ORVENEWLIGHTDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::NewLight ui;
    ui.setupUi(this);
    Prepare(SIZING, true, 105);
}

void ORVENEWLIGHTDLG::Command(int id)
{
    switch (id)
    {
    case 103:
    {
        const uint32_t c = PickColor(this, 0xFFFFFF);
        SetText(102, FormatInt(int(c & 0xFF)));
        SetText(104, FormatInt(int(c >> 8 & 0xFF)));
        SetText(106, FormatInt(int(c >> 16 & 0xFF)));
        break;
    }
    case 105:
        // The camera as it is now: the view may have moved while the dialog was open.
        Level().NewLight(Host.Camera.Position, TextToDouble(Text(102)), TextToDouble(Text(104)),
                         TextToDouble(Text(106)), float(TextToDouble(Text(109))));
        accept();
        break;
    case 107:
        reject();
        break;
    }
}

ORVESETMERGESHIFTDLG::ORVESETMERGESHIFTDLG(DIALOGHOST& host, int32_t shift) : ORVEDIALOG(host), Shift(shift)
{
    Ui::SetMergeShift ui;
    ui.setupUi(this);
    Prepare(SIZING, true, 102);
}

void ORVESETMERGESHIFTDLG::Command(int id)
{
    if (id != 102)
        return;
    Shift = ORVEDITOR::ShiftFromEntry(Text(101).toUtf8().constData());
    accept();
}

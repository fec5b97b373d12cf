// The small property dialogs: the selected corner point, the selected
// segment's type, the selected side's wall type and corner colours, a new
// light at the camera, and the corner shift for joining two sides.
#pragma once

#include "app/dlg_base.h"

#include <cstdint>

// "Pont beállítások": x, y, z in 105-107; "OK" (108), "Mégse" (109).
class ORVEPOINTSETTINGSDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVEPOINTSETTINGSDLG(DIALOGHOST& host);
    bool Init() override;

protected:
    void Command(int id) override;
};

// "Szegmenstípus beállítása": radio buttons 101-104 for types 0-3; "OK"
// (105), "Mégse" (106).
class ORVESEGMENTTYPESDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVESEGMENTTYPESDLG(DIALOGHOST& host);
    bool Init() override;

protected:
    void Command(int id) override;
};

// "Falbeállítás": radio buttons 101-105 for wall types 0-4; "Alkalmaz"
// (106), "Mégse" (107).
class ORVEWALLTYPESDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVEWALLTYPESDLG(DIALOGHOST& host);
    bool Init() override;

protected:
    void Command(int id) override;
};

// "Oldalak színének beállítása": corner i's red, green, blue (0-255) in
// 101 + 10i ... 103 + 10i and its "Egyéni..." in 104 + 10i; "OK" (140),
// "Mégse" (141).
class ORVESETSIDECOLORDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVESETSIDECOLORDLG(DIALOGHOST& host);
    bool Init() override;

protected:
    void Command(int id) override;
};

// "Új fényforrás": red, green, blue in 102, 104, 106, "Egyéni..." (103),
// brightness in 109; "OK" (105), "Mégse" (107).
class ORVENEWLIGHTDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVENEWLIGHTDLG(DIALOGHOST& host);

protected:
    void Command(int id) override;
};

// "Két szegmens összekötése": the corner entry 101 and "OK" (102); no cancel
// button, so the title bar's close keeps Shift as it was given.
class ORVESETMERGESHIFTDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    ORVESETMERGESHIFTDLG(DIALOGHOST& host, int32_t shift);
    int32_t Shift;

protected:
    void Command(int id) override;
};

// Placing a texture on the selected side: shifting, scaling and rotating its
// four texture pairs about one corner (the dialog stays open so one step can
// be applied again and again), and editing the pairs directly with the
// calculation of two corners from the other two.
#pragma once

#include "app/dlg_base.h"

// "Textúrabeállítás": fields of shift (4, 5), scale (6, 7), rotation (9) and
// reference corner (102); "Alkalmaz" (18), "Mégse" (19).
class ORVETEXSETDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVETEXSETDLG(DIALOGHOST& host);
    bool Init() override;

protected:
    void Command(int id) override;
};

// "Textúrakoord. számítás": S fields 101-104 and T fields 111-114 for corners
// 0-3; "OK" (115), "Mégse" (105), "Számítás" (116).
class ORVETEXCALCDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVETEXCALCDLG(DIALOGHOST& host);
    bool Init() override;

protected:
    void Command(int id) override;
};

// "Textúra manager": the level's loaded texture files in slot order (list
// position p stands for the p-th filled slot), loading, deleting, replacing
// and choosing the current texture, with a preview of the selected one.
// List 103; "Alkalmaz" (106), "Új betöltése" (101), "Törlés" (102),
// "Frissítés" (104), "Csere" (105).
#pragma once

#include "app/dlg_base.h"

#include <string>
#include <vector>

class QLabel;
class QListWidget;
class ORVETEXTUREPREVIEW;

class ORVETEXTUREDLG : public ORVEDIALOG
{
    Q_OBJECT
public:
    explicit ORVETEXTUREDLG(DIALOGHOST& host);
    bool Init() override;

    // Lists the filled slots and selects the current texture's entry
    // (nothing when its slot is empty).
    void FillTextureList();
    // The selected list position, or -1.
    int Selection() const;

    ORVETEXTUREPREVIEW* Preview = nullptr;
    QLabel* PreviewInfo = nullptr;

protected:
    void Command(int id) override;

private:
    QListWidget* List = nullptr;
    // Asks for a bitmap file: its name as a texture stores it, or "" when
    // the user cancelled or the file was refused (with a message).
    std::string ChooseBitmap();
    void ShowPreview();
    void MakeCurrent();
};

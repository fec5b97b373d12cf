#include "app/dlg_texturemanager.h"

#include "app/dlg_texturepreview.h"
#include "app/filedialogs.h"
#include "editor/document.h"
#include "editor/filepath.h"
#include "graphics/bitmapinfo.h"
#include "graphics/texture.h"
#include "platform/cp1250.h"
#include "platform/platform.h"

#include "ui_Textures.h"

#include <QLabel>
#include <QListWidget>

ORVETEXTUREDLG::ORVETEXTUREDLG(DIALOGHOST& host) : ORVEDIALOG(host)
{
    Ui::Textures ui;
    ui.setupUi(this);
    List = ui.id_103;
    Preview = ui.preview;
    PreviewInfo = ui.previewInfo;
    List->setSelectionMode(QAbstractItemView::SingleSelection);
    PreviewInfo->setWordWrap(false);
    Prepare(FIXED, true, 106);
    connect(List, &QListWidget::itemSelectionChanged, this, &ORVETEXTUREDLG::ShowPreview);
}

bool ORVETEXTUREDLG::Init()
{
    FillTextureList();
    return true;
}

void ORVETEXTUREDLG::FillTextureList()
{
    const ORVLEVEL& level = Level();
    List->blockSignals(true);
    List->clear();
    int current = -1;
    for (int slot = 0; level.Textures && slot < MAX_TEXTURES; ++slot)
        if (const TEXTURE* t = level.Textures[slot])
        {
            if (slot == level.CurrentTexture)
                current = List->count();
            List->addItem(QString::fromStdString(Cp1250ToUtf8(t->FileName)));
        }
    if (current >= 0)
        List->setCurrentRow(current);
    List->blockSignals(false);
    ShowPreview();
}

int ORVETEXTUREDLG::Selection() const
{
    const QList<QListWidgetItem*> items = List->selectedItems();
    return items.isEmpty() ? -1 : List->row(items.front());
}

void ORVETEXTUREDLG::ShowPreview()
{
    const ORVLEVEL& level = Level();
    const int p = Selection();
    const TEXTURE* t = nullptr;
    for (int slot = 0, n = 0; p >= 0 && level.Textures && slot < MAX_TEXTURES && !t; ++slot)
        if (level.Textures[slot] && n++ == p)
            t = level.Textures[slot];
    PreviewInfo->setText(Preview->Load(t ? t->FileName : nullptr));
}

void ORVETEXTUREDLG::MakeCurrent()
{
    if (Host.MakeCurrent)
        Host.MakeCurrent();
}

namespace {

// Why a chosen file cannot become a texture, or "" when it can. A file that
// cannot be opened is let through: the loader ends the program for it, as
// for every texture.
QString Refusal(const QString& name, const std::string& relative, const std::string& stored)
{
    if (Cp1250ToUtf8(stored) != relative)
        return QStringLiteral("%1 neve olyan betűt tartalmaz, amelyet a pálya nem tud tárolni; "
                              "nevezze át a fájlt.").arg(name);
    if (stored.size() >= size_t(TEXTURE_NAME_SIZE))
        return QStringLiteral("%1 neve túl hosszú: egy textúra neve legfeljebb %2 bájt lehet.")
            .arg(name).arg(TEXTURE_NAME_SIZE - 1);
    const BITMAPHEADER h = ReadBitmapHeader(stored.c_str());
    switch (JudgeBitmap(h))
    {
    case BITMAP_USABLE:
    case BITMAP_MISSING:
        return {};
    case BITMAP_NOTBITMAP:
        return QStringLiteral("%1 nem Windows bitkép, nem lehet textúra.").arg(name);
    case BITMAP_DEPTH:
        return QStringLiteral("%1 %2 bites kép; textúra csak 8 vagy 24 bites bitkép lehet.")
            .arg(name).arg(h.BitsPerPixel);
    case BITMAP_EMPTY:
        return QStringLiteral("%1 nem tölthető be: a kép mérete %2 × %3 képpont.")
            .arg(name).arg(h.Width).arg(h.Height);
    case BITMAP_TOOLARGE:
        return QStringLiteral("%1 túl nagy (%2 × %3 képpont): egy textúra legfeljebb 750000 képpontos lehet.")
            .arg(name).arg(h.Width).arg(h.Height);
    }
    return {};
}

} // namespace

std::string ORVETEXTUREDLG::ChooseBitmap()
{
    const std::string path = OpenFileDialog("bmp", "Bitképek");
    if (path.empty())
        return {};
    const std::string relative = MakeRelativePath(path);
    const std::string stored = Utf8ToCp1250(relative);
    const QString refusal = Refusal(QString::fromStdString(path), relative, stored);
    if (!refusal.isEmpty())
    {
        ShowMessage(refusal.toStdString(), "[i]", MSGICON_INFORMATION);
        return {};
    }
    return stored;
}

void ORVETEXTUREDLG::Command(int id)
{
    ORVLEVEL& level = Level();
    switch (id)
    {
    case 101:
    {
        const std::string name = ChooseBitmap();
        if (name.empty())
            return;
        MakeCurrent();
        level.Add(name.c_str());
        FillTextureList();
        break;
    }
    case 102:
    {
        const int p = Selection();
        if (p < 0)
            return;
        MakeCurrent();
        level.DeleteTextureAt(p);
        FillTextureList();
        break;
    }
    case 104:
        FillTextureList();
        break;
    case 105:
    {
        const int p = Selection();
        if (p < 0)
            return;
        const std::string name = ChooseBitmap();
        if (name.empty())
            return;
        MakeCurrent();
        level.ReplaceTextureAt(name.c_str(), p);
        FillTextureList();
        break;
    }
    case 106:
    {
        const int p = Selection();
        if (p < 0)
            return;
        level.SelectTextureAt(p);
        accept();
        break;
    }
    }
}

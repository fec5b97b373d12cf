#include "editor/document.h"

ORVEDOCUMENT::ORVEDOCUMENT() : Owned(std::make_unique<ORVLEVEL>()), Installed(Owned.get())
{
    SavedRevision = Revision();
    History.Restored = [this] { Marks.Prune(Level()); };
}

bool ORVEDOCUMENT::Open(const std::string& path)
{
    if (!Level().LoadLevel(path.c_str()))
        return false;
    History.Reset();
    Marks.Clear();
    SavedRevision = Revision();
    return true;
}

void ORVEDOCUMENT::Recover(const std::vector<uint8_t>& image, const std::optional<std::string>& fileName)
{
    Level().Clear();
    Level().Deserialize(image.data(), image.size());
    Level().FileName = fileName;
    History.Reset();
    Marks.Clear();
    SavedRevision = ~uint64_t(0); // no revision was ever saved
}

bool ORVEDOCUMENT::Save()
{
    if (!FileName())
        return false;
    return SaveAs(*FileName());
}

bool ORVEDOCUMENT::SaveAs(const std::string& path)
{
    // A failed save keeps the name the level had before.
    std::optional<std::string> previous = FileName();
    if (!Level().SaveLevel(path.c_str()))
    {
        Level().FileName = std::move(previous);
        return false;
    }
    SavedRevision = Revision();
    return true;
}

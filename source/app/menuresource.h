// The menu bar and the accelerator table, read from resources/menu.json (a
// Qt resource built into the program; the tests read the same file).
#pragma once

#include <QString>
#include <vector>

struct MENUITEM
{
    QString Label;     // with its mnemonic '&'
    QString Accel;     // the accelerator text shown after a tab, or empty
    int Id = 0;        // 0 for separators and popups
    bool Grayed = false;
    bool Checkable = false;
    bool Separator = false;
    std::vector<MENUITEM> Items; // a popup's items
    bool IsPopup() const { return !Separator && Id == 0; }
    // The item text as the menu shows it: the label, then a tab and the
    // accelerator text when there is one.
    QString Text() const { return Accel.isEmpty() ? Label : Label + '\t' + Accel; }
};

struct ACCELERATOR
{
    QString Key; // in QKeySequence's portable form
    int Id = 0;
};

struct MENURESOURCE
{
    std::vector<MENUITEM> Popups;
    std::vector<ACCELERATOR> Accelerators;
    // Shortcuts of the commands this editor adds (undo and redo), kept apart
    // from the table above.
    std::vector<ACCELERATOR> ExtraAccelerators;
};

// Reads the resource ":/menu.json" (or another file); empty on failure.
MENURESOURCE LoadMenuResource(const QString& file = ":/menu.json");

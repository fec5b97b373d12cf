// The panels docked beside the view: the level check, kept up to date as
// the level changes, and the list of placed objects; and the camera's
// bookmarks, kept per level file. Their logic is the editor's (panels.h
// there); these are the widgets and the settings.
#pragma once

#include "editor/panels.h"

#include <QDockWidget>
#include <QObject>
#include <QTimer>

#include <map>
#include <string>

class ORVEWINDOW;
class QLabel;
class QListWidget;
class QTreeWidget;

// "Pálya ellenőrzése": one line a problem; choosing one selects its segment
// and side and turns the camera to it, "Javítás" repairs it as one step.
class CHECKPANEL : public QDockWidget
{
    Q_OBJECT
public:
    explicit CHECKPANEL(ORVEWINDOW& window);
    // One row a problem: its text, then a "Javítás" button where it has a repair.
    QTreeWidget* Lines() { return List; }
    // Checks again when the level changed since the lines were made. The
    // panel's own timer calls it while the panel shows, outside the frames.
    void Poll();
    void Choose(int row);
    void Fix(int row);

protected:
    void showEvent(QShowEvent* e) override;
    void hideEvent(QHideEvent* e) override;

private:
    ORVEWINDOW& Window;
    CHECKCACHE Cache;
    QLabel* Summary;
    QTreeWidget* List;
    QTimer Timer;
    void Rebuild();
};

// "Objektumok listája": ships, items, lights and start points by slot;
// choosing one flies the camera to it, Del deletes it as one step.
class OBJECTPANEL : public QDockWidget
{
    Q_OBJECT
public:
    explicit OBJECTPANEL(ORVEWINDOW& window);
    QListWidget* Lines() { return List; }
    void Poll();
    void Choose(int row);
    void DeleteChosen();

protected:
    void showEvent(QShowEvent* e) override;
    void hideEvent(QHideEvent* e) override;

private:
    ORVEWINDOW& Window;
    const ORVLEVEL* Level = nullptr;
    uint64_t Revision = 0;
    std::vector<LEVELOBJECT> Objects;
    QListWidget* List;
    QTimer Timer;
};

// Ctrl+1 ... Ctrl+9 store the camera, Alt+1 ... Alt+9 bring it back; for a
// level with a file the views are kept in the settings under its path, with
// the one it was left at.
class CAMERAMEMORY : public QObject
{
    Q_OBJECT
public:
    explicit CAMERAMEMORY(ORVEWINDOW& window);
    void Store(int slot);
    bool Recall(int slot);
    // Before the level is replaced or the window closes, and after a level
    // was opened: its last view is kept and brought back.
    void Leaving();
    void Arrived();

private:
    ORVEWINDOW& Window;
    // Views of a level without a file, for this run only.
    std::map<int, std::string> Unnamed;
    QString Key(int slot) const;
};

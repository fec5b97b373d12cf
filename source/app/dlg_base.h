// The frame every editor dialog shares. A dialog's template is a Qt Designer
// form (resources/*.ui) whose geometry is in dialog units: a quarter of the
// font's mean character width across, an eighth of its height down. Its
// controls are direct children of the dialog, in template order, each with
// its template id in the dynamic property "id". The frame lays the template
// out for the platform font, turns button presses into the dialog's commands
// by id, and gives the keyboard what a dialog user expects: Tab in template
// order (the toolkit keeps one stop per radio group, on its checked button,
// and moves between the group's buttons with the arrow keys), Enter for the
// default button, Escape and the title bar's close for cancel.
#pragma once

#include "app/dialogs.h"

#include <QDialog>
#include <QString>

class ORVLEVEL;

class ORVEDIALOG : public QDialog
{
    Q_OBJECT
public:
    explicit ORVEDIALOG(DIALOGHOST& host);

    // Reads the level into the controls; false when the selection the dialog
    // needs is missing.
    virtual bool Init() { return true; }
    // Init, then modal. A refused Init gives the information beep and the
    // dialog never shows.
    int Run();
    // What a click on the button with this id does: the dialog's command,
    // then a checkpoint when it changed the level or its current texture.
    void Press(int id);

    // The first control with this template id in creation order, or null.
    QWidget* Control(int id) const;
    // A field's text, at most 100 characters.
    QString Text(int id) const;
    void SetText(int id, const QString& text);
    bool Checked(int id) const;
    void SetChecked(int id, bool checked);

    // Where a freshly opened dialog puts the focus: the checked radio button,
    // else the first control Tab reaches (an edit's text selected).
    void FocusFirst();

protected:
    enum FRAME
    {
        FIXED,  // modal frame
        SIZING, // sizing border, minimise and maximise boxes
    };
    // After setupUi: lays the template out, connects the buttons and makes
    // defaultId the button Enter presses.
    void Prepare(FRAME frame, bool contextHelp, int defaultId);
    virtual void Command(int id) = 0;
    ORVLEVEL& Level();

    DIALOGHOST& Host;

private:
    void LayOut(FRAME frame);
};

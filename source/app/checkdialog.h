// "Pálya ellenőrzése": the level's problems in a list; choosing a line
// selects the segment and side it names, so the designer can go and fix it.
#pragma once

class ORVLEVEL;
class QWidget;

// Runs the dialog modally; true when a line was chosen and the selection moved.
bool RunCheckDialog(ORVLEVEL& level, QWidget* parent);

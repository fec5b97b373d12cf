// The information beep as a short tone of our own ("Beep.wav"): desktops
// mostly silence the toolkit's beep, so the program plays one itself.
#pragma once

class BUFFER;

// The tone, created by the application after TheSound.
extern BUFFER* BeepSound;

// Plays the tone at the listener on a voice of the source pool it keeps while
// no game sound needs it. False when there is no sound device to play it on
// (no tone, no sound system, or only the silent one): the caller beeps some
// other way.
bool PlayBeep();

// The desktop side of the platform seam: message boxes without an owner
// window, the information beep (our own tone, else the toolkit's), and fatal
// ends that stop the program at once.
#pragma once

#include "platform/platform.h"

class QTPLATFORM : public CONSOLEPLATFORM
{
public:
    void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) override;
    bool Ask(const std::string& text, const std::string& caption) override;
    void Beep() override;
};

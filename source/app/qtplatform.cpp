#include "app/qtplatform.h"

#include "sound/beep.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

void QTPLATFORM::MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon)
{
    QMessageBox::Icon qicon = QMessageBox::NoIcon;
    switch (icon)
    {
    case MSGICON_STOP: qicon = QMessageBox::Critical; break;
    case MSGICON_INFORMATION: qicon = QMessageBox::Information; break;
    case MSGICON_WARNING: qicon = QMessageBox::Warning; break;
    case MSGICON_QUESTION: qicon = QMessageBox::Question; break;
    case MSGICON_NONE: break;
    }
    QMessageBox box(qicon, QString::fromStdString(caption), QString::fromStdString(text), QMessageBox::Ok);
    box.exec();
}

bool QTPLATFORM::Ask(const std::string& text, const std::string& caption)
{
    QMessageBox box(QMessageBox::Question, QString::fromStdString(caption), QString::fromStdString(text),
                    QMessageBox::Yes | QMessageBox::No);
    box.button(QMessageBox::Yes)->setText("Igen");
    box.button(QMessageBox::No)->setText("Nem");
    return box.exec() == QMessageBox::Yes;
}

void QTPLATFORM::Beep()
{
    // The toolkit's beep is silent on most desktops; it is the last resort.
    if (!PlayBeep())
        QApplication::beep();
}

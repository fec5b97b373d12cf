// Helpers the dialog tests share: the default level with side 0 of segment 0
// selected, a host that counts checkpoints, presses by control id, and
// answers to modal dialogs that the code under test opens.
#pragma once

#include "app/dlg_base.h"
#include "editor/document.h"
#include "math/camera.h"
#include "platform/tests/testplatform.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTimer>

#include <functional>

class DialogTest : public PlatformTest
{
protected:
    ORVEDOCUMENT Doc;
    ORVLEVEL& L = Doc.Level();
    CAMERA Cam;
    int Checkpoints = 0;
    int MakeCurrents = 0;
    DIALOGHOST Host{Doc, Cam, nullptr, [this] { ++MakeCurrents; }, [this] { ++Checkpoints; }};

    void SetUp() override
    {
        PlatformTest::SetUp();
        L.CurrentSegment = 0;
        L.CurrentSide = 0;
        L.CurrentPoint = 0;
    }
    // Presses the button with the template id as a click does.
    static void Press(ORVEDIALOG& d, int id)
    {
        auto* button = qobject_cast<QAbstractButton*>(d.Control(id));
        ASSERT_NE(button, nullptr) << "no button " << id;
        button->click();
    }
    static void Type(ORVEDIALOG& d, int id, const QString& text)
    {
        auto* edit = qobject_cast<QLineEdit*>(d.Control(id));
        ASSERT_NE(edit, nullptr) << "no field " << id;
        edit->setText(text);
    }
};

// Runs `answer` on the next modal widget of type W once it shows (the code
// under test is then blocked in its exec). The timer is returned so that a
// test expecting no dialog can stop it.
template <class W>
QTimer* WhenModal(std::function<void(W*)> answer)
{
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, [timer, answer] {
        auto* w = qobject_cast<W*>(QApplication::activeModalWidget());
        if (!w || !w->isVisible())
            return;
        timer->stop();
        timer->deleteLater();
        answer(w);
    });
    timer->start(5);
    return timer;
}

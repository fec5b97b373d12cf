#include "app/tests/dialogtesting.h"

#include "app/dialogs.h"
#include "app/dlg_properties.h"
#include "app/dlg_texture.h"
#include "app/dlg_texturemanager.h"
#include "editor/controller.h"

#include <QColorDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <clocale>
#include <memory>

namespace {

const std::initializer_list<TEXPAIR> UNIT = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

void SetPairs(SIDE& side, std::initializer_list<TEXPAIR> pairs)
{
    std::copy(pairs.begin(), pairs.end(), side.TexCoords);
}

void ExpectPairs(const SIDE& side, std::initializer_list<float> expected)
{
    for (int k = 0; k < 4; ++k)
    {
        EXPECT_NEAR(side.TexCoords[k].s, expected.begin()[2 * k], 1e-5) << "corner " << k;
        EXPECT_NEAR(side.TexCoords[k].t, expected.begin()[2 * k + 1], 1e-5) << "corner " << k;
    }
}

} // namespace

TEST_F(DialogTest, CommandsOpenTheirDialogsModallyOrBeepWithoutASelection)
{
    const std::pair<int, const char*> dialogs[] = {
        {CM_TEXSETTINGS, "Textúrabeállítás"},       {CM_TEXCALCULATE, "Textúrakoord. számítás"},
        {CM_TEXTURES, "Textúra manager"},           {CM_POINTSETTINGS, "Pont beállítások"},
        {CM_SEGMENTTYPE, "Szegmenstípus beállítása"}, {CM_WALLTYPE, "Falbeállítás"},
        {CM_SIDECOLOUR, "Oldalak színének beállítása"}, {CM_NEWLIGHT, "Új fényforrás"},
    };
    const uint64_t revision = L.Revision;
    for (auto [id, caption] : dialogs)
    {
        QString title;
        WhenModal<QDialog>([&](QDialog* d) {
            title = d->windowTitle();
            d->reject();
        });
        RunEditorDialog(id, Host);
        EXPECT_EQ(title, QString::fromUtf8(caption));
    }
    EXPECT_TRUE(L.Revision == revision && Checkpoints == 0 && P().Beeps == 0);

    // Without a selection the six that need one beep and never show; the
    // texture manager and the new light need none.
    L.CurrentSegment = -1;
    bool shown = false;
    QTimer* watch = WhenModal<QDialog>([&](QDialog* d) { shown = true, d->reject(); });
    for (int id : {CM_TEXSETTINGS, CM_TEXCALCULATE, CM_POINTSETTINGS, CM_SEGMENTTYPE, CM_WALLTYPE, CM_SIDECOLOUR})
        RunEditorDialog(id, Host);
    L.CurrentSegment = 0;
    L.CurrentPoint = 4; // a side, but no corner point
    RunEditorDialog(CM_POINTSETTINGS, Host);
    delete watch;
    EXPECT_FALSE(shown);
    EXPECT_TRUE(P().Beeps == 7 && P().Messages.empty() && L.Revision == revision);
}

TEST_F(DialogTest, TexSettingsTurnsScalesAndShiftsAboutTheReferenceCorner)
{
    SIDE& side = L.Segments[0]->Sides[0];
    SetPairs(side, UNIT);
    ORVETEXSETDLG d(Host);
    ASSERT_TRUE(d.Init());
    d.show();

    Type(d, 9, "90");
    Press(d, 18);
    ExpectPairs(side, {0, 0, 0, 1, -1, 1, -1, 0});
    EXPECT_TRUE(d.isVisible() && Checkpoints == 1); // stays open for more

    // Scaled about reference 3.7, read as 3, and shifted: corner 3 keeps
    // its pair, then all four move alike.
    SetPairs(side, UNIT);
    for (auto [id, text] : {std::pair{9, "0"}, {6, "2"}, {7, "0.5"}, {4, "0.5"}, {102, "3.7"}})
        Type(d, id, text);
    Press(d, 18);
    ExpectPairs(side, {0.5f, -1, 1, -1, 1, 1, 0.5f, 1});
    EXPECT_TRUE(P().Messages.empty());

    // Refused presses: a message, nothing changed, no revision.
    const uint64_t revision = L.Revision;
    Type(d, 102, "-1");
    Press(d, 18);
    Type(d, 102, "0");
    Type(d, 7, "abc");
    Press(d, 18);
    EXPECT_EQ(P().Messages, (MESSAGES{{"A referenciapontnak 0 és 3 közé kell esnie.", "[i]", MSGICON_INFORMATION},
                                      {"A nagyítás szorzója nem lehet nulla!", "[i]", MSGICON_INFORMATION}}));
    ExpectPairs(side, {0.5f, -1, 1, -1, 1, 1, 0.5f, 1});
    EXPECT_TRUE(L.Revision == revision && Checkpoints == 2);

    Press(d, 19);
    EXPECT_FALSE(d.isVisible());
}

TEST_F(DialogTest, TexCalculateShowsComputesAndStoresPairs)
{
    SIDE& side = L.Segments[0]->Sides[0];
    SetPairs(side, {{0.26f, -0.04f}, {1.0f, 0.0f}, {1.04f, 2.0f}, {0.0f, 2.25f}});
    const uint64_t revision = L.Revision;
    auto d = std::make_unique<ORVETEXCALCDLG>(Host);
    ASSERT_TRUE(d->Init());

    // The calculation: which two corners are the known edge.
    auto calculate = [&](std::initializer_list<int> empty, int a, int b) {
        TEXPAIR expected[4];
        for (int i = 0; i < 4; ++i)
            expected[i] = {float(d->Text(101 + i).toDouble()), float(d->Text(111 + i).toDouble())};
        for (int i : empty)
        {
            Type(*d, 101 + i, "");
            Type(*d, 111 + i, "");
            expected[i] = {0, 0};
        }
        ORVLEVEL::CalcTexCoordsFromEdge(expected, L.GetCurrentSideCorners(), 4, a, b);
        Press(*d, 116);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(d->Text(101 + i) + " " + d->Text(111 + i), QString::asprintf("%.1f %.1f", expected[i].s, expected[i].t)) << i;
    };
    calculate({0, 1}, 2, 3);
    calculate({1, 2}, 3, 0);
    calculate({3, 0}, 1, 2);
    EXPECT_TRUE(P().Messages.empty());
    EXPECT_EQ(L.Revision, revision); // the side waits for "OK"

    for (int id : {101, 111})
        Type(*d, id, ""); // only corner 0 empty
    Press(*d, 116);
    for (int id : {101, 111, 103, 113})
        Type(*d, id, ""); // corners 0 and 2
    Press(*d, 116);
    ASSERT_EQ(P().Messages.size(), 2u);
    EXPECT_EQ(P().Messages[0].Caption + P().Messages[0].Text,
              "[i]A számítás elvégzéséhez két szomszédos csúcson lévő textúrakoordinátákat kell CSAK megadni");
    EXPECT_EQ(d->Text(101) + d->Text(113), "0.00.0"); // the empty ones show as 0

    // "OK" without editing stores the pairs as shown, one decimal.
    d = std::make_unique<ORVETEXCALCDLG>(Host);
    ASSERT_TRUE(d->Init());
    d->show();
    Press(*d, 115);
    EXPECT_FALSE(d->isVisible());
    ExpectPairs(side, {0.3f, -0.0f, 1, 0, 1, 2, 0, 2.2f});
    EXPECT_TRUE(L.Revision == revision + 1 && Checkpoints == 1);
}

TEST_F(DialogTest, PointDialogReadsNumbersInTheCLocale)
{
    VECTOR3D& p = *L.GetCurrentPointPtr();
    p = {12.34f, -0.06f, 7};

    // A user locale with a decimal comma changes nothing.
    const bool comma = std::setlocale(LC_NUMERIC, "hu_HU.UTF-8") || std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    {
        ORVEPOINTSETTINGSDLG d(Host);
        ASSERT_TRUE(d.Init());
        EXPECT_EQ(d.Text(105) + " " + d.Text(106) + " " + d.Text(107), "12.3 -0.1 7.0");
        Type(d, 105, "abc");
        Type(d, 106, " 1e2");
        Type(d, 107, "3.75,5");
        Press(d, 108);
    }
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_TRUE(p == VECTOR3D(0, 100, 3.75f) && Checkpoints == 1);
    if (!comma)
        std::cout << "[ note ] no decimal-comma locale installed; checked in the C locale only\n";
}

TEST_F(DialogTest, SegmentTypeByRadioButtonAndKeyboard)
{
    SEGMENT& s = *L.Segments[0];
    s.Type = SEGTYPE_SUPPORT;
    {
        ORVESEGMENTTYPESDLG d(Host);
        ASSERT_TRUE(d.Init());
        EXPECT_TRUE(d.Checked(104));
        d.FocusFirst();
        d.show();
        d.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&d));
        EXPECT_EQ(QApplication::focusWidget(), d.Control(104));
        // "Hajójavító" (103) stands between 102 and 104 on screen.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
        EXPECT_TRUE(d.Checked(103));
        EXPECT_EQ(QApplication::focusWidget(), d.Control(103));
        QTest::keyClick(d.Control(103), Qt::Key_Return); // Enter is "OK"
        EXPECT_FALSE(d.isVisible());
    }
    EXPECT_TRUE(s.Type == SEGTYPE_REPAIR && Checkpoints == 1);
}

TEST_F(DialogTest, SideColoursUnclampedAndCustomChooserTruncatesToBytes)
{
    SIDE& side = L.Segments[0]->Sides[0];
    side.Colours[0] = {1.0f, 0.5f, 0.0f};
    side.Colours[3] = {0.0f, 0.0f, 0.2f};
    {
        ORVESETSIDECOLORDLG d(Host);
        ASSERT_TRUE(d.Init());
        EXPECT_EQ(d.Text(101) + " " + d.Text(102) + " " + d.Text(103), "255.0 127.5 0.0");
        EXPECT_EQ(d.Text(133), "51.0");
        Type(d, 102, "51");
        Type(d, 131, "300");
        Press(d, 140);
    }
    EXPECT_EQ(side.Colours[0], VECTOR3D(1.0f, 0.2f, 0.0f));
    EXPECT_TRUE(side.Colours[3].x == float(300 * 0.00392156862745098) && Checkpoints == 1);

    const uint64_t revision = L.Revision;
    ORVESETSIDECOLORDLG d(Host);
    ASSERT_TRUE(d.Init());
    Type(d, 101, "300");
    Type(d, 102, "abc");
    Type(d, 103, "-1.9");
    WhenModal<QColorDialog>([](QColorDialog* c) { c->reject(); });
    Press(d, 104);
    EXPECT_EQ(d.Text(101) + " " + d.Text(102) + " " + d.Text(103), "44 0 255");
    WhenModal<QColorDialog>([](QColorDialog* c) {
        c->setCurrentColor(QColor(1, 2, 3));
        c->accept();
    });
    Press(d, 134);
    EXPECT_EQ(d.Text(131) + " " + d.Text(132) + " " + d.Text(133), "1 2 3");
    EXPECT_EQ(L.Revision, revision); // the side changes only with "OK"
}

TEST_F(DialogTest, PickColorKeepsOneTableOfCustomColoursForTheRun)
{
    WhenModal<QColorDialog>([](QColorDialog* c) {
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(QColorDialog::customColor(i), QColor(Qt::black)) << i;
        QColorDialog::setCustomColor(3, QColor(200, 0, 0)); // the user adds one
        c->reject();
    });
    EXPECT_EQ(PickColor(nullptr, 0x123456), 0x123456u);

    // Qt's own table changed by someone else does not leak into ours.
    QColorDialog::setCustomColor(5, QColor(0, 0, 99));
    WhenModal<QColorDialog>([](QColorDialog* c) {
        EXPECT_TRUE(QColorDialog::customColor(3) == QColor(200, 0, 0) && QColorDialog::customColor(5) == Qt::black);
        c->setCurrentColor(QColor(10, 20, 30));
        c->accept();
    });
    EXPECT_EQ(PickColor(nullptr, 0x123456), 0x1E140Au);
}

// Every template laid out for the platform font: each control inside its
// dialog, each text unclipped.
TEST_F(DialogTest, TemplatesFitThePlatformFont)
{
    ORVETEXSETDLG texSet(Host);
    ORVETEXCALCDLG texCalc(Host);
    ORVETEXTUREDLG textures(Host);
    ORVEPOINTSETTINGSDLG point(Host);
    ORVESEGMENTTYPESDLG segment(Host);
    ORVEWALLTYPESDLG wall(Host);
    ORVESETSIDECOLORDLG colour(Host);
    ORVENEWLIGHTDLG light(Host);
    ORVESETMERGESHIFTDLG join(Host, 0);
    for (ORVEDIALOG* d : std::initializer_list<ORVEDIALOG*>{&texSet, &texCalc, &textures, &point, &segment, &wall,
                                                            &colour, &light, &join})
    {
        ASSERT_TRUE(d->Init());
        const QFontMetrics fm(d->font());
        for (QWidget* w : d->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        {
            if (w->isWindow())
                continue;
            const std::string where = (d->windowTitle() + " / " + w->objectName()).toStdString();
            EXPECT_TRUE(d->rect().contains(w->geometry())) << where;
            if (auto* b = qobject_cast<QAbstractButton*>(w))
            {
                const int room = qobject_cast<QRadioButton*>(w) ? w->width() - 20 : w->width() - 4;
                EXPECT_TRUE(fm.horizontalAdvance(b->text()) <= room && w->height() >= fm.height()) << where;
            }
            auto* g = qobject_cast<QGroupBox*>(w);
            auto* l = qobject_cast<QLabel*>(w);
            auto* e = qobject_cast<QLineEdit*>(w);
            EXPECT_TRUE(!g || fm.horizontalAdvance(g->title()) <= w->width()) << where;
            EXPECT_TRUE(!l || l->text().isEmpty() || l->heightForWidth(w->width()) <= w->height()) << where;
            EXPECT_TRUE(!e || w->height() >= e->minimumSizeHint().height()) << where;
        }
    }
}

#include "app/panels.h"

#include "app/mainwindow.h"
#include "orvlevel/level.h"
#include "orvlevel/levelfix.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QHeaderView>
#include <QShortcut>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const char* const SETTINGS_ORG = "orvane-builder";
const char* const SETTINGS_APP = "orvane-builder";
// Often enough to follow every change, seldom enough to cost nothing.
constexpr int POLL_MS = 200;
constexpr size_t MAX_LINES = 300;

} // namespace

// ---------------------------------------------------------------------------
// The level check

CHECKPANEL::CHECKPANEL(ORVEWINDOW& window) : QDockWidget("Pálya ellenőrzése", &window), Window(window)
{
    setObjectName("CheckPanel");
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(2, 2, 2, 2);
    Summary = new QLabel;
    layout->addWidget(Summary);
    List = new QTreeWidget;
    List->setObjectName("Problems");
    List->setColumnCount(2);
    List->setHeaderHidden(true);
    List->setRootIsDecorated(false);
    List->setTextElideMode(Qt::ElideRight);
    List->header()->setStretchLastSection(false);
    List->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    List->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    layout->addWidget(List);
    body->setMinimumWidth(240);
    setWidget(body);
    auto row = [this](QTreeWidgetItem* item) { return item ? List->indexOfTopLevelItem(item) : -1; };
    connect(List, &QTreeWidget::currentItemChanged, this, [this, row](QTreeWidgetItem* item) { Choose(row(item)); });
    connect(List, &QTreeWidget::itemClicked, this, [this, row](QTreeWidgetItem* item) { Choose(row(item)); });
    connect(&Timer, &QTimer::timeout, this, [this] { Poll(); });
}

void CHECKPANEL::showEvent(QShowEvent* e)
{
    QDockWidget::showEvent(e);
    Poll();
    Timer.start(POLL_MS);
}

void CHECKPANEL::hideEvent(QHideEvent* e)
{
    Timer.stop();
    QDockWidget::hideEvent(e);
}

void CHECKPANEL::Poll()
{
    ORVEDOCUMENT* doc = Window.Document();
    if (!doc || !Cache.Due(doc->Level()))
        return;
    if (Cache.Refresh(doc->Level()) || List->topLevelItemCount() == 0)
        Rebuild();
}

void CHECKPANEL::Rebuild()
{
    const std::vector<LEVELPROBLEM>& problems = Cache.Problems();
    Summary->setText(problems.empty() ? "A pályán nem találtam hibát."
                                      : QString("%1 hiba található:").arg(problems.size()));
    const int keep = List->currentItem() ? List->indexOfTopLevelItem(List->currentItem()) : -1;
    List->blockSignals(true);
    List->clear();
    // A level can have tens of thousands of problems (every unused point is
    // one); the first few hundred are as many as anyone reads, and repairs
    // bring the rest up.
    const size_t shown = std::min(problems.size(), MAX_LINES);
    for (size_t i = 0; i < shown; ++i)
    {
        const QString text = QString::fromStdString(problems[i].Text);
        auto* item = new QTreeWidgetItem(List, QStringList{text});
        item->setToolTip(0, text);
        if (!HasFix(problems[i]))
            continue;
        auto* fix = new QPushButton("Javítás");
        fix->setObjectName("Fix");
        fix->setFocusPolicy(Qt::NoFocus);
        List->setItemWidget(item, 1, fix);
        connect(fix, &QPushButton::clicked, this, [this, i] { Fix(int(i)); });
    }
    if (shown < problems.size())
    {
        auto* more = new QTreeWidgetItem(List, QStringList{QString("… és még %1 hiba").arg(problems.size() - shown)});
        more->setFlags(Qt::NoItemFlags);
    }
    if (keep >= 0 && keep < List->topLevelItemCount())
        List->setCurrentItem(List->topLevelItem(keep));
    List->blockSignals(false);
}

void CHECKPANEL::Choose(int row)
{
    const std::vector<LEVELPROBLEM>& problems = Cache.Problems();
    ORVEDOCUMENT* doc = Window.Document();
    CAMERA* camera = Window.Camera();
    if (!doc || !camera || row < 0 || size_t(row) >= std::min(problems.size(), MAX_LINES))
        return;
    const LEVELPROBLEM& p = problems[size_t(row)];
    ORVLEVEL& level = doc->Level();
    if (p.Segment >= 0 && level.Segments && p.Segment < MAX_SEGMENTS && level.Segments[p.Segment])
    {
        level.CurrentSegment = p.Segment;
        level.CurrentSide = p.Side >= 0 ? p.Side : 0;
        level.CurrentPoint = 0;
        LookAtSide(*camera, level, p.Segment, p.Side);
    }
    else if (std::optional<VECTOR3D> at = ProblemObjectPosition(level, p))
        FlyTo(*camera, level, *at);
    Window.Wake();
}

void CHECKPANEL::Fix(int row)
{
    const std::vector<LEVELPROBLEM>& problems = Cache.Problems();
    if (row < 0 || size_t(row) >= problems.size() || !Window.Document())
        return;
    const LEVELPROBLEM problem = problems[size_t(row)];
    Window.RunEdit([&] { ApplyFix(Window.Document()->Level(), problem); });
    Poll();
}

// ---------------------------------------------------------------------------
// The objects

OBJECTPANEL::OBJECTPANEL(ORVEWINDOW& window) : QDockWidget("Objektumok listája", &window), Window(window)
{
    setObjectName("ObjectPanel");
    List = new QListWidget;
    List->setObjectName("Objects");
    List->setMinimumWidth(240);
    setWidget(List);
    connect(List, &QListWidget::currentRowChanged, this, [this](int row) { Choose(row); });
    connect(List, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { Choose(List->row(item)); });
    auto* del = new QShortcut(QKeySequence(Qt::Key_Delete), List);
    del->setContext(Qt::WidgetShortcut);
    connect(del, &QShortcut::activated, this, [this] { DeleteChosen(); });
    connect(&Timer, &QTimer::timeout, this, [this] { Poll(); });
}

void OBJECTPANEL::showEvent(QShowEvent* e)
{
    QDockWidget::showEvent(e);
    Poll();
    Timer.start(POLL_MS);
}

void OBJECTPANEL::hideEvent(QHideEvent* e)
{
    Timer.stop();
    QDockWidget::hideEvent(e);
}

void OBJECTPANEL::Poll()
{
    ORVEDOCUMENT* doc = Window.Document();
    if (!doc || (Level == &doc->Level() && Revision == doc->Revision()))
        return;
    Level = &doc->Level();
    Revision = doc->Revision();
    Objects = ListObjects(doc->Level());
    const int keep = List->currentRow();
    List->blockSignals(true);
    List->clear();
    for (const LEVELOBJECT& o : Objects)
        List->addItem(QString::fromStdString(o.Text));
    if (List->count())
        List->setCurrentRow(std::min(std::max(keep, 0), List->count() - 1));
    List->blockSignals(false);
}

void OBJECTPANEL::Choose(int row)
{
    ORVEDOCUMENT* doc = Window.Document();
    CAMERA* camera = Window.Camera();
    if (!doc || !camera || row < 0 || size_t(row) >= Objects.size())
        return;
    FlyTo(*camera, doc->Level(), Objects[size_t(row)].Position);
    Window.Wake();
}

void OBJECTPANEL::DeleteChosen()
{
    const int row = List->currentRow();
    if (!Window.Document() || row < 0 || size_t(row) >= Objects.size())
        return;
    const LEVELOBJECT o = Objects[size_t(row)];
    Window.RunEdit([&] { DeleteObject(Window.Document()->Level(), o.Kind, o.Index); });
    Poll();
}

// ---------------------------------------------------------------------------
// Camera bookmarks

CAMERAMEMORY::CAMERAMEMORY(ORVEWINDOW& window) : QObject(&window), Window(window)
{
    for (int slot = 1; slot <= 9; ++slot)
    {
        auto* store = new QAction(&window);
        store->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_0 + slot)));
        store->setShortcutContext(Qt::WindowShortcut);
        connect(store, &QAction::triggered, this, [this, slot] { Store(slot); });
        auto* recall = new QAction(&window);
        recall->setShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_0 + slot)));
        recall->setShortcutContext(Qt::WindowShortcut);
        connect(recall, &QAction::triggered, this, [this, slot] { Recall(slot); });
        window.addAction(store);
        window.addAction(recall);
    }
}

QString CAMERAMEMORY::Key(int slot) const
{
    const ORVEDOCUMENT* doc = Window.Document();
    if (!doc || !doc->FileName())
        return {};
    // The path as one key: its slashes would make groups.
    const QString path = QString::fromStdString(*doc->FileName());
    return "cameras/" + QString::fromLatin1(QUrl::toPercentEncoding(path)) + "/" +
           (slot == 0 ? QString("last") : QString::number(slot));
}

void CAMERAMEMORY::Store(int slot)
{
    const CAMERA* camera = Window.Camera();
    if (!camera)
        return;
    const std::string text = CameraText(*camera);
    const QString key = Key(slot);
    if (key.isEmpty())
        Unnamed[slot] = text;
    else
    {
        QSettings settings(SETTINGS_ORG, SETTINGS_APP);
        settings.setValue(key, QString::fromStdString(text));
    }
}

bool CAMERAMEMORY::Recall(int slot)
{
    CAMERA* camera = Window.Camera();
    if (!camera)
        return false;
    const QString key = Key(slot);
    std::string text;
    if (key.isEmpty())
        text = Unnamed.count(slot) ? Unnamed[slot] : "";
    else
        text = QSettings(SETTINGS_ORG, SETTINGS_APP).value(key).toString().toStdString();
    if (!CameraFromText(text, *camera))
        return false;
    Window.Wake();
    return true;
}

void CAMERAMEMORY::Leaving()
{
    if (!Key(0).isEmpty())
        Store(0);
    Unnamed.clear();
}

void CAMERAMEMORY::Arrived()
{
    Recall(0);
}

// ---------------------------------------------------------------------------
// The window's side of the panels

void ORVEWINDOW::CreatePanels()
{
    CheckDock = new CHECKPANEL(*this);
    ObjectDock = new OBJECTPANEL(*this);
    Cameras = new CAMERAMEMORY(*this);
    addDockWidget(Qt::RightDockWidgetArea, CheckDock);
    addDockWidget(Qt::RightDockWidgetArea, ObjectDock);
    // Until the designer opens one, the view has the whole window.
    CheckDock->hide();
    ObjectDock->hide();
    QSettings settings(SETTINGS_ORG, SETTINGS_APP);
    restoreState(settings.value("window/panels").toByteArray());
}

void ORVEWINDOW::SavePanels()
{
    if (!CheckDock)
        return;
    QSettings settings(SETTINGS_ORG, SETTINGS_APP);
    settings.setValue("window/panels", saveState());
}

void ORVEWINDOW::ShowPanel(QDockWidget* panel)
{
    if (!panel)
        return;
    panel->show();
    panel->raise();
    SavePanels();
}

void ORVEWINDOW::RunEdit(const std::function<void()>& edit)
{
    if (!Doc)
        return;
    ViewWidget->makeCurrent();
    Doc->History.Begin();
    edit();
    Doc->History.Checkpoint();
    SyncMenu();
    Wake();
}

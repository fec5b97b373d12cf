#include "app/checkdialog.h"

#include "orvlevel/level.h"
#include "orvlevel/levelcheck.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

bool RunCheckDialog(ORVLEVEL& level, QWidget* parent)
{
    const std::vector<LEVELPROBLEM> problems = CheckLevel(level);
    QDialog dialog(parent);
    dialog.setObjectName("CheckLevel");
    dialog.setWindowTitle("Pálya ellenőrzése");
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(problems.empty() ? "A pályán nem találtam hibát."
                                                  : QString("%1 hiba található:").arg(problems.size())));
    auto* list = new QListWidget;
    list->setObjectName("Problems");
    for (const LEVELPROBLEM& p : problems)
        list->addItem(QString::fromStdString(p.Text));
    list->setMinimumWidth(560);
    layout->addWidget(list);
    auto* buttons = new QDialogButtonBox;
    QPushButton* go = buttons->addButton("Kijelölés", QDialogButtonBox::AcceptRole);
    go->setObjectName("Select");
    buttons->addButton("Bezárás", QDialogButtonBox::RejectRole)->setObjectName("Close");
    layout->addWidget(buttons);
    go->setEnabled(false);
    QObject::connect(list, &QListWidget::currentRowChanged, go, [go, &problems](int row) {
        go->setEnabled(row >= 0 && problems[size_t(row)].Segment >= 0);
    });
    QObject::connect(list, &QListWidget::itemActivated, &dialog, [&] {
        if (go->isEnabled())
            dialog.accept();
    });
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    if (dialog.exec() != QDialog::Accepted || list->currentRow() < 0)
        return false;
    const LEVELPROBLEM& p = problems[size_t(list->currentRow())];
    if (p.Segment < 0)
        return false;
    level.CurrentSegment = p.Segment;
    level.CurrentSide = p.Side >= 0 ? p.Side : 0;
    level.CurrentPoint = 0;
    return true;
}

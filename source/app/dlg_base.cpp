#include "app/dlg_base.h"

#include "editor/document.h"
#include "platform/platform.h"

#include <QAbstractButton>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <vector>

ORVEDIALOG::ORVEDIALOG(DIALOGHOST& host) : QDialog(host.Parent), Host(host)
{
}

ORVLEVEL& ORVEDIALOG::Level()
{
    return Host.Document.Level();
}

int ORVEDIALOG::Run()
{
    if (!Init())
    {
        InfoBeep();
        return Rejected;
    }
    FocusFirst();
    return exec();
}

void ORVEDIALOG::Press(int id)
{
    // The current texture is no part of the level's contents, but undo
    // brings it back all the same, so choosing one is a step too.
    const uint64_t revision = Level().Revision;
    const int32_t texture = Level().CurrentTexture;
    Command(id);
    if ((Level().Revision != revision || Level().CurrentTexture != texture) && Host.Checkpoint)
        Host.Checkpoint();
}

QWidget* ORVEDIALOG::Control(int id) const
{
    for (QObject* child : children())
    {
        QVariant v = child->property("id");
        if (v.isValid() && v.toInt() == id && child->isWidgetType())
            return static_cast<QWidget*>(child);
    }
    return nullptr;
}

QString ORVEDIALOG::Text(int id) const
{
    if (auto* edit = qobject_cast<QLineEdit*>(Control(id)))
        return edit->text().left(100);
    return {};
}

void ORVEDIALOG::SetText(int id, const QString& text)
{
    if (auto* edit = qobject_cast<QLineEdit*>(Control(id)))
        edit->setText(text);
}

bool ORVEDIALOG::Checked(int id) const
{
    auto* button = qobject_cast<QAbstractButton*>(Control(id));
    return button && button->isChecked();
}

void ORVEDIALOG::SetChecked(int id, bool checked)
{
    if (auto* button = qobject_cast<QAbstractButton*>(Control(id)))
        button->setChecked(checked);
}

void ORVEDIALOG::FocusFirst()
{
    QWidget* first = nullptr;
    for (QObject* child : children())
    {
        auto* w = qobject_cast<QWidget*>(child);
        if (!w || !w->isEnabled())
            continue;
        if (auto* radio = qobject_cast<QRadioButton*>(w); radio && radio->isChecked())
        {
            first = w;
            break;
        }
        if (!first && (w->focusPolicy() & Qt::TabFocus))
            first = w;
    }
    if (!first)
        return;
    first->setFocus(Qt::TabFocusReason);
    if (auto* edit = qobject_cast<QLineEdit*>(first))
        edit->selectAll();
}

void ORVEDIALOG::Prepare(FRAME frame, bool contextHelp, int defaultId)
{
    Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    if (frame == SIZING)
        flags |= Qt::WindowMinMaxButtonsHint;
    if (contextHelp)
        flags |= Qt::WindowContextHelpButtonHint;
    setWindowFlags(flags);

    LayOut(frame);

    for (QObject* child : children())
    {
        const QVariant id = child->property("id");
        if (auto* button = qobject_cast<QPushButton*>(child); button && id.isValid())
        {
            const int n = id.toInt();
            connect(button, &QPushButton::clicked, this, [this, n] { Press(n); });
            button->setAutoDefault(true);
            if (n == defaultId)
                button->setDefault(true);
        }
        // Group boxes are frames only: the controls drawn inside them must
        // get the clicks.
        if (auto* group = qobject_cast<QGroupBox*>(child))
            group->lower();
    }
}

namespace {

// The least size in pixels the control needs to show its text unclipped;
// 0 where the template's size is always enough.
QSize Needed(QWidget* w, const QFontMetrics& fm)
{
    if (auto* button = qobject_cast<QPushButton*>(w))
    {
        const QStyle* s = button->style();
        const int margin = s->pixelMetric(QStyle::PM_ButtonMargin, nullptr, button) +
                           2 * s->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, button);
        return {fm.horizontalAdvance(button->text()) + margin, fm.height() + margin};
    }
    if (auto* radio = qobject_cast<QRadioButton*>(w))
        return radio->sizeHint();
    if (auto* edit = qobject_cast<QLineEdit*>(w))
        return {0, edit->minimumSizeHint().height()};
    if (auto* group = qobject_cast<QGroupBox*>(w))
        return {fm.horizontalAdvance(group->title()) + 2 * fm.averageCharWidth(), 0};
    if (auto* label = qobject_cast<QLabel*>(w); label && !label->text().isEmpty())
        return {0, fm.height()};
    return {0, 0};
}

} // namespace

void ORVEDIALOG::LayOut(FRAME frame)
{
    ensurePolished();
    const QSize units = size(); // setupUi gave the template's size in dialog units
    struct ITEM
    {
        QWidget* Widget;
        QRect Units;
    };
    std::vector<ITEM> items;
    for (QObject* child : children())
        if (auto* w = qobject_cast<QWidget*>(child); w && !w->isWindow())
        {
            w->ensurePolished();
            items.push_back({w, w->geometry()});
        }

    // The dialog base units of the font, then larger where a control of this
    // template would clip its text in it (the platform font is not the one
    // the template was drawn for).
    const QFontMetrics fm(font());
    const double meanWidth =
        fm.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) / 52.0;
    double ux = meanWidth / 4.0;
    double uy = fm.height() / 8.0;
    for (const ITEM& item : items)
    {
        const QSize need = Needed(item.Widget, fm);
        if (need.width() > 0 && item.Units.width() > 0)
            ux = std::max(ux, double(need.width()) / item.Units.width());
        if (need.height() > 0 && item.Units.height() > 0)
            uy = std::max(uy, double(need.height()) / item.Units.height());
    }
    auto px = [](int v, double u) { return int(std::lround(v * u)); };
    // Labels wrap as static texts do; each must fit in its box.
    for (const ITEM& item : items)
    {
        auto* label = qobject_cast<QLabel*>(item.Widget);
        if (!label || label->text().isEmpty() || item.Units.width() <= 0)
            continue;
        for (int guard = 0; guard < 200; ++guard)
        {
            const QRect& r = item.Units;
            const int w = px(r.x() + r.width(), ux) - px(r.x(), ux);
            if (label->heightForWidth(w) <= px(r.y() + r.height(), uy) - px(r.y(), uy) &&
                fm.boundingRect(QRect(0, 0, w, 10000), Qt::TextWordWrap, label->text()).width() <= w)
                break;
            ux *= 1.02;
        }
    }

    // Edges are mapped, not sizes, so controls that meet in the template
    // still meet (and end inside the dialog).
    for (const ITEM& item : items)
    {
        const QRect& r = item.Units;
        const int left = px(r.x(), ux), top = px(r.y(), uy);
        item.Widget->setGeometry(left, top, px(r.x() + r.width(), ux) - left, px(r.y() + r.height(), uy) - top);
    }
    const QSize pixels(px(units.width(), ux), px(units.height(), uy));
    if (frame == FIXED)
        setFixedSize(pixels);
    else
        resize(pixels);
}

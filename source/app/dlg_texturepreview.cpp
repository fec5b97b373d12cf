#include "app/dlg_texturepreview.h"

#include "graphics/bitmap.h"
#include "graphics/bitmapinfo.h"

#include <QPainter>

#include <vector>

ORVETEXTUREPREVIEW::ORVETEXTUREPREVIEW(QWidget* parent) : QWidget(parent)
{
}

QString ORVETEXTUREPREVIEW::Load(const char* storedName)
{
    Picture = QImage();
    update();
    if (!storedName || !*storedName)
        return {};
    const BITMAPHEADER h = ReadBitmapHeader(storedName);
    switch (JudgeBitmap(h))
    {
    case BITMAP_MISSING:
        return QStringLiteral("A fájl nem található.");
    case BITMAP_NOTBITMAP:
        return QStringLiteral("Nem Windows bitkép.");
    case BITMAP_DEPTH:
        return QStringLiteral("%1 bites, nem tölthető be.").arg(h.BitsPerPixel);
    case BITMAP_EMPTY:
        return QStringLiteral("%1 × %2 képpont, nincs mit mutatni.").arg(h.Width).arg(h.Height);
    case BITMAP_TOOLARGE:
        return QStringLiteral("%1 × %2 képpont, túl nagy.").arg(h.Width).arg(h.Height);
    case BITMAP_USABLE:
        break;
    }
    // The loader's own decoding, into a buffer of this picture's size; its
    // rows come bottom row first, as the file stores them.
    std::vector<uint8_t> pixels(size_t(h.Width) * size_t(h.Height) * 4);
    int32_t size[2] = {0, 0};
    LoadBMP(pixels.data(), pixels.size(), storedName, size, 0.0f, 0.0f, 0.0f);
    if (size[0] != h.Width || size[1] != h.Height)
        return QStringLiteral("Nem tölthető be.");
    Picture = QImage(pixels.data(), h.Width, h.Height, QImage::Format_RGBA8888).mirrored();
    return QStringLiteral("%1 × %2 képpont, %3 bites").arg(h.Width).arg(h.Height).arg(h.BitsPerPixel);
}

void ORVETEXTUREPREVIEW::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect area = rect().adjusted(1, 1, -1, -1);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (Picture.isNull())
        return;
    QSize fitted = Picture.size().scaled(area.size(), Qt::KeepAspectRatio);
    if (fitted.isEmpty())
        return;
    QRect target(QPoint(0, 0), fitted);
    target.moveCenter(area.center());

    const int cell = 8;
    painter.setClipRect(target);
    for (int y = target.top(); y <= target.bottom(); y += cell)
        for (int x = target.left(); x <= target.right(); x += cell)
        {
            const bool dark = ((x - target.left()) / cell + (y - target.top()) / cell) % 2;
            painter.fillRect(x, y, cell, cell, dark ? QColor(153, 153, 153) : QColor(204, 204, 204));
        }
    // Texels stay sharp when enlarged, as the view shows them close up.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, fitted.width() < Picture.width());
    painter.drawImage(target, Picture);
}

// A texture as the loader decodes it, so the designer sees what a file name
// in the texture list stands for: black, the colour key, shows as
// transparency over a checkerboard.
#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

class ORVETEXTUREPREVIEW : public QWidget
{
    Q_OBJECT
public:
    explicit ORVETEXTUREPREVIEW(QWidget* parent = nullptr);

    // Decodes the bitmap of a stored texture name (null or "" clears) and
    // answers a line about it: its size and depth, or why it shows nothing.
    // A file the loader would refuse or could not open is not decoded.
    QString Load(const char* storedName);
    // Top row first, colour key pixels with alpha 0; null when nothing shows.
    const QImage& Image() const { return Picture; }

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    QImage Picture;
};

#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QWidget>

#include <vector>

/// What the tests of the views do with pictures, pixel by pixel and without a painter of their own.
namespace picture {

/// Colour of what a widget has not painted.
constexpr QRgb kUnpainted = 0xff123456;
/// Colour of the overview's rectangles.
constexpr QRgb kYellow = 0xffffff00;

/// The widget as it paints itself, without its background.
inline QImage of(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_RGB32);
    image.fill(kUnpainted);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// A frame whose grey values tell neighbours apart in both directions: 7 x + 31 y, modulo 251.
inline unsigned char greyAt(int x, int y)
{
    return static_cast<unsigned char>((7 * x + 31 * y) % 251);
}

inline std::vector<unsigned char> frame(int width, int height)
{
    std::vector<unsigned char> bytes;
    bytes.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bytes.push_back(greyAt(x, y));
    return bytes;
}

inline QRgb grey(int value)
{
    return qRgb(value, value, value);
}

inline QImage plain(QSize size, QRgb color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// What a view of this size shows of frame(): the pixels from `first` on, each `scale` times in both
/// directions. Beyond a frame of `sides` nothing is painted.
inline QImage enlarged(QSize view, int scale, QPoint first, QSize sides = { 1280, 960 })
{
    QImage image = plain(view, kUnpainted);
    for (int y = 0; y < view.height(); ++y)
        for (int x = 0; x < view.width(); ++x) {
            const QPoint pixel = first + QPoint(x / scale, y / scale);
            if (pixel.x() < sides.width() && pixel.y() < sides.height())
                image.setPixel(x, y, grey(greyAt(pixel.x(), pixel.y())));
        }
    return image;
}

/// Lines with both ends, clipped to the picture.
inline void horizontal(QImage& image, int x1, int x2, int y, QRgb color)
{
    for (int x = x1; x <= x2; ++x)
        if (image.rect().contains(x, y))
            image.setPixel(x, y, color);
}

inline void vertical(QImage& image, int x, int y1, int y2, QRgb color)
{
    for (int y = y1; y <= y2; ++y)
        if (image.rect().contains(x, y))
            image.setPixel(x, y, color);
}

/// Outline through these four pixel columns and rows.
inline void outline(QImage& image, int left, int top, int right, int bottom, QRgb color)
{
    horizontal(image, left, right, top, color);
    horizontal(image, left, right, bottom, color);
    vertical(image, left, top, bottom, color);
    vertical(image, right, top, bottom, color);
}

inline void outline(QImage& image, const QRect& pixels, QRgb color)
{
    outline(image, pixels.left(), pixels.top(), pixels.right(), pixels.bottom(), color);
}

/// The overview: the whole frame as a rectangle from (0, 0) to this pixel, and in it the part on show.
inline void addOverview(QImage& image, QPoint last, const QRect& shown)
{
    outline(image, 0, 0, last.x(), last.y(), kYellow);
    outline(image, shown, kYellow);
}

/// Where two pictures differ first, as a text for the report; empty when they are equal.
inline QString difference(const QImage& actual, const QImage& expected)
{
    if (actual.size() != expected.size())
        return "the sizes differ";
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x)
            if (actual.pixel(x, y) != expected.pixel(x, y))
                return QString("at %1,%2: %3 instead of %4")
                    .arg(x)
                    .arg(y)
                    .arg(actual.pixel(x, y), 8, 16)
                    .arg(expected.pixel(x, y), 8, 16);
    return {};
}

} // namespace picture

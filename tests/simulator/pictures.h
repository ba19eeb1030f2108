#pragma once

#include <QByteArray>

// Sums over pictures of 8-bit pixels.

double mean(const QByteArray& picture);

/// Mean difference of two pictures in grey values: of equal scenes it is that of their noise. Pictures of
/// different sizes differ by 1e9.
double difference(const QByteArray& one, const QByteArray& other);

QByteArray rowsReversed(const QByteArray& picture, int width);
QByteArray columnsReversed(const QByteArray& picture, int width);

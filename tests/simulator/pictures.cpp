#include "tests/simulator/pictures.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

double mean(const QByteArray& picture)
{
    const auto* begin = reinterpret_cast<const uchar*>(picture.constData());
    return std::accumulate(begin, begin + picture.size(), 0.0) / picture.size();
}

double difference(const QByteArray& one, const QByteArray& other)
{
    double sum = 0.0;
    for (int i = 0; i < one.size(); ++i) {
        sum += std::abs(static_cast<uchar>(one.at(i)) - static_cast<uchar>(other.at(i)));
    }
    return one.size() == other.size() ? sum / one.size() : 1e9;
}

QByteArray rowsReversed(const QByteArray& picture, int width)
{
    QByteArray turned;
    for (int at = picture.size() - width; at >= 0; at -= width) {
        turned += picture.mid(at, width);
    }
    return turned;
}

QByteArray columnsReversed(const QByteArray& picture, int width)
{
    QByteArray turned = rowsReversed(picture, width);
    std::reverse(turned.begin(), turned.end());
    return turned;
}

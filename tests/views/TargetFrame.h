#pragma once

#include <algorithm>
#include <vector>

/// A frame of the target slide, drawn byte by byte: a bright field with dark square marks of an even side, so
/// that their centres lie between two pixels and are truncated to the left and upper of them.
class TargetFrame {
public:
    static constexpr unsigned char kBright = 170;
    static constexpr unsigned char kDark = 40;

    TargetFrame(int width, int height, int channels = 1)
        : m_width(width)
        , m_height(height)
        , m_channels(channels)
        , m_bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)
                  * static_cast<std::size_t>(channels),
              kBright)
    {
    }

    /// A mark from (left, top) on, in one channel or (-1) in all.
    TargetFrame& mark(int left, int top, int side, unsigned char grey = kDark, int channel = -1)
    {
        for (int y = std::max(top, 0); y < std::min(top + side, m_height); ++y)
            for (int x = std::max(left, 0); x < std::min(left + side, m_width); ++x)
                for (int c = 0; c < m_channels; ++c)
                    if (channel < 0 || channel == c)
                        m_bytes[index(x, y, c)] = grey;
        return *this;
    }

    unsigned char at(int x, int y, int channel) const { return m_bytes[index(x, y, channel)]; }

    unsigned char* data() { return m_bytes.data(); }
    int width() const { return m_width; }
    int height() const { return m_height; }
    int bits() const { return 8 * m_channels; }

private:
    std::size_t index(int x, int y, int channel) const
    {
        const auto pixel
            = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
        return pixel * static_cast<std::size_t>(m_channels) + static_cast<std::size_t>(channel);
    }

    int m_width;
    int m_height;
    int m_channels;
    std::vector<unsigned char> m_bytes;
};

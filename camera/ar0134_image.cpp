#include "camera/ar0134_image.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <QDebug>

#include <algorithm>
#include <array>

namespace ar0134 {
namespace {

/// The library's format_mode, by number, so that a value that it does not know can be told too.
enum Format {
    FORMAT_RAW = 0,
    FORMAT_RGB = 1,
    FORMAT_YUV = 2,
    FORMAT_JPG = 3,
    FORMAT_MONO = 4,
    FORMAT_RAW_DUAL = 5,
    FORMAT_MONO_DUAL = 6,
};

/// Orders of the colour filter by sub-format. OpenCV names an order by the second row of the filter.
constexpr std::array<cv::ColorConversionCodes, 4> kBayerCodes { {
    cv::COLOR_BayerBG2BGR, // RG
    cv::COLOR_BayerGB2BGR, // GR
    cv::COLOR_BayerGR2BGR, // GB
    cv::COLOR_BayerRG2BGR, // BG
} };

/// Largest side that is believed of a frame, far above any sensor of this family.
constexpr Uint32 kMaxSide = 16384;

cv::Mat grayToMat(const Uint8* bytes, const ArduCamCfg& config)
{
    const int width = static_cast<int>(config.u32Width);
    const int height = static_cast<int>(config.u32Height);
    return config.u8PixelBytes == 2 ? dBytesToMat(bytes, config.u8PixelBits, width, height)
                                    : BytestoMat(bytes, width, height);
}

cv::Mat dualToMat(const ArduCamOutData& frame, int code)
{
    const ArduCamCfg& config = frame.stImagePara;
    const std::vector<Uint8> apart = separationImage(frame.pu8ImageData, static_cast<int>(config.u32Width),
        static_cast<int>(config.u32Height), config.u8PixelBytes == 2 ? 2 : 1);
    cv::Mat result;
    cv::cvtColor(grayToMat(apart.data(), config), result, code);
    return result;
}

/// The buffer holds all the bytes that the format reads of it.
bool isWhole(const ArduCamOutData& frame, int format)
{
    const ArduCamCfg& config = frame.stImagePara;
    if (frame.pu8ImageData == nullptr || config.u32Size == 0) {
        return false;
    }
    if (format == FORMAT_JPG) {
        return true;
    }
    if (format == FORMAT_YUV && config.u32Width % 2 != 0) {
        return false; // the colours of a pair lack their second pixel
    }
    const bool twoBytes = format == FORMAT_RGB || format == FORMAT_YUV || config.u8PixelBytes == 2;
    const std::size_t needed = std::size_t(config.u32Width) * config.u32Height * (twoBytes ? 2U : 1U);
    return config.u32Width <= kMaxSide && config.u32Height <= kMaxSide && needed > 0
        && config.u32Size >= needed;
}

} // namespace

// The cv::Mat headers below only read: OpenCV has no header on constant bytes.
cv::Mat BytestoMat(const Uint8* bytes, int width, int height)
{
    return cv::Mat(height, width, CV_8UC1, const_cast<Uint8*>(bytes)).clone();
}

cv::Mat dBytesToMat(const Uint8* bytes, int bits, int width, int height)
{
    cv::Mat result(height, width, CV_8UC1);
    const int shift = std::clamp(bits, 8, 16) - 8;
    const std::size_t pixels = result.total();
    uchar* out = result.data;
    for (std::size_t i = 0; i < pixels; ++i) {
        const int value = bytes[2 * i] | bytes[2 * i + 1] << 8;
        out[i] = static_cast<uchar>(value >> shift & 0xFF);
    }
    return result;
}

cv::Mat RGB565toMat(const Uint8* bytes, int width, int height)
{
    cv::Mat result;
    cv::cvtColor(cv::Mat(height, width, CV_8UC2, const_cast<Uint8*>(bytes)), result, cv::COLOR_BGR5652BGR);
    return result;
}

cv::Mat YUV422toMat(const Uint8* bytes, int width, int height)
{
    cv::Mat result;
    cv::cvtColor(cv::Mat(height, width, CV_8UC2, const_cast<Uint8*>(bytes)), result, cv::COLOR_YUV2BGR_YUYV);
    return result;
}

cv::Mat JPGToMat(const Uint8* bytes, Uint32 length)
{
    const cv::Mat buffer(1, static_cast<int>(length), CV_8UC1, const_cast<Uint8*>(bytes));
    return cv::imdecode(buffer, cv::IMREAD_UNCHANGED);
}

std::vector<Uint8> separationImage(const Uint8* bytes, int width, int height, int pixelBytes)
{
    const auto size = static_cast<std::size_t>(pixelBytes);
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    const std::size_t half = (columns + 1) / 2;
    std::vector<Uint8> apart(columns * rows * size);
    for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t x = 0; x < columns; ++x) {
            const std::size_t to = x / 2 + (x % 2) * half;
            std::copy_n(bytes + (y * columns + x) * size, size, apart.data() + (y * columns + to) * size);
        }
    }
    return apart;
}

cv::Mat toMat(const ArduCamOutData& frame, int subFormat)
{
    const ArduCamCfg& config = frame.stImagePara;
    const int format = static_cast<int>(config.emImageFmtMode);
    if (!isWhole(frame, format)) {
        return {};
    }
    const int width = static_cast<int>(config.u32Width);
    const int height = static_cast<int>(config.u32Height);
    try {
        switch (format) {
        case FORMAT_RAW:
        case FORMAT_MONO:
            return grayToMat(frame.pu8ImageData, config);
        case FORMAT_RGB:
            return RGB565toMat(frame.pu8ImageData, width, height);
        case FORMAT_YUV:
            return YUV422toMat(frame.pu8ImageData, width, height);
        case FORMAT_JPG:
            return JPGToMat(frame.pu8ImageData, config.u32Size);
        case FORMAT_RAW_DUAL:
            return dualToMat(frame, kBayerCodes[static_cast<std::size_t>(subFormat & 3)]);
        case FORMAT_MONO_DUAL:
            return dualToMat(frame, cv::COLOR_GRAY2BGR);
        default:
            qDebug() << Q_FUNC_INFO << "unknown format" << format;
        }
    } catch (const cv::Exception& exception) {
        qDebug() << Q_FUNC_INFO << exception.what();
    }
    return {};
}

} // namespace ar0134

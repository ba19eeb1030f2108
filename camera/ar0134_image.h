#pragma once

#include <ArduCamLib.h>

#include <opencv2/core.hpp>

#include <vector>

// From the bytes of an ArduCam board to a picture. Pure functions: a buffer holds `width` x `height` pixels
// without padding, and every picture that is returned owns its pixels, since the library uses its buffer
// again.
namespace ar0134 {

/// One byte a pixel: CV_8UC1.
cv::Mat BytestoMat(const Uint8* bytes, int width, int height);

/// Two bytes a pixel, low byte first, of which `bits` (8 to 16) are valid: CV_8UC1 of their top eight bits.
cv::Mat dBytesToMat(const Uint8* bytes, int bits, int width, int height);

/// Two bytes a pixel, low byte first, with five bits of red on top, six of green, five of blue: CV_8UC3, BGR.
cv::Mat RGB565toMat(const Uint8* bytes, int width, int height);

/// Y U Y V for each two pixels, `width` even: CV_8UC3, BGR.
cv::Mat YUV422toMat(const Uint8* bytes, int width, int height);

/// A compressed picture of `length` bytes; empty when it cannot be decoded.
cv::Mat JPGToMat(const Uint8* bytes, Uint32 length);

/// Takes the pixels of two sensors, which come in turn, apart: in each row those of the first sensor to the
/// left half, those of the second to the right half.
std::vector<Uint8> separationImage(const Uint8* bytes, int width, int height, int pixelBytes);

/// The picture of a delivered frame by its format; `subFormat` (0 RG, 1 GR, 2 GB, 3 BG) is the order of the
/// colour filter where the format has one. Empty when the frame holds no whole picture or its format is
/// unknown.
cv::Mat toMat(const ArduCamOutData& frame, int subFormat);

} // namespace ar0134

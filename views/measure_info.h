#pragma once

#include <QMetaType>

/// What two marks of a target slide tell about the optics of the instrument, all in single precision. The
/// still image fills the first six values, the counting volumes of the slide types are filled by the window.
struct measure_info {
    float length_pixel = 0.0F; ///< distance of the two points, image pixels
    float length_mm = 0.0F; ///< that distance, rounded to 0.1 mm
    float pixel_size = 0.0F; ///< um per image pixel
    float magnification = 0.0F; ///< optical magnification, two decimals
    float area_mm = 0.0F; ///< one full camera frame on the slide, mm^2
    float volume_factor = 0.0F; ///< volume of one frame, mm^3, five decimals
    float volume_factor_1ch = 0.0F;
    float volume_factor_2ch = 0.0F;
    float volume_factor_3ch = 0.0F;
    float volume_factor_8ch = 0.0F;
    float volume_factor_prisma = 0.0F;
    float volume_factor_prisma_max = 0.0F;
};
Q_DECLARE_METATYPE(measure_info)

/// Why no mark was taken at the search position.
enum TargetingError : int {
    TARGETING_NO_CIRCLE = 0, ///< no contour in the search window
    TARGETING_TOO_MANY_CIRCLES = 1, ///< more than one contour in the search window
};
Q_DECLARE_METATYPE(TargetingError)

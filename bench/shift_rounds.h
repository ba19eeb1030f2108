#pragma once

#include <opencv2/core.hpp>

/// The pictures of one field and the literal rounds of the adaptive search over them.
struct ShiftField {
    ShiftField();

    cv::Mat reference; ///< bright field, two levels
    cv::Mat gf;
    cv::Mat rf;
};

/// Seven measurements of both channels by plain library calls, the best kept.
void searchLiterally(ShiftField& field);

/// alg_pixelShift's adaptive search.
void searchBuilt(ShiftField& field);

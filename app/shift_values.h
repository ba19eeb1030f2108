#pragma once

#include <array>

/// Fields that the pixel shift calibration walks.
constexpr int kShiftFields = 12;

/// Corrections of one field in pixels: GFP X, GFP Y, RFP X, RFP Y.
using ShiftValues = std::array<float, 4>;
using FieldShifts = std::array<ShiftValues, kShiftFields>;

#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Position in motor steps and focus value of each frame of a scan, in order of arrival.
using FocusSamples = std::vector<std::pair<int, double>>;

/// Index of the sample with the largest focus value; of equal ones the earliest, which in a downward scan is
/// the highest position. When no value is 0.0 or more no frame could be measured, and the result is
/// `fallbackIndex`, which is not centred on the reference. The walk is logged, each line behind `label`.
std::size_t bestSample(const FocusSamples& samples, std::size_t fallbackIndex, const char* label);

#pragma once

// After a move or a change of the light, a frame counts when one exposure and this time have passed: what the
// running loop delivers then was exposed after the change. In ms, added to the exposure.

/// Of a focus walk, which moves Z alone and by small steps.
constexpr int kFocusSettlingMs = 50;

/// Of a still picture, for which LED and filter wheel may just have changed.
constexpr int kStillSettlingMs = 250;

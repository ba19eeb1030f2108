#pragma once

/// States of the autofocus sequence, as `MainWindow::m_autofocusState` holds them. The reply to a Z move
/// advances the sequence by its state; 5 and 8 are not used.
enum AutofocusState : int {
    AF_IDLE = 0, ///< no autofocus running
    AF_FINAL_APPROACH = 1, ///< moving to the best position
    AF_FINAL_OFFSET = 2, ///< moving the last fine step down
    AF_STEP1_TO_START = 3, ///< moving to the start of the coarse scan
    AF_STEP1_SCAN = 4,
    AF_STEP2_TO_START = 6, ///< moving to the start of the fine scan
    AF_STEP2_SCAN = 7,
    AF_STEP3_TO_START = 9, ///< dormant: nothing starts the third step
    AF_STEP3_SCAN = 10,
};

/// One step of the focus search: a scan of equal stage steps with a frame after each. Lengths in motor steps.
struct AutofocusStep {
    int number; ///< as in the log and in the names of the debug files
    AutofocusState toStart; ///< state while the stage moves to the start
    AutofocusState scan; ///< state during the scan
    int startOffset; ///< start position, from the reference
    const char* direction; ///< of the scan
    int step; ///< size of a scan step
    int frames; ///< frames taken
    int fallbackIndex; ///< sample taken when no frame could be measured
    const char* folder; ///< of the debug output; null: none
};

/// The finest step of the search, and the distance below best focus at which a run leaves the stage.
constexpr int kFineStep = 115;

constexpr AutofocusStep kAutofocusSteps[] = {
    { 1, AF_STEP1_TO_START, AF_STEP1_SCAN, +3680, "MINUS", 460, 15, 10, "step1" },
    { 2, AF_STEP2_TO_START, AF_STEP2_SCAN, +460, "MINUS", kFineStep, 7, 5, "step2" },
    { 3, AF_STEP3_TO_START, AF_STEP3_SCAN, -460, "PLUS", kFineStep, 7, 2, nullptr },
};

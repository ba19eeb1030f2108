#pragma once

#include "tests/platform/ScriptedBoard.h"

#include <ArduCamLib.h>

#include <QObject>

#include <memory>

/// What the test classes of the ArduCam library have in common: each test function has a scripted board of
/// its own. Its pictures are small, which keeps the tests short; the library takes any size.
class ArduCamTest : public QObject {
    Q_OBJECT

protected slots:
    void init();
    void cleanup();

protected:
    static constexpr Uint32 kWidth = 8;
    static constexpr Uint32 kHeight = 4;
    static constexpr std::size_t kPixels = std::size_t(kWidth) * kHeight;

    void open();

    /// Triggers and takes the picture; null when there is none.
    ArduCamOutData* picture();

    std::unique_ptr<ScriptedBoard>
        m_board; ///< picture by picture its grey value is the number of the picture
    ArduCamCfg m_config {}; ///< of such pictures
    ArduCamHandle m_handle = nullptr;
};

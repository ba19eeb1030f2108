#include "Runtime.h"

#include <pylon/Device.h>

#include <atomic>

namespace Pylon {

namespace {

std::atomic<int> g_initialised { 0 };

} // namespace

void PylonInitialize()
{
    ++g_initialised;
}

void PylonTerminate(bool /*ShutDownLogging*/)
{
    --g_initialised;
}

void requireRuntime()
{
    if (g_initialised <= 0)
        throw GenICam::RuntimeException(
            "Pylon has not been initialized. PylonInitialize must be called first.");
}

} // namespace Pylon

#pragma once

namespace Pylon {

/// Throws GenICam::GenericException unless the library is initialised at the moment.
void requireRuntime();

} // namespace Pylon

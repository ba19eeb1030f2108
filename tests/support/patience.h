#pragma once

#include <functional>

class QObject;

/// Waiting for evidence, with a limit, and acting a little later.
namespace patience {

/// A limit in ms that is stretched where the program runs slower than usual: under a sanitizer, and by the
/// factor in the environment variable QR9_PATIENCE on a slow machine.
int limit(int ms);

/// Runs the event loop until `evidence` holds, at most limit(ms). True when it holds.
bool waitFor(const std::function<bool()>& evidence, int ms = 5000);

/// Calls `action` from the event loop in `ms` milliseconds, unless `context` is gone by then.
void later(int ms, QObject* context, std::function<void()> action);

} // namespace patience

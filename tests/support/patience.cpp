#include "tests/support/patience.h"

#include <QTest>
#include <QTimer>

#include <utility>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kBuildFactor = 4;
#else
constexpr int kBuildFactor = 1;
#endif

} // namespace

int patience::limit(int ms)
{
    bool ok = false;
    const int machineFactor = qEnvironmentVariableIntValue("QR9_PATIENCE", &ok);
    return ms * kBuildFactor * (ok && machineFactor > 0 ? machineFactor : 1);
}

bool patience::waitFor(const std::function<bool()>& evidence, int ms)
{
    return QTest::qWaitFor(evidence, limit(ms));
}

void patience::later(int ms, QObject* context, std::function<void()> action)
{
    auto* timer = new QTimer(context);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, action = std::move(action)] {
        timer->deleteLater();
        action();
    });
    timer->start(ms);
}

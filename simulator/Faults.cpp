#include "simulator/Faults.h"

#include <QJsonArray>

#include <algorithm>
#include <array>

namespace qr9::sim {

namespace {

/// What a fault needs as its value.
enum class Need : std::uint8_t {
    Nothing,
    Duration, ///< ms, 0 or more
    Sizes, ///< a number above 0, or a list of them
    Bytes, ///< a text of Latin-1 characters
    Text,
    TextOrCode, ///< nothing, a text, or a number above 0
    ErrorOrCode, ///< a number below 0 (of the wire) or above 0 (of a library)
};

struct Row {
    const char* name;
    FaultKind kind;
    Need need;
    const char* wants; ///< for the message
};

constexpr std::array kRows {
    Row { "cut", FaultKind::Cut, Need::Sizes, "a size above 0 or a list of sizes" },
    Row { "merge", FaultKind::Merge, Need::Nothing, "" },
    Row { "late", FaultKind::Late, Need::Duration, "a number of ms" },
    Row { "lose", FaultKind::Lose, Need::Nothing, "" },
    Row { "nul", FaultKind::Nul, Need::Nothing, "" },
    Row { "noise", FaultKind::Noise, Need::Bytes, "a text of Latin-1 characters" },
    Row { "silent", FaultKind::Silent, Need::Nothing, "" },
    Row { "double", FaultKind::Double, Need::Nothing, "" },
    Row { "grabFails", FaultKind::GrabFails, Need::TextOrCode, "a text or a number above 0" },
    Row { "lateFrame", FaultKind::LateFrame, Need::Duration, "a number of ms" },
    Row { "loseFrame", FaultKind::LoseFrame, Need::Nothing, "" },
    Row { "unplug", FaultKind::Unplug, Need::Nothing, "" },
    Row { "missingFeature", FaultKind::MissingFeature, Need::Text, "the name of a feature" },
    Row { "openFails", FaultKind::OpenFails, Need::Nothing, "" },
    Row { "cameraError", FaultKind::CameraError, Need::ErrorOrCode, "a number other than 0" },
};

bool isSize(const QJsonValue& value)
{
    return value.isDouble() && value.toInt() > 0;
}

bool isLatin1(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar letter) { return letter.unicode() < 256; });
}

bool suits(const QJsonValue& value, Need need)
{
    switch (need) {
    case Need::Nothing:
        return true;
    case Need::Duration:
        return value.isDouble() && value.toDouble() >= 0.0;
    case Need::Sizes: {
        const QJsonArray sizes = value.toArray();
        return isSize(value) || (!sizes.isEmpty() && std::all_of(sizes.begin(), sizes.end(), isSize));
    }
    case Need::Bytes:
        return value.isString() && isLatin1(value.toString());
    case Need::Text:
        return value.isString() && !value.toString().isEmpty();
    case Need::TextOrCode:
        return value.isUndefined() || value.isNull() || value.isString() || isSize(value);
    case Need::ErrorOrCode:
        return value.isDouble() && value.toInt() != 0;
    }
    return false;
}

} // namespace

QString Faults::arm(const QJsonObject& request)
{
    const QString name = request.value("name").toString();
    const auto row = std::find_if(kRows.begin(), kRows.end(),
        [&name](const Row& candidate) { return name == QLatin1String(candidate.name); });
    if (row == kRows.end()) {
        return QStringLiteral("no fault is called \"%1\"").arg(name);
    }
    const QJsonValue value = request.value("value");
    if (!suits(value, row->need)) {
        return QStringLiteral("\"%1\" needs as its value %2").arg(name, QLatin1String(row->wants));
    }
    const int count = request.value("count").toInt(1);
    if (count < 0) {
        return QStringLiteral("\"count\" is below 0");
    }
    m_armed.push_back({ row->kind, request.value("match").toString(), count, value });
    return {};
}

std::optional<QJsonValue> Faults::take(FaultKind kind, const QString& subject)
{
    const auto found = std::find_if(m_armed.begin(), m_armed.end(),
        [&](const Armed& fault) { return fault.kind == kind && subject.startsWith(fault.match); });
    if (found == m_armed.end()) {
        return std::nullopt;
    }
    QJsonValue value = found->value;
    if (found->left > 0 && --found->left == 0) {
        m_armed.erase(found);
    }
    return value;
}

bool Faults::isMissing(const QString& feature) const
{
    return std::any_of(m_armed.begin(), m_armed.end(), [&](const Armed& fault) {
        return fault.kind == FaultKind::MissingFeature && fault.value.toString() == feature;
    });
}

} // namespace qr9::sim

#include "FeatureNodes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Pylon {

namespace {

enum class NodeType { Float, Integer, Boolean, String, Command };

/// Types of the nodes that can be asked for by name; all others are numbers.
struct NamedType {
    const char* name;
    NodeType type;
};
constexpr std::array<NamedType, 8> kNodeTypes { {
    { "Width", NodeType::Integer },
    { "Height", NodeType::Integer },
    { "CenterX", NodeType::Boolean },
    { "CenterY", NodeType::Boolean },
    { "ReverseX", NodeType::Boolean },
    { "ReverseY", NodeType::Boolean },
    { "DeviceModelName", NodeType::String },
    { "TriggerSoftware", NodeType::Command },
} };

NodeType typeOf(const std::string& name)
{
    const auto* const found = std::find_if(
        kNodeTypes.begin(), kNodeTypes.end(), [&name](const NamedType& entry) { return name == entry.name; });
    return found == kNodeTypes.end() ? NodeType::Float : found->type;
}

} // namespace

FeatureNode::FeatureNode(FeatureSource& source, std::string name)
    : m_source(source)
    , m_name(std::move(name))
{
}

GenICam::gcstring FeatureNode::GetName(bool /*fullQualified*/) const
{
    return m_name;
}

const qr9::wire::Feature& FeatureNode::feature() const
{
    const qr9::wire::Feature* const found = m_source.find(m_name);
    if (found == nullptr)
        throw GenICam::AccessException("The node '" + m_name + "' does not exist.");
    return *found;
}

double FeatureNode::read() const
{
    feature();
    return m_source.read(m_name);
}

void FeatureNode::write(double value, bool verify) const
{
    const qr9::wire::Feature& limits = feature();
    const bool inside = value >= limits.min && value <= limits.max;
    if (verify && !inside) {
        throw GenICam::OutOfRangeException("The value " + std::to_string(value) + " of node '" + m_name
            + "' must be between " + std::to_string(limits.min) + " and " + std::to_string(limits.max) + ".");
    }
    m_source.write(m_name, value);
}

GenICam::gcstring StringNode::GetValue(bool /*verify*/, bool /*ignoreCache*/)
{
    return std::string(static_cast<const char*>(feature().text));
}

std::unique_ptr<FeatureNode> makeNode(FeatureSource& source, const std::string& name)
{
    switch (typeOf(name)) {
    case NodeType::Integer:
        return std::make_unique<IntegerNode>(source, name);
    case NodeType::Boolean:
        return std::make_unique<BooleanNode>(source, name);
    case NodeType::String:
        return std::make_unique<StringNode>(source, name);
    case NodeType::Command:
        return std::make_unique<CommandNode>(source, name);
    case NodeType::Float:
        break;
    }
    return std::make_unique<FloatNode>(source, name);
}

} // namespace Pylon

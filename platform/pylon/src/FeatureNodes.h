#pragma once

#include "FeatureSource.h"

#include <pylon/GenApi.h>

#include <memory>

/// Nodes are views of the open camera's features under their names; they keep no values of their own.
namespace Pylon {

/// What all nodes have in common.
class FeatureNode : public GenApi::INode {
public:
    FeatureNode(FeatureSource& source, std::string name);
    GenICam::gcstring GetName(bool fullQualified) const override;

protected:
    FeatureSource& source() const { return m_source; }
    const std::string& name() const { return m_name; }

    const qr9::wire::Feature& feature() const; ///< throws when the camera does not have it
    double read() const;
    void write(double value, bool verify) const; ///< throws when `value` is outside of the limits

private:
    FeatureSource& m_source;
    const std::string m_name;
};

class FloatNode : public FeatureNode, public GenApi::IFloat {
public:
    using FeatureNode::FeatureNode;
    void SetValue(double value, bool verify) override { write(value, verify); }
    double GetValue(bool /*verify*/, bool /*ignoreCache*/) override { return read(); }
    double GetMin() override { return feature().min; }
    double GetMax() override { return feature().max; }
};

class IntegerNode : public FeatureNode, public GenApi::IInteger {
public:
    using FeatureNode::FeatureNode;
    void SetValue(std::int64_t value, bool verify) override { write(static_cast<double>(value), verify); }
    std::int64_t GetValue(bool /*verify*/, bool /*ignoreCache*/) override
    {
        return static_cast<std::int64_t>(read());
    }
    std::int64_t GetMin() override { return static_cast<std::int64_t>(feature().min); }
    std::int64_t GetMax() override { return static_cast<std::int64_t>(feature().max); }
};

class BooleanNode : public FeatureNode, public GenApi::IBoolean {
public:
    using FeatureNode::FeatureNode;
    void SetValue(bool value, bool verify) override { write(value ? 1.0 : 0.0, verify); }
    bool GetValue(bool /*verify*/, bool /*ignoreCache*/) const override { return read() != 0.0; }
};

class StringNode : public FeatureNode, public GenApi::IString {
public:
    using FeatureNode::FeatureNode;
    GenICam::gcstring GetValue(bool verify, bool ignoreCache) override;
};

class CommandNode : public FeatureNode, public GenApi::ICommand {
public:
    using FeatureNode::FeatureNode;
    void Execute(bool /*verify*/) override { source().execute(name()); }
};

template <typename E> class EnumerationNode : public FeatureNode, public GenApi::IEnumerationT<E> {
public:
    using FeatureNode::FeatureNode;
    void SetValue(E value, bool verify) override { write(static_cast<double>(value), verify); }
    E GetValue(bool /*verify*/, bool /*ignoreCache*/) override
    {
        return static_cast<E>(static_cast<int>(read()));
    }
};

/// A node of the type that the feature of this name has.
std::unique_ptr<FeatureNode> makeNode(FeatureSource& source, const std::string& name);

} // namespace Pylon

#pragma once

#include <pylon/GenICam.h>

#include <cstdint>

/// Nodes of a camera: the stand-in's GenApi.
/// Every access asks the camera; it throws GenICam::GenericException when the camera is not open, is gone or
/// does not have the feature, and when a value lies outside of the node's limits.
namespace GenApi_3_0_Basler_pylon_v5_0 {

/// A feature of the camera, of no known type.
struct INode {
    INode() = default;
    INode(const INode&) = delete;
    INode& operator=(const INode&) = delete;
    virtual ~INode() = default;
    virtual GenICam::gcstring GetName(bool FullQualified = false) const = 0;
};

/// A number with limits.
struct IFloat {
    virtual ~IFloat() = default;
    virtual void SetValue(double Value, bool Verify = true) = 0;
    virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
};

/// A whole number with limits.
struct IInteger {
    virtual ~IInteger() = default;
    virtual void SetValue(std::int64_t Value, bool Verify = true) = 0;
    virtual std::int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual std::int64_t GetMin() = 0;
    virtual std::int64_t GetMax() = 0;
};

/// A switch.
struct IBoolean {
    virtual ~IBoolean() = default;
    virtual void SetValue(bool Value, bool Verify = true) = 0;
    virtual bool GetValue(bool Verify = false, bool IgnoreCache = false) const = 0;
};

/// A text that can be read.
struct IString {
    virtual ~IString() = default;
    virtual GenICam::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
};

/// Something that the camera does when told.
struct ICommand {
    virtual ~ICommand() = default;
    virtual void Execute(bool Verify = true) = 0;
};

/// A choice among the entries of E; an entry that the camera does not have is refused.
template <typename E> struct IEnumerationT {
    virtual ~IEnumerationT() = default;
    virtual void SetValue(E Value, bool Verify = true) = 0;
    virtual E GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
};

/// A typed view of a node: null when there is no such node or when it is of another type. Use of a null one
/// throws.
template <typename T> class CPointer {
public:
    CPointer() = default;
    CPointer(INode* node) // NOLINT(google-explicit-constructor): nodes convert as in the library
        : m_view(dynamic_cast<T*>(node))
    {
    }
    bool IsValid() const noexcept { return m_view != nullptr; }
    T* operator->() const
    {
        if (m_view == nullptr)
            throw GenICam::LogicalErrorException("NULL pointer dereferenced");
        return m_view;
    }
    T& operator*() const { return *operator->(); }

private:
    T* m_view = nullptr;
};
using CFloatPtr = CPointer<IFloat>;
using CIntegerPtr = CPointer<IInteger>;
using CBooleanPtr = CPointer<IBoolean>;
using CStringPtr = CPointer<IString>;
using CCommandPtr = CPointer<ICommand>;

/// All nodes of one camera.
struct INodeMap {
    INodeMap() = default;
    INodeMap(const INodeMap&) = delete;
    INodeMap& operator=(const INodeMap&) = delete;
    virtual ~INodeMap() = default;

    /// Null when the camera has no such node. The map owns the node.
    virtual INode* GetNode(const GenICam::gcstring& Name) const = 0;
};

} // namespace GenApi_3_0_Basler_pylon_v5_0
namespace GenApi = GenApi_3_0_Basler_pylon_v5_0;

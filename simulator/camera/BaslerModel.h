#pragma once

#include "simulator/camera/CameraModel.h"

#include <array>

namespace qr9::sim {

/// A Basler USB camera: named nodes with limits. Its family follows from the first two letters of the model
/// name; only the "ac" family has the nodes CenterX and CenterY.
class BaslerModel : public CameraModel {
public:
    explicit BaslerModel(const QString& modelName);

    const char* deviceClass() const override { return wire::kClassPylon; }
    std::vector<wire::Feature> features() const override;
    CameraAnswer setFeature(const QString& name, double value) override;
    CameraAnswer feature(const QString& name) const override;
    CameraAnswer writeRegister(int address, int value) override;
    CameraAnswer readRegister(int address) const override;
    void setStreaming(bool streaming) override { m_bStreaming = streaming; }
    bool isWaitingForTrigger() const override;
    bool isRunningFreely() const override;
    CaptureSettings settings() const override;

private:
    /// The nodes that hold a number, in the order of the table in BaslerModel.cpp.
    enum Node {
        Width,
        Height,
        ExposureTime, ///< us
        Gain, ///< dB
        Gamma,
        ReverseX,
        ReverseY,
        CenterX,
        CenterY,
        ExposureAuto,
        GainAuto,
        PixelFormat,
        OverlapMode,
        TriggerSelector,
        TriggerMode,
        TriggerSource,
        NodeCount,
    };
    struct NodeRow;
    static const std::array<NodeRow, NodeCount> kNodes;

    /// NodeCount when this camera has no such node.
    Node find(const QString& name) const;
    bool has(Node node) const;
    double value(Node node) const { return m_values.at(node); }

    QString m_modelName;
    bool m_bCentring; ///< has CenterX and CenterY
    bool m_bStreaming = false;
    std::array<double, NodeCount> m_values;
};

} // namespace qr9::sim

#pragma once

/// Style sheets by which buttons and fields of the window tell their state. They are part of what the
/// technician is trained on, so they are kept as literals in one place.
namespace styles {

constexpr char kReady[] = "font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)";
constexpr char kBusy[] = "font: 11pt 'Sans Serif'; color : black; background-color : rgb(255, 170, 0)";
constexpr char kNeutral[] = "font: 11pt 'Sans Serif'; color : black; background-color : none";
constexpr char kConnected[] = "font: 11pt 'Sans Serif'; color : gray; background-color : none";

constexpr char kChannelGrey[]
    = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(128, 128, 128)";
constexpr char kChannelGreen[] = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(0, 255, 0)";
constexpr char kChannelRed[] = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(255, 0, 0)";

} // namespace styles

#pragma once

#include <array>
#include <string_view>
#include <variant>

namespace vantrel {

/// How a key's value is stored. A value stored in another way counts as absent.
enum class Encoding {
    flag,     ///< a Boolean
    integer,  ///< a number of the platform's signed `long`
    text,     ///< a string
};

/// A text that the bundle's default string table holds under a key of its own.
struct LocalizedText {
    std::string_view key;
    /// The text when the table has no entry.
    std::string_view fallback = "a path";
};

/// What the view shows for a key that is absent or mistyped; nothing for a key that is never read.
using SetUpDefault = std::variant<std::monostate, bool, long, LocalizedText>;

/// What becomes of the default when the view is set up from a key that is absent or mistyped.
enum class Repair {
    written,        ///< written, and synchronised once with the rest of its group
    writtenLazily,  ///< written; it becomes lasting with the next synchronise of the domain
    ifLowered,      ///< written and synchronised only when the number of cores lowers it
    ifAsked,        ///< written when a stage or gamma default was, or when the encoder limit was missing too
    none,           ///< shown only
};

/// One key of the codec's preferences domain.
struct SettingsKey {
    std::string_view name;
    Encoding encoding;
    SetUpDefault setUpDefault;
    Repair repair;
    /// The outlet of the control that writes the key; several share `ColorProcessingPath`.
    std::string_view outlet;
};

/// The codec's preferences domain.
inline constexpr std::string_view codecApplicationID = "com.vantrel.codec";

namespace keys {

using enum Encoding;
using enum Repair;

// clang-format off
inline constexpr SettingsKey colorMatrix          {"colorMatrix",          flag,    true, written, "colorMatrix"};
inline constexpr SettingsKey whiteBalance         {"whiteBalance",         flag,    true, written, "whiteBalance"};
inline constexpr SettingsKey look                 {"look",                 flag,    true, written, "look"};
inline constexpr SettingsKey gamma                {"gamma",                flag,    true, written, "gamma"};
inline constexpr SettingsKey colorProcessingPath  {"ColorProcessingPath",  integer, 0L, ifAsked, ""};
inline constexpr SettingsKey presentationDemosaic {"8bitDebayer",          integer, 0L, none, "presentationDemosaic"};
inline constexpr SettingsKey renderDemosaic       {"RenderDebayer",        integer, 0L, none, "renderDemosaic"};
inline constexpr SettingsKey qtGamma              {"QTGammaCorrection",    integer, 0L, written, "fmtQTGamma"};
inline constexpr SettingsKey fcpGamma             {"FCPGammaCorrection",   integer, 0L, written, "fmtFCPGamma"};
inline constexpr SettingsKey yuv8                 {"FormatYUV8",           flag,    true, written, "fmtYUV8Bit"};
inline constexpr SettingsKey yuv8Alpha            {"FormatYUV8A",          flag,    true, written, "fmtYUV8BitA"};
inline constexpr SettingsKey yuv16                {"FormatYUV16",          flag,    true, written, "fmtYUV16Bit"};
inline constexpr SettingsKey yuv32                {"FormatYUV32",          flag,    true, written, "fmtYUV32Bit"};
inline constexpr SettingsKey rgb8                 {"FormatRGB8",           flag,    true, written, "fmtRGB8Bit"};
inline constexpr SettingsKey rgb16                {"FormatRGB16",          flag,    true, written, "fmtRGB16Bit"};
inline constexpr SettingsKey rgb32                {"FormatRGB32",          flag,    true, written, "fmtRGB32Bit"};
inline constexpr SettingsKey fcpLetterbox         {"FCPForceLetterBox",    flag,    true, written, "fmtFCPLetterbox"};
inline constexpr SettingsKey dualStream3D         {"FormatDualStream3D",   flag,    {}, none, "fmtDualStream3D"};
inline constexpr SettingsKey cs5SourceSettings    {"PProCS5HasMovieSetup", flag,    true, writtenLazily, "cs5SourceSettings"};
inline constexpr SettingsKey encodeThreads        {"MaxEncodeThreads",     integer, 7L, ifLowered, "encodeThreads"};
inline constexpr SettingsKey showStereoStatus     {"ShowStereoStatusMenu", flag,    true, written, "_showStereoStatus"};
inline constexpr SettingsKey fcpRTEnable          {"fcpRTEnableSwap",      flag,    false, writtenLazily, "fcpRTEnable"};
inline constexpr SettingsKey lutsPath             {"LUTsPath",             text,    LocalizedText{"KVRXLutsPath"}, writtenLazily, "_LUTsPath"};
inline constexpr SettingsKey overridePath         {"OverridePath",         text,    LocalizedText{"KVRXOverridePath"}, writtenLazily, "_overridePath"};
// clang-format on

}  // namespace keys

/// Every key of the domain that the pane reads or writes.
inline constexpr std::array keyTable{
    keys::colorMatrix,
    keys::whiteBalance,
    keys::look,
    keys::gamma,
    keys::colorProcessingPath,
    keys::presentationDemosaic,
    keys::renderDemosaic,
    keys::qtGamma,
    keys::fcpGamma,
    keys::yuv8,
    keys::yuv8Alpha,
    keys::yuv16,
    keys::yuv32,
    keys::rgb8,
    keys::rgb16,
    keys::rgb32,
    keys::fcpLetterbox,
    keys::dualStream3D,
    keys::cs5SourceSettings,
    keys::encodeThreads,
    keys::showStereoStatus,
    keys::fcpRTEnable,
    keys::lutsPath,
    keys::overridePath,
};

}  // namespace vantrel

#pragma once

#include <string_view>
#include <variant>

#include "platform/ShortText.h"
#include "settings/ColorProcessingPath.h"

namespace vantrel {

/// What a key holds and what it means. A value that is stored in another way counts as absent.
enum class Kind {
    flag,   ///< a Boolean
    row,    ///< a number of the platform's signed `long`: a row from 0, of which the low 32 bits count
    item,   ///< likewise: an item of a menu, from 0
    limit,  ///< likewise: an item of a menu that has one for each core
    bits,   ///< likewise: a set of bits
    text,   ///< a string
};

/// A text that the bundle's default string table holds under a key of its own.
struct LocalizedText {
    ShortText key;
    /// The text when the table has no entry.
    ShortText fallback = "a path";
};

/// What is shown for a key that is absent or mistyped; nothing for a control that keeps the interface file's state.
using SetUpDefault = std::variant<std::monostate, bool, long, LocalizedText>;

/// What becomes of a value that can't be shown as it is stored, when the view is set up.
enum class Repair {
    written,        ///< the default is written, and synchronised once with the rest of its group
    writtenLazily,  ///< the default is written; it becomes lasting with the next synchronise of the domain
    ifLowered,      ///< written and synchronised only when the number of cores lowers it
    ifAsked,        ///< written when a stage or gamma default was, or when the encoder limit was missing too
    none,           ///< the default is shown only
};

/// The groups of keys, in the order in which the view is set up.
enum class Group {
    encoder,
    color,  ///< one write of `ColorProcessingPath` and one synchronise for all
    flags,  ///< one synchronise for all
    folders,
    demosaic,
    hosts,     ///< enabled once they show their key
    untouched  ///< never read: the control keeps the interface file's state
};

/// One key of the codec's preferences domain.
struct SettingsKey {
    std::string_view name;
    Kind kind;
    SetUpDefault setUpDefault;
    Repair repair;
    Group group;
    /// The instance variable that holds the control; empty for `ColorProcessingPath`, which several controls share.
    ShortText outlet;
    colorProcessingPath::Part path = {};
};

/// The codec's preferences domain.
inline constexpr char codecApplicationID[] = "com.vantrel.codec";

namespace keys {

using enum Kind;
using enum Repair;
using enum Group;
using colorProcessingPath::DemosaicField;
using colorProcessingPath::Stage;

// clang-format off
inline constexpr SettingsKey table[] = {
    {"MaxEncodeThreads",     limit, 7L,    ifLowered,     encoder,   "encodeThreads"},
    {"ColorProcessingPath",  bits,  0L,    ifAsked,       color,     ""},
    {"whiteBalance",         flag,  true,  written,       color,     "whiteBalance",         Stage{2}},
    {"colorMatrix",          flag,  true,  written,       color,     "colorMatrix",          Stage{1}},
    {"look",                 flag,  true,  written,       color,     "look",                 Stage{3}},
    {"gamma",                flag,  true,  written,       color,     "gamma",                Stage{5}},
    {"QTGammaCorrection",    row,   0L,    written,       color,     "fmtQTGamma"},
    {"FCPGammaCorrection",   row,   0L,    written,       color,     "fmtFCPGamma"},
    {"FormatYUV8",           flag,  true,  written,       flags,     "fmtYUV8Bit"},
    {"FormatYUV8A",          flag,  true,  written,       flags,     "fmtYUV8BitA"},
    {"FormatYUV16",          flag,  true,  written,       flags,     "fmtYUV16Bit"},
    {"FormatYUV32",          flag,  true,  written,       flags,     "fmtYUV32Bit"},
    {"FormatRGB8",           flag,  true,  written,       flags,     "fmtRGB8Bit"},
    {"FormatRGB16",          flag,  true,  written,       flags,     "fmtRGB16Bit"},
    {"FormatRGB32",          flag,  true,  written,       flags,     "fmtRGB32Bit"},
    {"FCPForceLetterBox",    flag,  true,  written,       flags,     "fmtFCPLetterbox"},
    {"ShowStereoStatusMenu", flag,  true,  written,       flags,     "_showStereoStatus"},
    {"LUTsPath",             text,  LocalizedText{"KVRXLutsPath"},     writtenLazily, folders, "_LUTsPath"},
    {"OverridePath",         text,  LocalizedText{"KVRXOverridePath"}, writtenLazily, folders, "_overridePath"},
    {"8bitDebayer",          item,  0L,    none,          demosaic,  "presentationDemosaic", DemosaicField{16}},
    {"RenderDebayer",        item,  0L,    none,          demosaic,  "renderDemosaic",       DemosaicField{20}},
    {"fcpRTEnableSwap",      flag,  false, writtenLazily, hosts,     "fcpRTEnable"},
    {"PProCS5HasMovieSetup", flag,  true,  writtenLazily, hosts,     "cs5SourceSettings"},
    {"FormatDualStream3D",   flag,  {},    none,          untouched, "fmtDualStream3D"},
};
// clang-format on

}  // namespace keys

/// Every key of the domain that the pane reads or writes, in the order in which the view is set up.
inline constexpr const auto& keyTable = keys::table;

/// The row of a key; a name that the table doesn't have is an error of compilation.
consteval const SettingsKey& key(std::string_view name) {
    for (const auto& row : keyTable) {
        if (row.name == name) return row;
    }
    throw "no such key";
}

}  // namespace vantrel

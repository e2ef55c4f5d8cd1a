#pragma once

#include "tests/Preference/MemoryPane.h"
#include "tests/StoredValues.h"

namespace vantrel::memory {

/// A domain in which every key is valid and none holds its default, so that each control shows that its key was read.
inline MemoryPreferences::Domain validDomain() {
    return {
        {"colorMatrix", false},
        {"whiteBalance", false},
        {"look", false},
        {"gamma", false},
        {"ColorProcessingPath", Number{0x300000}},
        {"8bitDebayer", Number{2}},
        {"RenderDebayer", Number{3}},
        {"QTGammaCorrection", Number{1}},
        {"FCPGammaCorrection", Number{1}},
        {"FormatYUV8", false},
        {"FormatYUV8A", false},
        {"FormatYUV16", false},
        {"FormatYUV32", false},
        {"FormatRGB8", false},
        {"FormatRGB16", false},
        {"FormatRGB32", false},
        {"FCPForceLetterBox", false},
        {"FormatDualStream3D", false},
        {"PProCS5HasMovieSetup", false},
        {"MaxEncodeThreads", Number{1}},
        {"ShowStereoStatusMenu", false},
        {"fcpRTEnableSwap", true},
        {"LUTsPath", std::string("/stored/luts")},
        {"OverridePath", std::string("/stored/overrides")},
    };
}

/// A pane whose domain is valid, with default folders of its own, on a machine of three cores. Not yet loaded.
struct ValidPane : MemoryPane {
    explicit ValidPane(std::span<const SettingsKey> table = keyTable) : MemoryPane(table) {
        domain() = validDomain();
        processors.cores = 3;
        bundle.strings = {{"KVRXLutsPath", "/default/luts"}, {"KVRXOverridePath", "/default/overrides"}};
    }
};

/// The line that the journal has for a write of `ColorProcessingPath`.
inline std::string pathWritten(long value) {
    return "write ColorProcessingPath = " + std::to_string(value);
}

}  // namespace vantrel::memory

#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Preferences.h"
#include "platform/ShortText.h"

namespace vantrel {

/// How a number gets into the override metadata before that is written. Both ways end in the same record; every library
/// behind it has to offer both.
enum class OverrideWay {
    throughDictionary,  ///< into the dictionary, which is handed back
    throughInstance,    ///< by the instance that has the dictionary
};

/// One number of the codec's override metadata, under its four-character key.
struct OverrideKey {
    ShortText name;
    OverrideWay way;
    /// The instance variable that holds the control.
    ShortText outlet;
};

namespace overrideKeys {

/// State of the decoder's 4:2:2 to 4:4:4 chroma filter: 0 off, 1 on.
inline constexpr OverrideKey chromaFilter{"CLSF", OverrideWay::throughDictionary, "filter422To444"};

/// The decoder's thread limit; 0 for none.
inline constexpr OverrideKey decodeThreads{"CPUM", OverrideWay::throughInstance, "decodeThreads"};

}  // namespace overrideKeys

/// The override metadata as it was at one moment.
class LoadedOverrides {
public:
    virtual ~LoadedOverrides() = default;

    /// The number under a key, as `intValue` gives it; nothing when there is none.
    virtual std::optional<std::int32_t> number(const OverrideKey& key) = 0;

    /// What stands under a key, of which `number` may make one even where it is a text.
    virtual PreferenceValue stored(const OverrideKey& key) = 0;
};

/// The codec's override metadata: a record of numbers that the codec's programs share, which changes through `write`
/// alone. What others keep in it, under other keys, stays.
class OverrideMetadata {
public:
    /// The record as it is now; empty when there is none yet. Null when it can't be opened or read.
    virtual std::unique_ptr<LoadedOverrides> load() = 0;

    /// Loads the record, changes one number and writes all of it back. Returns false, with the record as it was, when
    /// it can't be opened or written.
    virtual bool write(const OverrideKey& key, std::int32_t number) = 0;

protected:
    ~OverrideMetadata() = default;
};

}  // namespace vantrel

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace vantrel {

/// The codec's override metadata: numbers under four-character keys, with whatever else other programs keep there.
class Metadata {
public:
    virtual ~Metadata() = default;

    /// The number under `key` as a signed 32-bit integer, or nothing.
    virtual std::optional<std::int32_t> objectForKey(std::string_view key) const = 0;

    /// Stores a number under `key`, replacing any entry.
    virtual void setObjectForKey(std::int32_t value, std::string_view key) = 0;
};

/// The override metadata as it was loaded from the codec's override record, and the way back. An instance serves one
/// sequence of calls and is then dropped; dropping it leaves the record alone.
class MetadataDictionary {
public:
    virtual ~MetadataDictionary() = default;

    /// The instance's metadata, or a copy of it: a change counts once it is handed back with `setMetadata`. Never null.
    virtual std::unique_ptr<Metadata> metadata() = 0;

    /// Makes `metadata`, which came from this instance's `metadata`, the instance's own.
    virtual void setMetadata(std::unique_ptr<Metadata> metadata) = 0;

    /// Stores a number under `key` in the instance's metadata, replacing any entry.
    virtual void addObjectWithKey(std::int32_t value, std::string_view key) = 0;

    /// Writes the whole metadata back to the record that it was loaded from. Returns false when that failed.
    virtual bool writeToOverride() = 0;
};

/// Where instances come from.
class MetadataDictionaryClass {
public:
    virtual ~MetadataDictionaryClass() = default;

    /// A fresh instance, filled from the override record as it is now; empty when there is no record yet; null when
    /// the record can't be opened or read.
    virtual std::unique_ptr<MetadataDictionary> initFromOverride() = 0;
};

namespace overrideKeys {

/// State of the decoder's 4:2:2 to 4:4:4 chroma filter: 0 off, 1 on.
inline constexpr std::string_view chromaFilter = "CLSF";

/// The decoder's thread limit; 0 for none.
inline constexpr std::string_view decodeThreads = "CPUM";

}  // namespace overrideKeys

}  // namespace vantrel

#pragma once

#include <map>
#include <string>

#include "overrides/OverrideMetadata.h"
#include "platform/memory/Journal.h"

namespace vantrel::memory {

/// Override metadata in memory. Records "overrides load", "overrides read KEY", and "overrides write KEY = NUMBER".
class MemoryOverrides : public OverrideMetadata {
public:
    using Entries = std::map<std::string, std::int32_t, std::less<>>;

    explicit MemoryOverrides(Journal& journal) : journal_(journal) {}

    std::unique_ptr<LoadedOverrides> load() override {
        journal_.record("overrides load");
        if (!canBeOpened) return nullptr;
        return std::make_unique<Loaded>(*this);
    }

    bool write(const OverrideKey& key, std::int32_t number) override {
        journal_.record("overrides write " + std::string(key.name) + " = " + std::to_string(number));
        if (canBeOpened) record.insert_or_assign(std::string(key.name), number);
        return canBeOpened;
    }

    /// What the record holds.
    Entries record;
    bool canBeOpened = true;
    /// What was loaded and not yet dropped.
    int loaded = 0;

private:
    class Loaded : public LoadedOverrides {
    public:
        explicit Loaded(MemoryOverrides& owner) : owner_(owner), entries_(owner.record) { ++owner_.loaded; }
        ~Loaded() override { --owner_.loaded; }
        Loaded(const Loaded&) = delete;
        Loaded& operator=(const Loaded&) = delete;

        std::optional<std::int32_t> number(const OverrideKey& key) override {
            owner_.journal_.record("overrides read " + std::string(key.name));
            const auto found = entries_.find(std::string(key.name));
            return found == entries_.end() ? std::nullopt : std::optional(found->second);
        }

        PreferenceValue stored(const OverrideKey& key) override {
            const auto number = this->number(key);
            return number ? PreferenceValue(Number{*number}) : Absent{};
        }

    private:
        MemoryOverrides& owner_;
        Entries entries_;
    };

    Journal& journal_;
};

}  // namespace vantrel::memory

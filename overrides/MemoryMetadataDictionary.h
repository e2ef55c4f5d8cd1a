#pragma once

#include <map>
#include <string>

#include "overrides/MetadataDictionary.h"
#include "platform/memory/Journal.h"

namespace vantrel::memory {

/// Override metadata in memory. Records "overrides initFromOverride", "overrides metadata", "metadata objectForKey
/// KEY", "metadata setObject VALUE forKey KEY", "overrides setMetadata", "overrides addObject VALUE withKey KEY" and
/// "overrides writeToOverride".
class MemoryMetadataDictionaryClass : public MetadataDictionaryClass {
public:
    using Entries = std::map<std::string, std::int32_t, std::less<>>;

    explicit MemoryMetadataDictionaryClass(Journal& journal) : journal_(journal) {}

    std::unique_ptr<MetadataDictionary> initFromOverride() override {
        journal_.record("overrides initFromOverride");
        if (!canBeOpened) return nullptr;
        return std::make_unique<Instance>(*this);
    }

    /// What the record holds.
    Entries record;
    bool canBeOpened = true;
    bool canBeWritten = true;
    /// Instances that were made and not yet dropped.
    int liveInstances = 0;

private:
    class Copy : public Metadata {
    public:
        Copy(Journal& journal, Entries entries) : entries(std::move(entries)), journal_(journal) {}

        std::optional<std::int32_t> objectForKey(std::string_view key) const override {
            journal_.record("metadata objectForKey " + std::string(key));
            const auto found = entries.find(key);
            return found == entries.end() ? std::nullopt : std::optional(found->second);
        }

        void setObjectForKey(std::int32_t value, std::string_view key) override {
            journal_.record("metadata setObject " + std::to_string(value) + " forKey " + std::string(key));
            entries.insert_or_assign(std::string(key), value);
        }

        Entries entries;

    private:
        Journal& journal_;
    };

    class Instance : public MetadataDictionary {
    public:
        explicit Instance(MemoryMetadataDictionaryClass& owner) : owner_(owner), entries_(owner.record) {
            ++owner_.liveInstances;
        }
        ~Instance() override { --owner_.liveInstances; }
        Instance(const Instance&) = delete;
        Instance& operator=(const Instance&) = delete;

        std::unique_ptr<Metadata> metadata() override {
            owner_.journal_.record("overrides metadata");
            return std::make_unique<Copy>(owner_.journal_, entries_);
        }

        void setMetadata(std::unique_ptr<Metadata> metadata) override {
            owner_.journal_.record("overrides setMetadata");
            entries_ = static_cast<const Copy&>(*metadata).entries;
        }

        void addObjectWithKey(std::int32_t value, std::string_view key) override {
            owner_.journal_.record("overrides addObject " + std::to_string(value) + " withKey " + std::string(key));
            entries_.insert_or_assign(std::string(key), value);
        }

        bool writeToOverride() override {
            owner_.journal_.record("overrides writeToOverride");
            if (owner_.canBeWritten) owner_.record = entries_;
            return owner_.canBeWritten;
        }

    private:
        MemoryMetadataDictionaryClass& owner_;
        Entries entries_;
    };

    Journal& journal_;
};

}  // namespace vantrel::memory

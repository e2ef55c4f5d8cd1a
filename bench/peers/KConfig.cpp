#include <KConfig>
#include <KConfigGroup>

#include "bench/peers/Peer.h"

// KDE's settings: one file, without those of the desktop that an application inherits.

namespace vantrel::bench {
namespace {

class KDEPeer : public Peer {
public:
    explicit KDEPeer(const QString& file) : config_(file, KConfig::SimpleConfig), group_(&config_, "General") {}

    void fill(const std::vector<Setting>& all) override {
        for (const Setting& setting : all) {
            std::visit([&](const auto& value) { group_.writeEntry(setting.name.c_str(), of(value)); }, setting.value);
        }
        require(config_.sync(), "KConfig::sync");
    }

    void refresh() override { config_.reparseConfiguration(); }

    Value value(std::size_t index) override {
        const char* name = settings[index].name.c_str();
        switch (settings[index].value.index()) {
            case 0:
                return group_.readEntry(name, false);
            case 1:
                return static_cast<long>(group_.readEntry(name, qlonglong{}));
            default:
                return group_.readEntry(name, QString()).toStdString();
        }
    }

    void change(std::size_t index, bool flag) override {
        group_.writeEntry(settings[index].name.c_str(), flag);
        require(config_.sync(), "KConfig::sync");
    }

private:
    static bool of(bool flag) { return flag; }
    static qlonglong of(long number) { return number; }
    static QString of(const std::string& text) { return QString::fromStdString(text); }

    KConfig config_;
    KConfigGroup group_;
};

}  // namespace

Peer* open(const std::string& folder) {
    return new KDEPeer(QString::fromStdString(folder + "/kconfigrc"));
}

}  // namespace vantrel::bench

#include <QSettings>

#include "bench/peers/Peer.h"

// Qt's settings, in the text form that they have on Unix.

namespace vantrel::bench {
namespace {

class QtPeer : public Peer {
public:
    explicit QtPeer(const QString& file) : settings_(file, QSettings::IniFormat) {}

    void fill(const std::vector<Setting>& all) override {
        for (const Setting& setting : all) {
            std::visit([&](const auto& value) { settings_.setValue(QString::fromStdString(setting.name), of(value)); },
                       setting.value);
        }
        synchronize();
    }

    void refresh() override { synchronize(); }

    Value value(std::size_t index) override {
        const auto found = settings_.value(QString::fromStdString(settings[index].name));
        require(found.isValid(), "a value");
        switch (settings[index].value.index()) {
            case 0:
                return found.toBool();
            case 1:
                return static_cast<long>(found.toLongLong());
            default:
                return found.toString().toStdString();
        }
    }

    void change(std::size_t index, bool flag) override {
        settings_.setValue(QString::fromStdString(settings[index].name), flag);
        synchronize();
    }

private:
    static QVariant of(bool flag) { return flag; }
    static QVariant of(long number) { return static_cast<qlonglong>(number); }
    static QVariant of(const std::string& text) { return QString::fromStdString(text); }

    void synchronize() {
        settings_.sync();
        require(settings_.status() == QSettings::NoError, "QSettings::sync");
    }

    QSettings settings_;
};

}  // namespace

Peer* open(const std::string& folder) {
    return new QtPeer(QString::fromStdString(folder + "/qsettings.ini"));
}

}  // namespace vantrel::bench

#include <dconf.h>
// Defines the access to settings by a backend's name.
#define G_SETTINGS_ENABLE_BACKEND
#include <gio/gio.h>
#include <gio/gsettingsbackend.h>

#include <cstring>

#include "bench/peers/Peer.h"

// GNOME's settings with dconf behind them: its service does the writing, on the session bus that the environment names,
// in whose folders the store is. The schema is that of `schema.py`.

namespace vantrel::bench {
namespace {

GVariant* of(bool flag) {
    return g_variant_new_boolean(flag);
}
GVariant* of(long number) {
    return g_variant_new_int64(number);
}
GVariant* of(const std::string& text) {
    return g_variant_new_string(text.c_str());
}

class GNOMEPeer : public Peer {
public:
    GNOMEPeer() : settings_(g_settings_new("com.vantrel.bench")) {
        const char* backend = G_OBJECT_TYPE_NAME(g_settings_backend_get_default());
        require(std::strcmp(backend, "DConfSettingsBackend") == 0, "dconf as the backend");
    }

    void fill(const std::vector<Setting>& all) override {
        DConfChangeset* changes = dconf_changeset_new();
        for (std::size_t index = 0; index < all.size(); ++index) {
            // A folder of dconf's is for one program's settings: what it costs grows with its square.
            std::string path = "/com/vantrel/bench/";
            if (index >= settings.size()) path += "program-" + std::to_string(index / 100) + "/";
            path += all[index].name;
            std::visit([&](const auto& value) { dconf_changeset_set(changes, path.c_str(), of(value)); },
                       all[index].value);
        }
        DConfClient* client = dconf_client_new();
        GError* error = nullptr;
        dconf_client_change_sync(client, changes, nullptr, nullptr, &error);
        require(!error, error ? error->message : "");
        g_object_unref(client);
        dconf_changeset_unref(changes);
    }

    void refresh() override {}  // each read asks dconf

    Value value(std::size_t index) override {
        const char* name = settings[index].name.c_str();
        switch (settings[index].value.index()) {
            case 0:
                return g_settings_get_boolean(settings_, name) != FALSE;
            case 1:
                return static_cast<long>(g_settings_get_int64(settings_, name));
            default: {
                char* text = g_settings_get_string(settings_, name);
                std::string copy(text);
                g_free(text);
                return copy;
            }
        }
    }

    void change(std::size_t index, bool flag) override {
        require(g_settings_set_boolean(settings_, settings[index].name.c_str(), flag), "g_settings_set_boolean");
        g_settings_sync();
    }

private:
    GSettings* settings_;
};

}  // namespace

Peer* open(const std::string&) {
    return new GNOMEPeer;
}

}  // namespace vantrel::bench

#import <Foundation/Foundation.h>

#include "bench/peers/Peer.h"

// GNUstep's own settings, in the folder that GNUSTEP_CONFIG_FILE names.

namespace vantrel::bench {
namespace {

NSString *of(const std::string &text) {
    return [NSString stringWithUTF8String:text.c_str()];
}
NSNumber *of(bool flag) {
    return [NSNumber numberWithBool:flag];
}
NSNumber *of(long number) {
    return [NSNumber numberWithLong:number];
}

class GNUstepPeer : public Peer {
   public:
    GNUstepPeer() : pool_([NSAutoreleasePool new]) {
        [[NSProcessInfo processInfo] setProcessName:of(domain)];
        defaults_ = [NSUserDefaults standardUserDefaults];
    }

    void fill(const std::vector<Setting> &all) override {
        NSMutableDictionary *values = [NSMutableDictionary dictionary];
        for (const Setting &setting : all) {
            std::visit([&](const auto &value) { [values setObject:of(value) forKey:of(setting.name)]; }, setting.value);
        }
        [defaults_ setPersistentDomain:values forName:of(domain)];
        require([defaults_ synchronize], "synchronize");
    }

    void refresh() override { [defaults_ synchronize]; }

    Value value(std::size_t index) override {
        NSString *name = of(settings[index].name);
        require([defaults_ objectForKey:name] != nil, "a value");
        switch (settings[index].value.index()) {
            case 0:
                return [defaults_ boolForKey:name] != NO;
            case 1:
                return static_cast<long>([defaults_ integerForKey:name]);
            default:
                return std::string([[defaults_ stringForKey:name] UTF8String]);
        }
    }

    void change(std::size_t index, bool flag) override {
        [defaults_ setBool:flag forKey:of(settings[index].name)];
        require([defaults_ synchronize], "synchronize");
    }

   private:
    inline static const std::string domain = "com.vantrel.codec";

    NSAutoreleasePool *pool_;
    NSUserDefaults *defaults_;
};

}  // namespace

Peer *open(const std::string &) {
    return new GNUstepPeer;
}

}  // namespace vantrel::bench

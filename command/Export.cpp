#include <iostream>

#include "command/Commands.h"

namespace vantrel {
namespace {

/// A property list in XML, a line for each element.
class PropertyListWriter {
public:
    explicit PropertyListWriter(PropertyLists& propertyLists) : propertyLists_(propertyLists) {}

    std::string list(const Node& top) {
        text_ =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
            "<plist version=\"1.0\">\n";
        write(top, "");
        return text_ + "</plist>\n";
    }

private:
    void write(const Node& node, const std::string& indentation) {
        const std::string inside = indentation + '\t';
        if (const auto* members = std::get_if<Node::Members>(&node.value)) {
            text_ += indentation + "<dict>\n";
            for (const auto& [name, member] : *members) {
                text_ += inside + "<key>" + propertyLists_.xmlText(name) + "</key>\n";
                write(member, inside);
            }
            text_ += indentation + "</dict>\n";
        } else if (const auto* list = std::get_if<Node::List>(&node.value)) {
            text_ += indentation + "<array>\n";
            for (const auto& element : *list) write(element, inside);
            text_ += indentation + "</array>\n";
        } else if (const auto* flag = std::get_if<bool>(&node.value)) {
            text_ += indentation + (*flag ? "<true/>\n" : "<false/>\n");
        } else if (const auto* number = std::get_if<long>(&node.value)) {
            text_ += indentation + "<integer>" + std::to_string(*number) + "</integer>\n";
        } else if (const auto* text = std::get_if<std::string>(&node.value)) {
            text_ += indentation + "<string>" + propertyLists_.xmlText(*text) + "</string>\n";
        }
    }

    PropertyLists& propertyLists_;
    std::string text_;
};

/// What stands in a payload of any type. A profile of the same identifiers takes the place of the one before.
Node::Members payload(const std::string& type, const std::string& identifier, const std::string& uuid) {
    return {{"PayloadDisplayName", {std::string("Vantrel codec settings")}},
            {"PayloadIdentifier", {identifier}},
            {"PayloadType", {type}},
            {"PayloadUUID", {uuid}},
            {"PayloadVersion", {1L}}};
}

/// A configuration profile that forces the entries of the domain.
Node configurationProfile(const Node::Members& entries) {
    const std::string domain(codecApplicationID);
    const Node settings{Node::Members{{"mcx_preference_settings", {entries}}}};
    auto forced = payload("com.apple.ManagedClient.preferences", domain + ".settings.domain",
                          "6A0C1F5E-0B7D-4C39-9C5B-5D3E8A1F7B21");
    forced.push_back(
        {"PayloadContent", {Node::Members{{domain, {Node::Members{{"Forced", {Node::List{settings}}}}}}}}});
    auto profile = payload("Configuration", domain + ".settings", "B3C7D2A4-94E1-4F0A-8E26-71A9C05F3D68");
    profile.push_back({"PayloadContent", {Node::List{{forced}}}});
    profile.push_back({"PayloadScope", {std::string("User")}});
    return {profile};
}

}  // namespace

Status exportProfile(Context& context, const Arguments& arguments) {
    const auto hidden = hiddenSettings(context.system.inspection, "nothing is exported");
    if (!hidden.empty()) throw Problem::failure(hidden.front());
    auto& log = context.system.services.log;
    const bool isForDevices = arguments.format == "mobileconfig";
    if (isForDevices) {
        log.log("CLSF and CPUM are left out: a configuration profile doesn't reach the override metadata");
    } else if (!context.system.services.overrides.load()) {
        log.log("CLSF and CPUM are left out: there is no library of the override metadata");
    }
    Node::Members entries;
    const PreferencesSequence sequence(context.system.services.preferences);
    for (const auto& setting : context.store.settings()) {
        const Standing standing = context.store.standing(setting);
        if (standing.state != State::stored || (isForDevices && setting.overrideKey())) continue;
        entries.push_back({std::string(setting.name()), storedNode(standing.stored)});
        if (const auto fault = context.store.fault(setting, standing)) {
            log.log(std::string(setting.name()) + ": " + fault->meaning + "; apply refuses a profile with that");
        }
    }
    if (arguments.format == "json") {
        std::cout << toJSON({entries}) << '\n';
    } else {
        PropertyListWriter writer(context.system.services.propertyLists);
        std::cout << writer.list(isForDevices ? configurationProfile(entries) : Node{entries});
    }
    return Status::done;
}

}  // namespace vantrel

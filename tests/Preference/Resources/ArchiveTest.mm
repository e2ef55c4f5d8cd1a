#include <gmock/gmock.h>
#import <objc/runtime.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#import "tests/bundle/Host.h"

// The archives in the bundle, compared with the interface files, one a language, from which they are made.

namespace vantrel {
namespace {

using Facts = std::vector<std::string>;

constexpr const char *languages[] = {"en", "de", "fr", "es", "ja"};

/// What an object of a class is asked for.
struct Properties {
    const char *className;
    std::vector<const char *> keys;
};

const Properties viewProperties[] = {
    {"NSView", {"frame", "bounds", "autoresizingMask", "autoresizesSubviews", "isHidden", "toolTip"}},
    {"NSControl", {"tag", "isEnabled", "ignoresMultiClick", "cell"}},
    {"NSBox", {"title", "titleFont", "titlePosition", "borderType", "boxType", "contentViewMargins", "isTransparent"}},
    {"NSMatrix",
     {"mode", "numberOfRows", "numberOfColumns", "cellSize", "intercellSpacing", "selectedRow", "allowsEmptySelection",
      "autosizesCells", "drawsBackground", "drawsCellBackground", "backgroundColor", "cells"}},
};

const Properties cellProperties[] = {
    {"NSCell",
     {"type",
      "stringValue",
      "state",
      "allowsMixedState",
      "isEnabled",
      "isEditable",
      "isSelectable",
      "isBordered",
      "isBezeled",
      "isScrollable",
      "wraps",
      "lineBreakMode",
      "alignment",
      "font",
      "image",
      "isContinuous",
      "tag",
      "sendsActionOnEndEditing",
      "refusesFirstResponder",
      "controlSize",
      "focusRingType"}},
    {"NSButtonCell",
     {"title", "alternateTitle", "alternateImage", "imagePosition", "isTransparent", "highlightsBy", "showsStateBy",
      "keyEquivalent", "keyEquivalentModifierMask", "bezelStyle", "imageDimsWhenDisabled"}},
    {"NSPopUpButtonCell",
     {"itemTitles", "indexOfSelectedItem", "pullsDown", "preferredEdge", "usesItemFromMenu", "arrowPosition", "menu"}},
    {"NSTextFieldCell", {"drawsBackground", "backgroundColor", "textColor"}},
};

std::string described(id object);

/// "key: value" for each property that the object has.
template <std::size_t count>
Facts facts(id object, const Properties (&table)[count]) {
    Facts facts;
    for (const Properties &properties : table) {
        if (![object isKindOfClass:objc_getClass(properties.className)]) continue;
        for (const char *key : properties.keys) {
            id value = [object valueForKey:[NSString stringWithUTF8String:key]];
            facts.push_back(std::string(key) + ": " + described(value));
        }
    }
    return facts;
}

std::string joined(const Facts &facts) {
    std::string text = "{";
    for (const std::string &fact : facts) text += " " + fact + ";";
    return text + " }";
}

std::string described(id object) {
    if (!object) return "none";
    if ([object isKindOfClass:[NSFont class]]) {
        return std::string([[object fontName] UTF8String]) + " " + std::to_string([object pointSize]);
    }
    if ([object isKindOfClass:[NSImage class]]) return [[object name] UTF8String];
    if ([object isKindOfClass:[NSMenu class]]) return [[object title] UTF8String];
    if ([object isKindOfClass:[NSArray class]]) {
        Facts elements;
        for (NSUInteger i = 0; i < [object count]; ++i) elements.push_back(described([object objectAtIndex:i]));
        return joined(elements);
    }
    if ([object isKindOfClass:[NSCell class]]) {
        return std::string(class_getName([object class])) + " " + joined(facts(object, cellProperties));
    }
    return [[object description] UTF8String];
}

/// A pane with the view of one file, which is never set up.
class LoadedPane {
   public:
    explicit LoadedPane(NSString *file) {
        pane_ = [[host::principalClass() alloc] initWithBundle:host::bundle()];
        EXPECT_TRUE([NSBundle loadNibFile:file
                        externalNameTable:[NSDictionary dictionaryWithObject:pane_ forKey:NSNibOwner]
                                 withZone:nullptr]);
        window_ = object_getIvar(pane_, class_getInstanceVariable([pane_ class], "_window"));
        name([window_ contentView], "view");
    }

    ~LoadedPane() {
        [pane_ release];
        [pool_ release];
    }

    /// Every view under its place in the pane, with what it looks like and where its connections lead.
    std::map<std::string, Facts> views() const {
        std::map<std::string, Facts> views;
        for (const auto &[view, place] : places_) {
            Facts &facts = views[place] = vantrel::facts(view, viewProperties);
            facts.push_back(std::string("class: ") + class_getName([view class]));
            facts.push_back("next key view: " + placeOf([view nextKeyView]));
            if ([view respondsToSelector:@selector(target)]) {
                facts.push_back("action: " + text(NSStringFromSelector([(NSControl *)view action])));
                facts.push_back("target: " + placeOf([(NSControl *)view target]));
            }
            if ([view respondsToSelector:@selector(delegate)]) {
                facts.push_back("delegate: " + placeOf([(NSTextField *)view delegate]));
            }
        }
        return views;
    }

    /// Where each of the pane's outlets, those of its superclass and those of its view lead.
    std::map<std::string, std::string> outlets() const {
        std::map<std::string, std::string> outlets;
        addOutlets(pane_, [NSObject class], outlets);
        addOutlets([window_ contentView], [NSView class], outlets);
        outlets["initialFirstResponder"] = placeOf([window_ initialFirstResponder]);
        return outlets;
    }

    std::vector<NSPopUpButton *> popUps() const {
        std::vector<NSPopUpButton *> popUps;
        for (const auto &[view, place] : places_) {
            if ([view isKindOfClass:[NSPopUpButton class]]) popUps.push_back((NSPopUpButton *)view);
        }
        return popUps;
    }

   private:
    void name(NSView *view, const std::string &place) {
        places_[view] = place;
        for (NSUInteger i = 0; i < [[view subviews] count]; ++i) {
            name([[view subviews] objectAtIndex:i], place + "/" + std::to_string(i));
        }
    }

    std::string placeOf(id object) const {
        if (!object) return "none";
        if (object == pane_) return "the pane";
        if (object == window_) return "the window";
        const auto place = places_.find(object);
        return place == places_.end() ? "elsewhere" : place->second;
    }

    static std::string text(NSString *text) { return text ? [text UTF8String] : "none"; }

    void addOutlets(id object, Class last, std::map<std::string, std::string> &outlets) const {
        for (Class type = [object class]; type != last; type = class_getSuperclass(type)) {
            unsigned int count = 0;
            Ivar *variables = class_copyIvarList(type, &count);
            for (unsigned int i = 0; i < count; ++i) {
                if (*ivar_getTypeEncoding(variables[i]) != '@') continue;
                const std::string place = placeOf(object_getIvar(object, variables[i]));
                if (place != "elsewhere") outlets[ivar_getName(variables[i])] = place;
            }
            std::free(variables);
        }
    }

    NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
    NSPreferencePane *pane_;
    NSWindow *window_;
    std::map<NSView *, std::string> places_;
};

class Archive : public testing::TestWithParam<const char *> {
   protected:
    NSString *archive_ =
        [NSString stringWithFormat:@"%s/Resources/%s.lproj/VantrelPref.gorm", host::bundlePath().c_str(), GetParam()];
    NSString *interfaceFile_ = [NSString stringWithFormat:@LOCALIZED_PATH "/%s.lproj/VantrelPref.xib", GetParam()];
};

TEST_P(Archive, HasEveryViewOfTheInterfaceFile) {
    const auto expected = LoadedPane(interfaceFile_).views();
    const auto views = LoadedPane(archive_).views();
    ASSERT_GT(expected.size(), 50U);
    ASSERT_EQ(views.size(), expected.size());
    for (const auto &[place, facts] : expected) {
        ASSERT_TRUE(views.contains(place)) << place;
        EXPECT_THAT(views.at(place), testing::ElementsAreArray(facts)) << place;
    }
}

TEST_P(Archive, HasEveryOutletOfTheInterfaceFile) {
    const auto expected = LoadedPane(interfaceFile_).outlets();
    EXPECT_EQ(expected.at("fmtRGB8Bit"), "view/0/0/0");
    EXPECT_EQ(expected.at("_window"), "the window");
    EXPECT_GT(expected.size(), 34U);
    EXPECT_THAT(LoadedPane(archive_).outlets(), testing::ContainerEq(expected));
}

TEST_P(Archive, HasPopUpsWithoutTicks) {
    const LoadedPane pane(archive_);
    ASSERT_EQ(pane.popUps().size(), 4U);
    for (NSPopUpButton *popUp : pane.popUps()) {
        EXPECT_FALSE([[popUp cell] altersStateOfSelectedItem]);
        for (NSInteger i = 0; i < [popUp numberOfItems]; ++i) {
            EXPECT_EQ([[popUp itemAtIndex:i] state], NSOffState);
            EXPECT_EQ([[popUp itemAtIndex:i] onStateImage], nil);
            EXPECT_EQ([[popUp itemAtIndex:i] mixedStateImage], nil);
        }
    }
}

TEST_P(Archive, AndStringsAreAllThatTheBundleHasForALanguage) {
    std::vector<std::string> files;
    for (const auto &file :
         std::filesystem::directory_iterator(host::bundlePath() + "/Resources/" + GetParam() + ".lproj")) {
        files.push_back(file.path().filename());
    }
    EXPECT_THAT(files, testing::UnorderedElementsAre("VantrelPref.gorm", "Localizable.strings"));
}

INSTANTIATE_TEST_SUITE_P(In, Archive, testing::ValuesIn(languages),
                         [](const auto &language) { return std::string(language.param); });

}  // namespace
}  // namespace vantrel

int main(int argc, char **argv) {
    return vantrel::host::runTests(argc, argv);
}

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <sstream>

#include "overrides/OverrideMetadata.h"
#include "settings/KeyTable.h"
#include "tests/settings/KeysInWords.h"

namespace vantrel {
namespace {

struct Row {
    std::string title;
    std::string type;
    std::string setUpDefault;
};

/// The rows of the document's tables of settings, by key.
std::map<std::string, Row> documentedSettings() {
    std::ifstream document(SETTINGS_DOCUMENT);
    std::map<std::string, Row> rows;
    for (std::string line; std::getline(document, line);) {
        std::istringstream cells(line);
        std::vector<std::string> cell;
        for (std::string text; std::getline(cells, text, '|');) cell.push_back(text);
        if (cell.size() != 6 || !cell[2].starts_with(" `")) continue;
        const auto trimmed = [](const std::string& text) { return text.substr(1, text.size() - 2); };
        const auto plain = [&](const std::string& text) {
            std::string name = trimmed(text);
            std::erase(name, '`');
            return name;
        };
        rows[plain(cell[2])] = {trimmed(cell[1]), trimmed(cell[3]), plain(cell[4])};
    }
    return rows;
}

TEST(SettingsDocument, TellsTypeAndDefaultOfEveryKey) {
    const auto rows = documentedSettings();
    for (const auto& key : keyTable) {
        const auto row = rows.find(std::string(key.name));
        ASSERT_NE(row, rows.end()) << key.name;
        EXPECT_EQ(row->second.type, typeOf(key.kind)) << key.name;
        EXPECT_EQ(row->second.setUpDefault, describe(key.setUpDefault)) << key.name;
    }
    EXPECT_TRUE(rows.contains(std::string(overrideKeys::chromaFilter.name)));
    EXPECT_TRUE(rows.contains(std::string(overrideKeys::decodeThreads.name)));
}

TEST(SettingsDocument, TellsOfNoKeyThatThereIsnt) {
    EXPECT_EQ(documentedSettings().size(), std::size(keyTable) + 2);
}

/// The English string table, the titles that the pane shows.
std::string englishTitle(const std::string& name) {
    std::ifstream table(ENGLISH_STRINGS);
    const std::string start = "\"" + name + ".title\" = \"";
    for (std::string line; std::getline(table, line);) {
        if (!line.starts_with(start)) continue;
        std::string title = line.substr(start.size(), line.rfind('"') - start.size());
        if (title.ends_with(':')) title.pop_back();
        return title;
    }
    return "";
}

TEST(SettingsDocument, CallsEveryControlAsThePaneDoes) {
    const auto rows = documentedSettings();
    for (const auto& key : keyTable) {
        if (key.outlet.empty()) continue;
        std::string title = englishTitle(std::string(key.outlet));
        if (title.empty()) title = englishTitle(std::string(key.outlet) + "Label");
        if (key.outlet == "_LUTsPath") title = englishTitle("LUTsLabel");
        if (key.outlet == "_overridePath") title = englishTitle("overrideLabel");
        EXPECT_EQ(rows.at(std::string(key.name)).title, title) << key.name;
    }
    EXPECT_EQ(rows.at("CLSF").title, englishTitle("filter422To444"));
    EXPECT_EQ(rows.at("CPUM").title, englishTitle("decodeThreadsLabel"));
}

}  // namespace
}  // namespace vantrel

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/StoreInspection.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// The files of the settings as GNUstep's preferences and the library of the override metadata keep them.
class GNUstepStoreInspection : public StoreInspection {
public:
    struct Places {
        /// The defaults folder, and the domain's name.
        std::string defaultsFolder;
        std::string domain;
        /// The property list of the override metadata, which may be empty, and how many bytes of it are read. No link
        /// is followed to it, and none to its folder.
        std::string record;
        std::size_t longestRecord;
    };

    explicit GNUstepStoreInspection(Places places, posix::SystemCalls& calls = posix::SystemCalls::real())
        : places_(std::move(places)), calls_(calls) {}

    std::vector<StoreFinding> findings(const std::vector<std::string>& otherFolders) override;

private:
    std::optional<std::string> linkToRecord();
    void examineList(const std::string& path, std::size_t longest, std::vector<StoreFinding>& findings);
    void examineWhetherHidden(const std::string& path, std::vector<StoreFinding>& findings);
    std::string fileAbove(const std::string& path);
    std::optional<StoreFinding::Problem> problemOf(const std::string& path, const struct stat& status,
                                                   std::size_t longest);
    void findFilesSetAside(const std::string& path, std::vector<StoreFinding>& findings);
    void findUnfinishedFiles(const std::string& folder, std::vector<StoreFinding>& findings);

    Places places_;
    posix::SystemCalls& calls_;
};

}  // namespace vantrel::gnustep

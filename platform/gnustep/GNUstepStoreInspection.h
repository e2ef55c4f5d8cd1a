#pragma once

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
        /// The property list of the override metadata.
        std::string record;
    };

    explicit GNUstepStoreInspection(Places places, posix::SystemCalls& calls = posix::SystemCalls::real())
        : places_(std::move(places)), calls_(calls) {}

    std::vector<StoreFinding> findings(const std::vector<std::string>& otherFolders) override;

private:
    void examineList(const std::string& path, std::vector<StoreFinding>& findings);
    static void findFilesSetAside(const std::string& path, std::vector<StoreFinding>& findings);
    void findUnfinishedFiles(const std::string& folder, std::vector<StoreFinding>& findings);

    Places places_;
    posix::SystemCalls& calls_;
};

}  // namespace vantrel::gnustep

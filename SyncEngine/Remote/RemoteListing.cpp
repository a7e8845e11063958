#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

Project RemoteListing::project() const {
    Project project;
    project.manifest.projectID = UUID::random();
    project.manifest.platforms = {StorePlatform::iOS};
    project.manifest.primaryLocale = StoreLocale::englishUS;
    project.manifest.locales = {StoreLocale::englishUS};
    project.app = app;
    project.platforms = platforms;
    project.pages = pages;
    project.experiments = experiments;
    return project;
}

}  // namespace kestrin

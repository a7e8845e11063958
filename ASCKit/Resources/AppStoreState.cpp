#include "ASCKit/Resources/AppStoreState.h"

namespace kestrin::AppStoreState {

const std::set<std::string> editable = {"PREPARE_FOR_SUBMISSION", "DEVELOPER_REJECTED", "REJECTED",
                                        "METADATA_REJECTED",      "INVALID_BINARY",     "READY_FOR_REVIEW"};
const std::set<std::string> live = {"READY_FOR_SALE", "READY_FOR_DISTRIBUTION"};

}  // namespace kestrin::AppStoreState

#include "KestrinCLI/APICommands.h"

#include "ASCKit/Resources/Apps.h"
#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/Failure.h"

namespace kestrin::APICommands {
namespace {

void printRaw(const std::string& bytes, Console& console) {
    console.write(bytes);
    console.print("");
}

}  // namespace

int apps(const Arguments&, Console& console) {
    auto client = makeClient(console);
    for (const auto& app : ASC::apps(client)) console.print(app.id + "\t" + app.bundleID + "\t" + app.name);
    noteRateLimit(client, console);
    return 0;
}

int dumpRefData(const Arguments&, Console& console) {
    auto client = makeClient(console);
    ASCRequest request;
    request.path = "/v1/appAssetLibraryRefData";
    printRaw(client.data(request), console);
    return 0;
}

int get(const Arguments& args, Console& console) {
    const auto address = URL::parse(ASCClient::apiRoot().absoluteString() + args[2]);
    if (!address) fail("not a valid path");
    auto client = makeClient(console);
    printRaw(client.data(*address), console);
    return 0;
}

}  // namespace kestrin::APICommands

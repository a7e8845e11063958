#include "KestrinCLI/Dispatch.h"
#include "KestrinCLI/StandardConsole.h"
#include "KestrinCore/Message.h"

int main(int argc, char* argv[]) {
    kestrin::keepStandardStreamsOpen();
    kestrin::message::useEnvironmentLanguage();
    kestrin::StandardConsole console;
    return kestrin::Dispatch::runProcess({argv, static_cast<std::size_t>(argc)}, console);
}

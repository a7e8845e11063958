#include "KestrinCLI/Dispatch.h"
#include "KestrinCLI/StandardConsole.h"
#include "KestrinCLI/WorkingFolder.h"
#include "KestrinCore/Message.h"

int main(int argc, char* argv[]) {
    kestrin::keepStandardStreamsOpen();
    kestrin::findWorkingFolderAgain();
    kestrin::message::useEnvironmentLanguage();
    kestrin::StandardConsole console;
    return kestrin::Dispatch::runProcess({argv, static_cast<std::size_t>(argc)}, console);
}

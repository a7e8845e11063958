#include "Sandbox/Program/Program.h"

int main(int argc, char** argv) {
    return kestrin::sandbox::runProgram({argv + 1, argv + argc});
}

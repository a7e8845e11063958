// Where a run stands that was started in a folder which is no more.
#pragma once

namespace kestrin {

// A save puts a new folder in the place of a package. A shell that stands in the package then stands in the old one,
// which is gone, and so would every command that it starts. When there is no working folder any more, this goes to the
// one that stands in its place now: where the shell says it is (PWD). Otherwise, and where that leads nowhere, nothing
// happens.
void findWorkingFolderAgain();

}  // namespace kestrin

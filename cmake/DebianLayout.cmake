# Run by CPack over what was installed for the package: where Debian wants a thing otherwise than CMake's own folders.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)

execute_process(COMMAND gzip -9 --no-name ${share}/man/man1/kestrin.1 COMMAND_ERROR_IS_FATAL ANY)

# Debian's zsh looks for completions of packages there, and not in site-functions.
file(MAKE_DIRECTORY ${share}/zsh/vendor-completions)
file(RENAME ${share}/zsh/site-functions/_kestrin ${share}/zsh/vendor-completions/_kestrin)
file(REMOVE_RECURSE ${share}/zsh/site-functions)

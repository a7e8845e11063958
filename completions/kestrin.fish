# Completion of kestrin for fish: commands, options, packages, and the locales and slugs of the package at hand.

# The words in front of the one that is being typed, without the program's name.
function __kestrin_words
    set -l words (commandline -opc)
    set -e words[1]
    string join \n -- $words
end

# Whether the words typed so far are these and this many more.
function __kestrin_follows -a more
    set -e argv[1]
    set -l words (__kestrin_words)
    test (count $words) -eq (math (count $argv) + $more); or return 1
    string match -q -- " $argv *" " $words "; or test (count $argv) -eq 0
end

# Whether the words begin with these and hold the positional ones of the command, so that options may follow.
function __kestrin_options_of -a positional
    set -e argv[1]
    set -l words (__kestrin_words)
    test (count $words) -ge (math (count $argv) + $positional); or return 1
    string match -q -- " $argv *" " $words "
end

function __kestrin_folders
    set -l typed (commandline -ct | string replace -r '^~/' $HOME/)
    for folder in $typed*/
        printf '%s\n' $folder
    end
end

# Folders, and the archives that hold a build.
function __kestrin_builds
    __kestrin_folders
    set -l typed (commandline -ct)
    for file in $typed*.ipa $typed*.pkg
        printf '%s\n' $file
    end
end

# The package that the word at this place means.
function __kestrin_package -a place
    set -l words (__kestrin_words)
    string replace -r '^~' $HOME -- $words[$place]
end

# The names of the folders in one of the folders of the package.
function __kestrin_slugs -a place folder
    for slug in (__kestrin_package $place)/$folder/*/
        path basename -- $slug
    end
end

# The locales that the package has texts or media in, behind those that are typed already.
function __kestrin_locales
    set -l package (__kestrin_package 2)
    set -l typed (commandline -ct | string replace -r '[^,]*$' '')
    set -l locales
    for file in $package/App/Locales/*.json
        set -a locales (path basename -- $file | string replace -r '\.json$' '')
    end
    for folder in $package/*/Locales/*/
        set -a locales (path basename -- $folder)
    end
    for locale in (printf '%s\n' $locales | sort -u)
        contains -- $locale (string split , -- $typed); or printf '%s\n' $typed$locale
    end
end

complete -c kestrin -f

for command in 'pull|pull the live listing into a project' 'diff|show what differs from App Store Connect' \
        'push|push local changes, then read them back' 'verify|check that App Store Connect matches the project' \
        'check|report fields over the limits' 'build|upload, list and attach builds' \
        'version|add a version, or print the project format' 'submit|send the version to App Review' \
        'pages|list custom product pages and tests' 'page|send a custom product page to App Review' \
        'test|send a test to App Review, or start it' 'import|import a fastlane deliver folder' \
        'export|write a fastlane deliver folder' "inspect|print a project's manifest" \
        'apps|list the apps that the API key can see' 'refdata|print the reference data of the asset library' \
        'api|print one raw API response' 'help|show the usage'
    set -l parts (string split -m 1 '|' -- $command)
    complete -c kestrin -n '__kestrin_follows 0' -a $parts[1] -d $parts[2]
end
complete -c kestrin -n '__kestrin_follows 0 build' -a 'upload list attach'
complete -c kestrin -n '__kestrin_follows 0 version' -a create
complete -c kestrin -n '__kestrin_follows 0 page' -a submit
complete -c kestrin -n '__kestrin_follows 0 test' -a 'submit start'
complete -c kestrin -n '__kestrin_follows 0 import' -a fastlane
complete -c kestrin -n '__kestrin_follows 0 export' -a fastlane
complete -c kestrin -n '__kestrin_follows 0 refdata' -a dump
complete -c kestrin -n '__kestrin_follows 0 api' -a GET

for command in pull push diff verify check inspect pages submit 'build upload' 'build list' 'build attach' \
        'version create' 'page submit' 'test submit' 'test start' 'import fastlane' 'export fastlane'
    complete -c kestrin -n "__kestrin_follows 0 $command" -a '(__kestrin_folders)'
end
complete -c kestrin -n '__kestrin_follows 1 build upload' -a '(__kestrin_builds)'
complete -c kestrin -n '__kestrin_follows 1 page submit' -a '(__kestrin_slugs 3 Pages)'
complete -c kestrin -n '__kestrin_follows 1 test submit' -a '(__kestrin_slugs 3 Experiments)'
complete -c kestrin -n '__kestrin_follows 1 test start' -a '(__kestrin_slugs 3 Experiments)'

for command in '1 pull' '1 import fastlane'
    complete -c kestrin -n "__kestrin_options_of $command" -l bundle-id -x -d 'the app of a new project'
end
complete -c kestrin -n '__kestrin_options_of 1 pull' -l take-remote -d 'take the text of App Store Connect in conflicts'
for command in '1 push' '1 submit' '2 version create' '2 page submit' '2 test submit' '2 test start'
    complete -c kestrin -n "__kestrin_options_of $command" -l yes -d 'ask nothing'
end
complete -c kestrin -n '__kestrin_options_of 1 push' -l include-conflicts -d 'push conflicts, too'
complete -c kestrin -n '__kestrin_options_of 1 push' -l locales -x -a '(__kestrin_locales)' -d 'only these locales'
for command in '1 submit' '1 build list' '2 build attach' '2 version create' '1 export fastlane'
    complete -c kestrin -n "__kestrin_options_of $command" -l platform -x -a 'IOS MAC_OS TV_OS VISION_OS' \
        -d 'the platform, IOS without it'
end
complete -c kestrin -n '__kestrin_options_of 1 submit' -l check -d 'only show the checklist'
complete -c kestrin -n '__kestrin_options_of 2 build upload' -l version -x -d 'the version it is of'
complete -c kestrin -n '__kestrin_options_of 2 build upload' -l build -x -d 'its build number'
complete -c kestrin -n '__kestrin_options_of 2 build attach' -l encryption -x -a 'yes no' \
    -d 'whether it uses non-exempt encryption'
complete -c kestrin -n '__kestrin_options_of 1 import fastlane' -l into -x -a '(__kestrin_folders)' -d 'the project'
complete -c kestrin -n '__kestrin_options_of 1 export fastlane' -l to -x -a '(__kestrin_folders)' -d 'the deliver folder'
complete -c kestrin -n '__kestrin_options_of 1 export fastlane' -l download-screenshots \
    -d 'bring those that are only on App Store Connect along'

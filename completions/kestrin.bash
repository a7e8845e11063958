# Completion of kestrin for bash: commands, options, packages, and the locales and slugs of the package at hand. It
# needs nothing but bash itself.
#
# What folders and files are called never goes through an expansion: a package may come from anyone.

# Offers those of the words that begin with what is typed.
_kestrin_offer() {
    local word
    for word; do
        if [[ $word != "$current"* ]]; then continue; fi
        if [[ $word == *[!A-Za-z0-9.,_/-]* ]]; then word=$(printf %q "$word"); fi
        COMPREPLY+=("$word")
    done
}

# Folders, packages among them.
_kestrin_offer_folders() {
    local folder
    while IFS= read -r folder; do COMPREPLY+=("$folder"); done < <(compgen -d -- "$current")
    if type compopt &>/dev/null; then compopt -o filenames; fi
}

# Folders, and the files with one of these extensions.
_kestrin_offer_files() {
    local file extension
    _kestrin_offer_folders
    while IFS= read -r file; do
        for extension; do
            if [[ -f $file && $file == *."$extension" ]]; then COMPREPLY+=("$file"); fi
        done
    done < <(compgen -f -- "$current")
}

# A word as it was typed, without its quotes and with its home folder.
_kestrin_unquoted() {
    local word=${1//[\\\"\']/}
    printf %s "${word/#\~/$HOME}"
}

# Offers the names of the folders in one of the package's folders.
_kestrin_offer_slugs() {
    local package folder
    package=$(_kestrin_unquoted "$1")
    for folder in "$package/$2"/*/; do
        folder=${folder%/}
        if [[ -d $folder ]]; then _kestrin_offer "${folder##*/}"; fi
    done
}

# Offers the locales that the package has texts or media in, behind those that are typed already.
_kestrin_offer_locales() {
    local package path locale typed= seen=,
    package=$(_kestrin_unquoted "$1")
    if [[ $current == *,* ]]; then typed=${current%,*},; fi
    for path in "$package"/App/Locales/*.json "$package"/*/Locales/*/; do
        if [[ ! -e $path ]]; then continue; fi
        locale=${path%/} locale=${locale##*/} locale=${locale%.json}
        if [[ ",$typed" == *",$locale,"* || $seen == *",$locale,"* ]]; then continue; fi
        seen+=$locale,
        _kestrin_offer "$typed$locale"
    done
    if type compopt &>/dev/null; then compopt -o nospace; fi
}

# Offers the values of the option in front of the word; fails where there is none that takes a value.
_kestrin_offer_value() {
    case $options in *" $1 "*) ;; *) return 1 ;; esac
    case $1 in
    --platform) _kestrin_offer IOS MAC_OS TV_OS VISION_OS ;;
    --encryption) _kestrin_offer yes no ;;
    --locales) _kestrin_offer_locales "$package" ;;
    --into | --to) _kestrin_offer_folders ;;
    --bundle-id | --version | --build) ;;
    *) return 1 ;;
    esac
    return 0
}

# The words of a command, each a kind of argument: its first words, then its positional ones.
_kestrin() {
    local current=${COMP_WORDS[COMP_CWORD]} kinds= options= package= name=${COMP_WORDS[1]} first=2
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _kestrin_offer pull diff push verify check build version submit pages page test import export inspect apps \
            refdata api help
        return
    fi
    if ((COMP_CWORD == 2)); then
        case $name in
        build) _kestrin_offer upload list attach && return ;;
        version) _kestrin_offer create && return ;;
        page) _kestrin_offer submit && return ;;
        test) _kestrin_offer submit start && return ;;
        import | export) _kestrin_offer fastlane && return ;;
        refdata) _kestrin_offer dump && return ;;
        api) _kestrin_offer GET && return ;;
        esac
    fi
    case $name in
    build | version | page | test | import | export) name="$name ${COMP_WORDS[2]}" first=3 ;;
    esac
    case $name in
    pull) kinds=folder options=' --bundle-id --take-remote ' ;;
    push) kinds=folder options=' --yes --include-conflicts --locales ' ;;
    diff | verify | check | inspect | pages) kinds=folder ;;
    submit) kinds=folder options=' --platform --check --yes ' ;;
    'build upload') kinds='folder build' options=' --version --build ' ;;
    'build list') kinds=folder options=' --platform ' ;;
    'build attach') kinds='folder number' options=' --platform --encryption ' ;;
    'version create') kinds='folder number' options=' --platform --yes ' ;;
    'page submit') kinds='folder Pages' options=' --yes ' ;;
    'test submit' | 'test start') kinds='folder Experiments' options=' --yes ' ;;
    'import fastlane') kinds=folder options=' --into --bundle-id ' ;;
    'export fastlane') kinds=folder options=' --to --platform --download-screenshots ' ;;
    *) return ;;
    esac
    # shellcheck disable=SC2206 # words of our own
    kinds=($kinds)
    package=${COMP_WORDS[first]}
    if ((COMP_CWORD < first + ${#kinds[@]})); then
        case ${kinds[COMP_CWORD - first]} in
        folder) _kestrin_offer_folders ;;
        build) _kestrin_offer_files ipa pkg ;;
        Pages | Experiments) _kestrin_offer_slugs "$package" "${kinds[COMP_CWORD - first]}" ;;
        esac
    elif ! _kestrin_offer_value "${COMP_WORDS[COMP_CWORD - 1]}"; then
        # shellcheck disable=SC2086
        _kestrin_offer $options
    fi
}

complete -F _kestrin kestrin

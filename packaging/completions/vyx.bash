# SPDX-License-Identifier: MIT
# Completion of the commands vyx and vyx-enhance in bash.

# Offers names of files that end in one of the extensions "$1", and folders.
_vyx_files() {
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY+=($(compgen -d -- "$word"))
    shopt -q nocasematch && local was_set=1
    shopt -s nocasematch
    local file
    for file in $(compgen -f -- "$word"); do
        [[ ! -d $file && $file =~ \.($1)$ ]] && COMPREPLY+=("$file")
    done
    [[ ${was_set-} ]] || shopt -u nocasematch
}

_vyx_films='mp4|m4v|mov|mkv|webm|avi|mpg|mpeg|vob|ts|mts|m2ts|flv|wmv|asf|3gp|3g2|ogv|ogm|dv|mxf'
_vyx_sounds='mp3|m4a|aac|ac3|flac|ogg|oga|opus|wav|wma|mka|aif|aiff'

_vyx() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
        --denoising | --sharpening | --contrast | --brightness | --temp_thresh | \
        -[scbt])
            return
            ;;
    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W '--fullscreen --preload --denoising --sharpening --contrast
            --brightness --temp_thresh --demo --loop' -- "$word"))
        return
    fi
    _vyx_files "$_vyx_films|$_vyx_sounds"
}

_vyx_enhance() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
        --spatial)
            COMPREPLY=($(compgen -W '1 2 3 4' -- "$word"))
            return
            ;;
        --temporal)
            COMPREPLY=($(compgen -W '1 2 3 4 5' -- "$word"))
            return
            ;;
        --algorithm)
            COMPREPLY=($(compgen -W 'sr denoise' -- "$word"))
            return
            ;;
        --method)
            COMPREPLY=($(compgen -W 'blend 4nb 8nb' -- "$word"))
            return
            ;;
        --denoise | --sharpen | --frames)
            return
            ;;
    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W '--spatial --algorithm --denoise --sharpen --temporal --method
            --demo --frames --help' -- "$word"))
        return
    fi
    _vyx_files "$_vyx_films|png"
}

complete -F _vyx vyx
complete -F _vyx_enhance vyx-enhance

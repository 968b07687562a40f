# bash completion for korvatek-cli                                    -*- shell-script -*-

_korvatek_cli()
{
    local cur prev words cword
    # '=' and ':' stay inside words: N=FILE.bmp:TYPE is one argument.
    _init_completion -n =: || return

    local commands="info pictures picture export patch apply status revert merge decode encode convert make
        lumbra fonts glyphs glyph font-size font-patch make-font render demo-flash"

    if ((cword == 1)); then
        COMPREPLY=($(compgen -W "$commands help --help -h --version" -- "$cur"))
        return
    fi

    local command=${words[1]} options="--help"
    case $command in
        export) options+=" -o --dir --format --alpha" ;;
        patch) options+=" -o --json --gpf-folder --bmp-folder" ;;
        info | pictures | fonts | glyphs | status) options+=" --json" ;;
        render) options+=" -o --zoom" ;;
        revert | merge) options+=" -o" ;;
        decode) options+=" -o --alpha" ;;
        encode) options+=" -o --type" ;;
        glyph) options+=" -o --dir" ;;
        font-patch) options+=" -o --bmp-folder" ;;
        apply | convert | font-size | make-font) options+=" -o" ;;
        picture | make | lumbra | demo-flash) ;;
        *) return ;;
    esac

    # The value of an option.
    case $prev in
        -o)
            case $command in
                export) _filedir '@(gpf2|bmp)' ;;
                patch | font-size | font-patch | make-font | revert | merge) _filedir vkp ;;
                render) _filedir png ;;
                apply) _filedir bin ;;
                decode | glyph) _filedir bmp ;;
                encode) _filedir '@(gpf2|gpf)' ;;
                *) _filedir ;;
            esac
            return
            ;;
        --dir | --gpf-folder)
            _filedir -d
            return
            ;;
        --bmp-folder)
            if [[ $command == patch && $cur == *:* ]]; then
                COMPREPLY=($(compgen -W "1 8 16 24 orig" -- "${cur##*:}"))
            else
                _filedir -d
            fi
            return
            ;;
        --format)
            COMPREPLY=($(compgen -W "gpf2 bmp" -- "$cur"))
            return
            ;;
        --type)
            COMPREPLY=($(compgen -W "1 8 16 24" -- "$cur"))
            return
            ;;
    esac

    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return
    fi

    # Replacements: N=FILE or CODE=FILE, then :TYPE after a BMP or PNG picture.
    if [[ $cur == *=* && ($command == patch || $command == font-patch) ]]; then
        if [[ $command == patch && $cur == *=*:* ]]; then
            COMPREPLY=($(compgen -W "1 8 16 24 orig" -- "${cur##*:}"))
        else
            cur=${cur#*=}
            if [[ $command == patch ]]; then
                _filedir '@(gpf2|gpf|bmp|png)'
            else
                _filedir bmp
            fi
        fi
        return
    fi

    # The position of the word among the arguments that are not options.
    local i position=0 ended=""
    for ((i = 2; i < cword; i++)); do
        if [[ -z $ended && ${words[i]} == -- ]]; then
            ended=1
        elif [[ -z $ended && ${words[i]} == @(-o|--dir|--format|--type|--gpf-folder|--bmp-folder|--zoom) ]]; then
            ((i++))
        elif [[ -n $ended || ${words[i]} != -[!0-9]* ]]; then
            ((position++))
        fi
    done
    ((position++))

    case $command:$position in
        *:1)
            case $command in
                decode | convert) _filedir '@(gpf|gpf2|dat)' ;;
                encode) _filedir '@(bmp|png)' ;;
                make) _filedir -d ;;
                lumbra | revert | merge) _filedir vkp ;;
                *) _filedir bin ;;
            esac
            ;;
        apply:2 | status:* | merge:*) _filedir vkp ;;
        make:2 | lumbra:2 | make-font:3) _filedir -d ;;
        export:2 | glyph:3) COMPREPLY=($(compgen -W "all" -- "$cur")) ;;
    esac
} &&
    complete -F _korvatek_cli korvatek-cli

# ex: filetype=sh

# fish completion for korvatek-cli

set -l commands info pictures picture export patch apply decode encode convert make lumbra fonts glyphs glyph font-size font-patch make-font demo-flash help

# Files with one of the given extensions (any case) and folders, after any N= or DIR: in the token.
function __korvatek_cli_files
    set -l token (commandline -ct)
    set -l prefix (string replace -r '[^=:]*$' '' -- $token)
    set -l path (string replace -r '^.*[=:]' '' -- $token)
    set -l candidates $path*
    for file in $candidates
        if test -d $file
            echo $prefix$file/
        else if set -q argv[1]; and string match -qir -- '\.('(string join '|' $argv)')$' $file
            echo $prefix$file
        end
    end
end

# The picture types after the colon of DIR:TYPE or N=FILE.bmp:TYPE.
function __korvatek_cli_types
    set -l prefix (string replace -r '[^:]*$' '' -- (commandline -ct))
    printf '%s\n' $prefix{1,8,16,24,orig}
end

# DIR, then TYPE after the colon.
function __korvatek_cli_folder_type
    if string match -q -- '*:*' (commandline -ct)
        __korvatek_cli_types
    else
        __fish_complete_directories (commandline -ct)
    end
end

# The arguments so far that are not options or option values, the command included.
function __korvatek_cli_position
    set -l words (commandline -opc)
    set -l count 0
    set -l skip 0
    for word in $words[2..-1]
        if test $skip = 1
            set skip 0
        else if contains -- $word -o --dir --format --type --gpf-folder --bmp-folder
            set skip 1
        else if not string match -qr -- '^-[^0-9]' $word
            set count (math $count + 1)
        end
    end
    echo $count
end

# True when the command is one of the arguments and the next word is positional argument N.
function __korvatek_cli_at
    __fish_seen_subcommand_from $argv[2..-1]; or return 1
    test (__korvatek_cli_position) = $argv[1]
end

complete -c korvatek-cli -f
complete -c korvatek-cli -n "not __fish_seen_subcommand_from $commands" -s h -l help -d 'Show the commands'
complete -c korvatek-cli -n "not __fish_seen_subcommand_from $commands" -l version -d 'Show the version'

set -l top "not __fish_seen_subcommand_from $commands"
complete -c korvatek-cli -n $top -a info -d 'Open and identify a fullflash'
complete -c korvatek-cli -n $top -a pictures -d 'List the picture table'
complete -c korvatek-cli -n $top -a picture -d 'Decode picture N and print its information'
complete -c korvatek-cli -n $top -a export -d 'Save one or all pictures as GPF2 or BMP'
complete -c korvatek-cli -n $top -a patch -d 'Replace pictures and write the picture patch'
complete -c korvatek-cli -n $top -a apply -d 'Check a V_Klay patch and write a patched copy'
complete -c korvatek-cli -n $top -a decode -d 'Decode a container to BMP'
complete -c korvatek-cli -n $top -a encode -d 'Encode a BMP or PNG into a container'
complete -c korvatek-cli -n $top -a convert -d 'Convert GPF/GPF2 to DAT, DAT to GPF2, or GPF to GPF2 and back'
complete -c korvatek-cli -n $top -a make -d 'Build the picture area blocks from a folder of containers'
complete -c korvatek-cli -n $top -a lumbra -d "Turn another tool's picture patch into GPF2 files"
complete -c korvatek-cli -n $top -a fonts -d 'List the fonts'
complete -c korvatek-cli -n $top -a glyphs -d 'List the glyphs of a font'
complete -c korvatek-cli -n $top -a glyph -d 'Save one or all glyphs as BMP'
complete -c korvatek-cli -n $top -a font-size -d 'Write a font size patch'
complete -c korvatek-cli -n $top -a font-patch -d 'Replace glyphs and write the glyph patch'
complete -c korvatek-cli -n $top -a make-font -d 'Rebuild a font from a folder of BMPs'
complete -c korvatek-cli -n $top -a demo-flash -d 'Write the synthetic demonstration fullflash'
complete -c korvatek-cli -n $top -a help -d 'Show the commands'

# Every command
set -l any "__fish_seen_subcommand_from $commands[1..-2]"
complete -c korvatek-cli -n $any -s h -l help -d 'Show the arguments of the command'

# Positional arguments
complete -c korvatek-cli -n '__korvatek_cli_at 1 info pictures picture export patch apply fonts glyphs glyph font-size font-patch make-font demo-flash' -a '(__korvatek_cli_files bin)'
complete -c korvatek-cli -n '__korvatek_cli_at 1 decode convert' -a '(__korvatek_cli_files gpf gpf2 dat)'
complete -c korvatek-cli -n '__korvatek_cli_at 1 encode' -a '(__korvatek_cli_files bmp png)'
complete -c korvatek-cli -n '__korvatek_cli_at 1 lumbra' -a '(__korvatek_cli_files vkp)'
complete -c korvatek-cli -n '__korvatek_cli_at 2 apply' -a '(__korvatek_cli_files vkp)'
complete -c korvatek-cli -n '__korvatek_cli_at 1 make; or __korvatek_cli_at 2 make lumbra; or __korvatek_cli_at 3 make-font' -a '(__fish_complete_directories)'
complete -c korvatek-cli -n '__korvatek_cli_at 2 export; or __korvatek_cli_at 3 glyph' -a all -d 'Every one'

# Replacements: N=FILE, N=FILE.bmp:TYPE, CODE=FILE.bmp
complete -c korvatek-cli -n '__fish_seen_subcommand_from patch; and string match -qr "^[0-9]+=[^:]*\$" -- (commandline -ct)' -a '(__korvatek_cli_files gpf2 gpf bmp png)'
complete -c korvatek-cli -n '__fish_seen_subcommand_from patch; and string match -qir "=.*\.(bmp|png):[^:]*\$" -- (commandline -ct)' -a '(__korvatek_cli_types)'
complete -c korvatek-cli -n '__fish_seen_subcommand_from font-patch; and string match -qr "^[0-9]+=" -- (commandline -ct)' -a '(__korvatek_cli_files bmp)'

# Options
complete -c korvatek-cli -n '__fish_seen_subcommand_from export' -s o -x -a '(__korvatek_cli_files gpf2 bmp)' -d 'File to write'
complete -c korvatek-cli -n '__fish_seen_subcommand_from patch font-size font-patch make-font' -s o -x -a '(__korvatek_cli_files vkp)' -d 'Patch to write'
complete -c korvatek-cli -n '__fish_seen_subcommand_from apply' -s o -x -a '(__korvatek_cli_files bin)' -d 'Patched copy to write'
complete -c korvatek-cli -n '__fish_seen_subcommand_from decode glyph' -s o -x -a '(__korvatek_cli_files bmp)' -d 'BMP to write'
complete -c korvatek-cli -n '__fish_seen_subcommand_from encode' -s o -x -a '(__korvatek_cli_files gpf2 gpf)' -d 'Container to write'
complete -c korvatek-cli -n '__fish_seen_subcommand_from convert' -s o -r -F -d 'File to write'
complete -c korvatek-cli -n '__fish_seen_subcommand_from export glyph' -l dir -x -a '(__fish_complete_directories)' -d 'Folder for all of them'
complete -c korvatek-cli -n '__fish_seen_subcommand_from export' -l format -x -a 'gpf2 bmp' -d 'Container for all pictures'
complete -c korvatek-cli -n '__fish_seen_subcommand_from export decode' -l alpha -d 'Save the alpha channel'
complete -c korvatek-cli -n '__fish_seen_subcommand_from encode' -l type -x -a '1 8 16 24' -d 'Colour depth'
complete -c korvatek-cli -n '__fish_seen_subcommand_from patch' -l gpf-folder -x -a '(__fish_complete_directories)' -d 'Replace from a folder of GPF/GPF2 files'
complete -c korvatek-cli -n '__fish_seen_subcommand_from patch' -l bmp-folder -x -a '(__korvatek_cli_folder_type)' -d 'Replace from a folder of BMPs (DIR:TYPE)'
complete -c korvatek-cli -n '__fish_seen_subcommand_from font-patch' -l bmp-folder -x -a '(__fish_complete_directories)' -d 'Replace from a folder of BMPs'

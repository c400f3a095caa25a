# Manual pages and bash completion made from a program's own --help texts, so that they list
# exactly the commands and options the program has. Run as a script:
#
#   cmake -DPROGRAM=<path> -DNAME=<name> -DMODE=man|bash -DOUTPUT=<file>
#         [-DSUMMARY=<one line>] [-DVERSION=<text>] [-DEXTRA=<roff file>]
#         [-DREPLACE_FROM=<text> -DREPLACE_TO=<text>] -P HelpPages.cmake
#
# REPLACE_FROM, where the texts hold it, becomes REPLACE_TO: a path of the build tree that the
# program prints becomes the installed one.
#
# The commands are read from the main help: the lines of a "Commands:" block ("  name  text"),
# or else the lines "<name> <command> ..." of its usage. Each command's text is what
# "<program> <command> --help" prints.
cmake_minimum_required(VERSION 3.18)

function(help_text out)
  execute_process(COMMAND ${PROGRAM} ${ARGN} --help OUTPUT_VARIABLE text RESULT_VARIABLE status
                  ERROR_VARIABLE ignored)
  if(NOT status EQUAL 0 OR text STREQUAL "")
    string(REPLACE ";" " " words "${ARGN}")
    message(FATAL_ERROR "${PROGRAM} ${words} --help failed (${status})")
  endif()
  if(REPLACE_FROM)
    string(REPLACE "${REPLACE_FROM}" "${REPLACE_TO}" text "${text}")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

help_text(main)

# The command words.
set(commands)
if(main MATCHES "\nCommands:\n(([ ][^\n]*\n)+)")
  string(REGEX MATCHALL "\n  [a-z][-a-z]*" found "\n${CMAKE_MATCH_1}")
else()
  string(REGEX MATCHALL "(Usage: |\n +)${NAME} [a-z][-a-z]*" found "${main}")
endif()
foreach(item ${found})
  string(REGEX REPLACE ".* " "" item "${item}")
  string(STRIP "${item}" item)
  list(APPEND commands ${item})
endforeach()
list(REMOVE_DUPLICATES commands)
if(NOT commands)
  message(FATAL_ERROR "no commands found in the help of ${PROGRAM}")
endif()

# Roff for preformatted text: backslashes, control characters at a line's start, and the
# hyphens that begin options (minus signs in the rendered page).
function(roff_text out text)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" text "${text}")
  string(REPLACE "-" "\\-" text "${text}")
  foreach(pass 1 2)
    string(REGEX REPLACE "([A-Za-z0-9])\\\\-([A-Za-z0-9])" "\\1-\\2" text "${text}")
  endforeach()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

if(MODE STREQUAL "man")
  string(TOUPPER "${NAME}" title)
  # The usage block is the synopsis, the rest of the main help the description.
  string(FIND "${main}" "\n\n" split)
  string(SUBSTRING "${main}" 0 ${split} synopsis)
  math(EXPR rest "${split} + 2")
  string(SUBSTRING "${main}" ${rest} -1 description)
  string(REGEX REPLACE "^Usage: +" "" synopsis "${synopsis}")
  string(REGEX REPLACE "\n       " "\n" synopsis "${synopsis}")
  roff_text(synopsis "${synopsis}")
  roff_text(description "${description}")
  set(page ".TH ${title} 1 \"\" \"${VERSION}\" \"User Commands\"\n.SH NAME\n${NAME} \\- ${SUMMARY}\n")
  string(APPEND page ".SH SYNOPSIS\n.nf\n${synopsis}\n.fi\n.SH DESCRIPTION\n.nf\n${description}.fi\n.SH COMMANDS\n")
  foreach(command ${commands})
    help_text(text ${command})
    roff_text(text "${text}")
    string(APPEND page ".SS ${command}\n.nf\n${text}.fi\n")
  endforeach()
  if(EXTRA)
    file(READ "${EXTRA}" extra)
    string(APPEND page "${extra}")
  endif()
  file(WRITE "${OUTPUT}" "${page}")
  return()
endif()

if(NOT MODE STREQUAL "bash")
  message(FATAL_ERROR "MODE must be man or bash")
endif()

# The options of a help text: those that begin a line of it and those of its usage line; an
# option followed by a word in capitals takes a value, named so.
function(options_of text words_out values_out)
  set(words)
  set(values)
  string(REGEX MATCH "Usage: [^\n]*" usage "${text}")
  string(REGEX MATCHALL "\n +-[-a-zA-Z]+(, --[-a-z]+)?( [A-Z][A-Z=_]*)?" lines "${text}")
  string(REGEX MATCHALL "[ [|]--[-a-z]+( [A-Z][A-Z=_]*)?" used "${usage}")
  foreach(item ${lines} ${used})
    string(REGEX MATCHALL "--?[-a-zA-Z]+" names "${item}")
    list(APPEND words ${names})
    if(item MATCHES " ([A-Z][A-Z=_]*)$")
      foreach(name ${names})
        list(APPEND values "${name}=${CMAKE_MATCH_1}")
      endforeach()
    endif()
  endforeach()
  list(REMOVE_DUPLICATES words)
  list(SORT words)
  set(${words_out} "${words}" PARENT_SCOPE)
  set(${values_out} "${values}" PARENT_SCOPE)
endfunction()

if(main MATCHES "\nGlobal options:\n(([ ][^\n]*\n)+)")
  options_of("\n${CMAKE_MATCH_1}" globals global_values)
else()
  set(globals --help)
  set(global_values)
endif()
set(all_values ${global_values})
set(cases "")
set(choices "")
foreach(command ${commands})
  help_text(text ${command})
  options_of("${text}" words values)
  list(APPEND all_values ${values})
  list(APPEND words --help)
  string(REPLACE ";" " " words "${words}")
  string(APPEND cases "        ${command}) options=\"${words}\" ;;\n")
  # A value named in capitals whose words the help lists, one a line ("  HPEVA_VSnap  ...").
  foreach(pair ${values})
    string(REGEX REPLACE ".*=" "" metavar "${pair}")
    if(text MATCHES "\n${metavar} is one of:\n(( +[^\n]*\n)+)")
      string(REGEX MATCHALL "\n  [A-Za-z_][A-Za-z0-9_]*" listed "\n${CMAKE_MATCH_1}")
      string(REGEX REPLACE "\n  " " " listed "${listed}")
      string(REPLACE ";" "" listed "${listed}")
      string(STRIP "${listed}" listed)
      string(REGEX REPLACE "=.*" "" option "${pair}")
      string(APPEND choices "        ${option}) COMPREPLY=($(compgen -W \"${listed}\" -- \"$cur\")); return ;;\n")
    endif()
  endforeach()
endforeach()
# Options that take a value: file names complete for paths and files, accounts and host names
# for theirs, nothing else does.
list(REMOVE_DUPLICATES all_values)
set(file_options)
set(value_options)
foreach(pair ${all_values})
  string(REGEX REPLACE "=.*" "" option "${pair}")
  string(REGEX REPLACE ".*=" "" metavar "${pair}")
  list(APPEND value_options ${option})
  if(metavar MATCHES "^(PATH|FILE|DIR)$")
    list(APPEND file_options ${option})
  elseif(metavar STREQUAL "ACCOUNT")
    string(APPEND choices "        ${option}) COMPREPLY=($(compgen -u -- \"$cur\")); return ;;\n")
  elseif(metavar STREQUAL "HOST")
    string(APPEND choices "        ${option}) COMPREPLY=($(compgen -A hostname -- \"$cur\")); return ;;\n")
  endif()
endforeach()
list(REMOVE_DUPLICATES value_options)
list(REMOVE_DUPLICATES file_options)
string(REPLACE ";" "|" value_pattern "${value_options}")
string(REPLACE ";" "|" file_pattern "${file_options}")
string(REPLACE ";" " " command_words "${commands}")
string(REPLACE ";" " " global_words "${globals}")
if(NOT file_pattern)
  set(file_pattern "--no-such-option")
endif()
if(NOT value_pattern)
  set(value_pattern "--no-such-option")
endif()

file(WRITE "${OUTPUT}" "# bash completion for ${NAME}, made from its --help texts by the build.
_${NAME}()
{
    local cur=\"\${COMP_WORDS[COMP_CWORD]}\" prev=\"\${COMP_WORDS[COMP_CWORD-1]}\"
    local command=\"\" options i word
    # The command is the first word that is no option nor an option's value.
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=\"\${COMP_WORDS[i]}\"
        case \"$word\" in
            ${value_pattern}) ((i++)) ;;
            -*) ;;
            *) command=\"$word\"; break ;;
        esac
    done
    case \"$prev\" in
        ${file_pattern}) COMPREPLY=($(compgen -f -- \"$cur\")); return ;;
${choices}        ${value_pattern}) COMPREPLY=(); return ;;
    esac
    if [[ -z \"$command\" ]]; then
        if [[ \"$cur\" == -* ]]; then
            COMPREPLY=($(compgen -W \"${global_words}\" -- \"$cur\"))
        else
            COMPREPLY=($(compgen -W \"${command_words} help\" -- \"$cur\"))
        fi
        return
    fi
    case \"$command\" in
${cases}        help) COMPREPLY=($(compgen -W \"${command_words}\" -- \"$cur\")); return ;;
        *) options=\"\" ;;
    esac
    if [[ \"$cur\" == -* ]]; then
        COMPREPLY=($(compgen -W \"$options\" -- \"$cur\"))
    fi
}
complete -o default -F _${NAME} ${NAME}
")

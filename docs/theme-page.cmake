cmake_minimum_required(VERSION 3.19)

# Writes the theme folder page from a theme's own files, so that its lists cannot drift:
#   cmake -DROOT=<source root> -DTHEME=<theme folder> -DOUT=<page.md> -P docs/theme-page.cmake
# The page is docs/theme.md.in with @THEME_LISTS@ replaced by the tables below. For each
# name the "read by" column lists the library's families whose sources quote it.

foreach(var ROOT THEME OUT)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "theme-page.cmake: ${var} is not set")
  endif()
endforeach()

# The library's sources, one variable per family.
set(families resources sheets controls views help singleapp)
foreach(family IN LISTS families)
  file(GLOB_RECURSE sources ${ROOT}/src/${family}/*.cpp ${ROOT}/src/${family}/*.h)
  set(text_${family} "")
  foreach(source IN LISTS sources)
    file(READ ${source} content)
    string(APPEND text_${family} "${content}")
  endforeach()
endforeach()

function(readers name out)
  set(found "")
  foreach(family IN LISTS families)
    string(FIND "${text_${family}}" "\"${name}\"" at)
    if(at GREATER -1)
      list(APPEND found ${family})
    endif()
  endforeach()
  list(JOIN found ", " joined)
  if(joined STREQUAL "")
    set(joined "the application") # offered to applications; the library does not ask for it
  endif()
  set(${out} "${joined}" PARENT_SCOPE)
endfunction()

set(lists "")

# Images: the manifest's two lists.
file(READ ${THEME}/images.json manifest)
string(JSON image_count LENGTH "${manifest}" images)
string(JSON temp_count LENGTH "${manifest}" tmp_images)
set(names "")
math(EXPR last "${image_count} - 1")
foreach(i RANGE ${last})
  string(JSON name GET "${manifest}" images ${i})
  list(APPEND names ${name})
endforeach()
string(APPEND lists "## Images\n\n"
  "`images.json` lists ${image_count} images under `\"images\"`. Each is read from `images/` in four "
  "files, `<name>.png`, `<name>_hover.png`, `<name>_click.png` and `<name>_disable.png`; a missing "
  "state file falls back to the normal image with a warning when that state is asked for. "
  "File-type icons (a name with a `_removed` twin) are chosen by FileTypeMap from a file's extension.\n\n"
  "| image | read by |\n|---|---|\n")
set(file_types "")
foreach(name IN LISTS names)
  if(name MATCHES "_removed$" OR "${name}_removed" IN_LIST names)
    if(NOT name MATCHES "_removed$")
      list(APPEND file_types "`${name}`")
    endif()
    continue()
  endif()
  readers(${name} by)
  string(APPEND lists "| `${name}` | ${by} |\n")
endforeach()
list(LENGTH file_types type_count)
list(JOIN file_types ", " file_types)
string(APPEND lists "| ${file_types} (${type_count} file types, each with a `_removed` twin) | FileTypeMap, for the application |\n")

string(APPEND lists "\n### Temporary images\n\n"
  "The ${temp_count} names under `\"tmp_images\"` are scaled once at start-up and written to "
  "`<user_data_path>/tmp_images/tmp_<name>.png`, where style sheets find them through `TMPIMG_LOC` "
  "(Qt style sheets name images by file):\n\n| image | source file |\n|---|---|\n")
math(EXPR last "${temp_count} - 1")
foreach(i RANGE ${last})
  string(JSON name GET "${manifest}" tmp_images ${i})
  string(APPEND lists "| `${name}` | `images/${name}.png` |\n")
endforeach()

# Style keys: the section lines of every style file, in load order.
file(GLOB styles RELATIVE ${THEME}/styles ${THEME}/styles/*.qss)
list(SORT styles)
set(style_count 0)
set(style_rows "")
foreach(style IN LISTS styles)
  file(STRINGS ${THEME}/styles/${style} sections REGEX "^==.*==$")
  foreach(section IN LISTS sections)
    string(REGEX REPLACE "[= ]" "" key "${section}")
    readers(${key} by)
    string(APPEND style_rows "| `${key}` | `styles/${style}` | ${by} |\n")
    math(EXPR style_count "${style_count} + 1")
  endforeach()
endforeach()
list(LENGTH styles file_count)
string(APPEND lists "\n## Style keys\n\n"
  "${style_count} sections in ${file_count} files. A key that appears twice keeps its last section "
  "(files are read in name order).\n\n| key | file | read by |\n|---|---|---|\n${style_rows}")

# Captions: the keys of the English file, and which languages carry each.
file(GLOB languages RELATIVE ${THEME}/captions ${THEME}/captions/*.json)
list(SORT languages)
foreach(language IN LISTS languages)
  string(REPLACE ".json" "" code ${language})
  list(APPEND codes ${code})
  file(READ ${THEME}/captions/${language} captions_${code})
endforeach()
list(JOIN codes ", " code_list)
string(JSON caption_count LENGTH "${captions_enu}")
string(APPEND lists "\n## Caption keys\n\n"
  "${caption_count} keys in `captions/enu.json`; the theme ships ${code_list}. "
  "A key the installed map lacks is shown as the key itself, with a warning.\n\n"
  "| key | English | languages | read by |\n|---|---|---|---|\n")
math(EXPR last "${caption_count} - 1")
foreach(i RANGE ${last})
  string(JSON key MEMBER "${captions_enu}" ${i})
  string(JSON english GET "${captions_enu}" ${key})
  set(has "")
  foreach(code IN LISTS codes)
    string(JSON value ERROR_VARIABLE missing GET "${captions_${code}}" ${key})
    if(NOT missing)
      list(APPEND has ${code})
    endif()
  endforeach()
  list(JOIN has " " has)
  readers(${key} by)
  string(APPEND lists "| `${key}` | ${english} | ${has} | ${by} |\n")
endforeach()

# Help pages, if the theme carries them.
if(IS_DIRECTORY ${THEME}/help)
  file(GLOB_RECURSE help RELATIVE ${THEME} ${THEME}/help/*)
  list(SORT help)
  string(APPEND lists "\n## Offline help\n\n"
    "One folder per help language code (HelpWindow::helpLanguage()), found through "
    "HelpContext::offlineHelpPath:\n\n")
  foreach(file IN LISTS help)
    string(APPEND lists "- `${file}`\n")
  endforeach()
endif()

set(THEME_LISTS "${lists}")
configure_file(${ROOT}/docs/theme.md.in ${OUT} @ONLY)

# lumo_add_theme(<name> [FROM <theme source folder>] [PALETTE <palette.json>])
#
# Lays out a theme in the build tree as an application ships it: images.json,
# images/*.png (rasterised from the vector sources), styles/*.qss, captions/*.json,
# help/. A theme with FROM takes another theme's sources and derives its images
# and stylesheets through PALETTE; *.qss files of its own are added after them,
# so that their sections replace the derived ones.
set(LUMO_THEMES_BUILD_DIR ${PROJECT_BINARY_DIR}/share/lumo/themes)
add_custom_target(lumo_theme ALL)

function(lumo_add_theme name)
  cmake_parse_arguments(T "" "FROM;PALETTE" "" ${ARGN})
  set(src ${CMAKE_CURRENT_SOURCE_DIR})
  if(T_FROM)
    set(src ${T_FROM})
  endif()
  set(out ${LUMO_THEMES_BUILD_DIR}/${name})
  set(palette_args)
  set(palette_deps)
  set(manifest_args)
  set(copies captions/* help/*)
  if(T_PALETTE)
    set(palette_args ${CMAKE_CURRENT_SOURCE_DIR}/${T_PALETTE})
    set(palette_deps ${palette_args})
    # The derived manifest also lists the images the palette adds.
    set(manifest_args ${out}/images.json)
  else()
    list(APPEND copies images.json)
  endif()

  file(GLOB svgs CONFIGURE_DEPENDS ${src}/images-src/*.svg)
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/images.stamp)
  add_custom_command(OUTPUT ${stamp} ${manifest_args}
    COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0
            $<TARGET_FILE:lumo_rasterize> ${src}/images-src/sources.json ${src}/images-src ${out}/images
            ${src}/images.json ${palette_args} ${manifest_args}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS lumo_rasterize ${svgs} ${src}/images-src/sources.json ${src}/images.json ${palette_deps}
    COMMENT "Rasterising the ${name} theme's images"
    VERBATIM)
  set(outputs ${stamp})

  if(T_PALETTE)
    file(GLOB qss CONFIGURE_DEPENDS ${src}/styles/*.qss)
    set(styles_stamp ${CMAKE_CURRENT_BINARY_DIR}/styles.stamp)
    add_custom_command(OUTPUT ${styles_stamp}
      COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0
              $<TARGET_FILE:lumo_recolor> ${palette_args} ${src}/styles ${out}/styles
      COMMAND ${CMAKE_COMMAND} -E copy ${palette_args} ${out}/palette.json
      COMMAND ${CMAKE_COMMAND} -E touch ${styles_stamp}
      DEPENDS lumo_recolor ${qss} ${palette_deps}
      COMMENT "Deriving the ${name} theme's stylesheets"
      VERBATIM)
    list(APPEND outputs ${styles_stamp})
  else()
    list(APPEND copies styles/*)
  endif()

  # Copied files: from the source theme, then the derived theme's own stylesheets.
  list(TRANSFORM copies PREPEND ${src}/)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS ${copies})
  if(T_FROM)
    file(GLOB own CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/styles/*.qss)
    list(APPEND files ${own})
  endif()
  foreach(file IN LISTS files)
    string(REGEX REPLACE "^(${src}|${CMAKE_CURRENT_SOURCE_DIR})/" "" relative ${file})
    add_custom_command(OUTPUT ${out}/${relative}
      COMMAND ${CMAKE_COMMAND} -E copy ${file} ${out}/${relative}
      DEPENDS ${file}
      VERBATIM)
    list(APPEND outputs ${out}/${relative})
  endforeach()

  add_custom_target(lumo_theme_${name} DEPENDS ${outputs})
  add_dependencies(lumo_theme lumo_theme_${name})
endfunction()

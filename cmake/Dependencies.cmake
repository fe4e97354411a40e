find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)
find_package(TIFF REQUIRED)
find_package(GIF REQUIRED)
find_package(EXPAT REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
pkg_check_modules(DEFLATE REQUIRED IMPORTED_TARGET libdeflate)
pkg_check_modules(WEBP REQUIRED IMPORTED_TARGET libwebp)
pkg_check_modules(OPENJP2 REQUIRED IMPORTED_TARGET libopenjp2)
pkg_check_modules(LCMS2 REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo-ft fontconfig freetype2)
# Its header alone: nothing links libheif; the worker program opens it.
find_path(RASTERKIT_HEIF_INCLUDE_DIR libheif/heif.h REQUIRED DOC "Folder of libheif/heif.h (Debian: libheif-dev)")
# For the worker program alone.
pkg_check_modules(SECCOMP REQUIRED IMPORTED_TARGET libseccomp)
set(RASTERKIT_DEPENDENCIES
    Threads::Threads ${CMAKE_DL_LIBS} JPEG::JPEG PNG::PNG TIFF::TIFF GIF::GIF EXPAT::EXPAT PkgConfig::DEFLATE
    PkgConfig::WEBP PkgConfig::OPENJP2 PkgConfig::LCMS2 PkgConfig::CAIRO fmt::fmt nlohmann_json::nlohmann_json
    PkgConfig::HWY)

if(RASTERKIT_DIALOGS)
  find_package(Qt6 6.4 QUIET COMPONENTS Widgets Svg)
  if(NOT Qt6_FOUND)
    message(FATAL_ERROR "The dialogs need Qt 6.4 or newer with its Widgets and Svg modules (Debian: qt6-base-dev "
                        "qt6-svg-dev). -DRASTERKIT_DIALOGS=OFF builds the library and the tool without them.")
  endif()
  find_program(RASTERKIT_LRELEASE NAMES lrelease-qt6 lrelease6 lrelease NAMES_PER_DIR
               HINTS ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS} DOC "Qt's program that makes catalogues of translations")
  if(NOT RASTERKIT_LRELEASE)
    message(FATAL_ERROR "The dialogs' languages need lrelease of Qt's tools (Debian: qt6-l10n-tools). "
                        "-DRASTERKIT_DIALOGS=OFF builds the library and the tool without them.")
  endif()
endif()

if(RASTERKIT_DIALOGS AND NOT RASTERKIT_PDF)
  message(FATAL_ERROR "The dialogs need RASTERKIT_PDF: one of them shows the pages of PDF files.")
endif()
if(RASTERKIT_PDF)
  find_package(Qt6 6.4 QUIET COMPONENTS Gui Pdf)
  if(NOT Qt6Pdf_FOUND)
    message(FATAL_ERROR "Drawing PDF pages needs Qt 6.4 or newer with its Gui and Pdf modules (Debian: qt6-base-dev "
                        "qt6-pdf-dev). -DRASTERKIT_PDF=OFF -DRASTERKIT_DIALOGS=OFF builds the library and the tool "
                        "without them.")
  endif()
endif()

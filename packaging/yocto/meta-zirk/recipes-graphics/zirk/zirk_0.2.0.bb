SUMMARY = "2D graphics for embedded Linux"
DESCRIPTION = "One small C++17 interface, and backends that are chosen at run time."
SECTION = "libs"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=9301420898129c533f41aab4094d6e4f"

DEPENDS = "freetype"

inherit cmake pkgconfig externalsrc

# Builds the sources that contain this layer.
EXTERNALSRC = "${@os.path.realpath(d.getVar('THISDIR') + '/../../../../..')}"

# Makes no links in these sources.
EXTERNALSRC_SYMLINKS = ""

# OpenGL ES comes from the distribution's EGL and SDL 2; DirectFB needs a layer that provides it.
PACKAGECONFIG ??= "fb kms png jpeg kit tools \
    ${@bb.utils.contains('DISTRO_FEATURES', 'opengl', 'opengles2', '', d)} hybrid"

PACKAGECONFIG[fb] = "-DZIRK_BACKEND_FB=ON,-DZIRK_BACKEND_FB=OFF,pixman"
PACKAGECONFIG[kms] = "-DZIRK_BACKEND_FB_KMS=ON,-DZIRK_BACKEND_FB_KMS=OFF,libdrm"
PACKAGECONFIG[opengles2] = "-DZIRK_BACKEND_OPENGLES2=ON,-DZIRK_BACKEND_OPENGLES2=OFF,libsdl2 virtual/egl virtual/libgles2"
PACKAGECONFIG[hybrid] = "-DZIRK_BACKEND_HYBRID=ON,-DZIRK_BACKEND_HYBRID=OFF"
PACKAGECONFIG[directfb] = "-DZIRK_BACKEND_DIRECTFB=ON,-DZIRK_BACKEND_DIRECTFB=OFF,directfb pixman"
PACKAGECONFIG[stub] = "-DZIRK_BACKEND_STUB=ON,-DZIRK_BACKEND_STUB=OFF"
PACKAGECONFIG[png] = "-DZIRK_IMAGE_PNG=ON,-DZIRK_IMAGE_PNG=OFF,libpng"
PACKAGECONFIG[jpeg] = "-DZIRK_IMAGE_JPEG=ON,-DZIRK_IMAGE_JPEG=OFF,libjpeg-turbo"
PACKAGECONFIG[webp] = "-DZIRK_IMAGE_WEBP=ON,-DZIRK_IMAGE_WEBP=OFF,libwebp"
PACKAGECONFIG[kit] = "-DZIRK_BUILD_KIT=ON,-DZIRK_BUILD_KIT=OFF,liblinebreak"
PACKAGECONFIG[fontconfig] = "-DZIRK_KIT_FONTCONFIG=ON,-DZIRK_KIT_FONTCONFIG=OFF,fontconfig,fontconfig"
PACKAGECONFIG[tools] = "-DZIRK_BUILD_TOOLS=ON,-DZIRK_BUILD_TOOLS=OFF"
PACKAGECONFIG[trace] = "-DZIRK_BUILD_TRACE=ON,-DZIRK_BUILD_TRACE=OFF,zstd xxhash"

# This build type optimises for size, except in the loops over pixels.
EXTRA_OECMAKE = "\
    -DCMAKE_BUILD_TYPE=MinSizeRel \
    -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON \
    -DZIRK_BUILD_EXAMPLES=OFF \
    -DZIRK_BUILD_TESTS=OFF \
"

# One package for each backend that is built, and an empty one that depends on all of them.
BACKENDS = "${@bb.utils.filter('PACKAGECONFIG', 'fb opengles2 hybrid directfb stub', d)}"
BACKEND_PACKAGES = "${@' '.join('${PN}-backend-' + name for name in d.getVar('BACKENDS').split())}"
PACKAGES =+ "${BACKEND_PACKAGES} ${PN}-backends ${PN}-kit ${PN}-tools"

# Plug-ins have no versions in their names, but are not development files.
FILES:${PN}-backend-fb = "${libdir}/libZIRKImplFB.so"
FILES:${PN}-backend-opengles2 = "${libdir}/libZIRKImplOpenGL.so"
FILES:${PN}-backend-hybrid = "${libdir}/libZIRKImplHybrid.so"
FILES:${PN}-backend-directfb = "${libdir}/libZIRKImplDirectFB.so"
FILES:${PN}-backend-stub = "${libdir}/libZIRKImplStub.so"
FILES:${PN}-kit = "${libdir}/libZIRKKit.so.*"
FILES:${PN}-tools = "${bindir}/zirkinfo ${bindir}/zirktrace ${libdir}/zirktrace"
ALLOW_EMPTY:${PN}-backends = "1"
RDEPENDS:${PN}-backends = "${BACKEND_PACKAGES}"

# SDL is opened at run time, so no file depends on it. Without SDL, Hybrid draws as FB does.
RDEPENDS:${PN}-backend-opengles2 = "libsdl2"
RRECOMMENDS:${PN}-backend-hybrid = "${@bb.utils.contains('PACKAGECONFIG', 'opengles2', 'libsdl2', '', d)}"
RRECOMMENDS:${PN} = "${@bb.utils.contains('PACKAGECONFIG', 'hybrid', '${PN}-backend-hybrid', '', d)}"

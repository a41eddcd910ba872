# shellcheck shell=bash
# For the scripts that draw through the SDK what the program draws, too. They set `build`, the folder for all output.

top=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")

# Sets `framework`, `classes` and `gallery`: paths of the framework, of the SDK, and of tests/jvm/gallery/ with its
# stand-ins, which come before the framework.
build_gallery() {
    "$top/java/build-classes" --gallery "${build:?}/sdk"
    framework=$(cat "$build/sdk/classpath")
    # shellcheck disable=SC2034 # of those who call it
    classes=$build/sdk/classes gallery=$build/sdk/gallery
}

# A class of the gallery, with the libraries of a build.
#   run_gallery LIBRARIES CLASSPATH CLASS ARGUMENT...
run_gallery() {
    java -Djava.awt.headless=true "-Djava.library.path=$1" -cp "$2:$framework" "${@:3}"
}

# shellcheck shell=bash
# For the scripts that draw through the SDK what the program draws, too. They set `build`, the folder for all output, and
# have the functions of maven.sh.

top=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")

# Sets `framework` and `classes`, the paths of the framework and of the SDK with tests/jvm/gallery/.
build_gallery() {
    local standins
    "$top/java/build-classes" "${build:?}/sdk"
    framework=$(cat "$build/sdk/classpath")
    rm -rf "$build/standins" "$build/app"
    mapfile -d '' standins < <(find "$top/tests/jvm/standins" "$top/examples/java/standins" -name '*.java' -print0)
    # The stand-ins come before the framework: what they do not replace is Java alone.
    compile_java standins "$framework" "${standins[@]}"
    compile_java app "$build/standins:$build/sdk/classes:$framework" "$top"/tests/jvm/gallery/gxgallery/*.java
    # shellcheck disable=SC2034 # of those who call it
    classes=$build/app:$build/sdk/classes
}

# Into the folder of that name.
#   compile_java NAME CLASSPATH FILE...
compile_java() {
    javac -Xlint:all -Werror -encoding UTF-8 --release 11 -d "$build/$1" -cp "$2" "${@:3}"
}

# A class of the gallery, with the libraries of a build.
#   run_gallery LIBRARIES CLASSPATH CLASS ARGUMENT...
run_gallery() {
    java -Djava.awt.headless=true "-Djava.library.path=$1" -cp "$2:$build/standins:$framework" "${@:3}"
}

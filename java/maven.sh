# shellcheck shell=bash
# For the scripts of this folder: Maven on the SDK, and leaving with exit 77 and the reason where it,
# a compiler or what they need to download is missing. They set `build`, the folder for all output.

skip() {
    echo "skipped: $*"
    exit 77
}

require_maven() {
    command -v mvn >/dev/null || skip "no Maven (mvn) on this machine"
    command -v javac >/dev/null || skip "no Java compiler (javac) on this machine"
}

# What was downloaded once is not asked for again, so this needs no network then. `maven_seconds` is how long it may take.
run_maven() {
    local log=${build:?}/maven.log
    timeout "${maven_seconds:-540}" mvn -B "-Dgxtext.build.dir=$build" "$@" >"$log" 2>&1
}

# For everything short of running tests: a failure to download is no failure of the SDK.
run_maven_or_skip() {
    local status=0
    run_maven "$@" || status=$?
    [[ $status -eq 0 ]] || fail_or_skip "$status"
}

# After a run of Maven that ended so before it came to a test.
fail_or_skip() {
    local log=$build/maven.log
    [[ $1 -ne 124 ]] || skip "Maven's repository does not answer in time"
    if grep -qE 'Could not (resolve|transfer|find)|could not be resolved|Unknown host' "$log"; then
        grep -m 1 -E '^\[ERROR\]' "$log" || true
        skip "Maven's repository does not answer"
    fi
    cat "$log"
    exit 1
}

# Sets `tool`, the path of the jar GROUP:ARTIFACT:VERSION in Maven's repository. Wants the SDK in $build/sdk.
fetch_tool() {
    local group artifact version
    IFS=: read -r group artifact version <<<"$1"
    tool=$(sed 's|/org/robolectric/.*||' "$build/sdk/classpath")/${group//.//}/$artifact/$version/$artifact-$version.jar
    [[ -e $tool ]] || run_maven_or_skip \
        org.apache.maven.plugins:maven-dependency-plugin:3.6.1:get "-Dartifact=$1" -Dtransitive=false
}
R8=com.android.tools:r8:8.5.35

# Sets `java_base` to a jar of java.lang and its like, or to all of the runtime where its modules are not installed: the
# shrinker reads every class of a library.
find_java_base() {
    local home
    home=$(java -XshowSettings:properties -version 2>&1 | sed -n 's/^ *java.home = //p')
    java_base=$home
    [[ -e $home/jmods/java.base.jmod ]] || return 0
    java_base=$build/java.base.jar
    [[ $java_base -nt $home/jmods/java.base.jmod ]] ||
        python3 - "$home/jmods/java.base.jmod" "$java_base" <<'END'
import sys, zipfile
with zipfile.ZipFile(sys.argv[1]) as module, zipfile.ZipFile(sys.argv[2], "w") as jar:
    for name in module.namelist():
        if name.startswith("classes/"):
            jar.writestr(name.removeprefix("classes/"), module.read(name))
END
}

# The shrinker, as the Android build runs it: full mode, with the SDK's rules and those of the caller.
#   shrink RULES OUTPUT OPTION_OR_JAR...
shrink() {
    local rules=$1 output=$2
    shift 2
    fetch_tool "$R8"
    find_java_base
    # What a rule does not match is told at length; an app without the SDK matches none.
    java -cp "$tool" com.android.tools.r8.R8 --release \
        --pg-conf "$(dirname "${BASH_SOURCE[0]}")/consumer-rules.pro" --pg-conf "$rules" --output "$output" \
        "$@" --lib "$java_base" >"$build/r8.log" 2>&1 || { cat "$build/r8.log" && exit 1; }
}

# The Kotlin compiler's path into `kotlin_compiler`, that of its library into `kotlin_library`. Those who share the SDK's
# classes ask Maven once.
find_kotlin() {
    local list=${GXTEXT_SDK_CLASSES:-$build}/kotlin.classpath pom
    pom=$(dirname "${BASH_SOURCE[0]}")/kotlin/pom.xml
    [[ $list -nt $pom ]] || run_maven_or_skip -f "$pom" \
        org.apache.maven.plugins:maven-dependency-plugin:3.6.1:build-classpath "-Dmdep.outputFile=$list"
    kotlin_compiler=$(cat "$list")
    kotlin_library=$(tr : '\n' <"$list" | grep -m 1 '/kotlin-stdlib-[0-9.]*jar$')
}

# What the compiler says is in $build/kotlin.log.
#   compile_kotlin CLASSPATH OUTPUT FILE...
compile_kotlin() {
    java -cp "$kotlin_compiler" org.jetbrains.kotlin.cli.jvm.K2JVMCompiler -no-stdlib -no-reflect -Werror -jvm-target 11 \
        -classpath "$1:$kotlin_library" -d "$2" "${@:3}" >"$build/kotlin.log" 2>&1
}

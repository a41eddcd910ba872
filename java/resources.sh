# shellcheck shell=bash
# For scripts that put an app together: its resources and the SDK's by Debian's aapt2 and framework. Wants maven.sh.
framework_resources=/usr/share/android-framework-res/framework-res.apk

require_aapt2() {
    command -v aapt2 >/dev/null || skip "no aapt2 on this machine (scripts/setup apk)"
    [[ -e $framework_resources ]] || skip "no $framework_resources on this machine (scripts/setup apk)"
}

# Links manifest, resources and assets of the app in SOURCES with the resources of the other folders into WORK/linked.apk;
# the classes R go to WORK/gen.
#   link_resources SOURCES WORK [RES_FOLDER...] [-- AAPT2_OPTION...]
link_resources() {
    local sources=$1 work=$2 options=() number=0
    shift 2
    [[ ! -d $sources/assets ]] || options+=(-A "$sources/assets")
    while [[ $# -gt 0 && $1 != -- ]]; do
        aapt2 compile --dir "$1" -o "$work/library$number.flat.zip"
        options+=("$work/library$number.flat.zip")
        number=$((number + 1))
        shift
    done
    [[ $# -eq 0 ]] || shift
    if [[ -d $sources/res ]]; then
        aapt2 compile --dir "$sources/res" -o "$work/app.flat.zip"
        options+=("$work/app.flat.zip")
    fi
    aapt2 link -o "$work/linked.apk" -I "$framework_resources" --manifest "$sources/AndroidManifest.xml" \
        --version-code 1 --version-name 1 --java "$work/gen" --extra-packages com.norvale.android.sdk.gxe \
        --auto-add-overlay "${options[@]}" "$@"
}

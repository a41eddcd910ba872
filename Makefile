# The front door. Every target installs what it is missing (scripts/setup), then works in build/.
# make demo and make test are the two to start with.

BUILD := build
PRESET ?= release
# Of test-aarch64 on 64-bit ARM; all when empty.
SUITES ?=
ARMHF_SUITES := raster effect library
space := $(subst ,, )
FUZZ_SECONDS ?= 60

.PHONY: help setup demo demo-java demo-spark test agreement aar apk wheel bench bench-instructions bench-scaling bench-png bench-memory bench-pictures bench-docs goldens lint format sanitize fuzz test-aarch64 package clean

help:
	@echo "make demo          build, then render sample pictures into out/demo/"
	@echo "make studio        build and open the page that makes styles"
	@echo "make demo-java     render pictures through the Java SDK into out/demo-java/"
	@echo "make demo-spark    render pictures on a Spark cluster of this machine into out/demo-spark/"
	@echo "make test          build and run every test"
	@echo "make agreement     the text stack against HarfBuzz, FreeType, ICU, Unicode and CanvasKit, in figures"
	@echo "make aar           pack the SDK and the libraries built for Android into out/aar/"
	@echo "make apk           build the example app with the SDK into out/apk/, without Gradle or an NDK"
	@echo "make package       shared libraries and program, tested, as a Debian package with sources into out/package/"
	@echo "make wheel         the Python package with its libraries inside, tested, into out/wheel/"
	@echo "make bench         build and run the benchmarks: ratios to the peers, targets beside"
	@echo "make bench-instructions  instructions per pixel of the same rows"
	@echo "make bench-memory  memory held while 100,000 titles come and go"
	@echo "make bench-scaling   time against radius, area, effects, text length and threads, into docs/"
	@echo "make bench-png     time against size of PNG files, into docs/"
	@echo "make bench-pictures  what everyone draws, into out/bench-pictures/"
	@echo "make bench-docs    all of it into docs/performance.md and README.md"
	@echo "make goldens       golden pictures anew: shows where they differ, then asks"
	@echo "make lint          formatting, include rules, clang-tidy, shellcheck"
	@echo "make format        reformat the sources in place"
	@echo "make sanitize      the tests under the address, undefined and thread sanitizers"
	@echo "make fuzz          each fuzz target for 60 s (FUZZ_SECONDS=n) over the kept inputs"
	@echo "make test-aarch64  the C++ tests on 64-bit ARM, kernels and library on 32-bit ARM, too (qemu)"
	@echo "make setup         install what building and testing needs; nothing if all is there"
	@echo "make clean         remove build/ and out/"

setup:
	@scripts/setup build

demo: setup
	@scripts/setup demo
	cmake --preset release
	cmake --build --preset release --target gxtext_tool
	scripts/demo $(BUILD)/release out/demo

.PHONY: studio
studio: setup
	@scripts/setup demo node
	cmake --preset release
	cmake --build --preset release --target gxtext_tool gxtext_studio
	$(BUILD)/release/tools/gxtext/gxtext studio

demo-java: setup
	@scripts/setup demo java
	cmake --preset release
	cmake --build --preset release --target gxtext
	scripts/demo-java $(BUILD)/release out/demo-java

demo-spark: setup
	@scripts/setup demo python
	options=$$(scripts/python-env $(BUILD)/python) && cmake --preset release $$options
	cmake --build --preset release --target gxtext_python
	PYTHONPATH=$(BUILD)/release/python $(BUILD)/python/bin/python examples/spark/render.py --out out/demo-spark

test: setup
	@scripts/setup demo java apk peers node studio python
	options=$$(scripts/python-env $(BUILD)/python) && cmake --preset $(PRESET) $$options
	cmake --build --preset $(PRESET)
	ctest --preset $(PRESET)

agreement: setup
	@scripts/setup demo peers node
	cmake --preset release
	cmake --build --preset release --target gxtext_agreement_test
	@$(BUILD)/release/tests/agreement/gxtext_agreement_test | grep -E '^agreement:|scripts/setup|FAILED'

aar: setup
	@scripts/setup java
	scripts/aar out/aar $(AAR_OPTIONS)

apk: setup
	@scripts/setup java apk
	scripts/apk out/apk $(APK_OPTIONS)

package: setup
	@scripts/setup demo package node
	cmake --preset package
	cmake --build --preset package
	ctest --preset package
	scripts/package $(BUILD)/package out/package

wheel: setup
	@scripts/setup demo python
	cmake --preset release
	cmake --build --preset release --target gxtext_tool
	scripts/wheel out/wheel $(BUILD)/release/tools/gxtext/gxtext

bench bench-instructions bench-scaling bench-png bench-memory bench-pictures bench-docs: setup
	@scripts/setup bench node
	cmake --preset release -DGXTEXT_BUILD_BENCH=ON
	cmake --build --preset release --target gxtext_bench
	scripts/bench $(patsubst bench-%,--%,$(filter bench-%,$@)) $(BUILD)/release

goldens: setup
	@scripts/setup demo
	cmake --preset release
	cmake --build --preset release --target gxtext_tool gxtext_text_test gxtext_tool_test
	scripts/goldens $(BUILD)/release

lint: setup
	@scripts/setup lint
	cmake --preset release
	scripts/lint $(BUILD)/release

format:
	@scripts/setup lint
	scripts/lint --format

sanitize: setup
	@scripts/setup demo sanitize peers
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan
	cmake --preset tsan
	cmake --build --preset tsan
	ctest --preset tsan

fuzz: setup
	@scripts/setup sanitize
	cmake --preset asan
	cmake --build --preset asan --target gxtext_fuzz
	scripts/fuzz $(BUILD)/asan $(FUZZ_SECONDS)

test-aarch64: setup
	@scripts/setup demo aarch64
	scripts/arm-sysroot arm64 $(BUILD)/aarch64-sysroot
	cmake --preset aarch64
	cmake --build --preset aarch64 $(if $(SUITES),--target $(SUITES:%=gxtext_%_test))
	ctest --preset aarch64 $(if $(SUITES),-R '^($(subst $(space),|,$(SUITES)))[.]')
	scripts/arm-sysroot armhf $(BUILD)/armhf-sysroot
	cmake --preset armhf
	cmake --build --preset armhf --target $(ARMHF_SUITES:%=gxtext_%_test)
	ctest --preset armhf -R '^($(subst $(space),|,$(ARMHF_SUITES)))[.]'

clean:
	rm -rf $(BUILD) out

# Thin wrapper around CMake: installs the Debian packages that are missing, builds, and runs.
#   make demo   renders the sample picture and says where the results are
#   make view   opens the page on which an effect is seen at work at every move of a control
#   make test   builds and runs every test, and the plug-in for Windows where mingw-w64 and Wine are installed
#   make test-elsewhere tests the libraries for other processors in emulators
#   make bundles builds the plug-in for Windows, macOS and Linux and packs what ships into dist/
#   make bench  runs the benchmarks; make bench-all every kind of frame as well; make bench-compare times other programs
#               at the same job, where they are installed

PRODUCT_PACKAGES := g++ cmake ninja-build pkg-config libopenimageio-dev zlib1g-dev libjpeg-dev libcli11-dev libfmt-dev nlohmann-json3-dev libcpp-httplib-dev
TEST_PACKAGES := $(PRODUCT_PACKAGES) libgtest-dev libgmock-dev libbenchmark-dev binutils \
    openimageio-tools imagemagick ffmpeg libimage-exiftool-perl \
    g++-12-multilib g++-powerpc64-linux-gnu qemu-user python3 python3-jsonschema zsh fish parallel

BUNDLE_PACKAGES := $(PRODUCT_PACKAGES) clang lld llvm-14 g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 \
    dpkg-dev binutils python3

ELSEWHERE_PACKAGES := $(TEST_PACKAGES) g++-aarch64-linux-gnu

# Node may be there from elsewhere than Debian, and then brings its own npm.
INSTALL_NPM := command -v npm >/dev/null || scripts/install-packages.sh npm

.PHONY: demo view test test-elsewhere bundles bench bench-all bench-compare clean
.DEFAULT_GOAL := demo

demo: ; @scripts/demo.sh $(PRODUCT_PACKAGES)

view:
	@$(INSTALL_NPM)
	@scripts/view.sh $(PRODUCT_PACKAGES)

test:
	@scripts/install-packages.sh $(TEST_PACKAGES) chromium
	@$(INSTALL_NPM)
	@scripts/test.sh release
	@scripts/test-elsewhere.sh windows-x64

test-elsewhere:
	@scripts/install-packages.sh $(ELSEWHERE_PACKAGES)
	@scripts/test-elsewhere.sh linux-arm64 linux-powerpc64 linux-i386

bundles:
	@scripts/install-packages.sh $(BUNDLE_PACKAGES)
	@$(INSTALL_NPM)
	@scripts/bundles.sh

bench:
	@scripts/install-packages.sh $(TEST_PACKAGES)
	cmake --preset release
	cmake --build --preset release --target kestrel-benchmarks first-frame
	benchmarks/bench.py $(BENCH_FLAGS) build/release/bin build/release

bench-all: BENCH_FLAGS := --all-frames
bench-all: bench

bench-compare:
	@scripts/install-packages.sh $(TEST_PACKAGES)
	cmake --preset release
	cmake --build --preset release --target compare-tools
	benchmarks/compare/compare.py build/release/bin build/release

clean: ; rm -rf build dist

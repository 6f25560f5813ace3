# Each target does its own set-up, so that a fresh machine needs nothing else.
BUILD ?= build
JOBS ?= $(shell nproc)
# The sanitised tree: clang with AddressSanitizer and UBSan, which also builds
# the libFuzzer targets.
SANITIZE_BUILD ?= build-sanitize
FUZZ_SECONDS ?= 60

PREFIX ?= /usr/local

.PHONY: all deps configure build demo test bench clean format zentable install deb docs \
        configure-sanitize build-sanitize test-sanitize fuzz

all: build

deps:
	bash scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# The driver alone, without the tests and benchmarks.
zentable: configure
	cmake --build $(BUILD) -j $(JOBS) --target zentable

install: configure
	cmake --build $(BUILD) -j $(JOBS) --target zentable zentable_docs
	cmake --install $(BUILD) --prefix $(PREFIX)

# A Debian package of the driver, its manual page and its completion.
deb: configure
	cmake --build $(BUILD) -j $(JOBS) --target zentable zentable_docs
	cd $(BUILD) && cpack -G DEB

# The function reference in docs/, written from the catalogue.
docs: zentable
	$(BUILD)/zentable help --markdown >docs/functions.md

demo: build
	mkdir -p build/svm_demo
	cd examples && $(abspath $(BUILD))/zentable run demo.zt
	cd examples && $(abspath $(BUILD))/zentable run gains.zt --plot $(abspath $(BUILD))/gains.png \
	    --size 1200x400 >/dev/null

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

configure-sanitize: deps
	CC=clang-14 CXX=clang++-14 cmake -S . -B $(SANITIZE_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DZENTABLE_SANITIZE=ON -DZENTABLE_BENCH=OFF

build-sanitize: configure-sanitize
	cmake --build $(SANITIZE_BUILD) -j $(JOBS)

test-sanitize: build-sanitize
	cd $(SANITIZE_BUILD) && ctest --output-on-failure -j $(JOBS)

fuzz: build-sanitize
	bash scripts/run-fuzz.sh $(SANITIZE_BUILD) $(FUZZ_SECONDS)

bench: build
	@cd $(BUILD)/bench && for b in ./*_bench; do echo "== $$b"; $$b; done

format:
	clang-format -i $$(git ls-files '*.cpp' '*.hpp')

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD)

# Each target does its own set-up, so that a fresh machine needs nothing else.
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: all deps configure build demo test bench clean format

all: build

deps:
	bash scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

build: configure
	cmake --build $(BUILD) -j $(JOBS)

demo: build
	cd examples && $(abspath $(BUILD))/zentable run demo.zt

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

bench: build
	@cd $(BUILD)/bench && for b in ./*_bench; do echo "== $$b"; $$b; done

format:
	clang-format -i $$(git ls-files '*.cpp' '*.hpp')

clean:
	rm -rf $(BUILD)

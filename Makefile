# Set-up and everyday commands. Each target installs what it needs first,
# so `make run` and `make test` work on a fresh machine.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)
SAMPLE := samples/sample.bmp
FUZZ_SECONDS ?= 20

.PHONY: all deps configure build run test bench bench-compare sample clean

all: build

deps:
	./scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Release

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

# Opens the editor on the bundled sample picture.
run: build
	$(BUILD_DIR)/lumiran $(CURDIR)/$(SAMPLE)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j $(JOBS)

bench: build
	$(BUILD_DIR)/bench/lumiran_bench

# Whole runs of lumiran-cli against ImageMagick, GraphicsMagick and libvips,
# with the rows of bench/compare/*.txt; COMPARE_ARGS passes options on
# (e.g. COMPARE_ARGS="--rows Negative --sizes 1920x1080").
bench-compare: build
	python3 bench/compare.py --cli $(BUILD_DIR)/lumiran-cli $(COMPARE_ARGS)

# Regenerates the bundled sample picture (it is committed).
sample: build
	$(BUILD_DIR)/make-sample $(SAMPLE)

# Each reader under libFuzzer with the address and undefined-behaviour
# sanitizers for FUZZ_SECONDS seconds; needs clang (clang-14, libclang-rt-14-dev).
.PHONY: fuzz
fuzz: deps
	./scripts/fuzz.sh $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD_DIR) out

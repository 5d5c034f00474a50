# make run   - install what is missing, build, start Tarabix on its start-up sample
# make test  - the same, then the whole suite, then the suite again under ASan + UBSan
# make build - build only, into build/
# make assets / make samples - regenerate the pictures / sample pieces in data/
BUILD_DIR ?= build
ASAN_DIR  ?= build-asan
FUZZ_DIR  ?= build-fuzz
FUZZ_SECONDS ?= 15
CMAKE_GEN ?= -G Ninja

.PHONY: all deps configure build run test test-asan fuzz-smoke bench assets samples install check-install screenshot startup soak fuzz-long clean

all: build

deps:
	@scripts/install-deps

configure:
	@cmake -S . -B $(BUILD_DIR) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD_DIR)

run: deps build
	$(BUILD_DIR)/bin/tarabix

test: deps build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j2
	$(MAKE) --no-print-directory test-asan
	$(MAKE) --no-print-directory fuzz-smoke

test-asan:
	@cmake -S . -B $(ASAN_DIR) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DTARABIX_SANITIZE=ON \
	  -DTARABIX_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(ASAN_DIR)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 \
	UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(ASAN_DIR) --output-on-failure -j2

# Each libFuzzer target runs briefly from its committed corpus (crash inputs included); new
# inputs go to a scratch folder so the committed corpus only grows by hand.
fuzz-smoke:
	@CXX=clang++-14 cmake -S . -B $(FUZZ_DIR) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DTARABIX_FUZZ=ON -DTARABIX_BUILD_TESTS=OFF -DTARABIX_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(FUZZ_DIR) --target fuzzers
	@set -e; for src in tests/fuzz/*_fuzz.cpp; do \
	  [ -f "$$src" ] || continue; name=$$(basename $$src .cpp); f=$(FUZZ_DIR)/tests/fuzz/$$name; \
	  mkdir -p tests/fuzz/corpus/$$name $(FUZZ_DIR)/scratch/$$name; \
	  echo "fuzz: $$name for $(FUZZ_SECONDS) s"; \
	  ASAN_OPTIONS=detect_leaks=1 "$$f" -max_total_time=$(FUZZ_SECONDS) -print_final_stats=0 \
	    $(FUZZ_DIR)/scratch/$$name tests/fuzz/corpus/$$name 2>$(FUZZ_DIR)/scratch/$$name.log \
	    || { tail -40 $(FUZZ_DIR)/scratch/$$name.log; exit 1; }; \
	done

bench: deps build
	@for b in $(BUILD_DIR)/bench/*_bench; do [ -x "$$b" ] && "$$b"; done; true
	bench/sample_peaks.sh $(BUILD_DIR)

# The fingerboard picture, mark strip and note-name glyphs in data/, drawn by our generator.
assets: deps build
	$(BUILD_DIR)/bin/tarabix-gen-assets data

# The sample pieces in data/samples/ (installs LilyPond for the sheets when it is missing).
samples: deps
	tools/samples/gen-samples

# Long checks, not part of make test: render and dump hundreds of random pieces under ASan, and
# ten minutes of fuzzing per target.
SOAK_COUNT ?= 400
soak: deps
	ASAN_DIR=$(ASAN_DIR) scripts/soak $(SOAK_COUNT)

fuzz-long: fuzz-smoke
	FUZZ_DIR=$(FUZZ_DIR) tests/fuzz/run-long 600

PREFIX ?= /usr/local
install: deps build
	cmake --install $(BUILD_DIR) --prefix $(PREFIX)

# Installs into a scratch prefix and checks the tree, the file type and a start from elsewhere.
check-install: deps build
	packaging/check-install.sh $(BUILD_DIR)

screenshot: deps build
	tools/screenshot.sh $(BUILD_DIR)

startup: deps build
	bench/startup.sh $(BUILD_DIR)

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR) $(FUZZ_DIR)

# make run   - install what is missing, build, start Tarabix on its start-up sample
# make test  - the same, then the whole suite, then the suite again under ASan + UBSan
# make build - build only, into build/
BUILD_DIR ?= build
ASAN_DIR  ?= build-asan
CMAKE_GEN ?= -G Ninja

.PHONY: all deps configure build run test test-asan bench clean

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

test-asan:
	@cmake -S . -B $(ASAN_DIR) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DTARABIX_SANITIZE=ON \
	  -DTARABIX_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(ASAN_DIR)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 \
	UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(ASAN_DIR) --output-on-failure -j2

bench: deps build
	@for b in $(BUILD_DIR)/bench/*_bench; do [ -x "$$b" ] && "$$b"; done; true

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR)

# make run   - install what is missing, build, write a sample analysis, read it
# make test  - install what is missing, build, run every test
# make install PREFIX=/usr/local - build and install header, library, CMake and pkg-config files
# make package - build the Debian packages libkoradata0 and libkoradata-dev into $(BUILD)
BUILD   ?= build
JOBS    ?= $(shell nproc)
CMAKE_FLAGS ?=
SAMPLE  ?= $(BUILD)/sample-analysis
PREFIX  ?= /usr/local

.PHONY: all bootstrap configure build run test install package bench asan tsan clang fuzz clean

all: build

bootstrap:
	@bash scripts/bootstrap.sh

configure: bootstrap
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@rm -rf $(SAMPLE)
	@$(BUILD)/tools/kora-writer sample $(SAMPLE)
	@$(BUILD)/examples/kora-summary $(SAMPLE)
	@$(BUILD)/python/kora info $(SAMPLE)
	@$(BUILD)/python/kora plot $(SAMPLE) --frame 1 -o $(BUILD)/sample-frame.png && echo "wrote $(BUILD)/sample-frame.png"

test: build
	@ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

install: build
	@cmake --install $(BUILD) --prefix $(PREFIX)

package: build
	@cmake --build $(BUILD) --target package

bench:
	@bash scripts/bootstrap.sh
	@cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORA_BUILD_TESTS=OFF -DKORA_BUILD_BENCHMARKS=ON >/dev/null
	@cmake --build build-bench -j $(JOBS)
	@for b in $$(find build-bench -name '*_bench' -type f -perm -u+x | sort); do echo "== $$b"; $$b; done
	@echo "== bench/python_read_bench.py"; /usr/bin/python3 bench/python_read_bench.py build-bench
	@echo "== bench/mzml_export_bench.py"; /usr/bin/python3 bench/mzml_export_bench.py build-bench

asan:
	@$(MAKE) test BUILD=build-asan CMAKE_FLAGS="-DKORA_SANITIZE=address,undefined"

# The corruption campaign with 5000 damaged analyses instead of 200.
.PHONY: torture
torture: build
	@KORA_CAMPAIGN_ANALYSES=5000 $(BUILD)/src/api/corruption_campaign_test

# ThreadSanitizer with Clang and LLVM's OpenMP runtime, whose Archer tool
# tells TSan what OpenMP synchronises: a report inside a parallel region is a
# real race.
tsan:
	@KORA_BOOTSTRAP_CLANG=1 bash scripts/bootstrap.sh
	@OMP_TOOL_LIBRARIES=$$(ls /usr/lib/llvm-*/lib/libarcher.so | tail -1) \
		TSAN_OPTIONS="ignore_noninstrumented_modules=1 $$TSAN_OPTIONS" \
		$(MAKE) test BUILD=build-tsan CMAKE_FLAGS="-DKORA_SANITIZE=thread -DKORA_BUILD_PYTHON=OFF \
		-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++"

# The API tests under Valgrind's memcheck: no error, nothing definitely lost.
.PHONY: valgrind
valgrind: build
	@KORA_BOOTSTRAP_VALGRIND=1 bash scripts/bootstrap.sh
	@for t in $$(find $(BUILD)/src/api -maxdepth 1 -name '*_test' -type f -perm -u+x | sort); do \
		echo "== $$t"; \
		KORA_CAMPAIGN_ANALYSES=20 valgrind --quiet --error-exitcode=1 --leak-check=full \
			--suppressions=testing/valgrind.supp \
			--errors-for-leak-kinds=definite --show-leak-kinds=definite $$t --gtest_brief=1 || exit 1; \
	done

clang:
	@KORA_BOOTSTRAP_CLANG=1 bash scripts/bootstrap.sh
	@$(MAKE) test BUILD=build-clang CMAKE_FLAGS="-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++"

fuzz:
	@KORA_BOOTSTRAP_CLANG=1 bash scripts/bootstrap.sh
	@cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORA_BUILD_TESTS=OFF -DKORA_BUILD_FUZZERS=ON \
		-DKORA_INITIAL_BUFFER_BYTES=65536 -DKORA_MAX_BELIEVED_BYTES=16777216 -DKORA_BUILD_PYTHON=OFF -DKORA_SANITIZE=address,undefined \
		-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
	@cmake --build build-fuzz -j $(JOBS)

# Every fuzz target (or those of FUZZ_TARGETS) for FUZZ_SECONDS (default 10
# minutes each), FUZZ_JOBS at a time; prints a table of executions and crashes:
# make fuzz-run FUZZ_SECONDS=60 FUZZ_JOBS=2
FUZZ_SECONDS ?= 600
FUZZ_JOBS ?= 1
FUZZ_TARGETS ?=
.PHONY: fuzz-run
fuzz-run: fuzz
	@FUZZ_JOBS=$(FUZZ_JOBS) bash fuzz/run_fuzzers.sh build-fuzz $(FUZZ_SECONDS) $(FUZZ_TARGETS)

clean:
	rm -rf build build-bench build-asan build-tsan build-clang build-fuzz

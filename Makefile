# Thin entry points; the work is done by CMake and CTest.
BUILD   ?= build
WINBUILD ?= build-windows
FUZZBUILD ?= build-fuzz
JOBS    ?= $(shell nproc)
FUZZ_SECONDS ?= 20
GENERATOR := $(shell command -v ninja >/dev/null 2>&1 && echo "-G Ninja")

.PHONY: deps configure build run test bench fuzz windows clean

deps:
	@bash scripts/setup-deps

configure: deps
	@test -f $(BUILD)/CMakeCache.txt || cmake -S . -B $(BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# Starts the program; without ARGS it opens the bundled demo library, drawn
# and catalogued into $(DEMO) on first use and again whenever tessara-cli
# is newer than it.
DEMO ?= $(BUILD)/demo
run: build
	@if [ -n "$(ARGS)" ]; then exec $(BUILD)/app/tessara $(ARGS); fi; \
	test $(DEMO)/dbTessara.mdb -nt $(BUILD)/app/tessara-cli || $(BUILD)/app/tessara-cli make-demo-library $(DEMO) >/dev/null; \
	exec $(BUILD)/app/tessara /d "$(abspath $(DEMO))/dbTessara.mdb"

# Every test, including the windowed ones under a private X server and the
# Windows programs under wine.
test: windows
	cd $(BUILD) && xvfb-run -a -s "-screen 0 1600x1200x24 -noreset" ctest --output-on-failure -j $(JOBS) --timeout 900

# The Windows programs in one folder, $(WINBUILD)/Tessara, with Qt for
# Windows built once per machine from Debian's source (scripts/build-qt-windows)
# and the demo library catalogued by this machine's tessara-cli; then the
# setup program, $(WINBUILD)/Tessara-Setup-<version>.exe, made from that folder.
QT_WINDOWS_HOST := -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake
windows: build
	@qt=$$(bash scripts/build-qt-windows) && mkdir -p $(WINBUILD) && \
	cmake -S . -B $(WINBUILD) $(GENERATOR) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
	    -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$$qt" $(QT_WINDOWS_HOST) >$(WINBUILD)/configure.log || \
	    { cat $(WINBUILD)/configure.log; exit 1; }
	cmake --build $(WINBUILD) -j $(JOBS)
	@test $(WINBUILD)/Tessara/Demo/dbTessara.mdb -nt $(BUILD)/app/tessara-cli || \
	    { rm -rf $(WINBUILD)/Tessara/Demo && $(BUILD)/app/tessara-cli make-demo-library $(WINBUILD)/Tessara/Demo >/dev/null; }
	cmake --build $(WINBUILD) --target tessara_setup

bench: build
	@set -e; for b in $(BUILD)/bench/bench_*; do echo "== $$b"; $$b; done

fuzz: deps
	@test -f $(FUZZBUILD)/CMakeCache.txt || CC=clang CXX=clang++ cmake -S . -B $(FUZZBUILD) $(GENERATOR) \
	    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSARA_FUZZ=ON -DTESSARA_BENCH=OFF \
	    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined"
	cmake --build $(FUZZBUILD) -j $(JOBS) --target fuzz_all
	@set -e; for f in $(FUZZBUILD)/fuzz/fuzz_*; do \
	    name=$$(basename $$f); short=$${name#fuzz_}; corpus=$(FUZZBUILD)/corpus/$$name; mkdir -p $$corpus; \
	    seeds=""; test -d fuzz/seeds/$$short && seeds="fuzz/seeds/$$short"; \
	    case $$short in jet_*) seeds="$$seeds ../shared/testdata/mdb";; slide_*) seeds="$$seeds ../shared/testdata/slides";; esac; \
	    echo "== $$name ($(FUZZ_SECONDS)s)"; \
	    $$f -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=2048 -max_len=1048576 \
	        -print_final_stats=1 $$corpus $$seeds > $(FUZZBUILD)/$$name.log 2>&1 \
	        || { tail -n 40 $(FUZZBUILD)/$$name.log; exit 1; }; \
	    grep -E "^(Done|stat::number_of_executed_units)" $(FUZZBUILD)/$$name.log; \
	done

clean:
	rm -rf $(BUILD) $(WINBUILD) $(FUZZBUILD)

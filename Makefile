# Two commands set everything up on a fresh Debian machine:
#   make run    install what is missing, build, start KVR-PC on the simulated board
#   make test   install what is missing, build, run every test
#   make test SANITIZE=1   the same in a tree of its own built with clang,
#                          AddressSanitizer and UndefinedBehaviorSanitizer
#   make fuzz              each fuzzer for FUZZ_SECONDS under the sanitizers
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60

ifeq ($(SANITIZE),1)
BUILD ?= build-sanitize
CONFIG = -DCMAKE_BUILD_TYPE=Debug -DKVR_SANITIZE=ON -DCMAKE_CXX_COMPILER=clang++
ROLES = sanitize
else
BUILD ?= build
CONFIG = -DCMAKE_BUILD_TYPE=RelWithDebInfo
endif

.PHONY: deps configure build run test bench mutants fuzz package clean

deps:
	@bash scripts/install-deps.sh $(ROLES)

configure: deps
	@cmake -S . -B $(BUILD) $(CONFIG) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@bash scripts/run-with-simulator.sh $(BUILD)

test: build
	@cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: build
	@cmake --build $(BUILD) --target bench

# Puts each fault of tests/support/mutants/mutations.txt into a copy of the
# tree in turn and says whether the tests catch it.
mutants: build
	@python3 tests/support/mutants/run.py $(MUTANTS)

fuzz:
	@$(MAKE) --no-print-directory build SANITIZE=1
	@bash tests/fuzz/run.sh build-sanitize $(FUZZ_SECONDS)

package: build
	@cd $(BUILD) && cpack -B package

clean:
	rm -rf $(BUILD)

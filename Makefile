# Two commands set everything up on a fresh Debian machine:
#   make run    install what is missing, build, start KVR-PC on the simulated board
#   make test   install what is missing, build, run every test
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: deps configure build run test bench mutants package clean

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

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

package: build
	@cd $(BUILD) && cpack -B package

clean:
	rm -rf $(BUILD)

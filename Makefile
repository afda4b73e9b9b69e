# Everyday commands. CMake does the work; the builds are in CMakePresets.json.

PREFIX ?= /usr/local
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60

.PHONY: help demo test test-release test-page page fuzz bench format lint install clean
.DEFAULT_GOAL := help

help:
	@echo 'make demo             install missing packages, build, and follow a pumping station'
	@echo 'make test             build everything with sanitizers and run all tests'
	@echo 'make test-release     build what is installed and run the tests of the program and the examples'
	@echo 'make test-page        test the page of itms report in a browser'
	@echo 'make page             make that page anew from report/page/src'
	@echo 'make fuzz             build the fuzzers of all readers and run them for $(FUZZ_SECONDS) s together'
	@echo 'make bench            build and run the benchmarks'
	@echo 'make format           format the C++ files'
	@echo 'make lint             check format, includes, words, file length; run clang-tidy'
	@echo 'make install PREFIX=  build and install the library and the program ($(PREFIX))'
	@echo 'make clean            remove build/'

demo:
	@scripts/install-packages.sh
	cmake --preset release
	cmake --build --preset release -j $(JOBS) --target itms_program
	scripts/demo.sh

test:
	@scripts/install-packages.sh
	cmake --preset check
	cmake --build --preset check -j $(JOBS)
	ctest --preset check -j $(JOBS)
	@scripts/count-tests.sh build/check

test-release:
	@scripts/install-packages.sh
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	ctest --preset release -j $(JOBS)
	@scripts/count-tests.sh build/release

test-page:
	@scripts/install-packages.sh --page || true
	cmake --preset release
	cmake --build --preset release -j $(JOBS) --target itms_program
	scripts/test-page.sh

page:
	@scripts/install-packages.sh --page
	cd report/page && npm ci --ignore-scripts && npm run types && npm run build

fuzz:
	@scripts/install-packages.sh --fuzz
	JOBS=$(JOBS) scripts/fuzz.sh $(FUZZ_SECONDS)

bench:
	@scripts/install-packages.sh
	cmake --preset bench
	cmake --build --preset bench -j $(JOBS)
	scripts/bench.sh

format:
	@scripts/install-packages.sh --all
	scripts/format.sh

lint:
	@scripts/install-packages.sh --all
	cmake --preset lint
	cmake --preset tidy
	cmake -D PAGE=report/page/dist/page.html -D SOURCE=build/tidy/report/PageTemplate.cpp -P cmake/ItmsPage.cmake
	JOBS=$(JOBS) scripts/lint.sh

install:
	@scripts/install-packages.sh
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	cmake --install build/release --prefix $(PREFIX)

clean:
	rm -rf build

# The few commands of this project. Plain `make` explains them.
.DEFAULT_GOAL := help
.PHONY: help demo docs test bench lint library windows math-report clean

help:
	@echo "make demo         build the library, apply its effects to a picture, write build/gallery/index.html"
	@echo "make docs         render docs/effects.md and its pictures with the command of this build"
	@echo "make test         build and run every test: Linux, Windows under Wine, sanitizers, consumers, fuzzers"
	@echo "make bench        measure every export beside its peers; a table, and build/bench/results.json"
	@echo "make library      build libzlv40.so, its tools and its quick tests (build/linux)"
	@echo "make windows      build zlv40.dll with mingw-w64 (build/windows)"
	@echo "make lint         check the formatting and run clang-tidy"
	@echo "make math-report  measure the error of the mathematical functions over tens of millions of arguments"
	@echo "make clean        remove the build folder"
	@echo
	@echo "Each installs the Debian packages that it lacks, and says which (as root, or with sudo)."

demo:
	@scripts/demo.sh

docs:
	@scripts/docs.sh

test:
	@scripts/test.sh

bench:
	@scripts/setup.sh bench
	@scripts/bench.sh

library:
	@scripts/setup.sh library
	cmake --preset linux
	cmake --build --preset linux

windows:
	@scripts/setup.sh windows
	cmake --preset windows
	cmake --build --preset windows

lint:
	@scripts/setup.sh lint
	@scripts/lint.sh --all

math-report:
	@scripts/setup.sh library
	cmake --preset linux
	cmake --build --preset linux --target math-report

clean:
	rm -rf build

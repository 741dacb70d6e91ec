#pragma once

/// How many random cases a test runs: `sample` of them on each change, `all` where MORVANEX_LONG_TESTS is
/// set, as
/// `./run test long` does.
unsigned RandomCases(unsigned sample, unsigned all);

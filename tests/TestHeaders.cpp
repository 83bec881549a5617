// Nothing but what its target compiles for all tests: the headers that most of them read.

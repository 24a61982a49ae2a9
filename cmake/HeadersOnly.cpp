// Empty: a library that only precompiles a header must have a source.

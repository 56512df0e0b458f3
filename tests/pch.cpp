// Holds the shared precompiled header of the test programs.

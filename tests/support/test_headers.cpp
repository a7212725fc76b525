// Nothing: what this is for is its precompiled header.

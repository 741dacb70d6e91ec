#pragma once

/// The built library as a host sees it: loaded by its file, three functions found by their names.
class Plugin {
public:
    /// Loads the library, never to be unmapped. Fails the test where that, or one of the functions, is
    /// missing.
    Plugin();

    void (*Execute0)() = nullptr;
    bool *(*Cleanup)() = nullptr;
    bool (*IsDone)() = nullptr;
};

#pragma once

/// Leaves the model empty and writable when a test ends, whatever the test put into it.
class ModelGuard {
public:
    ModelGuard() = default;
    ModelGuard(const ModelGuard &) = delete;
    ModelGuard &operator=(const ModelGuard &) = delete;
    ~ModelGuard();
};

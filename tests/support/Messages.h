#pragma once

#include <string>
#include <vector>

/// Catches what goes to the toolkit's debug and warning channels while it lives.
class Messages {
public:
    Messages();
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;
    ~Messages();

    /// Everything on the debug channel so far, in order.
    const std::vector<std::string> &Debug() const;
    /// Everything on the warning channel and above so far, in order.
    const std::vector<std::string> &Warnings() const;
    void Clear();
};

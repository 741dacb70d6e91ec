#pragma once

#include "Publisher.h"

#include <vector>

/// Hears of every change to the model while it lives, and keeps the notices in order.
class Listener : public VARNO::Subscriber {
public:
    struct Notice {
        VARNO::Publisher::ActionType action;
        std::vector<VARNO::Compound *> nodes;
    };

    Listener();
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;
    ~Listener() override;

    void Notify(const VARNO::DataPointBase &notice) override;

    std::vector<Notice> notices;
};

#pragma once

#include "hosts/common/WarningSink.h"

namespace python {

/// While it lives, the toolkit's warnings on this thread go to a sink, and the messages by which the engine
/// reports its steps nowhere. Other threads are left alone: they may run another module's use of the toolkit.
class ToolkitMessages {
public:
    explicit ToolkitMessages(const hosts::WarningSink &warn);
    ToolkitMessages(const ToolkitMessages &) = delete;
    ToolkitMessages &operator=(const ToolkitMessages &) = delete;
    ~ToolkitMessages();

private:
    const hosts::WarningSink *m_before;
};

} // namespace python
